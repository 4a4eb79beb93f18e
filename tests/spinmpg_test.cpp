#include "tests/builders.h"

namespace
{

std::string SeriesModel(std::string_view name, std::string_view type)
{
    return "[Model] " + std::string(name) + "\nModel_type " + std::string(type) +
           "\nC_comp 1p 1p 1p\n[Voltage Range] 3 3 3\n";
}

// Pins 1 to 3, the switch groups A and B, and [Series Pin Mapping] on line 16.
Lines MappingMessages(std::string_view header, std::string_view lines, std::string_view models,
                      std::string_view version = "4.2")
{
    Lines found = Unfolded(Messages(Bare(Component("U1", "1 S NC 1 1n 1p\n2 S NC 1 1n 1p\n3 S GND 1 1n 1p\n",
                                                   "[Series Switch Groups]\nOn A B /\n[Series Pin Mapping] " +
                                                       std::string(header) + "\n" + std::string(lines)) +
                                             std::string(models),
                                         version)));
    std::erase_if(found, [](const std::string& line) {
        const bool own = line.find("Series Pin Mapping") != line.npos || line.find("(line   1") != line.npos;
        return !own || line.find("not referenced") != line.npos;
    });
    return found;
}

const std::string THREE = "pin_2 model_name";
const std::string FOUR = THREE + " function_table_group";
const std::string SERIES = SeriesModel("SE", "Series");
const std::string SWITCH = SeriesModel("SW", "Series_switch");
const std::string BOTH = SERIES + SWITCH;

}  // namespace

TEST(SeriesPinMapping, Headers)
{
    const std::string at = "ERROR (line   16) - ";
    const std::string wrong = " column header not found or out of order.";
    const std::string count = at + "Series_Pin_Mappings keyword column count must be 3 or 4, found ";
    const struct {
        std::string header;
        Lines messages;
    } rows[] = {
        {FOUR, {}},
        {"PIN_2 Model_name", {}},
        {"", {at + "Unable to find column headers after Series_Pin_Mapping keyword."}},
        {"model_name", {count + "2 columns.", at + "'pin_2'" + wrong, at + "'model_name'" + wrong}},
        {THREE + " group", {at + "'function_table_group'" + wrong}},
        {FOUR + " x", {at + "Unknown column header after 'function_table_group'"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(MappingMessages(row.header, "1 2 SE\n", SERIES), row.messages) << row.header;
        EXPECT_EQ(MappingMessages(row.header, "1 2 SE\n", SERIES, "3.2"), row.messages) << row.header;
    }
    // The keyword is not known before 3.0, and a second one drops the table that the first one began.
    EXPECT_EQ(MappingMessages(FOUR, "", SERIES, "2.1"),
              (Lines{"ERROR (line   14) - Invalid Keyword: Series_Switch_Groups",
                     "ERROR (line   15) - Data for unknown keyword.\nOn A B /",
                     "ERROR (line   16) - Invalid Keyword: Series_Pin_Mapping",
                     "ERROR (line   18) - Invalid Model_type (\"Series\")"}));
    EXPECT_EQ(MappingMessages(FOUR, "1 9 SW A\n[Series Pin Mapping] " + THREE + "\n1 2 SE\n", BOTH),
              (Lines{"ERROR (line   18) - Duplicate Series_Pin_Mapping keyword found."}));
}

TEST(SeriesPinMapping, Lines)
{
    const std::string at = "ERROR (line   17) - ";
    const std::string count = at + " [Series Pin Mapping] Data lines must contain either 3 or 4 columns.";
    const std::string error = "ERROR - Component 'U1': [Series Pin Mapping] ";
    const std::string undefined = error + "Model '' is not defined.";
    const struct {
        std::string line;
        ::Lines messages;
    } rows[] = {
        {"1 2 SE", {}},
        {"1 2", {at + "No Model specified.", count, undefined}},
        {"1",
         {at + "No Pin2 specified.", at + "No Model specified.", count,
          error + "Pin2 '' not previously declared in Pin section.", undefined}},
        {"1 2 SW A x", {at + "Extra data columns on this line."}},
        {"123456 2 SE",
         {at + "Pin1 string '123456' is too long, truncating to 5 characters.",
          error + "Pin1 '12345' not previously declared in Pin section."}},
        {"1 2 SW GND",
         {at + "Illegal use of Reserved Word 'GND'.",
          error + "Model 'SW' uses function GND which is not defined."}},
        {"1 2 NC", {at + "Illegal use of Reserved Word 'NC'.", error + "Model 'NC' is not defined."}},
        {"1 2 SW " + std::string(21, 'g'),
         {at + "Function group Name string '" + std::string(21, 'g') +
              "' is too long, truncating to 20 characters.",
          error + "Model 'SW' uses function " + std::string(20, 'g') + " which is not defined."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(MappingMessages(FOUR, row.line + "\n", BOTH), row.messages) << row.line;
    }
    EXPECT_EQ(MappingMessages(THREE, "1 2 SW A\n", BOTH),
              (::Lines{at + "[Series Pin Mapping] When 4 columns are specified, the heading "
                            "'function_table_group' must be used."}));
}

TEST(SeriesPinMapping, ModelsSuitTheirGroup)
{
    const std::string error = "ERROR - Component 'U1': [Series Pin Mapping] Model ";
    const std::string warning = "WARNING - Component 'U1': [Series Pin Mapping] Model ";
    const std::string models =
        BOTH + SeriesModel("IN", "Terminator") + "[Model] NO\n" + "[Model] BAD\nModel_type what\n";
    const struct {
        std::string line;
        ::Lines messages;
    } rows[] = {
        {"1 2 SE", {}},
        {"1 2 SE A", {warning + "'SE' is of type Series so function_table_group 'A' is ignored."}},
        {"1 2 SE X", {warning + "'SE' is of type Series so function_table_group 'X' is ignored."}},
        {"1 2 SW A", {}},
        {"1 2 SW", {error + "'SW' is of type Series_Switch so function_table_group is required."}},
        {"1 2 SW a", {error + "'SW' uses function a which is not defined."}},
        {"1 2 IN A", {error + "'IN' is not of type Series_Switch."}},
        {"1 2 IN", {error + "'IN' is not of type Series."}},
        {"1 2 NO A", {error + "'NO' is of unknown type."}},
        {"1 2 BAD", {error + "'BAD' is of unknown type."}},
        {"1 2 se", {error + "'se' is not defined."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(MappingMessages(FOUR, row.line + "\n", models), row.messages) << row.line;
    }
}

// What a selector offers is judged as if each model were named, supplies and unknown names apart.
TEST(SeriesPinMapping, SelectorsAreJudgedModelByModel)
{
    const std::string start = " - Component 'U1': [Series Pin Mapping] Model Selector 'SEL' Model ";
    const std::string error = "ERROR" + start;
    const std::string warning = "WARNING" + start;
    const std::string models = "[Model Selector] SEL\nNO x\nGND x\nSE x\nNOWHERE x\nSW x\nIN x\n" + BOTH +
                               SeriesModel("IN", "Input") + "[Model] NO\n";
    const ::Lines absent{error + "'NO' is of unknown type.",
                         error + "'SW' is of type Series_Switch so function_table_group is required.",
                         error + "'IN' is not of type Series."};
    EXPECT_EQ(MappingMessages(FOUR, "1 2 SEL\n", models), absent);
    EXPECT_EQ(MappingMessages(FOUR, "1 2 SEL A\n", models),
              (::Lines{error + "'NO' is of unknown type.",
                       warning + "'SE' is of type Series so function_table_group 'A' is ignored.",
                       error + "'IN' is not of type Series_Switch."}));
    EXPECT_EQ(MappingMessages(FOUR, "1 2 SEL X\n", models),
              (::Lines{error + "'NO' is of unknown type.",
                       warning + "'SE' is of type Series so function_table_group 'X' is ignored.",
                       error + "'SW' uses function X which is not defined.",
                       error + "'IN' is not of type Series_Switch."}));
    ::Lines twice = absent;
    twice.insert(twice.end(), absent.begin(), absent.end());
    EXPECT_EQ(MappingMessages(FOUR, "1 2 SEL\n1 2 SEL\n", models), twice);
}

TEST(SeriesPinMapping, RefersToItsModel)
{
    const std::string pins = Component("U1", "1 S NC 1 1n 1p\n2 S NC 1 1n 1p\n");
    const std::string mapping = "[Series Pin Mapping] " + THREE + "\n1 2 SE\n";
    EXPECT_EQ(MessagesWith("Model SE not referenced", Bare(pins + SERIES)).size(), 1U);
    EXPECT_EQ(MessagesWith("Model SE not referenced", Bare(pins + mapping + SERIES)).size(), 0U);
    EXPECT_EQ(Unfolded(MessagesWith("[Pins]", Bare("[Component] U1\n[Manufacturer] A\n" + mapping + SERIES))),
              (::Lines{"ERROR - Component 'U1': [Series Pin Mapping] defined but [Pins] not defined."}));
}
