#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_limit.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_node.h"
#include "tests/builders.h"

#include <array>

namespace
{

Lines With(std::string_view part, const std::string& body)
{
    return Unfolded(MessagesWith(part, Ibs(body)));
}

}  // namespace

TEST(LimitsOfModels, Capacitances)
{
    const auto of = [](const std::string& line) {
        return With("out of expected range", Edit(Model("M"), {{"C_comp 5pF 4pF 6pF", line}}));
    };
    const std::string range = "pF out of expected range (0pF, 1000pF)  ";
    EXPECT_EQ(of("C_comp 1nF 0 1nF"), Lines{});
    EXPECT_EQ(of("C_comp -1pF NA 1.01nF"), (Lines{"WARNING - Model 'M': C_comp TYP value -1" + range,
                                                  "WARNING - Model 'M': C_comp MAX value 1010" + range}));
    for (const char* name : {"C_comp_pullup", "C_comp_pulldown", "C_comp_power_clamp", "C_comp_gnd_clamp"}) {
        EXPECT_EQ(of("C_comp 5pF 4pF 6pF\n" + std::string(name) + " 1pF 1pF 2nF"),
                  Lines{"WARNING - Model 'M': " + std::string(name) + " MAX value 2000" + range})
            << name;
    }
}

TEST(LimitsOfModels, RampTimes)
{
    const auto of = [](const std::string& rise, const std::string& fall) {
        return With("Ramptime",
                    Edit(Driver("D"), {{"dV/dt_r 0.99/1n 0.9/1.5n 1.08/0.8n", "dV/dt_r " + rise},
                                       {"dV/dt_f 0.99/1n 0.9/1.5n 1.08/0.8n", "dV/dt_f " + fall}}));
    };
    const std::string large = " unusually large ( > 1.000e+06nsec )";
    EXPECT_EQ(of("1/1m 1/1m 1/1m", "1/1m NA NA"), Lines{});
    EXPECT_EQ(of("1/1m NA 1/1.1m", "1/2 1/1n 1/1n"),
              (Lines{"WARNING - Model 'D': MAX Rising Ramptime 1.100e+06nsec" + large,
                     "WARNING - Model 'D': TYP Falling Ramptime 2.000e+09nsec" + large}));
    EXPECT_EQ(With("Ramptime", Model("M") + "[Submodel] S\nSubmodel_type Fall_back\n[Ramp]\ndV/dt_r 1/1m "
                                            "1/1n 1/1n\ndV/dt_f 1/2m NA NA\n"),
              Lines{"WARNING - Sub Model 'S': TYP Falling Ramptime 2.000e+06nsec" + large});
}

TEST(LimitsOfModels, TablesThatADriverOughtToHave)
{
    const std::string start = "WARNING - [Model] M has no description of the buffer's ";
    const std::string silenced = "         can be silenced by ";
    const Lines noPullup{
        start + "high state\n         DC drive characteristics (no [Pullup] table).  This warning\n" +
        silenced + "using an open drain Model_type or by\n         adding a [Pullup] table."};
    const Lines noPulldown{
        start + "low state DC\n         drive characteristics (no [Pulldown] table).  This warning\n" +
        silenced + "using an open source Model_type or by\n         adding a [Pulldown] table."};
    const Lines openLow{
        start + "low state DC\n         drive characteristics (no [Pulldown] table).  This warning\n" +
        silenced + "changing the Model_type or by adding a\n         [Pulldown] table."};
    const Lines openHigh{
        start + "high state\n         DC drive characteristics (no [Pullup] table).  This warning\n" +
        silenced + "changing the Model_type or by adding a\n         [Pullup] table."};
    const auto of = [](const std::string& type, const std::string& keyword) {
        const std::string table = keyword.empty() ? "" : "[" + keyword + "]\n0 0 0 0\n1 0 0 0\n";
        return With("no description", Edit(Model("M", table), {{"Input", type}}));
    };
    for (const char* type : {"Output", "I/O", "3-state", "Output_ECL", "I/O_ECL", "3-state_ECL"}) {
        EXPECT_EQ(of(type, "Pulldown"), noPullup) << type;
        EXPECT_EQ(of(type, "Pullup"), noPulldown) << type;
        EXPECT_EQ(of(type, ""), (Lines{noPullup.front(), noPulldown.front()})) << type;
    }
    for (const char* type : {"Open_drain", "I/O_open_drain", "Open_sink", "I/O_open_sink"}) {
        EXPECT_EQ(of(type, "Pulldown"), Lines{}) << type;
        EXPECT_EQ(of(type, ""), openLow) << type;
    }
    for (const char* type : {"Open_source", "I/O_open_source"}) {
        EXPECT_EQ(of(type, "Pullup"), Lines{}) << type;
        EXPECT_EQ(of(type, ""), openHigh) << type;
    }
    for (const char* type : {"Input", "Terminator", "Series", "Output_diff"}) {
        EXPECT_EQ(of(type, ""), Lines{}) << type;
    }
}

TEST(LimitsOfComponents, PackageValues)
{
    const auto of = [](const std::string& from, const std::string& to) {
        return Unfolded(Messages(Edit(Ibs(Model("M")), {{from, to}})));
    };
    const std::string ohms = " Ohms not within expected range (0 Ohms, 50 Ohms)";
    EXPECT_EQ(of("R_pkg 50m 40m 60m", "R_pkg 50 0 50"), Lines{});
    EXPECT_EQ(of("R_pkg 50m 40m 60m", "R_pkg 1 -1 50.5"),
              (Lines{"WARNING - CMPT 'U1': Rpkg MIN value -1" + ohms,
                     "WARNING - CMPT 'U1': Rpkg MAX value 50.5" + ohms}));
    EXPECT_EQ(of("R_pkg 50m 40m 60m", "R_pkg 50m 60m 40m"),
              Lines{"WARNING - CMPT 'U1': Rpkg Max value < Min value"});
    EXPECT_EQ(of("L_pkg 2nH 1nH 3nH", "L_pkg 2nH 1nH 1uH"), Lines{});
    EXPECT_EQ(of("L_pkg 2nH 1nH 3nH", "L_pkg 2nH 3nH 1nH"),
              Lines{"WARNING - CMPT 'U1': Lpkg Max value < Min value"});
    EXPECT_EQ(of("L_pkg 2nH 1nH 3nH", "L_pkg 1.5uH NA NA"),
              Lines{"WARNING - CMPT 'U1': Lpkg TYP value 1500nH not within expected range (0nH, 1000nH)"});
    EXPECT_EQ(of("C_pkg 1pF 0.8pF 1.2pF", "C_pkg 1pF 1.2pF 0.8pF"),
              Lines{"WARNING - CMPT 'U1': Cpkg Max value < Min value"});
    EXPECT_EQ(of("C_pkg 1pF 0.8pF 1.2pF", "C_pkg 1.5nF 1nF 2nF"),
              (Lines{"WARNING - CMPT 'U1': Cpkg TYP value 1500pF not within expected range (0pF, 1000pF)",
                     "WARNING - CMPT 'U1': Cpkg MAX value 2000pF not within expected range (0pF, 1000pF)"}));
}

TEST(LimitsOfComponents, PinValues)
{
    const auto of = [](const std::string& values) {
        return Unfolded(Messages(Edit(Ibs(Model("M")), {{"1 S1 M 50m 2nH 1pF", "1 S1 M " + values}})));
    };
    EXPECT_EQ(of("50 1uH 1nF"), Lines{});
    EXPECT_EQ(of("NA NA NA"), Lines{});
    EXPECT_EQ(of("50.5 1.001uH 1.5nF"),
              (Lines{"WARNING - CMPT 'U1', Pin '1': Pin Resistance 50.5 Ohms greater than 50 Ohms",
                     "WARNING - CMPT 'U1', Pin '1': Pin Inductance 1001nH greater than 1000nH",
                     "WARNING - CMPT 'U1', Pin '1': Pin Capacitance 1500pF greater than 1000pF"}));
}

TEST(LimitsOfComponents, NodesHaveNamesOfTheirOwn)
{
    ibis* const root = RootOf(Ibs(Model("M")));
    std::array<std::string, 5> names{"n1", "1", "n1", "N1", "n1"};
    std::array<NODELIST, 5> nodes{};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i] = {names[i].data(), i + 1 < nodes.size() ? &nodes[i + 1] : nullptr};
    }
    NODELIST* const former = std::exchange(root->pComponents->pNodes, nodes.data());
    LIMIT_CheckComponents(root->pComponents);
    root->pComponents->pNodes = former;
    EXPECT_EQ(StoredMessages(), (Lines{"ERROR - Component <U1>: Duplicate Node Name <n1>",
                                       "ERROR - Component <U1>: Duplicate Node Name <n1>",
                                       "ERROR - Component <U1>: Illegal Node: <1> same as pin <1>"}));
}

TEST(Limits, ChecksThatAreOff)
{
    const std::string submodel =
        "[Submodel] S\nSubmodel_type Fall_back\n[Ramp]\ndV/dt_r 1/1 1/1n 1/1n\ndV/dt_f 1/1n 1/1n 1/1n\n";
    ibis* const root = RootOf(
        Edit(Ibs(Driver("D") + submodel), {{"1 S1 D 50m", "1 S1 D 99"}, {"C_comp 5pF", "C_comp 5nF"}}));
    for (const bool on : {false, true}) {
        MSG_ClearContainer();
        LIMIT_SetChecks(on);
        LIMIT_CheckModels(root->pModels);
        LIMIT_CheckComponents(root->pComponents);
        LIMIT_CheckSubmodels(root->pSubmodels);
        EXPECT_EQ(StoredMessages().size(), on ? 3U : 0U);
    }
}
