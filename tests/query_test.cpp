// Query records, and the queries about components and pins.

#include "ibis/interface/talibis_query.h"

#include "platform/qelrt_inspect.h"
#include "tests/builders.h"

#include <cstdlib>
#include <cstring>
#include <sstream>

namespace
{

Lines Rows(const TalIbisListQueryData& list)
{
    return {list.getData().begin(), list.getData().end()};
}

template <class Record> std::string Printed(const Record& record)
{
    std::ostringstream out;
    record.output(out);
    return out.str();
}

// A component with mapped pins ahead of a second one, and a model of type I/O.
TalIbis* TwoComponents()
{
    return ReadHandle(Bare(
        Component(
            "U1", "A1 sa M 1 NA 1p\nA2 sb GND 2 2n x\nA3 sc M\n",
            "[Pin Mapping] pulldown_ref pullup_ref gnd_clamp_ref power_clamp_ref\nA1 VSS VDD VSSC VDDC\n") +
            Component("U2", "B1 s NC\n") + Model("M"),
        "4.2"));
}

}  // namespace

TEST(QueryRecord, ListOwnsItsTrimmedStrings)
{
    TalIbisListQueryData list;
    list.insert(strdup("abc \t\n"));
    list.insert(strdup("   "));
    list.insert(nullptr);
    EXPECT_EQ(Rows(list), (Lines{"abc", " "}));
    EXPECT_EQ(Printed(list), "    abc\n     \n");
    list.setUnformatedError(QueryWarning, "partly");
    list.setUnformatedError(QueryError, nullptr);
    EXPECT_EQ(Printed(list), "Error: partly    abc\n     \n");
    list.clear();
    EXPECT_EQ(list.size(), 0U);
    EXPECT_EQ(list.getStatus(), QueryOk);
    EXPECT_EQ(list.getErrMsg(), "");
}

TEST(QueryRecord, StatusOutsideItsRangeReadsAsOk)
{
    TalIbisStringQueryData text;
    text.setData("x");
    text.setFormatedError(static_cast<StatusType>(7), "%s", std::string(5000, 'e').c_str());
    EXPECT_EQ(text.getStatus(), 0);
    EXPECT_EQ(text.getErrMsg().size(), 4095U);
    EXPECT_EQ(Printed(text), "x");
    EXPECT_EQ(text.size(), 1U);
    TalIbisBooleanQueryData flag;
    flag.setData(true);
    flag.clear();
    EXPECT_TRUE(flag.status());
    flag.setUnformatedError(QueryEmpty, "none");
    EXPECT_EQ(Printed(flag), "Error: none1");
}

TEST(QueryRecord, BecomesAValueOfTheLanguage)
{
    TalIbisListQueryData list;
    list.setUnformatedError(QueryWarning, "w");
    list.insert(strdup("one"));
    const QVALUE value = list.createQval();
    ASSERT_EQ(qval_list_size(value), 2U);
    int status = 0;
    EXPECT_EQ(qval_integer_value(qval_list_item(qval_list_item(value, 0), 0), &status), 1);
    EXPECT_EQ(status, QueryWarning);
    EXPECT_STREQ(qval_value_data(qval_list_item(qval_list_item(value, 0), 1)), "w");
    EXPECT_EQ(qval_list_size(qval_list_item(value, 1)), 1U);
    EXPECT_STREQ(qval_value_data(qval_list_item(qval_list_item(value, 1), 0)), "one");
    qval_free_value(value);
}

TEST(ComponentQueries, NamesInFileOrder)
{
    const TalIbis* const file = TwoComponents();
    TalIbisListQueryData list;
    file->getCompList(list);
    EXPECT_EQ(Rows(list), (Lines{"U1", "U2"}));
    file->getPinList("U1", list);
    EXPECT_EQ(Rows(list), (Lines{"A1", "A2", "A3"}));
    file->getPinList("none", list);
    EXPECT_EQ(list.size(), 0U);
    EXPECT_EQ(list.getStatus(), QueryOk);
    std::vector<std::string> names;
    file->getCompListQt(&names);
    EXPECT_EQ(names, (Lines{"U1", "U2"}));
    Lines pins;
    Lines signals;
    Lines models;
    file->getPinModelListQt(&pins, &signals, &models, "U1");
    EXPECT_EQ(pins, (Lines{"A1", "A2", "A3"}));
    EXPECT_EQ(signals, (Lines{"sa", "sb", "sc"}));
    EXPECT_EQ(models, (Lines{"M", "GND", "M"}));
    const TalIbis* const empty = ReadHandle(Bare(""));
    empty->getCompList(list);
    EXPECT_EQ(list.getStatus(), QueryEmpty);
    EXPECT_EQ(list.getErrMsg(), "No component detected in the IBIS file '" + TestFolder() + "/t.ibs'");
}

TEST(ComponentQueries, PinsOfAModelType)
{
    const TalIbis* const file = TwoComponents();
    char name[41] = "";
    EXPECT_TRUE(file->getPinName("U1", MODEL_INPUT, 1, name));
    EXPECT_STREQ(name, "A3");
    EXPECT_TRUE(file->getModelName("U1", MODEL_UNSEEN, 1, name));
    EXPECT_STREQ(name, "GND");
    EXPECT_FALSE(file->getPinName("U1", MODEL_INPUT, 2, name));
    EXPECT_FALSE(file->getPinName("U1", MODEL_OUTPUT, 0, name));
    EXPECT_FALSE(file->getPinName(nullptr, MODEL_UNSEEN, 0, name));
    EXPECT_FALSE(file->getPinName("U1", MODEL_UNSEEN, -1, name));
}

TEST(ComponentQueries, PinMappings)
{
    const TalIbis* const file = TwoComponents();
    TalIbisListQueryData list;
    file->getPinMapping("U1", "A1", list);
    EXPECT_EQ(Rows(list),
              (Lines{"Pulldown_ref       Pullup_ref         Gnd_clamp_ref      Power_clamp_ref    Ext_ref",
                     std::string(87, '-'), "VSS                VDD                VSSC               VDDC"}));
    file->getPinMappingL("U1", "A1", list);
    EXPECT_EQ(Rows(list), (Lines{"VDD", "VSS", "VDDC", "VSSC"}));
    file->getPinMapping("U1", "A2", list);
    EXPECT_EQ(list.size(), 0U);
    EXPECT_EQ(list.getStatus(), QueryOk);
    file->getPinMappingL("U9", "A1", list);
    EXPECT_EQ(list.getStatus(), QueryError);
    EXPECT_EQ(list.getErrMsg(), "Component 'U9' not found in the IBIS file '" + TestFolder() + "/t.ibs'");
}

TEST(ComponentQueries, Parasitics)
{
    const TalIbis* const file = TwoComponents();
    TalIbisStringQueryData text;
    const struct {
        void (TalIbis::*query)(const char*, const char*, TalIbisStringQueryData&) const;
        const char* component;
        const char* second;
        int status;
        const char* result;
    } rows[] = {
        {&TalIbis::getR_pin, "U1", "A2", 0, "2"},        {&TalIbis::getL_pin, "U1", "A1", 0, "NA"},
        {&TalIbis::getC_pin, "U1", "A2", 0, ""},         {&TalIbis::getC_pin, "U1", "A1", 0, "1e-12"},
        {&TalIbis::getR_pin, "U9", "A1", 0, ""},         {&TalIbis::getR_pkg, "U1", "Typ", 0, "0.05"},
        {&TalIbis::getL_pkg, "U1", "Min", 0, "1e-09"},   {&TalIbis::getC_pkg, "U1", "Max", 0, "1.2e-12"},
        {&TalIbis::getC_pkg, "U1", "max", 0, "1e-12"},   {&TalIbis::getC_pkg, "U1", "Empty", 0, ""},
        {&TalIbis::getC_pkg, "U1", nullptr, 0, "1e-12"}, {&TalIbis::getR_pkg, "U9", "Typ", -1, ""},
        {&TalIbis::getR_pkg, nullptr, "Typ", 0, ""},
    };
    for (const auto& row : rows) {
        (file->*row.query)(row.component, row.second, text);
        EXPECT_EQ(text.getStatus(), row.status);
        EXPECT_EQ(text.getData(), row.result);
    }
}

TEST(ComponentQueries, VersionString)
{
    TalIbisStringQueryData text;
    ReadHandle("\n  \n[IBIS_Ver]   5.1   | comment\n[File Name] t.ibs\n[End]\n")->getVersionString(text);
    EXPECT_EQ(text.getData(), "5.1");
    TalIbis().getVersionString(text);
    EXPECT_EQ(text.getData(), "Filename is not given");
    EXPECT_EQ(text.getStatus(), QueryOk);
    TalIbis("/no/such.ibs", IBIS_FILE_IBS, IBIS_VER_5).getVersionString(text);
    EXPECT_EQ(text.getData(), "Version Unknown");
    EXPECT_EQ(text.getErrMsg(), "File was not accessible");
}

// The checks of one component run on its own file, also when another one was read since.
TEST(ComponentQueries, TestComponent)
{
    const TalIbis* const file = TwoComponents();
    const Lines expected{"ERROR - Component 'U1': Pin 'A2' not referenced in Pin Mappings.\n",
                         "ERROR - Component 'U1': Pin 'A3' not referenced in Pin Mappings.\n"};
    const std::string other = WriteTestFile("other.ibs", Bare(""));
    TalIbis* handle = nullptr;
    talReadIbisFile(other.c_str(), IBIS_FILE_IBS, &handle);
    const IbisErrorContainer* findings = file->testComponent("U1");
    Lines found;
    for (std::size_t i = 0; i < findings->getNumErrors(); ++i) {
        found.emplace_back(findings->getErrMsg(i));
    }
    std::erase_if(found,
                  [](const std::string& line) { return line.find("not referenced") == std::string::npos; });
    EXPECT_EQ(found, expected);
    findings = file->testComponent(nullptr);
    EXPECT_STREQ(findings->getErrMsg(std::size_t{0}), "Component name is not given");
    findings = file->testComponent("U9");
    EXPECT_EQ(findings->getErrorStatus(), IBIS_STATUS_ERROR);
    EXPECT_EQ(std::string(findings->getErrMsg(std::size_t{0})),
              "Component 'U9' not found in the IBIS file '" + TestFolder() + "/t.ibs'");
}

// A record that holds the error of a former query: most queries clear it, and these few go on with it.
TEST(Queries, FewKeepTheFormerStatus)
{
    const TalIbis& file = *TwoComponents();
    const auto status = [](auto record, auto query) {
        record.setUnformatedError(QueryWarning, "former");
        query(record);
        return record.getErrMsg();
    };
    const auto text = [&](auto query) { return status(TalIbisStringQueryData(), query); };
    const auto flag = [&](auto query) { return status(TalIbisBooleanQueryData(), query); };
    const auto list = [&](auto query) { return status(TalIbisListQueryData(), query); };
    const auto kept = [&](const std::string& found) { EXPECT_EQ(found, "former"); };
    const auto cleared = [&](const std::string& found) { EXPECT_EQ(found, ""); };
    kept(list([&](auto& r) { file.getRgnd("M", r); }));
    kept(list([&](auto& r) { file.getSeriesPinMapping(nullptr, "A1", r); }));
    kept(list([&](auto& r) { file.getSeriesSwitchGroup(nullptr, r); }));
    kept(list([&](auto& r) { file.getIbisPkgModel(nullptr, "A1", r); }));
    kept(list([&](auto& r) { file.getIbisPkgMatrixModel("U1", nullptr, r); }));
    kept(list([&](auto& r) { file.EbdNodeFork(nullptr, r); }));
    kept(text([&](auto& r) { file.getR_series("M", "On", "Typ", r); }));
    kept(text([&](auto& r) { file.getLc_series(nullptr, "On", "Typ", r); }));
    kept(text([&](auto& r) { file.getR_fixture2("M", r); }));
    kept(text([&](auto& r) { file.getIbisPkgModelType("U1", r); }));
    kept(flag([&](auto& r) { file.hasModelSelector("none", "", r); }));
    kept(flag([&](auto& r) { file.hasModelDriverSchedule("M", r); }));
    kept(flag([&](auto& r) { file.hasPullup("M", r); }));
    kept(flag([&](auto& r) { file.hasSeriesPinMapping("U1", "A1", r); }));
    kept(flag([&](auto& r) { file.hasSeries_MOSFET("M", "On", r); }));
    cleared(list([&](auto& r) { file.getRpower("M", r); }));
    cleared(list([&](auto& r) { file.getModelInfo(nullptr, r); }));
    cleared(list([&](auto& r) { file.getSeriesPinMapping("U1", "A1", r); }));
    cleared(list([&](auto& r) { file.getIbisPkgModel("U1", "A1", r); }));
    cleared(list([&](auto& r) { file.getEbdNodeList(nullptr, r); }));
    cleared(list([&](auto& r) { file.getPinMapping(nullptr, "A1", r); }));
    cleared(text([&](auto& r) { file.getR_fixture1("M", r); }));
    cleared(text([&](auto& r) { file.getV_fixture2(nullptr, "Typ", r); }));
    cleared(text([&](auto& r) { file.getR_pin("U9", "A1", r); }));
}

// A handle without a name finds what its root holds and tells of no miss; one without a root finds nothing.
TEST(Queries, HandlesWithoutNameOrRoot)
{
    TalIbis nameless;
    nameless.setIbis(TwoComponents()->getIbis());
    const TalIbis rootless("/no/such.ibs", IBIS_FILE_IBS, IBIS_VER_5);
    TalIbisListQueryData list;
    nameless.getPinList("U1", list);
    EXPECT_EQ(list.size(), 3U);
    for (const TalIbis* file : {static_cast<const TalIbis*>(&nameless), &rootless}) {
        const bool named = file == &rootless;
        const auto expect = [&](StatusType status) {
            EXPECT_EQ(list.getStatus(), named ? status : QueryOk);
            EXPECT_EQ(list.size(), 0U);
        };
        file->getModelInfo("none", list);
        expect(QueryError);
        file->getDiffPin("none", "1", list);
        expect(QueryError);
        file->getPinModelList("none", "", list);
        expect(QueryError);
        file->getSubmodelOffDelay("none", list);
        expect(QueryError);
        file->getEbdRefList(list);
        expect(QueryEmpty);
        file->getPinModelList("none", "Ebd", list);
        expect(QueryEmpty);
        file->getModelSelectorSubModelList("none", "IBIS_I", list);
        expect(QueryOk);
        file->getIbisPkgMatrixModel("none", "1 2", list);
        expect(QueryOk);
        file->getIbisEbdModel("none", list);
        expect(QueryOk);
    }
    EXPECT_EQ(rootless.getIbisRawModelData("M"), nullptr);
    rootless.getCompList(list);
    EXPECT_EQ(list.getStatus(), QueryEmpty);
}
