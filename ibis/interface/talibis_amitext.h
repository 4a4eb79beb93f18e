// How texts of a parameter file, and of a code file, become values.

#pragma once

/// The number at the front of a text, 0.0 without one.
double amiReal(const char* text);
/// The integer at the front of a text, 0 without one; the nearest `int` for a number out of its range.
int amiInteger(const char* text);
/// Whether a text is "True", in any case.
bool amiBoolean(const char* text);
