// Believable ranges of parasitics (Ohm, H, F) and ramp times (s), tables that a driver ought to have, and the
// names of a component's nodes. They run at the end of the file and report by name.

#pragma once

struct CMPNT;
struct nuibis_mdl;
struct submdl;

void LIMIT_CheckModels(const nuibis_mdl* models);
void LIMIT_CheckModel(const nuibis_mdl* model);
void LIMIT_CheckSubmodels(const submdl* submodels);
void LIMIT_CheckComponents(const CMPNT* components);
void LIMIT_CheckComponent(const CMPNT* component);
/// Off: none of these checks runs. On by default; no read changes it.
void LIMIT_SetChecks(bool on);
