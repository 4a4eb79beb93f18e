// Queries about the package model that a component names.

#include "tests/queries.h"

namespace
{

std::string Head(std::string_view name)
{
    return "[Define Package Model] " + std::string(name) +
           "\n[Manufacturer] Acme\n[OEM] Acme\n[Description] Test\n";
}

// Four pins with the coupling of L in a full matrix, of C in a band and of R in a sparse one.
std::string Matrices(std::string_view name, std::string_view lastRowOfBand)
{
    return Head(name) + "[Number Of Pins] 4\n[Pin Numbers]\nP1\nP2\nP3\nP4\n[Model Data]\n" +
           "[Inductance Matrix] Full_matrix\n[Row] P1\n11 12 13 14\n[Row] P2\n22 23 24\n[Row] P3\n33 34\n"
           "[Row] P4\n44\n"
           "[Capacitance Matrix] Banded_matrix\n[Bandwidth] 1\n[Row] P1\n10 1\n[Row] P2\n20 2\n"
           "[Row] P3\n30 3\n[Row] P4\n" +
           std::string(lastRowOfBand) +
           "\n[Resistance Matrix] Sparse_matrix\n[Row] P1\nP1 100\nP4 5\n[Row] P2\nP2 200\n[Row] P3\nP3 300\n"
           "[Row] P4\nP4 400\n[End Model Data]\n[End Package Model]\n";
}

// A component for each kind of package model: matrices M, a wrapped band W, sections S, none in the file,
// none named.
const TalIbis& File()
{
    const auto component = [](const char* name, std::string_view package) {
        return Component(name, "P1 s1 NC\nP2 s2 NC\nX s3 NC\n",
                         package.empty() ? "" : "[Package Model] " + std::string(package) + "\n");
    };
    return *ReadHandle(Bare(
        component("UM", "M") + component("UW", "W") + component("US", "S") + component("UX", "absent") +
        component("U", "") + component("UP", "P") + Matrices("M", "40") + Matrices("W", "40 4") + Head("S") +
        "[Number Of Sections] 3\n[Number Of Pins] 3\n[Pin Numbers]\nP1 Len=1 L=1n /\n"
        "P2 Len=1 L=1n C=2p R=3 /\nFork\nLen=2 L=4n /\nLen=0 C=5p /\nEndfork\nLen=0 R=6 /\n"
        "P3 Len=0 R=1 /\nFork\nFork\nLen=0 R=2 /\nEndfork\nEndfork\n[End Package Model]\n" +
        Head("P") + "[Number Of Pins] 1\n[Pin Numbers]\nP1\n[End Package Model]\n"));
}

}  // namespace

TEST(PackageQueries, TypeOfTheModel)
{
    const TalIbis& file = File();
    // A component without a package model leaves what the record holds.
    TalIbisStringQueryData text;
    const std::vector<std::pair<const char*, const char*>> rows{{"U", "old"},  {"UM", "2"},   {"US", "1"},
                                                                {"UX", "1"},   {"U", "1"},    {"UP", "0"},
                                                                {"none", "0"}, {nullptr, "0"}};
    text.setData("old");
    text.setUnformatedError(QueryWarning, "kept");
    for (const auto& [component, type] : rows) {
        file.getIbisPkgModelType(component, text);
        EXPECT_EQ(text.getData(), type) << (component == nullptr ? "null" : component);
        EXPECT_EQ(text.getStatus(), QueryWarning);
    }
}

TEST(PackageQueries, SectionsOfAPin)
{
    const TalIbis& file = File();
    EXPECT_EQ(Rows(file, &TalIbis::getIbisPkgModel, "US", "P2"), (Lines{"0", "1", "1e-09", "2e-12", "3",  //
                                                                        "1", "2", "4e-09", "0",     "0",  //
                                                                        "1", "0", "0",     "5e-12", "0",  //
                                                                        "0", "0", "0",     "0",     "6"}));
    // A path may end with a branch, and a branch may begin with one.
    EXPECT_EQ(Rows(file, &TalIbis::getIbisPkgModel, "US", "P3"),
              (Lines{"0", "0", "0", "0", "1", "2", "0", "0", "0", "2"}));
    EXPECT_EQ(Rows(file, &TalIbis::getIbisPkgModel, "US", "P1"), Lines{}) << "the first pin has no path";
}

TEST(PackageQueries, OwnValuesOfAPin)
{
    const TalIbis& file = File();
    const auto rows = [&](const char* component, const char* pin) {
        return Rows(file, &TalIbis::getIbisPkgModel, component, pin);
    };
    EXPECT_EQ(rows("UM", "P1"), (Lines{"0", "0", "11", "10", "100"}));
    EXPECT_EQ(rows("UM", "P3"), (Lines{"0", "0", "33", "30", "300"}));
    EXPECT_EQ(rows("UM", "P4"), (Lines{"0", "0", "44", "40", "400"}));
    for (const auto& [component, pin] : {std::pair("UM", "X"), std::pair("UX", "P1"), std::pair("U", "P1"),
                                         std::pair("none", "P1"), std::pair("UP", "P1")}) {
        EXPECT_EQ(rows(component, pin), Lines{}) << component;
    }
    // Null names leave the record as it is.
    TalIbisListQueryData list;
    file.getIbisPkgModel("UM", "P1", list);
    file.getIbisPkgModel("UM", nullptr, list);
    file.getIbisPkgModel(nullptr, "P1", list);
    file.getIbisPkgMatrixModel("UM", nullptr, list);
    EXPECT_EQ(list.size(), 5U);
}

// The second request for a pin finds none left: its column is 0, and its row is that of a pin ahead of all.
TEST(PackageQueries, CouplingOfPins)
{
    const TalIbis& file = File();
    const auto rows = [&](const char* component, const char* pins) {
        return Rows(file, &TalIbis::getIbisPkgMatrixModel, component, pins);
    };
    EXPECT_EQ(rows("UM", "P1 P2 P1 X P4"),
              (Lines{"11,12,0,0,14,0,0,0,0,0,11,12,0,0,14,0.0,0.0,0.0,0.0,0.0,0,0,0,0,0,",
                     "10,1,0,0,0,0,20,0,0,0,1,0,0,0,0,0.0,0.0,0.0,0.0,0.0,0,0,0,0,40,",
                     "100,0,0,0,5,0,200,0,0,0,100,0,0,0,5,0.0,0.0,0.0,0.0,0.0,0,0,0,0,400,"}));
    EXPECT_EQ(rows("UM", "  P4   P3 "), (Lines{"0,0,0,0,", "40,0,3,30,", "400,0,0,300,"}));
    EXPECT_EQ(rows("UW", "P4 P1").at(1), "40,4,0,10,") << "the band goes on in the first column";
    for (const auto& [component, pins] :
         {std::pair("UM", "X Y"), std::pair("UM", ""), std::pair("US", "P1"), std::pair("UX", "P1"),
          std::pair("U", "P1"), std::pair("none", "P1")}) {
        EXPECT_EQ(rows(component, pins), Lines{}) << component;
    }
}

TEST(PackageQueries, PinsThatThePackageHas)
{
    const TalIbis& file = File();
    const auto names = [&](const char* component) {
        std::string text;
        const Lines table = Rows(file, &TalIbis::getPinModelList, component, "IBIS_Pkg");
        for (std::size_t i = 2; i < table.size(); ++i) {
            text += table[i].substr(0, 2);
        }
        return std::to_string(table.size()) + " " + text;
    };
    EXPECT_EQ(names("UM"), "4 P1P2");
    EXPECT_EQ(names("U"), "5 P1P2X ") << "without a package model every pin";
    EXPECT_EQ(names("UX"), "2 ") << "the title, and no pin of a package model that is not there";
}
