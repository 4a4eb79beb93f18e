// Cross-checks between the static and the dynamic description of a buffer: the steady state that the I-V
// tables give under a stated load against the ramp, the waveforms and the timing test load, corner by corner.
// They run on finished records, change nothing, and report by model name.
//
// Voltages in V, currents in A, resistances in Ohm.

#pragma once

#include "ibis/source/nuibis_curve.h"

struct nuibis_mdl;
struct submdl;

/// Supply voltages that the tables of a model are referenced to.
struct ACDC_Refs {
    double dPowerClamp;
    double dPullup;
    double dGndClamp;
    double dPulldown;
};

/// The references of a model at a corner. A corner without a value takes the typical one, and what was not
/// given at all is 0 V.
ACDC_Refs ACDC_GetRefs(const nuibis_mdl& model, nuibis_corner corner);

/// Where the curve of a table meets the load line i = (vLoad - v) / r. Of several crossings the one nearest
/// to `guess` is taken, and the end segments go on beyond the ends. False without two points, for a table
/// that starts downwards, and for a segment that runs along the load line. `table` may be null.
bool ACDC_LoadLine(const crv* table, double vLoad, double r, nuibis_corner corner, double guess, double* v,
                   double* i);

/// All checks of all models, at the end of the file.
void ACDC_CheckModels(const nuibis_mdl* models);
/// All checks of one model.
void ACDC_CheckModel(const nuibis_mdl* model);
/// The clamps of the models that use submodels, at each corner.
void ACDC_CheckClamps(const nuibis_mdl* models, submdl* submodels);
/// Off: only the sums of curves are made and their shape is told. On by default; no read changes it.
void ACDC_SetChecks(bool on);

/// Tells each column of a computed curve that turns back (1509), by warning or note. At TYP the voltages are
/// a column too. A table with fewer than two points at the corner is passed over.
void CRV_ReportPiecewise(const crv* table, std::string_view ownerName, std::string_view label,
                         nuibis_corner corner, MSG_Severity severity);
/// Adds the dynamic clamps that each model pulls in to its own clamps and tells where a sum turns back.
void CRV_CombineClamps(const nuibis_mdl* models, submdl* submodels, nuibis_corner corner);

/// Writes the points of a column as "voltage,current" lines to the file `prefix``name`_typ.csv, _min.csv or
/// _max.csv. Gives what closing the file gave, 0 on success; EOF if it cannot be opened. For debugging:
/// nothing in the library calls it.
int CRV_Dump(const crv* table, nuibis_corner corner, std::string_view prefix, std::string_view name);
