// [Model]: the record of a buffer model, its subparameters, and the distribution of every keyword that may
// stand inside a model to the module that reads it.
//
// All tables, fixtures and blocks of a model hang from this record. A null pointer always means that the file
// did not give the item: no default is invented at reading, and the later checks depend on it.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_keyword.h"
#include "ibis/source/nuibis_types.h"

#include <initializer_list>

struct rng;
struct crv;
struct ccorner;
struct drvsh;
struct mspec;
struct rcvth;
struct sinfo;
struct ramp;
struct wvfrm;
struct EXTBLOCK;
struct ALGMOD_LIST;
struct MDLEMI;
struct idly;
struct submdl;

/// One line of [Add Submodel].
struct addsubmdl {
    char szName[41];
    submdl_modes eMode;
    addsubmdl* pNext;
};

/// Voltages in V, capacitances in F, resistances in Ohm, times in s, temperatures in degrees Celsius.
struct nuibis_mdl {
    nuibis_mdl* pNext;
    char szName[41];
    nuibis_model_type eModelType;
    nuibis_model_polarity ePolarity;
    nuibis_model_enable eEnable;
    double* pdVinl;
    double* pdVinh;
    rng* pCComp;
    rng* pCCompPullup;
    rng* pCCompPulldown;
    rng* pCCompPowerClamp;
    rng* pCCompGndClamp;
    double* pdVmeas;
    double* pdCref;
    double* pdRref;
    double* pdVref;
    double* pdCrefDiff;
    double* pdRrefDiff;
    rng* pTempRange;             ///< [Temperature Range]
    rng* pVoltageRange;          ///< [Voltage Range]
    rng* pPullupRef;             ///< [Pullup Reference]
    rng* pPulldownRef;           ///< [Pulldown Reference]
    rng* pPowerClampRef;         ///< [POWER Clamp Reference]
    rng* pGndClampRef;           ///< [GND Clamp Reference]
    rng* pExternalRef;           ///< [External Reference]
    ccorner* pCCompCorner;       ///< [C Comp Corner]
    rng* pTTgnd;                 ///< [TTgnd]
    rng* pTTpower;               ///< [TTpower]
    drvsh* pDriverSchedule;      ///< [Driver Schedule]
    mspec* pModelSpec;           ///< [Model Spec]
    rcvth* pReceiverThresholds;  ///< [Receiver Thresholds]
    sinfo* pOn;                  ///< series elements of [On], or of the whole model when it is a plain Series
    sinfo* pOff;                 ///< series elements of [Off]
    addsubmdl* pAddSubmodels;    ///< [Add Submodel], file order
    crv* pPulldown;              ///< [Pulldown]
    crv* pPullup;                ///< [Pullup]
    crv* pGndClamp;              ///< [GND Clamp]
    crv* pPowerClamp;            ///< [POWER Clamp]
    rng* pRgnd;                  ///< [Rgnd]
    rng* pRpower;                ///< [Rpower]
    rng* pRac;                   ///< [Rac]
    rng* pCac;                   ///< [Cac]
    ramp* pRamp;                 ///< [Ramp]
    wvfrm* pRising;              ///< [Rising Waveform], file order
    wvfrm* pFalling;             ///< [Falling Waveform], file order
    EXTBLOCK* pExternalModel;    ///< [External Model]
    ALGMOD_LIST* pAlgorithmicModel;  ///< [Algorithmic Model]
    crv* pIssoPu;                    ///< [ISSO_PU]
    crv* pIssoPd;                    ///< [ISSO_PD]
    MDLEMI* pEmiModel;               ///< [Begin EMI Model]
    idly* pInitialDelay;             ///< [Initial Delay] from 6.1 on
    std::uint32_t uiReferenced;      ///< 1 once a pin, selector, schedule or series pin refers to the model
    std::uint32_t eDiffUse;          ///< 2 at creation, 0 once found on a pin of a [Diff Pin] pair
    rng* pVT;                        ///< line V-T of [Initial Delay] up to 6.0
    rng* pIT;                        ///< line I-T of [Initial Delay] up to 6.0
};

// Sets of model types, for rules that name them -----------------------------------------------------------

using MDL_TypeSet = std::uint32_t;

constexpr MDL_TypeSet MDL_Types(std::initializer_list<nuibis_model_type> types)
{
    MDL_TypeSet set = 0;
    for (const nuibis_model_type type : types) {
        set |= MDL_TypeSet{1} << type;
    }
    return set;
}

constexpr bool MDL_IsOneOf(nuibis_model_type type, MDL_TypeSet set)
{
    return ((set >> type) & 1U) != 0;
}

/// Every value of a type, the unseen one and the one not understood included.
inline constexpr MDL_TypeSet MDL_ALL_TYPES = (MDL_TypeSet{1} << (MODEL_INPUT_DIFF + 1)) - 1;
/// Single-ended types that receive: they have the input thresholds Vinl and Vinh.
inline constexpr MDL_TypeSet MDL_RECEIVERS =
    MDL_Types({MODEL_INPUT, MODEL_IO, MODEL_IO_OPEN_DRAIN, MODEL_IO_OPEN_SINK, MODEL_IO_OPEN_SOURCE,
               MODEL_INPUT_ECL, MODEL_IO_ECL});
inline constexpr MDL_TypeSet MDL_SERIES_TYPES = MDL_Types({MODEL_SERIES, MODEL_SERIES_SWITCH});
/// Types that only drive low, and types that only drive high.
inline constexpr MDL_TypeSet MDL_OPEN_LOW =
    MDL_Types({MODEL_OPEN_DRAIN, MODEL_IO_OPEN_DRAIN, MODEL_OPEN_SINK, MODEL_IO_OPEN_SINK});
inline constexpr MDL_TypeSet MDL_OPEN_HIGH = MDL_Types({MODEL_OPEN_SOURCE, MODEL_IO_OPEN_SOURCE});
/// Types that never drive a pad.
inline constexpr MDL_TypeSet MDL_WITHOUT_DRIVER =
    MDL_SERIES_TYPES | MDL_Types({MODEL_INPUT, MODEL_INPUT_ECL, MODEL_TERMINATOR});
inline constexpr MDL_TypeSet MDL_ECL_TYPES =
    MDL_Types({MODEL_INPUT_ECL, MODEL_OUTPUT_ECL, MODEL_IO_ECL, MODEL_3STATE_ECL});

// Presence of items ---------------------------------------------------------------------------------------

/// Whether the file gave an item, for tables of items of different kinds.
template <auto Field> bool MDL_Has(const nuibis_mdl& model)
{
    return model.*Field != nullptr;
}

// The keyword contract ------------------------------------------------------------------------------------

void MDL_Init();
void MDL_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void MDL_Leave(nuibis_keyword newCode);
void MDL_FreeList(nuibis_mdl* list);

/// When a model has ended: what was read against what a model of its type needs. Only looks; every message is
/// without a line.
void MDL_Validate(const nuibis_mdl& model);

// For other modules ---------------------------------------------------------------------------------------

/// The model of exactly that name, first match of the list; null if absent.
nuibis_mdl* MDL_Find(std::string_view name, nuibis_mdl* list);
/// Sets `uiReferenced`; 1 if the model exists.
int MDL_MarkReferenced(std::string_view name, nuibis_mdl* list);
/// Gives the model's type; 1 if the model exists.
int MDL_GetType(nuibis_mdl* list, std::string_view name, nuibis_model_type* out);
/// Text of a type, null for a type that no file can name.
const char* MDL_TypeName(nuibis_model_type type);
/// Text of a type for messages: "No Type" where the model has none.
const char* MDL_TypeText(nuibis_model_type type);

/// Reads a typ/min/max triple behind a keyword into an empty field of the open model: the shared reader of
/// the range, resistor and series keywords.
void MDL_ReadKeywordTriple(std::string_view text, std::string_view label, rng** field);

/// 1 if the model's [Add Submodel] names the submodel.
int MDL_HasAddSubmodel(const nuibis_mdl* model, const submdl* submodel);

// At the end of the file ----------------------------------------------------------------------------------

/// Warns of the first model that nothing refers to, once a file.
void MDL_WarnUnreferenced(const nuibis_mdl* list);
/// Warns of each submodel that no model pulls in.
void MDL_CheckSubmodelUse(const nuibis_mdl* models, const submdl* submodels);
/// Errors for the submodels that models pull in and the file does not hold. `submodels` may be null.
void MDL_CheckAddSubmodels(const nuibis_mdl* models, submdl* submodels);
