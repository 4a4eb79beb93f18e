// [Test Load]: the fixture of [Test Data], two terminated networks with a transmission line between them and
// a receiver at the far one. From 4.0 on.

#pragma once

#include "ibis/source/nuibis_fixture.h"
#include "ibis/source/nuibis_keyword.h"

/// Capacitances in F, resistances and the impedance in Ohm, inductances in H, the delay in s, voltages in V.
/// Null: not given. What was given and cannot be read is 0.0.
struct TESTLOAD {
    TESTLOAD* pNext;
    char szName[124];
    FIXTURE_Type eTestLoadType;
    double* pdC1_near;
    double* pdRs_near;
    double* pdLs_near;
    double* pdC2_near;
    double* pdRp1_near;  ///< to V_term1
    double* pdRp2_near;  ///< to V_term2
    double* pdTd;        ///< delay of the line
    double* pdZo;        ///< impedance of the line
    double* pdRp1_far;
    double* pdRp2_far;
    double* pdC2_far;
    double* pdLs_far;
    double* pdRs_far;
    double* pdC1_far;
    rng* pV_term1;
    rng* pV_term2;
    double* pdR_diff_near;  ///< between the two lines of a differential load
    double* pdR_diff_far;
    char szReceiverModel[41];
    char szReceiverModelInv[41];
};

void TESTLOAD_Init();
void TESTLOAD_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void TESTLOAD_Leave(nuibis_keyword newCode);
void TESTLOAD_FreeList(TESTLOAD* list);

/// Exact comparison, first match of the list; null if absent. The list is whole by then.
TESTLOAD* TESTLOAD_Find(std::string_view name, TESTLOAD* list);

/// At the end of the file: the receiver models exist and receive.
void TESTLOAD_CheckAll(const TESTLOAD* list);
