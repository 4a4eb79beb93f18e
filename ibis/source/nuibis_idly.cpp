#include "ibis/source/nuibis_idly.h"

#include "ibis/source/nuibis_field.h"

namespace
{

unsigned guiDelayLine = 0;  // line of the keyword, set by IDLY_Open

constexpr std::array<FIELD_Triple<idly>, 2> ITEMS{{
    {"V-T", &idly::pVT},
    {"I-T", &idly::pIT},
}};

}  // namespace

void IDLY_Open(std::string_view text, idly** field)
{
    guiDelayLine = PARSE_GetLineNumber();
    if (!FIELD_OpenRecord(text, "Initial Delay", {5400, 0, {5402, 5404}}, IDLY_Free, field)) {
        MSG_ErrorLine(5401, __FILE_NAME__, __LINE__);
    }
}

void IDLY_Line(idly* delay, std::string_view text)
{
    if (delay != nullptr) {
        FIELD_ReadUnsignedLine(text, ITEMS, {5405, 5406, 5407, 5411}, *delay);
    }
}

void IDLY_Close(const idly* delay, std::string_view ownerName, std::string_view label)
{
    if (delay == nullptr || (delay->pVT == nullptr && delay->pIT == nullptr)) {
        MSG_Error(5410, label, ownerName, guiDelayLine);
    }
}

void IDLY_Free(idly* delay)
{
    FIELD_FreeTriples(ITEMS, delay);
}
