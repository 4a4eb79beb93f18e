// The raw view of a model and of its submodels.

#include "ibis/interface/talibis_ami.h"
#include "ibis/interface/talibis_raw.h"
#include "ibis/source/nuibis_dly.h"
#include "ibis/source/nuibis_drvsh.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_ramp.h"
#include "tests/queries.h"

#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>

namespace
{

using View = std::unique_ptr<IbisRawModelData>;
using Numbers = std::array<std::optional<double>, 3>;  // typ, min, max

const std::string FIXTURES =
    "[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\n0 0 0 0\n1n 1 1 1\n"
    "[Rising Waveform]\nR_fixture = 100\nV_fixture = 3.3\nV_fixture_min = 0\n0 0 0 0\n1n 1 1 1\n"
    "[Rising Waveform]\nR_fixture = 100\nV_fixture = 3.3\n0 0 0 0\n1n 1 1 1\n";

std::string Everything()
{
    return Ibs(
        Driver("M", "[Pullup Reference] 3.3 NA 3.6\n[Rgnd] 50 40 60\n[Driver Schedule]\nA 1n 2n NA NA\n"
                    "B NA NA 3n 4n\n[Add Submodel]\nS Driving\nmissing All\n" +
                        FIXTURES) +
            Driver("A") + Driver("B") +
            Model("R", "[Model Spec]\nVinh 2.1 2.0 NA\n[C Comp Corner]\nC_comp_pullup 3p 2p 4p\n"
                       "[TTgnd] 1n 2n 3n\n[GND Clamp]\n-1 -1m -1m -1m\n0 0 0 0\n") +
            "[Submodel] S\nSubmodel_type Dynamic_clamp\n[Submodel Spec]\nV_trigger_r 1.5 NA 1.6\n"
            "[GND Clamp]\n-1 -1m -1m -1m\n0 0 0 0\n[GND Pulse Table]\n0 0 0 0\n1n -1 -1 -1\n",
        "5.1", "[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n1 2 0.2 1n NA 2n\n");
}

View ViewOf(const TalIbis& file, const char* model)
{
    return View(file.getIbisRawModelData(model));
}

template <class Get> Numbers Corners(Get get)
{
    Numbers numbers;
    for (int type = IBIS_DATA_TYP; type <= IBIS_DATA_MAX; ++type) {
        double value = 0;
        if (get(static_cast<IbisDataType>(type), value)) {
            numbers[static_cast<std::size_t>(type - 1)] = value;
        }
    }
    return numbers;
}

Numbers Corners(const IbisRawModelData& view, bool (IbisRawModelData::*get)(IbisDataType, double&) const)
{
    return Corners([&](IbisDataType type, double& value) { return (view.*get)(type, value); });
}

constexpr Numbers NONE{};

}  // namespace

TEST(RawModel, NumbersByCorner)
{
    const TalIbis& file = *ReadHandle(Everything());
    const View m = ViewOf(file, "M");
    const View r = ViewOf(file, "R");
    EXPECT_EQ(Corners(*m, &IbisRawModelData::getPullupRef), (Numbers{3.3, 3.3, 3.6}));
    EXPECT_EQ(Corners(*m, &IbisRawModelData::getVoltageRange), (Numbers{3.3, 3.0, 3.6}));
    EXPECT_EQ(Corners(*m, &IbisRawModelData::getVcc), (Numbers{3.3, 3.0, 3.6}));
    EXPECT_EQ(Corners(*m, &IbisRawModelData::getRgnd), (Numbers{50, 40, 60}));
    EXPECT_EQ(Corners(*r, &IbisRawModelData::getRgnd), NONE);
    EXPECT_EQ(Corners(*m, &IbisRawModelData::getC_comp), (Numbers{5e-12, 4e-12, 6e-12}));
    EXPECT_EQ(Corners(*r, &IbisRawModelData::getC_comp), NONE);
    EXPECT_EQ(Corners(*r, &IbisRawModelData::getC_comp_pullup), (Numbers{3e-12, 2e-12, 4e-12}));
    EXPECT_EQ(Corners(*r, &IbisRawModelData::getVinh), (Numbers{2.1, 2.0, 2.1}));
    EXPECT_EQ(Corners(*r, &IbisRawModelData::getVinl), (Numbers{0.8, 0.8, 0.8}));
    EXPECT_EQ(Corners(*m, &IbisRawModelData::getVinh), (Numbers{10000.0, 10000.0, 10000.0}));
    EXPECT_EQ(Corners(*m, &IbisRawModelData::getRampDvDtRise),
              (Numbers{0.99 / 1e-9, 0.9 / (1.5 * 1e-9), 1.08 / (0.8 * 1e-9)}));
    EXPECT_EQ(Corners(*r, &IbisRawModelData::getRampDvDtFall), NONE);
    double value = 0;
    EXPECT_FALSE(m->getVinh(value));
    EXPECT_TRUE(m->getR_load(value));
    EXPECT_EQ(value, 50);
    // Type 0 counts as typ, and one above max as none for a ramp alone.
    EXPECT_TRUE(m->getRgnd(static_cast<IbisDataType>(0), value));
    EXPECT_EQ(value, 50);
    EXPECT_TRUE(m->getRampDvDtRise(static_cast<IbisDataType>(0), value));
    EXPECT_FALSE(m->getRampDvDtRise(static_cast<IbisDataType>(4), value));
    rampline& rise = *file.getIbis()->pModels->pNext->pNext->pNext->pRamp->pRise;
    const double time = std::exchange(rise.dTypDt, 0.0);
    EXPECT_FALSE(m->getRampDvDtRise(IBIS_DATA_TYP, value));
    rise.dTypDt = time;
}

// Every triple has numbers of its own, so that an item taken for another one shows: as numbers by corner, by
// the model's name, and as text.
TEST(RawModel, EachItemIsItsOwn)
{
    using Raw = IbisRawModelData;
    struct Item {
        const char* model;
        const char* text;
        bool (Raw::*get)(IbisDataType, double&) const;
        bool (Raw::*getOf)(const char*, IbisDataType, double&) const;
        void (TalIbis::*table)(const char*, TalIbisListQueryData&) const;
        void (TalIbis::*single)(const char*, const char*, TalIbisStringQueryData&) const;
    };
    // clang-format off
    const Item items[] = {
        {"P", "C_comp", &Raw::getC_comp, &Raw::getC_comp, nullptr, &TalIbis::getC_comp},
        {"P", "C_comp_pullup", &Raw::getC_comp_pullup, &Raw::getC_comp_pullup, nullptr, &TalIbis::getC_comp_pullup},
        {"P", "C_comp_pulldown", &Raw::getC_comp_pulldown, &Raw::getC_comp_pulldown, nullptr, &TalIbis::getC_comp_pulldown},
        {"P", "C_comp_power_clamp", &Raw::getC_comp_power_clamp, &Raw::getC_comp_power_clamp, nullptr, &TalIbis::getC_comp_power_clamp},
        {"P", "C_comp_gnd_clamp", &Raw::getC_comp_gnd_clamp, &Raw::getC_comp_gnd_clamp, nullptr, &TalIbis::getC_comp_gnd_clamp},
        {"Q", "[C Comp Corner]\nC_comp", &Raw::getC_comp, &Raw::getC_comp, nullptr, &TalIbis::getC_comp},
        {"Q", "C_comp_pullup", &Raw::getC_comp_pullup, &Raw::getC_comp_pullup, nullptr, &TalIbis::getC_comp_pullup},
        {"Q", "C_comp_pulldown", &Raw::getC_comp_pulldown, &Raw::getC_comp_pulldown, nullptr, &TalIbis::getC_comp_pulldown},
        {"Q", "C_comp_power_clamp", &Raw::getC_comp_power_clamp, &Raw::getC_comp_power_clamp, nullptr, &TalIbis::getC_comp_power_clamp},
        {"Q", "C_comp_gnd_clamp", &Raw::getC_comp_gnd_clamp, &Raw::getC_comp_gnd_clamp, nullptr, &TalIbis::getC_comp_gnd_clamp},
        {"T", "[Voltage Range]", &Raw::getVoltageRange, nullptr, &TalIbis::getVoltageRange, nullptr},
        {"T", "[Pullup Reference]", &Raw::getPullupRef, nullptr, &TalIbis::getPullupRef, nullptr},
        {"T", "[Pulldown Reference]", &Raw::getPulldownRef, nullptr, &TalIbis::getPulldownRef, nullptr},
        {"T", "[POWER Clamp Reference]", &Raw::getPowerClampRef, &Raw::getPowerClampRef, &TalIbis::getPowerClampRef, nullptr},
        {"T", "[GND Clamp Reference]", &Raw::getGndClampRef, &Raw::getGndClampRef, &TalIbis::getGndClampRef, nullptr},
        {"T", "[External Reference]", nullptr, nullptr, &TalIbis::getExternalRef, nullptr},
        {"T", "[TTgnd]", &Raw::getTTgnd, &Raw::getTTgnd, &TalIbis::getTTgnd, nullptr},
        {"T", "[TTpower]", &Raw::getTTpower, &Raw::getTTpower, &TalIbis::getTTpower, nullptr},
        {"T", "[Rgnd]", &Raw::getRgnd, &Raw::getRgnd, &TalIbis::getRgnd, nullptr},
        {"T", "[Rpower]", &Raw::getRpower, &Raw::getRpower, &TalIbis::getRpower, nullptr},
        {"T", "[Rac]", &Raw::getRac, &Raw::getRac, &TalIbis::getRac, nullptr},
        {"T", "[Cac]", &Raw::getCac, &Raw::getCac, &TalIbis::getCac, nullptr},
        {"T", "[Initial Delay]\nV-T", &Raw::getVTDelay, nullptr, nullptr, nullptr},
        {"T", "I-T", &Raw::getITDelay, nullptr, nullptr, nullptr},
    };
    // clang-format on
    std::string body;
    std::string_view model;
    int number = 10;
    for (const Item& item : items) {
        body += model == item.model ? "" : "[Model] " + std::string(item.model) + "\nModel_type Input\n";
        model = item.model;
        body += item.text;
        for (const char* corner : {"1 ", "2 ", "3\n"}) {
            body += ' ' + std::to_string(number) + corner;
        }
        ++number;
    }
    const TalIbis& file = *ReadHandle(Ibs(body, "6.0"));
    const View other = ViewOf(file, "P");
    int typ = 101;
    for (const Item& item : items) {
        const Numbers numbers{typ, typ + 1, typ + 2};
        const Lines texts{std::to_string(typ), std::to_string(typ + 1), std::to_string(typ + 2)};
        if (item.get != nullptr) {
            EXPECT_EQ(Corners(*ViewOf(file, item.model), item.get), numbers) << item.text;
        }
        if (item.getOf != nullptr) {
            EXPECT_EQ(
                Corners([&](IbisDataType t, double& v) { return (*other.*item.getOf)(item.model, t, v); }),
                numbers)
                << item.text;
        }
        if (item.table != nullptr) {
            EXPECT_EQ(Rows(file, item.table, item.model).back(),
                      texts[0] + std::string(11, ' ') + texts[1] + std::string(11, ' ') + texts[2]);
        }
        for (const auto& [corner, i] : {std::pair("Typ", 0U), std::pair("Min", 1U), std::pair("Max", 2U)}) {
            if (item.single != nullptr) {
                EXPECT_EQ(Text(file, item.single, item.model, corner), "0  " + texts[i]) << item.text;
            }
        }
        typ += 10;
    }
}

TEST(RawModel, EachSeriesElementIsItsOwn)
{
    using Raw = IbisRawModelData;
    const struct {
        const char* keyword;
        bool (Raw::*get)(IbisDataType, IbisSwitchType, double&) const;
        void (TalIbis::*text)(const char*, const char*, const char*, TalIbisStringQueryData&) const;
    } rows[] = {
        {"[R Series]", &Raw::getSeriesR, &TalIbis::getR_series},
        {"[L Series]", &Raw::getSeriesL, &TalIbis::getL_series},
        {"[Rl Series]", &Raw::getSeriesRl, &TalIbis::getRl_series},
        {"[C Series]", &Raw::getSeriesC, &TalIbis::getC_series},
        {"[Rc Series]", &Raw::getSeriesRc, &TalIbis::getRc_series},
        {"[Lc Series]", &Raw::getSeriesLc, &TalIbis::getLc_series},
    };
    std::string body = "[Model] W\nModel_type Series_switch\n[On]\n";
    for (int i = 0; i < 6; ++i) {
        body += rows[i].keyword + std::string(" 1") + std::to_string(i) + " NA 2" + std::to_string(i) + "\n";
    }
    const TalIbis& file = *ReadHandle(Ibs(body + "[Off]\n[R Series] 1 1 1\n"));
    const View w = ViewOf(file, "W");
    double typ = 10;
    for (const auto& row : rows) {
        EXPECT_EQ(Corners([&](IbisDataType t, double& v) { return (*w.*row.get)(t, SWITCH_ON, v); }),
                  (Numbers{typ, typ, typ + 10}))
            << row.keyword;
        EXPECT_EQ(Text(file, row.text, "W", "On", "Max"), "0  " + std::to_string(static_cast<int>(typ) + 10));
        ++typ;
    }
}

// The tables of a model and of a submodel, each known by its first current or voltage.
TEST(RawModel, EachTableIsItsOwn)
{
    const auto table = [](const std::string& keyword, int number) {
        return keyword + "\n0 " + std::to_string(number) + " 0 0\n1 0 0 0\n";
    };
    const std::string fixture = "\nR_fixture = 50\nV_fixture = 0";
    const std::string body =
        Model("M", "[Add Submodel]\nS All\n" + table("[Pullup]", 1) + table("[Pulldown]", 2) +
                       table("[POWER Clamp]", 3) + table("[GND Clamp]", 4) + table("[ISSO_PU]", 5) +
                       table("[ISSO_PD]", 6) + table("[Rising Waveform]" + fixture, 7) +
                       table("[Composite Current]", 8) + table("[Falling Waveform]" + fixture, 9) +
                       table("[Falling Waveform]" + fixture + "\nL_fixture = 2\nC_fixture = 3", 10)) +
        "[Submodel] S\nSubmodel_type Dynamic_clamp\n[Submodel Spec]\nV_trigger_r 11 NA 12\n"
        "V_trigger_f 13 14 15\nOff_delay 16 17 18\n" +
        table("[Pullup]", 21) + table("[Pulldown]", 22) + table("[POWER Clamp]", 23) +
        table("[GND Clamp]", 24) + table("[Rising Waveform]" + fixture, 27) +
        table("[Rising Waveform]" + fixture, 28) + table("[Falling Waveform]" + fixture, 29) +
        table("[GND Pulse Table]", 30) + table("[POWER Pulse Table]", 31);
    const TalIbis& file = *ReadHandle(Ibs(body));
    const View m = ViewOf(file, "M");
    const std::unique_ptr<IbisRawSubModelData> s(m->getSubModel(0));
    ASSERT_NE(s, nullptr);
    const auto first = [](const rngp* row) { return row == nullptr ? 0 : static_cast<int>(row->dTyp); };
    const auto tables = [&](const IbisRawModelData& view) {
        return std::vector{
            first(view.getPullupTable()),
            first(view.getPulldownTable()),
            first(view.getPowerClampTable()),
            first(view.getGndClampTable()),
            first(view.getPullupSSOTable()),
            first(view.getPulldownSSOTable()),
            first(IbisWaveformHandle(view.getRisingWavefromWithHighest_fixture(IBIS_DATA_TYP)).getVtTable()),
            first(IbisWaveformHandle(view.getRisingWavefromWithLowest_fixture(IBIS_DATA_TYP)).getVtTable()),
            first(IbisWaveformHandle(view.getFallingWavefromWithHighest_fixture(IBIS_DATA_MIN)).getVtTable()),
            first(IbisWaveformHandle(view.getFallingWavefromWithLowest_fixture(IBIS_DATA_MAX)).getVtTable()),
            static_cast<int>(view.hasRisingWaveform2()),
            static_cast<int>(view.hasFallingWaveform2())};
    };
    EXPECT_EQ(tables(*m), (std::vector{1, 2, 3, 4, 5, 6, 7, 7, 9, 9, 0, 1}));
    EXPECT_EQ(tables(*s), (std::vector{21, 22, 23, 24, 0, 0, 27, 27, 29, 29, 1, 0}));
    EXPECT_EQ(first(s->getGndPulseTable()), 30);
    EXPECT_EQ(first(s->getPowerPulseTable()), 31);
    EXPECT_EQ(Corners([&](IbisDataType t, double& v) { return s->getV_trigger_f(t, v); }),
              (Numbers{13, 14, 15}));
    EXPECT_EQ(Corners([&](IbisDataType t, double& v) { return s->getOff_delay(t, v); }),
              (Numbers{16, 17, 18}));
    const wvfrm* const rising = m->getRisingWavefromWithHighest_fixture(IBIS_DATA_TYP);
    EXPECT_EQ(first(IbisWaveformHandle(rising).getCompositeTable()), 8);
    const wvfrm* const falling = file.getIbis()->pModels->pFalling->pNext;
    double value = 0;
    EXPECT_TRUE(IbisWaveformHandle(falling).getL_fixture(value) && value == 2);
    EXPECT_TRUE(IbisWaveformHandle(falling).getC_fixture(value) && value == 3);
}

TEST(RawModel, NumbersOfOtherModels)
{
    const TalIbis& file = *ReadHandle(Everything());
    const View m = ViewOf(file, "M");
    double value = 0;
    EXPECT_TRUE(m->getTTgnd("R", IBIS_DATA_MAX, value));
    EXPECT_DOUBLE_EQ(value, 3e-9);
    EXPECT_FALSE(m->getTTgnd(m->getModelName(), IBIS_DATA_MAX, value));
    EXPECT_TRUE(m->getRgnd(nullptr, IBIS_DATA_MIN, value));
    EXPECT_EQ(value, 40);
    EXPECT_TRUE(m->getC_comp_pullup("R", IBIS_DATA_TYP, value));
    EXPECT_FALSE(m->getC_comp("none", IBIS_DATA_TYP, value));
}

TEST(RawModel, WaveformSelection)
{
    const TalIbis& file = *ReadHandle(Everything());
    const View m = ViewOf(file, "M");
    nuibis_mdl& model = *file.getIbis()->pModels->pNext->pNext->pNext;
    const wvfrm* const first = model.pRising;
    const wvfrm* const second = first->pNext;
    const wvfrm* const third = second->pNext;
    // By voltage, whatever the resistances are; a tie keeps the earlier one.
    EXPECT_EQ(m->getRisingWavefromWithHighest_fixture(IBIS_DATA_TYP), second);
    EXPECT_EQ(m->getRisingWavefromWithLowest_fixture(IBIS_DATA_TYP), first);
    EXPECT_EQ(m->getRisingWavefromWithHighest_fixture(IBIS_DATA_MIN), third);
    EXPECT_EQ(m->getFallingWavefromWithHighest_fixture(IBIS_DATA_TYP), nullptr);
    EXPECT_TRUE(m->hasRisingWaveform2());
    EXPECT_FALSE(m->hasFallingWaveform2());
    // Equal voltages: by resistance.
    *second->pdVFixture = *third->pdVFixture = 0;
    EXPECT_EQ(m->getRisingWavefromWithHighest_fixture(IBIS_DATA_TYP), second);
    EXPECT_EQ(m->getRisingWavefromWithLowest_fixture(IBIS_DATA_MAX), first);
    *first->pdRFixture = 200;
    EXPECT_EQ(m->getRisingWavefromWithHighest_fixture(IBIS_DATA_TYP), first);
    EXPECT_EQ(m->getRisingWavefromWithLowest_fixture(IBIS_DATA_TYP), second);
    double* const resistance = std::exchange(model.pRising->pdRFixture, nullptr);
    EXPECT_EQ(m->getRisingWavefromWithLowest_fixture(IBIS_DATA_TYP), nullptr);
    model.pRising->pdRFixture = resistance;
}

TEST(RawModel, WaveformHandle)
{
    const TalIbis& file = *ReadHandle(Everything());
    const wvfrm* const second = file.getIbis()->pModels->pNext->pNext->pNext->pRising->pNext;
    const IbisWaveformHandle handle(second);
    EXPECT_EQ(Corners([&](IbisDataType t, double& v) { return handle.getV_fixture(t, v); }),
              (Numbers{3.3, 0.0, 3.3}));
    double value = 0;
    EXPECT_FALSE(handle.getV_fixture(IBIS_DATA_UNKNOWN, value));
    EXPECT_FALSE(handle.getL_fixture(value));
    EXPECT_TRUE(handle.getR_fixture(value));
    EXPECT_EQ(handle.getVtTable(), second->pRows);
    EXPECT_EQ(handle.getCompositeTable(), nullptr);
    EXPECT_FALSE(IbisWaveformHandle().getR_fixture(value));
    EXPECT_EQ(IbisWaveformHandle().getVtTable(), nullptr);
}

TEST(RawModel, RequiredTables)
{
    const TalIbis& file = *ReadHandle(Everything());
    const View m = ViewOf(file, "M");
    nuibis_mdl& model = *file.getIbis()->pModels->pNext->pNext->pNext;
    EXPECT_EQ(m->getPullupTable()->dTyp, 66e-3);
    EXPECT_EQ(m->getPowerClampTable(), nullptr);
    EXPECT_EQ(m->getPullupSSOTable(), nullptr);
    std::string high;
    std::string low;
    for (int type = 0; type <= 24; ++type) {
        model.eModelType = static_cast<nuibis_model_type>(type);
        high += m->isPullupRequired() ? "" : std::to_string(type) + " ";
        low += m->isPulldownRequired() ? "" : std::to_string(type) + " ";
    }
    model.eModelType = MODEL_OUTPUT;
    EXPECT_EQ(high, "1 2 6 7 8 9 12 15 22 ");
    EXPECT_EQ(low, "1 2 10 11 12 15 22 ");
    EXPECT_FALSE(IbisRawModelData().isPullupRequired());
}

TEST(RawModel, DriverScheduleIsOwnedByTheCaller)
{
    const TalIbis& file = *ReadHandle(Everything());
    const View m = ViewOf(file, "M");
    ASSERT_EQ(m->getNumDriverSchedule(), 2);
    ScheduledDriver driver;
    EXPECT_TRUE(m->getDriverSchedule(1, driver));
    EXPECT_STREQ(driver.sModelName, "A");
    EXPECT_EQ(driver.dRiseOff, 2e-9);
    EXPECT_TRUE(driver.bRiseOff);
    EXPECT_FALSE(driver.bFallOn);
    EXPECT_FALSE(m->getDriverSchedule(2, driver));
    EXPECT_FALSE(driver.bRiseOff);
    EXPECT_FALSE(m->getDriverSchedule(-1, driver));
    std::vector<ScheduledDriver*> drivers;
    drvshmodel& last = *file.getIbis()->pModels->pNext->pNext->pNext->pDriverSchedule->pModels->pNext;
    dly* const delays = std::exchange(last.pDelays, nullptr);
    EXPECT_FALSE(m->getDriverSchedule(drivers));
    EXPECT_EQ(drivers.size(), 1U);
    last.pDelays = delays;
    EXPECT_TRUE(m->getDriverSchedule(drivers));
    ASSERT_EQ(drivers.size(), 3U);
    EXPECT_STREQ(drivers[2]->sModelName, "A");
    for (const ScheduledDriver* each : drivers) {
        delete each;
    }
    EXPECT_FALSE(ViewOf(file, "R")->getDriverSchedule(drivers));
}

TEST(RawModel, SubmodelViews)
{
    const TalIbis& file = *ReadHandle(Everything());
    const View m = ViewOf(file, "M");
    EXPECT_EQ(m->getNumSubModels(), 2);
    EXPECT_EQ(m->getSubModelMode(0), SUBMODE_DRIVING);
    EXPECT_EQ(m->getSubModelMode(2), SUBMODE_NONE);
    EXPECT_STREQ(m->getSubModelName(1), "missing");
    EXPECT_EQ(m->getSubModelName(-1), nullptr);
    EXPECT_EQ(m->getSubModel(1), nullptr);
    EXPECT_EQ(m->getSubModel(2), nullptr);
    const std::unique_ptr<IbisRawSubModelData> s(m->getSubModel(0));
    ASSERT_NE(s, nullptr);
    const IbisRawModelData& asModel = *s;
    EXPECT_EQ(asModel.getModelType(), MODEL_INPUT);
    EXPECT_EQ(asModel.getPullupTable(), nullptr);
    EXPECT_EQ(asModel.getGndClampTable()->dTyp, -1e-3);
    EXPECT_FALSE(asModel.isPullupRequired());
    EXPECT_FALSE(asModel.hasRisingWaveform2());
    EXPECT_EQ(asModel.getRisingWavefromWithHighest_fixture(IBIS_DATA_TYP), nullptr);
    EXPECT_STREQ(s->getSubModelName(), "S");
    EXPECT_EQ(s->getModelName(), m->getModelName());
    EXPECT_EQ(s->getGndPulseTable()->pNext->dTyp, -1);
    EXPECT_EQ(s->getPowerPulseTable(), nullptr);
    EXPECT_EQ(Corners([&](IbisDataType t, double& v) { return s->getV_trigger_r(t, v); }),
              (Numbers{1.5, 1.5, 1.6}));
    EXPECT_EQ(Corners([&](IbisDataType t, double& v) { return s->getOff_delay(t, v); }), NONE);
}

TEST(RawModel, DerivedTypeFollowsTheTables)
{
    const std::string up = "[Pullup]\n0 0 0 0\n1 -1m -1m -1m\n";
    const std::string down = "[Pulldown]\n0 0 0 0\n1 1m 1m 1m\n";
    const std::vector<std::pair<std::string, nuibis_model_type>> rows{
        {up + down, MODEL_OUTPUT}, {up, MODEL_OPEN_SOURCE}, {down, MODEL_OPEN_SINK}, {"", MODEL_INPUT}};
    for (const auto& [tables, type] : rows) {
        const TalIbis& file = *ReadHandle(
            Ibs(Model("M", "[Add Submodel]\nS All\n") + "[Submodel] S\nSubmodel_type Bus_hold\n" + tables));
        const View m = ViewOf(file, "M");
        const std::unique_ptr<IbisRawModelData> s(m->getSubModel(0));
        EXPECT_EQ(s->getModelType(), type);
        EXPECT_EQ(s->isPullupRequired(), type == MODEL_OUTPUT || type == MODEL_OPEN_SOURCE);
        EXPECT_EQ(s->isPulldownRequired(), type == MODEL_OUTPUT || type == MODEL_OPEN_SINK);
    }
}

TEST(RawModel, SeriesElements)
{
    const TalIbis& file =
        *ReadHandle(Ibs("[Model] W\nModel_type Series_switch\nC_comp 1p 1p 1p\n[On]\n[R Series] 5 4 6\n"
                        "[Series MOSFET]\nVds = 1\n0 1m 1m 1m\n1 2m 2m 2m\n[Off]\n[Series Current]\n-1 -1m "
                        "-1m -1m\n1 1m 1m 1m\n"));
    const View w = ViewOf(file, "W");
    EXPECT_TRUE(w->hasOnOffState());
    EXPECT_EQ(Corners([&](IbisDataType t, double& v) { return w->getSeriesR(t, SWITCH_ON, v); }),
              (Numbers{5, 4, 6}));
    EXPECT_EQ(Corners([&](IbisDataType t, double& v) { return w->getSeriesR(t, SWITCH_OFF, v); }), NONE);
    EXPECT_EQ(w->getSeriesCurrentTable(SWITCH_OFF)->dTyp, -1e-3);
    EXPECT_EQ(w->getSeriesCurrentTable(SWITCH_ON), nullptr);
    EXPECT_EQ(*w->getSeriesMosfetTable(SWITCH_ON)->pdVds, 1);
}

TEST(RawModel, ComponentsAndPins)
{
    const TalIbis& file = *ReadHandle(Everything());
    const View m = ViewOf(file, "M");
    double value = 0;
    EXPECT_TRUE(m->getL_pin("U1", "1", value));
    EXPECT_EQ(value, 2e-9);
    EXPECT_FALSE(m->getL_pin("U1", "99", value));
    EXPECT_TRUE(m->getC_pkg("U1", IBIS_DATA_MAX, value));
    EXPECT_EQ(value, 1.2e-12);
    EXPECT_FALSE(m->getC_pkg("U2", IBIS_DATA_MAX, value));
    EXPECT_EQ(Corners([&](IbisDataType t, double& v) { return m->getDiffDelay("U1", "1", "2", t, v); }),
              (Numbers{1e-9, 0.0, 2e-9}));
    EXPECT_FALSE(m->getDiffDelay("U1", "2", "1", IBIS_DATA_TYP, value));
    EXPECT_TRUE(m->getVdiff("U1", "1", "2", value));
    EXPECT_EQ(value, 0.2);
    EXPECT_STREQ(m->getInvPinName("U1", "1"), "2");
    EXPECT_EQ(m->getInvPinName("U1", "2"), nullptr);
    EXPECT_FALSE(m->hasPinMapping("U1", "1"));
    EXPECT_FALSE(m->hasSeriesPinMapping("U1", "1"));
    EXPECT_FALSE(m->hasPackageModel("U1"));
    EXPECT_TRUE(m->hasSubModel());
    EXPECT_TRUE(m->hasAddSubModel());
    EXPECT_FALSE(m->hasModelSpec());
    EXPECT_FALSE(m->isAmi());
}

TEST(RawModel, AlgorithmicModel)
{
    WriteTestFile("code.so", "");
    WriteTestFile("p.ami", "(m (Reserved_Parameters (v (Usage Info)(Type Float)(Value 2))))");
    const TalIbis& file = *ReadHandle(
        Ibs(Driver("D") + Model("A", "[Algorithmic Model]\nExecutable Linux_gcc_64 code.so p.ami\n"
                                     "[End Algorithmic Model]\n")));
    const View plain = ViewOf(file, "D");
    const View m = ViewOf(file, "A");
    std::string name = "before";
    EXPECT_FALSE(plain->isAmi());
    EXPECT_FALSE(plain->findAMI_DLL(name));
    EXPECT_FALSE(plain->readAmi());
    EXPECT_EQ(name, "before");
    EXPECT_TRUE(m->isAmi());
    EXPECT_EQ(m->getAmi(), nullptr);
    EXPECT_EQ(m->getAMI_DLLName(), "");
    EXPECT_TRUE(m->findAMI_DLL(name));
    EXPECT_EQ(name, TestFolder() + "/code.so");
    EXPECT_EQ(m->getAMI_DLLName(), name);
    EXPECT_TRUE(m->readAmi());
    EXPECT_TRUE(m->readAmi());  // in place of the first
    ASSERT_NE(m->getAmi(), nullptr);
    EXPECT_EQ(m->getAmi()->getNumParams(), 1U);
    const IbisRawModelData copy(*m);
    EXPECT_EQ(copy.getAmi(), nullptr);
    EXPECT_EQ(copy.getAMI_DLLName(), "");
    *plain = *m;  // shared, and released with the last of them
    EXPECT_EQ(plain->getAmi(), m->getAmi());
    EXPECT_EQ(plain->getAMI_DLLName(), name);
}

// Warnings come with a view, errors without one.
TEST(RawModel, EntryChecksTheModel)
{
    const std::string path = WriteTestFile(
        "raw.ibs", Header("5.1", "raw.ibs") + Component("U1", "1 s D\n2 g GND\n3 t E\n") + Driver("D") +
                       Driver("E", "[Driver Schedule]\nD 1n NA NA NA\nX 1n NA NA NA\n") + Model("W") +
                       "[End]\n");
    IbisErrorContainer errors;
    EXPECT_NE(View(getIbisRawModelData(path.c_str(), "D", errors)), nullptr);
    EXPECT_EQ(errors.getNumErrors(), 0U);
    EXPECT_NE(View(getIbisRawModelData(path.c_str(), "W", errors)), nullptr);
    EXPECT_EQ(errors.getErrorStatus(), IBIS_STATUS_WARNING);
    EXPECT_EQ(getIbisRawModelData(path.c_str(), "E", errors), nullptr);
    EXPECT_EQ(Found(&errors), Lines{"ERROR - Model X used in the Driver Schedule of Model E is not defined"});
    EXPECT_EQ(getIbisRawModelData(path.c_str(), "none", errors), nullptr);
    EXPECT_EQ(getIbisRawModelData(path.c_str(), nullptr, errors), nullptr);
    EXPECT_EQ(getIbisRawModelData("/no/such.ibs", "D", errors), nullptr);
    EXPECT_EQ(Found(&errors), Lines{"ERROR - Unable To Open File '/no/such.ibs'"});
}
