// What the terminal wants.

#pragma once

enum class Colour { Auto, Always, Never };

/// Whether the standard output is to be coloured; Auto asks the terminal and NO_COLOR.
bool WantsColour(Colour colour);
