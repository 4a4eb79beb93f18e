// Parameter files: each is read once per root, whatever number of lines names it.

#pragma once

#include "ibis/source/nuibis_tree.h"

/// Longest name of a code or parameter file.
inline constexpr std::size_t PFILE_NAME_LIMIT = 44;

/// Which buffers the parameters of a file serve.
enum PFILE_Direction : std::uint32_t {
    PFILE_RX_ONLY = 0,
    PFILE_TX_ONLY = 1,
    PFILE_BOTH = 2,
};

/// One parameter file. No parameter has a meaning of its own to this reader: direction and flags keep their
/// first values and the repeater type stays empty. The rules that read them stand ready.
struct PFILE {
    PFILE* pNext;
    ibis_file_type eType;  ///< IBIS_FILE_AMI or IBIS_FILE_PARAM
    PFILE_Direction uiDirection;
    bool bResolveExists;
    bool bPam4;
    bool bFlag2;
    _tagTree* pTree;  ///< owned; null if the file could not be read or has an error
    char szName[PFILE_NAME_LIMIT + 1];
    char szRepeaterType[35];
};

/// The file of that name, case-blind; null if there is none.
PFILE* PFILE_Find(std::string_view name);
/// A new file at the front of the root's list, its text read for ALGMOD_ParseParamText. Null for a name that
/// is no parameter file's, with a message unless it is empty. A file that is not there is reported and kept.
PFILE* PFILE_New(std::string_view name);
/// Releases the files and their trees.
void PFILE_FreeList(PFILE* list);
