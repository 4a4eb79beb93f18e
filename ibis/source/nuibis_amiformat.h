// The values of a parameter against its type: formats, tables and tips of a parameter file. Part of the rules
// of nuibis_amirules.

#pragma once

#include "ibis/source/nuibis_tree.h"

/// A format leaf. `type` is the base type, or AMI_NO_KEYWORD if the parameter has no valid one: its values
/// are then not judged.
void AMI_CheckFormat(const _tagLeafStruct& leaf, AMI_Keyword type, const char* parameter);
/// The branch of a table, against the leaf of the types of its columns, which may be null.
void AMI_CheckTable(const _tagBranchStruct& branch, const _tagLeafStruct* types, const char* parameter);
/// The tips of a list, against the leaf of the list. `type` is a valid base type; `pairs` counts the pairs of
/// equal tips that were looked at in a file, which have a limit.
void AMI_CheckListTip(const _tagLeafStruct& tips, const _tagLeafStruct& list, AMI_Keyword type,
                      const char* parameter, std::size_t& pairs);
