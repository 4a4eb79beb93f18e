#include "ibis/source/nuibis_submdl.h"

#include "ibis/source/nuibis_corner.h"
#include "ibis/source/nuibis_crv.h"
#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_idly.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_smspec.h"
#include "ibis/source/nuibis_wvfrm.h"

#include <algorithm>
#include <array>

namespace
{

constexpr unsigned NAME_LIMIT = 40;  // in all versions

// Module state, reset by SUBMDL_Init.
submdl* gpCurSubmodel = nullptr;            // open submodel, null outside the group
nuibis_keyword geSubmodelKeyword = NOT_KEY;  // keyword whose lines are being read

LIST_Index<submdl, &submdl::szName> gSubmodels;  // follows the list that was last looked into

// [Submodel] ----------------------------------------------------------------------------------------------

void ReadName(std::string_view text)
{
    CMN_SkipKeyword(text);
    const CMN_TokenList tokens = CMN_Split(text, 1);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(2410);
        return;
    }
    if (tokens.iFound > 1) {
        MSG_ErrorLine(2411, tokens.iFound, "Submodel", 1);
    }
    if (!FIELD_SetName(gpCurSubmodel->szName, tokens[0], NAME_LIMIT, 2412)) {
        return;
    }
    const std::string_view name = gpCurSubmodel->szName;
    if (!CMN_IsNotReserved(name)) {
        MSG_ErrorLine(2413, name);
    }
    if (SUBMDL_Find(name, gpCurSubmodel->pNext) != nullptr) {
        MSG_ErrorLine(2414, name);
    }
}

void ReadSubparameter(std::string_view text)
{
    static constexpr std::array<std::string_view, 3> words{"Dynamic_clamp", "Bus_hold", "Fall_back"};
    std::string_view rest = text;
    const std::string_view name = CMN_NextTokenDelim(rest, '=');
    if (name != "Submodel_type") {
        MSG_ErrorLine(2416);
        return;
    }
    if (gpCurSubmodel->eSubmodelType != SUBMDL_UNSEEN) {
        MSG_ErrorLine(2417, name, gpCurSubmodel->szName);
        return;
    }
    const std::size_t admitted = geIbisVersion < IBIS_VER_4 ? 2 : words.size();
    const int row =
        FIELD_ReadWord(text, name, std::span(words).first(admitted), {2418, 2419, 2420}, {2421, 2422});
    gpCurSubmodel->eSubmodelType =
        row < 0 ? SUBMDL_NO_TYPE : static_cast<submdl_type>(SUBMDL_DYNAMIC_CLAMP + row);
}

void CloseSubparameters()
{
    if (gpCurSubmodel->eSubmodelType == SUBMDL_UNSEEN) {
        MSG_Error(2423, gpCurSubmodel->szName, "Submodel_type");
    }
}

// The keywords behind it ----------------------------------------------------------------------------------

void OpenSpec(std::string_view text)
{
    const submdl& s = *gpCurSubmodel;
    if (s.pPullup != nullptr || s.pPulldown != nullptr || s.pPowerClamp != nullptr || s.pGndClamp != nullptr ||
        s.pGndPulse != nullptr || s.pPowerPulse != nullptr || s.pRamp != nullptr || s.pRising != nullptr ||
        s.pFalling != nullptr) {
        MSG_ErrorLine(2406);
    }
    SMSPEC_Open(text, &gpCurSubmodel->pSpec);
}

void ReadSpecLine(std::string_view text)
{
    SMSPEC_Line(text, gpCurSubmodel->pSpec, gpCurSubmodel->szName);
}

void CloseSpec()
{
    SMSPEC_Close(gpCurSubmodel->pSpec, gpCurSubmodel->szName);
}

// One of each pulse table, a later one taking the place of the former.
template <wvfrm* submdl::*Field> void OpenPulse(std::string_view text, MSG_Plain repeated, std::string_view label)
{
    wvfrm*& field = gpCurSubmodel->*Field;
    if (field != nullptr) {
        MSG_ErrorLine(repeated);
        WVFRM_Free(field);
        field = nullptr;
    }
    WVFRM_Open(text, field, label);
}

void OpenGndPulse(std::string_view text)
{
    OpenPulse<&submdl::pGndPulse>(text, 2404, "GND Pulse");
}

void OpenPowerPulse(std::string_view text)
{
    OpenPulse<&submdl::pPowerPulse>(text, 2405, "POWER Pulse");
}
