#include "ibis/source/nuibis_pin.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "tests/builders.h"

namespace
{

// [Pin] with this header and these lines; its keyword stands on line 10 of the file.
std::string PinFile(std::string_view header, std::string_view lines, std::string_view body = "",
                    std::string_view version = "4.2")
{
    return Bare(
        "[Component] U1\n[Manufacturer] A\n[Package]\nR_pkg 1 1 1\nL_pkg 1n 1n 1n\nC_pkg 1p 1p 1p\n[Pin] " +
            std::string(header) + "\n" + std::string(lines) + std::string(body),
        version);
}

const PIN* FirstPin(std::string_view file)
{
    ReadHandle(file);
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return root->pComponents->pPins;
}

}  // namespace

TEST(PinTable, Headers)
{
    const struct {
        const char* header;
        Lines messages;
    } rows[] = {
        {"signal_name model_name", {}},
        {"SIGNAL_NAME Model_Name c_pin r_pin l_pin", {}},
        {"", {"ERROR (line   10) - Unable to find column headers after Pin keyword."}},
        {"model_name signal_name",
         {"ERROR (line   10) - 'signal_name' column header not found or out of order.",
          "ERROR (line   10) - 'model_name' column header not found or out of order."}},
        {"signal_name model_name R_pin",
         {"ERROR (line   10) - Pin keyword column count must be 3 or 6, found 4 columns."}},
        {"signal_name model_name R_pin R_pin x",
         {"ERROR (line   10) - Duplicate column header 'R_pin' .",
          "ERROR (line   10) - Unknown column header 'x' or out of order."}},
        {"signal_name model_name R_pin L_pin C_pin D_pin e f",
         {"ERROR (line   10) - Pin keyword column count must be 3 or 6, found 7 columns."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Messages(PinFile(row.header, "1 S1 NC\n")), row.messages) << row.header;
    }
    EXPECT_EQ(Messages(PinFile("signal_name model_name", "1 S NC\n[Pin] signal_name model_name\n2 S NC\n")),
              (Lines{"ERROR (line   12) - Duplicate Pin keyword found."}));
}

TEST(PinTable, LinesAndNameLimits)
{
    const std::string three = "signal_name model_name";
    const std::string six = "signal_name model_name R_pin L_pin C_pin";
    EXPECT_EQ(Messages(PinFile(six, "1 S1 NC NA 1nH 1pF\n2 S1 nc abc 1nH 1p5\n3 S NC 1\n4 S NC 1 2n\n")),
              (Lines{"ERROR (line   12) - Invalid R_pin Value (\"abc\")",
                     "WARNING (line   12) - Suspicious C_pin Pin Value (\"1p5\"); Numeric in Scale",
                     "ERROR (line   13) - Each line of Pin data must contain either 3 or 6 columns.",
                     "ERROR (line   14) - Each line of Pin data must contain either 3 or 6 columns."}));
    EXPECT_EQ(
        Messages(PinFile(three, "1 S1 NC 1 1n 1p 7\n2\n")),
        (Lines{"ERROR (line   11) -\n    When using 6 columns, the headers R_pin, L_pin, and C_pin must be "
               "listed.",
               "ERROR (line   12) - Signal name not found.", "ERROR (line   12) - Model name not found.",
               "ERROR (line   12) - Each line of Pin data must contain either 3 or 6 columns.",
               "ERROR - Component 'U1': Model '' for Pin '2' not defined."}));
    EXPECT_EQ(
        Messages(PinFile(three, "123456 S1 NC\n12345 S2 NC\n12345 S3 NC\n")),
        (Lines{"ERROR (line   11) -\n    Pin string '123456' is too long, truncating to 5 characters.",
               "ERROR (line   12) - Duplicate Pin '12345'.", "ERROR (line   13) - Duplicate Pin '12345'."}));
    const std::string signal(21, 's');
    const Lines cut{"ERROR (line   11) - Signal name string '" + signal +
                    "' is too long, truncating to 20 characters."};
    EXPECT_EQ(Messages(PinFile(three, "1 " + signal + " NC\n", "", "3.2")), cut);
    EXPECT_EQ(Messages(PinFile(three, "1 " + signal + " NC\n", "", "4.0")), Lines{});
}

TEST(PinTable, ValuesFollowTheHeadersOrder)
{
    const PIN* pin = FirstPin(PinFile("signal_name model_name C_pin R_pin L_pin", "1 S NC 1p 2 NA\n"));
    EXPECT_EQ(pin->dCpin, 1e-12);
    EXPECT_EQ(pin->dRpin, 2.0);
    EXPECT_EQ(pin->eLpin, NUM_NA);
    pin = FirstPin(PinFile("signal_name model_name", "1 S NC 1 2n x\n"));
    EXPECT_EQ(pin->dRpin, 1.0);
    EXPECT_EQ(pin->dLpin, 2e-9);
    EXPECT_EQ(pin->eCpin, NUM_ABSENT);
}

TEST(PinCheck, ModelsAndSelectors)
{
    const std::string header = "signal_name model_name";
    const std::string series =
        "[Model] ser\nModel_type Series\nC_comp 1p 1p 1p\n[Voltage Range] 1 1 1\n[R Series] 1 1 1\n";
    const auto found = [&](std::string_view pins, std::string_view body, std::string_view version = "4.2") {
        return MessagesWith("Pin '", PinFile(header, pins, body, version));
    };
    EXPECT_EQ(found("1 S M\n2 S pOwEr\n3 S Gnd\n4 S nc\n5 S CircuitCall\n", Model("M")), Lines{});
    EXPECT_EQ(found("1 S m\n", Model("M")),
              (Lines{"ERROR - Component 'U1': Model 'm' for Pin '1' not defined."}));
    EXPECT_EQ(found("1 S ser\n", series), (Lines{"ERROR - Component 'U1':  Pin '1': Model 'ser': model type "
                                                 "for a Pin cannot be Series or Series_switch."}));
    const std::string selector = "[Model Selector] sel\nM first\nser second\n";
    EXPECT_EQ(found("1 S sel\n", Model("M") + series + selector),
              (Lines{"ERROR - Component U1: Pin '1' is associated with a Model Selector 'sel' which "
                     "references model of type "
                     "'Series'"}));
    EXPECT_EQ(found("1 S sel\n2 S none\n", Model("M"), "2.1"),
              (Lines{"ERROR - Component 'U1': Model 'sel' for Pin '1' not defined.",
                     "ERROR - Component 'U1': Model 'none' for Pin '2' not defined."}));
}

// A model is referenced by its pin; of several that nothing refers to, the file's last is told.
TEST(PinCheck, MarksModelsAsReferenced)
{
    EXPECT_EQ(MessagesWith("not referenced", PinFile("signal_name model_name", "1 S M2\n",
                                                     Model("M1") + Model("M2") + Model("M3"))),
              (Lines{"WARNING - Model M3 not referenced in any [Pin], [Model Selector], [Driver Schedule] or "
                     "[Series Pin "
                     "Mapping] sections.\n No more warnings will be generated for un-referenced models"}));
}
