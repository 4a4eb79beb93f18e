#include "ibis/source/nuibis_ramp.h"

#include "ibis/source/nuibis_field.h"

namespace
{

unsigned guiRampLine = 0;  // line of the [Ramp] keyword, set by RAMP_Open

struct RateLine {
    std::string_view sName;
    rampline* ramp::*ppField;
};

constexpr std::array<RateLine, 2> RATES{{
    {"dV/dt_r", &ramp::pRise},
    {"dV/dt_f", &ramp::pFall},
}};

// A corner of a rate, in the order on the line.
struct Corner {
    std::string_view sName;
    double rampline::*pdDv;
    double rampline::*pdDt;
    numstat rampline::*peStatus;
};

constexpr std::array<Corner, 3> CORNERS{{
    {"Typical", &rampline::dTypDv, &rampline::dTypDt, &rampline::eTyp},
    {"Minimum", &rampline::dMinDv, &rampline::dMinDt, &rampline::eMin},
    {"Maximum", &rampline::dMaxDv, &rampline::dMaxDt, &rampline::eMax},
}};

void ReportCount(int count, std::string_view label)
{
    if (count == 1) {
        MSG_ErrorLine(1308, "minimum", label);
    }
    if (count < 1 || count > 3) {
        MSG_ErrorLine(1304, count, label, 3);
    } else if (count < 3) {
        MSG_ErrorLine(1308, "maximum", label);
    }
}

// Reads "dV/dt" or "NA". A missing field fails without a message: the count of the line has told it.
bool ReadPair(rampline& line, const Corner& corner, std::string_view field, std::string_view label)
{
    if (field.data() == nullptr) {
        return false;
    }
    const CMN_TokenList parts = CMN_SplitDelim(field, 3, '/');
    if (parts.iFound == 1 && CMN_Equal(parts[0], "NA")) {
        line.*corner.peStatus = NUM_NA;
        return true;
    }
    double dv = 0.0;
    double dt = 0.0;
    const bool pair = parts.iFound == 3 && parts[1] == "/";
    const CMN_Number dvResult = pair ? CMN_GetValue(parts[0], &dv) : CMN_INVALID;
    const CMN_Number dtResult = pair ? CMN_GetValue(parts[2], &dt) : CMN_INVALID;
    if (dvResult == CMN_INVALID || dtResult == CMN_INVALID) {
        MSG_ErrorLine(1312, label, corner.sName, field);
        return false;
    }
    if (dvResult == CMN_SUSPICIOUS) {
        MSG_WarningLine(1311, corner.sName, label, parts[0]);
    }
    if (dtResult == CMN_SUSPICIOUS) {
        MSG_WarningLine(1311, corner.sName, label, parts[2]);
    }
    line.*corner.pdDv = dv;
    line.*corner.pdDt = dt;
    line.*corner.peStatus = NUM_VALUE;
    return true;
}

void CheckPositive(const rampline& line, const Corner& corner)
{
    if (!(line.*corner.pdDv > 0.0)) {
        MSG_ErrorLine(1310, "dV");
    }
    if (!(line.*corner.pdDt > 0.0)) {
        MSG_ErrorLine(1310, "dT");
    }
}

// The typical pair is tested only if it could be read; the others unless they are "NA", so that one that
// could not be read is told as zero too.
void ReadRate(std::string_view text, const RateLine& rate, ramp& record, std::string_view modelName)
{
    rampline*& field = record.*rate.ppField;
    if (field != nullptr) {
        MSG_ErrorLine(1307, rate.sName, modelName);
        return;
    }
    if (!CMN_Alloc(field)) {
        MSG_Bug(1301, __FILE_NAME__, __LINE__);
        return;
    }
    CMN_SkipToken(text);
    const CMN_TokenList tokens = CMN_Split(text, 3);
    ReportCount(tokens.iFound, rate.sName);
    for (int i = 0; i < 3; ++i) {
        const Corner& corner = CORNERS[static_cast<std::size_t>(i)];
        const bool read = ReadPair(*field, corner, tokens[i], rate.sName);
        const bool isNA = field->*corner.peStatus == NUM_NA;
        if (isNA && i == 0) {
            MSG_ErrorLine(1309, rate.sName);
        }
        if (!isNA && (read || i != 0)) {
            CheckPositive(*field, corner);
        }
    }
}

void ReadRLoad(std::string_view text, ramp& record, std::string_view modelName)
{
    static constexpr FIELD_ScalarCodes codes{1313, 1304, 1314, 1311};
    if (record.bRLoad != 0) {
        MSG_ErrorLine(1307, "R_load", modelName);
        return;
    }
    record.bRLoad = FIELD_ReadScalar(text, "R_load", "Ramp", codes, &record.dRLoad) ? 1 : 0;
}

}  // namespace

int RAMP_Open(std::string_view text, ramp** field)
{
    static constexpr FIELD_BlockCodes codes{1302, 1304};
    guiRampLine = PARSE_GetLineNumber();
    if (*field != nullptr) {
        MSG_ErrorLine(1300);
        RAMP_Free(*field);
    }
    if (!CMN_Alloc(*field)) {
        MSG_Bug(1301, __FILE_NAME__, __LINE__);
        return 0;
    }
    return FIELD_OpenBlock(text, "Ramp", codes) ? 1 : 0;
}

void RAMP_Line(std::string_view text, ramp* record, std::string_view modelName)
{
    if (record == nullptr) {
        return;
    }
    std::string_view rest = text;
    const std::string_view name = CMN_NextTokenDelim(rest, '=');
    for (const RateLine& rate : RATES) {
        if (name == rate.sName) {
            ReadRate(text, rate, *record, modelName);
            return;
        }
    }
    if (name == "R_load") {
        ReadRLoad(text, *record, modelName);
    } else {
        MSG_ErrorLine(1305);
    }
}

void RAMP_Close(const ramp* record)
{
    for (const RateLine& rate : RATES) {
        if (record != nullptr && record->*rate.ppField == nullptr) {
            MSG_Error(1306, rate.sName, guiRampLine);
        }
    }
}

void RAMP_Free(ramp* record)
{
    if (record != nullptr) {
        CMN_Release(record->pRise);
        CMN_Release(record->pFall);
        CMN_Free(record);
    }
}
