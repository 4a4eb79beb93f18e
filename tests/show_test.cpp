// `talibis show`: what it prints of each kind of file.

#include "tests/builders.h"
#include "tests/programs.h"

#include <sstream>

namespace
{

Result Show(const std::string& words, const std::string& folder = TestFolder(), bool withErrors = false)
{
    return RunProgram("env", "-C '" + folder + "' '" TALIBIS_PROGRAM "' show " + words, withErrors);
}

const std::string EXAMPLES = TALIBIS_SOURCE_DIR "/examples";

}  // namespace

TEST(Show, AComponentFile)
{
    EXPECT_EQ(Show("ddr_io.ibs", EXAMPLES).out,
              "ddr_io.ibs\n"
              "component file; IBIS 5.1; revision 1.0; of 2026-11-21\n"
              "\n"
              "Components (1)\n"
              "  NAME  PINS  SIGNAL  POWER  GND  NC     R_pkg   L_pkg   C_pkg\n"
              "  MEM4     8       5      1    1   1  150 mOhm  1.5 nH  400 fF\n"
              "    by talibis\n"
              "\n"
              "Model selectors (1)\n"
              "  NAME  MODELS\n"
              "  DQ    DQ_34, DQ_40\n"
              "\n"
              "Models (3)  PD PU pulldown, pullup; GC PC ground, power clamp\n"
              "  NAME    TYPE   SUPPLY  C_comp  I-V          RAMP  RISE  FALL\n"
              "  DQ_34   I/O     1.5 V  1.5 pF  PD PU GC PC  yes      2     2\n"
              "    Receiver Thresholds\n"
              "  DQ_40   I/O     1.5 V  1.5 pF  PD PU GC PC  yes      2     2\n"
              "    Receiver Thresholds\n"
              "  RST_IN  Input   1.5 V  1.3 pF  GC PC        -        0     0\n");
}

TEST(Show, PackagesBoardsAndParameters)
{
    EXPECT_EQ(Show("soic8.pkg", EXAMPLES).out, "soic8.pkg\n"
                                               "package model file; IBIS 3.2; revision 1.0; of 2026-01-12\n"
                                               "\n"
                                               "Package models (1)\n"
                                               "  NAME  PINS  STRUCTURE\n"
                                               "  SO8      8  R banded (0); L banded (1); C sparse\n"
                                               "    by talibis; 8-pin small outline\n");
    EXPECT_EQ(Show("board.ebd", EXAMPLES).out, "board.ebd\n"
                                               "board description; IBIS 5.1; revision 1.0; of 2026-11-21\n"
                                               "\n"
                                               "Boards (1)\n"
                                               "  NAME   PINS  PATHS\n"
                                               "  MINI2     5      3\n"
                                               "    by talibis\n"
                                               "\n"
                                               "Reference designators of MINI2 (2)\n"
                                               "  PLACE  FILE        COMPONENT\n"
                                               "  U1     ddr_io.ibs  MEM4\n"
                                               "  U2     ddr_io.ibs  MEM4\n");
    EXPECT_EQ(Show("diff_driver.ami", EXAMPLES).out,
              "diff_driver.ami\n"
              "parameter file\n"
              "Parameters of diff_driver\n"
              "\n"
              "Reserved_Parameters (4)\n"
              "  NAME                  USAGE  TYPE     DEFAULT  FORMAT\n"
              "  AMI_Version           Info   String   6.1      Value 6.1\n"
              "  Init_Returns_Impulse  Info   Boolean  True     Value True\n"
              "  GetWave_Exists        Info   Boolean  False    Value False\n"
              "  Tx_Rj                 Info   UI       0.005    Value 0.005\n"
              "\n"
              "Model_Specific (5)\n"
              "  NAME    USAGE  TYPE    DEFAULT  FORMAT\n"
              "  swing   In     Float   -        Range 0.8 0.4 1.0\n"
              "  preset  In     String  P4       List P0 P4 P7\n"
              "  taps\n"
              "    -1    InOut  Tap     -        Range -0.1 -0.3 0.0\n"
              "    0     InOut  Tap     -        Range 0.7 0.5 1.0\n"
              "    1     InOut  Tap     -        Range -0.2 -0.4 0.0\n");
}

// Long names keep their whole text, and no line is longer than 80 characters.
TEST(Show, LongTextsAndUnits)
{
    const std::string name(40, 'n');
    std::string choices;
    for (int i = 0; i < 12; ++i) {
        choices += name.substr(3) + std::to_string(100 + i) + " x\n";
    }
    WriteTestFile(
        "t.ibs",
        Header() + Component(name, "1 s M\n", "[Package Model] " + name + "\n") + "[Model] " + name +
            "\nModel_type I/O_open_source\nC_comp 999.96f 1p 1p\n"
            "[Voltage Range] 1234.56 1 1\n[Pullup]\n0 0 0 0\n[GND Clamp]\n0 0 0 0\n[POWER Clamp]\n0 0 0 0\n"
            "[Model] M\nModel_type 3-state\nC_comp -52.5u 1p 1p\n[Voltage Range] 0 1 1\n"
            "[Model Selector] " +
            name + "\n" + choices + "[End]\n");
    const std::string out = Show("t.ibs").out;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 80U) << line;
    }
    for (const std::string& part :
         Lines{"\n  " + name + "\n", " 1 pF ", " 1.235 kV ", " -52.5 uF ", " 0 V ", " I/O_open_source ",
               "package model " + name, name.substr(3) + "111"}) {
        EXPECT_NE(out.find(part), std::string::npos) << part << "\n" << out;
    }
    EXPECT_NE(out.find(" errors; "), std::string::npos) << out;
}

TEST(Show, ColourIsAskedFor)
{
    const std::string file = "'" + EXAMPLES + "/soic8.pkg'";
    EXPECT_EQ(Show(file).out.find('\x1b'), std::string::npos);
    EXPECT_NE(Show("--color always " + file).out.find("\x1b[1mPackage models\x1b[0m (1)\n"),
              std::string::npos);
}

TEST(Show, FilesWithoutRecords)
{
    WriteTestFile("old.ibs", "[IBIS Ver] 1.1\n[File Name] old.ibs\n[File Rev] 1\n[End]\n");
    const Result old = Show("old.ibs");
    EXPECT_EQ(old.status, 0);
    EXPECT_NE(
        old.out.find("\nA file of version 1.x is only checked: nothing of it is kept that could be shown.\n"),
        std::string::npos)
        << old.out;
    const Result none = Show("none.ibs", TestFolder(), true);
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.out, "ERROR - Unable To Open File 'none.ibs'\ntalibis: none.ibs could not be read\n");
    WriteTestFile("bad.ami", "(m)");
    EXPECT_EQ(Show("bad.ami").status, 2);
}
