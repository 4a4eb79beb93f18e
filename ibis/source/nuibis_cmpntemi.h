// [Begin EMI Component] to [End EMI Component]: the electromagnetic-interference data of a component.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_keyword.h"

struct CMPNT;
struct PINEMI;
struct PINDOMAINLIST;

enum CMPNTEMI_Domain : std::int32_t {
    CMPNTEMI_UNSET = 0,  ///< not given, or not understood
    CMPNTEMI_ANALOG = 1,
    CMPNTEMI_DIGITAL = 2,
    CMPNTEMI_DIGITAL_ANALOG = 3,
};

/// Capacitances in F.
struct CMPNTEMI {
    CMPNTEMI_Domain eDomain;
    double* pdCpd;               ///< power dissipation capacitance
    double* pdC_Heatsink_gnd;    ///< of a heatsink that is connected to ground
    double* pdC_Heatsink_float;  ///< of a heatsink that is not connected
    PINEMI* pPinEmi;             ///< [Pin EMI], file order
    PINDOMAINLIST* pPinDomains;  ///< [Pin Domain EMI]; null until that keyword
};

/// A line of the block or of one of its tables. `text` of a keyword line is what follows the bracket;
/// `keyword` of a data line is the keyword in force.
void CMPNTEMI_Line(line_type lineType, nuibis_keyword keyword, std::string_view text, CMPNTEMI** emi);
/// Whether a block waits for its [End EMI Component].
bool CMPNTEMI_IsOpen();
/// No block is open from now on.
void CMPNTEMI_Close();
/// At the end of the file.
void CMPNTEMI_Finish(const CMPNT* component, const CMPNTEMI* emi);
/// Null is fine.
void CMPNTEMI_Free(CMPNTEMI* emi);
