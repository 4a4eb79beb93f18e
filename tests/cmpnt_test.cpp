#include "tests/builders.h"

namespace
{

// A component from its raw lines; line 4 of the file is its keyword line.
Lines ComponentMessages(std::string_view lines, std::string_view version = "4.2")
{
    return Messages(Bare(lines, version));
}

const std::string PINS = "[Pin] signal_name model_name\n1 S1 NC\n";
const std::string PACKAGE = "[Package]\nR_pkg 1 NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n";
const std::string HEAD = "[Component] U1\n[Manufacturer] A\n";

}  // namespace

TEST(Component, NamesAndRequiredKeywords)
{
    EXPECT_EQ(ComponentMessages(HEAD + PACKAGE + PINS), Lines{});
    EXPECT_EQ(ComponentMessages("[Component] my chip\n" + PACKAGE + PINS),
              (Lines{"WARNING (line    4) - Component 'my chip' contains a blank character.",
                     "ERROR - Required keyword 'Manufacturer' not defined for Component 'my chip'."}));
    EXPECT_EQ(ComponentMessages("[Component] gnd\n[Manufacturer]\n[Manufacturer] B\n[Manufacturer] C\n"),
              (Lines{"ERROR (line    4) - Illegal use of Reserved Word 'gnd'.",
                     "ERROR (line    5) - Zero length value for keyword 'Manufacturer'.",
                     "ERROR (line    7) - Duplicate 'Manufacturer' keyword.",
                     "ERROR - Keyword 'Package' not defined for Component 'gnd'.",
                     "ERROR - Unable to find Pin keyword data for Component 'gnd'."}));
    const std::string name(41, 'c');
    EXPECT_EQ(ComponentMessages("[Component] " + name + "\n[Manufacturer] A\n" + PACKAGE + PINS),
              (Lines{"ERROR (line    4) - Component string '" + name +
                     "' is too long, truncating to 40 characters."}));
    EXPECT_EQ(ComponentMessages("[Package]\nR_pkg 1 1 1\n" + HEAD + PACKAGE + PINS),
              (Lines{"ERROR (line    4) - Orphan Component keyword.",
                     "ERROR (line    5) - Orphan data line keyword."}));
}

TEST(Component, DuplicatesAreToldAtTheEnd)
{
    const std::string one = HEAD + PACKAGE + PINS;
    const std::string duplicate = "ERROR - Component 'U1' is duplicated within the .ibs file.";
    EXPECT_EQ(ComponentMessages(one + one), (Lines{duplicate}));
    EXPECT_EQ(ComponentMessages(one + one + one), (Lines{duplicate, duplicate, duplicate}));
}

TEST(Component, Subparameters)
{
    const struct {
        const char* line;
        Lines messages;
    } rows[] = {
        {"Si_location Die", {}},
        {"Timing_location Pin", {}},
        {"Si_location pin", {"ERROR (line    5) - Invalid Si_location (\"pin\") (try \"Pin\")"}},
        {"Si_location Here", {"ERROR (line    5) - Invalid Si_location (\"Here\")"}},
        {"Si_location", {"ERROR (line    5) - 'Si_location' Subparameter Missing Setting"}},
        {"Timing_location a b",
         {"ERROR (line    5) -\n    Incorrect Number of Line Items (3) For Timing_location: Expecting 2"}},
        {"si_location Pin", {"ERROR (line    5) - Unknown Line after Component Description"}},
        {"Si_location Pin\nSi_location Die",
         {"ERROR (line    6) - Si_location Already Defined For Component 'U1'"}},
    };
    for (const auto& row : rows) {
        const std::string file =
            "[Component] U1\n" + std::string(row.line) + "\n[Manufacturer] A\n" + PACKAGE + PINS;
        EXPECT_EQ(ComponentMessages(file), row.messages) << row.line;
    }
    EXPECT_EQ(ComponentMessages("[Component] U1\nSi_location Die\n[Manufacturer] A\nx\n" + PACKAGE + PINS +
                                    "[Package Model] NC\nx\n",
                                "2.1")[0],
              "ERROR (line    5) - Data on this line appears to be for the Component keyword, which does not "
              "allow data "
              "on subsequent lines.");
}

TEST(Package, LinesAndCorners)
{
    const auto package = [](std::string_view lines) {
        return ComponentMessages(HEAD + "[Package]\n" + std::string(lines) + PINS);
    };
    const std::string rest = "L_pkg 1n 1n 1n\nC_pkg 1p 1p 1p\n";
    EXPECT_EQ(package("c_pkg 1p 1p 1p\nl_pkg 1n 1n 1n\nr_pkg 1 NA NA\n"), Lines{});
    EXPECT_EQ(package(rest + "R_pkg NA 1 2\n"),
              (Lines{"ERROR (line    9) - The typical column must be specified."}));
    EXPECT_EQ(package(rest + "R_pkg 1 x 2\n"),
              (Lines{"ERROR (line    9) - Invalid Minimum Value (\"x\")",
                     "ERROR (line    9) - Unable to parse data for Package subparameter 'R_pkg'.",
                     "ERROR - Component 'U1': Required sub-parameter R_pkg not found."}));
    EXPECT_EQ(
        package(rest + "R_pkg 1 2\nR_pin 1 2 3\n"),
        (Lines{"ERROR (line    9) -\n    Expected 4 columns in Package sub-parameter line, found 3 columns.",
               "ERROR (line   10) - Unknown Package subparameter.",
               "ERROR - Component 'U1': Required sub-parameter R_pkg not found."}));
    EXPECT_EQ(package(rest + "R_pkg 1 2 3\nR_pkg 1 1 1\nL_pkg 1 1 1\nC_pkg 1 1 1\n"),
              (Lines{"WARNING (line    9) - Typ value is not in between Min and Max ",
                     "ERROR (line   10) - Duplicate R_pkg sub-parameter.",
                     "ERROR (line   11) - Duplicate L_pkg sub-parameter.",
                     "ERROR (line   12) - Duplicate C_pkg sub-parameter."}));
    EXPECT_EQ(package("[Package] x\n" + rest),
              (Lines{"ERROR (line    7) - Duplicate Package keyword.",
                     "ERROR (line    7) - Unknown data after Package keyword.",
                     "ERROR - Component 'U1': Required sub-parameter R_pkg not found."}));
}

TEST(AlternatePackages, ListsAndTheirEnd)
{
    const auto alternates = [](std::string_view lines) {
        Lines found = ComponentMessages(HEAD + PACKAGE + PINS + std::string(lines));
        std::erase_if(
            found, [](const std::string& line) { return line.find("Unable to find Package") != line.npos; });
        return found;
    };
    const std::string open = "[Alternate Package Models]\n";
    const std::string end = "[End Alternate Package Models]\n";
    EXPECT_EQ(alternates(open + "P1\nP2\n" + end), Lines{});
    EXPECT_EQ(alternates(open + end),
              (Lines{"ERROR (line   13) - Alternate Package Model has no package models defined"}));
    const Lines one = alternates(open + "P1\n" + end + "P2\n");
    ASSERT_EQ(one.size(), 2U);
    EXPECT_EQ(one[0],
              "WARNING (line   14) -\n    Alternate Package Model has only one package model defined");
    EXPECT_TRUE(one[1].starts_with("PROGRAM BUG (line   15) - nuibis_cmpnt.cpp:"));
    EXPECT_EQ(alternates(open + "P1\nP1\n" + std::string(41, 'p') + "\n" + end),
              (Lines{"ERROR (line   14) - Package Model Name Previously Defined (\"P1\")",
                     "ERROR (line   15) - Invalid Package Model name: '" + std::string(41, 'p') +
                         "' is too long."}));
    EXPECT_EQ(alternates(end),
              (Lines{"ERROR (line   12) - Unexpected End Alternate Package Models keyword",
                     "ERROR (line   12) - Alternate Package Model has no package models defined"}));
    EXPECT_EQ(alternates(open + "P1\nP2\n[Package Model] P1\n"),
              (Lines{"ERROR (line   15) - Expecting End Alternate Package Models keyword"}));
    EXPECT_EQ(alternates(open + "P1\nP2\n" + open + "P3\n" + end),
              (Lines{"ERROR (line   15) - Expecting End Alternate Package Models keyword",
                     "ERROR (line   15) - Duplicate [Alternate Package Models] keyword."}));
    EXPECT_EQ(alternates(open + "P1\nP2\n"),
              (Lines{"ERROR (line   15) - Expecting End Alternate Package Models keyword"}));
}
