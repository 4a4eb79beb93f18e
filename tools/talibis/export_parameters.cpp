// The parameters of an algorithmic model.

#include "ibis/source/nuibis_cmn.h"
#include "tools/talibis/export_parts.h"
#include "tools/talibis/parameter_words.h"
#include "tools/talibis/source_file.h"

namespace
{

bool IsNumeric(ParamDataType type)
{
    return type == DataInteger || type == DataFloat || type == DataTap || type == DataUI;
}

// A number of a numeric parameter, otherwise the text.
json ExportToken(const std::string& token, ParamDataType type)
{
    double number = 0;
    const bool whole = IsNumeric(type) && CMN_ReadDouble(token, &number) == token.size() && !token.empty();
    return whole ? ExportNumber(&number) : json(token);
}

json ExportValue(const TalIbisAMI_Value& value)
{
    switch (value.getValueType()) {
    case ValueEmpty:
        return {};
    case ValueInteger:
        return value.getIntValue();
    case ValueReal:
        return ExportNumber(value.getRealValue(), NUM_VALUE);
    case ValueBoolean:
        return value.getIntValue() != 0;
    case ValueString:
        return value.getStringValue();
    default:
        return value.toString();
    }
}

// The values behind the word of the format.
json ExportChoices(const TalIbisAMI_ParamDef& definition)
{
    json values = json::array();
    const std::vector<std::string>& tokens = definition.getFormatData();
    for (std::size_t i = 1; i < tokens.size(); ++i) {
        values.push_back(ExportToken(tokens[i], definition.getDataType()));
    }
    return values;
}

json ExportParameter(const TalIbisAMI_ParamDef& definition, const json& path)
{
    const std::string& start = definition.getDefaultText();
    return {{"path", path},
            {"name", definition.getName()},
            {"reserved", definition.isReserved()},
            {"Usage", ExportText(UsageWord(definition.getUsage()))},
            {"Type", ExportText(TypeWord(definition.getDataType()))},
            {"Format", ExportText(FormatWord(definition.getFormat()))},
            {"values", ExportChoices(definition)},
            {"Default", start.empty() ? json() : ExportToken(start, definition.getDataType())},
            {"value", ExportValue(definition.getValue())},
            {"Description", ExportText(definition.getDescription().c_str())}};
}

}  // namespace

json ExportParameters(const TalIbisAMI_Node& root)
{
    json parameters = json::array();
    json::array_t path;
    for (const TreeLine& line : LinesOf(root)) {
        path.resize(line.depth);
        if (line.definition == nullptr) {
            path.emplace_back(*line.name);
        } else {
            parameters.push_back(ExportParameter(*line.definition, path));
        }
    }
    return parameters;
}
