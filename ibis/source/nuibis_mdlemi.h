// [Begin EMI Model] to [End EMI Model]: the electromagnetic-interference data of a model.

#pragma once

#include "ibis/source/nuibis_cmn.h"

enum MDLEMI_Domain : std::int32_t {
    MDLEMI_DOMAIN_UNSET = 0,  ///< not given, or not understood
    MDLEMI_ANALOG = 1,
    MDLEMI_DIGITAL = 2,
};

enum MDLEMI_Type : std::int32_t {
    MDLEMI_TYPE_UNSET = 0,  ///< not given, or not understood
    MDLEMI_FERRITE = 1,
    MDLEMI_NOT_A_FERRITE = 2,
};

struct MDLEMI {
    MDLEMI_Domain eDomain;
    MDLEMI_Type eModelEmiType;
};

/// The keyword line, which still begins with "[". A block that is there already is replaced.
void MDLEMI_Init(std::string_view text, MDLEMI** emi);
/// A data line of the block. Null is fine; an unknown word passes without a message.
void MDLEMI_Line(std::string_view text, MDLEMI* emi);
