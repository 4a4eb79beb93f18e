#include "tools/talibis/check_progress.h"

#include <iostream>
#include <unistd.h>

namespace
{

constexpr std::chrono::milliseconds PATIENCE{500};
constexpr std::chrono::milliseconds INTERVAL{100};

}  // namespace

Progress::Progress(std::size_t total)
    : mTotal(total), mbTerminal(total > 1 && isatty(STDERR_FILENO) != 0),
      mDue(std::chrono::steady_clock::now() + PATIENCE)
{
}

void Progress::show(std::size_t finished)
{
    if (!mbTerminal) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (now < mDue) {
        return;
    }
    mDue = now + INTERVAL;
    std::cerr << "\r\033[K" << finished << " of " << mTotal << " files" << std::flush;
    mbDrawn = true;
}

void Progress::erase()
{
    if (mbDrawn) {
        std::cerr << "\r\033[K" << std::flush;
        mbDrawn = false;
    }
}
