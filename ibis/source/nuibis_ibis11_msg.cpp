#include "ibis/source/nuibis_ibis11_msg.h"

#include "ibis/source/nuibis_ibis11_text.h"

// Reset by IBIS11_Open.
unsigned guiOldBugs = 0;
unsigned guiOldErrors = 0;
unsigned guiOldWarnings = 0;

namespace
{

constexpr std::size_t TEXT_SIZE = 2208;
constexpr std::size_t FRAME_SIZE = TEXT_SIZE + 64;

// A text that would end just short of the right margin of 80 columns goes on a line of its own.
struct Frame {
    unsigned* puiCount;
    const char* pszHead;
    std::size_t uiFoldFirst;
    std::size_t uiFoldLast;
};

constexpr std::size_t NEVER = TEXT_SIZE;

// By severity, of which 1 is the first.
constexpr std::array<Frame, 4> FRAMES{{
    {&guiOldBugs, "PROGRAM BUG", NEVER, 0},
    {&guiOldErrors, "ERROR", NEVER, 0},
    {&guiOldErrors, "ERROR (line %4ld)", 60, 72},
    {&guiOldWarnings, "WARNING", 70, 73},
}};

}  // namespace

void IBIS11_TellRow(int index, std::span<const MSG_Arg> args)
{
    const IBIS11_Message& row = gaOldMessages[static_cast<std::size_t>(index)];
    std::array<char, TEXT_SIZE> text;
    const std::size_t length = MSG_Format(text, row.pszText, args);
    IBIS11_Report(row.eSeverity, {text.data(), length});
}

void IBIS11_Report(IBIS11_Severity severity, std::string_view text)
{
    const Frame& kind = FRAMES[severity - 1];
    ++*kind.puiCount;
    std::array<char, 64> head;
    const MSG_Arg line[] = {MSG_Arg(guiOldLine)};
    const std::size_t length = MSG_Format(head, kind.pszHead, line);
    const bool folded = text.size() >= kind.uiFoldFirst && text.size() <= kind.uiFoldLast;
    const MSG_Arg parts[] = {MSG_Arg(std::string_view(head.data(), length)),
                             MSG_Arg(std::string_view(folded ? " -\n      " : " - ")), MSG_Arg(text)};
    std::array<char, FRAME_SIZE> frame;
    MSG_Format(frame, "%s%s%s\n", parts);
    MSG_Add(static_cast<int>(severity), frame.data());
}
