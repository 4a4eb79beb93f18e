// Queries about the package model that a component names.

#include "ibis/interface/talibis.h"
#include "ibis/interface/talibis_print.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mtx.h"
#include "ibis/source/nuibis_pkgmdl.h"
#include "ibis/source/nuibis_row.h"
#include "ibis/source/nuibis_sect.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <unordered_map>

namespace
{

// In the order of the reports.
constexpr std::array MATRICES{&PKGMDL::pInductance, &PKGMDL::pCapacitance, &PKGMDL::pResistance};

bool HasMatrix(const PKGMDL& package)
{
    return package.pResistance != nullptr || package.pInductance != nullptr ||
           package.pCapacitance != nullptr;
}

std::span<char* const> PinNames(const PKGMDL& package)
{
    std::size_t count = 0;
    while (package.ppszPinNames != nullptr && count < package.uiPinCount &&
           package.ppszPinNames[count] != nullptr) {
        ++count;
    }
    return {package.ppszPinNames, count};
}

std::optional<std::size_t> PositionOf(const PKGMDL& package, std::string_view pin)
{
    const auto names = PinNames(package);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (pin == names[i]) {
            return i;
        }
    }
    return std::nullopt;
}

std::string PrintGiven(const double* value)
{
    return value == nullptr ? "0" : printNumber(*value);
}

void InsertSection(TalIbisListQueryData& list, std::size_t level, const SECT& section)
{
    insertRow(list, std::to_string(level));
    for (const double* value : {section.pdLen, section.pdL, section.pdC, section.pdR}) {
        insertRow(list, PrintGiven(value));
    }
}

// A Fork gives the row of its branch's first section, one level up. A branch that opens with a Fork of its
// own goes on with that one.
void InsertSections(TalIbisListQueryData& list, const PKGSECTNODE* node)
{
    std::vector<const PKGSECTNODE*> forks;
    for (;;) {
        while (node == nullptr) {
            if (forks.empty()) {
                return;
            }
            node = forks.back()->pNext;
            forks.pop_back();
        }
        if (node->eKind == PKGSECT_FORK) {
            forks.push_back(node);
            node = static_cast<const PKGSECTNODE*>(node->pData);
            if (node == nullptr || node->eKind == PKGSECT_FORK) {
                continue;
            }
        }
        InsertSection(list, forks.size(), *static_cast<const SECT*>(node->pData));
        node = node->pNext;
    }
}

// The value of a pin with itself, where the shape of the row tells its column.
std::string PrintDiagonal(const MTX& matrix, std::string_view pin)
{
    unsigned position = 0;
    const ROW* row = matrix.pRows;
    while (row != nullptr && pin != row->szPin) {
        row = row->pNext;
        ++position;
    }
    if (row == nullptr) {
        return "0";
    }
    const bool isFull = row->uiColumnCount != 1 && row->uiColumnCount == matrix.uiRowCount;
    const double* const own = isFull ? ROW_Column(row, position) : nullptr;
    return PrintGiven(own != nullptr ? own : ROW_Column(row, 0));
}

// Value of the row of pin `r` in the column of pin `c`; a position below 0 is a pin that the package lacks.
double ElementOf(const MTX& matrix, const ROW& row, int r, int c)
{
    const int size = static_cast<int>(matrix.uiRowCount);
    const int count = static_cast<int>(row.uiColumnCount);
    const auto at = [&row](int column) {
        const double* const value = ROW_Column(&row, static_cast<unsigned>(column));
        return value == nullptr ? 0.0 : *value;
    };
    if (c < 0) {
        return 0;
    }
    if (count == size && ROW_Column(&row, static_cast<unsigned>(c)) != nullptr) {
        return at(c);
    }
    if (matrix.eMatrixType != MTX_BANDED && matrix.eMatrixType != MTX_BANDED_WRAP) {
        return 0;
    }
    const int distance = c - r;
    if (distance >= 0 && distance < count) {
        return at(distance);
    }
    const bool wraps = r + count > size && c < r + count - size;
    return wraps ? at(distance + size) : 0;
}

std::vector<std::string> SplitNames(std::string_view text)
{
    std::vector<std::string> names;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        if (end > 0) {
            names.emplace_back(text.substr(0, end));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return names;
}

// Position in the package of each requested pin, -1 for none. A pin of the package answers one request.
std::vector<int> PositionsOf(const PKGMDL& package, const std::vector<std::string>& names)
{
    std::unordered_map<std::string_view, std::vector<std::size_t>> requests;
    for (std::size_t i = names.size(); i-- > 0;) {
        requests[names[i]].push_back(i);
    }
    std::vector<int> positions(names.size(), -1);
    const auto pins = PinNames(package);
    for (std::size_t p = 0; p < pins.size(); ++p) {
        if (const auto found = requests.find(pins[p]); found != requests.end() && !found->second.empty()) {
            positions[found->second.back()] = static_cast<int>(p);
            found->second.pop_back();
        }
    }
    return positions;
}

std::string PrintSubMatrix(const MTX& matrix, const std::vector<std::string>& names,
                           const std::vector<int>& positions)
{
    std::unordered_map<std::string_view, const ROW*> rows;
    for (const ROW* row = matrix.pRows; row != nullptr; row = row->pNext) {
        rows.try_emplace(row->szPin, row);
    }
    std::string text;
    for (std::size_t r = 0; r < names.size(); ++r) {
        const auto row = rows.find(names[r]);
        for (const int column : positions) {
            text += row == rows.end() ? "0.0"
                                      : printNumber(ElementOf(matrix, *row->second, positions[r], column));
            text += ',';
        }
    }
    return text;
}

}  // namespace

const PKGMDL* TalIbis::findPackageModel(const CMPNT* component) const
{
    return component == nullptr || component->szPackageModel[0] == '\0'
               ? nullptr
               : PKGMDL_Find(pIbis->pPackageModels, component->szPackageModel);
}

std::unordered_set<std::string_view> TalIbis::packagePinsOf(const CMPNT& component) const
{
    const PKGMDL* const package = findPackageModel(&component);
    if (package == nullptr) {
        return {};
    }
    const auto names = PinNames(*package);
    return {names.begin(), names.end()};
}

void TalIbis::getIbisPkgModelType(const char* component, TalIbisStringQueryData& result) const
{
    extendQuery(result, [&] {
        if (const PKGMDL* const package = findPackageModel(findComp(component)); package != nullptr) {
            result.setData(package->ppSections != nullptr ? "1" : HasMatrix(*package) ? "2" : "0");
        }
    });
}

void TalIbis::getIbisPkgModel(const char* component, const char* pin, TalIbisListQueryData& list) const
{
    if (component == nullptr || pin == nullptr) {
        return;
    }
    answerQuery(list, [&] {
        const PKGMDL* const package = findPackageModel(findComp(component));
        const auto position = package == nullptr ? std::nullopt : PositionOf(*package, pin);
        if (!position) {
            return;
        }
        // The path of the first pin is not read: hosts take that pin from the matrices.
        if (package->ppSections != nullptr && *position >= 1) {
            InsertSections(list, package->ppSections[*position]);
        } else if (HasMatrix(*package)) {
            insertRow(list, "0");
            insertRow(list, "0");
            for (const auto matrix : MATRICES) {
                if (package->*matrix != nullptr) {
                    insertRow(list, PrintDiagonal(*(package->*matrix), pin));
                }
            }
        }
    });
}

void TalIbis::getIbisPkgMatrixModel(const char* component, const char* pins, TalIbisListQueryData& list) const
{
    if (component == nullptr || pins == nullptr) {
        return;
    }
    answerQuery(list, [&] {
        const PKGMDL* const package = findPackageModel(findComp(component));
        if (package == nullptr) {
            return;
        }
        const std::vector<std::string> names = SplitNames(pins);
        const std::vector<int> positions = PositionsOf(*package, names);
        if (std::all_of(positions.begin(), positions.end(), [](int p) { return p < 0; })) {
            return;
        }
        for (const auto matrix : MATRICES) {
            if (package->*matrix != nullptr) {
                insertRow(list, PrintSubMatrix(*(package->*matrix), names, positions));
            }
        }
    });
}
