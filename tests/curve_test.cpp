#include "tests/tables.h"

#include <cmath>

namespace
{

Points Combined(const std::vector<TableRow>& a, const std::vector<TableRow>& b)
{
    return PointsOf(CRV_Combine(Table(a).get(), Table(b).get(), CORNER_TYP).get());
}

}  // namespace

TEST(Combine, StraightLines)
{
    // 0.5 A/V and 0.25 A/V through 0 V: exact in binary.
    const std::vector<TableRow> half{{-2, -1}, {0, 0}, {2, 1}};
    const std::vector<TableRow> quarter{{-2, -0.5}, {0, 0}, {2, 0.5}};
    struct Case {
        const char* name;
        std::vector<TableRow> a;
        std::vector<TableRow> b;
        Points sum;
    };
    const std::vector<Case> cases{
        {"the same voltages", half, quarter, {{-2, -1.5}, {0, 0}, {2, 1.5}}},
        {"one descends", half, {{2, 0.5}, {0, 0}, {-2, -0.5}}, {{-2, -1.5}, {0, 0}, {2, 1.5}}},
        {"both descend", {{2, 1}, {-2, -1}}, {{2, 0.5}, {0, 0}, {-2, -0.5}}, {{-2, -1.5}, {0, 0}, {2, 1.5}}},
        {"a shorter table goes on", {{0, 0}, {1, 0.5}}, {{0, 0}, {4, 1}}, {{0, 0}, {1, 0.75}, {4, 3}}},
        {"on both sides", {{1, 0.5}, {2, 1}}, {{0, 0}, {4, 1}}, {{0, 0}, {1, 0.75}, {2, 1.5}, {4, 3}}},
        {"no table", half, {}, {{-2, -1}, {0, 0}, {2, 1}}},
        {"one row is no table", half, {{1, 8}}, {{-2, -1}, {0, 0}, {2, 1}}},
        {"nor is one voltage", half, {{1, 8}, {1, 9}}, {{-2, -1}, {0, 0}, {2, 1}}},
        {"voltages of NA are no rows",
         half,
         {{NA, 5}, {-2, -0.5}, {NA, 7}, {2, 0.5}},
         {{-2, -1.5}, {0, 0}, {2, 1.5}}},
        {"one usable row is a constant",
         half,
         {{-2, NA}, {0, 0.25}, {2, NA}},
         {{-2, -0.75}, {0, 0.25}, {2, 1.25}}},
        {"two usable rows are a line",
         half,
         {{-2, NA}, {0, 0}, {1, 0.25}, {2, NA}},
         {{-2, -1.5}, {0, 0}, {1, 0.75}, {2, 1.5}}},
        {"no usable row adds nothing", {{-2, NA}, {2, NA}}, quarter, {{-2, -0.5}, {0, 0}, {2, 0.5}}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Combined(c.a, c.b), c.sum) << c.name;
    }
}

TEST(Combine, PointsWithinTenMicrovoltsMerge)
{
    EXPECT_EQ(Combined({{0, 0}, {1, 1}}, {{5e-6, 0}, {2, 0}}), (Points{{0, 0}, {1, 1}, {2, 2}}));
    EXPECT_EQ(Combined({{0, 0}, {1, 1}}, {{0x1p-16, 0}, {2, 0}}),
              (Points{{0, 0}, {0x1p-16, 0x1p-16}, {1, 1}, {2, 2}}));
    // Within one table too: a step of no width keeps its first current.
    EXPECT_EQ(Combined({{0, 0}, {1, 1}, {1, 3}, {2, 4}}, {}), (Points{{0, 0}, {1, 1}, {2, 4}}));
}

TEST(Combine, StepsAtTheEndsArePassedOver)
{
    // What goes on is the line from the end row to the nearest row of another voltage.
    const std::vector<TableRow> steps{{0, 2}, {0, 0}, {1, 3}, {2, 4}, {2, 9}};
    EXPECT_EQ(Combined(steps, {{-1, 0}, {4, 0}}), (Points{{-1, 1}, {0, 2}, {1, 3}, {2, 4}, {4, 21}}));
    // All that this column has is a step of 1 A, which gets a width of 1e-5 V.
    const Points sum = Combined({{0, 1}, {0, 2}, {5, NA}}, {{1, 0}, {2, 0}});
    ASSERT_EQ(sum.size(), 4U);
    EXPECT_EQ(sum[0], std::make_pair(0.0, 1.0));
    EXPECT_NEAR(sum[1].second, 2.0 - 1.0 / 1e-5, 1.0);
}

TEST(Combine, TableThatTurnsBackIsFollowed)
{
    // Behind 2 V the voltages fall to 0.5 V: there the first segment that reaches 0.5 V answers.
    EXPECT_EQ(Combined({{0, 0}, {1, 1}, {2, 4}, {0.5, 9}, {3, 6}}, {}),
              (Points{{0, 0}, {1, 1}, {2, 4}, {0.5, 0.5}, {3, 6}}));
}

TEST(Combine, CornersOfTheMask)
{
    const CRV_Curve a = Table({{0, 1, 2, 3}, {1, 2, 3, 4}});
    const CRV_Curve b = Table({{0, 10, NA, 30}, {1, 20, NA, 40}});
    const CRV_Curve sum = CRV_Combine(a.get(), b.get(), CORNER_MIN | CORNER_MAX);
    EXPECT_EQ(PointsOf(sum.get(), CORNER_MIN), (Points{{0, 2}, {1, 3}}));
    EXPECT_EQ(PointsOf(sum.get(), CORNER_MAX), (Points{{0, 33}, {1, 44}}));
    EXPECT_EQ(sum->pHead->eTyp, NUM_ABSENT);
}

TEST(Combine, InputsKeepTheirOrder)
{
    const CRV_Curve down = Table({{2, 1}, {1, 5}, {0, 0}});
    const CRV_Curve up = Table({{0, 0}, {2, 1}});
    CRV_Combine(down.get(), up.get(), CORNER_TYP);
    EXPECT_EQ(PointsOf(down.get()), (Points{{2, 1}, {1, 5}, {0, 0}}));
    EXPECT_EQ(down->pHead->pPrev, nullptr);
    EXPECT_EQ(down->pHead->pNext->pNext->pPrev, down->pHead->pNext);
    EXPECT_EQ(PointsOf(up.get()), (Points{{0, 0}, {2, 1}}));
    // A table combined with itself is turned around once.
    EXPECT_EQ(PointsOf(CRV_Combine(down.get(), down.get(), CORNER_TYP).get()),
              (Points{{0, 0}, {1, 10}, {2, 2}}));
}

TEST(Combine, ZeroCurveMakesACopy)
{
    EXPECT_EQ(PointsOf(CRV_Combine(Table({{2, 4}, {0.5, 1}}).get(), CRV_ZeroCurve(), CORNER_TYP).get()),
              (Points{{0, 0}, {0.5, 1}, {1, 2}, {2, 4}}));
    const Points zeros{{0, 0}, {1, 0}};
    EXPECT_EQ(PointsOf(CRV_Combine(nullptr, CRV_ZeroCurve(), CORNER_TYP).get()), zeros);
    EXPECT_EQ(PointsOf(CRV_Combine(Table({{2, 4}}).get(), CRV_ZeroCurve(), CORNER_MAX).get(), CORNER_MAX),
              zeros);
    EXPECT_EQ(PointsOf(CRV_ZeroCurve()), zeros);
}

TEST(Combine, DiodesBackToBack)
{
    // Two exponentials of opposite sense add up to a hyperbolic sine. Between the samples, 1 mV apart, the
    // chord lies at most h^2/8 * max|i''| off.
    const double scale = 0.05;  // V
    const auto diode = [=](double v) { return 1e-6 * (std::exp(v / scale) - 1.0); };
    const auto mirrored = [=](double v) { return -diode(-v); };
    const double step = 1e-3;
    const CRV_Curve a = Sampled(diode, -0.5, step, 1001);
    const CRV_Curve b = Sampled(mirrored, 0.5 + step / 2, -step, 1002);
    const CRV_Curve sum = CRV_Combine(a.get(), b.get(), CORNER_TYP);
    const double worst = step * step / 8 * 1e-6 * std::exp(0.5 / scale) / (scale * scale);
    int checked = 0;
    for (const auto& [v, i] : PointsOf(sum.get())) {
        EXPECT_NEAR(i, 2e-6 * std::sinh(v / scale), 4 * worst) << v;
        ++checked;
    }
    EXPECT_EQ(checked, 2003);
}

TEST(Combine, LongAndTurningTablesStayLinear)
{
    // Half of the rows rise, the other half jumps back and forth at the top: with a search from the start at
    // each jump this would take hours.
    std::vector<TableRow> rows;
    constexpr int half = 200000;
    for (int i = 0; i < half; ++i) {
        rows.push_back({i * 1e-3, 1e-3 * i});
    }
    for (int i = 0; i < half; ++i) {
        rows.push_back({(half - (i % 2)) * 1e-3, 0.0});
    }
    const CRV_Curve table = Table(rows);
    EXPECT_EQ(PointsOf(CRV_Combine(table.get(), CRV_ZeroCurve(), CORNER_TYP).get()).size(), 2U * half);
}

TEST(Evaluate, InsideBeyondAndBothDirections)
{
    const std::vector<TableRow> up{{0, 1}, {1, 3}, {3, 4}};
    const std::vector<TableRow> down{{3, 4}, {1, 3}, {0, 1}};
    struct Case {
        double dV;
        double dI;
    };
    for (const Case& c : {Case{0, 1}, {0.5, 2}, {1, 3}, {2, 3.5}, {3, 4}, {-1, -1}, {5, 5}}) {
        for (const auto& rows : {up, down}) {
            double i = NAN;
            EXPECT_TRUE(CRV_Evaluate(Table(rows).get(), c.dV, CORNER_TYP, &i));
            EXPECT_EQ(i, c.dI) << c.dV;
        }
    }
}

TEST(Evaluate, TablesWithoutAnAnswer)
{
    double i = 7.0;
    EXPECT_FALSE(CRV_Evaluate(nullptr, 1, CORNER_TYP, &i));
    for (const auto& rows : std::vector<std::vector<TableRow>>{
             {}, {{1, 1}}, {{1, 1}, {1, 2}}, {{0, NA}, {1, NA}}, {{NA, 1}, {NA, 2}, {0, 1}}}) {
        EXPECT_FALSE(CRV_Evaluate(Table(rows).get(), 1, CORNER_TYP, &i));
    }
    EXPECT_EQ(i, 7.0);
    EXPECT_TRUE(CRV_Evaluate(Table({{0, NA}, {1, 5}, {2, NA}}).get(), -9, CORNER_TYP, &i));
    EXPECT_EQ(i, 5.0);
}

TEST(CurveHelpers, UsableRows)
{
    const CRV_Curve table = Table({{0, 1, NA, NA}, {NA, 2, 2, NA}, {1, NA, 3, 1}, {2, 3, 4, NA}});
    EXPECT_FALSE(CRV_FewerThanTwo(table->pHead, CORNER_TYP));
    EXPECT_FALSE(CRV_FewerThanTwo(table->pHead, CORNER_MIN));
    EXPECT_TRUE(CRV_FewerThanTwo(table->pHead, CORNER_MAX));
    EXPECT_TRUE(CRV_FewerThanTwo(table->pHead->pNext->pNext, CORNER_TYP));
    EXPECT_TRUE(CRV_FewerThanTwo(nullptr, CORNER_TYP));
}

TEST(CurveHelpers, Direction)
{
    struct Case {
        std::vector<TableRow> rows;
        int iDirection;
    };
    for (const Case& c : {Case{{{0, 0}, {1, 0}}, 1},
                          {{{1, 0}, {0, 0}}, -1},
                          {{{1, 0}, {1, 0}, {NA, 0}, {0, 0}}, -1},
                          {{{NA, 0}, {0, 0}, {0, 0}, {2, 0}, {1, 0}}, 1},
                          {{{1, 0}, {1, 0}}, 0},
                          {{{1, 0}}, 0},
                          {{}, 0}}) {
        EXPECT_EQ(CRV_Direction(Table(c.rows)->pHead), c.iDirection);
    }
    EXPECT_EQ(CRV_Direction(Table({{0, 0}, {2, 0}, {1, 0}})->pHead->pNext), -1);
}

TEST(CurveHelpers, MirrorShiftAndReverse)
{
    const CRV_Curve table = Table({{0.5, 1}, {NA, 2}, {2, 3}});
    CRV_NegateFirst(table->pHead);
    CRV_ShiftFirst(table->pHead, 3.0);
    table->pHead = CRV_Reverse(table->pHead);
    EXPECT_EQ(table->pHead->pPrev, nullptr);
    EXPECT_EQ(table->pHead->pNext->eFirst, NUM_NA);
    const rngp* const last = table->pHead->pNext->pNext;
    EXPECT_EQ(last->pPrev, table->pHead->pNext);
    EXPECT_EQ((Points{{table->pHead->dFirst, table->pHead->dTyp}, {last->dFirst, last->dTyp}}),
              (Points{{1.0, 3.0}, {2.5, 1.0}}));
    EXPECT_EQ(CRV_Reverse(nullptr), nullptr);
}
