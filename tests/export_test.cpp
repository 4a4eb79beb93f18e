// `talibis export`: the document against its schema, and the numbers in it.

#include "tests/builders.h"
#include "tests/programs.h"
#include "tests/schema.h"

#include <cstdlib>

namespace
{

using nlohmann::json;

Result Export(const std::string& words, bool withErrors = false)
{
    return RunProgram("env", "-C '" + TestFolder() + "' '" TALIBIS_PROGRAM "' export " + words, withErrors);
}

// The document, which keeps to the schema.
json Document(const std::string& words)
{
    static const json schema = ReadSchema("docs/schema/export.schema.json");
    const Result result = Export(words);
    EXPECT_EQ(result.status, 0) << words;
    const json document = json::parse(result.out);
    EXPECT_EQ(SchemaFaults(schema, document), Lines{}) << words;
    return document;
}

json Triple(const json& typ, const json& min, const json& max)
{
    return {{"typ", typ}, {"min", min}, {"max", max}};
}

// Every block that a model may hold.
const std::string RICH_MODEL =
    "[Model] M\nModel_type I/O\nPolarity Inverting\nEnable Active-Low\nVinl = 0.8\nVinh = 2\nVmeas = 1.5\n"
    "Cref = 15p\nRref = 50\nVref = 0\nCref_diff = 1p\nRref_diff = 100\nC_comp 5p 4p NA\nC_comp_pullup 1p 1p "
    "1p\n"
    "[Model Spec]\nVinh 2 1.9 2.1\nVmeas 1.5 NA NA\n[Receiver Thresholds]\nVth = 1.5\nVinh_ac = 0.2\n"
    "Reference_supply Pullup_ref\n[Add Submodel]\nS Driving\n[Driver Schedule]\nN 1n NA 2n NA\nO NA 4n NA "
    "4n\n"
    "[C Comp Corner]\nC_comp 5p 6p 4p\n[Temperature Range] 25 100 0\n[Voltage Range] 3.3 3 3.6\n"
    "[Pullup Reference] 3.3 3 3.6\n[TTgnd] 1n 2n NA\n[Rgnd] 50 NA NA\n"
    "[Pulldown]\n-3.3 -10m -9m NA\n0 0 0 0\n3.3 0.1 90m 1.1E-1\n[ISSO_PD]\n0 1m 1m 1m\n1 0 0 0\n"
    "[Ramp]\ndV/dt_r 1/2n NA 1.5/1n\ndV/dt_f 1/1n 1/1n 1/1n\nR_load = 40\n"
    "[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\nC_fixture = 2p\n0 0 0 NA\n1n 1 2 3\n"
    "[Composite Current]\n0 1m 1m 1m\n1n 2m 2m 2m\n"
    "[External Model]\nLanguage SPICE\nCorner Typ c.sp buf\nPorts A_signal A_gnd\n[End External Model]\n"
    "[Algorithmic Model]\nExecutable Linux_gcc_64 code.so p.ami\n[End Algorithmic Model]\n";

const std::string OTHERS =
    "[Model] W\nModel_type Series_switch\n[On]\n[R Series] 5 4 6\n[Series MOSFET]\nVds = 1\n0 0 0 0\n3 1m 1m "
    "1m\n"
    "[Off]\n[C Series] 1p 1p 1p\n"
    "[Model Selector] SEL\nM first one\nW\n"
    "[Submodel] S\nSubmodel_type Dynamic_clamp\n[Submodel Spec]\nV_trigger_r 1 NA NA\nOff_delay 1n 1n 1n\n"
    "[GND Pulse Table]\n0 0 0 0\n1n 1 1 1\n[GND Clamp]\n-1 -1m NA NA\n0 0 NA NA\n"
    "[Define Package Model] P\n[Manufacturer] A\n[OEM] B\n[Description] C\n[Number Of Sections] 2\n"
    "[Number Of Pins] 2\n[Pin Numbers]\n1 Len=1 L=2n C=3p /\nFork\nLen=0 R=4 /\nEndfork\nLen=0.5 L=1n /\n2 "
    "Len=0 "
    "L=1n /\n"
    "[End Package Model]\n";

const std::string RELATIONS = "[Package Model] P\n[Pin Mapping] pulldown_ref pullup_ref\n1 G V\n2 NC "
                              "V\n[Diff Pin] inv_pin vdiff tdelay_typ\n"
                              "1 2 0.2 1n\n[Series Pin Mapping] pin_2 model_name function_table_group\n1 2 W "
                              "3\n[Series Switch Groups]\n"
                              "On 3 /\n";

const std::string AMI =
    "(m (Reserved_Parameters (AMI_Version (Usage Info)(Type String)(Value \"6.1\")))(Model_Specific "
    "(a (Usage In)(Type Float)(Range 0.5 0 1)(Description \"gain\"))(g (s (Usage Out)(Type Integer)(Value "
    "3)))"
    "(b (Usage In)(Type Boolean)(Default True)(List True False))))";

std::string RichFile()
{
    WriteTestFile("code.so", "");
    WriteTestFile("p.ami", AMI);
    WriteTestFile(
        "rich.ibs",
        Header("5.1", "rich.ibs") +
            Edit(Component("U1", "1 a SEL 1 2n NA\n2 b M NA NA 3p\n3 v POWER\n4 g GND\n5 n NC\n", RELATIONS),
                 {{"[Manufacturer]", "Si_location Die\n[Manufacturer]"}}) +
            RICH_MODEL + OTHERS + "[End]\n");
    return "rich.ibs";
}

}  // namespace

TEST(Export, AComponentWithItsPins)
{
    const json document = Document(RichFile());
    EXPECT_EQ(document["version"], 1);
    EXPECT_EQ(document["header"]["IBIS Ver"], "5.1");
    const json& component = document["components"][0];
    EXPECT_EQ(component["Pin"]["pin"], (json{"1", "2", "3", "4", "5"}));
    EXPECT_EQ(component["Pin"]["model_name"], (json{"SEL", "M", "POWER", "GND", "NC"}));
    EXPECT_EQ(component["Pin"]["L_pin"], (json{2e-9, nullptr, nullptr, nullptr, nullptr}));
    EXPECT_EQ(component["Pin Mapping"]["pullup_ref"], (json{"V", "V"}));
    EXPECT_EQ(component["Pin Mapping"]["ext_ref"], (json{nullptr, nullptr}));
    EXPECT_EQ(component["Diff Pin"]["vdiff"], (json{0.2}));
    EXPECT_EQ(component["Series Pin Mapping"]["model_name"], (json{"W"}));
    EXPECT_EQ(component["Series Switch Groups"], (json{{{"state", "On"}, {"groups", {"3"}}}}));
    EXPECT_EQ(component["Si_location"], "Die");
    EXPECT_EQ(document["model_selectors"][0]["models"],
              (json{{"model", {"M", "W"}}, {"description", {"first one", nullptr}}}));
}

TEST(Export, AModelWithItsTables)
{
    const json document = Document(RichFile());
    ASSERT_EQ(document["models"].size(), 2U);
    const json& model = document["models"][0];
    const std::vector<std::pair<std::string, json>> values{
        {"/name", "M"},
        {"/Model_type", "I/O"},
        {"/Polarity", "Inverting"},
        {"/Enable", "Active-Low"},
        {"/Cref", 1.5e-11},
        {"/C_comp", Triple(5e-12, 4e-12, nullptr)},
        {"/C_comp_gnd_clamp", nullptr},
        {"/Model Spec/Vmeas", Triple(1.5, nullptr, nullptr)},
        {"/Receiver Thresholds/Vinh_ac", 0.2},
        {"/Receiver Thresholds/Reference_supply", "Pullup_ref"},
        {"/C Comp Corner/C_comp", Triple(5e-12, 6e-12, 4e-12)},
        {"/Driver Schedule/model", {"N", "O"}},
        {"/Driver Schedule/rise_off", {nullptr, 4e-9}},
        {"/Add Submodel", {{{"name", "S"}, {"mode", "Driving"}}}},
        {"/Pulldown/v", {-3.3, 0, 3.3}},
        {"/Pulldown/max", {nullptr, 0, 0.11}},
        {"/Pullup", nullptr},
        {"/ISSO_PD/typ", {0.001, 0}},
        {"/Ramp/dV~1dt_r/typ", {{"dV", 1}, {"dt", 2e-9}}},
        {"/Ramp/dV~1dt_r/min/dt", nullptr},
        {"/Ramp/R_load", 40},
        {"/Rising Waveform/0/C_fixture", 2e-12},
        {"/Rising Waveform/0/table/t", {0, 1e-9}},
        {"/Rising Waveform/0/table/max", {nullptr, 3}},
        {"/Rising Waveform/0/Composite Current/typ", {0.001, 0.002}},
        {"/Falling Waveform", json::array()},
        {"/External Model/typ", {{"file", "c.sp"}, {"circuit", "buf"}}},
        {"/External Model/min", nullptr},
        {"/Algorithmic Model/0/parameter_file", "p.ami"},
    };
    for (const auto& [path, value] : values) {
        EXPECT_EQ(model[json::json_pointer(path)], value) << path;
    }
    const json& series = document["models"][1];
    EXPECT_EQ(series["On"]["R Series"], Triple(5, 4, 6));
    EXPECT_EQ(series["On"]["Series MOSFET"][0]["table"]["v"], (json{0, 3}));
    EXPECT_EQ(series["Off"]["C Series"]["typ"], 1e-12);
    const json& submodel = document["submodels"][0];
    EXPECT_EQ(submodel["Submodel Spec"]["V_trigger_r"], Triple(1, nullptr, nullptr));
    EXPECT_EQ(submodel["GND Pulse Table"][0]["table"]["t"], (json{0, 1e-9}));
}

TEST(Export, OneModelAndNumbersInTheirShortestForm)
{
    const json one = Document(RichFile() + " --model M");
    EXPECT_FALSE(one.contains("components"));
    EXPECT_EQ(one["models"].size(), 1U);
    EXPECT_EQ(one["submodels"].size(), 1U);
    EXPECT_EQ(Document(RichFile() + " --model W")["submodels"], json::array());
    const std::string text = Export(RichFile() + " --model M").out;
    EXPECT_NE(text.find("\"C_comp\": {\"typ\": 5e-12, \"min\": 4e-12, \"max\": null},\n"), std::string::npos);
    EXPECT_NE(text.find("\"v\": [-3.3, 0, 3.3],\n"), std::string::npos);
    EXPECT_EQ(Export(RichFile() + " --model M").out, text);
}

TEST(Export, PathsAndMatricesOfPackages)
{
    const json package = Document(RichFile())["package_models"][0];
    EXPECT_EQ(package["Pin Numbers"], (json{"1", "2"}));
    EXPECT_EQ(package["paths"][0]["kind"], (json{"Section", "Fork", "Section", "Endfork", "Section"}));
    EXPECT_EQ(package["paths"][0]["Len"], (json{1, nullptr, 0, nullptr, 0.5}));
    EXPECT_EQ(package["paths"][0]["R"], (json{nullptr, nullptr, 4, nullptr, nullptr}));
    WriteTestFile("m.pkg",
                  Header("5.1", "m.pkg") +
                      "[Define Package Model] P\n[Number Of Pins] 3\n[Pin Numbers]\n1\n2\n3\n[Model Data]\n"
                      "[Resistance Matrix] Banded_matrix\n[Bandwidth] 0\n[Row] 1\n1\n[Row] 2\n2\n[Row] 3\n3\n"
                      "[Inductance Matrix] Full_matrix\n[Row] 1\n3n 2n 1n\n[Row] 2\n3n 2n\n[Row] 3\n3n\n"
                      "[Capacitance Matrix] Sparse_matrix\n[Row] 1\n3 -1p\n1 4p\n[Row] 2\n2 4p\n[Row] 3\n"
                      "3 4p\n[End Model Data]\n[End Package Model]\n[End]\n");
    const json matrices = Document("m.pkg")["package_models"][0];
    const auto matrix = [](const char* type, const json& band, const json& row, const json& column,
                           const json& value) {
        return json{{"type", type}, {"bandwidth", band}, {"row", row}, {"column", column}, {"value", value}};
    };
    EXPECT_EQ(matrices["Resistance Matrix"], matrix("Banded_matrix", 0, {0, 1, 2}, {0, 1, 2}, {1, 2, 3}));
    const json inductance = matrices["Inductance Matrix"];
    EXPECT_EQ(inductance["row"], (json{0, 0, 0, 1, 1, 2}));
    EXPECT_EQ(inductance["column"], (json{0, 1, 2, 1, 2, 2}));
    EXPECT_DOUBLE_EQ(inductance["value"][4].get<double>(), 2e-9);
    // Brought into the order of its columns.
    EXPECT_EQ(matrices["Capacitance Matrix"],
              matrix("Sparse_matrix", nullptr, {0, 0, 1, 2}, {0, 2, 1, 2}, {4e-12, -1e-12, 4e-12, 4e-12}));
}

TEST(Export, BoardsAndParameters)
{
    WriteTestFile("chip.ibs", Header("5.1", "chip.ibs") + Component("U", "1 s NC\n") + "[End]\n");
    WriteTestFile("b.ebd",
                  Header("5.1", "b.ebd") +
                      "[Begin Board Description] B\n[Manufacturer] A\n[Number Of Pins] 1\n"
                      "[Pin List] signal_name\nA1 S\n[Path Description] P\nPin A1\nLen=1 L=1n /\nFork\n"
                      "Node U1.1\nEndfork\nNode U2.1\n[Reference Designator Map]\nU1 chip.ibs U\n"
                      "U2 chip.ibs U\n[End Board Description]\n[End]\n");
    const json board = Document("b.ebd")["boards"][0];
    EXPECT_EQ(board["Pin List"], (json{{"pin", {"A1"}}, {"signal_name", {"S"}}}));
    EXPECT_EQ(board["Path Description"][0]["elements"]["kind"],
              (json{"Pin", "Section", "Fork", "Node", "Endfork", "Node"}));
    EXPECT_EQ(board["Path Description"][0]["elements"]["name"],
              (json{"A1", nullptr, nullptr, "U1.1", nullptr, "U2.1"}));
    EXPECT_EQ(board["Reference Designator Map"]["designator"], (json{"U1", "U2"}));
    WriteTestFile("p.ami", AMI);
    const json parameters = Document("p.ami")["parameters"];
    EXPECT_EQ(parameters[1], (json{{"path", {"Model_Specific"}},
                                   {"name", "a"},
                                   {"reserved", false},
                                   {"Usage", "In"},
                                   {"Type", "Float"},
                                   {"Format", "Range"},
                                   {"values", {0.5, 0, 1}},
                                   {"Default", nullptr},
                                   {"value", 0.5},
                                   {"Description", "gain"}}));
    EXPECT_EQ(parameters[0]["value"], "6.1");
    EXPECT_EQ(parameters[2]["path"], (json{"Model_Specific", "g"}));
    EXPECT_EQ(parameters[2]["value"], 3);
    EXPECT_EQ(parameters[3]["value"], true);
}

TEST(Export, WhatIsNotThereIsRefused)
{
    RichFile();
    WriteTestFile("old.ibs", "[IBIS Ver] 1.1\n[File Name] old.ibs\n[File Rev] 1\n[End]\n");
    const std::vector<std::pair<std::string, std::string>> rows{
        {"none.ibs", "ERROR - Unable To Open File 'none.ibs'\ntalibis: none.ibs could not be read\n"},
        {"rich.ibs --model X", "talibis: there is no model 'X' in rich.ibs\n"},
        {"p.ami --model X", "talibis: there is no model 'X' in p.ami\n"},
        {"old.ibs",
         "talibis: old.ibs is of version 1.x, whose files are checked only: there is nothing to export\n"},
    };
    for (const auto& [words, text] : rows) {
        const Result result = Export(words, true);
        EXPECT_EQ(result.out, text);
        EXPECT_EQ(result.status, 2) << words;
    }
}
