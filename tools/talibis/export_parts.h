// The parts of an exported document, each made from the records of one family. Numbers are in SI units; what
// the file does not give, or gives as "NA", is null.

#pragma once

#include "ibis/source/nuibis_rng.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <vector>

class TalIbisAMI_Node;
struct CMPNT;
struct EBDMDL;
struct HDR;
struct PKGMDL;
struct crv;
struct msel;
struct nuibis_mdl;
struct submdl;

using json = nlohmann::ordered_json;

// A value, or null.
inline json ExportNumber(double value, numstat status)
{
    return status == NUM_VALUE && std::isfinite(value) ? json(value) : json();
}
inline json ExportNumber(const double* value)
{
    return value == nullptr ? json() : ExportNumber(*value, NUM_VALUE);
}
inline json ExportText(const char* text)
{
    return text == nullptr || *text == '\0' ? json() : json(text);
}
inline json ExportTriple(const rng* triple)
{
    return triple == nullptr ? json()
                             : json{{"typ", ExportNumber(triple->dTyp, triple->eTyp)},
                                    {"min", ExportNumber(triple->dMin, triple->eMin)},
                                    {"max", ExportNumber(triple->dMax, triple->eMax)}};
}

/// A column of a table: its name, and what a record gives for it.
template <class T> struct ExportColumn {
    const char* pszName;
    json (*get)(const T& record);
};

/// Records as one array for each column, all of one length.
template <class T, std::size_t N>
json ExportColumns(const std::vector<const T*>& records, const ExportColumn<T> (&columns)[N])
{
    json table = json::object();
    for (const ExportColumn<T>& column : columns) {
        json& cells = table[column.pszName] = json::array();
        for (const T* record : records) {
            cells.push_back(column.get(*record));
        }
    }
    return table;
}

/// Every record of a list by itself.
template <class T> json ExportEach(const std::vector<const T*>& records, json (*get)(const T& record))
{
    json list = json::array();
    for (const T* record : records) {
        list.push_back(get(*record));
    }
    return list;
}

json ExportHeader(const HDR& header);
json ExportComponent(const CMPNT& component);
json ExportSelector(const msel& selector);
json ExportModel(const nuibis_mdl& model);
json ExportSubmodel(const submdl& submodel);
json ExportPackageModel(const PKGMDL& package);
json ExportBoard(const EBDMDL& board);
/// The parameters of an algorithmic model below the root branch of their file.
json ExportParameters(const TalIbisAMI_Node& root);
