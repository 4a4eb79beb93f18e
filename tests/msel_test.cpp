#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_msel.h"
#include "tests/builders.h"

namespace
{

const std::string MODELS = Model("A") + Model("B");

// A file with a pin for each of the models and none for the selector.
std::string FileOf(const std::string& selector, std::string_view version = "5.1")
{
    return Bare(Component("U1", "1 S1 A 50m 2nH 1pF\n2 S2 B 50m 2nH 1pF\n") + MODELS + selector, version);
}

Lines OfSelector(const std::string& selector, std::string_view version = "5.1")
{
    return Unfolded(Messages(FileOf(selector, version)));
}

// An error at a line of the selector.
std::string At(int line, const std::string& text)
{
    return "ERROR (line   " + std::to_string(24 + line) + ") - " + text;
}

}  // namespace

TEST(ModelSelector, LinesAndNames)
{
    const std::string long41(41, 'x');
    const std::string long21(21, 'x');
    struct Case {
        std::string selector;
        Lines messages;
        const char* version = "5.1";
    };
    const std::vector<Case> cases{
        {"[Model Selector] Q\nA first one\nB second one\n", {}},
        {"[Model Selector]\nA x\n", {At(1, "'Model Selector' Keyword Missing name")}},
        {"[Model Selector] Q R\nA x\n",
         {At(1, "Incorrect Number of Line Items (2) For Keyword Model Selector: Expecting 1")}},
        {"[Model Selector] GND\nA x\n", {At(1, "Invalid Model SelectorName (\"GND\"); Reserved Word.")}},
        {"[Model Selector] " + long41 + "\nA x\n", {At(1, "Model Selector Name Over 40 Characters Long")}},
        {"[Model Selector] " + long21 + "\nA x\n",
         {At(1, "Model Selector Name Over 20 Characters Long")},
         "3.2"},
        {"[Model Selector] Q\nA x\n[Model Selector] Q\nB x\n",
         {At(3, "Model Selector Name Previously Defined (\"Q\")")}},
        {"[Model Selector] Q\nA\n",
         {At(2, "Incorrect Number of Line Items (1) For Keyword Model Selector: Expecting 2")}},
        {"[Model Selector] Q\nA x\nna x\nGND x\nnc x\n", {At(3, "Invalid Model Name (\"NA\")")}},
        {"[Model Selector] Q\n" + long41 + " x\n",
         {At(2, "Model Name Over 40 Characters Long"),
          "ERROR - Model '" + std::string(40, 'x') + "' in Model Selector 'Q' is not defined in the file"}},
        {"[Model Selector] Q\nA x\nB y\nA z\nA w\n",
         {At(4, "Model 'A'. already used in this Model Selector"),
          At(5, "Model 'A'. already used in this Model Selector"),
          At(5, "Model 'A'. already used in this Model Selector")}},
        {"[Model Selector] Q\nA x\n[Model Selector] R\nA x\n", {}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(OfSelector(c.selector, c.version), c.messages) << c.selector;
    }
}

TEST(ModelSelector, DescriptionSharesItsRoomWithTheName)
{
    // 80 columns hold less than the room below version 4; the line limit of 120 has its say as well.
    const std::string fits(119, 'd');
    const std::string over(120, 'd');
    EXPECT_EQ(MessagesWith("Descriptor", FileOf("[Model Selector] Q\nA " + fits + "\n")), Lines{});
    EXPECT_EQ(
        MessagesWith("Descriptor", FileOf("[Model Selector] Q\nA " + over + "\n")),
        Lines{At(2, "Model Descriptor string '" + over + "' is too long, truncating to 119 characters.")});
}

TEST(ModelSelectorAtEnd, NamesOfModels)
{
    EXPECT_EQ(OfSelector("[Model Selector] Q\nA x\nghost x\nGND x\n"),
              Lines{"ERROR - Model 'ghost' in Model Selector 'Q' is not defined in the file"});
    // A selector that shares a model's name: the model counts as referenced, though no pin has it.
    EXPECT_EQ(Messages(Bare(Component("U1", "1 S1 A 50m 2nH 1pF\n") + Model("A") + Model("B") +
                            "[Model Selector] B\nA x\n")),
              Lines{"ERROR - 'B' is the name of a Model and a Model Selector"});
    // Models that only a selector names are referenced; reserved names are not looked up.
    EXPECT_EQ(
        Messages(Bare(Component("U1", "1 S1 Q 50m 2nH 1pF\n") + MODELS + "[Model Selector] Q\nA x\nB x\n")),
        Lines{});
    EXPECT_EQ(MessagesWith("not referenced", Bare(Component("U1", "1 S1 Q 50m 2nH 1pF\n") + Model("A") +
                                                  Model("NC") + "[Model Selector] Q\nA x\nNC x\n"))
                  .size(),
              1U);
}

TEST(ModelSelectorAtEnd, ClassOfTheFirstEntry)
{
    struct Case {
        const char* entries;
        std::uint32_t uiClass;
        Lines messages;
    };
    const std::string start = "WARNING - Model ";
    const std::string differential =
        " in Model Selector Q is Differential, but this Model Selector contains Single Ended models too ";
    const std::string single =
        " in Model Selector Q is Single Ended, but this Model Selector contains Differential models too ";
    const std::vector<Case> cases{
        {"A x\nB x\n", 0, {start + "B" + single}},
        {"B x\nA x\n", 1, {start + "A" + differential}},
        {"A x\nA2 x\n", 0, {}},
        {"A x\nGND x\nghost x\n",
         0,
         {start + "GND" + single, "ERROR - Model 'ghost' in Model Selector 'Q' is not defined in the file",
          start + "ghost" + single}},
        {"", 1, {}},
    };
    for (const Case& c : cases) {
        ibis* const root = RootOf(Ibs(MODELS + Model("A2") + "[Model Selector] Q\n" + c.entries));
        MDL_Find("A", root->pModels)->eDiffUse = 0;
        MDL_Find("A2", root->pModels)->eDiffUse = 0;
        MSEL_CheckAll(root->pModelSelectors);
        EXPECT_EQ(root->pModelSelectors->eDiffUse, c.uiClass) << c.entries;
        EXPECT_EQ(StoredMessages(), c.messages) << c.entries;
    }
}

TEST(ModelSelector, ManyEntriesStayLinear)
{
    std::string entries;
    for (int i = 0; i < 100000; ++i) {
        entries += "m" + std::to_string(i) + " x\n";
    }
    EXPECT_EQ(MessagesWith("already used", Ibs(Model("A") + "[Model Selector] Q\n" + entries + "m99999 x\n"))
                  .size(),
              1U);
}
