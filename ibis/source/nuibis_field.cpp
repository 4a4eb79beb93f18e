#include "ibis/source/nuibis_field.h"

bool FIELD_ReadScalar(std::string_view text, std::string_view name, std::string_view label,
                      const FIELD_ScalarCodes& codes, double* out)
{
    const CMN_TokenList tokens = CMN_SplitDelim(text, 3, '=');
    if (tokens.iFound < 3) {
        MSG_ErrorLine(codes.invalidLine, name);
        return false;
    }
    if (tokens.iFound > 3) {
        MSG_ErrorLine(codes.wrongCount, tokens.iFound, name, 3);
    }
    if (tokens[1] != "=") {
        MSG_ErrorLine(codes.invalidLine, name);
        return false;
    }
    const CMN_Number result = CMN_GetValue(tokens[2], out);
    if (result == CMN_INVALID) {
        MSG_ErrorLine(codes.invalidValue, name, tokens[2]);
        return false;
    }
    if (result == CMN_SUSPICIOUS && codes.suspicious) {
        MSG_WarningLine(codes.suspicious, label, name, tokens[2]);
    }
    return true;
}

void FIELD_NewScalar(std::string_view text, std::string_view name, std::string_view label,
                     const FIELD_ScalarCodes& codes, double** field)
{
    if (CMN_Alloc(*field)) {
        FIELD_ReadScalar(text, name, label, codes, *field);
    }
}

int FIELD_FindWord(std::string_view word, std::span<const std::string_view> words, std::string_view what,
                   const FIELD_WordCodes& codes)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (word == words[i]) {
            return static_cast<int>(i);
        }
        if (CMN_Equal(word, words[i])) {
            MSG_ErrorLine(codes.wrongCase, what, word, words[i]);
            return -1;
        }
    }
    MSG_ErrorLine(codes.unknown, what, word);
    return -1;
}

std::string_view FIELD_ReadSetting(std::string_view text, std::string_view name,
                                   const FIELD_SettingCodes& codes)
{
    const bool refusesEquals{codes.invalidLine};
    const CMN_TokenList tokens = refusesEquals ? CMN_SplitDelim(text, 2, '=') : CMN_Split(text, 2);
    if (tokens.iFound == 2) {
        return tokens[1];
    }
    if (tokens.iFound < 2) {
        MSG_ErrorLine(codes.missing, name);
    } else if (refusesEquals && tokens[1] == "=") {
        MSG_ErrorLine(codes.invalidLine, name);
    } else {
        MSG_ErrorLine(codes.wrongCount, tokens.iFound, name, 2);
    }
    return {};
}

int FIELD_ReadWord(std::string_view text, std::string_view name, std::span<const std::string_view> words,
                   const FIELD_SettingCodes& settingCodes, const FIELD_WordCodes& wordCodes)
{
    const std::string_view word = FIELD_ReadSetting(text, name, settingCodes);
    return word.data() == nullptr ? -1 : FIELD_FindWord(word, words, name, wordCodes);
}

void FIELD_ReadCount(std::string_view text, const FIELD_CountCodes& codes, unsigned* out)
{
    if (text.empty()) {
        MSG_ErrorLine(codes.blank);
        return;
    }
    if (*out != 0) {
        MSG_ErrorLine(codes.duplicate);
        return;
    }
    const CMN_Number result = CMN_GetUnsigned(text, out);
    if (result == CMN_SUSPICIOUS) {
        MSG_WarningLine(codes.suspicious);
    }
    if (result == CMN_INVALID) {
        MSG_ErrorLine(codes.bad);
    } else if (*out == 0) {
        MSG_ErrorLine(codes.zero);
    }
}

bool FIELD_SetName(std::span<char> dst, std::string_view name, unsigned limit, MSG_Int1 tooLong)
{
    CMN_CopyText(dst, name, limit);
    if (name.size() > limit) {
        MSG_ErrorLine(tooLong, limit);
        return false;
    }
    return true;
}

bool FIELD_OpenBlock(std::string_view text, std::string_view label, const FIELD_BlockCodes& codes)
{
    if (!CMN_SkipKeyword(text)) {
        MSG_BugLine(codes.noBracket, __FILE_NAME__, __LINE__);
        return false;
    }
    if (const int items = CMN_CountTokens(text); items != 0) {
        MSG_ErrorLine(codes.wrongCount, items + 1, label, 1);
    }
    return true;
}

int FIELD_ReadTriple(std::string_view text, std::string_view label, MSG_Plain typicalNA, rng** field,
                     bool checkOrder)
{
    CMN_SkipToken(text);
    const int result = RNG_Read(text, label, field, checkOrder);
    if (*field != nullptr && (*field)->eTyp == NUM_NA) {
        MSG_ErrorLine(typicalNA);
    }
    return result;
}

void FIELD_ReadUnsigned(std::string_view text, std::string_view name, const FIELD_UnsignedCodes& codes,
                        rng** field)
{
    if (*field != nullptr) {
        MSG_ErrorLine(codes.repeated, name);
        return;
    }
    FIELD_ReadTriple(text, name, codes.typicalNA, field, false);
    if (*field == nullptr) {
        return;
    }
    const rng& r = **field;
    if (r.eTyp == NUM_VALUE && r.dTyp < 0.0) {
        MSG_ErrorLine(codes.negative, name, "Typ");
    }
    if (r.eMin == NUM_VALUE && r.dMin < 0.0) {
        MSG_ErrorLine(codes.negative, name, "Min");
    }
    if (r.eMax == NUM_VALUE && r.dMax < 0.0) {
        MSG_ErrorLine(codes.negative, name, "Max");
    }
}
