#include "tools/talibis/terminal.h"

#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace
{

bool IsSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

}  // namespace

bool WantsColour(Colour colour)
{
    if (colour != Colour::Auto) {
        return colour == Colour::Always;
    }
    const char* const terminal = std::getenv("TERM");
    const bool dumb = terminal != nullptr && std::string_view(terminal) == "dumb";
    return isatty(STDOUT_FILENO) != 0 && !IsSet("NO_COLOR") && !dumb;
}
