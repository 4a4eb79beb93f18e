// [Model Spec]: thresholds, overshoot limits, pulse immunity, test load and weak drive of a model, each with
// its own values at the corners. They take precedence over the single values of the model's subparameters.

#pragma once

#include "ibis/source/nuibis_cmn.h"

struct nuibis_mdl;
struct rng;

/// An item that was not given is null. V, A, s, F, Ohm; areas in V * s.
struct mspec {
    std::uint32_t bHysteresis;  ///< 1 when Vinh+, Vinh-, Vinl+ and Vinl- were all given
    rng* pVinh;
    rng* pVinl;
    rng* pVinhPlus;   ///< Vinh+
    rng* pVinhMinus;  ///< Vinh-
    rng* pVinlPlus;   ///< Vinl+
    rng* pVinlMinus;  ///< Vinl-
    rng* pSOvershootLow;
    rng* pSOvershootHigh;
    rng* pDOvershootLow;
    rng* pDOvershootHigh;
    rng* pDOvershootTime;
    rng* pPulseHigh;
    rng* pPulseLow;
    rng* pPulseTime;
    rng* pVmeas;
    rng* pVref;  // from 4.0
    rng* pCref;
    rng* pRref;
    rng* pRrefDiff;
    rng* pCrefDiff;
    rng* pVrefRising;
    rng* pVrefFalling;
    rng* pCrefRising;
    rng* pCrefFalling;
    rng* pRrefRising;
    rng* pRrefFalling;
    rng* pVmeasRising;
    rng* pVmeasFalling;
    rng* pDOvershootAmplH;  // from 5.0
    rng* pDOvershootAmplL;
    rng* pDOvershootAreaH;
    rng* pDOvershootAreaL;
    rng* pWeakR;
    rng* pWeakV;
    rng* pWeakI;
};

/// The keyword line; a record that is there already is reported and freed. `*field` stays null only when
/// memory is out.
void MSPEC_Open(std::string_view text, mspec** field);
/// A data line. A null record takes none. An item that does not suit the model's type is reported and stored.
void MSPEC_Line(std::string_view text, mspec* spec, const nuibis_mdl& model);
/// At the end of the block: the items agree with each other and with the model's thresholds. Sets
/// `bHysteresis`.
void MSPEC_Close(mspec* spec, const nuibis_mdl& model);
/// Null is fine.
void MSPEC_Free(mspec* spec);
