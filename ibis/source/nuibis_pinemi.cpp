#include "ibis/source/nuibis_pinemi.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_pin.h"

namespace
{

constexpr unsigned DOMAIN_LIMIT = 20;
constexpr unsigned NUMBER_LIMIT = 5;  // characters of clock_div and of a percentage
constexpr double WHOLE = 100.0;

// The lists that are being read, and the names in them.
LIST_Tail<PINEMI> gTail;
LIST_Repeats gPinNames;  // reset at the start of a list
LIST_Tail<PINDOMAIN> gDomainTail;
LIST_Index<PINDOMAIN, &PINDOMAIN::szDomain> gDomains;

void ReadClockDiv(PINEMI& row, std::string_view text)
{
    if (text.size() > NUMBER_LIMIT) {
        MSG_ErrorLine(4904, NUMBER_LIMIT);
    }
    if (CMN_Alloc(row.pdClockDiv)) {
        CMN_GetValueOrNA(text, "Pin EMI", "clock_div", row.pdClockDiv, &row.eClockDivStatus);
    }
}

void ReadRow(PINEMI& row, const CMN_TokenList& tokens)
{
    if (tokens.iStored < 1) {
        MSG_ErrorLine(4901);
        MSG_ErrorLine(4902);
        return;
    }
    CMN_ReplaceString(row.szPin, tokens[0], PIN_NAME_LIMIT, "pin_name");
    if (tokens.iStored < 2) {
        MSG_ErrorLine(4902);
        return;
    }
    if (!CMN_Equal(tokens[1], "NA")) {
        CMN_CheckReserved(tokens[1]);
    }
    CMN_ReplaceString(row.szDomain, tokens[1], DOMAIN_LIMIT, "domain_name");
    if (tokens.iStored < 3) {
        MSG_ErrorLine(4903);
        return;
    }
    ReadClockDiv(row, tokens[2]);
    if (tokens.iStored > 3) {
        MSG_ErrorLine(4905, tokens[3]);
    }
}

// The share of a domain; false if there is no number. A share out of range is told and kept.
bool ReadPercentage(std::string_view text, double* out)
{
    if (text.size() > NUMBER_LIMIT) {
        MSG_ErrorLine(4778, text, "Should be specified using at most 5 characters");
    }
    if (CMN_GetValue(text, out) == CMN_INVALID) {
        MSG_ErrorLine(4778, text, "Invalid Number");
        return false;
    }
    if (!(*out > 0.0) || *out > WHOLE) {
        MSG_ErrorLine(4778, text, "Should be greater than 0 and less than equal to 100");
    }
    return true;
}

void FreeDomain(PINDOMAIN& domain)
{
    CMN_Release(domain.pdPercentage);
}

}  // namespace

int PINEMI_ParseLine(std::string_view line, PINEMI** out)
{
    if (!CMN_Alloc(*out)) {
        MSG_ErrorLine(4910);
        MSG_ErrorLine(4900);
        return 0;
    }
    ReadRow(**out, CMN_Split(line, 4));
    return 1;
}

void PINEMI_Append(PINEMI*& list, PINEMI* row)
{
    if (list == nullptr) {
        gPinNames.reset();
    }
    for (unsigned repeats = gPinNames.add(row->szPin); repeats > 0; --repeats) {
        MSG_ErrorLine(4906, row->szPin);
    }
    gTail.append(list, row);
}

void PINEMI_Free(PINEMI* list)
{
    gPinNames.reset();
    CMN_FreeList(list, [](PINEMI& row) { CMN_Release(row.pdClockDiv); });
}

void PINEMI_ReadDomain(std::string_view line, PINDOMAINLIST& domains)
{
    const CMN_TokenList tokens = CMN_Split(line, 2);
    if (tokens.iFound != 2) {
        MSG_ErrorLine(4769, tokens.iFound, "Pin Domain EMI", 2);
    }
    if (tokens.iStored < 2) {
        return;
    }
    if (gDomains.find(domains.pFirst, tokens[0]) != nullptr) {
        MSG_ErrorLine(4777, tokens[0]);
        return;
    }
    PINDOMAIN* domain = nullptr;
    if (!CMN_Alloc(domain)) {
        MSG_Bug(4772, __FILE_NAME__, __LINE__);
        return;
    }
    CMN_ReplaceString(domain->szDomain, tokens[0], DOMAIN_LIMIT, "domain_name");
    if (!CMN_Alloc(domain->pdPercentage)) {
        MSG_Bug(4772, __FILE_NAME__, __LINE__);
    }
    if (domain->pdPercentage != nullptr && ReadPercentage(tokens[1], domain->pdPercentage)) {
        gDomainTail.append(domains.pFirst, domain);
    } else {
        FreeDomain(*domain);
        CMN_Free(domain);
    }
}

void PINEMI_FreeDomains(PINDOMAINLIST* domains)
{
    gDomains.reset();
    if (domains != nullptr) {
        CMN_FreeList(domains->pFirst, FreeDomain);
        CMN_Free(domains);
    }
}

void PINEMI_Check(const PINEMI* rows, const PINDOMAINLIST* domains, PIN* pins, const char* component)
try {
    if (ibis* root = nullptr; !IBIS_GetCurrent(&root)) {
        MSG_Bug(4907, __FILE_NAME__, __LINE__);
        return;
    }
    CMN_Set<std::string_view> used;
    for (const PINEMI* row = rows; row != nullptr; row = row->pNext) {
        used.insert(row->szDomain);
    }
    for (const PINDOMAIN* domain = domains == nullptr ? nullptr : domains->pFirst; domain != nullptr;
         domain = domain->pNext) {
        if (!used.contains(domain->szDomain)) {
            MSG_Error(4908, component, domain->szDomain);
        }
    }
    for (const PINEMI* row = rows; row != nullptr; row = row->pNext) {
        const char* const model = PIN_ModelOf(pins, row->szPin);
        if (model == nullptr) {
            MSG_Error(4909, component, row->szPin);
        } else if (!CMN_IsNotReserved(model)) {
            MSG_Error(4911, component, row->szPin, model);
        }
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the check falls away.
}
