// [Component]: the record of a component, its own keywords, and the distribution of its tables to their
// modules.

#pragma once

#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_keyword.h"
#include "ibis/source/nuibis_list.h"

struct PKG;
struct PIN;
struct PINMPG;
struct DIFPIN;
struct REPPIN;
struct SSWCH;
struct SPINMPG;
struct APKG;
struct NODELIST;
struct CCALL;
struct CMPNTEMI;
struct msel;
struct nuibis_mdl;
struct EXTCIRCUIT;

/// Where a component's timing and its silicon are measured.
enum CMPNT_Location : int {
    LOCATION_ABSENT = 0,
    LOCATION_INVALID = 1,  ///< given, but not understood
    LOCATION_DIE = 2,
    LOCATION_PIN = 3,
};

struct CMPNT {
    CMPNT* pNext;
    char szName[41];
    char szManufacturer[41];
    PKG* pPackage;            ///< [Package]
    int iPinColumns;          ///< columns of the [Pin] header, 0 without [Pin]
    PIN* pPins;               ///< [Pin], file order
    char szPackageModel[41];  ///< [Package Model]
    int iPinMappingColumns;   ///< columns of the [Pin Mapping] header
    PINMPG* pPinMappings;     ///< [Pin Mapping], file order
    int iDiffPinColumns;      ///< columns of the [Diff Pin] header
    DIFPIN* pDiffPins;        ///< [Diff Pin]
    int iRepeaterPinColumns;  ///< columns of the [Repeater Pin] header
    REPPIN* pRepeaterPins;    ///< [Repeater Pin]
    CMPNT_Location eSiLocation;
    CMPNT_Location eTimingLocation;
    SSWCH* pSeriesSwitchGroups;   ///< [Series Switch Groups]
    int iSeriesPinColumns;        ///< columns of the [Series Pin Mapping] header
    SPINMPG* pSeriesPinMappings;  ///< [Series Pin Mapping]
    APKG* pAltPackageModels;      ///< [Alternate Package Models]
    NODELIST* pNodes;             ///< [Node Declarations]
    CCALL* pCircuitCalls;         ///< [Circuit Call], newest first
    CMPNTEMI* pEmi;               ///< [Begin EMI Component]
};

void CMPNT_Init();
void CMPNT_Line(line_type lineType, nuibis_keyword code, std::string_view text);
void CMPNT_Leave(nuibis_keyword newCode);

/// The end-of-file checks of all components.
void CMPNT_CheckAll(CMPNT* list, EXTCIRCUIT* circuits, nuibis_mdl* models);
/// The same checks for one component.
void CMPNT_CheckOne(CMPNT* component, EXTCIRCUIT* circuits, nuibis_mdl* models);
/// Exact comparison, first match of the list; null if absent.
CMPNT* CMPNT_Find(CMPNT* list, std::string_view name);
void CMPNT_FreeList(CMPNT* list);

// Models on differential pins -----------------------------------------------------------------------------

/// The pins of a file that stand in a [Diff Pin] pair, in either column, by the models that they may use:
/// components and their pins in file order, a pin naming a model or a model selector. Made once for a check
/// of many models, from lists that stay as they are meanwhile. Where memory runs out, it holds the pins found
/// so far.
class CMPNT_DiffPins
{
  public:
    CMPNT_DiffPins(const CMPNT* components, msel* selectors);

  private:
    friend bool CMPNT_UsesDiffModel(nuibis_mdl* model, CMPNT_DiffPins& pins, const PIN** pin);

    struct Use {
        const PIN* pPin;          // first pin that uses the model
        std::size_t uiSelectors;  // selectors that a search passes ahead of it
    };

    void addComponent(const CMPNT& component, msel* selectors);
    void addSelector(const PIN& pin, msel* selector);
    void passSelectors(std::size_t count);

    CMN_Map<std::string_view, Use> mUses;  // by name of the model
    CMN_Set<const msel*> mSeen;            // selectors that are in the list below
    CMN_Vector<msel*> mSelectors;          // of pins in pairs, in the order of the search
    std::size_t muPassed = 0;              // how many of them searches have marked
};

/// Whether the model is used on a pin of a [Diff Pin] pair, directly or through a [Model Selector], and the
/// first such pin. Marks the model as differential, and every selector that the search passes without finding
/// the model in it. `pin` may be null.
bool CMPNT_UsesDiffModel(nuibis_mdl* model, CMPNT_DiffPins& pins, const PIN** pin);
