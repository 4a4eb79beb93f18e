#include "ibis/source/nuibis_cmpntemi.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_pinemi.h"

#include <algorithm>
#include <array>
#include <utility>

namespace
{

// Module state, valid between the two keywords of a block; CMPNTEMI_Close ends it.
CMPNTEMI* gpOpenEmi = nullptr;
bool gbPinEmiSeen = false;  // reset with each block

// Keyword lines -------------------------------------------------------------------------------------------

void RefuseText(std::string_view text)
{
    if (!text.empty()) {
        MSG_ErrorLine(4754, text);
    }
}

void OpenBlock(std::string_view text, CMPNTEMI*& emi)
{
    if (emi != nullptr) {
        MSG_ErrorLine(4753);
        CMPNTEMI_Free(std::exchange(emi, nullptr));
    }
    if (!CMN_Alloc(emi)) {
        MSG_ErrorLine(4763);
    }
    gpOpenEmi = emi;
    gbPinEmiSeen = false;
    RefuseText(text);
}

bool IsEmpty(const CMPNTEMI& emi)
{
    return emi.eDomain == CMPNTEMI_UNSET && emi.pdCpd == nullptr && emi.pdC_Heatsink_gnd == nullptr &&
           emi.pdC_Heatsink_float == nullptr && emi.pPinEmi == nullptr && emi.pPinDomains == nullptr;
}

void CloseBlock(std::string_view text)
{
    RefuseText(text);
    if (IsEmpty(*gpOpenEmi)) {
        MSG_WarningLine(4762);
    }
    gpOpenEmi = nullptr;
}

void OpenPinEmi(std::string_view text)
{
    if (std::exchange(gbPinEmiSeen, true)) {
        MSG_ErrorLine(4779);
        return;
    }
    if (text.empty()) {
        MSG_ErrorLine(4780);
        return;
    }
    const CMN_TokenList tokens = CMN_Split(text, 3);
    if (tokens.iStored > 2) {
        MSG_ErrorLine(4754, text.substr(static_cast<std::size_t>(tokens[2].data() - text.data())));
    }
    if (!CMN_Equal(tokens[0], "domain_name")) {
        MSG_ErrorLine(4781, "domain_name");
    }
    if (!CMN_Equal(tokens[1], "clock_div")) {
        MSG_ErrorLine(4782);
    }
}

void OpenPinDomains(std::string_view text)
{
    if (gpOpenEmi->pPinDomains != nullptr) {
        MSG_ErrorLine(4774);
        PINEMI_FreeDomains(std::exchange(gpOpenEmi->pPinDomains, nullptr));
    }
    if (!CMN_Alloc(gpOpenEmi->pPinDomains)) {
        MSG_Bug(4772, __FILE_NAME__, __LINE__);
    }
    const CMN_TokenList tokens = CMN_Split(text, 1);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(4775);
        return;
    }
    if (tokens[0] != "percentage") {
        MSG_ErrorLine(4776, tokens[0]);
    }
    if (tokens.iFound > 1) {
        MSG_ErrorLine(4769, tokens.iFound, "Pin Domain EMI", 1);
    }
}

// Data lines ----------------------------------------------------------------------------------------------

void ReadDomain(std::string_view text)
{
    static constexpr std::array<std::string_view, 3> words{"Analog", "Digital", "Digital_Analog"};
    if (gpOpenEmi->eDomain != CMPNTEMI_UNSET) {
        MSG_ErrorLine(4751, "Domain");
    }
    const int row = FIELD_ReadWord(text, "Domain", words, {4768, 0, 4769}, {4770, 4771});
    gpOpenEmi->eDomain = static_cast<CMPNTEMI_Domain>(row + 1);
}

struct Capacitance {
    std::string_view sName;
    double* CMPNTEMI::*ppdField;
    double* CMPNTEMI::*ppdOther;  // a heatsink is either grounded or floating
    MSG_Plain otherGiven;
};

constexpr std::array<Capacitance, 3> CAPACITANCES{{
    {"Cpd", &CMPNTEMI::pdCpd, nullptr, 0},
    {"C_Heatsink_gnd", &CMPNTEMI::pdC_Heatsink_gnd, &CMPNTEMI::pdC_Heatsink_float, 4764},
    {"C_Heatsink_float", &CMPNTEMI::pdC_Heatsink_float, &CMPNTEMI::pdC_Heatsink_gnd, 4765},
}};

void ReadNumber(std::string_view text, std::string_view name, double** field)
{
    static constexpr FIELD_ScalarCodes codes{4773, 4769, 4771, 0};
    if (*field != nullptr) {
        MSG_ErrorLine(4751, name);
        return;
    }
    FIELD_NewScalar(text, name, "EMI Component", codes, field);
    if (*field == nullptr) {
        MSG_Bug(4772, __FILE_NAME__, __LINE__);
    }
}

// The name ends at a blank only: a name that runs into its "=" is unknown.
void ReadSubparameter(std::string_view text)
{
    const std::string_view name = CMN_Split(text, 1)[0];
    if (name == "Domain") {
        ReadDomain(text);
        return;
    }
    const auto* const row = std::find_if(CAPACITANCES.begin(), CAPACITANCES.end(),
                                         [name](const Capacitance& c) { return c.sName == name; });
    if (row == CAPACITANCES.end()) {
        MSG_ErrorLine(4766);
        return;
    }
    if (row->ppdOther != nullptr && gpOpenEmi->*row->ppdOther != nullptr) {
        MSG_ErrorLine(row->otherGiven);
    }
    ReadNumber(text, name, &(gpOpenEmi->*row->ppdField));
}

void ReadPin(std::string_view text)
{
    PINEMI* row = nullptr;
    if (PINEMI_ParseLine(text, &row)) {
        PINEMI_Append(gpOpenEmi->pPinEmi, row);
    } else {
        MSG_ErrorLine(4782);
    }
}

void ReadPinDomain(std::string_view text)
{
    if (gpOpenEmi->pPinDomains != nullptr) {
        PINEMI_ReadDomain(text, *gpOpenEmi->pPinDomains);
    }
}

void ReadKeyword(nuibis_keyword keyword, std::string_view text)
{
    switch (keyword) {
    case KEY_END_EMI_COMPONENT:
        return CloseBlock(text);
    case KEY_PIN_EMI:
        return OpenPinEmi(text);
    case KEY_PIN_DOMAIN_EMI:
        return OpenPinDomains(text);
    default:
        MSG_BugLine(4757, __FILE_NAME__, __LINE__);
    }
}

void ReadData(nuibis_keyword keyword, std::string_view text)
{
    switch (keyword) {
    case KEY_BEGIN_EMI_COMPONENT:
        return ReadSubparameter(text);
    case KEY_PIN_EMI:
        return ReadPin(text);
    case KEY_PIN_DOMAIN_EMI:
        return ReadPinDomain(text);
    default:
        MSG_BugLine(4759, __FILE_NAME__, __LINE__);
    }
}

}  // namespace

void CMPNTEMI_Line(line_type lineType, nuibis_keyword keyword, std::string_view text, CMPNTEMI** emi)
{
    const bool isKeyword = lineType == LINE_KEYWORD;
    if (isKeyword && keyword == KEY_BEGIN_EMI_COMPONENT) {
        OpenBlock(text, *emi);
    } else if (gpOpenEmi == nullptr && isKeyword) {
        MSG_ErrorLine(4755);
    } else if (gpOpenEmi == nullptr) {
        MSG_ErrorLine(4756);
    } else if (isKeyword) {
        ReadKeyword(keyword, text);
    } else {
        ReadData(keyword, text);
    }
}

bool CMPNTEMI_IsOpen()
{
    return gpOpenEmi != nullptr;
}

void CMPNTEMI_Close()
{
    gpOpenEmi = nullptr;
}

void CMPNTEMI_Finish(const CMPNT* component, const CMPNTEMI* emi)
{
    PINEMI_Check(emi->pPinEmi, emi->pPinDomains, component->pPins, component->szName);
}

void CMPNTEMI_Free(CMPNTEMI* emi)
{
    gpOpenEmi = nullptr;
    if (emi == nullptr) {
        return;
    }
    for (const Capacitance& row : CAPACITANCES) {
        CMN_Release(emi->*row.ppdField);
    }
    PINEMI_Free(emi->pPinEmi);
    PINEMI_FreeDomains(emi->pPinDomains);
    CMN_Free(emi);
}
