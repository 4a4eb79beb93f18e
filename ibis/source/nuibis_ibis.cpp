#include "ibis/source/nuibis_ibis.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ebdmdl.h"
#include "ibis/source/nuibis_hdr.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_pkgmdl.h"
#include "ibis/source/nuibis_rcvth.h"

#include <array>

namespace
{

// All roots of the process, newest first: the current file's root is the head.
ibis* gpIbisList = nullptr;
// Root of the innermost IBIS_Scope; null outside of one.
ibis* gpScopeRoot = nullptr;

void CheckReceivers(ibis& root)
{
    if (root.pModels != nullptr) {
        RCVTH_CheckUse(root.pModels, root.pComponents, root.pModelSelectors);
    }
}

void CheckComponents(ibis& root)
{
    if (root.pComponents == nullptr) {
        MSG_Error(4101);
        return;
    }
    CMPNT_CheckAll(root.pComponents, root.pCircuits, root.pModels);
}

void CheckPackageModels(ibis& root)
{
    PKGMDL_CheckAll(root.pPackageModels);
}

void WarnUnreferenced(ibis& root)
{
    if (root.pModels != nullptr) {
        MDL_WarnUnreferenced(root.pModels);
    }
}

using Pass = void (*)(ibis& root);

// The cross-checks of a component file, in their binding order.
constexpr std::array<Pass, 4> PASSES{
    CheckReceivers,
    CheckComponents,
    CheckPackageModels,
    WarnUnreferenced,
};

}  // namespace

int IBIS_Create()
{
    ibis* root = nullptr;
    if (!CMN_Alloc(root)) {
        MSG_Error(4100);
        return 0;
    }
    root->pNext = gpIbisList;
    gpIbisList = root;
    return 1;
}

int IBIS_GetCurrent(ibis** out)
{
    CMN_ASSERT(out != nullptr);
    *out = gpScopeRoot != nullptr ? gpScopeRoot : gpIbisList;
    return *out != nullptr ? 1 : 0;
}

IBIS_Scope::IBIS_Scope(ibis* root, ibis_ver version) : mpFormer(gpScopeRoot), meFormer(geIbisVersion)
{
    gpScopeRoot = root;
    geIbisVersion = version;
}

IBIS_Scope::~IBIS_Scope()
{
    gpScopeRoot = mpFormer;
    geIbisVersion = meFormer;
}

void IBIS_Free(ibis* root)
{
    CMN_ASSERT(root != nullptr);
    ibis** place = &gpIbisList;
    while (*place != nullptr && *place != root) {
        place = &(*place)->pNext;
    }
    if (*place == root) {
        *place = root->pNext;
    }
    HDR_FreeList(root->pHeaders);
    CMPNT_FreeList(root->pComponents);
    MDL_FreeList(root->pModels);
    PKGMDL_FreeList(root->pPackageModels);
    EBDMDL_FreeList(root->pBoards);
    MSEL_FreeList(root->pModelSelectors);
    CMN_Free(root);
}

void IBIS_Finish(const char*, ibis_file_type type, int arg)
{
    if (type == IBIS_FILE_IBS) {
        IBIS_CheckAll();
    } else if (ibis* root = nullptr; type != IBIS_FILE_AMI && IBIS_GetCurrent(&root)) {
        EBDMDL_CheckFile(root->pBoards, arg != 0);
    }
}

void IBIS_CheckAll()
{
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        return;
    }
    for (const Pass pass : PASSES) {
        pass(*root);
    }
}
