#include "ibis/source/nuibis_sinfo.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_rng.h"
#include "tests/builders.h"

namespace
{

// A file with a series model S, whose lines begin on line 22.
std::string SeriesFile(const std::string& type, const std::string& lines)
{
    return Bare(Component("U1", "1 S1 A\n") + Model("A") + "[Model] S\nModel_type " + type +
                "\nC_comp 5pF 4pF 6pF\n[Voltage Range] 3.3 3.0 3.6\n" + lines);
}

// The messages of its lines and blocks. A series model belongs to no pin, which is told at the end.
Lines Series(const std::string& type, const std::string& lines)
{
    Lines found = Unfolded(Messages(SeriesFile(type, lines)));
    EXPECT_TRUE(!found.empty() && found.back().starts_with("WARNING - Model S not referenced"));
    found.pop_back();
    return found;
}

const nuibis_mdl& ReadModel(const std::string& type, const std::string& lines)
{
    ReadHandle(SeriesFile(type, lines));
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return *root->pModels;
}

const std::string R = "[R Series] 8 6 12\n";
const std::string ROWS = "0 0 0 0\n1 1m 1m 1m\n";

}  // namespace

TEST(SeriesModel, WhereElementsMayStand)
{
    const std::string notSeries = "Keyword is valid only for Series and Series_switch models";
    const struct {
        const char* type;
        std::string lines;
        Lines messages;
    } rows[] = {
        {"Series", R + "[Series Current]\n" + ROWS, {}},
        {"Series",
         R + "data\n" + R,
         {"ERROR (line   23) - Expecting Keyword.  Invalid Line",
          "ERROR (line   24) - R_series Already Defined For Model 'S'"}},
        {"Series", R + "[On]\n", {"ERROR (line   23) - Keyword is valid only for Series_switch models"}},
        {"Series_switch", "[On]\n" + R + "[Off]\n" + R, {}},
        {"Series_switch",
         R + "[Off]\n" + R,
         {"ERROR (line   22) - No preceding [On] or [Off] keyword found. Assuming [On]"}},
        {"Series_switch",
         "[On] now\n" + R + "[Off]\n" + R + "[On]\n[C Series] 1p 1p 1p\n",
         {"ERROR (line   22) - Incorrect Number of Line Items (2) For [On]: Expecting 1",
          "ERROR (line   26) - [On] Series Info: Already Defined for this model"}},
        {"Series_switch",
         "[On]\n" + R + "[Voltage Range] 1 1 1\n[POWER Clamp Reference] 1 1 1\n[Off]\n" + R,
         {"ERROR (line   24) - Voltage Range Already Defined For Model 'S'",
          "ERROR (line   25) - Model 'S' is of type Series_switch. POWER Clamp Reference should be defined "
          "before the [On] and [Off] sections"}},
        {"Input\nVinl = 1\nVinh = 2",
         R + "[Series Current]\n0 0 0 0\n[Series MOSFET]\nVds = 1\n",
         {"ERROR (line   24) - " + notSeries, "ERROR (line   25) - " + notSeries,
          "ERROR (line   26) - " + notSeries, "ERROR (line   27) - " + notSeries,
          "ERROR (line   28) - " + notSeries}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Series(row.type, row.lines), row.messages) << row.lines;
    }
}

TEST(SeriesModel, SetsOfElements)
{
    const nuibis_mdl& model = ReadModel("Series_switch", "[L Series] 1n 1n 1n\n[Off]\n[Rl Series] 2 2 2\n"
                                                         "[On]\n[Rc Series] 3 3 3\n[Lc Series] 4n 4n 4n\n");
    EXPECT_EQ(model.pOn->pLSeries, nullptr);  // was on the set that [On] replaced
    EXPECT_EQ(model.pOn->pRcSeries->dTyp, 3.0);
    EXPECT_EQ(model.pOn->pLcSeries->dTyp, 4e-9);
    EXPECT_EQ(model.pOff->pRlSeries->dTyp, 2.0);
    EXPECT_EQ(ReadModel("Series", "[TTgnd] 1n 1n 1n\n").pOn, nullptr);
}

TEST(SeriesModel, SenseOfTheCurrent)
{
    EXPECT_EQ(Series("Series", "[Series Current]\n0 1m 0 0\n1 0 0 0\n[Series MOSFET]\nVds = 1\n" + ROWS),
              Lines{});
    EXPECT_EQ(Series("Series", "[Series MOSFET]\nVds = 1\n0 1m 0 0\n1 0 0 0\n"),
              (Lines{"WARNING - Model S: Series_MOSFET has Decreasing Current"}));
    EXPECT_EQ(Series("Series", "[Series Current]\n0 0 0 0\n"),
              (Lines{"ERROR - Require at least 2 Voltage Points for Series_Current Beginning at Line 22"}));
}

TEST(SeriesMosfet, FirstLineGivesTheVoltage)
{
    const std::string at = "ERROR (line   23) - ";
    const std::string missing = "ERROR - Model S: Vds not specified for [Series MOSFET] defined on line 22";
    const struct {
        const char* line;
        Lines messages;
    } rows[] = {
        {"Vds = 0.0", {}},
        {"Vds=1V", {}},
        {"Vds = 1n5", {}},
        {"Vds = -1", {"ERROR - Model S: Vds should be >= 0 for [Series MOSFET] defined on line 22"}},
        {"-1 0 0 0", {at + "Unknown data line in Series_MOSFET", missing}},
        {"vds = 1", {at + "Unknown data line in Series_MOSFET", missing}},
        {"Vds 1", {at + "Invalid Vds Line"}},
        {"Vds : 1", {at + "Invalid Vds Line"}},
        {"Vds = 1 2", {at + "Incorrect Number of Line Items (4) For Vds: Expecting 3"}},
        {"Vds = x", {at + "Invalid Vds Value (\"x\")"}},
        {"Vds = 1\nVds = 2",
         {"ERROR (line   24) - No maximum Value Was Provided for Series_MOSFET",
          "ERROR (line   24) - Invalid Voltage Value (\"Vds\")",
          "ERROR (line   24) - Invalid Typical Value (\"=\")",
          "WARNING (line   25) - Value 0.000000e+00 repeated in the First Column",
          "NOTE (line   26) - Series_MOSFET Minimum data is non-monotonic"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Series("Series", "[Series MOSFET]\n" + std::string(row.line) + "\n" + ROWS), row.messages)
            << row.line;
    }
    EXPECT_EQ(
        Series("Series", "[Series MOSFET] x\nVds = 1\n" + ROWS),
        (Lines{"ERROR (line   22) - Incorrect Number of Line Items (2) For Series_MOSFET: Expecting 1",
               "ERROR (line   22) - Incorrect Number of Line Items (2) For Series_MOSFET: Expecting 1"}));
    std::string many;
    for (int i = 0; i < 102; ++i) {
        many += "[Series MOSFET]\nVds = " + std::to_string(i) + "\n" + ROWS;
    }
    EXPECT_EQ(Series("Series", many),
              (Lines{"ERROR (line  422) - More than 100 [Series_MOSFET]s are defined",
                     "ERROR (line  426) - More than 100 [Series_MOSFET]s are defined"}));
}

TEST(SeriesModel, ElementsThatNeedEachOther)
{
    const struct {
        std::string lines;
        const char* label;
        Lines messages;
    } rows[] = {
        {R, "[On]", {}},
        {"[Rl Series] 1 1 1\n",
         "",
         {"ERROR - Model S : No series data found",
          "ERROR - Model S : Rl_series cannot be specified if L_series is not specified"}},
        {R + "[Rc Series] 1 1 1\n[Lc Series] 1n 1n 1n\n",
         "[On]",
         {"ERROR - Model S [On]: Rc_series cannot be specified if C_series is not specified",
          "ERROR - Model S [On]: Lc_series cannot be specified if C_series is not specified"}},
        {"[L Series] 1n 1n 1n\n[Rl Series] 1 1 1\n[C Series] 1p 1p 1p\n[Rc Series] 1 1 1\n", "[Off]", {}},
        {"[Series MOSFET]\nVds = 1\n" + ROWS,
         "[Off]",
         {"ERROR - Model S: [Series_MOSFET] is not allowed in conjunction with the [Off] keyword"}},
    };
    for (const auto& row : rows) {
        const nuibis_mdl& model = ReadModel("Series", row.lines);
        EXPECT_EQ(Unfolded(MessagesOf([&] { SINFO_Check(model.pOn, "S", row.label); })), row.messages)
            << row.lines;
    }
}

TEST(SeriesMosfet, VoltagesDiffer)
{
    const auto repeats = [](const Lines& voltages) {
        std::string lines;
        for (const std::string& voltage : voltages) {
            lines += "[Series MOSFET]\n" + voltage + "\n" + ROWS;
        }
        const nuibis_mdl& model = ReadModel("Series", lines);
        return Unfolded(MessagesOf([&] { SMOS_CheckVds(model.pOn->pSeriesMosfet, "S", "[On]"); }));
    };
    const auto at = [](const std::string& value) {
        return "ERROR - Model S [On]: Found two Series_MOSFETs with identical Vds value " + value;
    };
    EXPECT_EQ(repeats({"Vds = 1", "Vds = 1.000000001", "Vds = 2", "none", "none"}), Lines{});
    EXPECT_EQ(repeats({"Vds = 1", "Vds = 1.0000000001"}), (Lines{at("1.000000e+00")}));
    // Every later match is told, in the order of the first of each pair.
    EXPECT_EQ(repeats({"Vds = 2", "Vds = 1", "none", "Vds = 2.0000000009", "Vds = 1.9999999992", "Vds = 1"}),
              (Lines{at("2.000000e+00"), at("2.000000e+00"), at("1.000000e+00")}));
    EXPECT_EQ(repeats({"Vds = 0", "Vds = -0", "Vds = inf", "Vds = inf", "Vds = nan"}),
              (Lines{at("0.000000e+00")}));
}
