#include "ibis/source/nuibis_ccorner.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_idly.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_rng.h"
#include "tests/builders.h"

namespace
{

// `lines` stand from line 19 on, behind a whole model.
Lines Behind(const std::string& lines)
{
    return Unfolded(Messages(Ibs(Model("M", lines), "6.1")));
}

const nuibis_mdl* ReadModel(const std::string& lines)
{
    ReadHandle(Ibs(Model("M", lines), "6.1"));
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return root->pModels;
}

struct Row {
    const char* lines;
    Lines messages;
};

const std::string AT = "ERROR (line   20) - ";

}  // namespace

TEST(CCompCorner, LinesAndClose)
{
    const Row rows[] = {
        {"C_comp 5p 6p 4p\n", {}},
        {"C_comp 5p 6p 7p\n", {}},  // the corners have no order by size
        {"C_comp_pullup 5p 0 NA\nC_comp_gnd_clamp 1p 1p 1p\n", {}},
        {"C_comp NA -6p 4p\n",
         {AT + "Typ value cannot be NA",
          AT + "[C Comp Corner] parameter C_comp: Min value cannot be negative"}},
        {"C_comp -1p -2p -3p\n",
         {AT + "[C Comp Corner] parameter C_comp: Typ value cannot be negative",
          AT + "[C Comp Corner] parameter C_comp: Min value cannot be negative",
          AT + "[C Comp Corner] parameter C_comp: Max value cannot be negative"}},
        {"C_comp 5p 4p 6p\nC_comp 9p 9p 9p\n",
         {"ERROR (line   21) - [C Comp Corner] parameter C_comp is already defined"}},
        {"c_comp 5p 4p 6p\n",
         {AT + "Unknown line found among [C Comp Corner] data",
          "ERROR - Model M: Empty [C Comp Corner] section"}},
        {"C_comp 5p 4p 6p\nC_comp_pulldown 1p 1p 1p\n",
         {"WARNING - Model M: [C Comp Corner] C_comp should not be specified when C_comp_pullup, "
          "C_comp_pulldown, C_comp_power_clamp or C_comp_gnd_clamp is specified"}},
        {"C_comp NA NA NA\nC_comp_pulldown 1p 1p 1p\n",  // an item of "NA" is given all the same
         {AT + "Typ value cannot be NA",
          "WARNING - Model M: [C Comp Corner] C_comp should not be specified when C_comp_pullup, "
          "C_comp_pulldown, C_comp_power_clamp or C_comp_gnd_clamp is specified"}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Behind("[C Comp Corner]\n" + std::string(row.lines)), row.messages) << row.lines;
    }
    EXPECT_EQ(Behind("[C Comp Corner] x\nC_comp 1p 1p 1p\n[C Comp Corner]\nC_comp_pullup 1p 1p 1p\n"),
              (Lines{"ERROR (line   19) - Incorrect Number of Line Items (2) For C_comp_corner: Expecting 1",
                     "ERROR (line   21) - [C Comp Corner] Already defined for this model"}));
    EXPECT_EQ(ReadModel("[C Comp Corner]\nC_comp 5p 4p 6p\nC_comp 9p 9p 9p\n")->pCCompCorner->pCComp->dTyp,
              5e-12);
}

TEST(InitialDelay, Lines)
{
    const std::string waveforms = "[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\n0 0 0 0\n1n 1 1 1\n";
    const auto lines = [&](const std::string& text) {
        Lines found = Behind("[Initial Delay]\n" + text);
        std::erase_if(found, [](const std::string& line) { return line.find("(line") == std::string::npos; });
        return found;
    };
    EXPECT_EQ(lines("V-T 1n 2n 0.5n\nI-T 1n NA NA\n"), Lines{});
    EXPECT_EQ(lines("V-T 5n 1n 2n\n"), Lines{});
    EXPECT_EQ(lines("V-T NA -1n -2n\nV-T 1n 1n 1n\nv-t 1n 1n 1n\n"),
              (Lines{AT + "Typ value cannot be NA",
                     AT + "[Initial_Delay] parameter V-T: Min value cannot be negative",
                     AT + "[Initial_Delay] parameter V-T: Max value cannot be negative",
                     "ERROR (line   21) - [Initial_Delay] parameter V-T is already defined",
                     "ERROR (line   22) - Unknown line found among [Initial_Delay] data"}));
    EXPECT_EQ(Behind("[Initial Delay] x\n[Initial Delay]\n"),  // a model may have an empty block
              (Lines{"ERROR (line   19) - Incorrect Number of Line Items (2) For Initial Delay: Expecting 1",
                     "ERROR (line   20) - [Initial_Delay] Already defined for this model"}));
    EXPECT_EQ(Unfolded(Messages(Ibs(Model("M", "[Initial Delay]\nV-T -1n 5n 5n\n"), "6.0"))),
              (Lines{"WARNING (line   20) - Typ value is not in between Min and Max "}));  // older grammar
    EXPECT_EQ(ReadModel("[Initial Delay]\nV-T 1n 1n 1n\n[Initial Delay]\nI-T 2n 2n 2n\n")->pInitialDelay->pVT,
              nullptr);
}
