// What [Test Data] and [Test Load] share: named records with a type, names of models, and the checks of those
// models.

#pragma once

#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"

class CMPNT_DiffPins;

/// Test_data_type and Test_load_type.
enum FIXTURE_Type : std::int32_t {
    FIXTURE_UNSET = 0,
    FIXTURE_NO_TYPE = 1,  ///< given and not understood
    FIXTURE_SINGLE_ENDED = 2,
    FIXTURE_DIFFERENTIAL = 3,
};

/// Longest name of a record.
inline constexpr unsigned FIXTURE_NAME_LIMIT = 109;

struct FIXTURE_NameCodes {
    std::string_view sLabel;  ///< keyword
    MSG_Plain missing;
    MSG_Count wrongCount;  ///< (count, label, 1)
    MSG_Int1 tooLong;
    MSG_Text1 reserved;
    MSG_Text1 repeated;  ///< once for each record of that name
};

/// The keyword line "[Test Data] name", which still begins with "[": stores the name whatever is wrong with
/// it. `names` knows the names of the records before.
void FIXTURE_ReadName(std::string_view text, std::span<char> name, LIST_Repeats& names,
                      const FIXTURE_NameCodes& codes);

struct FIXTURE_Codes {
    MSG_Text2 repeated;  ///< (subparameter, record): the first one stays
    FIELD_SettingCodes setting;
    FIELD_WordCodes type;
    MSG_Where tooLong;   ///< (subparameter, limit)
    MSG_Text2 reserved;  ///< (subparameter, name)
};

/// The type of `record`. What cannot be read counts as given.
void FIXTURE_ReadType(std::string_view text, std::string_view name, const char* record,
                      const FIXTURE_Codes& codes, FIXTURE_Type& type);
/// A name of at most `limit` characters that `record` refers to.
void FIXTURE_ReadReference(std::string_view text, std::string_view name, const char* record,
                           const FIXTURE_Codes& codes, std::span<char> field, unsigned limit);

struct FIXTURE_ModelRule {
    MSG_Text2 undefined;  ///< (model, record)
    MDL_TypeSet uiRefused;
    MSG_Text2 refused;   ///< warning (model, record)
    MSG_Text2 unpaired;  ///< warning (model, record): on no pin of [Diff Pin]; 0 where that is no matter
};

/// The model exists and suits its place. An empty name passes; a model on a differential pin is marked.
void FIXTURE_CheckModel(const char* model, const char* record, nuibis_mdl* models, CMPNT_DiffPins& pins,
                        const FIXTURE_ModelRule& rule);
