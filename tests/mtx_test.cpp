#include "ibis/source/nuibis_mtx.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_pkgmdl.h"
#include "tests/builders.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <random>

namespace
{

using Dense = std::vector<std::vector<double>>;

enum Shape { BANDED, WRAPPED, SPARSE, FULL };

std::string Pin(std::size_t i)
{
    return "P" + std::to_string(i + 1);
}

std::string Number(double value)
{
    std::array<char, 40> text;
    std::snprintf(text.data(), text.size(), "%.17g", value);
    return text.data();
}

// How far apart two pins are, also the short way round in a wrapped band.
std::size_t Distance(std::size_t n, std::size_t i, std::size_t j, Shape shape)
{
    const std::size_t d = i > j ? i - j : j - i;
    return shape == WRAPPED ? std::min(d, n - d) : d;
}

// A symmetric matrix of random numbers; 0.0 outside the band, and at some places of a sparse matrix.
Dense RandomMatrix(std::mt19937& random, std::size_t n, std::size_t bandwidth, Shape shape)
{
    std::uniform_int_distribution<int> number(-9, 9);
    Dense dense(n, std::vector<double>(n));
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = i; j < n; ++j) {
            const bool stored = shape == SPARSE ? i == j || number(random) > 3
                                                : shape == FULL || Distance(n, i, j, shape) <= bandwidth;
            dense[i][j] = dense[j][i] = stored ? number(random) / 8.0 : 0.0;
        }
    }
    return dense;
}

std::string RowData(const Dense& dense, std::size_t i, std::size_t bandwidth, Shape shape)
{
    const std::size_t n = dense.size();
    std::string data;
    for (std::size_t k = 0; k < (shape == WRAPPED ? bandwidth + 1 : n - i); ++k) {
        const std::size_t j = (i + k) % n;
        if (shape == SPARSE) {
            // From the last column to the first: a row may name its columns in any order.
            const std::size_t column = n - 1 - k;
            if (column == i || dense[i][column] != 0.0) {
                data += Pin(column) + " " + Number(dense[i][column]) + "\n";
            }
        } else if (shape == FULL || k <= bandwidth) {
            data += Number(dense[i][j]) + (k % 5 == 4 ? "\n" : " ");
        }
    }
    return data + "\n";
}

std::string MatrixText(std::string_view keyword, const Dense& dense, std::size_t bandwidth, Shape shape)
{
    static constexpr std::array<std::string_view, 4> types{"Banded_matrix", "banded_MATRIX", "Sparse_matrix",
                                                           "Full_matrix"};
    std::string text = "[" + std::string(keyword) + "] " + std::string(types[shape]) + "\n";
    if (shape == BANDED || shape == WRAPPED) {
        text += "[Bandwidth] " + std::to_string(bandwidth) + "\n";
    }
    for (std::size_t i = 0; i < dense.size(); ++i) {
        text += "[Row] " + Pin(i) + "\n" + RowData(dense, i, bandwidth, shape);
    }
    return text;
}

// [Define Package Model] is line 4; with `n` pins the matrices begin on line 11 + n.
std::string Package(std::size_t n, std::string_view matrices)
{
    std::string text = Header("5.1", "t.pkg") +
                       "[Define Package Model] Q\n[Manufacturer] Acme\n[OEM] Acme\n[Description] Test\n"
                       "[Number Of Pins] " +
                       std::to_string(n) + "\n[Pin Numbers]\n";
    for (std::size_t i = 0; i < n; ++i) {
        text += Pin(i) + "\n";
    }
    return text + "[Model Data]\n" + std::string(matrices) + "[End Model Data]\n[End Package Model]\n[End]\n";
}

const std::string CLEAN_L = "[Inductance Matrix] Banded_matrix\n[Bandwidth] 0\n[Row] P1\n1\n[Row] P2\n1\n";
const std::string CLEAN_C = "[Capacitance Matrix] Banded_matrix\n[Bandwidth] 0\n[Row] P1\n1\n[Row] P2\n1\n";

// What a resistance matrix over the pins P1 and P2 gives; the matrix keyword is line 13.
Lines Resistance(std::string_view matrix, std::size_t n = 2)
{
    std::string rows;
    for (std::size_t i = 0; i < n; ++i) {
        rows += "[Row] " + Pin(i) + "\n1\n";
    }
    const std::string others = "[Inductance Matrix] Banded_matrix\n[Bandwidth] 0\n" + rows +
                               "[Capacitance Matrix] Banded_matrix\n[Bandwidth] 0\n" + rows;
    return Unfolded(Messages(Package(n, "[Resistance Matrix] " + std::string(matrix) + others), "t.pkg"));
}

std::string At(int line)
{
    std::array<char, 40> text;
    std::snprintf(text.data(), text.size(), "ERROR (line %4d) - ", line);
    return text.data();
}

const PKGMDL& FirstPackage()
{
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return *root->pPackageModels;
}

void ExpectElements(const Dense& dense, const MTX* matrix, std::string_view what)
{
    ASSERT_NE(matrix, nullptr) << what;
    const auto n = static_cast<unsigned>(dense.size());
    for (unsigned i = 0; i < n; ++i) {
        for (unsigned j = 0; j < n; ++j) {
            ASSERT_EQ(MTX_GetElement(n, i, j, matrix), dense[i][j]) << what << " " << i << " " << j;
        }
    }
    EXPECT_EQ(MTX_GetElement(n, n, 0, matrix), 0.0);
    EXPECT_EQ(MTX_GetElement(n, 0, n, matrix), 0.0);
}

// The checks of the numbers by their definition, element by element.
Lines ExpectedFindings(std::string_view name, const Dense& dense)
{
    Lines lines;
    const bool capacitance = name == "Capacitance";
    const std::string head = "Package Q: The " + std::string(name) + " Matrix has ";
    const auto number = [](double value) {
        std::array<char, 40> text;
        std::snprintf(text.data(), text.size(), "%9.6e", value);
        return std::string(text.data());
    };
    for (std::size_t i = 0; i < dense.size(); ++i) {
        const double d = dense[i][i];
        const std::string diagonal = head + "diagonal element " + number(d) + " at row " + Pin(i);
        if (d < 0.0) {
            lines.push_back("ERROR - " + diagonal + " which is negative");
            continue;
        }
        double sum = 0.0;
        for (std::size_t j = 0; j < dense.size(); ++j) {
            const double o = i == j ? 0.0 : dense[i][j];
            sum += std::fabs(o);
            if (!capacitance && std::fabs(o) > d) {
                lines.push_back("WARNING - " + diagonal +
                                " whose magnitude is less than off diagonal element " + number(o) +
                                " at col " + Pin(j));
            } else if (capacitance && j > i && o > 0.0) {
                lines.push_back("ERROR - " + head + "off-diagonal element " + number(o) + " at row " +
                                Pin(i) + " col " + Pin(j) + "  which is positive");
            }
        }
        if (capacitance && sum > d && sum - d > d * 0.0001) {
            lines.push_back("ERROR - " + diagonal +
                            " whose magnitude is less than the sum of off diagonal elements " + number(sum));
        }
    }
    return lines;
}

}  // namespace

// Every element of every shape, and every finding on it, against a dense matrix.
TEST(Matrix, ElementsAndChecksAgreeWithADenseMatrix)
{
    std::mt19937 random(4711);
    for (std::size_t n = 1; n <= 11; ++n) {
        for (const Shape shape : {BANDED, WRAPPED, SPARSE, FULL}) {
            const std::size_t limit = shape == BANDED ? n - 1 : shape == WRAPPED ? (n - 1) / 2 : 0;
            // A band of 0 has nothing to wrap.
            for (std::size_t b = shape == WRAPPED ? 1 : 0; b <= limit; ++b) {
                const Dense l = RandomMatrix(random, n, b, shape);
                const Dense c = RandomMatrix(random, n, b, shape);
                const std::string what =
                    std::to_string(n) + "/" + std::to_string(shape) + "/" + std::to_string(b);
                Lines expected = ExpectedFindings("Inductance", l);
                const Lines more = ExpectedFindings("Capacitance", c);
                expected.insert(expected.end(), more.begin(), more.end());
                EXPECT_EQ(Messages(Package(n, MatrixText("Inductance Matrix", l, b, shape) +
                                                  MatrixText("Capacitance Matrix", c, b, shape)),
                                   "t.pkg"),
                          expected)
                    << what;
                const PKGMDL& package = FirstPackage();
                ExpectElements(l, package.pInductance, what);
                ExpectElements(c, package.pCapacitance, what);
                EXPECT_EQ(package.pInductance->eMatrixType == MTX_BANDED_WRAP, shape == WRAPPED) << what;
            }
        }
    }
}

TEST(Matrix, NumbersBelowSinglePrecisionAreRounding)
{
    const std::string tiny = "1e-39";
    EXPECT_EQ(Unfolded(Messages(Package(2, CLEAN_L + "[Capacitance Matrix] Full_matrix\n[Row] P1\n1e-39 " +
                                               tiny + "\n[Row] P2\n-" + tiny + "\n"),
                                "t.pkg")),
              Lines{});
    // A diagonal of -1e-39 is below every element, those of 0.0 included.
    const auto below = [](std::string_view row, std::string_view off, std::string_view column) {
        return "WARNING - Package Q: The Resistance Matrix has diagonal element -1.000000e-39 at row " +
               std::string(row) + " whose magnitude is less than off diagonal element " + std::string(off) +
               " at col " + std::string(column);
    };
    EXPECT_EQ(Resistance("Full_matrix\n[Row] P1\n-1e-39 0\n[Row] P2\n1\n"),
              (Lines{below("P1", "0.000000e+00", "P1"), below("P1", "0.000000e+00", "P2")}));
    // One part in ten thousand is granted to the row sum.
    for (const auto& [off, messages] : {std::pair{"-1.0001", 0U}, std::pair{"-1.00011", 2U}}) {
        EXPECT_EQ(Messages(Package(2, CLEAN_L + "[Capacitance Matrix] Full_matrix\n[Row] P1\n1 " +
                                          std::string(off) + "\n[Row] P2\n1\n"),
                           "t.pkg")
                      .size(),
                  messages);
    }
}

TEST(Matrix, TypeAndBandwidth)
{
    const std::string rows = "[Row] P1\n1 0\n[Row] P2\n1\n";
    const struct {
        std::string sMatrix;
        Lines messages;
    } table[] = {
        {"\n" + rows,
         {At(13) + "Matrix type not specified.",
          At(18) + "Expected 2 Rows, found 0 for Matrix ending previous to this line."}},
        {"Full matrix\n" + rows,
         {At(13) + "Unknown matrix type 'Full matrix'.",
          At(18) + "Expected 2 Rows, found 0 for Matrix ending previous to this line."}},
        {"Full_matrix\n[Bandwidth] 1\n" + rows, {At(14) + "Bandwidth only allowed for Banded Matrices"}},
        {"Banded_matrix\n[Bandwidth] 1\n" + rows, {}},
        {"Banded_matrix\n[Bandwidth] 1 pin\n" + rows, {At(14) + "Suspicious Bandwidth value."}},
        {"Banded_matrix\n[Bandwidth] 2\n" + rows,
         {At(14) + "Bandwidth <2> must be less than Number_of_Pins <2>."}},
        {"Banded_matrix\n[Bandwidth] x\n[Row] P1\n1\n[Row] P2\n1\n", {At(14) + "Bad Bandwidth value."}},
        {"Banded_matrix\n[Row] P1\n1\n[Row] P2\n1\n",
         {"ERROR - The Resistance Matrix is Banded and requires the 'Bandwidth' keyword."}},
        {"Banded_matrix\n[Bandwidth] 4294967295\n" + rows,
         {At(14) + "Bandwidth <4294967295> must be less than Number_of_Pins <2>."}},
    };
    for (const auto& row : table) {
        EXPECT_EQ(Resistance(row.sMatrix), row.messages) << row.sMatrix;
    }
}

TEST(Matrix, Rows)
{
    const struct {
        std::string sMatrix;
        Lines messages;
    } table[] = {
        // A further row of a full matrix vanishes, and its numbers run into the last one.
        {"Full_matrix\n[Row] P1\n1 0\n[Row] P2\n1\n[Row] P3\n1\n",
         {At(19) + "More row data than allowed for this row."}},
        {"Sparse_matrix\n[Row] P1\nP1 1\n[Row] P2\nP2 1\n[Row] P2\nP2 1\n",
         {At(18) + "Repeated ROW <P2>.",
          At(18) + "Expected Pin <P2> at matrix row index 2, found at matrix row index 3.",
          At(19) + "This Row Column Index defines an entry in the lower matrix triangle.",
          At(20) + "Expected 2 Rows, found 3 for Matrix ending previous to this line.",
          At(20) + "Expected at least one column of Row data for [Row] P2 in Matrix ending previous to this "
                   "line."}},
        {"Full_matrix\n[Row] P2\n1 0\n[Row] P1\n1\n",
         {At(14) + "Expected Pin <P2> at matrix row index 2, found at matrix row index 1.",
          At(16) + "Expected Pin <P1> at matrix row index 1, found at matrix row index 2."}},
        {"Full_matrix\n[Row]\n1 0\n[Row] P12345\n1 0\n[Row] NC\n1\n",
         {At(14) + "Unknown PIN NUMBER.", At(16) + "PIN NUMBER string too long.",
          At(16) + "Unable to find Pin <P1234> in Package Model Pin_Number list.",
          At(18) + "Illegal use of Reserved Word 'NC'.",
          At(18) + "Unable to find Pin <NC> in Package Model Pin_Number list."}},
        {"Full_matrix\n1 0\n[Row] P1\n1\n[Row] P2\n",
         {At(14) + "Orphan Data line.",
          At(18) + "Expected 2 columns of Row data for [Row] P1 in Matrix ending previous to this line, "
                   "found 1 column.",
          At(18) + "Expected 1 columns of Row data for [Row] P2 in Matrix ending previous to this line, "
                   "found 0 columns."}},
        {"Full_matrix\n[Row] P1\n1V2 x 1\n0\n[Row] P2\n1\n",
         {"WARNING (line   15) - Suspicious row data.", At(15) + "Unable to convert row data."}},
    };
    for (const auto& row : table) {
        EXPECT_EQ(Resistance(row.sMatrix), row.messages) << row.sMatrix;
    }
}

TEST(Matrix, SparseEntries)
{
    const std::string tail = "\n[Row] P2\nP2 1\n";
    const struct {
        std::string sLines;
        Lines messages;
    } table[] = {
        {"P1 1 ohm",
         {At(15) + "Excessive data <ohm>, only Index and Value should be specified for a Sparse_matrix."}},
        {"P1 1\nP1 2\nP2 0\nP2 0",
         {At(16) + "Duplicate Row column index 1.", At(18) + "Duplicate Row column index 2."}},
        {"P1 1\nP9 1\nP2",
         {At(16) + "Unable to find Pin <P9> in Package Model Pin_Number list.", At(17) + "No row data."}},
        {"P2 0", {At(18) + "[Row] P1 must contain a self-coupled index and entry."}},
        {"P1 x",
         {At(15) + "Unable to convert row data.",
          At(18) + "Expected at least one column of Row data for [Row] P1 in Matrix ending previous to this "
                   "line."}},
    };
    for (const auto& row : table) {
        EXPECT_EQ(Resistance("Sparse_matrix\n[Row] P1\n" + row.sLines + tail), row.messages) << row.sLines;
    }
    // Behind a row without data nothing is said of the diagonal any more.
    EXPECT_EQ(Resistance("Sparse_matrix\n[Row] P1\n[Row] P2\nP1 1\n"),
              (Lines{At(16) + "This Row Column Index defines an entry in the lower matrix triangle.",
                     At(17) + "Expected at least one column of Row data for [Row] P1 in Matrix ending "
                              "previous to this line.",
                     At(17) + "Expected at least one column of Row data for [Row] P2 in Matrix ending "
                              "previous to this line."}));
}

// More numbers than the shortened rows at the bottom hold turn a band into a ring.
TEST(Matrix, CircleBack)
{
    const auto banded = [](int bandwidth, std::string_view last) {
        return "Banded_matrix\n[Bandwidth] " + std::to_string(bandwidth) +
               "\n[Row] P1\n1 0\n[Row] P2\n1 0\n[Row] P3\n1 0\n[Row] P4\n" + std::string(last) + "\n";
    };
    EXPECT_EQ(Resistance(banded(1, "1"), 4), Lines{});
    EXPECT_EQ(Resistance(banded(1, "1 0.5"), 4), Lines{});
    const MTX* const ring = FirstPackage().pResistance;
    EXPECT_EQ(ring->eMatrixType, MTX_BANDED_WRAP);
    EXPECT_EQ(MTX_GetElement(4, 0, 3, ring), 0.5);
    EXPECT_EQ(MTX_GetElement(4, 3, 0, ring), 0.5);
    EXPECT_EQ(Resistance(banded(1, "1 0 0"), 4),
              (Lines{At(24) + "Only 2 columns of data allowed for this Row ."}));
    EXPECT_EQ(Resistance("Banded_matrix\n[Bandwidth] 1\n[Row] P1\n1 0 0\n[Row] P2\n1 0\n[Row] P3\n1\n", 3),
              (Lines{At(17) + "Only 2 columns of data allowed for this Row ."}));
    // A band that would meet itself on the other side: the type has turned all the same.
    EXPECT_EQ(
        Resistance("Banded_matrix\n[Bandwidth] 2\n[Row] P1\n1 0 0\n[Row] P2\n1 0 0\n[Row] P3\n1 0\n[Row] P4\n"
                   "1 0 0\n",
                   4),
        (Lines{At(24) + "Bandwidth for this Banded, circle-back matrix exceeds the limit of 1."}));
}

// A keyword that comes twice adds to the matrix that is there, while the matrix being read is another one.
TEST(Matrix, RepeatedKeywords)
{
    EXPECT_EQ(
        Resistance("Banded_matrix\n[Bandwidth] 0\n[Row] P1\n1\n[Inductance Matrix] Full_matrix\n"
                   "[Resistance Matrix]\n[Row] P2\n1 2\n"),
        (Lines{At(17) + "Expected 2 Rows, found 1 for Matrix ending previous to this line.",
               At(18) + "Duplicate Resistance Matrix.",
               "PROGRAM BUG (line   20) - gpMtx is not banded type, cannot determine bandwidth.",
               At(21) + "Duplicate Inductance Matrix.", At(22) + "Bandwidth only allowed for Banded Matrices",
               At(27) + "Expected 2 columns of Row data for [Row] P1 in Matrix ending previous to this "
                        "line, found 1 column."}));
}

TEST(Matrix, NothingIsBeingRead)
{
    EXPECT_EQ(MessagesOf([] {
                  unsigned out = 0;
                  MTX_Init();
                  EXPECT_EQ(MTX_GetBandwidth(&out), 0);
                  EXPECT_EQ(MTX_GetRowCount(&out), 0);
                  EXPECT_EQ(MTX_IsBandedWrap(), 0);
                  EXPECT_EQ(MTX_SetBandedWrap(1), 0);
                  MTX_CloseCurrent();
              }),
              (Lines{"PROGRAM BUG (line    0) - gpMtx is NULL, cannot determine bandwidth.",
                     "PROGRAM BUG (line    0) - gpMtx is NULL, cannot determine row count.",
                     "PROGRAM BUG (line    0) - gpMtx is NULL, cannot determine banded wrap type.",
                     "PROGRAM BUG (line    0) - gpMtx is NULL, cannot reset banded wrap type."}));
}

// Counts and bandwidths are claims of the file: memory and time follow what is really there.
TEST(Matrix, AnnouncedSizesTakeNoMemory)
{
    std::string matrices;
    for (const std::string type : {"Resistance Matrix] Full_matrix", "Inductance Matrix] Sparse_matrix",
                                   "Capacitance Matrix] Banded_matrix\n[Bandwidth] 4000000000"}) {
        matrices += "[" + type + "\n";
        for (std::size_t i = 0; i < 2000; ++i) {
            matrices += "[Row] " + Pin(i) + "\nP1 1\n";
        }
    }
    std::string file = Package(1, matrices);
    file.replace(file.find("Pins] 1"), 7, "Pins] 4294967295");
    EXPECT_GT(Messages(file, "t.pkg").size(), 2000U);
    EXPECT_EQ(MessagesWith("Memory", file, "t.pkg"), Lines{});
}
