// [Component] with its [Manufacturer], [Package] and [Pin] in version 1.0 and 1.1 files.

#pragma once

/// Reads the component whose [Component] line is the current one, up to the keyword that ends it. Its pins
/// are held against the models that were read before. False if it has no name.
bool IBIS11_ReadComponent();
