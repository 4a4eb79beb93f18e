#include "tests/builders.h"

namespace
{

const std::string RX = "[Model] RX\nModel_type Input\nVinl = 1\nVinh = 2\nC_comp 1p 1p 1p\n"
                       "[Voltage Range] 3 3 3\n";
const std::string TX = "[Model] TX\nModel_type Output\nC_comp 1p 1p 1p\n[Voltage Range] 3 3 3\n";

// Pins R1, R2 receive, T1, T2 transmit, G is ground; [Repeater Pin] stands on line 16.
std::string RepeaterFile(std::string_view header, std::string_view lines, std::string_view version = "6.0",
                         std::string_view extra = "")
{
    return Bare(
        Component("U1",
                  "R1 S RX 1 1n 1p\nR2 S RX 1 1n 1p\nT1 S TX 1 1n 1p\nT2 S TX 1 1n 1p\n"
                  "G S GND 1 1n 1p\n",
                  "[Repeater Pin] " + std::string(header) + "\n" + std::string(lines) + std::string(extra)) +
            RX + TX,
        version);
}

// Messages of the keyword's own; whether the models carry algorithms is another rule.
Lines RepeaterMessages(std::string_view header, std::string_view lines, std::string_view extra = "")
{
    Lines found = Unfolded(Messages(RepeaterFile(header, lines, "6.0", extra)));
    std::erase_if(found, [](const std::string& line) {
        const bool own = line.find("epeater") != line.npos || line.find("tx_non_inv_pin") != line.npos ||
                         line.find("(line   1") != line.npos;
        return !own || line.find("Algorithmic") != line.npos;
    });
    return found;
}

const std::string HEADER = "tx_non_inv_pin";

}  // namespace

TEST(RepeaterPin, ComesWithSixZero)
{
    EXPECT_EQ(RepeaterMessages(HEADER, "R1 T1\n"), Lines{});
    EXPECT_EQ(MessagesWith("(line", RepeaterFile(HEADER, "R1 T1\n", "5.1")),
              (Lines{"ERROR (line   16) - Invalid Keyword: Repeater_Pin",
                     "ERROR (line   17) - Data for unknown keyword.\nR1 T1"}));
}

TEST(RepeaterPin, HeadersAndLines)
{
    const struct {
        std::string header;
        std::string line;
        ::Lines messages;
    } rows[] = {
        {"TX_NON_INV_PIN", "R1 T1", {}},
        {"", "R1 T1", {"ERROR (line   16) - Unable to find column headers after Repeater Pin keyword."}},
        {"tx_pin extra",
         "R1 T1",
         {"ERROR (line   16) - 'tx_non_inv_pin' column header not found or out of order.",
          "ERROR (line   16) - Unknown column header 'extra' or out of order."}},
        {HEADER, "R1 T1 x", {"ERROR (line   17) - Too many Repeater Pin data columns."}},
        {HEADER, "R1", {"ERROR (line   17) - No Repeater tx_non_inv_pin column entry."}},
        {HEADER,
         "R1 123456",
         {"ERROR (line   17) - tx_non_inv_pin column string '123456' is too long, truncating to 5 "
          "characters.",
          "ERROR - Component 'U1': Repeater tx_non_inv_pin '12345' not previously declared in Pin section."}},
        {HEADER,
         "X X",
         {"ERROR (line   17) - Repeater_Pin column pin same as tx_non_inv_pin column pin.",
          "ERROR - Component 'U1': Repeater_Pin 'X' not previously declared in Pin section.",
          "ERROR - Component 'U1': Repeater tx_non_inv_pin 'X' not previously declared in Pin section."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(RepeaterMessages(row.header, row.line + "\n"), row.messages) << row.header << row.line;
    }
    EXPECT_EQ(RepeaterMessages(HEADER, "R1 T1\n[Repeater Pin] " + HEADER + "\nR2 T1\n"),
              (Lines{"ERROR (line   18) - Duplicate Repeater_Pin keyword found.",
                     "WARNING - Component 'U1': Repeater tx_non_inv_pin 'T1' is not unique."}));
}

TEST(RepeaterPin, EachSideHasItsKindOfModel)
{
    const std::string start = "ERROR - Component 'U1': Repeater";
    EXPECT_EQ(
        Unfolded(MessagesWith("Repeater", RepeaterFile(HEADER, "T1 R1\nG G\nR2 T2\n"))),
        (Lines{"ERROR (line   18) - Repeater_Pin column pin same as tx_non_inv_pin column pin.",
               start + "_Pin 'T1' is not associated with a model which is of type Input or Input_Diff",
               start + "_Pin 'T1' is associated with a model 'TX' which has no Algorithmic Model",
               start + " tx_non_inv_pin 'R1' is not associated with a model which is of type Output or "
                       "Ouptut_Diff",
               start + " tx_non_inv_pin 'R1' is associated with a model 'RX' which has no Algorithmic Model",
               start + "_Pin 'R2' is associated with a model 'RX' which has no Algorithmic Model",
               start + " tx_non_inv_pin 'T2' is associated with a model 'TX' which has no Algorithmic "
                       "Model"}));
}

// A parameter file is told once for a pin, whatever the number of platforms that share it; one with a fault
// of its own, and those of the transmitting side, are not.
TEST(RepeaterPin, ParameterFilesTellTheRepeaterType)
{
    WriteTestFile("code.so", "");
    WriteTestFile("rx.ami", "(rx (Reserved_Parameters (e (Usage Info)(Type Boolean)(Value True))))\n");
    WriteTestFile("bad.ami", "(rx\n");
    const std::string algorithm = "[Algorithmic Model]\nExecutable Linux_gcc_64 code.so rx.ami\n"
                                  "Executable Linux_gcc_32 code.so rx.ami\n"
                                  "Executable Windows_vc_64 code.so bad.ami\n[End Algorithmic Model]\n";
    std::string file = RepeaterFile(HEADER, "R1 T1\nR2 T2\n");
    file.insert(file.find("[Model] TX"), algorithm);
    file.insert(file.find("[End]"), algorithm);
    const std::string start = "ERROR - Component 'U1': Repeater_Pin '";
    const std::string rest =
        "' is associated with a model 'RX' whose AMI Parameter file 'rx.ami' does not have a "
        "Repeater_Type defined";
    EXPECT_EQ(Unfolded(MessagesWith("Component 'U1': Repeater", file)),
              (Lines{start + "R1" + rest, start + "R2" + rest}));
}

// The pairs need not be differential: a [Diff Pin] table without them changes nothing.
TEST(RepeaterPin, EachPinStandsInOnePair)
{
    const std::string error = "ERROR - Component 'U1': Repeater";
    const std::string warning = "WARNING - Component 'U1': Repeater";
    const std::string pairs = "[Diff Pin] inv_pin vdiff tdelay_typ\nR2 T2 0.1 NA\n";
    EXPECT_EQ(RepeaterMessages(HEADER, "R1 T1\n", pairs), Lines{});
    EXPECT_EQ(RepeaterMessages(HEADER, "R1 T1\nR1 T2\n"), (Lines{warning + "_Pin 'R1' is not unique."}));
    EXPECT_EQ(RepeaterMessages(HEADER, "R1 T1\nR2 T1\n"),
              (Lines{warning + " tx_non_inv_pin 'T1' is not unique."}));
    const Lines crossed = RepeaterMessages(HEADER, "R1 T1\nT1 R1\n");
    ASSERT_EQ(crossed.size(), 4U);
    EXPECT_EQ(crossed[2], error + " tx_non_inv_pin 'R1' already in use as a Repeater_pin.");
    EXPECT_EQ(crossed[3], error + "_pin 'T1' already in use as an tx_non_inv_pin.");
}
