#include "ibis/script/qel_frame.h"

#include "platform/internpool.h"

#include <array>

namespace
{

constexpr int BAD_PARAMETER = 304;

struct TypeWord {
    const char* pszWord;
    ibis_file_type eType;
};

// Interned, so that a word is compared by its pointer.
const std::array<TypeWord, 3>& TypeWords()
{
    auto& pool = InternPool::Private::singleton();
    static const std::array<TypeWord, 3> words{{
        {pool.insertC("ibs"), IBIS_FILE_IBS},
        {pool.insertC("pkg"), IBIS_FILE_PKG},
        {pool.insertC("ebd"), IBIS_FILE_EBD},
    }};
    return words;
}

}  // namespace

bool FRAME_GetString(int index, FRAME_Value& value, const char** out)
{
    if (!qrun_get_typed_parm(index, QvalString, &value)) {
        qrun_parm_error(BAD_PARAMETER, index, "string parameter is expected");
        return false;
    }
    if (const char* const text = qval_value_data(value.get()); text != nullptr) {
        *out = text;
    }
    return true;
}

bool FRAME_GetInteger(int index, int* out)
{
    FRAME_Value value;
    return qrun_get_typed_parm(index, QvalInteger, &value) && qval_integer_value(value.get(), out);
}

ibis_file_type FRAME_FileType(const char* word)
{
    const char* const interned = word == nullptr ? nullptr : InternPool::Private::singleton().insertC(word);
    for (const TypeWord& row : TypeWords()) {
        if (row.pszWord == interned) {
            return row.eType;
        }
    }
    return IBIS_FILE_NONE;
}

TalIbis* FRAME_GetIbis()
{
    FRAME_Value nameValue;
    FRAME_Value wordValue;
    const char* name = nullptr;
    const char* word = nullptr;
    if (!FRAME_GetString(0, nameValue, &name) || !FRAME_GetString(1, wordValue, &word)) {
        return nullptr;
    }
    TalIbisFileManager* const manager = TalIbisFileManager::getInstance();
    return manager == nullptr ? nullptr : manager->getIbis(name, FRAME_FileType(word));
}
