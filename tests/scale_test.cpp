// Cost of a read against the size of each list that a file can grow. Four times the entries may cost some
// four times the time; a walk for each entry would cost sixteen times.

#include "ibis/interface/talibis_tool.h"
#include "tests/builders.h"

#include <algorithm>
#include <ctime>
#include <functional>
#include <ostream>

#include <malloc.h>

namespace
{

std::string Repeat(std::size_t n, const std::function<std::string(std::string)>& line)
{
    std::string text;
    for (std::size_t i = 0; i < n; ++i) {
        text += line(std::to_string(i));
    }
    return text;
}

std::string Pins(std::size_t n)
{
    return Repeat(n, [](auto i) { return i + " S" + i + " M 1 1n 1p\n"; });
}

std::string OfComponent(std::size_t pins, const std::string& extra)
{
    return Bare(Component("U1", Pins(pins), extra) + Model("M"), "6.0");
}

std::string OfModel(const std::string& extra)
{
    return Ibs(Driver("M", extra), "6.0");
}

std::string Package(std::size_t n, const std::string& data, const std::string& head = "")
{
    const std::string count = std::to_string(n);
    return Header("5.1", "t.pkg") +
           "[Define Package Model] Q\n[Manufacturer] Acme\n[OEM] Acme\n[Description] Test\n" + head +
           "[Number Of Pins] " + count + "\n[Pin Numbers]\n" + data + "[End Package Model]\n[End]\n";
}

std::string Banded(const std::string& name, std::size_t n)
{
    return "[" + name + " Matrix] Banded_matrix\n[Bandwidth] 1\n" + Repeat(n, [n](auto i) {
               return "[Row] " + i + "\n1n" + (i == std::to_string(n - 1) ? "\n" : " 0.1n\n");
           });
}

std::string Board(std::size_t pins, const std::string& paths)
{
    WriteTestFile("part.ibs", Header("5.1", "part.ibs") + Component("Chip", "1 a NC 1 1n 1p\n") + "[End]\n");
    return Header("5.1", "t.ebd") + "[Begin Board Description] B\n[Manufacturer] Acme\n[Number Of Pins] " +
           std::to_string(pins) + "\n[Pin List] signal_name\n" +
           Repeat(pins, [](auto i) { return "A" + i + " S" + i + "\n"; }) + paths +
           "[Reference Designator Map]\nU1 part.ibs Chip\n[End Board Description]\n[End]\n";
}

std::string Parameters(const std::string& specific)
{
    return "(r (Reserved_Parameters (AMI_Version (Usage Info)(Type String)(Value \"6.1\")))\n"
           "(Model_Specific " +
           specific + "))\n";
}

struct Scale {
    const char* pszWhat;
    std::size_t n;
    std::function<std::string(std::size_t)> file;
    const char* pszName = "t.ibs";

    friend void PrintTo(const Scale& scale, std::ostream* out) { *out << scale.pszWhat; }
};

const std::string ROW = " 1m 1m 1m\n";

const Scale SCALES[] = {
    {"pins", 5000, [](std::size_t n) { return OfComponent(n, ""); }},
    {"mapped pins", 3000,
     [](std::size_t n) {
         return OfComponent(n, "[Pin Mapping] pulldown_ref pullup_ref\n" +
                                   Repeat(n, [](auto i) { return i + " G" + i + " P" + i + "\n"; }));
     }},
    {"pairs of pins", 3000,
     [](std::size_t n) {
         return OfComponent(2 * n, "[Diff Pin] inv_pin vdiff tdelay_typ\n" + Repeat(n, [n](auto i) {
                                       return i + " " + std::to_string(std::stoul(i) + n) + " 0.2 1n\n";
                                   }));
     }},
    {"series pairs", 3000,
     [](std::size_t n) {
         return OfComponent(2 * n, "[Series Pin Mapping] pin_2 model_name\n" + Repeat(n, [n](auto i) {
                                       return i + " " + std::to_string(std::stoul(i) + n) + " M\n";
                                   }));
     }},
    {"components", 1000,
     [](std::size_t n) {
         return Bare(Repeat(n, [](auto i) { return Component("U" + i, "1 S M 1 1n 1p\n"); }) + Model("M"));
     }},
    {"models", 500, [](std::size_t n) { return Ibs(Repeat(n, [](auto i) { return Driver("M" + i); })); }},
    {"selectors", 2000,
     [](std::size_t n) {
         return Ibs(Model("M") + Repeat(n, [](auto i) { return "[Model Selector] S" + i + "\nM x\n"; }));
     }},
    {"lines of a selector", 2000,
     [](std::size_t n) {
         return Ibs(Repeat(n, [](auto i) { return Model("M" + i); }) + "[Model Selector] S\n" +
                    Repeat(n, [](auto i) { return "M" + i + " x\n"; }));
     }},
    {"submodels", 1000,
     [](std::size_t n) {
         return Ibs(Model("M", "[Add Submodel]\n" + Repeat(n, [](auto i) { return "S" + i + " All\n"; })) +
                    Repeat(n, [](auto i) {
                        return "[Submodel] S" + i +
                               "\nSubmodel_type Dynamic_clamp\n[GND Clamp]\n-1 -1m -1m -1m\n0 0 0 0\n";
                    }));
     }},
    {"rows of a table", 8000,
     [](std::size_t n) { return OfModel("[GND Clamp]\n" + Repeat(n, [](auto i) { return i + ROW; })); }},
    {"rows in no order", 8000,
     [](std::size_t n) {
         return OfModel("[GND Clamp]\n" +
                        Repeat(n, [n](auto i) { return std::to_string(std::stoul(i) * 7919 % n) + ROW; }));
     }},
    {"waveforms", 500,
     [](std::size_t n) {
         return OfModel(Repeat(n, [](auto i) {
             return "[Rising Waveform]\nR_fixture = 50\nV_fixture = 0." + i + "\n0 0 0 0\n1n 1 1 1\n";
         }));
     }},
    {"scheduled drivers", 500,
     [](std::size_t n) {
         return Ibs(Driver("M", "[Driver Schedule]\n" +
                                    Repeat(n, [](auto i) { return "D" + i + " 1n 2n 3n 4n\n"; })) +
                    Repeat(n, [](auto i) { return Driver("D" + i); }));
     }},
    {"test loads", 1000,
     [](std::size_t n) {
         return Ibs(Model("M") + Repeat(n, [](auto i) {
                        return "[Test Load] L" + i + "\nTest_load_type Single_ended\nZo 50\n";
                    }));
     }},
    {"nodes and circuit calls", 500,
     [](std::size_t n) {
         return Bare(
             "[External Circuit] A\nLanguage SPICE\nCorner Typ f.sp c\nPorts A B\n[End External Circuit]\n" +
             Component("U1", Repeat(n, [](auto i) { return i + " S CIRCUITCALL\n"; }),
                       "[Node Declarations]\n" + Repeat(n, [](auto i) { return "n" + i + "\n"; }) +
                           "[End Node Declarations]\n" + Repeat(n, [](auto i) {
                               return "[Circuit Call]\nSignal_pin " + i + "\nPort_map A " + i +
                                      "\nPort_map B n" + i + "\n[End Circuit Call]\n";
                           })));
     }},
    {"package models", 500,
     [](std::size_t n) {
         return Ibs(Model("M") + Repeat(n, [](auto i) {
                        return "[Define Package Model] P" + i +
                               "\n[Manufacturer] Acme\n[OEM] Acme\n[Description] Test\n[Number Of Pins] 1\n"
                               "[Pin Numbers]\n1\n[Model Data]\n[Inductance Matrix] Banded_matrix\n"
                               "[Bandwidth] 0\n[Row] 1\n1n\n[Capacitance Matrix] Banded_matrix\n[Bandwidth] "
                               "0\n[Row] 1\n1p\n[End Model Data]\n[End Package Model]\n";
                    }));
     }},
    {"rows of a matrix", 3000,
     [](std::size_t n) {
         return Package(n, Repeat(n, [](auto i) { return i + "\n"; }) + "[Model Data]\n" +
                               Banded("Inductance", n) + Banded("Capacitance", n) + "[End Model Data]\n");
     },
     "t.pkg"},
    {"sections of a pin", 5000,
     [](std::size_t n) {
         return Package(1, "1\n" + Repeat(n, [](auto) { return "Len=1 L=1n /\n"; }),
                        "[Number Of Sections] " + std::to_string(n) + "\n");
     },
     "t.pkg"},
    {"paths of a board", 3000,
     [](std::size_t n) {
         return Board(n, Repeat(n, [](auto i) {
                          return "[Path Description] P" + i + "\nPin A" + i + " Len=1 L=1n / Node U1.1\n";
                      }));
     },
     "t.ebd"},
    {"forks within forks", 5000,
     [](std::size_t n) {
         return Board(1, "[Path Description] P\nPin A0 Len=1 L=1n /\n" +
                             Repeat(n, [](auto) { return "Fork Len=1 L=1n /\n"; }) + "Node U1.1\n" +
                             Repeat(n, [](auto) { return "Endfork\n"; }));
     },
     "t.ebd"},
    {"parameters", 3000,
     [](std::size_t n) {
         return Parameters(
             Repeat(n, [](auto i) { return "(p" + i + " (Usage In)(Type Float)(Range 1 0 2))\n"; }));
     },
     "t.ami"},
    {"rows of a parameter's table", 10000,
     [](std::size_t n) {
         return Parameters("(t (Usage Info)(Type Float)(Table " +
                           Repeat(n, [](auto i) { return "(" + i + " 1)\n"; }) + "))");
     },
     "t.ami"},
    {"branches within branches", 20000,
     [](std::size_t n) {
         return Parameters(Repeat(n, [](auto i) { return "(b" + i; }) + "(Usage In)" + std::string(n, ')'));
     },
     "t.ami"},
    {"messages", 50000, [](std::size_t n) { return Bare(Repeat(n, [](auto) { return "[Nonsense]\n"; })); }},
    {"characters of a line", 300000,
     [](std::size_t n) { return OfModel("[Notes] " + std::string(n, 'x') + " \x01\n"); }},
    {"comments", 100000, [](std::size_t n) { return OfModel(Repeat(n, [](auto) { return "|  x\n"; })); }},
};

// CPU time of a read, in s: the least of three.
double CostOf(const Scale& scale, std::size_t n)
{
    const std::string text = scale.file(n);
    double least = 1e9;
    for (int i = 0; i < 3; ++i) {
        const std::clock_t start = std::clock();
        Messages(text, scale.pszName);
        least = std::min(least, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return least;
}

std::size_t HeapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

class Scaling : public testing::TestWithParam<Scale>
{
};

}  // namespace

TEST_P(Scaling, FourTimesTheEntriesCostAboutFourTimesTheTime)
{
    const QuietTotals quiet;
    const Scale& scale = GetParam();
    const double one = CostOf(scale, scale.n);
    const double four = CostOf(scale, 4 * scale.n);
    RecordProperty("ratio", std::to_string(four / one));
    // Half of the way to the square; 5 ms are the grain of a busy machine.
    EXPECT_LT(four, 8 * one + 0.005) << scale.pszWhat << ": " << one << " s, then " << four << " s";
}

// What the heap holds while a file of nothing but faults is read: the text of each finding and little more.
TEST(Scale, AMessageTakesABoundedAmountOfMemory)
{
    const std::size_t probe = HeapInUse();
    const std::string block(1 << 20, 'x');
    if (HeapInUse() - probe < block.size()) {
        GTEST_SKIP() << "this allocator does not tell what it holds";
    }
    struct Sample {
        std::size_t uiCount = 0;
        std::size_t uiText = 0;
        std::size_t uiPeak = 0;
    };
    constexpr std::size_t perMessage = 128;  // record, entry of the list, and what the allocator adds
    constexpr std::size_t perFile = 4 << 20;
    for (const auto& [count, line] : {std::pair(200'000, std::string("[Nonsense]\n")),
                                      std::pair(20'000, std::string(1100, 'x') + "\n")}) {
        SCOPED_TRACE(line.substr(0, 12));
        const std::size_t lines = static_cast<std::size_t>(count);
        const std::string text = Bare(Repeat(lines, [&fault = line](auto) { return fault; }));
        ReadHandle(Bare(""));  // lets go of what the file before has left
        const std::size_t before = HeapInUse();
        Sample sample;
        talSetListener(
            [](void* context, const TalIbisFinding& finding) {
                auto& at = *static_cast<Sample*>(context);
                at.uiText += finding.sText.size();
                if (++at.uiCount % 1000 == 0) {
                    at.uiPeak = std::max(at.uiPeak, HeapInUse());
                }
            },
            &sample);
        ReadHandle(text);
        talSetListener(nullptr, nullptr);
        EXPECT_GE(sample.uiCount, lines);
        EXPECT_LT(sample.uiPeak, before + sample.uiText + perMessage * sample.uiCount + perFile);
        RecordProperty("bytes", std::to_string((sample.uiPeak - before) / sample.uiCount) +
                                    " of which text " + std::to_string(sample.uiText / sample.uiCount));
    }
}

INSTANTIATE_TEST_SUITE_P(Lists, Scaling, testing::ValuesIn(SCALES), [](const auto& info) {
    std::string name = info.param.pszWhat;
    std::erase_if(name, [](char c) { return c == '\''; });
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
});
