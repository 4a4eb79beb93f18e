// The header, the components with their pins, and the model selectors.

#include "ibis/source/nuibis_apkg.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_difpin.h"
#include "ibis/source/nuibis_hdr.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_pinmpg.h"
#include "ibis/source/nuibis_pkg.h"
#include "ibis/source/nuibis_reppin.h"
#include "ibis/source/nuibis_spinmpg.h"
#include "ibis/source/nuibis_sswch.h"
#include "tools/talibis/export_parts.h"
#include "tools/talibis/source_file.h"

namespace
{

constexpr ExportColumn<PIN> PIN_COLUMNS[]{
    {"pin", [](const PIN& pin) { return json(pin.szPin); }},
    {"signal_name", [](const PIN& pin) { return ExportText(pin.szSignal); }},
    {"model_name", [](const PIN& pin) { return ExportText(pin.szModel); }},
    {"R_pin", [](const PIN& pin) { return ExportNumber(pin.dRpin, pin.eRpin); }},
    {"L_pin", [](const PIN& pin) { return ExportNumber(pin.dLpin, pin.eLpin); }},
    {"C_pin", [](const PIN& pin) { return ExportNumber(pin.dCpin, pin.eCpin); }},
};

constexpr ExportColumn<PINMPG> MAPPING_COLUMNS[]{
    {"pin", [](const PINMPG& row) { return json(row.szPin); }},
    {"pulldown_ref", [](const PINMPG& row) { return ExportText(row.szPulldownRef); }},
    {"pullup_ref", [](const PINMPG& row) { return ExportText(row.szPullupRef); }},
    {"gnd_clamp_ref", [](const PINMPG& row) { return ExportText(row.szGndClampRef); }},
    {"power_clamp_ref", [](const PINMPG& row) { return ExportText(row.szPowerClampRef); }},
    {"ext_ref", [](const PINMPG& row) { return ExportText(row.szExtRef); }},
};

constexpr ExportColumn<DIFPIN> PAIR_COLUMNS[]{
    {"pin", [](const DIFPIN& pair) { return json(pair.szPin); }},
    {"inv_pin", [](const DIFPIN& pair) { return ExportText(pair.szInvPin); }},
    {"vdiff", [](const DIFPIN& pair) { return ExportNumber(pair.dVdiff, pair.eVdiff); }},
    {"tdelay_typ", [](const DIFPIN& pair) { return ExportNumber(pair.dTdelayTyp, pair.eTdelayTyp); }},
    {"tdelay_min", [](const DIFPIN& pair) { return ExportNumber(pair.dTdelayMin, pair.eTdelayMin); }},
    {"tdelay_max", [](const DIFPIN& pair) { return ExportNumber(pair.dTdelayMax, pair.eTdelayMax); }},
};

constexpr ExportColumn<REPPIN> REPEATER_COLUMNS[]{
    {"pin", [](const REPPIN& pair) { return json(pair.szPin); }},
    {"tx_non_inv_pin", [](const REPPIN& pair) { return ExportText(pair.szTxNonInvPin); }},
};

constexpr ExportColumn<SPINMPG> SERIES_COLUMNS[]{
    {"pin", [](const SPINMPG& row) { return json(row.szPin1); }},
    {"pin_2", [](const SPINMPG& row) { return ExportText(row.szPin2); }},
    {"model_name", [](const SPINMPG& row) { return ExportText(row.szModel); }},
    {"function_table_group", [](const SPINMPG& row) { return ExportText(row.szFunctionGroup); }},
};

constexpr ExportColumn<mselmodel> CHOICE_COLUMNS[]{
    {"model", [](const mselmodel& choice) { return json(choice.szName); }},
    {"description", [](const mselmodel& choice) { return ExportText(choice.szDescription); }},
};

json ExportGroups(const SSWCH& state)
{
    json groups = json::array();
    for (int i = 0; i < state.iGroupCount; ++i) {
        groups.push_back(state.ppszGroups[i]);
    }
    return {{"state", state.szState}, {"groups", groups}};
}

json ExportName(const APKG& package)
{
    return package.szName;
}

json ExportPackage(const PKG& package)
{
    return {{"R_pkg", ExportTriple(package.pRpkg)},
            {"L_pkg", ExportTriple(package.pLpkg)},
            {"C_pkg", ExportTriple(package.pCpkg)}};
}

json ExportLocation(CMPNT_Location location)
{
    return location == LOCATION_DIE ? json("Die") : location == LOCATION_PIN ? json("Pin") : json();
}

}  // namespace

json ExportHeader(const HDR& header)
{
    return {{"IBIS Ver", ExportText(header.szIbisVer)},       {"File Name", ExportText(header.szFileName)},
            {"File Rev", ExportText(header.szFileRev)},       {"Date", ExportText(header.szDate)},
            {"Source", ExportText(header.pszSource)},         {"Notes", ExportText(header.pszNotes)},
            {"Disclaimer", ExportText(header.pszDisclaimer)}, {"Copyright", ExportText(header.pszCopyright)}};
}

json ExportComponent(const CMPNT& component)
{
    return {{"name", component.szName},
            {"Manufacturer", ExportText(component.szManufacturer)},
            {"Package", component.pPackage == nullptr ? json() : ExportPackage(*component.pPackage)},
            {"Package Model", ExportText(component.szPackageModel)},
            {"Alternate Package Models", ExportEach(RecordsOf(component.pAltPackageModels), ExportName)},
            {"Si_location", ExportLocation(component.eSiLocation)},
            {"Timing_location", ExportLocation(component.eTimingLocation)},
            {"Pin", ExportColumns(RecordsOf(component.pPins), PIN_COLUMNS)},
            {"Pin Mapping", ExportColumns(RecordsOf(component.pPinMappings), MAPPING_COLUMNS)},
            {"Diff Pin", ExportColumns(RecordsOf(component.pDiffPins), PAIR_COLUMNS)},
            {"Repeater Pin", ExportColumns(RecordsOf(component.pRepeaterPins), REPEATER_COLUMNS)},
            {"Series Pin Mapping", ExportColumns(RecordsOf(component.pSeriesPinMappings), SERIES_COLUMNS)},
            {"Series Switch Groups", ExportEach(RecordsOf(component.pSeriesSwitchGroups), ExportGroups)}};
}

json ExportSelector(const msel& selector)
{
    return {{"name", selector.szName},
            {"models", ExportColumns(RecordsOf(selector.pModels), CHOICE_COLUMNS)}};
}
