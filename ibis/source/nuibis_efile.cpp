#include "ibis/source/nuibis_efile.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"

namespace
{

constexpr int USABLE_BITS = 64;
constexpr std::string_view USABLE_PLATFORM = "linux";

LIST_Index<EFILE, &EFILE::szName, CMN_CaseBlindLess> gFiles;  // follows the list that was last looked into

ibis* Root()
{
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(5500, __FILE_NAME__, __LINE__);
    }
    return root;
}

}  // namespace

EFILE* EFILE_Find(std::string_view name)
{
    ibis* const root = Root();
    return root == nullptr ? nullptr : gFiles.find(root->pCodeFiles, name);
}

EFILE* EFILE_New(std::string_view name)
{
    ibis* const root = Root();
    if (root == nullptr) {
        return nullptr;
    }
    EFILE* file = nullptr;
    if (!CMN_Alloc(file)) {
        MSG_Bug(5501);
        return nullptr;
    }
    CMN_CopyText(file->szName, name);
    IBIS_Add<&ibis::pCodeFiles>(root, file);
    return file;
}

bool EFILE_CheckPlatform(EFILE* file, int bits, std::string_view platform)
{
    const std::string_view name = file->szName;
    if (name.empty()) {
        return false;
    }
    if (!CMN_FileExists(name)) {
        MSG_ErrorLine(5502, name);
        return false;
    }
    if (bits != USABLE_BITS || !CMN_Equal(platform, USABLE_PLATFORM)) {
        return false;
    }
    file->bUsable = true;
    return true;
}

void EFILE_FreeList(EFILE* list)
{
    gFiles.reset();
    CMN_FreeList(list);
}
