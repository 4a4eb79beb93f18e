#include "ibis/source/nuibis_apkg.h"

#include "ibis/source/nuibis_list.h"

namespace
{

// The list that is being read; both follow it by themselves.
LIST_Tail<APKG> gTail;
LIST_Index<APKG, &APKG::szName> gNames;

}  // namespace

void APKG_Line(APKG*& list, std::string_view text)
{
    APKG* package = nullptr;
    if (!CMN_Alloc(package)) {
        MSG_ErrorLine(1602);
        return;
    }
    CMN_CopyText(package->szName, text);
    if (text.size() >= sizeof package->szName) {
        MSG_ErrorLine(1600, text);
    }
    if (text.empty()) {
        MSG_ErrorLine(1601);
    }
    if (gNames.find(list, text) != nullptr) {
        MSG_ErrorLine(1605, text);
    }
    gTail.append(list, package);
}

void APKG_Close(const APKG* list)
{
    if (list == nullptr) {
        MSG_ErrorLine(1603);
    } else if (list->pNext == nullptr) {
        MSG_WarningLine(1604);
    }
}

void APKG_Free(APKG* list)
{
    gNames.reset();
    CMN_FreeList(list);
}
