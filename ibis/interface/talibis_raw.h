// Numbers and tables of one model for a simulator: no text between the file's records and the host.
//
//     IbisErrorContainer findings;
//     const std::unique_ptr<IbisRawModelData> model(getIbisRawModelData("u1.ibs", "DQ", findings));
//     double pull = 0;
//     if (model != nullptr && model->getPullupRef(IBIS_DATA_MIN, pull)) { ... }
//
// A view holds pointers into the records of its file and lives no longer than they do. It changes no record.
// Views that a call gives out belong to the caller, who deletes them; rows and waveforms belong to the file.
// A getter with a reference fills it and gives true, or gives false for what the file does not have. Numbers
// are in V, A, Ohm, H, F and s.

#pragma once

#include "ibis/source/nuibis_errors.h"
#include "ibis/source/nuibis_table.h"
#include "ibis/source/nuibis_types.h"

#include <memory>
#include <string>
#include <vector>

struct CMPNT;
struct DIFPIN;
struct PIN;
struct PKG;
class TalIbisAMI_File;
struct ccorner;
struct ibis;
struct mspec;
struct nuibis_mdl;
struct rampline;
struct rng;
struct sinfo;
struct smspec;
struct submdl;
struct addsubmdl;
struct drvshmodel;

/// A corner of the process.
enum IbisDataType : std::int32_t {
    IBIS_DATA_UNKNOWN = 0,  ///< no corner
    IBIS_DATA_TYP = 1,      ///< typical
    IBIS_DATA_MIN = 2,      ///< minimum
    IBIS_DATA_MAX = 3,      ///< maximum
};

/// State of a Series_switch model.
enum IbisSwitchType : std::int32_t {
    SWITCH_OFF = 0,  ///< [Off]
    SWITCH_ON = 1,   ///< [On], or a plain Series model
};

/// The corner of "Typ", "Min" or "Max" in exact case; null is typ. Any other word is unknown, and is told on
/// the standard error stream.
TALIBIS_API IbisDataType getIbisDataType(const char* text);

/// One waveform of a model, owned by the file.
class TALIBIS_API IbisWaveformHandle
{
  public:
    /// An empty handle: every getter gives false or null.
    IbisWaveformHandle() noexcept = default;
    /// A handle of a waveform, which may be null.
    explicit IbisWaveformHandle(const wvfrm* waveform) noexcept : pWaveform(waveform) {}

    /// @name Fixture
    /// The load that the waveform was measured in.
    /// @{

    /// R_fixture, Ohm.
    bool getR_fixture(double& value) const;
    /// L_fixture, H.
    bool getL_fixture(double& value) const;
    /// C_fixture, F.
    bool getC_fixture(double& value) const;
    /// V_fixture, V; a corner of its own is optional and typ stands in for it.
    bool getV_fixture(IbisDataType type, double& value) const;
    /// @}

    /// The rows, voltage over time; null for an empty handle.
    const rngp* getVtTable() const;
    /// The rows of [Composite Current], or null.
    const rngp* getCompositeTable() const;

  private:
    const wvfrm* pWaveform = nullptr;
};

/// One line of [Driver Schedule]; a delay (s) counts only where its flag is set.
struct TALIBIS_API ScheduledDriver {
    /// No name and no delays.
    ScheduledDriver() noexcept = default;
    /// A driver of that name, which is interned, without delays.
    explicit ScheduledDriver(const char* name);

    const char* sModelName = nullptr;  ///< interned
    double dRiseOn = 0;                ///< s, Rise_on_dly
    std::uint32_t bRiseOn = 0;         ///< 1 when `dRiseOn` was given
    double dRiseOff = 0;               ///< s, Rise_off_dly
    std::uint32_t bRiseOff = 0;        ///< 1 when `dRiseOff` was given
    double dFallOn = 0;                ///< s, Fall_on_dly
    std::uint32_t bFallOn = 0;         ///< 1 when `dFallOn` was given
    double dFallOff = 0;               ///< s, Fall_off_dly
    std::uint32_t bFallOff = 0;        ///< 1 when `dFallOff` was given
};

class IbisRawSubModelData;

/// A model, or through its virtual operations a submodel as if it were one.
///
/// Corners: a corner that is no number gives typ. Where a getter takes a model name, null and the view's own
/// interned name are the own model, any other name a model of the same file; false for an unknown one.
class TALIBIS_API IbisRawModelData
{
  public:
    /// Views nothing until `setFile` and `setModel` were called.
    IbisRawModelData() noexcept = default;
    /// A copy has no parameter file and no code file of its own.
    IbisRawModelData(const IbisRawModelData& other) noexcept;
    /// Takes everything over: both views then share one parameter file, which lives as long as either.
    IbisRawModelData& operator=(const IbisRawModelData&) = default;
    /// Releases the parameter file, unless another view shares it; the records stay.
    virtual ~IbisRawModelData();

    /// Model_type of the model.
    virtual nuibis_model_type getModelType() const;
    virtual const rngp* getPullupTable() const;       ///< rows of [Pullup], or null
    virtual const rngp* getPulldownTable() const;     ///< rows of [Pulldown], or null
    virtual const rngp* getPullupSSOTable() const;    ///< rows of [ISSO_PU], or null
    virtual const rngp* getPulldownSSOTable() const;  ///< rows of [ISSO_PD], or null
    /// The type drives high by a table of its own.
    virtual bool isPullupRequired() const;
    /// The type drives low by a table of its own.
    virtual bool isPulldownRequired() const;
    virtual const rngp* getPowerClampTable() const;  ///< rows of [POWER Clamp], or null
    virtual const rngp* getGndClampTable() const;    ///< rows of [GND Clamp], or null
    virtual bool hasRisingWaveform2() const;         ///< there is a second [Rising Waveform]
    virtual bool hasFallingWaveform2() const;        ///< there is a second [Falling Waveform]
    /// @name Extreme waveforms
    /// Of several waveforms the one into the highest or lowest fixture: by V_fixture, or by R_fixture where
    /// all have one voltage. The first of equal ones; null without waveforms, and where R_fixture decides and
    /// the first has none. Owned by the file.
    /// @{

    /// The [Rising Waveform] into the highest fixture.
    virtual const wvfrm* getRisingWavefromWithHighest_fixture(IbisDataType type) const;
    /// The [Falling Waveform] into the highest fixture.
    virtual const wvfrm* getFallingWavefromWithHighest_fixture(IbisDataType type) const;
    /// The [Rising Waveform] into the lowest fixture.
    virtual const wvfrm* getRisingWavefromWithLowest_fixture(IbisDataType type) const;
    /// The [Falling Waveform] into the lowest fixture.
    virtual const wvfrm* getFallingWavefromWithLowest_fixture(IbisDataType type) const;
    /// @}

    /// Views a model, whose root and file `setFile` has given.
    void setModel(nuibis_mdl* model);
    /// Gives the root that the records hang from, owned by the caller, and the name of its file, which is
    /// interned.
    void setFile(ibis* root, const char* fileName);

    /// @name Triples of the model
    /// False if the triple has neither that corner nor typ.
    /// @{

    bool getCac(IbisDataType type, double& value) const;            ///< [Cac], F
    bool getRac(IbisDataType type, double& value) const;            ///< [Rac], Ohm
    bool getRgnd(IbisDataType type, double& value) const;           ///< [Rgnd], Ohm
    bool getRpower(IbisDataType type, double& value) const;         ///< [Rpower], Ohm
    bool getTTgnd(IbisDataType type, double& value) const;          ///< [TTgnd], s
    bool getTTpower(IbisDataType type, double& value) const;        ///< [TTpower], s
    bool getGndClampRef(IbisDataType type, double& value) const;    ///< [GND Clamp Reference], V
    bool getPowerClampRef(IbisDataType type, double& value) const;  ///< [POWER Clamp Reference], V
    bool getPulldownRef(IbisDataType type, double& value) const;    ///< [Pulldown Reference], V
    bool getPullupRef(IbisDataType type, double& value) const;      ///< [Pullup Reference], V
    bool getVoltageRange(IbisDataType type, double& value) const;   ///< [Voltage Range], V
    /// @}

    /// @name Initial delays
    /// [Initial Delay] (s) of files before 6.1: the later keyword is one of the waveforms.
    /// @{

    bool getVTDelay(IbisDataType type, double& value) const;  ///< V-T
    bool getITDelay(IbisDataType type, double& value) const;  ///< I-T
    /// @}

    /// @name Triples of a model by its name
    /// @{

    /// [Cac], F.
    bool getCac(const char* model, IbisDataType type, double& value) const;
    /// [Rac], Ohm.
    bool getRac(const char* model, IbisDataType type, double& value) const;
    /// [Rgnd], Ohm.
    bool getRgnd(const char* model, IbisDataType type, double& value) const;
    /// [Rpower], Ohm.
    bool getRpower(const char* model, IbisDataType type, double& value) const;
    /// [TTgnd], s.
    bool getTTgnd(const char* model, IbisDataType type, double& value) const;
    /// [TTpower], s.
    bool getTTpower(const char* model, IbisDataType type, double& value) const;
    /// [GND Clamp Reference], V.
    bool getGndClampRef(const char* model, IbisDataType type, double& value) const;
    /// [POWER Clamp Reference], V.
    bool getPowerClampRef(const char* model, IbisDataType type, double& value) const;
    /// @}

    /// @name Die capacitances
    /// In F: the item of [C Comp Corner] where the model has that keyword, even when it lacks the item,
    /// otherwise the subparameter.
    /// @{

    /// C_comp, F.
    bool getC_comp(IbisDataType type, double& value) const;
    /// C_comp_pullup, F.
    bool getC_comp_pullup(IbisDataType type, double& value) const;
    /// C_comp_pulldown, F.
    bool getC_comp_pulldown(IbisDataType type, double& value) const;
    /// C_comp_power_clamp, F.
    bool getC_comp_power_clamp(IbisDataType type, double& value) const;
    /// C_comp_gnd_clamp, F.
    bool getC_comp_gnd_clamp(IbisDataType type, double& value) const;
    /// C_comp of a model by its name, F.
    bool getC_comp(const char* model, IbisDataType type, double& value) const;
    /// C_comp_pullup of a model by its name, F.
    bool getC_comp_pullup(const char* model, IbisDataType type, double& value) const;
    /// C_comp_pulldown of a model by its name, F.
    bool getC_comp_pulldown(const char* model, IbisDataType type, double& value) const;
    /// C_comp_power_clamp of a model by its name, F.
    bool getC_comp_power_clamp(const char* model, IbisDataType type, double& value) const;
    /// C_comp_gnd_clamp of a model by its name, F.
    bool getC_comp_gnd_clamp(const char* model, IbisDataType type, double& value) const;
    /// @}

    /// @name Input thresholds
    /// In V. Those with a corner are that of [Model Spec], otherwise the subparameter, otherwise 10000 V,
    /// which marks an unset threshold; they always give true.
    /// @{

    /// The subparameter Vinl.
    bool getVinl(double& value) const;
    /// The subparameter Vinh.
    bool getVinh(double& value) const;
    /// Vinl at a corner.
    bool getVinl(IbisDataType type, double& value) const;
    /// Vinh at a corner.
    bool getVinh(IbisDataType type, double& value) const;
    /// @}

    /// Supply voltage: [POWER Clamp Reference], otherwise [Voltage Range].
    bool getVcc(IbisDataType type, double& value) const;
    /// @name Ramp
    /// [Ramp]: slopes in V/s, false for a slope without a time, and the load that they were measured into.
    /// @{

    /// dV/dt_r, V/s.
    bool getRampDvDtRise(IbisDataType type, double& value) const;
    /// dV/dt_f, V/s.
    bool getRampDvDtFall(IbisDataType type, double& value) const;
    /// R_load, Ohm; false when it was not given.
    bool getR_load(double& value) const;
    /// @}

    /// @name Series elements
    /// In a state of the switch.
    /// @{

    /// [R Series], Ohm.
    bool getSeriesR(IbisDataType type, IbisSwitchType state, double& value) const;
    /// [L Series], H.
    bool getSeriesL(IbisDataType type, IbisSwitchType state, double& value) const;
    /// [Rl Series], Ohm.
    bool getSeriesRl(IbisDataType type, IbisSwitchType state, double& value) const;
    /// [C Series], F.
    bool getSeriesC(IbisDataType type, IbisSwitchType state, double& value) const;
    /// [Rc Series], Ohm.
    bool getSeriesRc(IbisDataType type, IbisSwitchType state, double& value) const;
    /// [Lc Series], H.
    bool getSeriesLc(IbisDataType type, IbisSwitchType state, double& value) const;
    const rngp* getSeriesCurrentTable(IbisSwitchType state) const;  ///< [Series Current], or null
    const smos* getSeriesMosfetTable(IbisSwitchType state) const;   ///< [Series MOSFET], or null
    /// @}

    /// @name Facts of the model
    /// Always true.
    /// @{

    /// Model_type.
    bool getModelType(nuibis_model_type& type) const;
    /// Polarity.
    bool getPolarity(nuibis_model_polarity& polarity) const;
    /// Enable.
    bool getEnableType(nuibis_model_enable& enable) const;
    /// @}

    /// Name of the model, interned.
    const char* getModelName() const { return sModelName; }
    /// Name of the file, interned.
    const char* getFileName() const { return sFileName; }

    bool hasModelSpec() const;           ///< [Model Spec]
    bool hasReceiverThresholds() const;  ///< [Receiver Thresholds]
    bool hasAddSubModel() const;         ///< [Add Submodel]
    bool hasExternalRef() const;         ///< [External Reference]
    bool hasExternalModel() const;       ///< [External Model]
    bool hasOnOffState() const;          ///< [On], [Off], or the elements of a plain Series model
    bool hasDriverSchedule() const;      ///< [Driver Schedule] with a line
    bool isAmi() const;                  ///< [Algorithmic Model] with a line
    bool hasSubModel() const;            ///< the file has a [Submodel]
    bool hasExternalCircuit() const;     ///< the file has an [External Circuit]
    bool hasDefinePackageModel() const;  ///< the file has a [Define Package Model]

    /// @name Driver schedule
    /// [Driver Schedule], in the order of its list.
    /// @{

    /// Number of lines.
    int getNumDriverSchedule() const { return iNumDriverSchedule; }
    /// Appends a driver for each line, owned by the caller. False without lines, and at a line without
    /// delays, those before it having been appended.
    bool getDriverSchedule(std::vector<ScheduledDriver*>& drivers) const;
    /// Line `index`, from 0. False, with no flag set, if there is none or it has no delays.
    bool getDriverSchedule(int index, ScheduledDriver& driver) const;
    /// @}

    /// @name Submodels
    /// [Add Submodel], by index from 0.
    /// @{

    /// Number of lines.
    int getNumSubModels() const;
    /// A view of the submodel, owned by the caller; null beyond the end and for a submodel that the file
    /// lacks.
    IbisRawSubModelData* getSubModel(int index) const;
    /// When the submodel is active; `SUBMODE_NONE` beyond the end.
    submdl_modes getSubModelMode(int index) const;
    const char* getSubModelName(int index) const;  ///< interned; null beyond the end
    /// @}

    /// @name Algorithmic model
    /// [Algorithmic Model].
    /// @{

    /// Path of the code file for the platform of this library, beside the file; see
    /// `TalIbis::findAMI_DLL_Name`. Kept, and given in `out`. False, with both as they were, without one.
    bool findAMI_DLL(std::string& out) noexcept;
    /// What `findAMI_DLL` found last; empty before.
    const std::string& getAMI_DLLName() const { return sAmiDllName; }
    /// Reads the parameter file anew, in place of a former one; see `TalIbis::readAMI_File`. False, with
    /// none kept, for a model without lines.
    bool readAmi() noexcept;
    /// The file that `readAmi` read, owned by the view; null before. It has no tree if it has errors.
    TalIbisAMI_File* getAmi() const { return pAmi.get(); }
    /// @}

    /// @name Components and pins
    /// By exact name. False or null for a name that the file lacks.
    /// @{

    /// The record of a [Component], owned by the file; null if there is none.
    const CMPNT* findComponent(const char* component) const;
    /// The record of a [Pin] line, owned by the file; null if there is none.
    const PIN* findPin(const char* component, const char* pin) const;
    /// The pin's own R_pin, Ohm; false when it is no number.
    bool getR_pin(const char* component, const char* pin, double& value) const;
    /// The pin's own L_pin, H; false when it is no number.
    bool getL_pin(const char* component, const char* pin, double& value) const;
    /// The pin's own C_pin, F; false when it is no number.
    bool getC_pin(const char* component, const char* pin, double& value) const;
    /// R_pkg of [Package], Ohm.
    bool getR_pkg(const char* component, IbisDataType type, double& value) const;
    /// L_pkg of [Package], H.
    bool getL_pkg(const char* component, IbisDataType type, double& value) const;
    /// C_pkg of [Package], F.
    bool getC_pkg(const char* component, IbisDataType type, double& value) const;
    /// tdelay (s) of a pair of [Diff Pin].
    bool getDiffDelay(const char* component, const char* pin, const char* invPin, IbisDataType type,
                      double& value) const;
    /// vdiff (V) of a pair of [Diff Pin].
    bool getVdiff(const char* component, const char* pin, const char* invPin, double& value) const;
    /// The inverting pin of a [Diff Pin] pair, or null.
    const char* getInvPinName(const char* component, const char* pin) const;
    bool hasPinMapping(const char* component, const char* pin) const;        ///< [Pin Mapping]
    bool hasSeriesPinMapping(const char* component, const char* pin) const;  ///< [Series Pin Mapping]
    bool hasSeriesGroup(const char* component) const;                        ///< [Series Switch Groups]
    bool hasPackageModel(const char* component) const;                       ///< [Package Model]
    bool hasNodeDeclaration(const char* component) const;                    ///< [Node Declarations]
    bool hasCircuitCall(const char* component) const;                        ///< [Circuit Call]

    /// @}

  protected:
    /// The value at a corner, where it is a number, otherwise typ; false without either.
    static bool getRngValue(const rng* values, IbisDataType type, double& value);
    /// The typ value; false when it is no number.
    static bool useTypRngValue(const rng* values, double& value);
    /// The slope dV/dt (V/s) at a corner, where it was given, otherwise typ; false for one without a time.
    static bool getRampValue(const rampline* line, IbisDataType type, double& value);
    /// The typ dV (V) and dt (s); false when it was not given.
    static bool useTypRampValue(const rampline* line, double& dV, double& dT);
    /// Of a list, which may be null, the waveform into the highest fixture.
    static const wvfrm* getWaveformWithHighest_fixture(const wvfrm* list, IbisDataType type);
    /// Of a list, which may be null, the waveform into the lowest fixture.
    static const wvfrm* getWaveformWithLowest_fixture(const wvfrm* list, IbisDataType type);

    /// The [Submodel] of exactly that name, or null.
    const submdl* findSubModel(const char* name) const;
    /// The [Model] of exactly that name, or null.
    const nuibis_mdl* findModel(const char* name) const;
    /// The [Diff Pin] line of exactly that pair, or null.
    const DIFPIN* findDiffPin(const char* component, const char* pin, const char* invPin) const;

    ibis* pIbis = nullptr;                    ///< root of the records, owned by the file
    nuibis_mdl* pModel = nullptr;             ///< the model that is viewed
    const char* sModelName = nullptr;         ///< its name, interned
    const char* sFileName = nullptr;          ///< name of the file, interned
    std::int32_t iNumDriverSchedule = 0;      ///< lines of [Driver Schedule]
    mutable std::int32_t iNumSubModels = -1;  ///< lines of [Add Submodel]; -1 until counted
    std::shared_ptr<TalIbisAMI_File> pAmi;    ///< the parameter file that was read last
    std::string sAmiDllName;                  ///< path of the code file that was found last

  private:
    const nuibis_mdl* modelOf(const char* name) const;
    bool getModelRng(const char* model, rng* nuibis_mdl::*values, IbisDataType type, double& value) const;
    bool getCapacitance(const char* model, rng* nuibis_mdl::*own, rng* ccorner::*item, IbisDataType type,
                        double& value) const;
    bool getThreshold(rng* mspec::*spec, double* nuibis_mdl::*own, IbisDataType type, double& value) const;
    const sinfo* seriesOf(IbisSwitchType state) const;
    bool getSeriesRng(rng* sinfo::*values, IbisDataType type, IbisSwitchType state, double& value) const;
    bool getPinValue(const char* component, const char* pin, double PIN::*number, numstat PIN::*status,
                     double& value) const;
    bool getPackageRng(const char* component, rng* PKG::*values, IbisDataType type, double& value) const;
    const addsubmdl* findAdded(int index) const;
};

/// A submodel, with the identity of the model that adds it. Its type follows from its tables: it has no
/// Model_type of its own.
class TALIBIS_API IbisRawSubModelData : public IbisRawModelData
{
  public:
    /// A view of a submodel, with a copy of the view of the model that adds it.
    IbisRawSubModelData(const IbisRawModelData& parent, const submdl* submodel);

    /// With an argument, the type of the model that adds it.
    using IbisRawModelData::getModelType;
    /// Output with both [Pullup] and [Pulldown], Open_source or Open_sink with one of them, otherwise Input.
    nuibis_model_type getModelType() const override { return eDerivedType; }
    /// Rows of [Pullup] of the submodel, or null.
    const rngp* getPullupTable() const override;
    /// Rows of [Pulldown] of the submodel, or null.
    const rngp* getPulldownTable() const override;
    /// Null: no submodel has the table.
    const rngp* getPullupSSOTable() const override { return nullptr; }
    /// Null: no submodel has the table.
    const rngp* getPulldownSSOTable() const override { return nullptr; }
    /// The submodel drives high.
    bool isPullupRequired() const override;
    /// The submodel drives low.
    bool isPulldownRequired() const override;
    /// Rows of [POWER Clamp] of the submodel, or null.
    const rngp* getPowerClampTable() const override;
    /// Rows of [GND Clamp] of the submodel, or null.
    const rngp* getGndClampTable() const override;
    /// The submodel has a second [Rising Waveform].
    bool hasRisingWaveform2() const override;
    /// The submodel has a second [Falling Waveform].
    bool hasFallingWaveform2() const override;
    /// The submodel's [Rising Waveform] into the highest fixture.
    const wvfrm* getRisingWavefromWithHighest_fixture(IbisDataType type) const override;
    /// The submodel's [Falling Waveform] into the highest fixture.
    const wvfrm* getFallingWavefromWithHighest_fixture(IbisDataType type) const override;
    /// The submodel's [Rising Waveform] into the lowest fixture.
    const wvfrm* getRisingWavefromWithLowest_fixture(IbisDataType type) const override;
    /// The submodel's [Falling Waveform] into the lowest fixture.
    const wvfrm* getFallingWavefromWithLowest_fixture(IbisDataType type) const override;

    const char* getSubModelName() const { return sSubModelName; }  ///< interned
    const rngp* getGndPulseTable() const;                          ///< rows of [GND Pulse Table], or null
    const rngp* getPowerPulseTable() const;                        ///< rows of [POWER Pulse Table], or null
    bool getV_trigger_r(IbisDataType type, double& value) const;   ///< V_trigger_r, V
    bool getV_trigger_f(IbisDataType type, double& value) const;   ///< V_trigger_f, V
    bool getOff_delay(IbisDataType type, double& value) const;     ///< Off_delay, s

  private:
    bool getSpecRng(rng* smspec::*values, IbisDataType type, double& value) const;

    const submdl* pSubModel = nullptr;
    const char* sSubModelName = nullptr;
    nuibis_model_type eDerivedType = MODEL_INPUT;
};

/// Reads a file, or finds it in the cache, checks one of its models and gives a view of it, owned by the
/// caller. `errors` gets the findings of the check, or those of the read if the file cannot be read. Null for
/// null names, an unreadable file, an unknown model, and a model with errors; warnings do not cost the view.
TALIBIS_API IbisRawModelData* getIbisRawModelData(const char* fileName, const char* modelName,
                                                  IbisErrorContainer& errors);
