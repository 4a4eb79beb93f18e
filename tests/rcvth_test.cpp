#include "ibis/source/nuibis_rcvth.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "ibis/source/nuibis_pin.h"
#include "tests/builders.h"

namespace
{

const std::string SINGLE_ENDED = "Vth = 1.5\nVinh_ac = 2\nVinh_dc = 1.8\nVinl_ac = 1\nVinl_dc = 1.2\n"
                                 "Tslew_ac = 1n\n";
const std::string DIFFERENTIAL = "Vcross_low = 1\nVcross_high = 2\nVdiff_ac = 200m\nVdiff_dc = 100m\n"
                                 "Tdiffslew_ac = 1n\n";

std::string Receiver(const std::string& name, const std::string& lines)
{
    return "[Model] " + name + "\nModel_type Input\nC_comp 5pF 4pF 6pF\n[Receiver Thresholds]\n" + lines +
           "[Voltage Range] 3.3 3.0 3.6\n";
}

// What is said of lines of a block that lacks nothing; they stand from line 17 on.
Lines Block(const std::string& lines)
{
    Lines found = Unfolded(Messages(Ibs(Receiver("M", lines))));
    std::erase_if(found,
                  [](const std::string& line) { return line.ends_with("for single ended receivers"); });
    return found;
}

const rcvth* ReadBlock(const std::string& lines)
{
    ReadHandle(Ibs(Receiver("M", lines)));
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return root->pModels->pReceiverThresholds;
}

std::string Missing(const std::string& model, const std::string& item, const std::string& kind)
{
    return "WARNING - Model " + model + " Receiver Thresholds: " + item + " must be specified for " + kind;
}

const std::string AT = "ERROR (line   17) - ";

}  // namespace

TEST(ReceiverThresholdsLine, Numbers)
{
    const struct {
        const char* lines;
        Lines messages;
    } rows[] = {
        {"Vth = 1.5\nVth_min=1.4\nVth_max = 1V6\n", {}},
        {"Vth = 1\nVth = 2\n", {"ERROR (line   18) - Vth Already Defined For Receiver Threshold"}},
        {"Vth 1.5\n", {AT + "Invalid Vth Line"}},
        {"Vth 1.5 x\n", {AT + "Invalid Vth Line"}},
        {"Vth = 1.5 x\n", {AT + "Incorrect Number of Line Items (4) For Vth: Expecting 3"}},
        {"Vth = x\n", {AT + "Invalid Vth Value (\"x\")"}},
        {"Vth = NA\n", {AT + "Invalid Vth Value (\"NA\")"}},
        {"vth = 1\n", {AT + "Unknown Line Among Receiver Threshold Data"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Block(row.lines), row.messages) << row.lines;
    }
    EXPECT_EQ(*ReadBlock("Vth = x\nVth = 2\n")->pdVth, 0.0);
    EXPECT_EQ(*ReadBlock("Vth = 1.5 x\n")->pdVth, 1.5);
}

TEST(ReceiverThresholdsLine, ReferenceSupply)
{
    const std::string invalid = AT + "Invalid Reference_supply Line";
    const struct {
        const char* lines;
        Lines messages;
        const char* stored;
    } rows[] = {
        {"Reference_supply Ext_ref\n[External Reference] 1 1 1\n", {}, "Ext_ref"},
        {"Reference_supply\n", {invalid}, nullptr},
        {"Reference_supply = Ext_ref\n", {invalid}, nullptr},
        {"Reference_supply=Ext_ref\n", {invalid}, nullptr},
        {"Reference_supply Ext_ref x\n",
         {AT + "Incorrect Number of Line Items (3) For Reference_supply: Expecting 2"},
         nullptr},
        {"Reference_supply Ext_ref x y\n[External Reference] 1 1 1\n",
         {AT + "Incorrect Number of Line Items (4) For Reference_supply: Expecting 2"},
         "Ext_ref"},
        {"Reference_supply ext_ref\n", {AT + "Unknown Reference_supply ext_ref specified"}, nullptr},
        {"Reference_supply Ext_ref\nReference_supply Pullup_ref\n[External Reference] 1 1 1\n",
         {"ERROR (line   18) - Reference_supply Already Defined For Receiver Threshold"},
         "Ext_ref"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Block(row.lines), row.messages) << row.lines;
        EXPECT_STREQ(ReadBlock(row.lines)->pszReferenceSupply, row.stored) << row.lines;
    }
}

TEST(ReceiverThresholdsBlock, KeywordPlaceAndType)
{
    const auto at = [](const std::string& ahead, const std::string& keyword = "[Receiver Thresholds]") {
        return Unfolded(MessagesWith("(line", Ibs("[Model] M\nModel_type " + ahead + keyword + "\n")));
    };
    const std::string misplaced =
        "ERROR (line   16) - [Receiver Thresholds] should be specified immediately after all "
        "the subparameters of a model and before the other keywords of a model except "
        "[Model Spec]";
    const auto wrongType = [](const std::string& type, const std::string& line = "15") {
        return "WARNING (line   " + line +
               ") - [Receiver Thresholds] should not be specified for model type " + type;
    };
    EXPECT_EQ(at("Input\n[Voltage Range] 1 1 1\n"), (Lines{misplaced}));
    EXPECT_EQ(at("Output\n[Rac] 1 1 1\n"), (Lines{misplaced, wrongType("Output", "16")}));
    EXPECT_EQ(at("Input_diff\n", "[Receiver Thresholds] x"),
              (Lines{wrongType("Input_diff"), "ERROR (line   15) - Incorrect Number of Line Items (2) For "
                                              "Receiver Threshold: Expecting 1"}));
    EXPECT_EQ(at("Input\n[Model Spec]\nVinh 1 1 1\n"), Lines{});
    EXPECT_EQ(at("Input\n[External Reference] 1 1 1\n"), Lines{});
    EXPECT_EQ(at("I/O_ECL\n[Receiver Thresholds]\nVth = 1\n", "[Receiver Thresholds]\nVth = 2"),
              (Lines{"ERROR (line   17) - Receiver Threshold: Already Defined for this model"}));
    EXPECT_EQ(Block("Threshold_sensitivity = 1\n"),
              (Lines{"ERROR - Model M Receiver Thresholds: Reference Supply must be specified when Threshold "
                     "Sensitivity is specified"}));
}

TEST(ReceiverThresholdsUse, SingleEnded)
{
    const std::string kind = "single ended receivers";
    EXPECT_EQ(Messages(Ibs(Receiver("M", SINGLE_ENDED))), Lines{});
    EXPECT_EQ(Unfolded(Messages(Ibs(Receiver("M", DIFFERENTIAL)))),
              (Lines{Missing("M", "Vth", kind), Missing("M", "Vinh_ac", kind), Missing("M", "Vinl_ac", kind),
                     Missing("M", "Vinh_dc", kind), Missing("M", "Vinl_dc", kind),
                     Missing("M", "Tslew_ac", kind)}));
}

// Pins 1 to 4 stand for A, B, the selector S and C; the pair is told by `pins`.
TEST(ReceiverThresholdsUse, PinsOfPairs)
{
    const auto on = [](const std::string& pins) {
        const std::string body = Receiver("A", DIFFERENTIAL + SINGLE_ENDED) +
                                 Receiver("B", SINGLE_ENDED + "Vdiff_dc = 1\n") +
                                 "[Model Selector] S\nC one\nA two\n" + Receiver("C", SINGLE_ENDED);
        return Unfolded(MessagesWith(
            "Thresholds", Ibs(body, "5.1", "[Diff Pin] inv_pin vdiff tdelay_typ\n" + pins + " 0.2 NA\n")));
    };
    const auto all = [](const std::string& model, const std::string& pin, bool withDc) {
        const std::string kind = "differential receivers (Pin " + pin + ")";
        Lines lines{Missing(model, "Vcross_low", kind), Missing(model, "Vcross_high", kind),
                    Missing(model, "Vdiff_ac", kind), Missing(model, "Vdiff_dc", kind),
                    Missing(model, "Tdiffslew_ac", kind)};
        if (!withDc) {
            lines.erase(lines.begin() + 3);
        }
        return lines;
    };
    EXPECT_EQ(on("2 1"), all("B", "2", false));
    EXPECT_EQ(on("1 2"), all("B", "2", false));
    EXPECT_EQ(on("1 3"), all("C", "3", true));  // through the selector
    EXPECT_EQ(on("4 3"), all("C", "3", true));  // the first pin of the list, not of the pair
    EXPECT_EQ(on("1 5"), Lines{});              // only A, which has all
}

// Components count in the order of the file, though the newest stands first in memory. A search passes the
// selectors that do not hold the model and marks them, up to the pin where it ends.
TEST(DifferentialSearch, FileOrderAndMarks)
{
    const std::string pair = "[Diff Pin] inv_pin vdiff tdelay_typ\n1 2 0.2 NA\n";
    const std::string none = " 50m 2nH 1pF\n";
    ReadHandle(Bare(Component("U0", "7 X M" + none) +
                    Component("U1", "1 X S" + none + "2 Y M" + none + "3 Z T" + none, pair) +
                    Component("U2", "1 X T" + none + "2 Y N" + none, pair) +
                    "[Model Selector] S\nN a\n[Model Selector] T\nO a\nM b\n" + Model("M") + Model("N") +
                    Model("O") + Model("P")));
    ibis* root = nullptr;
    ASSERT_EQ(IBIS_GetCurrent(&root), 1);
    CMPNT_DiffPins pins(root->pComponents, root->pModelSelectors);
    const auto pinOf = [&](std::string_view name) {
        const PIN* pin = nullptr;
        return CMPNT_UsesDiffModel(MDL_Find(name, root->pModels), pins, &pin) ? std::string(pin->szPin) : "";
    };
    msel* const s = MSEL_Find("S", root->pModelSelectors);
    msel* const t = MSEL_Find("T", root->pModelSelectors);
    s->eDiffUse = t->eDiffUse = 1;
    EXPECT_EQ(pinOf("N"), "1");
    EXPECT_EQ(s->eDiffUse, 1U);
    EXPECT_EQ(pinOf("M"), "2");
    EXPECT_EQ(s->eDiffUse, 0U);
    EXPECT_EQ(t->eDiffUse, 1U);
    EXPECT_EQ(pinOf("O"), "1");  // of U2: pin 3 of U1 stands in no pair
    EXPECT_EQ(t->eDiffUse, 1U);
    EXPECT_EQ(pinOf("P"), "");
    EXPECT_EQ(t->eDiffUse, 0U);
    EXPECT_EQ(MDL_Find("M", root->pModels)->eDiffUse, 0U);
    EXPECT_EQ(MDL_Find("P", root->pModels)->eDiffUse, 2U);
}
