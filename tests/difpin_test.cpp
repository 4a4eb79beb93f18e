#include "ibis/source/nuibis_difpin.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/builders.h"

#include <cstddef>

namespace
{

const std::string FOUR = "inv_pin vdiff tdelay_typ";
const std::string SIX = FOUR + " tdelay_min tdelay_max";

// Pins 1 to 6, and [Diff Pin] on line 17.
std::string PairFile(std::string_view header, std::string_view lines, std::string_view version = "4.2")
{
    std::string pins;
    for (const char* pin : {"1", "2", "3", "4", "5", "6"}) {
        pins += std::string(pin) + " S M 1 1n 1p\n";
    }
    return Bare(Component("U1", pins, "[Diff Pin] " + std::string(header) + "\n" + std::string(lines)) +
                    Model("M"),
                version);
}

Lines PairMessages(std::string_view header, std::string_view lines, std::string_view version = "4.2")
{
    return Unfolded(Messages(PairFile(header, lines, version)));
}

}  // namespace

TEST(DiffPin, Headers)
{
    const std::string at = "ERROR (line   17) - ";
    const std::string wrong = " column header not found or out of order.";
    const auto count = [&](int found) {
        return at + "Diff_Pins keyword column count must be 4 or 6, found " + std::to_string(found) +
               " columns.";
    };
    const struct {
        std::string header;
        Lines messages;
    } rows[] = {
        {FOUR, {}},
        {"INV_PIN Vdiff TDELAY_TYP tdelay_min tdelay_max", {}},
        {"", {at + "Unable to find column headers after Diff_Pins keyword."}},
        {"vdiff", {count(2), at + "'inv_pin'" + wrong}},
        {FOUR + " tdelay_min", {count(5)}},
        {FOUR + " tdelay_max tdelay_min", {at + "'tdelay_min'" + wrong, at + "'tdelay_max'" + wrong}},
        {SIX + " more and more", {count(7)}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PairMessages(row.header, "1 2 NA 1n\n"), row.messages) << row.header;
        EXPECT_EQ(PairMessages(row.header, "1 2 NA 1n\n", "2.1"), row.messages) << row.header;
    }
    EXPECT_EQ(PairMessages(FOUR, "1 2 NA 1n\n[Diff Pin] x\n3 4 NA 1n\n3 5 0 NA\n"),
              (Lines{"ERROR (line   19) - Duplicate Diff_Pin keyword found.",
                     "WARNING - Component 'U1': Diff_Pin '3' is not unique."}));
}

TEST(DiffPin, Lines)
{
    const std::string at = "ERROR (line   18) - ";
    const std::string warning = "WARNING (line   18) - ";
    const std::string count = at + "Diff_Pin data line column count must be 4 or 6.";
    const std::string order = warning + "Typ value is not in between Min and Max ";
    const struct {
        std::string line;
        ::Lines messages;
    } rows[] = {
        {"1 2 0.2V 1ns 0.5ns 2ns", {}},
        {"1 2 NA NA NA NA", {}},
        {"1 2 0.1 1n 2n NA", {}},
        {"1 2 0.1 2n na 1n", {order}},
        {"1 2 0.1 1n 2n 3n", {order}},
        {"1 2 0.1 1n 1n 3n", {}},
        {"1 2 0.1 x 2n 3n", {at + "Bad value for tdelay_typ column."}},
        {"1 2 0.1V3 1n", {warning + "Suspicious value for vdiff column."}},
        {"1 2 0.1 1n 2n", {count}},
        {"1 2 0.1", {at + "No tdelay_typ column entry.", count}},
        {"1 2", {at + "No vdiff column entry.", at + "No tdelay_typ column entry.", count}},
        {"1 2 0.1 1n 1n 1n 1n", {at + "Too many Diff Pin data columns."}},
        {"1 123456 0.1 1n",
         {at + "inv_pin column string '123456' is too long, truncating to 5 characters.",
          "ERROR - Component 'U1': inv_pin '12345' not previously declared in Pin section."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PairMessages(SIX, row.line + "\n"), row.messages) << row.line;
    }
    EXPECT_EQ(PairMessages(FOUR, "1 2 0.1 1n 1n 1n\n"),
              (::Lines{at + "When using 6 columns, the tdelay_min and tdelay_max headers must be used."}));
}

// A reader of the record cannot tell "NA" from a number: it stands for no threshold and no delay, and for the
// longest delay it stands for the typical one.
TEST(DiffPin, NotApplicableCountsAsNumber)
{
    ASSERT_EQ(PairMessages(SIX, "1 2 NA 1n 2n NA\n3 4 0.1 NA\n"), ::Lines{});
    ibis* root = nullptr;
    ASSERT_TRUE(IBIS_GetCurrent(&root));
    const DIFPIN& whole = *root->pComponents->pDiffPins;
    EXPECT_EQ(whole.dVdiff, 0.0);
    EXPECT_EQ(whole.eVdiff, NUM_VALUE);
    EXPECT_EQ(whole.dTdelayMin, 2e-9);
    EXPECT_EQ(whole.dTdelayMax, 1e-9);
    EXPECT_EQ(whole.eTdelayMax, NUM_VALUE);
    const DIFPIN& four = *whole.pNext;
    EXPECT_EQ(four.iColumns, 4);
    EXPECT_EQ(four.eTdelayTyp, NUM_VALUE);
    EXPECT_EQ(four.eTdelayMin, NUM_ABSENT);
    EXPECT_EQ(four.eTdelayMax, NUM_ABSENT);
}

TEST(DiffPin, EachPinStandsInOnePair)
{
    const std::string error = "ERROR - Component 'U1': ";
    const std::string warning = "WARNING - Component 'U1': ";
    const std::string same = "ERROR (line   18) - Diff_Pin column pin same as inv_pin column pin.";
    const struct {
        std::string lines;
        ::Lines messages;
    } rows[] = {
        {"1 2 0 0\n3 4 0 0\n5 6 0 0\n", {}},
        {"1 2 0 0\n1 3 0 0\n", {warning + "Diff_Pin '1' is not unique."}},
        {"1 2 0 0\n3 1 0 0\n", {error + "Inv_pin '1' already in use as a Diff_pin."}},
        {"1 2 0 0\n2 3 0 0\n", {error + "Diff_pin '2' already in use as an inv_pin."}},
        {"1 2 0 0\n3 2 0 0\n", {warning + "inv_pin '2' is not unique."}},
        {"1 2 0 0\n2 1 0 0\n1 2 0 0\n",
         {error + "Inv_pin '1' already in use as a Diff_pin.",
          error + "Diff_pin '2' already in use as an inv_pin.", warning + "Diff_Pin '1' is not unique.",
          warning + "inv_pin '2' is not unique.", error + "Inv_pin '2' already in use as a Diff_pin.",
          error + "Diff_pin '1' already in use as an inv_pin."}},
        {"1 1 0 0\n1 2 0 0\n",
         {same, warning + "Diff_Pin '1' is not unique.",
          error + "Diff_pin '1' already in use as an inv_pin."}},
        {"7 8 0 0\n",
         {error + "Diff_Pin '7' not previously declared in Pin section.",
          error + "inv_pin '8' not previously declared in Pin section."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PairMessages(FOUR, row.lines), row.messages) << row.lines;
    }
}

// A pin of a pair is found in either column, also in a list that grew and in one that took the place of
// another.
TEST(DiffPin, PinsOfPairsAreFound)
{
    DIFPIN* pairs = nullptr;
    for (const char* line : {"1 2 0 0", "3 4 0 0"}) {
        EXPECT_FALSE(DIFPIN_Has(pairs, "4"));
        DIFPIN* pair = nullptr;
        ASSERT_TRUE(DIFPIN_ReadLine(line, 4, &pair));
        DIFPIN_Add(pairs, pair);
        EXPECT_TRUE(DIFPIN_Has(pairs, "1"));
    }
    EXPECT_TRUE(DIFPIN_Has(pairs, "4"));
    DIFPIN_Free(pairs);
    EXPECT_FALSE(DIFPIN_Has(nullptr, "4"));
}

// A differential model without [External Model] gets a reminder that names nothing; with one, its pin has to
// be paired. The walk ends at the first pin without a model, supplies and unused pins apart.
TEST(DiffPin, DifferentialModelsNeedExternalModelAndPair)
{
    const auto found = [](std::string_view pins, bool external) {
        TalIbis* const handle = ReadHandle(
            Bare(Component("U1", pins, "[Diff Pin] " + FOUR + "\n1 2 0.1 NA\n") +
                 "[Model] D\nModel_type I/O_diff\nC_comp 1p 1p 1p\n[Voltage Range] 3 3 3\n" + Model("M")));
        ibis* root = nullptr;
        EXPECT_TRUE(IBIS_GetCurrent(&root));
        nuibis_mdl& model = *MDL_Find("D", root->pModels);
        alignas(std::max_align_t) static char block;
        EXTBLOCK* const former = model.pExternalModel;
        model.pExternalModel = external ? reinterpret_cast<EXTBLOCK*>(&block) : nullptr;
        const IbisErrorContainer& findings = *handle->testComponent("U1");
        model.pExternalModel = former;
        ::Lines lines;
        for (std::size_t i = 0; i < findings.getNumErrors(); ++i) {
            if (const std::string text = findings.getErrMsg(i);
                text.find("DIFF") != text.npos || text.find("Diff_Pin]") != text.npos) {
                lines.push_back(text.substr(0, text.rfind('\n')));
            }
        }
        return Unfolded(lines);
    };
    const std::string reminder = "ERROR - TBD: Put this in model check, *_DIFF without external model";
    const std::string pins = "1 S D 1 1n 1p\n2 S D 1 1n 1p\n3 S gnd 1 1n 1p\n5 S M 1 1n 1p\n4 S D 1 1n 1p\n";
    EXPECT_EQ(found(pins, false), (::Lines{reminder, reminder, reminder}));
    EXPECT_EQ(
        found(pins, true),
        (::Lines{"ERROR - Component <U1> pin <4> model <D> type <I/O_diff> using [External Model] without "
                 "corresponding [Diff_Pin]"}));
    EXPECT_EQ(found("1 S D 1 1n 1p\n2 S X 1 1n 1p\n4 S D 1 1n 1p\n", false), (::Lines{reminder}));
}
