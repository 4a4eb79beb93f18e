// [Package]: resistance, inductance and capacitance of a component's package pins (Ohm, H, F).

#pragma once

#include "ibis/source/nuibis_rng.h"

/// Each triple is null until its line is read.
struct PKG {
    rng* pRpkg;
    rng* pLpkg;
    rng* pCpkg;
};

/// A new record, or null when memory is out.
PKG* PKG_Create();
/// A data line of [Package].
void PKG_Line(PKG* package, std::string_view line);
/// Errors for what a component's package lacks, the package itself included.
void PKG_CheckRequired(const PKG* package, const char* component);
/// Null is fine.
void PKG_Free(PKG* package);
