// The script functions, through the runtime's own call.

#include "ibis/interface/talibis_qel.h"
#include "platform/qelrt_inspect.h"
#include "tests/queries.h"

#include <set>
#include <span>

namespace
{

// A parameter: a text, or an integer.
struct Parameter {
    const char* text;
    int number = 0;

    Parameter(const char* t) : text(t) {}
    Parameter(const std::string& t) : text(t.c_str()) {}
    Parameter(int n) : text(nullptr), number(n) {}
};

struct Result {
    int status = 0;
    std::string error;
    Lines payload;
    std::vector<int> badParameters;
};

std::string ScalarText(QVALUE value)
{
    int number = 0;
    return qval_integer_value(value, &number) ? std::to_string(number) : qval_value_data(value);
}

Result Call(const char* function, std::initializer_list<Parameter> parameters)
{
    EXPECT_TRUE(talIbis_qel_initialize());
    std::vector<QVALUE> values;
    for (const Parameter& p : parameters) {
        values.push_back(p.text != nullptr ? qval_create_string(p.text) : qval_create_raw_integer(p.number));
    }
    std::vector<QEL_PARM_ERROR> errors;
    const QVALUE value = qel_call(function, values, &errors);
    for (const QVALUE each : values) {
        qval_free_value(each);
    }
    Result result;
    for (const QEL_PARM_ERROR& error : errors) {
        EXPECT_EQ(error.code, 304);
        EXPECT_EQ(error.text, "string parameter is expected");
        result.badParameters.push_back(error.index);
    }
    const QVALUE header = qval_list_item(value, 0);
    qval_integer_value(qval_list_item(header, 0), &result.status);
    result.error = ScalarText(qval_list_item(header, 1));
    const QVALUE payload = qval_list_item(value, 1);
    if (!qval_is_list(payload)) {
        result.payload = {ScalarText(payload)};
    }
    for (std::size_t i = 0; i < qval_list_size(payload); ++i) {
        result.payload.push_back(ScalarText(qval_list_item(payload, i)));
    }
    qval_free_value(value);
    return result;
}

std::string TestFile()
{
    return WriteTestFile("q.ibs", Header("5.1", "q.ibs") + Component("U1", "1 s D\n2 g GND\n3 t E\n") +
                                      Driver("D") +
                                      Driver("E", "[Driver Schedule]\nD 1n NA NA NA\nX 1n NA NA NA\n") +
                                      Model("W") + "[End]\n");
}

// Models with a good, a bad and no parameter file; U is no pin's.
std::string AlgorithmicFile()
{
    const auto keyword = [](const char* file) {
        return "[Algorithmic Model]\nExecutable Linux_gcc_64 code.so " + std::string(file) +
               "\n[End Algorithmic Model]\n";
    };
    WriteTestFile("code.so", "");
    WriteTestFile("bad.ami", "(m)");
    WriteTestFile("p.ami", "(m (Reserved_Parameters (v (Usage Info)(Type Float)(Value 2)))"
                           "(Model_Specific (a (Usage In)(Type Float)(Range 0.5 0 1))))");
    return WriteTestFile("a.ibs", Header("5.1", "a.ibs") + Component("U1", "1 s M\n2 t B\n3 u N\n") +
                                      Model("M", keyword("p.ami")) + Model("B", keyword("bad.ami")) +
                                      Model("N") + Model("U", keyword("bad.ami")) + "[End]\n");
}

}  // namespace

TEST(ScriptFunctions, EachIsRegisteredOnceAndTellsItsParameters)
{
    const QEL_TABLE& table = *talIbis_qel_table();
    EXPECT_STREQ(table.language, "QEL");
    std::set<std::string> names;
    for (const QEL_ROW& row : std::span(table.rows, table.count)) {
        EXPECT_TRUE(std::string_view(row.name).starts_with("de")) << row.name;
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_NE(talIbis_qel_parameters(row.name), nullptr) << row.name;
    }
    EXPECT_STREQ(talIbis_qel_parameters("deGetIbisR_series"), "model state corner");
    EXPECT_EQ(talIbis_qel_parameters("deNone"), nullptr);
}

// Whatever a function takes, a script gets a value for no file and for a parameter of the wrong type.
TEST(ScriptFunctions, FailuresBecomeValues)
{
    const std::string file = TestFile();
    const QEL_TABLE& table = *talIbis_qel_table();
    for (const QEL_ROW& row : std::span(table.rows, table.count)) {
        if (std::string_view(row.name) == "deCheckIbisData") {
            continue;
        }
        EXPECT_EQ(Call(row.name, {}).error, "File reading failed") << row.name;
        EXPECT_EQ(Call(row.name, {file, 1}).badParameters, std::vector{1}) << row.name;
        EXPECT_EQ(Call(row.name, {"/no/such.ibs", "ibs", "x", "x", "x"}).error, "File reading failed");
        if (*talIbis_qel_parameters(row.name) != '\0') {
            const Result result = Call(row.name, {file, "ibs", 7});
            EXPECT_EQ(result.status, -1) << row.name;
            EXPECT_EQ(result.error, "Wrong parameter") << row.name;
            EXPECT_EQ(result.badParameters, std::vector{2}) << row.name;
        }
    }
    const Result second = Call("deGetIbisVinh", {file, "ibs", "W", 3});
    EXPECT_EQ(second.error, "Wrong parameter");
    EXPECT_EQ(second.badParameters, std::vector{3});
}

// One function of each kind of record and number of parameters.
TEST(ScriptFunctions, AnswersOfTheQueries)
{
    const std::string file = TestFile();
    const struct {
        const char* function;
        std::initializer_list<Parameter> parameters;
        int status;
        Lines payload;
    } rows[] = {
        {"deGetIbisModelList", {file, "ibs"}, 0, {"D", "E", "W"}},
        {"deGetIbisVersion", {file, "ibs"}, 0, {"5.1"}},
        {"deHasIbisModelPullup", {file, "ibs", "D"}, 0, {"1"}},
        {"deHasIbisModelDriverSchedule", {file, "ibs", "D"}, 0, {"0"}},
        {"deGetIbisModelType", {file, "ibs", "W"}, 0, {"Input"}},
        {"deGetIbisModelType", {file, "ibs", "none"}, -1, {""}},
        {"deGetIbisPinList", {file, "ibs", "U1"}, 0, {"1", "2", "3"}},
        {"deHasIbisSeriesPinMapping", {file, "ibs", "U1", "1"}, 0, {"0"}},
        {"deGetIbisDiffPinList", {file, "ibs", "U1", "1"}, 0, {}},
        {"deGetIbisVinh", {file, "ibs", "D", "Typ"}, 0, {"10000"}},
        {"deGetIbisR_series", {file, "ibs", "D", "On", "Typ"}, 0, {""}},
    };
    for (const auto& row : rows) {
        const Result result = Call(row.function, row.parameters);
        EXPECT_EQ(result.status, row.status) << row.function;
        EXPECT_EQ(result.payload, row.payload) << row.function;
    }
}

TEST(ScriptFunctions, ChecksOfAFileAndOfAModel)
{
    const std::string file = TestFile();
    const std::string clean = WriteTestFile(
        "c.ibs", Header("5.1", "c.ibs") + Component("U1", "1 s D\n2 g GND\n") + Driver("D") + "[End]\n");
    EXPECT_EQ(Call("deCheckIbisData", {clean, "ibs"}).status, 0);
    EXPECT_EQ(Call("deCheckIbisData", {file, "ibs"}).status, 1);
    EXPECT_EQ(Call("deCheckIbisData", {file, "IBS"}).status, 1) << "of the file that is cached";
    EXPECT_EQ(Call("deCheckIbisData", {file, 1}).error, "Wrong parameter");
    EXPECT_EQ(Call("deCheckIbisData", {file, 1}).badParameters, std::vector{1});
    const Result faulty = Call("deCheckIbisModel", {file, "ibs", "E", "IBIS_O"});
    EXPECT_EQ(faulty.status, 1);
    EXPECT_EQ(faulty.error, "ERROR - Model X used in the Driver Schedule of Model E is not defined\n");
    EXPECT_EQ(faulty.payload, Lines{});
    EXPECT_EQ(Call("deCheckIbisModel", {file, "ibs", "W", "IBIS_I"}).status, 2);
    EXPECT_EQ(Call("deCheckIbisModel", {file, "ibs", "D", ""}).status, 0);
    EXPECT_EQ(Call("deCheckIbisModel", {file, "ibs", "D"}).error, "Wrong parameter");
}

TEST(ScriptFunctions, AlgorithmicModels)
{
    const std::string file = AlgorithmicFile();
    const struct {
        const char* function;
        std::initializer_list<Parameter> parameters;
        Lines payload;
    } rows[] = {
        {"deGetIbisAMIfileName", {file, "ibs", "M"}, {"p.ami"}},
        {"deGetIbisAMIParamNum", {file, "ibs", "M"}, {"2"}},
        {"deGetIbisAMIParamNum", {file, "ibs", "B"}, {"0"}},
        {"deGetIbisAMIParamAttributes", {file, "ibs", "M", 1}, {"In", "Float", "Range", "0.5", "null"}},
        {"deGetIbisAMIParamTree", {file, "ibs", "M", 1}, {"m", "Model_Specific", "a"}},
        {"deGetIbisAMIDataChoices", {file, "ibs", "M", 0}, {"Value", "2", "2"}},
        {"deGetIbisAMIParamInfo", {file, "ibs", "M", 0}, {"(Usage Info) (Type Float) (Format Value 2) "}},
    };
    for (const auto& row : rows) {
        const Result result = Call(row.function, row.parameters);
        EXPECT_EQ(result.error, "") << row.function;
        EXPECT_EQ(result.status, 0) << row.function;
        EXPECT_EQ(result.payload, row.payload) << row.function;
    }
    const Result beyond = Call("deGetIbisAMIParamInfo", {file, "ibs", "M", 2});
    EXPECT_EQ(beyond.status, -1);
    EXPECT_EQ(beyond.error, "Error indexing AMI parameters from the AMI file 'p.ami'.\n"
                            " Please check the AMI file and/or reset the AMI component.");
    // An integer that is none is told in the answer alone.
    const Result text = Call("deGetIbisAMIParamInfo", {file, "ibs", "M", "0"});
    EXPECT_EQ(text.status, -1);
    EXPECT_EQ(text.error, "Wrong parameter");
    EXPECT_EQ(text.badParameters, std::vector<int>{});
}

TEST(ScriptFunctions, AModelIsCheckedWithItsParameterFile)
{
    const std::string file = AlgorithmicFile();
    const std::string faulty = "ERROR - Too few nodes in branches or leaves.\n";
    const std::string unused = "WARNING - Model U not referenced in any [Pin], [Model Selector], [Driver "
                               "Schedule] or [Series Pin Mapping] sections.\n No more warnings will be "
                               "generated for un-referenced models\n";
    const struct {
        const char* model;
        const char* symbol;
        int status;
        std::string error;
    } rows[] = {
        {"M", "IBIS_Rx_AMI", 0, ""},     {"B", "IBIS_Rx_AMI", 1, faulty},
        {"B", "IBIS_Tx_AMI", 1, faulty}, {"B", "IBIS_XtlkTx_AMI", 1, faulty},
        {"B", "IBIS_XtlkRx_AMI", 0, ""}, {"B", "IBIS_I", 0, ""},
        {"U", "IBIS_I", 2, unused},      {"U", "IBIS_Rx_AMI", 1, unused + "\n" + faulty},
        {"N", "IBIS_Rx_AMI", 0, ""},
    };
    for (const auto& row : rows) {
        const Result result = Call("deCheckIbisModel", {file, "ibs", row.model, row.symbol});
        EXPECT_EQ(result.status, row.status) << row.model << row.symbol;
        EXPECT_EQ(result.error, row.error) << row.model << row.symbol;
    }
}
