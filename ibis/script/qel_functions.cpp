// The table of script functions.

#include "ibis/interface/talibis_qel.h"
#include "ibis/script/qel_frame.h"

#include <array>
#include <cstdlib>

namespace
{

// (file, type): reads or finds the file and gives its findings as one text.
QVALUE CheckData()
{
    TalIbisListQueryData record;
    FRAME_Value nameValue;
    FRAME_Value wordValue;
    const char* name = nullptr;
    const char* word = nullptr;
    qrun_num_parm();
    if (!FRAME_GetString(0, nameValue, &name) || !FRAME_GetString(1, wordValue, &word)) {
        record.setUnformatedError(QueryError, FRAME_WRONG_PARAMETER);
        return record.createQval();
    }
    TalIbis* handle = nullptr;
    const IbisErrorContainer* const findings = talReadIbisFile(name, FRAME_FileType(word), &handle);
    const ErrorStatus worst = findings == nullptr ? IBIS_STATUS_CLEAN : findings->getErrorStatus();
    char* const text = findings == nullptr ? nullptr : findings->getErrMsg();
    if (handle == nullptr) {
        record.setUnformatedError(QueryError, text);
    } else if (worst == IBIS_STATUS_ERROR) {
        record.setUnformatedError(QueryEmpty, text);
    } else if (worst == IBIS_STATUS_WARNING) {
        record.setUnformatedError(QueryWarning, text);
    }
    std::free(text);
    return record.createQval();
}

template <auto Query> constexpr QEL_ROW Row(const char* name)
{
    return {name, &FRAME_Function<Query>::call, {}};
}

constexpr auto FUNCTIONS = std::to_array<QEL_ROW>({
    {"deCheckIbisData", CheckData, {}},
    Row<&TalIbis::getCompList>("deGetIbisCompList"),
    Row<&TalIbis::getVersionString>("deGetIbisVersion"),
    Row<&TalIbis::getPinList>("deGetIbisPinList"),
    Row<&TalIbis::getPinMapping>("deGetIbisPinMappingList"),
    Row<&TalIbis::getPinMappingL>("deGetIbisPinMappingListDDR"),
    Row<&TalIbis::getR_pkg>("deGetIbisR_pkg"),
    Row<&TalIbis::getL_pkg>("deGetIbisL_pkg"),
    Row<&TalIbis::getC_pkg>("deGetIbisC_pkg"),
    Row<&TalIbis::getR_pin>("deGetIbisR_pin"),
    Row<&TalIbis::getL_pin>("deGetIbisL_pin"),
    Row<&TalIbis::getC_pin>("deGetIbisC_pin"),
});

constexpr QEL_TABLE TABLE{"QEL", FUNCTIONS.data(), FUNCTIONS.size()};

}  // namespace

const QEL_TABLE* talIbis_qel_table()
{
    return &TABLE;
}

bool talIbis_qel_initialize()
{
    return qutil_initialize(0, 0, 0, 1, talIbis_qel_table()) != 0;
}
