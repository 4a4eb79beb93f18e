#include "ibis/source/nuibis_smos.h"

#include "ibis/source/nuibis_field.h"
#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"

#include <cmath>
#include <utility>

namespace
{

constexpr unsigned RECORD_LIMIT = 100;
constexpr std::string_view LABEL = "Series_MOSFET";

// The record being read, from SMOS_Open to SMOS_Close.
smos* gpCurSmos = nullptr;
unsigned guiSmosLine = 0;  // of its keyword
bool gbVdsNext = false;    // its next line gives Vds
LIST_Tail<smos> gTail;

void ReadVds(std::string_view text)
{
    static constexpr FIELD_ScalarCodes codes{2810, 2803, 2811, 0};
    std::string_view rest = text;
    if (CMN_NextTokenDelim(rest, '=') != "Vds") {
        MSG_ErrorLine(2807);
        return;
    }
    FIELD_NewScalar(text, "Vds", LABEL, codes, &gpCurSmos->pdVds);
}

// The voltages behind a record, each with how often it is there; 0.0 and -0.0 are one.
class Voltages
{
  public:
    explicit Voltages(const smos* list)
    {
        for (; list != nullptr; list = list->pNext) {
            if (isComparable(*list)) {
                ++mCounts[*list->pdVds];
            }
        }
    }
    static bool isComparable(const smos& record)
    {
        return record.pdVds != nullptr && std::isfinite(*record.pdVds);
    }
    void remove(double voltage)
    {
        const auto found = mCounts.find(voltage);
        if (--found->second == 0) {
            mCounts.erase(found);
        }
    }
    unsigned countNear(double voltage) const
    {
        const auto middle = mCounts.lower_bound(voltage);
        unsigned count = 0;
        for (auto at = middle; at != mCounts.end() && isNear(at->first, voltage); ++at) {
            count += at->second;
        }
        for (auto at = middle; at != mCounts.begin() && isNear((--at)->first, voltage);) {
            count += at->second;
        }
        return count;
    }

  private:
    static bool isNear(double a, double b) { return std::fabs(a - b) < 1e-9; }

    CMN_Map<double, unsigned> mCounts;
};

}  // namespace

int SMOS_Open(std::string_view text, smos*& head, smos** out)
{
    static constexpr FIELD_BlockCodes codes{2801, 2803};
    if (!CMN_Alloc(gpCurSmos)) {
        MSG_Bug(2809, __FILE_NAME__, __LINE__);
        return 0;
    }
    *out = gpCurSmos;
    guiSmosLine = PARSE_GetLineNumber();
    gbVdsNext = true;
    if (gTail.append(head, gpCurSmos) > RECORD_LIMIT) {
        MSG_ErrorLine(2800);
    }
    return FIELD_OpenBlock(text, LABEL, codes) ? 1 : 0;
}

void SMOS_Line(std::string_view text)
{
    if (gpCurSmos == nullptr) {
        return;
    }
    if (std::exchange(gbVdsNext, false)) {
        ReadVds(text);
    } else {
        CRV_AddLine(text, gpCurSmos->pTable, LABEL);
    }
}

void SMOS_Close(const nuibis_mdl* model, nuibis_keyword keyword)
{
    if (gpCurSmos == nullptr) {
        return;
    }
    const smos& record = *std::exchange(gpCurSmos, nullptr);
    if (record.pdVds == nullptr) {
        MSG_Error(2804, model->szName, guiSmosLine);
    } else if (*record.pdVds < 0.0) {
        MSG_Error(2805, model->szName, guiSmosLine);
    }
    CRV_Close(model->szName, model->eModelType, keyword, record.pTable, LABEL, "Model");
}

void SMOS_CheckVds(const smos* list, std::string_view modelName, std::string_view label)
try {
    Voltages behind(list);
    for (; list != nullptr; list = list->pNext) {
        if (Voltages::isComparable(*list)) {
            const double voltage = *list->pdVds;
            behind.remove(voltage);
            for (unsigned count = behind.countNear(voltage); count != 0; --count) {
                MSG_Error(2806, modelName, label, voltage);
            }
        }
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself; the comparison falls away.
}

void SMOS_FreeList(smos* list)
{
    gpCurSmos = nullptr;
    CMN_FreeList(list, [](smos& record) {
        CMN_Release(record.pdVds);
        CRV_Free(record.pTable);
    });
}
