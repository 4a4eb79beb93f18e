#include "ibis/source/nuibis_node.h"

#include "ibis/source/nuibis_cmpnt.h"

namespace
{

bool AddName(NODELIST*& list, std::string_view name)
{
    if (list->pszName != nullptr) {
        NODELIST* node = nullptr;
        if (!CMN_Alloc(node)) {
            return false;
        }
        node->pNext = list;
        list = node;
    }
    list->pszName = CMN_StrDup(name);
    return list->pszName != nullptr;
}

}  // namespace

void NODE_Open(NODELIST*& list)
{
    if (list != nullptr) {
        MSG_ErrorLine(548);
    } else if (!CMN_Alloc(list)) {
        MSG_ErrorLine(549);
    }
}

void NODE_AddLine(std::string_view text, NODELIST*& list)
{
    if (list == nullptr) {
        return;
    }
    for (std::string_view name; !(name = CMN_NextToken(text)).empty();) {
        if (!AddName(list, name)) {
            MSG_Bug(3600, __FILE_NAME__, __LINE__);
            return;
        }
    }
}

void NODE_CheckEmpty(const CMPNT& component)
{
    if (component.pNodes != nullptr && component.pNodes->pszName == nullptr) {
        MSG_NoRow(MSG_Severity::Warning, 3601);
    }
}

void NODE_FreeList(NODELIST* list)
{
    CMN_FreeList(list, [](NODELIST& node) { CMN_Release(node.pszName); });
}
