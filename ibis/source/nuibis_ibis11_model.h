// [Model] and its keywords in version 1.0 and 1.1 files.

#pragma once

#include <cstddef>
#include <string_view>

/// Forgets the models of the file before.
void IBIS11_ResetModels();
/// Reads the model whose [Model] line is the current one, up to the keyword that ends it. True if it has a
/// name of its own: pins may refer to it then, whatever else was found.
bool IBIS11_ReadModel();
/// Exact comparison with the names of the models read so far.
bool IBIS11_HasModel(std::string_view name);
std::size_t IBIS11_ModelCount();
