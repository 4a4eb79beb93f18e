#include "ibis/source/nuibis_acdc.h"

#include "ibis/source/nuibis_list.h"
#include "ibis/source/nuibis_mdl.h"
#include "ibis/source/nuibis_mspec.h"
#include "ibis/source/nuibis_submdl.h"
#include "ibis/source/nuibis_wvfrm.h"

#include "platform/hostpath.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace
{

bool gbAcDcChecks = true;  // written by ACDC_SetChecks alone

// A ramp is measured from 20 % to 80 % of the swing.
constexpr double RAMP_SHARE = 0.6;
constexpr double RAMP_TOLERANCE = 0.05;
constexpr double DEFAULT_R_LOAD = 50.0;    // Ohm
constexpr double ECL_TERMINATION = 2.0;    // V below the supply
constexpr double WAVEFORM_ERROR = 0.10;    // of the swing
constexpr double WAVEFORM_WARNING = 0.02;  // of the swing
constexpr double OPEN_FIXTURE = 1e32;      // Ohm
constexpr double INFINITE = 1e32;          // slope of a vertical segment in A/V; more than any distance in V
constexpr double EPSILON = 1e-32;       // smallest resistance in Ohm, voltage step in V, denominator in A/V
constexpr double SEGMENT_SLACK = 1e-6;  // V
constexpr double ISSO_TOLERANCE = 0.05;
constexpr double ISSO_ZERO = 1e-6;        // A
constexpr double EXTREME_VOLTAGE = -1.5;  // V
constexpr double EXTREME_CURRENT = 10.0;  // A
constexpr double PERCENT = 100.0;

constexpr MDL_TypeSet ECL_DRIVERS = MDL_Types({MODEL_OUTPUT_ECL, MODEL_IO_ECL, MODEL_3STATE_ECL});

// Values of a corner --------------------------------------------------------------------------------------

bool IsUsable(const crv* table, nuibis_corner corner)
{
    return table != nullptr && !CRV_FewerThanTwo(table->pHead, corner);
}

// A corner without a number takes the typical one.
std::optional<double> Pick(const rng* r, nuibis_corner corner)
{
    if (r == nullptr) {
        return std::nullopt;
    }
    const CORNER_Value own = CORNER_At(*r, corner);
    const CORNER_Value used = own.eStatus == NUM_VALUE ? own : CORNER_At(*r, CORNER_TYP);
    return used.eStatus == NUM_VALUE ? std::optional(used.dValue) : std::nullopt;
}

enum class Lookup { Found, Missing, Failed };

// Ramp and package currents are only compared at a supply that is really known: "NA" at a corner stands for
// the typical value, which must then be there, and a field that was not given says nothing.
Lookup FindStrictly(const rng* r, nuibis_corner corner, double& out)
{
    if (r == nullptr) {
        return Lookup::Missing;
    }
    CORNER_Value value = CORNER_At(*r, corner);
    if (value.eStatus == NUM_NA && corner != CORNER_TYP) {
        value = CORNER_At(*r, CORNER_TYP);
        if (value.eStatus != NUM_VALUE) {
            return Lookup::Failed;
        }
    }
    if (value.eStatus != NUM_VALUE) {
        return Lookup::Missing;
    }
    out = value.dValue;
    return Lookup::Found;
}

struct Rails {
    double dSupply;
    double dGround;
};

bool GetRails(const nuibis_mdl& model, nuibis_corner corner, Rails& rails)
{
    Lookup supply = FindStrictly(model.pPullupRef, corner, rails.dSupply);
    if (supply == Lookup::Missing) {
        supply = FindStrictly(model.pVoltageRange, corner, rails.dSupply);
    }
    rails.dGround = 0.0;
    return supply == Lookup::Found &&
           FindStrictly(model.pPulldownRef, corner, rails.dGround) != Lookup::Failed;
}

// Curves over the pad voltage -----------------------------------------------------------------------------

// A copy of a table on the axis of the pad voltage. Tables of the upper rail are given as voltages below it:
// v = reference - table voltage.
CRV_Curve OnPadAxis(crv* table, nuibis_corner corner, bool belowReference, double reference)
{
    CRV_Curve copy = CRV_Combine(table, CRV_ZeroCurve(), corner);
    if (copy != nullptr) {
        if (belowReference) {
            CRV_NegateFirst(copy->pHead);
        }
        CRV_ShiftFirst(copy->pHead, reference);
    }
    return copy;
}

// Null when either curve could not be made.
CRV_Curve Sum(const CRV_Curve& a, const CRV_Curve& b, nuibis_corner corner)
{
    return a != nullptr && b != nullptr ? CRV_Combine(a.get(), b.get(), corner) : nullptr;
}

CRV_Curve GndClampOnPadAxis(crv* table, const ACDC_Refs& refs, nuibis_corner corner)
{
    return OnPadAxis(table, corner, false, refs.dGndClamp);
}

CRV_Curve PowerClampOnPadAxis(crv* table, const ACDC_Refs& refs, nuibis_corner corner)
{
    return OnPadAxis(table, corner, true, refs.dPowerClamp);
}

double Conductance(double r)
{
    return r < EPSILON ? INFINITE : 1.0 / r;  // A/V
}

// A segment of a curve: i = dOffset + dSlope * v.
struct Segment {
    double dFrom;    // V
    double dTo;      // V
    double dSlope;   // A/V
    double dOffset;  // A, at 0 V

    Segment(const rngp& a, const rngp& b, const RNGP_Column& column)
        : dFrom(a.dFirst), dTo(b.dFirst),
          dSlope(dTo - dFrom < EPSILON ? INFINITE : (b.*column.pdValue - a.*column.pdValue) / (dTo - dFrom)),
          dOffset(a.*column.pdValue - dSlope * dFrom)
    {
    }
};

// A curve that is put under several loads, one after the other.
class LoadedCurve
{
  public:
    LoadedCurve(const crv* table, nuibis_corner corner)
    {
        const RNGP_Column& column = CORNER_Column(corner);
        const rngp* left = table == nullptr ? nullptr : CRV_NextPoint(table->pHead, corner);
        const rngp* right = left == nullptr ? nullptr : CRV_NextPoint(left->pNext, corner);
        if (right == nullptr || left->dFirst > right->dFirst) {
            return;
        }
        mSegments.reserve(ORDINARY_SEGMENTS);
        for (; right != nullptr; right = CRV_NextPoint(right->pNext, corner)) {
            mSegments.emplace_back(*left, *right, column);
            left = right;
        }
    }

    // The voltage at which it settles, as `ACDC_LoadLine` tells.
    bool settle(double vLoad, double r, double guess, double& v) const
    {
        if (mSegments.empty()) {
            return false;
        }
        const double g = Conductance(r);
        const double b = g * vLoad;  // current of the load at 0 V, A
        std::optional<double> answer;
        double best = INFINITE;  // distance of the answer to the guess, V
        double crossing = 0.0;
        for (const Segment& segment : mSegments) {
            const double den = -g - segment.dSlope;
            if (std::fabs(den) < EPSILON) {
                return false;
            }
            crossing = (segment.dOffset - b) / den;
            const double distance = std::fabs(crossing - guess);
            if (&segment == mSegments.data() && crossing <= segment.dFrom) {
                answer = crossing;
            } else if (crossing > segment.dFrom - SEGMENT_SLACK && crossing < segment.dTo + SEGMENT_SLACK &&
                       distance < best) {
                answer = crossing;
                best = distance;
            }
        }
        v = answer.value_or(crossing);
        return true;
    }

  private:
    static constexpr std::size_t ORDINARY_SEGMENTS = 300;  // two clamps and a driver of 100 rows each

    CMN_Vector<Segment> mSegments;  // none for a curve that cannot be loaded
};

// What a model's output shows at its pad at one corner, driving low and driving high.
struct Output {
    const nuibis_mdl& model;
    nuibis_corner eCorner;
    const LoadedCurve* pPulldown;  // clamps and [Pulldown], null for a table that cannot be judged
    const LoadedCurve* pPullup;    // clamps and [Pullup]
};

// The voltage at which a curve settles under a load.
bool Settle(const LoadedCurve* curve, double vLoad, double r, double guess, double& v)
{
    return curve != nullptr && curve->settle(vLoad, r, guess, v);
}

// [Ramp] --------------------------------------------------------------------------------------------------

struct Transition {
    std::string_view sName;
    double dSwing;     // dV of the ramp
    double dLoad;      // voltage that the load pulls to
    double dPulldown;  // guess for the low state
    double dPullup;    // guess for the high state
};

void CompareSwing(const Output& output, const Transition& transition, double r)
{
    double low = 0.0;
    double high = 0.0;
    if (!Settle(output.pPulldown, transition.dLoad, r, transition.dPulldown, low) ||
        !Settle(output.pPullup, transition.dLoad, r, transition.dPullup, high)) {
        return;
    }
    const double expected = RAMP_SHARE * std::fabs(low - high);
    if (std::fabs(expected - transition.dSwing) > RAMP_TOLERANCE * std::fabs(transition.dSwing)) {
        MSG_Caution(1514, transition.dSwing, PERCENT * RAMP_TOLERANCE, expected, output.model.szName,
                    CORNER_Name(output.eCorner), transition.sName);
    }
}

// The usual load of a ramp pulls against the transition; what cannot drive one way is loaded to the other
// rail.
void CheckRamp(const Output& output)
{
    const ramp* const record = output.model.pRamp;
    Rails rails{};
    if (record == nullptr || record->pRise == nullptr || record->pFall == nullptr ||
        !GetRails(output.model, output.eCorner, rails)) {
        return;
    }
    const nuibis_model_type type = output.model.eModelType;
    const bool ecl = MDL_IsOneOf(type, ECL_DRIVERS);
    const double termination = rails.dSupply - ECL_TERMINATION;
    const double riseLoad = ecl                               ? termination
                            : MDL_IsOneOf(type, MDL_OPEN_LOW) ? rails.dSupply
                                                              : rails.dGround;
    const double fallLoad = ecl                                ? termination
                            : MDL_IsOneOf(type, MDL_OPEN_HIGH) ? rails.dGround
                                                               : rails.dSupply;
    const double r = record->bRLoad != 0 ? record->dRLoad : DEFAULT_R_LOAD;
    if (const CORNER_Value d = CORNER_RampSwing(*record->pRise, output.eCorner); d.eStatus == NUM_VALUE) {
        CompareSwing(output, {"Rising", d.dValue, riseLoad, riseLoad, riseLoad + d.dValue}, r);
    }
    if (const CORNER_Value d = CORNER_RampSwing(*record->pFall, output.eCorner); d.eStatus == NUM_VALUE) {
        CompareSwing(output, {"Falling", d.dValue, fallLoad, fallLoad - d.dValue, fallLoad}, r);
    }
}

// Waveforms -----------------------------------------------------------------------------------------------

struct Fixture {
    double dR;
    double dV;
    std::string_view sVoltageName;
};

Fixture FixtureOf(const wvfrm& waveform, nuibis_corner corner)
{
    static constexpr std::array<std::string_view, 3> names{"V_fixture", "V_fixture_min", "V_fixture_max"};
    const double* const own = corner == CORNER_MIN   ? waveform.pdVFixtureMin
                              : corner == CORNER_MAX ? waveform.pdVFixtureMax
                                                     : nullptr;
    const double* const voltage = own != nullptr ? own : waveform.pdVFixture;
    return {waveform.pdRFixture != nullptr ? *waveform.pdRFixture : OPEN_FIXTURE,
            voltage != nullptr ? *voltage : 0.0, names[CORNER_Index(corner)]};
}

struct Ends {
    const rngp* pFirst = nullptr;
    const rngp* pLast = nullptr;
};

// First and last row with a number at the corner.
Ends EndsOf(const rngp* row, const RNGP_Column& column)
{
    Ends ends;
    for (; row != nullptr; row = row->pNext) {
        if (row->*column.peStatus == NUM_VALUE) {
            ends.pFirst = ends.pFirst == nullptr ? row : ends.pFirst;
            ends.pLast = row;
        }
    }
    return ends;
}

// The end voltages of a waveform, and where the tables settle in its fixture.
struct Settled {
    double dLow;
    double dHigh;
    double dDcLow;
    double dDcHigh;
};

void CompareEnds(const Output& output, const Fixture& fixture, const Settled& s, const char* edge)
{
    const double swing = std::fabs(s.dHigh - s.dLow);
    const double lowError = std::fabs(s.dDcLow - s.dLow);
    const double highError = std::fabs(s.dDcHigh - s.dHigh);
    const auto isAbove = [&](double share) { return lowError > share * swing || highError > share * swing; };
    const double dcSwing = std::fabs(s.dDcLow - s.dDcHigh);
    const bool flat = s.dDcLow == s.dDcHigh;
    const auto report = [&](const auto& reporter) {
        reporter(1503, output.model.szName, edge, fixture.dR, fixture.sVoltageName, fixture.dV,
                 CORNER_Name(output.eCorner), s.dLow, s.dHigh, s.dDcLow, s.dDcHigh,
                 flat ? PERCENT : PERCENT * (lowError / dcSwing),
                 flat ? PERCENT : PERCENT * (highError / dcSwing));
    };
    if (isAbove(WAVEFORM_ERROR)) {
        report(MSG_Error);
    } else if (isAbove(WAVEFORM_WARNING)) {
        report(MSG_Warning);
    }
}

void CheckWaveform(const Output& output, const wvfrm& waveform, bool rising)
{
    const RNGP_Column& column = CORNER_Column(output.eCorner);
    const Ends ends = EndsOf(waveform.pRows, column);
    if (ends.pFirst == nullptr) {
        return;
    }
    const Fixture fixture = FixtureOf(waveform, output.eCorner);
    Settled settled{};
    settled.dLow = (rising ? ends.pFirst : ends.pLast)->*column.pdValue;
    settled.dHigh = (rising ? ends.pLast : ends.pFirst)->*column.pdValue;
    if (Settle(output.pPulldown, fixture.dV, fixture.dR, settled.dLow, settled.dDcLow) &&
        Settle(output.pPullup, fixture.dV, fixture.dR, settled.dHigh, settled.dDcHigh)) {
        CompareEnds(output, fixture, settled, rising ? "Rising" : "Falling");
    }
}

void CheckWaveforms(const Output& output)
{
    for (const wvfrm* waveform = output.model.pRising; waveform != nullptr; waveform = waveform->pNext) {
        CheckWaveform(output, *waveform, true);
    }
    for (const wvfrm* waveform = output.model.pFalling; waveform != nullptr; waveform = waveform->pNext) {
        CheckWaveform(output, *waveform, false);
    }
}

// Timing test load ----------------------------------------------------------------------------------------

// The places of one quantity of the test load.
struct LoadItem {
    double* nuibis_mdl::*ppdModel;
    rng* mspec::*ppPlain;
    rng* mspec::*ppRising;
    rng* mspec::*ppFalling;
};

constexpr LoadItem VMEAS{&nuibis_mdl::pdVmeas, &mspec::pVmeas, &mspec::pVmeasRising, &mspec::pVmeasFalling};
constexpr LoadItem RREF{&nuibis_mdl::pdRref, &mspec::pRref, &mspec::pRrefRising, &mspec::pRrefFalling};
constexpr LoadItem VREF{&nuibis_mdl::pdVref, &mspec::pVref, &mspec::pVrefRising, &mspec::pVrefFalling};

struct LoadValue {
    double dPlain;
    double dRising;
    double dFalling;
    bool bByEdge;  // a form for one of the edges was given
};

std::optional<double> PickGiven(const rng* r, nuibis_corner corner)
{
    return r != nullptr && r->eTyp == NUM_VALUE ? Pick(r, corner) : std::nullopt;
}

// The plain value of [Model Spec] wins over all others. Without it the forms for the edges win over the
// model's own value. None when an edge stays without a value.
std::optional<LoadValue> LoadValueOf(const LoadItem& item, const nuibis_mdl& model, nuibis_corner corner)
{
    static constexpr mspec nothing{};
    const mspec& spec = model.pModelSpec != nullptr ? *model.pModelSpec : nothing;
    const std::optional<double> rising = PickGiven(spec.*item.ppRising, corner);
    const std::optional<double> falling = PickGiven(spec.*item.ppFalling, corner);
    const bool byEdge = rising || falling;
    if (const std::optional<double> plain = PickGiven(spec.*item.ppPlain, corner)) {
        return LoadValue{*plain, *plain, *plain, byEdge};
    }
    if (const double* own = model.*item.ppdModel; own != nullptr) {
        return LoadValue{*own, rising.value_or(*own), falling.value_or(*own), byEdge};
    }
    if (rising && falling) {
        return LoadValue{*rising, *rising, *falling, byEdge};
    }
    return std::nullopt;
}

struct TestLoad {
    double dVmeas;
    double dRref;
    double dVref;
};

enum class Reach { Unsolved, Through, Short };

// An output that can reach Vmeas from both sides settles at or below it when low, at or above it when high.
Reach DriveThrough(const Output& output, const TestLoad& load)
{
    double low = 0.0;
    double high = 0.0;
    const bool hasLow = Settle(output.pPulldown, load.dVref, load.dRref, 0.0, low);
    const bool hasHigh = Settle(output.pPullup, load.dVref, load.dRref, 0.0, high);
    if (!hasLow && !hasHigh) {
        return Reach::Unsolved;
    }
    const bool isShort = (hasLow && low > load.dVmeas) || (hasHigh && load.dVmeas > high);
    // The tables of an external model are not what drives.
    return isShort && output.model.pExternalModel == nullptr ? Reach::Short : Reach::Through;
}

Reach CheckEdge(const Output& output, const TestLoad& load, const char* edge)
{
    const Reach reach = DriveThrough(output, load);
    if (reach == Reach::Short) {
        MSG_Warning(1515, output.model.szName, CORNER_Name(output.eCorner), edge, load.dVmeas, load.dRref,
                    load.dVref);
    }
    return reach;
}

void CheckVmeas(const Output& output)
{
    const auto vmeas = LoadValueOf(VMEAS, output.model, output.eCorner);
    const auto rref = LoadValueOf(RREF, output.model, output.eCorner);
    const auto vref = LoadValueOf(VREF, output.model, output.eCorner);
    if (!vmeas || !rref || !vref) {
        return;
    }
    if (vmeas->bByEdge || rref->bByEdge || vref->bByEdge) {
        const TestLoad rising{vmeas->dRising, rref->dRising, vref->dRising};
        if (CheckEdge(output, rising, "Rising") == Reach::Through) {
            CheckEdge(output, {vmeas->dFalling, rref->dFalling, vref->dFalling}, "Falling");
        }
        return;
    }
    const TestLoad plain{vmeas->dPlain, rref->dPlain, vref->dPlain};
    if (DriveThrough(output, plain) == Reach::Short) {
        MSG_Warning(1500, output.model.szName, CORNER_Name(output.eCorner), plain.dVmeas, plain.dRref,
                    plain.dVref);
    }
}

// One corner of a driver ----------------------------------------------------------------------------------

void CheckCorner(const nuibis_mdl& model, nuibis_corner corner)
try {
    const bool lowUsable = IsUsable(model.pPulldown, corner);
    const bool highUsable = IsUsable(model.pPullup, corner);
    if (model.pPulldown != nullptr && model.pPullup != nullptr && !lowUsable && !highUsable) {
        return;
    }
    const ACDC_Refs refs = ACDC_GetRefs(model, corner);
    // An emitter follower is described from its upper rail in both states.
    const bool ecl = MDL_IsOneOf(model.eModelType, MDL_ECL_TYPES);
    const CRV_Curve clamp = Sum(PowerClampOnPadAxis(model.pPowerClamp, refs, corner),
                                GndClampOnPadAxis(model.pGndClamp, refs, corner), corner);
    const CRV_Curve low = Sum(clamp, OnPadAxis(model.pPulldown, corner, ecl, refs.dPulldown), corner);
    const CRV_Curve high = Sum(clamp, OnPadAxis(model.pPullup, corner, true, refs.dPullup), corner);
    if (low == nullptr || high == nullptr) {
        return;
    }
    CRV_ReportPiecewise(low.get(), model.szName, "Combined Pulldown for Model:", corner, MSG_Severity::Note);
    CRV_ReportPiecewise(high.get(), model.szName, "Combined Pullup for Model:", corner, MSG_Severity::Note);
    if (gbAcDcChecks) {
        const LoadedCurve loadedLow(low.get(), corner);
        const LoadedCurve loadedHigh(high.get(), corner);
        const Output output{model, corner, &loadedLow, &loadedHigh};
        CheckRamp(output);
        CheckWaveforms(output);
        CheckVmeas({model, corner, lowUsable ? &loadedLow : nullptr, highUsable ? &loadedHigh : nullptr});
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}

// [ISSO_PU] and [ISSO_PD] ---------------------------------------------------------------------------------

// The value of a table at `x`; none outside of it.
std::optional<double> Inside(const crv* table, double x, nuibis_corner corner)
{
    std::array<double*, 3> values{};
    CRV_Interpolate(table, x, &values[0], &values[1], &values[2]);
    const double* const own = values[CORNER_Index(corner)];
    const std::optional<double> result = own != nullptr ? std::optional(*own) : std::nullopt;
    for (double*& value : values) {
        CMN_Release(value);
    }
    return result;
}

// One side of the output stage: the current that is left when its rail bounces.
struct Side {
    const char* pszIsso;
    const crv* pIsso;
    const char* pszDrive;
    const crv* pDrive;
    double dDriveAt;       // table voltage at which the drive table must agree
    double dPrinted;       // reference that the messages name
    const char* pszOther;  // the rail at which nothing flows any more
    double dFarEnd;
};

void CheckSide(const nuibis_mdl& model, nuibis_corner corner, const Side& side)
{
    if (!IsUsable(side.pIsso, corner) || !IsUsable(side.pDrive, corner)) {
        return;
    }
    const std::optional<double> a = Inside(side.pIsso, 0.0, corner);
    const std::optional<double> b = Inside(side.pDrive, side.dDriveAt, corner);
    if (a && b && std::fabs(*b - *a) > ISSO_TOLERANCE * std::fabs(*a)) {
        MSG_Warning(1512, model.szName, CORNER_Name(corner), side.pszIsso, *a, PERCENT * ISSO_TOLERANCE,
                    side.pszDrive, *b, side.dPrinted);
    }
    const std::optional<double> c = Inside(side.pIsso, side.dFarEnd, corner);
    if (c && std::fabs(*c) > ISSO_ZERO) {
        MSG_Warning(1513, model.szName, CORNER_Name(corner), side.pszIsso, *c, side.pszOther, side.dPrinted,
                    side.dFarEnd, ISSO_ZERO);
    }
}

// The pullup is compared at the span of the rails and the pulldown at the supply itself, which differ where
// the ground is not 0 V.
void CheckIsso(const nuibis_mdl& model, nuibis_corner corner)
{
    Rails rails{};
    if (!GetRails(model, corner, rails)) {
        return;
    }
    const double span = rails.dSupply - rails.dGround;
    CheckSide(model, corner,
              {"ISSO_PU", model.pIssoPu, "Pullup", model.pPullup, span, rails.dGround, "Pulldown", span});
    CheckSide(model, corner,
              {"ISSO_PD", model.pIssoPd, "Pulldown", model.pPulldown, rails.dSupply, rails.dSupply, "Pullup",
               span});
}

// Tables on their own -------------------------------------------------------------------------------------

void CheckExtreme(const nuibis_mdl& model, const crv* table, const char* label)
{
    for (const nuibis_corner corner : CORNERS) {
        double current = 0.0;
        if (CRV_Evaluate(table, EXTREME_VOLTAGE, corner, &current) && std::fabs(current) > EXTREME_CURRENT) {
            MSG_Warning(1506, model.szName, CORNER_Name(corner), label, current, EXTREME_VOLTAGE);
        }
    }
}

bool HasCurrent(const crv* table)
{
    for (const rngp* row = table == nullptr ? nullptr : table->pHead; row != nullptr; row = row->pNext) {
        for (const RNGP_Column& column : RNGP_CORNERS) {
            if (row->*column.peStatus == NUM_VALUE && row->*column.pdValue != 0.0) {
                return true;
            }
        }
    }
    return false;
}

// What an open output lacks carries no current at all.
struct OpenSide {
    MDL_TypeSet uiTypes;
    crv* nuibis_mdl::*ppDrive;
    MSG_Text1 drive;  // (model)
    crv* nuibis_mdl::*ppIsso;
    MSG_Text1 isso;  // (model)
};

constexpr std::array<OpenSide, 2> OPEN_SIDES{{
    {MDL_OPEN_LOW, &nuibis_mdl::pPullup, 1507, &nuibis_mdl::pIssoPu, 1510},
    {MDL_OPEN_HIGH, &nuibis_mdl::pPulldown, 1508, &nuibis_mdl::pIssoPd, 1511},
}};

void CheckOpenSides(const nuibis_mdl& model)
{
    for (const OpenSide& side : OPEN_SIDES) {
        if (!MDL_IsOneOf(model.eModelType, side.uiTypes)) {
            continue;
        }
        if (HasCurrent(model.*side.ppDrive)) {
            MSG_Error(side.drive, model.szName);
        } else if (HasCurrent(model.*side.ppIsso)) {
            MSG_Error(side.isso, model.szName);
        }
    }
}

// Clamps of submodels -------------------------------------------------------------------------------------

// A state of the buffer, the types that have it, and the submodels that are then active.
struct ClampState {
    MDL_TypeSet uiTypes;
    submdl_modes eMode;
    std::string_view sLabel;
};

constexpr std::array<ClampState, 2> CLAMP_STATES{{
    {MDL_RECEIVERS | MDL_Types({MODEL_TERMINATOR}), SUBMODE_NON_DRIVING,
     "Combined Clamp in Non Driving Mode for Model"},
    {MDL_Types({MODEL_OUTPUT, MODEL_IO, MODEL_3STATE}) | MDL_OPEN_LOW | MDL_OPEN_HIGH | ECL_DRIVERS,
     SUBMODE_DRIVING, "Combined Clamp in Driving Mode for Model"},
}};

// Adds tables up, in their order as long as the sum is of ordinary size. Against a large sum a small table
// waits for others, so that thousands of submodels do not each walk all that was added before.
class RunningSum
{
  public:
    explicit RunningSum(nuibis_corner corner) : meCorner(corner) {}

    void add(CRV_Curve curve)
    {
        unsigned rows = 0;
        for (const rngp* row = curve == nullptr ? nullptr : curve->pHead; row != nullptr; row = row->pNext) {
            ++rows;
        }
        mParts.push_back({std::move(curve), rows});
        while (mParts.size() > 1 && joinsAtOnce(mParts[mParts.size() - 2])) {
            joinLast();
        }
    }
    // Null when a table was missing or memory is out.
    CRV_Curve take()
    {
        while (mParts.size() > 1) {
            joinLast();
        }
        return std::move(mParts.front().curve);
    }

  private:
    struct Part {
        CRV_Curve curve;
        unsigned uiRows;
    };

    static constexpr unsigned ORDINARY_ROWS = 512;  // a model's tables and submodels of 100 rows each

    bool joinsAtOnce(const Part& former) const
    {
        return former.uiRows <= ORDINARY_ROWS || former.uiRows <= 2 * mParts.back().uiRows;
    }
    void joinLast()
    {
        const Part last = std::move(mParts.back());
        mParts.pop_back();
        Part& sum = mParts.back();
        sum.curve = Sum(sum.curve, last.curve, meCorner);
        sum.uiRows += last.uiRows;
    }

    nuibis_corner meCorner;
    CMN_Vector<Part> mParts;
};

// The model's clamps and those of its dynamic clamps that are active in a state.
CRV_Curve SumOfClamps(const nuibis_mdl& model, submdl* submodels, const ACDC_Refs& refs, nuibis_corner corner,
                      submdl_modes mode)
{
    RunningSum sum(corner);
    sum.add(GndClampOnPadAxis(model.pGndClamp, refs, corner));
    sum.add(PowerClampOnPadAxis(model.pPowerClamp, refs, corner));
    for (const addsubmdl* entry = model.pAddSubmodels; entry != nullptr; entry = entry->pNext) {
        const submdl* const clamp = SUBMDL_Find(entry->szName, submodels);
        const bool active = entry->eMode == mode || entry->eMode == SUBMODE_ALL;
        if (clamp != nullptr && clamp->eSubmodelType == SUBMDL_DYNAMIC_CLAMP && active) {
            sum.add(GndClampOnPadAxis(clamp->pGndClamp, refs, corner));
            sum.add(PowerClampOnPadAxis(clamp->pPowerClamp, refs, corner));
        }
    }
    return sum.take();
}

void CombineClamps(const nuibis_mdl& model, submdl* submodels, nuibis_corner corner)
try {
    if (model.pGndClamp != nullptr && model.pPowerClamp != nullptr && !IsUsable(model.pGndClamp, corner) &&
        !IsUsable(model.pPowerClamp, corner)) {
        return;
    }
    const ACDC_Refs refs = ACDC_GetRefs(model, corner);
    for (const ClampState& state : CLAMP_STATES) {
        if (MDL_IsOneOf(model.eModelType, state.uiTypes)) {
            const CRV_Curve sum = SumOfClamps(model, submodels, refs, corner, state.eMode);
            CRV_ReportPiecewise(sum.get(), model.szName, state.sLabel, corner, MSG_Severity::Note);
        }
    }
} catch (const std::bad_alloc&) {
    // Told by the allocation itself.
}

// One column of a curve in the monotonic report.
struct Track {
    RNGP_Column column;
    crvtrack track;
};

void ReportTrack(Track& t, const rngp& row, std::string_view ownerName, std::string_view label,
                 MSG_Severity severity)
{
    if (row.*t.column.peStatus != NUM_VALUE || !CRV_Track(t.track, row.*t.column.pdValue)) {
        return;
    }
    if (severity == MSG_Severity::Warning) {
        MSG_Warning(1509, label, ownerName, t.column.sName);
    } else {
        MSG_Note(1509, label, ownerName, t.column.sName);
    }
}

}  // namespace

ACDC_Refs ACDC_GetRefs(const nuibis_mdl& model, nuibis_corner corner)
{
    const bool ecl = MDL_IsOneOf(model.eModelType, MDL_ECL_TYPES);
    const double supply = Pick(model.pVoltageRange, corner).value_or(0.0);
    return {Pick(model.pPowerClampRef, corner).value_or(supply),
            Pick(model.pPullupRef, corner).value_or(supply), Pick(model.pGndClampRef, corner).value_or(0.0),
            Pick(model.pPulldownRef, corner).value_or(ecl ? supply : 0.0)};
}

bool ACDC_LoadLine(const crv* table, double vLoad, double r, nuibis_corner corner, double guess, double* v,
                   double* i)
try {
    if (!LoadedCurve(table, corner).settle(vLoad, r, guess, *v)) {
        return false;
    }
    const double g = Conductance(r);
    *i = g * vLoad - g * *v;
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

void ACDC_CheckModels(const nuibis_mdl* models)
{
    for (; models != nullptr; models = models->pNext) {
        ACDC_CheckModel(models);
    }
}

void ACDC_CheckModel(const nuibis_mdl* model)
{
    const bool drives = !MDL_IsOneOf(model->eModelType, MDL_WITHOUT_DRIVER);
    const std::span<const nuibis_corner> corners(CORNERS.data(), drives ? CORNERS.size() : 0);
    for (const nuibis_corner corner : corners) {
        CheckCorner(*model, corner);
    }
    if (!gbAcDcChecks) {
        return;
    }
    for (const nuibis_corner corner : corners) {
        CheckIsso(*model, corner);
    }
    CheckExtreme(*model, model->pGndClamp, "GND_Clamp");
    CheckExtreme(*model, model->pPowerClamp, "POWER_Clamp");
    CheckOpenSides(*model);
}

void ACDC_CheckClamps(const nuibis_mdl* models, submdl* submodels)
{
    for (const nuibis_corner corner : CORNERS) {
        CRV_CombineClamps(models, submodels, corner);
    }
}

void ACDC_SetChecks(bool on)
{
    gbAcDcChecks = on;
}

void CRV_ReportPiecewise(const crv* table, std::string_view ownerName, std::string_view label,
                         nuibis_corner corner, MSG_Severity severity)
{
    if (!IsUsable(table, corner)) {
        return;
    }
    Track voltage{{"Voltage", &rngp::dFirst, &rngp::eFirst}, {}};
    Track current{CORNER_Column(corner), {}};
    for (const rngp* row = table->pHead; row != nullptr; row = row->pNext) {
        if (corner == CORNER_TYP) {
            ReportTrack(voltage, *row, ownerName, label, severity);
        }
        ReportTrack(current, *row, ownerName, label, severity);
    }
}

void CRV_CombineClamps(const nuibis_mdl* models, submdl* submodels, nuibis_corner corner)
{
    for (; models != nullptr; models = models->pNext) {
        if (models->pAddSubmodels != nullptr) {
            CombineClamps(*models, submodels, corner);
        }
    }
}

int CRV_Dump(const crv* table, nuibis_corner corner, std::string_view prefix, std::string_view name)
{
    static constexpr std::array<const char*, 3> endings{"_typ.csv", "_min.csv", "_max.csv"};
    CMN_Path path;
    const MSG_Arg parts[] = {MSG_Arg(prefix), MSG_Arg(name), MSG_Arg(endings[CORNER_Index(corner)])};
    const std::size_t length = MSG_Format(path, "%s%s%s", parts);
    std::FILE* const file = HostPath({path.data(), length}).fopen("w");
    if (file == nullptr) {
        return EOF;
    }
    const RNGP_Column& column = CORNER_Column(corner);
    for (const rngp* row = CRV_NextPoint(table->pHead, corner); row != nullptr;
         row = CRV_NextPoint(row->pNext, corner)) {
        std::array<char, 64> line;
        const MSG_Arg values[] = {MSG_Arg(row->dFirst), MSG_Arg(row->*column.pdValue)};
        std::fwrite(line.data(), 1, MSG_Format(line, "%e,%e\n", values), file);
    }
    return std::fclose(file);
}
