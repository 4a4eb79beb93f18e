#include "ibis/source/nuibis_pfile.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_parse.h"

#include <algorithm>
#include <array>

namespace
{

LIST_Index<PFILE, &PFILE::szName, CMN_CaseBlindLess> gFiles;  // follows the list that was last looked into

ibis* Root()
{
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(5200, __FILE_NAME__, __LINE__);
    }
    return root;
}

// The kind of a file by its extension. Kinds of the format itself cannot hold parameters.
ibis_file_type TypeOf(std::string_view name)
{
    static constexpr std::array<std::string_view, 3> refused{"ibs", "ebd", "pkg"};
    const std::size_t dot = name.rfind('.');
    const std::string_view extension =
        dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
    const bool known = std::any_of(refused.begin(), refused.end(),
                                   [extension](std::string_view word) { return CMN_Equal(word, extension); });
    return known ? IBIS_FILE_NONE : CMN_Equal(extension, "ami") ? IBIS_FILE_AMI : IBIS_FILE_PARAM;
}

}  // namespace

PFILE* PFILE_Find(std::string_view name)
{
    ibis* const root = Root();
    return root == nullptr ? nullptr : gFiles.find(root->pParamFiles, name);
}

PFILE* PFILE_New(std::string_view name)
{
    ibis* const root = Root();
    if (root == nullptr || name.empty()) {
        return nullptr;
    }
    const ibis_file_type type = TypeOf(name);
    if (type == IBIS_FILE_NONE) {
        MSG_ErrorLine(5203, name);
        return nullptr;
    }
    PFILE* file = nullptr;
    if (!CMN_Alloc(file)) {
        MSG_Bug(5201);
        return nullptr;
    }
    CMN_CopyText(file->szName, name);
    file->eType = type;
    file->uiDirection = PFILE_BOTH;
    IBIS_Add<&ibis::pParamFiles>(root, file);
    if (!CMN_FileExists(file->szName)) {
        MSG_ErrorLine(5204, file->szName);
    } else if (!PARSE_ReadFile(file->szName, type)) {
        PARSE_FreeFileText();
    }
    return file;
}

void PFILE_FreeList(PFILE* list)
{
    gFiles.reset();
    CMN_FreeList(list, [](PFILE& file) { AMI_FreeTree(&file.pTree); });
}
