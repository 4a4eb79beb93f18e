// [Pin EMI] and [Pin Domain EMI]: the tables within a component's block of electromagnetic-interference data.
// The first gives pins their power domain and clock divider, the second gives domains their share.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct PIN;

/// One row of [Pin EMI].
struct PINEMI {
    PINEMI* pNext;
    double* pdClockDiv;  ///< clock_div, 0.0 for "NA"; null when the column is missing
    numstat eClockDivStatus;
    char szPin[6];
    char szDomain[21];  ///< domain_name
};

/// One row of [Pin Domain EMI].
struct PINDOMAIN {
    char szDomain[24];     ///< domain_name, at most 20 characters
    double* pdPercentage;  ///< share of the domain in percent
    PINDOMAIN* pNext;
};

struct PINDOMAINLIST {
    PINDOMAIN* pFirst;  ///< file order
};

/// A data line of [Pin EMI]; 1 if a record was made. A row that breaks off is kept with what was read.
int PINEMI_ParseLine(std::string_view line, PINEMI** out);
/// Appends; told once for each row of the same pin that is there already (4906).
void PINEMI_Append(PINEMI*& list, PINEMI* row);
void PINEMI_Free(PINEMI* list);

/// A data line of [Pin Domain EMI].
void PINEMI_ReadDomain(std::string_view line, PINDOMAINLIST& domains);
/// Null is fine.
void PINEMI_FreeDomains(PINDOMAINLIST* domains);

/// At the end of the file: each domain has a pin, and each row names a pin of the component that drives or
/// receives. `domains` may be null.
void PINEMI_Check(const PINEMI* rows, const PINDOMAINLIST* domains, PIN* pins, const char* component);
