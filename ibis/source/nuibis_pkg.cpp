#include "ibis/source/nuibis_pkg.h"

#include <algorithm>
#include <array>

namespace
{

struct Parameter {
    std::string_view sName;
    rng* PKG::*ppField;
    MSG_Plain duplicate;
    MSG_Text1 required;  // (component)
};

constexpr std::array<Parameter, 3> PARAMETERS{{
    {"R_pkg", &PKG::pRpkg, 1203, 1213},
    {"L_pkg", &PKG::pLpkg, 1204, 1215},
    {"C_pkg", &PKG::pCpkg, 1205, 1217},
}};

// A corner may be "NA"; a corner that is not there at all, or unreadable, is told.
void CheckCorners(const rng& values)
{
    if (values.eTyp != NUM_VALUE) {
        MSG_ErrorLine(1209);
    }
    if (values.eMin == NUM_ABSENT) {
        MSG_ErrorLine(1210);
    }
    if (values.eMax == NUM_ABSENT) {
        MSG_ErrorLine(1211);
    }
}

}  // namespace

PKG* PKG_Create()
{
    PKG* package = nullptr;
    if (!CMN_Alloc(package)) {
        MSG_ErrorLine(1200);
    }
    return package;
}

void PKG_Line(PKG* package, std::string_view line)
{
    if (CMN_IsSpace(line.front())) {
        MSG_ErrorLine(1201);
    }
    const CMN_TokenList tokens = CMN_Split(line, 4);
    if (tokens.iFound != 4) {
        MSG_ErrorLine(1202, 4, tokens.iFound);
        return;
    }
    const auto* const parameter = std::find_if(PARAMETERS.begin(), PARAMETERS.end(), [&](const Parameter& p) {
        return CMN_Equal(p.sName, tokens[0]);
    });
    if (parameter == PARAMETERS.end()) {
        MSG_ErrorLine(1206);
        return;
    }
    rng*& field = package->*parameter->ppField;
    if (field != nullptr) {
        MSG_ErrorLine(parameter->duplicate);
        return;
    }
    CMN_SkipToken(line);
    rng* values = nullptr;
    if (!RNG_Read(line, parameter->sName, &values, true)) {
        RNG_Free(values);
        MSG_ErrorLine(1207, parameter->sName);
        return;
    }
    field = values;
    CheckCorners(*values);
}

void PKG_CheckRequired(const PKG* package, const char* component)
{
    if (package == nullptr) {
        MSG_Error(519, component);
        return;
    }
    for (const Parameter& parameter : PARAMETERS) {
        if (package->*parameter.ppField == nullptr) {
            MSG_Error(parameter.required, component);
        }
    }
}

void PKG_Free(PKG* package)
{
    if (package != nullptr) {
        for (const Parameter& parameter : PARAMETERS) {
            RNG_Free(package->*parameter.ppField);
        }
        CMN_Free(package);
    }
}
