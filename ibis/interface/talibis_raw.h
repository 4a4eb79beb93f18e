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
    IBIS_DATA_UNKNOWN = 0,
    IBIS_DATA_TYP = 1,
    IBIS_DATA_MIN = 2,
    IBIS_DATA_MAX = 3,
};

/// State of a Series_switch model.
enum IbisSwitchType : std::int32_t {
    SWITCH_OFF = 0,
    SWITCH_ON = 1,
};

/// The corner of "Typ", "Min" or "Max" in exact case; null is typ. Any other word is unknown, and is told on
/// the standard error stream.
TALIBIS_API IbisDataType getIbisDataType(const char* text);

/// One waveform of a model, owned by the file.
class TALIBIS_API IbisWaveformHandle
{
  public:
    IbisWaveformHandle() noexcept = default;
    explicit IbisWaveformHandle(const wvfrm* waveform) noexcept : pWaveform(waveform) {}

    // The fixture (Ohm, H, F) that the waveform was measured in.
    bool getR_fixture(double& value) const;
    bool getL_fixture(double& value) const;
    bool getC_fixture(double& value) const;
    /// The fixture's voltage; a corner of its own is optional and typ stands in for it.
    bool getV_fixture(IbisDataType type, double& value) const;
    /// The rows, voltage over time; null for an empty handle.
    const rngp* getVtTable() const;
    /// The rows of [Composite Current], or null.
    const rngp* getCompositeTable() const;

  private:
    const wvfrm* pWaveform = nullptr;
};

/// One line of [Driver Schedule]; a delay (s) counts only where its flag is set.
struct TALIBIS_API ScheduledDriver {
    ScheduledDriver() noexcept = default;
    explicit ScheduledDriver(const char* name);

    const char* sModelName = nullptr;  ///< interned
    double dRiseOn = 0;
    std::uint32_t bRiseOn = 0;
    double dRiseOff = 0;
    std::uint32_t bRiseOff = 0;
    double dFallOn = 0;
    std::uint32_t bFallOn = 0;
    double dFallOff = 0;
    std::uint32_t bFallOff = 0;
};

class IbisRawSubModelData;

/// A model, or through its virtual operations a submodel as if it were one.
///
/// Corners: a corner that is no number gives typ. Where a getter takes a model name, null and the view's own
/// interned name are the own model, any other name a model of the same file; false for an unknown one.
class TALIBIS_API IbisRawModelData
{
  public:
    IbisRawModelData() noexcept = default;
    /// A copy has no parameter file and no code file of its own.
    IbisRawModelData(const IbisRawModelData& other) noexcept;
    /// Takes everything over: both views then share one parameter file, which lives as long as either.
    IbisRawModelData& operator=(const IbisRawModelData&) = default;
    virtual ~IbisRawModelData();

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
    // Of several waveforms the one into the highest or lowest fixture: by V_fixture, or by R_fixture where
    // all have one voltage. The first of equal ones; null without waveforms.
    virtual const wvfrm* getRisingWavefromWithHighest_fixture(IbisDataType type) const;
    virtual const wvfrm* getFallingWavefromWithHighest_fixture(IbisDataType type) const;
    virtual const wvfrm* getRisingWavefromWithLowest_fixture(IbisDataType type) const;
    virtual const wvfrm* getFallingWavefromWithLowest_fixture(IbisDataType type) const;

    /// Views a model, whose root and file `setFile` has given.
    void setModel(nuibis_mdl* model);
    void setFile(ibis* root, const char* fileName);

    // Triples of the model: keyword and unit.
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
    // [Initial Delay] (s) of files before 6.1: the later keyword is one of the waveforms.
    bool getVTDelay(IbisDataType type, double& value) const;  ///< V-T
    bool getITDelay(IbisDataType type, double& value) const;  ///< I-T
    // Those of a model by its name.
    bool getCac(const char* model, IbisDataType type, double& value) const;
    bool getRac(const char* model, IbisDataType type, double& value) const;
    bool getRgnd(const char* model, IbisDataType type, double& value) const;
    bool getRpower(const char* model, IbisDataType type, double& value) const;
    bool getTTgnd(const char* model, IbisDataType type, double& value) const;
    bool getTTpower(const char* model, IbisDataType type, double& value) const;
    bool getGndClampRef(const char* model, IbisDataType type, double& value) const;
    bool getPowerClampRef(const char* model, IbisDataType type, double& value) const;

    // Die capacitances (F): the item of [C Comp Corner] where the model has that keyword, even when it lacks
    // the item, otherwise the subparameter.
    bool getC_comp(IbisDataType type, double& value) const;
    bool getC_comp_pullup(IbisDataType type, double& value) const;
    bool getC_comp_pulldown(IbisDataType type, double& value) const;
    bool getC_comp_power_clamp(IbisDataType type, double& value) const;
    bool getC_comp_gnd_clamp(IbisDataType type, double& value) const;
    bool getC_comp(const char* model, IbisDataType type, double& value) const;
    bool getC_comp_pullup(const char* model, IbisDataType type, double& value) const;
    bool getC_comp_pulldown(const char* model, IbisDataType type, double& value) const;
    bool getC_comp_power_clamp(const char* model, IbisDataType type, double& value) const;
    bool getC_comp_gnd_clamp(const char* model, IbisDataType type, double& value) const;

    // Input thresholds (V): the subparameter.
    bool getVinl(double& value) const;
    bool getVinh(double& value) const;
    // That of [Model Spec], otherwise the subparameter, otherwise 10000 V, which marks an unset threshold.
    // They always give true.
    bool getVinl(IbisDataType type, double& value) const;
    bool getVinh(IbisDataType type, double& value) const;
    /// Supply voltage: [POWER Clamp Reference], otherwise [Voltage Range].
    bool getVcc(IbisDataType type, double& value) const;
    // Slopes (V/s) of [Ramp], and its load (Ohm). False for a slope without a time.
    bool getRampDvDtRise(IbisDataType type, double& value) const;
    bool getRampDvDtFall(IbisDataType type, double& value) const;
    bool getR_load(double& value) const;

    // Series elements (Ohm, H, F) in a state of the switch.
    bool getSeriesR(IbisDataType type, IbisSwitchType state, double& value) const;
    bool getSeriesL(IbisDataType type, IbisSwitchType state, double& value) const;
    bool getSeriesRl(IbisDataType type, IbisSwitchType state, double& value) const;
    bool getSeriesC(IbisDataType type, IbisSwitchType state, double& value) const;
    bool getSeriesRc(IbisDataType type, IbisSwitchType state, double& value) const;
    bool getSeriesLc(IbisDataType type, IbisSwitchType state, double& value) const;
    const rngp* getSeriesCurrentTable(IbisSwitchType state) const;  ///< [Series Current], or null
    const smos* getSeriesMosfetTable(IbisSwitchType state) const;   ///< [Series MOSFET], or null

    // Facts of the model; always true.
    bool getModelType(nuibis_model_type& type) const;
    bool getPolarity(nuibis_model_polarity& polarity) const;
    bool getEnableType(nuibis_model_enable& enable) const;
    const char* getModelName() const { return sModelName; }  ///< interned
    const char* getFileName() const { return sFileName; }    ///< interned

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

    // [Driver Schedule], in the order of its list.
    int getNumDriverSchedule() const { return iNumDriverSchedule; }
    /// Appends a driver for each line, owned by the caller. False without lines, and at a line without
    /// delays, those before it having been appended.
    bool getDriverSchedule(std::vector<ScheduledDriver*>& drivers) const;
    /// Line `index`, from 0. False, with no flag set, if there is none or it has no delays.
    bool getDriverSchedule(int index, ScheduledDriver& driver) const;

    // [Add Submodel], by index from 0.
    int getNumSubModels() const;
    /// A view of the submodel, owned by the caller; null beyond the end and for a submodel that the file
    /// lacks.
    IbisRawSubModelData* getSubModel(int index) const;
    submdl_modes getSubModelMode(int index) const;
    const char* getSubModelName(int index) const;  ///< interned; null beyond the end

    // [Algorithmic Model].

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

    // Components and pins of the file, by exact name.
    const CMPNT* findComponent(const char* component) const;
    const PIN* findPin(const char* component, const char* pin) const;
    // The pin's own parasitics (Ohm, H, F).
    bool getR_pin(const char* component, const char* pin, double& value) const;
    bool getL_pin(const char* component, const char* pin, double& value) const;
    bool getC_pin(const char* component, const char* pin, double& value) const;
    // [Package] (Ohm, H, F).
    bool getR_pkg(const char* component, IbisDataType type, double& value) const;
    bool getL_pkg(const char* component, IbisDataType type, double& value) const;
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

  protected:
    static bool getRngValue(const rng* values, IbisDataType type, double& value);
    static bool useTypRngValue(const rng* values, double& value);
    static bool getRampValue(const rampline* line, IbisDataType type, double& value);
    static bool useTypRampValue(const rampline* line, double& dV, double& dT);
    static const wvfrm* getWaveformWithHighest_fixture(const wvfrm* list, IbisDataType type);
    static const wvfrm* getWaveformWithLowest_fixture(const wvfrm* list, IbisDataType type);

    const submdl* findSubModel(const char* name) const;
    const nuibis_mdl* findModel(const char* name) const;
    const DIFPIN* findDiffPin(const char* component, const char* pin, const char* invPin) const;

    ibis* pIbis = nullptr;
    nuibis_mdl* pModel = nullptr;
    const char* sModelName = nullptr;
    const char* sFileName = nullptr;
    std::int32_t iNumDriverSchedule = 0;
    mutable std::int32_t iNumSubModels = -1;
    std::shared_ptr<TalIbisAMI_File> pAmi;
    std::string sAmiDllName;

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
    IbisRawSubModelData(const IbisRawModelData& parent, const submdl* submodel);

    using IbisRawModelData::getModelType;
    nuibis_model_type getModelType() const override { return eDerivedType; }
    const rngp* getPullupTable() const override;
    const rngp* getPulldownTable() const override;
    const rngp* getPullupSSOTable() const override { return nullptr; }
    const rngp* getPulldownSSOTable() const override { return nullptr; }
    bool isPullupRequired() const override;
    bool isPulldownRequired() const override;
    const rngp* getPowerClampTable() const override;
    const rngp* getGndClampTable() const override;
    bool hasRisingWaveform2() const override;
    bool hasFallingWaveform2() const override;
    const wvfrm* getRisingWavefromWithHighest_fixture(IbisDataType type) const override;
    const wvfrm* getFallingWavefromWithHighest_fixture(IbisDataType type) const override;
    const wvfrm* getRisingWavefromWithLowest_fixture(IbisDataType type) const override;
    const wvfrm* getFallingWavefromWithLowest_fixture(IbisDataType type) const override;

    const char* getSubModelName() const { return sSubModelName; }  ///< interned
    const rngp* getGndPulseTable() const;                          ///< rows of [GND Pulse Table], or null
    const rngp* getPowerPulseTable() const;                        ///< rows of [POWER Pulse Table], or null
    bool getV_trigger_r(IbisDataType type, double& value) const;   ///< V
    bool getV_trigger_f(IbisDataType type, double& value) const;   ///< V
    bool getOff_delay(IbisDataType type, double& value) const;     ///< s

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
