// Queries about models, model selectors and submodels.

#include "ibis/source/nuibis_ccorner.h"
#include "ibis/source/nuibis_dly.h"
#include "ibis/source/nuibis_drvsh.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_ramp.h"
#include "tests/queries.h"

namespace
{

const std::string TRIPLE = "typ           min           max";
const std::string RULE = std::string(38, '-');

// A driver M with tables of every kind, a receiver R and what they use.
std::string Everything()
{
    return Ibs(Driver("M",
                      "[Pullup Reference] 3.3 NA 3.6\n"
                      "[Rgnd] 50 NA NA\n"
                      "[Rac] 100 90 110\n"
                      "[Driver Schedule]\nA 1n 2n NA NA\nB NA NA 3n 4n\n"
                      "[Add Submodel]\nS Non-Driving\nT All\nF Driving\n"
                      "[Rising Waveform]\nV_fixture = 3.3\nV_fixture_min = 3.0\nR_fixture = 50\n0 0 0 0\n"
                      "1n 1.65 1.5 1.8\n") +
               Driver("A") + Driver("B") +
               Model("R", "[Model Spec]\nVinh 2.1 2.0 NA\n[C Comp Corner]\nC_comp 3p 2p 4p\n") +
               "[Model Selector] SEL\nM strong driver\nR receiver\n"
               "[Submodel] S\nSubmodel_type Dynamic_clamp\n[Submodel Spec]\nV_trigger_r 1.5 NA 1.6\n"
               "Off_delay 1n 0.5n 2n\n[GND Clamp]\n-1 -1m -1m -1m\n0 0 0 0\n"
               "[Submodel] T\nSubmodel_type Bus_hold\n[Pullup]\n0 0 0 0\n1 -1m -1m -1m\n"
               "[Submodel] U\n"
               "[Submodel] F\nSubmodel_type Fall_back\n[Submodel Spec]\nV_trigger_f 1.2 1.1 1.3\n");
}

const TalIbis& EverythingFile()
{
    return *ReadHandle(Everything());
}

std::string File()
{
    return TestFolder() + "/t.ibs";
}

}  // namespace

TEST(ModelQueries, ListsInFileOrder)
{
    const TalIbis& file = EverythingFile();
    EXPECT_EQ(Rows(file, &TalIbis::getModelList), (Lines{"M", "A", "B", "R"}));
    EXPECT_EQ(Rows(file, &TalIbis::getModelSelectorList), Lines{"SEL"});
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelList, "M"), (Lines{"S", "T", "F"}));
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelList, "R"), Lines{});
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelList, "none"),
              Lines{"-1 Model 'none' not found in the IBIS file '" + File() + "'"});
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelList, nullptr), Lines{});
}

TEST(ModelQueries, SelectorTableFitsTheSymbol)
{
    const TalIbis& file = EverythingFile();
    const auto table = [&](const char* selector, const char* symbol) {
        return Rows(file, &TalIbis::getModelSelectorSubModelList, selector, symbol);
    };
    const std::string dashes(124, '-');
    EXPECT_EQ(table("SEL", ""), (Lines{"ModelDescription", dashes, "M    strong driver", "R    receiver"}));
    EXPECT_EQ(table("SEL", "IBIS_I"), (Lines{"ModelDescription", dashes, "R    receiver"}));
    EXPECT_EQ(table("SEL", "IBIS_3S"), (Lines{"ModelDescription", dashes}));
    EXPECT_EQ(table("SEL", "ibis_i"),
              (Lines{"-1 Model type `ibis_i' is an invalid type", "ModelDescription", dashes}));
    EXPECT_EQ(table("SEL", nullptr).front(), "-1 Model type `Typ' is an invalid type");
    EXPECT_EQ(table("none", "IBIS_I"), Lines{});
    EXPECT_EQ(file.getModelSelectorSubModelListLen("SEL", "IBIS"), 1);
    EXPECT_EQ(file.getModelSelectorSubModelListLen("SEL", "IBIS_3S"), 0);
    EXPECT_EQ(file.getModelSelectorSubModelListLen("none", "IBIS"), 40);
    Lines names{"old"};
    file.getModelSelectorSubModelListQt("SEL", &names, true);
    EXPECT_EQ(names, Lines{"M"});
    file.getModelSelectorSubModelListQt("SEL", &names, false);
    EXPECT_EQ(names, Lines{"R"});
}

// The entries of a selector are models by themselves, for which no algorithmic model is asked.
TEST(ModelQueries, SelectorsAndSymbols)
{
    const TalIbis& file = EverythingFile();
    const struct {
        const char* selector;
        const char* symbol;
        bool former;
        bool expected;
        int status;
    } rows[] = {
        {"SEL", "IBIS_I", false, true, 0},
        {"SEL", "IBIS_3S", true, false, 0},
        {"SEL", "", false, true, 0},
        {"none", "", true, false, 0},
        {"SEL", "x", true, true, -1},
        {"SEL", "x", false, false, -1},
        {"SEL", "IBIS_Rx_AMI", false, true, 0},
        {nullptr, "IBIS_I", true, false, 0},
    };
    for (const auto& row : rows) {
        TalIbisBooleanQueryData flag;
        flag.setData(row.former);
        file.hasModelSelector(row.selector, row.symbol, flag);
        EXPECT_EQ(flag.status(), row.expected) << row.symbol;
        EXPECT_EQ(flag.getStatus(), row.status) << row.symbol;
    }
}

TEST(ModelQueries, InfoAndType)
{
    const TalIbis& file = EverythingFile();
    EXPECT_EQ(Rows(file, &TalIbis::getModelInfo, "M"),
              (Lines{"Model_type               Output", "Polarity                 No Polarity",
                     "Enable                   No Enable", "Vmeas                    1.5",
                     "Cref                     5e-11", "Rref                     500",
                     "Vref                     0"}));
    EXPECT_EQ(Text(file, &TalIbis::getModelTypeString, "R"), "0  Input");
    EXPECT_EQ(Text(file, &TalIbis::getModelTypeString, "SEL"), "0  Output");
    EXPECT_EQ(Text(file, &TalIbis::getModelTypeString, "none"), "-1 Model type not found ");
    EXPECT_EQ(Text(file, &TalIbis::getModelTypeString, nullptr), "0  ");
    const TalIbis& inverting =
        *ReadHandle(Ibs("[Model] I\nModel_type I/O\nPolarity Inverting\nEnable Active-Low\n"
                        "[Model] N\nPolarity Non-Inverting\nEnable Active-High\n"));
    EXPECT_EQ(Rows(inverting, &TalIbis::getModelInfo, "I"),
              (Lines{"Model_type               I/O", "Polarity                 Inverting",
                     "Enable                   Active-Low"}));
    EXPECT_EQ(Rows(inverting, &TalIbis::getModelInfo, "N"),
              (Lines{"Model_type", "Polarity                 Non-Inverting",
                     "Enable                   Active-High"}));
}

TEST(ModelQueries, DriverSchedule)
{
    const TalIbis& file = EverythingFile();
    const Lines table = Rows(file, &TalIbis::getModelDriverScheduleDelay, "M");
    const std::string gap(43, ' ');
    // The list holds the last line of the file first.
    EXPECT_EQ(
        table,
        (Lines{"Model_name" + std::string(34, ' ') + "Rise_on_dly   Rise_off_dly  Fall_on_dly   Fall_off_dly",
               std::string(98, '-'), "B" + gap + "NA            NA            3e-09         4e-09",
               "A" + gap + "1e-09         2e-09         NA            NA"}));
    EXPECT_EQ(Rows(file, &TalIbis::getModelDriverScheduleDelay, "R"), Lines{});
    EXPECT_TRUE(file.hasModelDriverSchedule("M"));
    EXPECT_FALSE(file.hasModelDriverSchedule("none"));
    // A line without delays ends the report.
    drvshmodel* const last = file.getIbis()->pModels->pNext->pNext->pNext->pDriverSchedule->pModels->pNext;
    dly* const delays = std::exchange(last->pDelays, nullptr);
    EXPECT_EQ(Rows(file, &TalIbis::getModelDriverScheduleDelay, "M").size(), 3U);
    last->pDelays = delays;
}

TEST(ModelQueries, Submodels)
{
    const TalIbis& file = EverythingFile();
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelInfo, "M", "S"),
              (Lines{"Mode:     Non-Driving", "Type:     Dynamic_clamp",
                     "Spec:", "  Subparameter    typ           min           max", std::string(54, '-'),
                     "  V_trigger_r     1.5           1.5           1.6"}));
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelInfo, "M", "T"),
              (Lines{"Mode:     All", "Type:     Bus_hold"}));
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelInfo, "M", "F"),
              (Lines{"Mode:     Driving", "Type:     Fall_back",
                     "Spec:", "  Subparameter    typ           min           max", std::string(54, '-'),
                     "  V_trigger_f     1.2           1.1           1.3"}));
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelInfo, "M", "U"),
              (Lines{"-1 Sub model 'U' not found under model 'M' in the IBIS file '" + File() + "'",
                     "Type:     Not_set"}));
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelInfo, "M", "V"),
              Lines{"-1 Sub model 'V' not found in the IBIS file '" + File() + "'"});
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelInfo, "none", "S"),
              Lines{"-1 Model 'none' not found in the IBIS file '" + File() + "'"});
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelOffDelay, "S"),
              (Lines{TRIPLE, RULE, "1e-09         5e-10         2e-09"}));
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelOffDelay, "T"), Lines{});
    EXPECT_EQ(Rows(file, &TalIbis::getSubmodelOffDelay, "V"),
              Lines{"-1 Sub model 'V' not found in the IBIS file '" + File() + "'"});
}

TEST(ModelQueries, Triples)
{
    const TalIbis& file = EverythingFile();
    EXPECT_EQ(Rows(file, &TalIbis::getVoltageRange, "M"),
              (Lines{TRIPLE, RULE, "3.3           3             3.6"}));
    EXPECT_EQ(Rows(file, &TalIbis::getPullupRef, "M"),
              (Lines{TRIPLE, RULE, "3.3           3.3           3.6"}));
    EXPECT_EQ(Rows(file, &TalIbis::getRac, "M"), (Lines{TRIPLE, RULE, "100           90            110"}));
    EXPECT_EQ(Rows(file, &TalIbis::getRac, "R"), Lines{});
    // [Rgnd] goes behind what the record holds.
    TalIbisListQueryData list;
    file.getRac("M", list);
    file.getRgnd("M", list);
    EXPECT_EQ(Answer(list), (Lines{TRIPLE, RULE, "100           90            110", TRIPLE, RULE,
                                   "50            50            50"}));
    file.getRpower("M", list);
    EXPECT_EQ(list.size(), 0U);
}

TEST(ModelQueries, PresenceFlags)
{
    const TalIbis& file = EverythingFile();
    TalIbisBooleanQueryData flag;
    file.hasPullup("M", flag);
    EXPECT_TRUE(flag.status());
    file.hasGndClamp("M", flag);
    EXPECT_FALSE(flag.status());
    flag.setData(true);
    file.hasPowerClamp("none", flag);
    EXPECT_FALSE(flag.status());
    EXPECT_EQ(flag.getErrMsg(), "Model 'none' not found in the IBIS file '" + File() + "'");
    // They do not clear: the error of the former query stays.
    file.hasPulldown("M", flag);
    EXPECT_TRUE(flag.status());
    EXPECT_EQ(flag.getStatus(), QueryError);
    file.hasModelDriverSchedule("none", flag);
    EXPECT_FALSE(flag.status());
}

TEST(ModelQueries, SingleValues)
{
    const TalIbis& file = EverythingFile();
    const struct {
        void (TalIbis::*query)(const char*, const char*, TalIbisStringQueryData&) const;
        const char* model;
        const char* corner;
        const char* result;
    } rows[] = {
        {&TalIbis::getC_comp, "M", "Min", "4e-12"},
        {&TalIbis::getC_comp, "R", "Max", "4e-12"},
        {&TalIbis::getC_comp, "R", "Typ", "3e-12"},
        {&TalIbis::getC_comp_pullup, "R", "Typ", ""},
        {&TalIbis::getC_comp, "M", "Empty", ""},
        {&TalIbis::getVinh, "R", "Min", "2"},
        {&TalIbis::getVinh, "R", "Max", "2.1"},
        {&TalIbis::getVinl, "R", "Empty", "0.8"},
        {&TalIbis::getVinh, "M", "Typ", "10000"},
        {&TalIbis::getRampDvDtRise, "M", "Min", "0.9/1.5e-09"},
        {&TalIbis::getRampDvDtFall, "M", nullptr, "0.99/1e-09"},
        {&TalIbis::getRampDvDtRise, "M", "Empty", ""},
        {&TalIbis::getRampDvDtRise, "R", "Typ", ""},
        {&TalIbis::getV_fixture1, "M", "Min", "3"},
        {&TalIbis::getV_fixture1, "M", "Max", "3.3"},
        {&TalIbis::getV_fixture1, "M", nullptr, "3.3"},
        {&TalIbis::getV_fixture1, "R", "Typ", ""},
        {&TalIbis::getV_fixture2, "M", "Typ", ""},
        {&TalIbis::getC_comp, nullptr, "Typ", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Text(file, row.query, row.model, row.corner), "0  " + std::string(row.result))
            << row.result << ' ' << (row.corner == nullptr ? "null" : row.corner);
    }
    EXPECT_EQ(Text(file, &TalIbis::getVinh, "none", "Typ"),
              "-1 Model 'none' not found in the IBIS file '" + File() + "' ");
    EXPECT_EQ(Text(file, &TalIbis::getR_load, "M"), "0  50");
    EXPECT_EQ(Text(file, &TalIbis::getR_load, "R"), "0  ");
    EXPECT_EQ(Text(file, &TalIbis::getR_fixture1, "M"), "0  ");
    testing::internal::CaptureStderr();
    EXPECT_EQ(Text(file, &TalIbis::getV_fixture1, "M", "typ"), "0  ");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Wrong IBIS data type. Expect 'typ', 'min' or 'max'.\n");
    // The only one of them that keeps the status.
    TalIbisStringQueryData text;
    text.setUnformatedError(QueryError, "old");
    text.setData("old");
    file.getR_fixture2("M", text);
    EXPECT_EQ(text.getData(), "");
    EXPECT_EQ(text.getErrMsg(), "old");
    // A slope that was not given is one blank.
    rampline& rise = *file.getIbis()->pModels->pNext->pNext->pNext->pRamp->pRise;
    rise.eTyp = NUM_ABSENT;
    EXPECT_EQ(Text(file, &TalIbis::getRampDvDtRise, "M", "Typ"), "0   ");
    rise.eTyp = NUM_NA;
    EXPECT_EQ(Text(file, &TalIbis::getRampDvDtRise, "M", "Typ"), "0  NA");
    rise.eTyp = NUM_VALUE;
}

TEST(ModelQueries, SeriesElements)
{
    const TalIbis& file =
        *ReadHandle(Ibs("[Model] W\nModel_type Series_switch\nC_comp 1p 1p 1p\n[On]\n[R Series] 5 4 6\n"
                        "[Off]\n[R Series] 1meg NA NA\n[Series Current]\n-1 -1m -1m -1m\n1 1m 1m 1m\n"));
    const auto get = [&](auto query, const char* model, const char* state, const char* corner) {
        return Text(file, query, model, state, corner);
    };
    EXPECT_EQ(get(&TalIbis::getR_series, "W", "On", "Min"), "0  4");
    EXPECT_EQ(get(&TalIbis::getR_series, "W", "on", "Min"), "0  0.001");
    EXPECT_EQ(get(&TalIbis::getL_series, "W", "On", "Typ"), "0  ");
    EXPECT_EQ(get(&TalIbis::getC_series, "none", "On", "Typ"),
              "-1 Component 'none' not found in the IBIS file '" + File() + "' ");
    TalIbisBooleanQueryData flag;
    file.hasSeries_current("W", "Off", flag);
    EXPECT_TRUE(flag.status());
    file.hasSeries_current("W", "On", flag);
    EXPECT_FALSE(flag.status());
    flag.setData(true);
    file.hasSeries_MOSFET("none", "On", flag);
    EXPECT_FALSE(flag.status());
    EXPECT_EQ(flag.getStatus(), QueryOk);
}

// The checks run on the model's own file, also when another one was read since.
TEST(ModelQueries, TestModel)
{
    const TalIbis& file =
        *ReadHandle(Bare(Component("U1", "1 s D\n2 g GND\n") + Driver("D") +
                             Driver("Q", "[Driver Schedule]\nD 1n NA NA NA\nX 1n NA NA NA\n") +
                             "[Test Data] TD\nTest_data_type Single_ended\nDriver_model Q\nTest_load TL\n",
                         "5.1"));
    TalIbis* other = nullptr;
    talReadIbisFile(WriteTestFile("other.ibs", Bare(Driver("X"))).c_str(), IBIS_FILE_IBS, &other);
    EXPECT_EQ(Found(file.testModel("D")), Lines{});
    EXPECT_EQ(Unfolded(Found(file.testModel("Q"))),
              (Lines{"ERROR - Model X used in the Driver Schedule of Model Q is not defined",
                     "WARNING - Model Q not referenced in any [Pin], [Model Selector], [Driver Schedule] or "
                     "[Series Pin Mapping] sections.\n No more warnings will be generated for un-referenced "
                     "models",
                     "ERROR - Test Data 'TD' references undefined Test Loads"}));
    EXPECT_EQ(Unfolded(Found(file.testModel("none"))),
              Lines{"ERROR - Model 'none' not found in the IBIS file '" + File() + "'"});
    EXPECT_EQ(Found(file.testModel(static_cast<const char*>(nullptr))),
              Lines{"ERROR - Model name is not given"});
}
