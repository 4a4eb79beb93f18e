// A line on the terminal that tells how far a long run is. It is erased before anything else is printed and
// never gets into a pipe or a file.

#pragma once

#include <chrono>
#include <cstddef>

class Progress
{
  public:
    /// `total` files are to be read.
    explicit Progress(std::size_t total);
    ~Progress() { erase(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Draws the line, once the run has taken long enough for somebody to wonder.
    void show(std::size_t finished);
    void erase();

  private:
    std::size_t mTotal;
    bool mbTerminal;
    bool mbDrawn = false;
    std::chrono::steady_clock::time_point mDue;  // next time to draw
};
