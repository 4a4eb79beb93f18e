// One file of any kind, read to look at what it holds rather than at what is wrong with it.

#pragma once

#include "ibis/interface/talibis_ami.h"
#include "ibis/source/nuibis_types.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

struct ibis;

struct SourceFile {
    std::string path;
    ibis_file_type type = IBIS_FILE_NONE;
    bool isOld = false;                           ///< of version 1.x, which is checked and not kept
    const ibis* root = nullptr;                   ///< owned by the library; null for a parameter file
    std::unique_ptr<TalIbisAMI_File> parameters;  ///< of a parameter file
    std::size_t errors = 0;
    std::size_t warnings = 0;
};

/// Reads the file; a type of none is told by the extension. False after saying on the standard error why the
/// file cannot be used.
bool ReadSourceFile(const std::string& path, ibis_file_type type, SourceFile& file);

/// The records of a list from the first to the last.
template <class T> std::vector<const T*> RecordsOf(const T* list)
{
    std::vector<const T*> records;
    for (; list != nullptr; list = list->pNext) {
        records.push_back(list);
    }
    return records;
}

/// The records of a list whose newest one is its first, in the order of the file.
template <class T> std::vector<const T*> InFileOrder(const T* newest)
{
    std::vector<const T*> records = RecordsOf(newest);
    std::reverse(records.begin(), records.end());
    return records;
}

/// The entries of an array that ends at a null entry, or after `limit`.
template <class T> std::vector<const T*> EntriesOf(T* const* array, std::size_t limit)
{
    std::vector<const T*> entries;
    for (std::size_t i = 0; array != nullptr && i < limit && array[i] != nullptr; ++i) {
        entries.push_back(array[i]);
    }
    return entries;
}

/// One line of a parameter tree: a parameter, or the group that the next deeper lines belong to.
struct TreeLine {
    std::size_t depth;                      ///< 0 directly below the root branch
    const std::string* name;                ///< of the group or the parameter
    const TalIbisAMI_ParamDef* definition;  ///< null for a group
};

/// The tree below the root branch in the order of the file.
std::vector<TreeLine> LinesOf(const TalIbisAMI_Node& root);
