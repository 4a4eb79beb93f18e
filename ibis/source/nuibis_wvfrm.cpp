#include "ibis/source/nuibis_wvfrm.h"

#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_list.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{

constexpr unsigned TABLE_LIMIT = 100;
constexpr unsigned ROW_LIMIT_OLD = 100;  // below 4.0, and in pulse tables
constexpr unsigned ROW_LIMIT = 1000;
constexpr std::string_view GND_PULSE = "GND Pulse Table";
constexpr std::string_view POWER_PULSE = "POWER Pulse Table";

// The table being read, from WVFRM_Open to WVFRM_Close.
wvfrm* gpCurWvfrm = nullptr;
unsigned guiWvfrmLine = 0;  // of its keyword

// Remembers the ends of the lists being read. Rising and falling tables may alternate, and a composite
// current, a list of one, may stand behind each: so two lists are remembered, and the first record of a list
// does not drive one of them out.
class Tails
{
  public:
    // Gives the length of the list with the new record.
    unsigned append(wvfrm*& head, wvfrm* record)
    {
        if (head != nullptr) {
            return tailOf(head).append(head, record);
        }
        for (LIST_Tail<wvfrm>& tail : maTails) {
            if (tail.follows(head)) {
                tail = {};
            }
        }
        head = record;
        return 1;
    }
    wvfrm* last(wvfrm*& head) { return head == nullptr ? nullptr : tailOf(head).last(head); }

  private:
    // The one that was used last stands in front.
    LIST_Tail<wvfrm>& tailOf(wvfrm*& head)
    {
        if (!maTails[0].follows(head)) {
            std::swap(maTails[0], maTails[1]);
        }
        return maTails[0];
    }

    std::array<LIST_Tail<wvfrm>, 2> maTails;
};

Tails gTails;

// Subparameters -------------------------------------------------------------------------------------------

constexpr std::size_t REQUIRED_FIXTURES = 2;  // the first ones of WVFRM_FIXTURES

void ReadFixture(std::string_view text, const WVFRM_Fixture& fixture, std::string_view label)
{
    static constexpr FIELD_ScalarCodes codes{2015, 2003, 2017, 2016};
    if (std::find(WVFRM_GOLDEN_LABELS.begin(), WVFRM_GOLDEN_LABELS.end(), label) !=
        WVFRM_GOLDEN_LABELS.end()) {
        MSG_ErrorLine(2010);
        return;
    }
    if (gpCurWvfrm->pRows != nullptr) {
        MSG_ErrorLine(2013, fixture.sName);
    }
    double*& field = gpCurWvfrm->*fixture.ppdField;
    if (field != nullptr) {
        MSG_ErrorLine(2014, label, fixture.sName);
        return;
    }
    FIELD_NewScalar(text, fixture.sName, label, codes, &field);
}

// Rows ----------------------------------------------------------------------------------------------------

unsigned RowLimit(std::string_view label)
{
    const bool isPulse = label == GND_PULSE || label == POWER_PULSE;
    return geIbisVersion < IBIS_VER_4 || isPulse ? ROW_LIMIT_OLD : ROW_LIMIT;
}

// Each row behind the limit is told, and kept.
void AppendRow(rngp* row, std::string_view label)
{
    unsigned count = 0;
    RNGP_Append(gpCurWvfrm->pRows, row, &count, true);
    if (const unsigned limit = RowLimit(label); count > limit) {
        MSG_ErrorLine(2018, limit, label);
    }
    if (row->eFirst == NUM_NA) {
        MSG_ErrorLine(2019, "Time");
    }
    rngp* previous = nullptr;
    if (row->eFirst == NUM_VALUE && RNGP_Previous(row, &previous) && previous->eFirst == NUM_VALUE &&
        !(previous->dFirst < row->dFirst)) {
        MSG_ErrorLine(2020);
    }
}

// A line that is no fixture's begins with a number or "NA", or it is refused.
rngp* ReadOddRow(std::string_view text, std::string_view name, std::string_view label)
{
    double time = 0.0;
    bool isNA = false;
    rngp* row = nullptr;
    if (CMN_GetValueNA(name, &time, &isNA) == CMN_INVALID) {
        MSG_ErrorLine(2011, label);
        return nullptr;
    }
    return RNGP_ReadLine(text, label, "Time", &row) ? row : nullptr;
}

// End checks ----------------------------------------------------------------------------------------------

const rngp& LastRow(const rngp* row)
{
    while (row->pNext != nullptr) {
        row = row->pNext;
    }
    return *row;
}

// A pulse ends where it began.
void CheckPulseEnds(const rngp* head, std::string_view label)
{
    const rngp& last = LastRow(head);
    for (const RNGP_Column& column : RNGP_CORNERS) {
        const bool given = head->*column.peStatus != NUM_NA && last.*column.peStatus != NUM_NA;
        if (given && head->*column.pdValue != last.*column.pdValue) {
            MSG_Error(2007, column.sName, label, guiWvfrmLine);
        }
    }
}

bool HasOffset(const rngp* row, const RNGP_Column& column, bool below)
{
    while (row != nullptr && !(row->*column.peStatus == NUM_VALUE &&
                               (below ? row->*column.pdValue < 0.0 : row->*column.pdValue > 0.0))) {
        row = row->pNext;
    }
    return row != nullptr;
}

// A ground clamp is pulsed upwards, a power clamp downwards.
void CheckOffsets(const rngp* head, std::string_view label)
{
    const bool isGround = label == GND_PULSE;
    for (const RNGP_Column& column : RNGP_CORNERS) {
        if (!HasOffset(head, column, isGround)) {
            continue;
        }
        if (isGround) {
            MSG_Warning(2008, label, column.sName, guiWvfrmLine);
        } else {
            MSG_Warning(2009, label, column.sName, guiWvfrmLine);
        }
    }
}

// The tolerance follows the waveform's time alone: at 0 s only an exact match is the same.
bool IsSameTime(const rngp& a, const rngp& b)
{
    if (a.eFirst != b.eFirst) {
        return false;
    }
    return a.eFirst != NUM_VALUE || !(std::fabs(a.dFirst - b.dFirst) > a.dFirst * 1e-6);
}

void FreeContent(wvfrm& table)
{
    for (const WVFRM_Fixture& fixture : WVFRM_FIXTURES) {
        CMN_Release(table.*fixture.ppdField);
    }
    RNGP_FreeRows(table.pRows);
}

}  // namespace

int WVFRM_Open(std::string_view text, wvfrm*& head, std::string_view label)
{
    static constexpr FIELD_BlockCodes codes{2001, 2003};
    if (!CMN_Alloc(gpCurWvfrm)) {
        MSG_Bug(2012, __FILE_NAME__, __LINE__);
        return 0;
    }
    guiWvfrmLine = PARSE_GetLineNumber();
    if (gTails.append(head, gpCurWvfrm) > TABLE_LIMIT) {
        MSG_ErrorLine(2000, label);
    }
    return FIELD_OpenBlock(text, label, codes) ? 1 : 0;
}

void WVFRM_Line(std::string_view text, std::string_view label)
{
    if (gpCurWvfrm == nullptr) {
        return;
    }
    rngp* row = nullptr;
    if (!RNGP_ReadPlainLine(text, &row)) {
        const std::string_view name = FIELD_ItemName(text);
        if (const WVFRM_Fixture* fixture = FIELD_FindByName(WVFRM_FIXTURES, name); fixture != nullptr) {
            ReadFixture(text, *fixture, label);
            return;
        }
        row = ReadOddRow(text, name, label);
    }
    if (row != nullptr) {
        AppendRow(row, label);
    }
}

void WVFRM_Close(std::string_view label, WVFRM_Mode mode)
{
    static constexpr RNGP_EndCodes codes{2005, 2006};
    if (gpCurWvfrm == nullptr) {
        return;
    }
    const wvfrm& table = *std::exchange(gpCurWvfrm, nullptr);
    if (mode == WVFRM_DRIVER) {
        for (const WVFRM_Fixture& fixture : std::span(WVFRM_FIXTURES).first(REQUIRED_FIXTURES)) {
            if (table.*fixture.ppdField == nullptr) {
                MSG_Error(2004, fixture.sName, label, guiWvfrmLine);
            }
        }
    }
    const bool hasEnds = RNGP_CheckEnds(table.pRows, label, guiWvfrmLine, codes);
    if (mode == WVFRM_PULSE) {
        if (hasEnds) {
            CheckPulseEnds(table.pRows, label);
        }
        CheckOffsets(table.pRows, label);
    }
}

wvfrm* WVFRM_Last(wvfrm*& head)
{
    return gTails.last(head);
}

bool WVFRM_SameTimes(const wvfrm* waveform, const wvfrm* composite, int index, std::string_view modelName,
                     std::string_view label)
{
    const rngp* a = waveform->pRows;
    const rngp* b = composite->pRows;
    while (a != nullptr && b != nullptr && IsSameTime(*a, *b)) {
        a = a->pNext;
        b = b->pNext;
    }
    if (a == nullptr && b == nullptr) {
        return true;
    }
    MSG_Caution(2021, modelName, label, index);
    return false;
}

void WVFRM_Free(wvfrm* list)
{
    gpCurWvfrm = nullptr;
    CMN_FreeList(list, [](wvfrm& table) {
        CMN_FreeList(table.pComposite, FreeContent);
        FreeContent(table);
    });
}
