#include "ibis/source/nuibis_pkgmdl.h"

#include "ibis/source/nuibis_cmpnt.h"
#include "ibis/source/nuibis_fork.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mpins.h"
#include "ibis/source/nuibis_mtx.h"
#include "ibis/source/nuibis_pin.h"
#include "ibis/source/nuibis_pinmpg.h"
#include "ibis/source/nuibis_sect.h"
#include "tests/builders.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace
{

// The head of a model is lines 4 to 7.
std::string Head(std::string_view name = "Q")
{
    return "[Define Package Model] " + std::string(name) +
           "\n[Manufacturer] Acme\n[OEM] Acme\n[Description] Test\n";
}

const std::string PINS = "[Number Of Pins] 2\n[Pin Numbers]\n1\n2\n";
const std::string DATA = "[Model Data]\n"
                         "[Inductance Matrix] Full_matrix\n[Row] 1\n1n 0\n[Row] 2\n1n\n"
                         "[Capacitance Matrix] Full_matrix\n[Row] 1\n1p 0\n[Row] 2\n1p\n"
                         "[End Model Data]\n";
const std::string END_PACKAGE = "[End Package Model]\n";
// With sections; the pin lines begin on line 11.
const std::string PATHS = "[Number Of Sections] 2\n[Number Of Pins] 4\n[Pin Numbers]\n";

std::string PackageModel(std::string_view name, std::string_view pins = PINS)
{
    return Head(name) + std::string(pins) + DATA + END_PACKAGE;
}

std::string Pkg(std::string_view body, std::string_view version = "5.1")
{
    return Header(version, "t.pkg") + std::string(body) + "[End]\n";
}

Lines PkgMessages(std::string_view body, std::string_view version = "5.1")
{
    return Unfolded(Messages(Pkg(body, version), "t.pkg"));
}

std::string Numbered(std::string_view severity, int line)
{
    std::array<char, 40> text;
    std::snprintf(text.data(), text.size(), " (line %4d) - ", line);
    return std::string(severity) + text.data();
}

std::string At(int line)
{
    return Numbered("ERROR", line);
}

struct Case {
    std::string sBody;
    Lines messages;
};

template <std::size_t N> void ExpectAll(const Case (&table)[N])
{
    for (const Case& row : table) {
        EXPECT_EQ(PkgMessages(row.sBody), row.messages) << row.sBody;
    }
}

ibis* CurrentRoot()
{
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return root;
}

// The paths of the pins of the model read last: "L" is a section and "(...)" a branch; pins are parted by
// ";".
std::string Paths()
{
    std::string text;
    const PKGMDL& package = *CurrentRoot()->pPackageModels;
    const auto print = [&text](const auto& self, const PKGSECTNODE* node) -> void {
        for (; node != nullptr; node = node->pNext) {
            if (node->eKind == PKGSECT_SECTION) {
                text += 'L';
                continue;
            }
            text += '(';
            self(self, FORK_Branch(*node));
            text += ')';
        }
    };
    for (std::size_t i = 0; package.ppszPinNames != nullptr && package.ppszPinNames[i] != nullptr; ++i) {
        text += std::string(i == 0 ? "" : ";") + package.ppszPinNames[i] + ":";
        print(print, package.ppSections == nullptr ? nullptr : package.ppSections[i]);
    }
    return text;
}

// A component file of pins 1 and 2 that names a package model.
std::string NamingFile(std::string_view package, std::string_view extra = "",
                       std::string_view version = "5.1")
{
    return Bare(Component("U1", "1 VSS GND 1 1n 1p\n2 VDD POWER 1 1n 1p\n",
                          "[Package Model] " + std::string(package) + "\n" + std::string(extra)),
                version);
}

const std::string MISSING = "ERROR - Unable to find Package Model 'Q' for Component 'U1'";

// A folder beneath the test folder for component files with package files beside them.
std::string Folder(std::string_view name)
{
    const std::string path = TestFolder() + "/" + std::string(name);
    std::filesystem::remove_all(path);
    std::filesystem::create_directory(path);
    return path + "/";
}

void WriteFile(const std::string& path, std::string_view content)
{
    std::ofstream(path, std::ios::binary) << content;
}

// Reads a component file in the folder that names package model Q.
Lines ReadIn(const std::string& folder, std::string_view extra = "", std::string_view version = "5.1")
{
    WriteFile(folder + "t.ibs", NamingFile("Q", extra, version));
    return Unfolded(MessagesOfFile(folder + "t.ibs", IBIS_FILE_IBS));
}

std::string PkgFile(std::string_view name, std::string_view model, std::string_view version = "5.1")
{
    return Header(version, name) + std::string(model) + "[End]\n";
}

}  // namespace

TEST(PackageModel, CleanFilesAreSilent)
{
    for (const char* version : {"2.1", "3.2", "4.2", "5.1", "6.0", "6.1"}) {
        const std::string name = version[0] == '2' ? "t.pkg" : "pack.pkg";
        EXPECT_EQ(Messages(Header(version, name) + PackageModel("Q") + "[End]\n", name), Lines{}) << version;
        EXPECT_EQ(Messages(Bare(Component("U1", "1 a NC 1 1n 1p\n2 b NC 1 1n 1p\n", "[Package Model] Q\n") +
                                    PackageModel("Q"),
                                version)),
                  Lines{})
            << version;
    }
    EXPECT_EQ(PkgMessages(Head() + PATHS +
                          "A1 Len=0 L=1n / Len=1 L=1n C=1p /\n"
                          "A2 Len=0 L=1n /\nFork\nLen=0 C=1p /\nEndfork\nA3 Len=1\n\nA4 Len=0 /\n" +
                          END_PACKAGE),
              (Lines{At(16) + "Premature end of R/L/C section. Trailing '/' missing"}));
    EXPECT_EQ(Paths(), "A1:LL;A2:L(L);A3:;A4:L");
}

TEST(PackageModel, TextsAndCounts)
{
    const std::string rest = "[Pin Numbers]\n1\n2\n" + DATA + END_PACKAGE;
    const std::string noPins = "Number_of_Pins keyword not found or value bad for Package Model 'Q'.";
    const Case table[] = {
        {Head("Q") + "[OEM] Other\n[Manufacturer] Other\n" + PINS + DATA + END_PACKAGE,
         {At(8) + "Duplicate 'OEM' keyword.", At(9) + "Duplicate 'Manufacturer' keyword."}},
        {PackageModel("NC"), {At(4) + "Illegal use of Reserved Word 'NC'."}},
        {PackageModel(""),
         {At(4) + "Zero length value for keyword 'Define_Package_Model'.",
          "ERROR - Package Model keyword 'Define_Package_Model' not found or blank."}},
        {Head() + "[Number Of Pins] 2 pins\n" + rest,
         {Numbered("WARNING", 8) + "Suspicious Number_of_Pins value."}},
        {Head() + "[Number Of Pins] 2\n[Number Of Pins] 3\n" + rest,
         {At(9) + "Duplicate Number_of_Pins keyword."}},
        {Head() + "[Number Of Pins]\n[Number Of Pins] two\n[Number Of Pins] 0\n[Number Of Pins] 2\n" + rest,
         {At(8) + "Blank Number_of_Pins value.", At(9) + "Bad Number_of_Pins value.",
          At(10) + "Number_of_Pins = 0."}},
        {"[Define Package Model] Q\n" + PINS + DATA + END_PACKAGE,
         {"ERROR - Keyword 'Manufacturer' not found or blank for Package Model 'Q'.",
          "ERROR - OEM keyword not found for Package Model 'Q'.",
          "ERROR - Description keyword not found for Package Model 'Q'."}},
        {Head() + "[Pin Numbers]\n[Model Data]\n[End Model Data]\n" + END_PACKAGE,
         {"ERROR - " + noPins, "ERROR - Inductance matrix not found for Package Model 'Q'.",
          "ERROR - Capacitance matrix not found for Package Model 'Q'."}},
        {Head() +
             "[Number Of Sections]\n[Number Of Sections] x\n[Number Of Sections] 0\n[Number Of Sections] 1 "
             "a\n"
             "[Number Of Sections] 1\n[Number Of Pins] 1\n[Pin Numbers]\nA Len=0 /\n" +
             END_PACKAGE,
         {At(8) + "Blank Number_of_Sections value.", At(9) + "Bad Number_of_Sections value.",
          At(10) + "Number_of_Sections = 0.",
          Numbered("WARNING", 11) + "Suspicious Number_of_Sections value.",
          At(12) + "Duplicate Number_of_Sections keyword."}},
    };
    ExpectAll(table);
}

TEST(PackageModel, KeywordsInTheWrongPlace)
{
    const Case table[] = {
        {Head() + "[Number Of Pins] 2\n[Pin Numbers] 1\n1\n[Pin Numbers]\n2\n" + DATA + END_PACKAGE +
             END_PACKAGE,
         {At(9) + "Extraneous data on 'Pin_Numbers' line.", At(11) + "Duplicate 'Pin_Numbers' keyword found.",
          At(26) + "Duplicate 'End_Package_Model' keyword found."}},
        {Head() + "1\n" + PINS + "[Row] 1\n[Bandwidth] 1\n[Bandwidth] 1\n" + DATA + "[Row] 1\n1\n" +
             END_PACKAGE,
         {At(8) + "Orphan Data line.", At(13) + "Row keyword in wrong location.",
          At(14) + "Bandwidth keyword in wrong location.", At(15) + "Multiple Bandwidth keywords.",
          At(28) + "Row keyword in wrong location.", At(29) + "Orphan Data line."}},
        {"[OEM] Acme\n1\n" + PackageModel("Q"),
         {At(4) + "Orphan Package Model keyword.", At(5) + "Orphan Data Line."}},
        // Another maker's [Manufacturer] behind the pins belongs to a component and ends the model.
        {Head() + PINS + "[Manufacturer] Acme\n[Model Data]\n" + END_PACKAGE,
         {"ERROR - Required Model_Data keyword not found for package Q.",
          "ERROR - Inductance matrix not found for Package Model 'Q'.",
          "ERROR - Capacitance matrix not found for Package Model 'Q'.",
          "ERROR - Required End_Model_Data keyword not found for package Q.",
          "ERROR - Required End_Package_Model keyword not found.", At(13) + "Orphan Package Model keyword.",
          At(14) + "Orphan Package Model keyword."}},
        {Head() + PATHS +
             "A Len=0 /\nB Len=0 /\nE Len=0 /\nD Len=0 /\n[Model Data]\n"
             "[Resistance Matrix] Sparse_matrix\n[Inductance Matrix] Sparse_matrix\n"
             "[Capacitance Matrix] Sparse_matrix\n[End Model Data]\n",
         {At(17) + "Expected 4 Rows, found 0 for Matrix ending previous to this line.",
          At(18) + "Expected 4 Rows, found 0 for Matrix ending previous to this line.",
          At(19) + "Expected 4 Rows, found 0 for Matrix ending previous to this line.",
          "ERROR - Model_Data cannot be specified when Number_Of_Sections is specified for package Q.",
          "ERROR - Resistance_Matrix cannot be specified when Number_Of_Sections is specified for Package "
          "Model Q.",
          "ERROR - Inductance_Matrix cannot be specified when Number_Of_Sections is specified for Package "
          "Model Q.",
          "ERROR - Capacitance_Matrix cannot be specified when Number_Of_Sections is specified for Package "
          "Model Q.",
          "ERROR - End_Model_Data cannot be specified when Number_Of_Sections is specified for package Q.",
          "ERROR - Required End_Package_Model keyword not found."}},
    };
    ExpectAll(table);
    EXPECT_EQ(PkgMessages(Head() + "[Number Of Sections] 1\n" + PINS + DATA + END_PACKAGE, "2.1"),
              (Lines{At(8) + "Invalid Keyword: Number_Of_Sections"}));
    EXPECT_EQ(PkgMessages(Head() + PINS + "[Merged Pins] 1\n" + DATA + END_PACKAGE, "6.1"),
              (Lines{At(12) + "Invalid Keyword: Merged_Pins"}));
}

TEST(PackageModel, PinNames)
{
    const Case table[] = {
        {PackageModel("Q", "[Number Of Pins] 2\n[Pin Numbers]\n1\n2\n1\n"),
         {At(12) + "More Pin Numbers names than Number of pins."}},
        {Head() + "[Number Of Pins] 3\n[Pin Numbers]\n1\n2\n1\n[Model Data]\n[End Model Data]\n" +
             END_PACKAGE,
         {At(12) + "Duplicate Pin <1>.", "ERROR - Inductance matrix not found for Package Model 'Q'.",
          "ERROR - Capacitance matrix not found for Package Model 'Q'."}},
        {Head() + "[Number Of Pins] 3\n[Pin Numbers]\n123456\n2 3\n[Model Data]\n[End Model Data]\n" +
             END_PACKAGE,
         {At(10) + "Pin Numbers name string too long. will be truncated.",
          "ERROR - Number of Pins <3> not the same as count of Pin Numbers names found <2> for Package Model "
          "'Q'.",
          "ERROR - Inductance matrix not found for Package Model 'Q'.",
          "ERROR - Capacitance matrix not found for Package Model 'Q'."}},
        {Head() +
             "[Pin Numbers]\n1\n[Number Of Pins] 4294967295\n[Pin Numbers]\n[Model Data]\n[End Model "
             "Data]\n" +
             END_PACKAGE,
         {At(9) + "Number of Pins is zero, unable to add Pin Number.",
          At(11) + "Duplicate 'Pin_Numbers' keyword found.",
          "ERROR - No Pin Numbers names found for Package Model 'Q'.",
          "ERROR - Inductance matrix not found for Package Model 'Q'.",
          "ERROR - Capacitance matrix not found for Package Model 'Q'."}},
        {Head() + "[Number Of Pins] 2\n[Model Data]\n[End Model Data]\n" + END_PACKAGE,
         {"ERROR - Required keyword Pin_Numbers not found for Package Model 'Q'.",
          "ERROR - Inductance matrix not found for Package Model 'Q'.",
          "ERROR - Capacitance matrix not found for Package Model 'Q'."}},
    };
    ExpectAll(table);
}

TEST(PackageModel, PinPaths)
{
    const std::string count = "ERROR - Number of Pins <4> not the same as count of Pin Numbers names found <";
    const std::string of = "> for Package Model 'Q'.";
    const struct {
        std::string sLines;
        Lines messages;
        std::string_view sPaths;
    } table[] = {
        {"A\nLen=0 /\nFork\nEndfork\nB Len=0 /\nE Len=0 /\nD Len=0 /\n",
         {At(11) + "No Sections were defined for this pin even though [Number of Sections] was defined.",
          At(12) + "Detected the start of an orphan R/L/C section", At(14) + "Empty Fork/Endfork found"},
         "A:();B:L;E:L;D:L"},
        {"A Len=0 /\nLen \t= 1 L=1 C=1 / Len=0 /\nLenny Len=0 /\nLen Len=0 /\nFork/ Len=0 /\n",
         {Numbered("WARNING", 14) + "Found a Pin Name 'Len'. Possible syntax error",
          Numbered("WARNING", 15) + "Found a Pin Name 'Fork/' containing '/'. Possible syntax error",
          "ERROR - Pin 'A' has 3 sections. This is greater than the Number of Sections 2 specified"},
         "A:LLL;Lenny:L;Len:L;Fork/:L"},
        {"Fork\nEndfork\nLen=1 /\nEndfork\nA=1 Len=0 /\nEndfork\nR Len=0 /\nABCDEF Len=0 /\nFork /\n",
         {At(11) + "Detected the start of an orphan 'Fork'",
          At(12) + "Detected the start of an orphan 'Endfork'",
          At(13) + "Detected the start of an orphan R/L/C section",
          At(14) + "Detected the start of an orphan 'Endfork'",
          Numbered("WARNING", 15) + "Found a Pin Name 'A=1' containing '='. Possible syntax error",
          At(16) + "Endfork found without enclosing Fork",
          Numbered("WARNING", 17) + "Found a Pin Name 'R'. Possible syntax error",
          At(18) + "Pin Numbers name string too long. will be truncated.",
          Numbered("WARNING", 19) + "Found a Pin Name 'Fork'. Possible syntax error",
          At(19) + "Empty R/L/C section found"},
         "A=1:L;R:L;ABCDE:L;Fork:L"},
        {"A Len=0 /\nFork\nFork\nLen=0 /\nEndfork\nLen=0 /\nB Len=0 /\nFork\nLen=0 /\n",
         {At(13) + "Cannot Nest Forks",
          At(17) + "A new Pin B has been defined before terminating a previous Fork with the corresponding "
                   "Endfork",
          count + "2" + of, "ERROR - Some Fork sub parameters were not terminated with Endfork",
          "ERROR - Pin 'A' has 3 sections. This is greater than the Number of Sections 2 specified"},
         "A:L((L)L);B:L(L)"},
        {"A Len=0 /\nA Len=0 /\nB Len=0 /\nE Len=0 /\nD Len=0 /\nFork\nLen=0 /\n",
         {At(12) + "Duplicate Pin <A>.", At(15) + "More Pin Numbers names than Number of pins.",
          At(16) + "Detected the start of an orphan 'Fork'",
          At(17) + "Detected the start of an orphan R/L/C section"},
         "A:L;A:L;B:L;E:L"},
    };
    for (const auto& row : table) {
        EXPECT_EQ(PkgMessages(Head() + PATHS + row.sLines + END_PACKAGE), row.messages) << row.sLines;
        EXPECT_EQ(Paths(), row.sPaths);
    }
    // A list that was begun without paths.
    EXPECT_EQ(PkgMessages(Head() + PINS + "[Number Of Sections] 1\n[Pin Numbers]\n1 Len=0 /\n2 Len=0 /\n" +
                          END_PACKAGE),
              (Lines{At(12) + "Number of Sections should be specified before Pin Numbers",
                     At(13) + "Duplicate 'Pin_Numbers' keyword found."}));
    EXPECT_EQ(Paths(), "1:L;2:L");
    // A matrix that is there by then keeps its rows, whose pins may stand elsewhere now.
    EXPECT_EQ(PkgMessages(Head() + PINS + "[Inductance Matrix] Sparse_matrix\n[Row] 1\n1 1n\n" +
                          "[Number Of Sections] 1\n[Pin Numbers]\n2 Len=0 /\n1 Len=0 /\n[Row] 1\n1 1n\n" +
                          END_PACKAGE),
              (Lines{At(15) + "Number of Sections should be specified before Pin Numbers",
                     At(16) + "Duplicate 'Pin_Numbers' keyword found.", At(19) + "Repeated ROW <1>.",
                     "ERROR - Inductance_Matrix cannot be specified when Number_Of_Sections is specified for "
                     "Package Model Q."}));
}

TEST(PackageModel, DeepForksNeedNoStack)
{
    std::string path = "A Len=0 /\n";
    std::string close;
    for (int i = 0; i < 100000; ++i) {
        path += "Fork\n";
        close += "Endfork\n";
    }
    const std::string body = Head() + "[Number Of Sections] 2\n[Number Of Pins] 1\n[Pin Numbers]\n" + path;
    EXPECT_EQ(MessagesWith("Nest", Pkg(body + "Len=0 /\n" + close + END_PACKAGE), "t.pkg").size(), 99999U);
    EXPECT_EQ(MessagesWith("Endfork", Pkg(body + END_PACKAGE), "t.pkg").size(), 1U);
    TalIbisFileManager::destroyInstance();
}

TEST(PackageModel, MergedPins)
{
    EXPECT_EQ(IBIS_Create(), 1);
    const auto keyword = [](nuibis_keyword code, std::string_view text) {
        PKGMDL_Line(LINE_KEYWORD, code, text);
    };
    const auto data = [](std::string_view text) { PKGMDL_Line(LINE_DATA, KEY_MERGED_PINS, text); };
    EXPECT_EQ(Unfolded(MessagesOf([&] {
                  PKGMDL_Init();
                  keyword(KEY_DEFINE_PACKAGE_MODEL, "[Define Package Model] Q");
                  keyword(KEY_NUMBER_OF_PINS, "[Number Of Pins] 2");
                  keyword(KEY_MERGED_PINS, "[Merged Pins] 1");
                  keyword(KEY_PIN_NUMBERS, "[Pin Numbers]");
                  PKGMDL_Line(LINE_DATA, KEY_PIN_NUMBERS, "1");
                  PKGMDL_Line(LINE_DATA, KEY_PIN_NUMBERS, "2");
                  keyword(KEY_MERGED_PINS, "[Merged Pins] 1");
                  data("3 4 5");
                  data("6 7 8 9 10 11");
                  keyword(KEY_MERGED_PINS, "[Merged Pins]");
                  PKGMDL_Leave(KEY_MERGED_PINS);
                  keyword(KEY_MERGED_PINS, "[Merged Pins] 222222 4");
                  data("4 2 4");
                  PKGMDL_Leave(KEY_MODEL_DATA);
              })),
              (Lines{"ERROR (line    0) - [Merged Pins] should be defined after [Pin Numbers] and before "
                     "[Model Data]",
                     "ERROR (line    0) - [Merged Pins] section already defined for Pin 1",
                     "ERROR (line    0) - Unable to parse [Merged Pins] Pin not found",
                     "ERROR - No connecting pins found for [Merged Pins] defined on line 0",
                     "ERROR (line    0) - Incorrect Number of Line Items (2) For Merged Pins: Expecting 1",
                     "ERROR (line    0) - [Merged Pins] Pin Name 222222 over 5 characters long",
                     "ERROR (line    0) - [Merged Pins] Pin 22222 not found in the [Pin Numbers] section",
                     "ERROR (line    0) - Pin 4 has already been connected to a Merging Pin 1",
                     "ERROR (line    0) - Pin 4 has already been connected to a Merging Pin 1",
                     "ERROR (line    0) - Pin 4 has already been connected to a Merging Pin 22222",
                     "ERROR - [Merged Pins] connecting Pin 2 must not be defined in [Pin Numbers] section"}));
    std::string walk;
    const char* pin = nullptr;
    bool merging = false;
    PKGMDL* const list = CurrentRoot()->pPackageModels;
    for (bool first = true; PKGMDL_GetNextMergedPin(list, "Q", first, &pin, &merging); first = false) {
        walk += (merging ? "|" : " ") + std::string(pin);
    }
    EXPECT_EQ(walk, "|1|1 3 4 5 6 7 8 9 10 11||22222 4 2 4");
    IBIS_Free(CurrentRoot());
}

// The pins that a package merges are supply or ground pins of the component, all on one bus.
TEST(PackageModel, MergedPinsOfAComponent)
{
    Messages(Bare(Component("U1", "1 a POWER 1 1n 1p\n2 b POWER 1 1n 1p\n3 c GND 1 1n 1p\n4 d NC 1 1n 1p\n",
                            "[Package Model] Q\n[Pin Mapping] pulldown_ref pullup_ref\n1 NC B1\n2 NC B2\n3 "
                            "B3 NC\n4 NC NC\n") +
                  PackageModel("Q")));
    const CMPNT& component = *CurrentRoot()->pComponents;
    PKGMDL* const package = CurrentRoot()->pPackageModels;
    const auto merge = [&](std::string_view merging, std::string_view connecting) {
        MPIN_Free(package->pMergedPins);
        package->pMergedPins = nullptr;
        MPIN_New(merging, package->pMergedPins);
        MPIN_AddPins(package->pMergedPins, connecting);
        return Unfolded(
            MessagesOf([&] { PIN_CheckMerged(component.pPins, component.pPinMappings, "U1", "Q"); }));
    };
    const std::string in = " referenced in the [Merged Pins] section of Package Q ";
    EXPECT_EQ(merge("1", "1"), Lines{});
    EXPECT_EQ(merge("1", "2 3 4 9"),
              (Lines{"ERROR - [Component] U1 with [Package Model] Q has pin and pad mismatch because [Merged "
                     "Pins] pins "
                     "(1, 2) point to different buses (B1,B2) in [Pin Mapping]",
                     "ERROR - Component U1: GND Pin 3" + in + "is merged with a POWER Pin 1",
                     "ERROR - Pin 4" + in + "is not defined as POWER or GND in Component U1 Pin list",
                     "ERROR - Pin 9" + in + "is not defined in Component U1 Pin list"}));
    EXPECT_EQ(merge("4", "1 3"),
              (Lines{"ERROR - Pin 4" + in + "is not defined as POWER or GND in Component U1 Pin list"}));
    EXPECT_EQ(Unfolded(MessagesOf([&] { PIN_CheckMerged(component.pPins, nullptr, "U1", "Q"); })).front(),
              "ERROR - [Package Model] Q with [Merged Pins] requires [Pin Mapping] in [Component] U1");
}

TEST(PackageModel, PinsOfThePackageAreInTheComponent)
{
    const std::string alternates = "[Alternate Package Models]\nR\nQ\n[End Alternate Package Models]\n";
    const std::string models =
        PackageModel("Q") + PackageModel("R", "[Number Of Pins] 2\n[Pin Numbers]\n1\nX\n");
    const Lines missing = MessagesWith("Pin 'X'", NamingFile("Q", alternates + models));
    EXPECT_EQ(Unfolded(missing),
              (Lines{"ERROR - Pin 'X' found in Package_Model 'R' Pin_Numbers list not found in "
                     "Component 'U1' Pin list."}));
}

TEST(PackageModel, RepeatedNamesAreToldInPairs)
{
    EXPECT_EQ(Unfolded(Messages(NamingFile("Q", PackageModel("Q") + PackageModel("R") + PackageModel("Q") +
                                                    PackageModel("Q")))),
              Lines(3, "ERROR - Define_Package_Model 'Q' is duplicated within the .ibs file."));
}

TEST(PackageSearch, ReadsTheFilesThatDefineTheModel)
{
    const std::string folder = Folder("search");
    EXPECT_EQ(ReadIn(folder), Lines{MISSING});
    WriteFile(folder + "Q.PKG", PkgFile("q.pkg", PackageModel("Q")));
    // None of these is read: another model, a hidden file, a folder, other extensions.
    WriteFile(folder + "other.pkg", "[Define Package Model] R\n");
    WriteFile(folder + ".hidden.pkg", PackageModel("Q"));
    WriteFile(folder + "pkg", PackageModel("Q"));
    WriteFile(folder + "q.pkg.txt", PackageModel("Q"));
    std::filesystem::create_directory(folder + "folder.pkg");
    EXPECT_EQ(ReadIn(folder), Lines{});
    // A model of the file itself needs no search.
    WriteFile(folder + "bad.pkg", "[define package_model]   Q\n");
    EXPECT_EQ(ReadIn(folder, PackageModel("Q")), Lines{});
    EXPECT_EQ(ReadIn(folder), (Lines{"ERROR - Could not determine Version for file bad.pkg"}));
}

TEST(PackageSearch, ReadsEveryFileInTheOrderOfTheNames)
{
    const std::string folder = Folder("order");
    for (const char* name : {"b.pkg", "a.pkg", "c.pkg"}) {
        WriteFile(folder + name, PkgFile(std::string("x") + name, PackageModel("Q")));
    }
    const auto opened = [](const std::string& name) {
        return At(2) + "File name opened '" + name + "' not the same as File_name 'x" + name + "'.";
    };
    const std::string twice = "ERROR - Define_Package_Model 'Q' is duplicated within the .ibs file.";
    EXPECT_EQ(ReadIn(folder),
              (Lines{opened("a.pkg"), opened("b.pkg"), opened("c.pkg"), twice, twice, twice}));
}

// The beginning of a name is taken for the name: the file is read, and the model is missing all the same. An
// alternate is searched for once more behind the other checks.
TEST(PackageSearch, LongerNames)
{
    const std::string folder = Folder("longer");
    WriteFile(folder + "q.pkg", PkgFile("q.pkg", PackageModel("Q100")));
    const std::string twice = "ERROR - Define_Package_Model 'Q100' is duplicated within the .ibs file.";
    EXPECT_EQ(ReadIn(folder), Lines{MISSING});
    EXPECT_EQ(ReadIn(folder, "[Alternate Package Models]\nQ\nQ10\n[End Alternate Package Models]\n"),
              (Lines{MISSING, MISSING, "ERROR - Unable to find Package Model 'Q10' for Component 'U1'",
                     MISSING, "ERROR - Unable to find Package Model 'Q10' for Component 'U1'", twice, twice,
                     twice, twice, twice, twice, twice, twice, twice, twice}));
}

// A package file has a version of its own, which is in force until the next file tells another one: a file of
// version 6.1 leaves the next one without its [IBIS Ver].
TEST(PackageSearch, TheComponentFileKeepsItsVersionAndName)
{
    const std::string folder = Folder("version");
    WriteFile(folder + "a.pkg", PkgFile("a.pkg", PackageModel("Q"), "6.1"));
    EXPECT_EQ(ReadIn(folder, "", "4.2"), Lines{});
    EXPECT_EQ(geIbisVersion, IBIS_VER_4);
    EXPECT_EQ(PARSE_GetFileName(), "t.ibs");
    EXPECT_EQ(CMN_GetDirectory(), folder);
    WriteFile(folder + "b.pkg", PkgFile("b.pkg", PackageModel("Q"), "6.1"));
    const Lines lines = ReadIn(folder, "", "4.2");
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), At(1) + "Invalid Keyword: IBIS_Ver");
}

// File and folder names are data: whatever they hold, the file is found and nothing runs.
TEST(PackageSearch, HostileNames)
{
    const std::string names[] = {
        "a b",           "quote'",     "double\"",   "semi;touch pwned;", "$(touch pwned)",
        "`touch pwned`", "line\nfeed", "-rf *",      "a & touch pwned",   "> pwned",
        "%s%n",          "..",         "caf\xc3\xa9"};
    for (const std::string& name : names) {
        const std::string folder = Folder(name == ".." ? "two dots" : name);
        WriteFile(folder + name + ".pkg", PkgFile("q.pkg", PackageModel("Q")));
        const bool hidden = name.starts_with('.');
        Lines lines = ReadIn(folder);
        std::erase_if(lines, [](const std::string& line) {
            return line.find("File name opened") != std::string::npos;
        });
        EXPECT_EQ(lines, hidden ? Lines{MISSING} : Lines{}) << name;
        EXPECT_FALSE(std::filesystem::exists("pwned") || std::filesystem::exists(folder + "pwned")) << name;
        std::filesystem::remove_all(folder);
    }
}
