// Package models with their paths and matrices, and boards.

#include "ibis/source/nuibis_ebdmdl.h"
#include "ibis/source/nuibis_mpins.h"
#include "ibis/source/nuibis_mtx.h"
#include "ibis/source/nuibis_pkgmdl.h"
#include "ibis/source/nuibis_sect.h"
#include "tools/talibis/export_parts.h"
#include "tools/talibis/source_file.h"

#include <array>
#include <string>

namespace
{

// The columns of a path, which is a row for each of its elements; a branch stands between "Fork" and
// "Endfork".
class PathTable
{
  public:
    void add(const char* kind, const json& name = json(), const SECT* section = nullptr)
    {
        mColumns["kind"].push_back(kind);
        mColumns["name"].push_back(name);
        mColumns["Len"].push_back(valueOf(section, &SECT::pdLen));
        mColumns["L"].push_back(valueOf(section, &SECT::pdL));
        mColumns["R"].push_back(valueOf(section, &SECT::pdR));
        mColumns["C"].push_back(valueOf(section, &SECT::pdC));
    }
    const json& columns() const { return mColumns; }

  private:
    static json valueOf(const SECT* section, double* SECT::*value)
    {
        return section == nullptr ? json() : ExportNumber(section->*value);
    }

    json mColumns{{"kind", json::array()}, {"name", json::array()}, {"Len", json::array()},
                  {"L", json::array()},    {"R", json::array()},    {"C", json::array()}};
};

void AddElement(const PKGSECTNODE& node, PathTable& path)
{
    path.add("Section", json(), static_cast<const SECT*>(node.pData));
}

void AddElement(const ebdpathelement& element, PathTable& path)
{
    switch (element.eKind) {
    case EBDPATH_NODE: {
        const auto& node = *EBDPATH_Payload<const EBDNODE>(element);
        path.add("Node", std::string(node.szRefDes) + "." + node.szPin);
        break;
    }
    case EBDPATH_PIN:
        path.add("Pin", EBDPATH_Payload<const char>(element));
        break;
    case EBDPATH_SECTION:
        path.add("Section", json(), EBDPATH_Payload<const SECT>(element));
        break;
    default:
        path.add("NC");
    }
}

// Branches open and close along a stack: their depth is the file's.
template <class Element> json ExportPath(const Element* element, decltype(Element::eKind) fork)
{
    PathTable path;
    std::vector<const Element*> forks;
    while (element != nullptr || !forks.empty()) {
        if (element == nullptr) {
            path.add("Endfork");
            element = forks.back()->pNext;
            forks.pop_back();
        } else if (element->eKind == fork) {
            path.add("Fork");
            forks.push_back(element);
            element = static_cast<const Element*>(element->pData);
        } else {
            AddElement(*element, path);
            element = element->pNext;
        }
    }
    return path.columns();
}

json ExportType(MTX_Type type)
{
    static constexpr std::array<const char*, 5> WORDS{nullptr, "Banded_matrix", "Banded_matrix",
                                                      "Sparse_matrix", "Full_matrix"};
    return ExportText(WORDS[type]);
}

// The upper triangle as coordinates: however wide the matrix is, only what was given takes room.
json ExportMatrix(const MTX* matrix)
{
    if (matrix == nullptr) {
        return {};
    }
    json rows = json::array();
    json columns = json::array();
    json values = json::array();
    std::uint64_t i = 0;
    for (const ROW* row = matrix->pRows; row != nullptr; row = row->pNext, ++i) {
        for (unsigned k = 0; k < row->uiGiven; ++k) {
            const std::uint64_t place = row->puiColumns != nullptr ? row->puiColumns[k] : i + k;
            const bool wraps = matrix->eMatrixType == MTX_BANDED_WRAP && place >= matrix->uiRowCount;
            rows.push_back(i);
            columns.push_back(wraps ? place - matrix->uiRowCount : place);
            values.push_back(ExportNumber(row->pdValues + k));
        }
    }
    return {{"type", ExportType(matrix->eMatrixType)},
            {"bandwidth", matrix->bBandwidthSeen ? json(matrix->uiBandwidth) : json()},
            {"row", rows},
            {"column", columns},
            {"value", values}};
}

json ExportMerged(const MPIN& merged)
{
    json pins = json::array();
    for (int i = 0; i < merged.iCount; ++i) {
        pins.push_back(merged.ppszPins[i]);
    }
    return {{"pin", merged.szName}, {"merged", pins}};
}

json ExportBoardPath(const EBDPATH& path)
{
    return {{"name", path.szName}, {"elements", ExportPath(path.pHead, EBDPATH_FORK)}};
}

constexpr ExportColumn<EBDPIN> BOARD_PIN_COLUMNS[]{
    {"pin", [](const EBDPIN& pin) { return json(pin.szPin); }},
    {"signal_name", [](const EBDPIN& pin) { return ExportText(pin.szSignal); }},
};

constexpr ExportColumn<EBDREFDES> DESIGNATOR_COLUMNS[]{
    {"designator", [](const EBDREFDES& place) { return json(place.szRefDes); }},
    {"file", [](const EBDREFDES& place) { return ExportText(place.szFile); }},
    {"component", [](const EBDREFDES& place) { return ExportText(place.szComponent); }},
};

}  // namespace

json ExportPackageModel(const PKGMDL& package)
{
    const auto names = EntriesOf(package.ppszPinNames, package.uiPinCount);
    json pins = json::array();
    json paths = package.ppSections == nullptr ? json() : json::array();
    for (std::size_t i = 0; i < names.size(); ++i) {
        pins.push_back(names[i]);
        if (package.ppSections != nullptr) {
            paths.push_back(ExportPath<PKGSECTNODE>(package.ppSections[i], PKGSECT_FORK));
        }
    }
    return {{"name", package.szName},
            {"Manufacturer", ExportText(package.szManufacturer)},
            {"OEM", ExportText(package.szOEM)},
            {"Description", ExportText(package.szDescription)},
            {"Number Of Pins", package.uiPinCount},
            {"Number Of Sections", package.uiSectionCount},
            {"Pin Numbers", pins},
            {"Merged Pins", ExportEach(RecordsOf(package.pMergedPins), ExportMerged)},
            {"paths", paths},
            {"Resistance Matrix", ExportMatrix(package.pResistance)},
            {"Inductance Matrix", ExportMatrix(package.pInductance)},
            {"Capacitance Matrix", ExportMatrix(package.pCapacitance)}};
}

json ExportBoard(const EBDMDL& board)
{
    return {{"name", board.szName},
            {"Manufacturer", ExportText(board.szManufacturer)},
            {"Number Of Pins", board.uiPinCount},
            {"Pin List", ExportColumns(EntriesOf(board.ppPins, board.uiPinCount), BOARD_PIN_COLUMNS)},
            {"Path Description", ExportEach(RecordsOf(board.pPaths), ExportBoardPath)},
            {"Reference Designator Map", ExportColumns(InFileOrder(board.pRefDesMap), DESIGNATOR_COLUMNS)}};
}
