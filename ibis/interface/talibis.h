// The front door: a host asks for a file by name and kind and gets a handle that answers queries, and the
// findings of the read. Handles are cached by name and made anew when the file changes.
//
// One thread, one read at a time. No exception leaves this interface.
//
//     TalIbis* file = nullptr;
//     const IbisErrorContainer* findings = talReadIbisFile("u1.ibs", IBIS_FILE_IBS, &file);

#pragma once

#include "ibis/interface/talibis_ami.h"
#include "ibis/interface/talibis_query.h"
#include "ibis/interface/talibis_symbol.h"
#include "ibis/source/nuibis_errors.h"
#include "ibis/source/nuibis_types.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class IbisRawModelData;
class TalIbisFilter;
struct CMPNT;
struct EBDMDL;
struct PIN;
struct PKG;
struct PKGMDL;
struct ccorner;
struct ebdpathelement;
struct ibis;
struct mspec;
struct msel;
struct nuibis_mdl;
struct ramp;
struct rampline;
struct rng;
struct sinfo;
struct submdl;
enum IbisSwitchType : std::int32_t;
enum numstat : std::int32_t;

/// One file that was read. Owned by the file manager; a host never frees one. Copies share what it points to.
///
/// Queries take their record by reference, clear it first unless they say otherwise, and report only through
/// it. A name that is not in the file gives status -1 and a text; an item that the named thing lacks gives an
/// empty result. A null name ends a query without a status.
///
/// A `corner` is "Typ", "Min", "Max" or "Empty", in exact case. A corner that is no number gives typ, "Empty"
/// the empty string, null and any other word typ. Numbers are in V, A, Ohm, H, F and s, written as by `%g`.
/// A `symbol` is the name of a schematic symbol, see `TalIbisSymbol`.
class TALIBIS_API TalIbis
{
  public:
    /// A handle of no file.
    TalIbis() noexcept = default;
    /// Keeps the interned name; the time stamp is that of the file's last change, 0 when it cannot be told.
    TalIbis(const char* fileName, ibis_file_type type, ibis_ver version);

    /// Gives the records of the file. The handle does not own them.
    void setIbis(ibis* root) { pIbis = root; }
    /// The records of the file; null before `setIbis`.
    ibis* getIbis() const { return pIbis; }
    /// The interned name of the file; null for a handle of no file.
    const char* getFileName() const { return pszFileName; }
    /// Kind of the file, as the host gave it.
    ibis_file_type getFileType() const { return eFileType; }
    /// Version group of the file.
    ibis_ver getVersion() const { return eVersion; }
    /// Keeps a deep copy of the findings.
    void setErrorContainer(const IbisErrorContainer& errors);
    /// The findings of the read; null before `setErrorContainer`, and when memory was out.
    IbisErrorContainer* getErrorContainer() const { return pErrors; }
    /// Time of the file's last change, in seconds since the epoch; 0 when it cannot be told.
    std::int64_t getFileTimeStamp() const { return tTimeStamp; }
    /// Keeps a time in seconds since the epoch.
    void setFileTimeStamp(std::int64_t seconds) { tTimeStamp = seconds; }

    // Components and pins: [Component], [Package], [Pin], [Pin Mapping]
    // ------------------------------------------

    /// The names of the components in file order; status 1 when there is none.
    void getCompList(TalIbisListQueryData& list) const;
    /// The same into a vector, emptied first.
    void getCompListQt(std::vector<std::string>* names) const;
    /// The pin names of a component in file order; an unknown component gives an empty list.
    void getPinList(const char* component, TalIbisListQueryData& list) const;
    /// Copies the name of the pin of 0-based `index` among those whose model is of `type`; `MODEL_UNSEEN`
    /// counts every pin. `out` has room for 6 characters. False when there is no such pin.
    bool getPinName(const char* component, nuibis_model_type type, int index, char* out) const;
    /// The same walk; copies the pin's model name. `out` has room for 41 characters.
    bool getModelName(const char* component, nuibis_model_type type, int index, char* out) const;
    /// Three parallel vectors, emptied first, one entry a pin.
    void getPinModelListQt(std::vector<std::string>* pins, std::vector<std::string>* signals,
                           std::vector<std::string>* models, const char* component) const;
    /// Report table of a pin's five references; empty for a pin without a mapping.
    void getPinMapping(const char* component, const char* pin, TalIbisListQueryData& list) const;
    /// Four plain strings: pullup, pulldown, power clamp, gnd clamp reference.
    void getPinMappingL(const char* component, const char* pin, TalIbisListQueryData& list) const;

    /// @name Pin parasitics
    /// As text: a number, "NA", or empty when not given.
    /// @{

    /// The pin's own R_pin, Ohm.
    void getR_pin(const char* component, const char* pin, TalIbisStringQueryData& result) const;
    /// The pin's own L_pin, H.
    void getL_pin(const char* component, const char* pin, TalIbisStringQueryData& result) const;
    /// The pin's own C_pin, F.
    void getC_pin(const char* component, const char* pin, TalIbisStringQueryData& result) const;
    /// @}

    /// @name Package parasitics
    /// [Package] at a corner, as text.
    /// @{

    /// R_pkg, Ohm.
    void getR_pkg(const char* component, const char* corner, TalIbisStringQueryData& result) const;
    /// L_pkg, H.
    void getL_pkg(const char* component, const char* corner, TalIbisStringQueryData& result) const;
    /// C_pkg, F.
    void getC_pkg(const char* component, const char* corner, TalIbisStringQueryData& result) const;
    /// @}

    /// The version as the file's [IBIS Ver] line has it, read from the file itself.
    void getVersionString(TalIbisStringQueryData& result) const;
    /// Runs the end-of-file checks of one component anew. Gives the shared container, reset before.
    const IbisErrorContainer* testComponent(const char* component) const;

    // Models ------------------------------------------------------------------------------------------------

    /// The names of the models, [Model], in file order.
    void getModelList(TalIbisListQueryData& list) const;
    /// The names of the selectors, [Model Selector], in file order.
    void getModelSelectorList(TalIbisListQueryData& list) const;
    /// Report table of a selector's models that fit the symbol, with their descriptions. Status -1 for a name
    /// that is no symbol; nothing for an unknown selector.
    void getModelSelectorSubModelList(const char* selector, const char* symbol,
                                      TalIbisListQueryData& list) const;
    /// Length of the longest name in that table, 0 without any; 40 for a selector that is unknown or empty.
    int getModelSelectorSubModelListLen(const char* selector, const char* symbol) const;
    /// The names of a selector's models that drive (symbol "IBIS_S_O") or receive ("IBIS_S_I"); the vector is
    /// emptied first.
    void getModelSelectorSubModelListQt(const char* selector, std::vector<std::string>* names,
                                        bool isOutput) const;
    /// Whether a selector has a model that fits the symbol. A name that is no symbol gives status -1 and
    /// keeps the flag. Does not clear.
    void hasModelSelector(const char* selector, const char* symbol, TalIbisBooleanQueryData& flag) const;

    /// Lines of a model's type, polarity, enable and timing test load: Vmeas, Cref, Rref, Vref, Cref_diff,
    /// Rref_diff.
    void getModelInfo(const char* model, TalIbisListQueryData& list) const;
    /// The Model_type of a model, or of the first model of a selector that the file has.
    void getModelTypeString(const char* name, TalIbisStringQueryData& result) const;
    /// Report table of [Driver Schedule], in s.
    void getModelDriverScheduleDelay(const char* model, TalIbisListQueryData& list) const;
    /// Whether the model has a [Driver Schedule]; false for an unknown model. Does not clear.
    void hasModelDriverSchedule(const char* model, TalIbisBooleanQueryData& flag) const;
    /// The same without a record.
    bool hasModelDriverSchedule(const char* model) const;
    /// The names of [Add Submodel], in order.
    void getSubmodelList(const char* model, TalIbisListQueryData& list) const;
    /// Mode, type and trigger voltages (V) of a submodel that the model adds. A submodel that it does not add
    /// gives status -1, and its type and triggers all the same.
    void getSubmodelInfo(const char* model, const char* submodel, TalIbisListQueryData& list) const;
    /// Report table of Off_delay (s) of [Submodel Spec].
    void getSubmodelOffDelay(const char* submodel, TalIbisListQueryData& list) const;

    /// @name Triples
    /// Report tables of one triple of a model: a row of typ, min and max.
    /// @{

    void getVoltageRange(const char* model, TalIbisListQueryData& list) const;  ///< [Voltage Range], V
    void getPullupRef(const char* model, TalIbisListQueryData& list) const;     ///< [Pullup Reference], V
    void getPulldownRef(const char* model, TalIbisListQueryData& list) const;   ///< [Pulldown Reference], V
    void getPowerClampRef(const char* model,
                          TalIbisListQueryData& list) const;                   ///< [POWER Clamp Reference], V
    void getGndClampRef(const char* model, TalIbisListQueryData& list) const;  ///< [GND Clamp Reference], V
    void getExternalRef(const char* model, TalIbisListQueryData& list) const;  ///< [External Reference], V
    void getTTgnd(const char* model, TalIbisListQueryData& list) const;        ///< [TTgnd], s
    void getTTpower(const char* model, TalIbisListQueryData& list) const;      ///< [TTpower], s
    void getRgnd(const char* model, TalIbisListQueryData& list) const;    ///< [Rgnd], Ohm. Does not clear.
    void getRpower(const char* model, TalIbisListQueryData& list) const;  ///< [Rpower], Ohm
    void getRac(const char* model, TalIbisListQueryData& list) const;     ///< [Rac], Ohm
    void getCac(const char* model, TalIbisListQueryData& list) const;     ///< [Cac], F
    /// @}

    /// @name Tables
    /// Whether a model has one. They do not clear; an unknown model gives status -1 and false.
    /// @{

    void hasPullup(const char* model, TalIbisBooleanQueryData& flag) const;      ///< [Pullup]
    void hasPulldown(const char* model, TalIbisBooleanQueryData& flag) const;    ///< [Pulldown]
    void hasPowerClamp(const char* model, TalIbisBooleanQueryData& flag) const;  ///< [POWER Clamp]
    void hasGndClamp(const char* model, TalIbisBooleanQueryData& flag) const;    ///< [GND Clamp]
    /// @}

    /// @name Die capacitances
    /// In F: the item of [C Comp Corner] where the model has that keyword, even when it lacks the item,
    /// otherwise the subparameter.
    /// @{

    /// C_comp, F.
    void getC_comp(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// C_comp_pullup, F.
    void getC_comp_pullup(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// C_comp_pulldown, F.
    void getC_comp_pulldown(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// C_comp_power_clamp, F.
    void getC_comp_power_clamp(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// C_comp_gnd_clamp, F.
    void getC_comp_gnd_clamp(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// @}

    /// @name Input thresholds
    /// In V: that of [Model Spec], otherwise the subparameter whatever the corner, otherwise "10000", which
    /// no input reaches.
    /// @{

    /// Vinh, V.
    void getVinh(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// Vinl, V.
    void getVinl(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// @}

    /// R_load (Ohm) of [Ramp].
    void getR_load(const char* model, TalIbisStringQueryData& result) const;
    /// @name Slopes
    /// dV/dt_r and dV/dt_f of [Ramp] as "dV/dt" (V, s), "NA", or one blank where a corner was not given;
    /// empty for a word that is none of "Typ", "Min" and "Max".
    /// @{

    /// dV/dt_r.
    void getRampDvDtRise(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// dV/dt_f.
    void getRampDvDtFall(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// @}

    /// V_fixture (V) of the first [Rising Waveform]. "Typ", "Min" or "Max"; any other word is told on the
    /// standard error stream and gives the empty string.
    void getV_fixture1(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// @name Other fixtures
    /// Empty for every model: they hold the place of fixtures that no host asks for. An unknown model gives
    /// status -1.
    /// @{

    /// V_fixture of the second waveform: empty.
    void getV_fixture2(const char* model, const char* corner, TalIbisStringQueryData& result) const;
    /// R_fixture of the first waveform: empty.
    void getR_fixture1(const char* model, TalIbisStringQueryData& result) const;
    /// R_fixture of the second waveform: empty. Does not clear.
    void getR_fixture2(const char* model, TalIbisStringQueryData& result) const;
    /// @}

    /// @name Series elements
    /// In Ohm, H and F, of a model of type Series or Series_switch; `state` is "On", and any other word is
    /// off. They do not clear. An unknown model is reported as a component: scripts look for the words.
    /// @{

    void getR_series(const char* model, const char* state, const char* corner,
                     TalIbisStringQueryData& result) const;  ///< [R Series]
    void getL_series(const char* model, const char* state, const char* corner,
                     TalIbisStringQueryData& result) const;  ///< [L Series]
    void getRl_series(const char* model, const char* state, const char* corner,
                      TalIbisStringQueryData& result) const;  ///< [Rl Series]
    void getC_series(const char* model, const char* state, const char* corner,
                     TalIbisStringQueryData& result) const;  ///< [C Series]
    void getRc_series(const char* model, const char* state, const char* corner,
                      TalIbisStringQueryData& result) const;  ///< [Rc Series]
    void getLc_series(const char* model, const char* state, const char* corner,
                      TalIbisStringQueryData& result) const;  ///< [Lc Series]
    /// @}

    /// @name Series tables
    /// Whether that state has the table; false without a word for an unknown model. They do not clear.
    /// @{

    void hasSeries_current(const char* model, const char* state,
                           TalIbisBooleanQueryData& flag) const;  ///< [Series Current]
    void hasSeries_MOSFET(const char* model, const char* state,
                          TalIbisBooleanQueryData& flag) const;  ///< [Series MOSFET]
    /// @}

    /// `SWITCH_ON` for the word "On", otherwise `SWITCH_OFF`.
    static IbisSwitchType getSeriesSwitchType(const char* state);

    /// A view of a model for simulators, owned by the caller; null if the file has no such model. It lives no
    /// longer than the file is cached.
    IbisRawModelData* getIbisRawModelData(const char* model) const;

    /// Runs the end-of-file checks of one model anew: the steady state against ramp, waveforms and test load,
    /// believable values, [Driver Schedule], [Test Data]. Gives the shared container, reset before.
    const IbisErrorContainer* testModel(const char* model) const;
    /// The same; what the container holds stays.
    const IbisErrorContainer* testModel(nuibis_mdl* model) const;

    // Pin relations -----------------------------------------------------------------------------------------

    /// Report table of the pins of a component that fit the symbol: name, signal, model. The symbol "" leaves
    /// out pins without a buffer, "IBIS_Pkg" those that the component's package model lacks. The symbol "Ebd"
    /// asks for the pins of the board, whatever the component: name, signal, nodes.
    void getPinModelList(const char* component, const char* symbol, TalIbisListQueryData& list) const;
    /// Report table of the [Diff Pin] pair that a pin stands in: threshold (V) and delays (s).
    void getDiffPin(const char* component, const char* pin, TalIbisListQueryData& list) const;
    /// Report table of the [Repeater Pin] entries whose receiver is of the symbol's kind,
    /// "IBIS_ReDriver_AMI" or "IBIS_ReTimer_AMI". Status 2 when entries were left out.
    void getRepeaterPinList(const char* component, const char* symbol, TalIbisListQueryData& list) const;
    /// Report table of the [Series Pin Mapping] entries of a pin. Does not clear on a null name.
    void getSeriesPinMapping(const char* component, const char* pin, TalIbisListQueryData& list) const;
    /// Report table of [Series Switch Groups]. Does not clear on a null name.
    void getSeriesSwitchGroup(const char* component, TalIbisListQueryData& list) const;
    /// Whether the pin stands in [Series Pin Mapping]; false for unknown names. Does not clear.
    void hasSeriesPinMapping(const char* component, const char* pin, TalIbisBooleanQueryData& flag) const;

    // Package models: [Package Model] of a component, [Define Package Model]
    // ---------------------------------

    /// "1" for a package model of sections, "2" for one of matrices, otherwise "0". A component without a
    /// package model leaves the record as it is. Does not clear.
    void getIbisPkgModelType(const char* component, TalIbisStringQueryData& result) const;
    /// The path of a pin, five strings a section: depth of branching, Len, L (H), C (F), R (Ohm); L, C and R
    /// are per unit of Len, or lumped where Len is 0. For a model of matrices, and for the first pin of any
    /// model, "0", "0" and the pin's own L, C and R of those matrices that the model has. Does not clear on a
    /// null name.
    void getIbisPkgModel(const char* component, const char* pin, TalIbisListQueryData& list) const;
    /// The part of each matrix that couples `pins`, names with blanks between them: one string a matrix, in
    /// the order L (H), C (F), R (Ohm), its numbers row after row with a comma behind each. Does not clear on
    /// a null name.
    void getIbisPkgMatrixModel(const char* component, const char* pins, TalIbisListQueryData& list) const;

    // Electrical boards: [Begin Board Description]
    // ------------------------------------------------------------

    /// Report table of [Reference Designator Map], newest entry first; status 1 without any.
    void getEbdRefList(TalIbisListQueryData& list) const;
    /// Three parallel vectors of the same. Only `refs` is emptied first; the others grow.
    void getEbdRefListQt(std::vector<std::string>* refs, std::vector<std::string>* files,
                         std::vector<std::string>* components) const;
    /// The board's pins and their signals, [Pin List], in file order; both vectors are emptied first.
    void getEbdPinListQt(std::vector<std::string>* pins, std::vector<std::string>* signals) const;
    /// The component pins, "U1.7", that the path from a board pin reaches.
    void getEbdNodeList(const char* path, TalIbisListQueryData& list) const;
    /// The same into a vector, emptied first.
    void getEbdNodeListQt(const char* path, std::vector<std::string>* nodes) const;
    /// The component pins on the branch of a Fork, behind what the list holds.
    void EbdNodeFork(const ebdpathelement* fork, TalIbisListQueryData& list) const;
    /// The same, behind what the vector holds.
    void EbdNodeForkQt(const ebdpathelement* fork, std::vector<std::string>* nodes) const;
    /// The path from a board pin, six strings an element: depth of branching ("-1" opens a branch right
    /// behind another one), name of a component or board pin, Len, L (H), C (F), R (Ohm).
    void getIbisEbdModel(const char* path, TalIbisListQueryData& list) const;

    // Algorithmic models ------------------------------------------------------------------------------------
    //
    // Parameters are numbered from 0 in the order of their file. The objects of a parameter file are made on
    // first use, belong to the handle and are made anew when the file changes. In queries, a model without an
    // [Algorithmic Model] gives status -1 and a text, and so does an index that no parameter has.

    /// The model has an algorithmic model with at least one line.
    bool isAMIModel(const char* name) const;
    /// The same of a record, which may be null.
    static bool isAMIModel(const nuibis_mdl* model);
    /// Path of the 64-bit code file for the platform of this library, beside the component file `ibisPath`;
    /// the last line of the keyword that names one counts. False, with `dllName` as it came, if none does.
    static bool findAMI_DLL_Name(const nuibis_mdl* model, const char* ibisPath,
                                 std::string& dllName) noexcept;
    /// Reads the parameter file that the last line of the keyword names, beside the component file
    /// `ibisPath`. The caller owns the result; a file with errors gives an object without a tree. Null for a
    /// model without lines, and when memory is out.
    static TalIbisAMI_File* readAMI_File(const nuibis_mdl* model, const char* ibisPath) noexcept;
    /// The parameter file of a model, read on first use and when it changed since the handle was made. Null
    /// where `readAMI_File` gives null.
    TalIbisAMI_File* parseAMI_File(const char* name) const noexcept;
    /// The same of a record, which may be null.
    TalIbisAMI_File* parseAMI_File(const nuibis_mdl* model) const noexcept;
    /// The findings in the model's parameter file; null for a model without lines.
    const IbisErrorContainer* testAMIModel(const char* name) const;
    /// The same of a record, which may be null. What the global container holds stays.
    const IbisErrorContainer* testAMIModel(const nuibis_mdl* model) const;
    /// Name of the parameter file that the last line of the keyword names; empty if that is none.
    void getAMIFileName(const char* model, TalIbisStringQueryData& result) const;
    /// Number of parameters; 0 on any miss.
    std::size_t getAMIParamNum(const char* model) const;
    /// The same as text.
    void getAMIParamNum(const char* model, TalIbisStringQueryData& result) const;
    /// The names of the branches from the root down to a parameter.
    void getAMIParamTree(const char* model, int index, TalIbisListQueryData& list) const;
    /// Usage, type, word of the format, value, and where the value comes from ("Default", "Value", "User
    /// specified"); "null" for what the file does not give.
    void getAMIParamAttrs(const char* model, int index, TalIbisListQueryData& list) const;
    /// The parameter as the text of a parameter file; status 1 if a word of it is not understood.
    void getAMIParamInfo(const char* model, int index, TalIbisStringQueryData& result) const;
    /// The values to choose from: first the labels, then the values. Status 2 for a parameter without a
    /// format, and when there are more values than 10,000, which are then cut.
    void getAMIDataChoices(const char* model, int index, TalIbisListQueryData& list) const;

  private:
    CMPNT* findComp(const char* name) const;
    nuibis_mdl* findModel(const char* name) const;
    msel* findModelSelector(const char* name) const;
    PIN* findPin(const CMPNT* component, const char* name) const;

    submdl* findSubmodel(const char* name) const;
    const PKGMDL* findPackageModel(const CMPNT* component) const;
    std::unordered_set<std::string_view> packagePinsOf(const CMPNT& component) const;
    const EBDMDL* findBoard() const;

    void missComponent(TalIbisQueryData& record, const char* component) const;
    CMPNT* findCompOrReportQuoted(const char* name, TalIbisQueryData& record) const;
    CMPNT* findCompOrReport(const char* name, TalIbisQueryData& record) const;
    nuibis_mdl* findModelOrReport(const char* name, TalIbisQueryData& record) const;
    const PIN* findPinOfType(const char* component, nuibis_model_type type, int index) const;
    void getPinValue(const char* component, const char* pin, double PIN::*value, numstat PIN::*status,
                     TalIbisStringQueryData& result) const;
    void getPackageValue(const char* component, const char* corner, rng* PKG::*values,
                         TalIbisStringQueryData& result) const;
    /// A parameter with the file that it stands in; all null if it was not found.
    struct AmiParam {
        const TalIbisAMI_File* pFile = nullptr;
        const TalIbisAMI_ParamDef* pDefinition = nullptr;
        const _tagBranchStruct* pBranch = nullptr;
    };
    const TalIbisAMI_File* findAMI_File(const char* name, TalIbisQueryData& record, const char* words) const;
    AmiParam findAMI_Param(const char* name, int index, TalIbisQueryData& record) const;

    static nuibis_model_type getModelType(const nuibis_mdl* model);
    nuibis_model_type getModelType(const char* name) const;
    bool isModelType(const char* name, nuibis_model_type type) const;
    bool isModelType(const char* name, nuibis_model_type type, bool selective) const;
    bool isModelType(const char* name, const TalIbisSymbol& symbol) const;

    void getComponentPins(const CMPNT& component, std::string_view symbol, TalIbisFilter& filter,
                          TalIbisListQueryData& list) const;
    void getBoardPins(TalIbisListQueryData& list) const;
    bool isRepeater(const char* name, std::string_view type) const;

    template <class Query> void queryModel(const char* model, TalIbisQueryData& record, Query query) const;
    void getTriple(const char* model, rng* nuibis_mdl::*values, TalIbisListQueryData& list) const;
    void hasItem(const char* model, bool (*has)(const nuibis_mdl&), TalIbisBooleanQueryData& flag) const;
    void getCapacitance(const char* model, const char* corner, rng* nuibis_mdl::*own, rng* ccorner::*item,
                        TalIbisStringQueryData& result) const;
    void getThreshold(const char* model, const char* corner, rng* mspec::*spec, double* nuibis_mdl::*own,
                      TalIbisStringQueryData& result) const;
    void getSlope(const char* model, const char* corner, rampline* ramp::*line,
                  TalIbisStringQueryData& result) const;
    const sinfo* findSeries(const char* model, const char* state) const;
    void getSeries(const char* model, const char* state, const char* corner, rng* sinfo::*values,
                   TalIbisStringQueryData& result) const;

    const char* pszFileName = nullptr;
    ibis_file_type eFileType = IBIS_FILE_NONE;
    ibis* pIbis = nullptr;
    ibis_ver eVersion = IBIS_VER_NONE;
    IbisErrorContainer* pErrors = nullptr;
    std::int64_t tTimeStamp = 0;
    mutable TalIbisAMI_FileList amiFiles;

    friend class TalIbisFileManager;
    friend class TalIbisFilter;
};

/// Handles by interned name. The file type is no part of the key.
class TALIBIS_API TalIbisMapping
{
  public:
    /// Keeps a handle under an interned name, in place of a former one. The handle stays with its owner.
    void add(const char* name, ibis_file_type type, TalIbis* ibis);
    /// The handle of an interned name, or null.
    TalIbis* find(const char* name) const;
    /// Forgets the handle of an interned name, which is not released.
    void erase(const char* name);

  protected:
    std::unordered_map<const char*, TalIbis*> handles;  ///< the handles, by the address of their name
};

/// The process-wide owner of all handles.
class TALIBIS_API TalIbisFileManager : public TalIbisMapping
{
  public:
    /// The one manager, made on first call; null only when memory is out.
    static TalIbisFileManager* getInstance();
    /// Releases all handles and the root read last.
    static void destroyInstance();
    /// There is one manager: not copied.
    TalIbisFileManager(const TalIbisFileManager&) = delete;
    /// There is one manager: not copied.
    TalIbisFileManager& operator=(const TalIbisFileManager&) = delete;

    /// The handle of a file: the cached one while the file on disk is unchanged, otherwise read anew. Null
    /// when the file cannot be read; the findings then are in the global container.
    TalIbis* getIbis(const char* name, ibis_file_type type);
    /// Reads a file into a new root, clearing the global container first. A null version pointer is allowed.
    bool readIbisFile(const char* name, ibis_file_type type, ibis_ver* version);
    /// Version that the last read found by looking at the file's first keyword.
    static ibis_ver getSniffedVersion();

  private:
    TalIbisFileManager() = default;
    ~TalIbisFileManager();
    static bool validateFile(const char* name, ibis_file_type type);
    static bool doReadIbisFile(const char* name, ibis_file_type type);
    void drop(const char* name, TalIbis* handle);
    static void release(TalIbis* handle);

    friend TALIBIS_API const IbisErrorContainer* talReadParameterFile(const char* name, ibis_file_type type);
};

/// Reads a file, or finds it in the cache, and gives its findings. With a null `out` nothing is read. `*out`
/// is null when the file could not be read; what speaks of it then is in the result.
TALIBIS_API const IbisErrorContainer* talReadIbisFile(const char* name, ibis_file_type type, TalIbis** out);
/// The findings of a handle (may be null); for a null handle those of the last read.
TALIBIS_API const IbisErrorContainer* talGetIbisError(const TalIbis* ibis);
