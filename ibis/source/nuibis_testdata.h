// [Test Data]: a driver model, a test load and the golden waveforms that the two are known to give, for the
// validation of models. From 4.0 on.

#pragma once

#include "ibis/source/nuibis_fixture.h"
#include "ibis/source/nuibis_keyword.h"

struct wvfrm;

struct TESTDATA {
    TESTDATA* pNext;
    char szName[124];
    FIXTURE_Type eTestDataType;
    char szDriverModel[41];
    char szDriverModelInv[41];
    char szTestLoad[126];  ///< name of a [Test Load]
    wvfrm* pRisingNear;    ///< at the driver's end of the load
    wvfrm* pFallingNear;
    wvfrm* pRisingFar;  ///< at the receiver's end
    wvfrm* pFallingFar;
    wvfrm* pDiffRisingNear;  ///< between the two lines of a differential load
    wvfrm* pDiffFallingNear;
    wvfrm* pDiffRisingFar;
    wvfrm* pDiffFallingFar;
};

void TESTDATA_Init();
void TESTDATA_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void TESTDATA_Leave(nuibis_keyword newCode);
void TESTDATA_FreeList(TESTDATA* list);

/// At the end of the file: the driver models and the load exist and suit the data.
void TESTDATA_CheckAll(const TESTDATA* list);
/// The same for the first test data of the current root that a model drives.
void TESTDATA_CheckDriver(std::string_view model);
