#include "tools/talibis/parameter_words.h"

const char* UsageWord(UsageType usage)
{
    static constexpr const char* WORDS[]{nullptr, "Info", "In", "Out", "InOut", "Dep"};
    return WORDS[usage];
}

const char* TypeWord(ParamDataType type)
{
    static constexpr const char* WORDS[]{nullptr,   "Integer", "Float", "String",
                                         "Boolean", "Tap",     "UI",    "Table"};
    return WORDS[type];
}

const char* FormatWord(FormatType format)
{
    static constexpr const char* WORDS[]{nullptr,     "Value",    "Range",      "Corner", "List", "Steps",
                                         "Increment", "Gaussian", "Dual-Dirac", "DjRj",   "Table"};
    return WORDS[format];
}
