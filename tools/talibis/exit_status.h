// Exit statuses of the program.

#pragma once

inline constexpr int EXIT_CLEAN = 0;
inline constexpr int EXIT_ERRORS = 1;
inline constexpr int EXIT_UNUSABLE = 2;  ///< wrong usage, or a file that could not be read
