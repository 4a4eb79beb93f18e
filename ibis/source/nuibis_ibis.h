// The root record of a read: the anchor of every list of a file, and the checks that run when its last line
// is read.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct HDR;
struct CMPNT;
struct nuibis_mdl;
struct EXTCIRCUIT;
struct submdl;
struct PKGMDL;
struct EBDMDL;
struct msel;
struct TESTDATA;
struct TESTLOAD;
struct PFILE;
struct EFILE;

/// What one file holds. Every list is linked through `pNext`, newest record first.
struct ibis {
    ibis* pNext;             ///< root made before this one
    HDR* pHeaders;           ///< [IBIS Ver] and the other header keywords; normally one
    CMPNT* pComponents;      ///< [Component]
    nuibis_mdl* pModels;     ///< [Model]
    EXTCIRCUIT* pCircuits;   ///< [External Circuit]
    submdl* pSubmodels;      ///< [Submodel]
    PKGMDL* pPackageModels;  ///< [Define Package Model]
    EBDMDL* pBoards;         ///< [Begin Board Description]
    msel* pModelSelectors;   ///< [Model Selector]
    TESTDATA* pTestData;     ///< [Test Data]
    TESTLOAD* pTestLoads;    ///< [Test Load]
    PFILE* pParamFiles;      ///< parameter files named by models
    EFILE* pCodeFiles;       ///< code files named by models
};

/// Pushes a record at the front of a list of the root: `IBIS_Add<&ibis::pModels>(root, model)`.
template <auto List, class T> void IBIS_Add(ibis* root, T* element)
{
    CMN_ASSERT(root != nullptr && element != nullptr);
    element->pNext = root->*List;
    root->*List = element;
}

/// Gives 1 and the head of a list of the root, or 0 on an empty list.
template <auto List, class T> int IBIS_Get(ibis* root, T** out)
{
    CMN_ASSERT(root != nullptr && out != nullptr);
    *out = root->*List;
    return *out != nullptr ? 1 : 0;
}

/// Makes a zeroed root, the current one from now on. 1, or error 4100 and 0.
int IBIS_Create();
/// Gives 1 and the root made last, or 0 if there is none. Within an IBIS_Scope it is the scope's root.
int IBIS_GetCurrent(ibis** out);

/// Makes the root of an earlier read the current one, under its version, while a query runs checks on it.
class IBIS_Scope
{
  public:
    IBIS_Scope(ibis* root, ibis_ver version);
    ~IBIS_Scope();
    IBIS_Scope(const IBIS_Scope&) = delete;
    IBIS_Scope& operator=(const IBIS_Scope&) = delete;

  private:
    ibis* mpFormer;
    ibis_ver meFormer;
};

/// Takes a root out of the list of roots and releases all that hangs from it.
void IBIS_Free(ibis* root);

/// The checks at the end of a file, by its type. `arg` is the depth of a nested board read.
void IBIS_Finish(const char* fileName, ibis_file_type type, int arg);
/// The cross-checks of a component file, on the current root. Their order is binding: messages come in it,
/// and some checks mark records that later ones read.
void IBIS_CheckAll();
