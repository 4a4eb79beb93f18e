#include "ibis/source/nuibis_reppin.h"

#include "ibis/source/nuibis_algmod.h"
#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_pinpair.h"

#include <array>

namespace
{

LIST_Tail<REPPIN> gTail;  // follows the list that is being read

// One side of a repeater.
struct Side {
    char (REPPIN::*pszPin)[6];
    MSG_Text2 unknownPin;  // (component, pin)
    MDL_TypeSet uiTypes;
    MSG_Text2 wrongType;    // (component, pin)
    MSG_Text3 noAlgorithm;  // (component, pin, model)
    MSG_Text4 noRepeater;   // (component, pin, model, parameter file); 0: the other side tells it
};

constexpr std::array<Side, 2> SIDES{{
    {&REPPIN::szPin, 5105, MDL_Types({MODEL_INPUT, MODEL_INPUT_DIFF}), 5113, 5116, 5118},
    {&REPPIN::szTxNonInvPin, 5106, MDL_Types({MODEL_OUTPUT, MODEL_OUTPUT_DIFF}), 5114, 5117, 0},
}};

// The parameter files of models that tell no repeater type. Each model is looked through once, and gives a
// file once, however many platforms share it; a file that could not be read is its own matter.
class ParamFiles
{
  public:
    using Files = CMN_Vector<const PFILE*>;

    const Files& withoutRepeater(const nuibis_mdl& model)
    {
        const auto [entry, isNew] = mFiles.try_emplace(&model);
        if (isNew) {
            collect(model, entry->second);
        }
        return entry->second;
    }

  private:
    static void collect(const nuibis_mdl& model, Files& files)
    {
        CMN_Set<const PFILE*> seen;
        for (const ALGMOD* line = model.pAlgorithmicModel->pFirst; line != nullptr; line = line->pNext) {
            const PFILE* const file = line->pParamFile;
            if (file != nullptr && file->eType == IBIS_FILE_AMI && file->pTree != nullptr &&
                file->szRepeaterType[0] == '\0' && seen.insert(file).second) {
                files.push_back(file);
            }
        }
    }

    CMN_Map<const nuibis_mdl*, Files> mFiles;
};

void CheckSide(const Side& side, const char* name, PIN* pins, const ibis& root, ParamFiles& files,
               const char* component)
{
    const char* const modelName = PIN_ModelOf(pins, name);
    if (modelName == nullptr) {
        MSG_Error(side.unknownPin, component, name);
        return;
    }
    const nuibis_mdl* const model = MDL_Find(modelName, root.pModels);
    if (model == nullptr) {
        return;
    }
    if (!MDL_IsOneOf(model->eModelType, side.uiTypes)) {
        MSG_Error(side.wrongType, component, name);
    }
    if (model->pAlgorithmicModel == nullptr) {
        MSG_Error(side.noAlgorithm, component, name, modelName);
    } else if (side.noRepeater) {
        for (const PFILE* file : files.withoutRepeater(*model)) {
            MSG_Error(side.noRepeater, component, name, modelName, file->szName);
        }
    }
}

}  // namespace

// A second header is reported and read all the same.
void REPPIN_ReadHeader(CMPNT* component, std::string_view text)
{
    if (component->iRepeaterPinColumns != 0) {
        MSG_ErrorLine(554);
    }
    ++component->iRepeaterPinColumns;
    if (text.empty()) {
        MSG_ErrorLine(528, "Repeater Pin");
        return;
    }
    const CMN_TokenList tokens = CMN_Split(text, 2);
    if (!CMN_Equal(tokens[0], "tx_non_inv_pin")) {
        MSG_ErrorLine(529, "tx_non_inv_pin");
    }
    if (tokens.iFound > 1) {
        MSG_ErrorLine(530, tokens[1]);
    }
}

int REPPIN_ReadLine(std::string_view text, REPPIN** out)
{
    if (!CMN_Alloc(*out)) {
        MSG_ErrorLine(5100);
        return 0;
    }
    REPPIN& pair = **out;
    const CMN_TokenList tokens = CMN_Split(text, 2);
    if (tokens.iFound > tokens.iStored) {
        MSG_ErrorLine(5101);
    }
    if (tokens.iStored > 0) {
        CMN_ReplaceString(pair.szPin, tokens[0], PIN_NAME_LIMIT, "Repeater_Pin column");
    } else {
        MSG_ErrorLine(5102);
    }
    if (tokens.iStored > 1) {
        CMN_ReplaceString(pair.szTxNonInvPin, tokens[1], PIN_NAME_LIMIT, "tx_non_inv_pin column");
    } else {
        MSG_ErrorLine(5103);
    }
    if (std::string_view(pair.szPin) == pair.szTxNonInvPin) {
        MSG_ErrorLine(5104);
    }
    return 1;
}

void REPPIN_Add(REPPIN*& list, REPPIN* pair)
{
    gTail.append(list, pair);
}

void REPPIN_Free(REPPIN* list)
{
    CMN_FreeList(list);
}

void REPPIN_CheckAll(const REPPIN* list, PIN* pins, const char* component)
try {
    ibis* root = nullptr;
    if (!IBIS_GetCurrent(&root)) {
        MSG_Bug(5115, __FILE_NAME__, __LINE__);
        return;
    }
    ParamFiles files;
    for (const REPPIN* pair = pins == nullptr ? nullptr : list; pair != nullptr; pair = pair->pNext) {
        for (const Side& side : SIDES) {
            if (const char* name = pair->*side.pszPin; name[0] != '\0') {
                CheckSide(side, name, pins, *root, files, component);
            }
        }
    }
    PINPAIR_CheckUnique<&REPPIN::szPin, &REPPIN::szTxNonInvPin>(list, component, {5107, 5108, 5109, 5110});
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the rest of the check falls away.
}
