// What happens when memory runs out: at each allocation of a read, and at each one of a query.

#include "ibis/interface/talibis_ami.h"
#include "ibis/interface/talibis_tool.h"
#include "platform/qelrt_inspect.h"
#include "tests/builders.h"
#include "tests/everything.h"

#include <algorithm>
#include <cstdlib>
#include <new>

// The two allocation routines of the parser core call these; the linker puts ours in their place.
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);  // NOLINT(bugprone-reserved-identifier)
void* __real_realloc(void* block, std::size_t size);       // NOLINT(bugprone-reserved-identifier)
void* __wrap_calloc(std::size_t count, std::size_t size);  // NOLINT(bugprone-reserved-identifier)
void* __wrap_realloc(void* block, std::size_t size);       // NOLINT(bugprone-reserved-identifier)
}

namespace
{

// Makes one allocation fail, or that one and all behind it.
class Failure
{
  public:
    void arm(long first, bool lasting)
    {
        *this = Failure();
        mFirst = first;
        mLasting = lasting;
        mArmed = true;
    }
    // Ends it; true if an allocation failed.
    bool disarm()
    {
        mArmed = false;
        return mStruck;
    }
    bool strikes()
    {
        if (!mArmed) {
            return false;
        }
        const long at = mSeen++;
        const bool hit = mLasting ? at >= mFirst : at == mFirst;
        mStruck = mStruck || hit;
        return hit;
    }

  private:
    bool mArmed = false;
    bool mLasting = false;
    bool mStruck = false;
    long mFirst = 0;
    long mSeen = 0;
};

Failure gCoreFailure;  // calloc and realloc
Failure gNewFailure;   // operator new

}  // namespace

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return gCoreFailure.strikes() ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* block, std::size_t size)
{
    return gCoreFailure.strikes() ? nullptr : __real_realloc(block, size);
}

// Not inlined: seen through, the pairs look like new with free to the compiler.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    void* const block = gNewFailure.strikes() ? nullptr : std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return gNewFailure.strikes() ? nullptr : std::malloc(size);
}

[[gnu::noinline]] void operator delete(void* block) noexcept
{
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

namespace
{

struct File {
    std::string name;
    ibis_file_type type;
    const char* pszWord;
    std::string text;
};

const std::string WAVEFORM = "[Rising Waveform]\nR_fixture = 50\nV_fixture = 0\nV_fixture_min = 0\n0 0 0 0\n"
                             "1n 1.65 1.5 1.8\n[Composite Current]\n0 0 0 0\n1n 1m 1m 1m\n";
const std::string PACKAGE =
    "[Define Package Model] RICH_P\n[Manufacturer] Acme\n[OEM] Acme\n[Description] Test\n[Number Of Pins] 2\n"
    "[Pin Numbers]\n1\n2\n[Model Data]\n[Resistance Matrix] Banded_matrix\n[Bandwidth] 0\n[Row] 1\n1\n"
    "[Row] 2\n1\n[Inductance Matrix] Full_matrix\n[Row] 1\n1n 0\n[Row] 2\n1n\n[Capacitance Matrix] "
    "Sparse_matrix\n[Row] 1\n1 1p\n2 0\n[Row] 2\n2 1p\n[End Model Data]\n[End Package Model]\n"
    "[Define Package Model] RICH_Q\n[Manufacturer] Acme\n[OEM] Acme\n[Description] Test\n[Number Of "
    "Sections] 2\n"
    "[Number Of Pins] 2\n[Pin Numbers]\n1 Len=1 L=1n / Fork Len=0 C=1p / Endfork Len=1 /\n"
    "2 Len=0 R=1 / Len=1 L=1n C=1p /\n[End Package Model]\n";
const std::string PARAMETERS =
    "(r (Reserved_Parameters (AMI_Version (Usage Info)(Type String)(Value \"6.1\")))\n"
    "(Model_Specific (a (Usage In)(Type Float)(Range 1 0 2)(Description \"d\"))(b (Usage Info)(Type Integer)"
    "(Default 3)(Value 4))(l (Usage In)(Type String)(List \"x\" \"y\")(List_Tip \"1\" \"2\"))"
    "(t (Usage Info)(Type Float String)(Table (Labels \"u\" \"v\")(0 \"1\")(1 \"2\")))))\n";

// A component with every keyword of its own, and models with as many kinds of block as go together.
std::string RichIbs()
{
    const std::string component = Component(
        "U1", "1 S A 1 1n 1p\n2 S A 1 1n 1p\n3 S SEL 1 1n 1p\n4 S CIRCUITCALL\n5 S NC\n6 S GND\n7 S POWER\n",
        "[Package Model] RICH_P\n[Alternate Package Models]\nRICH_P\nRICH_Q\n[End Alternate Package Models]\n"
        "[Pin Mapping] pulldown_ref pullup_ref gnd_clamp_ref power_clamp_ref\n1 GB PB NC NC\n2 GB PB GB PB\n"
        "6 GB NC\n7 NC PB\n[Diff Pin] inv_pin vdiff tdelay_typ tdelay_min tdelay_max\n1 2 0.2 1n NA 2n\n"
        "[Repeater Pin] tx_non_inv_pin\n1 3\n[Series Switch Groups]\nOn 1 2 /\nOff 1 /\n"
        "[Series Pin Mapping] pin_2 model_name function_table_group\n1 2 SER 1\n"
        "[Node Declarations]\nn1 n2\n[End Node Declarations]\n[Circuit Call]\nSignal_pin 4\nPort_map A 4\n"
        "Port_map B n1\n[End Circuit Call]\n[Begin EMI Component]\nDomain Analog\nCpd 1p\n[Pin EMI] "
        "domain_name "
        "clock_div\n1 D 2\n[Pin Domain EMI] percentage\nD 50\n[End EMI Component]\n");
    const std::string a = Driver(
        "A",
        WAVEFORM + WAVEFORM +
            "[Pullup Reference] 3.3 3.0 3.6\n[Rgnd] 50 40 60\n[Rac] 50 40 60\n[Cac] 1p 1p 1p\n[Model Spec]\n"
            "Vmeas 1.5 1.4 1.6\n[C Comp Corner]\nC_comp_pullup 3p 2p 4p\n[Driver Schedule]\nB 1n 2n NA NA\n"
            "C NA NA 3n 4n\n[Add Submodel]\nS Driving\n[ISSO_PU]\n-3.3 1m 1m 1m\n3.3 1m 1m 1m\n"
            "[Begin EMI Model]\nModel_emi_type Ferrite\nModel_Domain D\n[End EMI Model]\n"
            "[Algorithmic Model]\nExecutable Linux_gcc4.1_64 code.so r.ami\n[End Algorithmic Model]\n");
    const std::string rest =
        Driver("B") +
        Driver("C", "[External Model]\nLanguage VHDL-AMS\nCorner Typ f.vhd amp\nPorts D_drive "
                    "A_signal A_puref\nParameters x = 3\n[End External Model]\n") +
        Model("R", "[Receiver Thresholds]\nVth = 1.5\nVinh_ac = 0.2\nVinh_dc = 0.1\n[TTgnd] 1n 2n 3n\n"
                   "[GND Clamp]\n-1 -1m -1m -1m\n0 0 0 0\n") +
        "[Model Selector] SEL\nA first\nB second\n[Model] SER\nModel_type Series_switch\nC_comp 1p 1p 1p\n"
        "[Voltage Range] 3 3 3\n[On]\n[R Series] 8 6 12\n[Series MOSFET]\nVds = 1\n0 0 0 0\n1 1m 1m "
        "1m\n[Off]\n"
        "[R Series] 1M NA NA\n[Submodel] S\nSubmodel_type Dynamic_clamp\n[Submodel Spec]\nV_trigger_r 1.5 "
        "1.4 "
        "1.6\n[GND Clamp]\n-1 -1m -1m -1m\n0 0 0 0\n[GND Pulse Table]\n0 0 0 0\n1n -1 -1 -1\n"
        "[External Circuit] AMP\nLanguage SPICE\nCorner Typ f.sp amp\nPorts A B P1\nD_to_A D_drive P1 A 0 3 "
        "1n "
        "1n\n[End External Circuit]\n[Test Data] T\nTest_data_type Single_ended\nDriver_model A\nTest_load "
        "L\n"
        "[Rising Waveform Near]\n0 0 NA NA\n1n 1 NA NA\n[Test Load] L\nTest_load_type Single_ended\n"
        "Zo 50\nReceiver_model R\n" +
        PACKAGE;
    return Bare("[Copyright] c\n[Notes] n\n" + component + a + rest, "6.1");
}

// One file of each kind; what they name is written beside them.
std::vector<File> Files()
{
    WriteTestFile("r.ami", PARAMETERS);
    WriteTestFile("code.so", "");
    WriteTestFile("part.ibs", Header("5.1", "part.ibs") +
                                  Component("Chip", "1 a NC 1 1n 1p\n2 b GND 1 1n 1p\n") + "[End]\n");
    const std::string board =
        "[Begin Board Description] B\n[Manufacturer] Acme\n[Number Of Pins] 2\n[Pin List] signal_name\nA1 "
        "S1\n"
        "A2 GND\n[Path Description] P\nPin A1 Len=1 L=1n / Fork Len=1 C=1p / Node U1.1 Endfork Node U1.2\n"
        "[Reference Designator Map]\nU1 part.ibs Chip\n[End Board Description]\n";
    const std::string old =
        "[Component] U1\n[Manufacturer] Acme\n[Package]\nR_pkg 1m NA NA\nL_pkg 1n NA NA\nC_pkg 1p NA NA\n"
        "[Pin] signal_name model_name R_pin L_pin C_pin\n1 S1 M\n2 S2 GND\n[Model] M\nModel_type Input\n"
        "Vinl = 0.8\nVinh = 2.0\nC_comp 5p NA NA\n[Voltage Range] 5 4.5 5.5\n[GND_Clamp]\n-1 -1m NA NA\n0 0 "
        "NA NA\n";
    return {{"rich.ibs", IBIS_FILE_IBS, "ibs", RichIbs()},
            {"rich.pkg", IBIS_FILE_PKG, "pkg", Header("5.1", "rich.pkg") + PACKAGE + "[End]\n"},
            {"rich.ebd", IBIS_FILE_EBD, "ebd", Header("5.1", "rich.ebd") + board + "[End]\n"},
            {"rich.ami", IBIS_FILE_AMI, nullptr, PARAMETERS},
            {"old.ibs", IBIS_FILE_IBS, "ibs", Header("1.1", "old.ibs") + old + "[End]\n"}};
}

// Reads the file with failures as armed and gives the numbers of its messages.
std::vector<int> CodesOf(const File& file)
{
    std::vector<int> codes;
    talSetListener(
        [](void* context, const TalIbisFinding& finding) {
            static_cast<std::vector<int>*>(context)->push_back(finding.iCode);
        },
        &codes);
    codes.reserve(10000);
    MessagesOfFile(TestFolder() + "/" + file.name, file.type);
    talSetListener(nullptr, nullptr);
    return codes;
}

}  // namespace

TEST(Memory, EachAllocationOfAReadMayFail)
{
    const QuietTotals quiet;
    for (const File& file : Files()) {
        SCOPED_TRACE(file.name);
        WriteTestFile(file.name, file.text);
        for (const bool lasting : {false, true}) {
            long n = 0;
            for (bool struck = true; struck; ++n) {
                gCoreFailure.arm(n, lasting);
                const std::vector<int> codes = CodesOf(file);
                struck = gCoreFailure.disarm();
                const auto told = [](int code) { return code == 1906 || code == 1907; };
                EXPECT_EQ(struck, std::any_of(codes.begin(), codes.end(), told)) << "allocation " << n;
            }
            EXPECT_GT(n, 3);
        }
    }
}

TEST(Memory, AReadThatRanOutOfMemoryAnswersQueries)
{
    const QuietTotals quiet;
    const File file = Files().front();
    WriteTestFile(file.name, file.text);
    bool struck = true;
    for (long n = 0; struck; n += 7) {
        gCoreFailure.arm(n, false);
        CodesOf(file);
        struck = gCoreFailure.disarm();
        TalIbis* handle = nullptr;
        talReadIbisFile((TestFolder() + "/" + file.name).c_str(), file.type, &handle);
        if (handle != nullptr) {
            EXPECT_GT(AskEverything(*handle, file.pszWord, 1), 75U);
        }
    }
}

TEST(Memory, EachAllocationOfAQueryMayFail)
{
    const QuietTotals quiet;
    for (const File& file : Files()) {
        if (file.pszWord == nullptr || file.name == "old.ibs") {
            continue;  // these have no handle
        }
        const TalIbis* const handle = ReadHandle(file.text, file.name);
        ASSERT_NE(handle, nullptr);
        long failures = 0;
        AskEverything(*handle, file.pszWord, 1, [&](const std::function<void()>& call) {
            bool struck = true;
            for (long n = 0; struck; ++n) {
                gCoreFailure.arm(n, true);
                gNewFailure.arm(n, true);
                call();
                const bool core = gCoreFailure.disarm();
                struck = gNewFailure.disarm() || core;
                failures += struck ? 1 : 0;
            }
        });
        EXPECT_GT(failures, 100);
    }
}

TEST(Memory, NodesAreFoundWithoutMemoryForTheirIndex)
{
    TalIbisAMI_NodeDataList list;
    list.append(new TalIbisAMI_Node(1, "a"));
    list.append(new TalIbisAMI_Node(1, "b"));
    gNewFailure.arm(0, true);
    const TalIbisAMI_NodeData* const found = list.find("b");
    const TalIbisAMI_NodeData* const missing = list.find("c");
    EXPECT_TRUE(gNewFailure.disarm());
    EXPECT_EQ(found, list[1]);
    EXPECT_EQ(missing, nullptr);
}

TEST(Memory, EachAllocationOutsideTheParserMayFail)
{
    const QuietTotals quiet;
    for (const File& file : Files()) {
        SCOPED_TRACE(file.name);
        const std::string path = WriteTestFile(file.name, file.text);
        bool struck = true;
        for (long n = 0; struck; ++n) {
            TalIbisFileManager::destroyInstance();
            TalIbis* handle = nullptr;
            gNewFailure.arm(n, true);
            if (file.type == IBIS_FILE_AMI) {
                talReadParameterFile(path.c_str(), file.type);
            } else {
                talReadIbisFile(path.c_str(), file.type, &handle);
            }
            struck = gNewFailure.disarm();
        }
    }
}
