// [Driver Schedule]: the models that take over the drive of a multi-staged buffer, with the delays (s) at
// which each of them turns on and off.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct dly;
struct ibis;
struct nuibis_mdl;

struct drvshmodel {
    drvshmodel* pNext;
    char szName[41];
    dly* pDelays;  ///< null when the line gave no name
};

struct drvsh {
    drvshmodel* pModels;  ///< last line of the file first
};

/// The keyword line. A schedule that is there already is reported and freed. `*field` stays null only when
/// memory is out.
void DRVSH_Open(std::string_view text, drvsh** field);
/// A data line of the schedule of model `modelName`.
void DRVSH_Line(std::string_view text, drvsh* schedule, std::string_view modelName);
/// When the keyword is left: a schedule of fewer than two models is reported.
void DRVSH_Close(const drvsh* schedule, std::string_view modelName);
/// Null is fine.
void DRVSH_Free(drvsh* schedule);

/// At the end of the file: each scheduled model exists, drives, and has no schedule of its own. Marks the
/// scheduled models as referenced.
void DRVSH_CheckAll(nuibis_mdl* models);
/// The same for one model of that root.
void DRVSH_CheckModel(const nuibis_mdl* model, const ibis* root);
