#include "ibis/source/nuibis_ibis.h"

#include "ibis/source/nuibis_acdc.h"
#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_circuit.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_drvsh.h"
#include "ibis/source/nuibis_ebdmdl.h"
#include "ibis/source/nuibis_efile.h"
#include "ibis/source/nuibis_hdr.h"
#include "ibis/source/nuibis_limit.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_pkgmdl.h"
#include "ibis/source/nuibis_rcvth.h"
#include "ibis/source/nuibis_submdl.h"
#include "ibis/source/nuibis_testdata.h"
#include "ibis/source/nuibis_testload.h"

#include <array>

namespace
{

// All roots of the process, newest first: the current file's root is the head.
ibis* gpIbisList = nullptr;
// Root of the innermost IBIS_Scope; null outside of one.
ibis* gpScopeRoot = nullptr;

// The cross-checks of a component file -------------------------------------------------------------------

void CheckModels(ibis& root)
{
    if (root.pModels != nullptr) {
        RCVTH_CheckUse(root.pModels, root.pComponents, root.pModelSelectors);
        ACDC_CheckModels(root.pModels);
        LIMIT_CheckModels(root.pModels);
        DRVSH_CheckAll(root.pModels);
        ALGMOD_CheckModels(root.pModels);
    }
}

void CheckSelectors(ibis& root)
{
    if (root.pModelSelectors != nullptr) {
        MSEL_CheckAll(root.pModelSelectors);
    }
}

void CheckComponents(ibis& root)
{
    if (root.pComponents == nullptr) {
        MSG_Error(4101);
        return;
    }
    LIMIT_CheckComponents(root.pComponents);
    CMPNT_CheckAll(root.pComponents, root.pCircuits, root.pModels);
}

void CheckPackageModels(ibis& root)
{
    PKGMDL_CheckAll(root.pPackageModels);
}

void CheckTestData(ibis& root)
{
    if (root.pTestData != nullptr) {
        TESTDATA_CheckAll(root.pTestData);
    }
}

void CheckTestLoads(ibis& root)
{
    if (root.pTestLoads != nullptr) {
        TESTLOAD_CheckAll(root.pTestLoads);
    }
}

void CheckSubmodels(ibis& root)
{
    if (root.pSubmodels != nullptr) {
        MDL_CheckSubmodelUse(root.pModels, root.pSubmodels);
        LIMIT_CheckSubmodels(root.pSubmodels);
        ACDC_CheckClamps(root.pModels, root.pSubmodels);
    }
}

void CheckAddSubmodels(ibis& root)
{
    MDL_CheckAddSubmodels(root.pModels, root.pSubmodels);
}

void WarnUnreferenced(ibis& root)
{
    if (root.pModels != nullptr) {
        MDL_WarnUnreferenced(root.pModels);
    }
}

using Pass = void (*)(ibis& root);

// The order is binding: messages come in it, and a pass reads what an earlier one marked.
constexpr std::array PASSES{
    Pass{CheckModels},        Pass{CheckSelectors},    Pass{CheckComponents},
    Pass{CheckPackageModels}, Pass{CheckTestData},     Pass{CheckTestLoads},
    Pass{CheckSubmodels},     Pass{CheckAddSubmodels}, Pass{WarnUnreferenced},
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
    CIRCUIT_FreeList(root->pCircuits);
    SUBMDL_FreeList(root->pSubmodels);
    PKGMDL_FreeList(root->pPackageModels);
    EBDMDL_FreeList(root->pBoards);
    MSEL_FreeList(root->pModelSelectors);
    TESTDATA_FreeList(root->pTestData);
    TESTLOAD_FreeList(root->pTestLoads);
    PFILE_FreeList(root->pParamFiles);
    EFILE_FreeList(root->pCodeFiles);
    CMN_Free(root);
}

void IBIS_Finish(const char* fileName, ibis_file_type type, int arg)
{
    if (type == IBIS_FILE_IBS) {
        IBIS_CheckAll();
    } else if (type == IBIS_FILE_AMI) {
        ALGMOD_ReadAmiFile(fileName);
    } else if (ibis* root = nullptr; IBIS_GetCurrent(&root)) {
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
