#include "ibis/source/nuibis_difpin.h"

bool DIFPIN_Has(const DIFPIN* list, std::string_view pin)
{
    while (list != nullptr && pin != list->szPin && pin != list->szInvPin) {
        list = list->pNext;
    }
    return list != nullptr;
}
