#include "ibis/source/nuibis_fixture.h"

#include "ibis/source/nuibis_cmpnt.h"

#include <array>

void FIXTURE_ReadName(std::string_view text, std::span<char> name, LIST_Repeats& names,
                      const FIXTURE_NameCodes& codes)
{
    CMN_SkipKeyword(text);
    const CMN_TokenList tokens = CMN_Split(text, 1);
    if (tokens.iFound == 0) {
        MSG_ErrorLine(codes.missing);
        return;
    }
    if (tokens.iFound > 1) {
        MSG_ErrorLine(codes.wrongCount, tokens.iFound, codes.sLabel, 1);
    }
    if (FIELD_SetName(name, tokens[0], FIXTURE_NAME_LIMIT, codes.tooLong) && !CMN_IsNotReserved(tokens[0])) {
        MSG_ErrorLine(codes.reserved, tokens[0]);
    }
    for (unsigned repeats = names.add(name.data()); repeats > 0; --repeats) {
        MSG_ErrorLine(codes.repeated, name.data());
    }
}

void FIXTURE_ReadType(std::string_view text, std::string_view name, const char* record,
                      const FIXTURE_Codes& codes, FIXTURE_Type& type)
{
    static constexpr std::array<std::string_view, 2> words{"Single_ended", "Differential"};
    if (type != FIXTURE_UNSET) {
        MSG_ErrorLine(codes.repeated, name, record);
        return;
    }
    const int row = FIELD_ReadWord(text, name, words, codes.setting, codes.type);
    type = row < 0 ? FIXTURE_NO_TYPE : static_cast<FIXTURE_Type>(FIXTURE_SINGLE_ENDED + row);
}

void FIXTURE_ReadReference(std::string_view text, std::string_view name, const char* record,
                           const FIXTURE_Codes& codes, std::span<char> field, unsigned limit)
{
    if (field[0] != '\0') {
        MSG_ErrorLine(codes.repeated, name, record);
        return;
    }
    const std::string_view reference = FIELD_ReadSetting(text, name, codes.setting);
    if (reference.data() == nullptr) {
        return;
    }
    CMN_CopyText(field, reference, limit);
    if (reference.size() > limit) {
        MSG_ErrorLine(codes.tooLong, name, limit);
    } else if (!CMN_IsNotReserved(reference)) {
        MSG_ErrorLine(codes.reserved, name, reference);
    }
}

void FIXTURE_CheckModel(const char* model, const char* record, nuibis_mdl* models, CMPNT_DiffPins& pins,
                        const FIXTURE_ModelRule& rule)
{
    if (model[0] == '\0') {
        return;
    }
    nuibis_mdl* const found = MDL_Find(model, models);
    if (found == nullptr) {
        MSG_Error(rule.undefined, model, record);
        return;
    }
    if (MDL_IsOneOf(found->eModelType, rule.uiRefused)) {
        MSG_Warning(rule.refused, model, record);
    }
    if (rule.unpaired && !CMPNT_UsesDiffModel(found, pins, nullptr)) {
        MSG_Warning(rule.unpaired, model, record);
    }
}
