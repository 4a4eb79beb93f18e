// The rules of a parameter file: which branches it has, and how usage, type, format and default of each
// parameter fit together. No parameter has a meaning of its own here; all are judged by the same rules, and
// only the declared version is read. The rules report and change nothing.

#pragma once

#include "ibis/source/nuibis_tree.h"

/// Judges a tree by its root branch; a tree without one is told. All findings are errors without a line.
/// `type` is IBIS_FILE_AMI, or IBIS_FILE_PARAM for a file without reserved parameters.
void AMI_CheckFile(const _tagBranchStruct* root, ibis_file_type type);
