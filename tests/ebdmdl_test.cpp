#include "ibis/source/nuibis_ebdmdl.h"

#include "ibis/source/nuibis_fork.h"
#include "ibis/source/nuibis_ibis.h"
#include "tests/builders.h"

#include <array>
#include <cstdio>
#include <filesystem>

namespace
{

const std::string BEGIN = "[Begin Board Description] B\n[Manufacturer] Acme\n";
const std::string LIST = "[Number Of Pins] 2\n[Pin List] signal_name\nA1 S1\nA2 GND\n";
const std::string MAP = "[Reference Designator Map]\nU1 part.ibs Chip\n";
const std::string END_BOARD = "[End Board Description]\n";

// A board with these lines on the path of its pin A1. Its head is lines 4 and 5, the pins are lines 6 to 9,
// the path is line 10 and its data begin on line 11.
std::string Board(std::string_view path = "Pin A1 Len=1 L=1n C=1p / Node U1.1\n", std::string_view map = MAP)
{
    return BEGIN + LIST + "[Path Description] P\n" + std::string(path) + std::string(map) + END_BOARD;
}

std::string Ebd(std::string_view body, std::string_view version = "5.1", std::string_view name = "t.ebd")
{
    return Header(version, name) + std::string(body) + "[End]\n";
}

// Component Chip with pins 1 and 2, which the boards refer to.
void WritePart(std::string_view name = "part.ibs")
{
    WriteTestFile(name,
                  Header("5.1", name) + Component("Chip", "1 a NC 1 1n 1p\n2 b GND 1 1n 1p\n") + "[End]\n");
}

// What the totals print behind each nested read.
class Totals
{
  public:
    Totals() : mpFile(std::tmpfile()) { MSG_SetSummaryStream(mpFile); }
    ~Totals()
    {
        MSG_SetSummaryStream(nullptr);
        std::fclose(mpFile);
    }
    Totals(const Totals&) = delete;
    Totals& operator=(const Totals&) = delete;

    // How often "File Passed" or "File Failed" was printed.
    int count() const
    {
        std::rewind(mpFile);
        int files = 0;
        for (std::array<char, 256> line; std::fgets(line.data(), line.size(), mpFile) != nullptr;) {
            files += std::string_view(line.data()).starts_with("File ") ? 1 : 0;
        }
        return files;
    }

  private:
    std::FILE* mpFile;
};

Lines EbdMessages(std::string_view body, std::string_view version = "5.1")
{
    const Totals quiet;
    WritePart();
    return Unfolded(Messages(Ebd(body, version), "t.ebd"));
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

std::string Warning(int line)
{
    return Numbered("WARNING", line);
}

struct Case {
    std::string sText;
    Lines messages;
};

const EBDMDL& FirstBoard()
{
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return *root->pBoards;
}

// A path: P pin, N node, L section, X not connected, (...) branch.
std::string Elements(const ebdpathelement* element)
{
    std::string text;
    for (; element != nullptr; element = element->pNext) {
        static constexpr std::array<char, 5> kinds{'(', 'N', 'P', 'L', 'X'};
        text += kinds[element->eKind];
        if (element->eKind == EBDPATH_FORK) {
            text += Elements(FORK_Branch(*element)) + ")";
        }
    }
    return text;
}

std::string NoComponent(std::string_view component, std::string_view file)
{
    return "ERROR - Component '" + std::string(component) + "' not found in file '" + std::string(file) + "'";
}

std::string NoPin(std::string_view pin, std::string_view component, std::string_view file)
{
    return "ERROR - Pin '" + std::string(pin) + "' not found on Component '" + std::string(component) +
           "' in file '" + std::string(file) + "'";
}

}  // namespace

TEST(Board, CleanFilesAreSilent)
{
    for (const char* version : {"3.2", "4.2", "5.1", "6.0"}) {
        EXPECT_EQ(EbdMessages(Board(), version), Lines{}) << version;
    }
}

TEST(Board, Keywords)
{
    const std::string path = "[Path Description] P\nPin A1 Node U1.1\n";
    const std::string rest = path + MAP + END_BOARD;
    const Case table[] = {
        {BEGIN + "[Manufacturer] Other\n" + LIST + rest, {At(6) + "Duplicate 'Manufacturer' keyword."}},
        {"[Begin Board Description]\n" + LIST + rest,
         {At(4) + "Zero length value for keyword 'Define Ebd Model'.",
          "ERROR - Ebd Model keyword 'Begin_Board_Description' not found or blank.",
          "ERROR - Keyword 'Manufacturer' not found or blank for Ebd Model ''."}},
        {"[Begin Board Description] power\n[Manufacturer] Acme\n" + LIST + rest,
         {At(4) + "Illegal use of Reserved Word 'power'."}},
        {BEGIN + LIST + "[Number Of Pins] 3\n" + rest,
         {At(10) + "Duplicate [Number of Pins] keyword", At(10) + "Duplicate Number_of_Pins keyword."}},
        {BEGIN +
             "[Number Of Pins]\n[Number Of Pins] x\n[Number Of Pins] 0\n[Number Of Pins] 2 pins\n[Pin List] "
             "Signal_Name\nA1 S1\nA2 GND\n" +
             rest,
         {At(6) + "Blank Number_of_Pins value.", At(7) + "Duplicate [Number of Pins] keyword",
          At(7) + "Bad Number_of_Pins value.", At(8) + "Duplicate [Number of Pins] keyword",
          At(8) + "Number_of_Pins = 0.", At(9) + "Duplicate [Number of Pins] keyword",
          Warning(9) + "Suspicious Number_of_Pins value."}},
        {BEGIN + "[Number Of Pins] 2\n[Pin List]\nA1 S1\n[Pin List] signal_name\nA2 GND\n" + rest,
         {At(7) + "Unable to find 'signal_name' after [Pin List] keyword.",
          At(9) + "Duplicate [Pin List] keyword found."}},
        {BEGIN + "[Number Of Pins] 2\n[Pin List] signal model\nA1 S1\nA2 GND\n" + rest,
         {At(7) + "'signal_name' column header not found.", At(7) + "Unrecognized data after 'signal_name'"}},
    };
    for (const Case& row : table) {
        EXPECT_EQ(EbdMessages(row.sText), row.messages) << row.sText;
    }
    EXPECT_EQ(EbdMessages(BEGIN + LIST + path + "[Path Description] P\n[Path Description] P\n" + MAP +
                          "[Reference Designator Map] U2\nU2 part.ibs Chip\n[End Board Description] B\n" +
                          END_BOARD),
              (Lines{At(12) + "Duplicate Path_Description 'P'", At(13) + "Duplicate Path_Description 'P'",
                     At(13) + "Duplicate Path_Description 'P'",
                     At(16) + "Duplicate 'Reference_Designator_Map' keyword found.",
                     At(18) + "Extraneous data on 'End_Board_Description' line.",
                     At(19) + "Duplicate 'End_Board_Description' keyword found.",
                     "ERROR - Path Descriptor 'P' has no segments",
                     "ERROR - Path Descriptor 'P' has no segments"}));
    // Lines without a board, and data where none belong.
    EXPECT_EQ(EbdMessages("[Pin List] signal_name\nA1 S1\n" + BEGIN + "data\n" + LIST + rest),
              (Lines{At(4) + "Orphan Electrical Board Description keyword.", At(5) + "Orphan Data Line.",
                     At(8) + "Orphan Data Line."}));
    EXPECT_EQ(
        EbdMessages(BEGIN),
        (Lines{"ERROR - Number_of_Pins keyword not found or value bad for Ebd Model 'B'.",
               "ERROR - Required keyword Pin_List not found.", "ERROR - EBD Model 'B' has no paths defined",
               "ERROR - Required End_Board_Description keyword not found."}));
}

TEST(Board, PinList)
{
    const auto board = [](std::string_view count, std::string_view lines) {
        return BEGIN + "[Number Of Pins] " + std::string(count) + "\n[Pin List] signal_name\n" +
               std::string(lines) + "[Path Description] P\nPin A1\nNode U1.1\n" + MAP + END_BOARD;
    };
    const struct {
        std::string sCount;
        std::string sLines;
        Lines messages;
    } table[] = {
        {"2",
         "A1 S1 x\nA2\n",
         {At(8) + "Unexpected data after signal_name.", At(9) + "No signal_name found",
          "ERROR - Pin 'A2' was not referenced on any Electrical Path"}},
        {"2", "A1 S1\nA23456789 NC\n", {At(9) + "Pin name string too long. will be truncated."}},
        {"2",
         "A1 S1\nA2 power_and_the_rest_of_it\n",
         {At(9) + "signal_name too long. will be truncated.",
          "ERROR - Pin 'A2' was not referenced on any Electrical Path"}},
        {"2",
         "A1 S1\nA1 S2\nA3 S3\n",
         {At(9) + "Duplicate Pin <A1>.", At(10) + "More Pin Numbers names than Number of pins."}},
        {"3",
         "A1 S1\nA2 POWER_3V3\n",
         {"ERROR - Number of Pins <3> not the same as count of Pin Numbers names found <2>."}},
        {"4294967295",
         "",
         {"ERROR - No Pin Numbers names found.", "ERROR - Pin 'A1' used in Path 'P' not defined"}},
        {"0",
         "A1 S1\n",
         {At(6) + "Number_of_Pins = 0.", At(8) + "Number of Pins is zero, unable to add Pin Number.",
          "ERROR - Number_of_Pins keyword not found or value bad for Ebd Model 'B'.",
          "ERROR - Pin 'A1' used in Path 'P' not defined"}},
    };
    for (const auto& row : table) {
        EXPECT_EQ(EbdMessages(board(row.sCount, row.sLines)), row.messages) << row.sLines;
    }
}

// A pin stands on one path, unless its signal goes to a plane.
TEST(Board, UseOfPins)
{
    const auto use = [](std::string_view signal, std::string_view path) {
        return EbdMessages(BEGIN + "[Number Of Pins] 1\n[Pin List] signal_name\nA1 " + std::string(signal) +
                           "\n[Path Description] P\nPin A1 Fork Node U1.1 Endfork " + std::string(path) +
                           "\n[Path Description] R\nPin A1\n" + MAP + END_BOARD);
    };
    EXPECT_EQ(use("S1", ""), (Lines{"ERROR - Pin 'A1' was referenced 2 times on Electrical Paths"}));
    EXPECT_EQ(use("nc", "Fork Pin A1 Endfork"),
              (Lines{"ERROR - Pin 'A1' was referenced 3 times on Electrical Paths"}));
    EXPECT_EQ(use("GND_1", ""),
              (Lines{"WARNING - Pin 'A1' was referenced on Electrical Paths but is implicitly "
                     "connected to a power or a gnd plane"}));
    EXPECT_EQ(use("gnd", ""), (Lines{"ERROR - Pin 'A1' was referenced 2 times on Electrical Paths"}));
}

TEST(Board, PathGrammar)
{
    const std::string orphan = "Detected the start of an orphan ";
    const struct {
        std::string sPath;
        std::string_view sElements;
        Lines messages;
    } table[] = {
        {"Pin A1\nLen=1 L=1n\nC=1p / Len=0 L=1n /\nNode U1.1",
         "PLN",
         {At(12) + "Premature end of R/L/C section. Trailing '/' missing",
          At(13) + "Unknown token found: 'C'", At(13) + "Unexpected '=' found",
          At(13) + "Unknown token found: '1p'", At(13) + "Unexpected '/' found"}},
        {"Pin A1 Len=0 L=1n/Len=0 C=1p/ Fork Len=0 / Fork Node U1.1 Endfork NC Endfork Node U1.2 Endfork",
         "PLL(L(N)X)N",
         {At(11) + "Endfork found without enclosing Fork"}},
        {"Len=1 / Node U1.1\nNode U1.1 NC Fork Endfork\nPin\nNode\nFoo = /\nPin A1",
         "P",
         {At(11) + orphan + "R/L/C section", At(12) + "Detected an orphan 'Node' sub param",
          At(12) + orphan + "'NC'", At(12) + orphan + "'Fork'", At(12) + orphan + "'Endfork'",
          At(13) + "No Pin Name found after Pin sub param",
          At(14) + "No ref_designatior.pin found after Node sub param", At(15) + "Unknown token found: 'Foo'",
          At(15) + "Unexpected '=' found", At(15) + "Unexpected '/' found"}},
        {"Pin A1 Fork Endfork\nNode U1 Node Len.1 Node U/1.1 Node U=1.1.2 NC Node U1.1",
         "P()NNNNXN",
         {At(11) + "Empty Fork/Endfork found", At(12) + "Invalid Node specified. Missing '.'",
          Warning(12) + "Found a Node 'Len'. Possible syntax error",
          Warning(12) + "Found a Node 'U/1' containing '/'. Possible syntax error",
          Warning(12) + "Found a Node 'U=1' containing '='. Possible syntax error",
          "ERROR - Reference Designator 'Len' used in Path 'P' not defined",
          "ERROR - Reference Designator 'U/1' used in Path 'P' not defined",
          "ERROR - Reference Designator 'U=1' used in Path 'P' not defined",
          "ERROR - Path P or a branch does not terminate after NC",
          NoPin("", "Chip", TestFolder() + "/part.ibs")}},
        {"Pin A1 Pin Len Pin =/ Pin ABCDEFGHI",
         "PPPP",
         {Warning(11) + "Found a Pin Name 'Len'. Possible syntax error",
          Warning(11) + "Found a Pin Name '=/' containing '='. Possible syntax error",
          Warning(11) + "Found a Pin Name '=/' containing '/'. Possible syntax error",
          At(11) + "Pin_name string too long. will be truncated.",
          "ERROR - Pin 'Len' used in Path 'P' not defined", "ERROR - Pin '=/' used in Path 'P' not defined",
          "ERROR - Pin 'ABCDEFGH' used in Path 'P' not defined"}},
        {"Pin A1 Fork Node U1.1", "P(N)", {At(15) + "Detected previous unterminated Forks"}},
    };
    for (const auto& row : table) {
        EXPECT_EQ(EbdMessages(Board(row.sPath + "\n")), row.messages) << row.sPath;
        EXPECT_EQ(Elements(FirstBoard().pPaths->pHead), row.sElements) << row.sPath;
    }
    EXPECT_EQ(
        EbdMessages(BEGIN + LIST + "[Path Description] P\nPin A1 Fork\n[Path Description] GND\nPin A2\n" +
                    MAP + END_BOARD),
        (Lines{
            At(12) + "Detected previous unterminated Forks", At(12) + "Illegal use of Reserved Word 'GND'.",
            "WARNING - Pin 'A2' was referenced on Electrical Paths but is implicitly connected to a power or "
            "a gnd plane"}));
}

TEST(Board, ReferenceDesignatorMap)
{
    const std::string file44 = "f" + std::string(39, 'x') + ".ibs";
    const struct {
        std::string sLine;
        Lines messages;
        std::string sEntry;  // designator|file|component|flags
    } table[] = {
        {"U2 PART.ibs  My Chip v2", {}, "U2|PART.ibs|My Chip v2|11"},
        {"U2 " + file44 + " Chip", {}, "U2|" + file44 + "|Chip|11"},
        {"U2 x" + file44 + " Chip",
         {At(14) + "File name 'x" + file44 + "' too long. Will be truncated"},
         "U2|||00"},
        {"U1 part.ibs Chip", {At(14) + "Duplicate Reference Designator 'U1'"}, "U1|part.ibs|Chip|11"},
        {"U2345678901 part.ibs Chip",
         {At(14) + "Reference Designator name 'U2345678901' too long. Will be truncated"},
         "U234567890|part.ibs|Chip|11"},
        {"U2", {At(14) + "No file name found"}, "U2|||00"},
        {"U2 part.ibs", {At(14) + "No Component name found"}, "U2|part.ibs||10"},
        {"U2 part.ibs " + std::string(41, 'c'),
         {At(14) + "Component name '" + std::string(41, 'c') + "' too long. Will be truncated"},
         "U2|part.ibs|" + std::string(40, 'c') + "|11"},
        {"U2 part Chip", {At(14) + "Invalid file name 'part'. It has no extension"}, "U2|part|Chip|01"},
        {"U2 p.IBS Chip",
         {At(14) + "Unknown file extension'.IBS'. Should be '.ibs' or '.ebd'"},
         "U2|p.IBS|Chip|01"},
        {"U2 a.b/c.ibs Chip",
         {At(14) + "File_name 'a.b/c.ibs' contains a character '/' that is illegal for DOS.",
          At(14) + "File_name 'a.b/c.ibs' contains more than one period."},
         "U2|a.b/c.ibs|Chip|01"},
        {"U2 !#$%&'()-@^_{}~`.ibs Chip", {}, "U2|!#$%&'()-@^_{}~`.ibs|Chip|11"},
    };
    for (const auto& row : table) {
        EXPECT_EQ(EbdMessages(Board("Pin A1 Node U1.1\n",
                                    "[Reference Designator Map]\nU1 part.ibs Chip\n" + row.sLine + "\n")),
                  row.messages)
            << row.sLine;
        const EBDREFDES& entry = *FirstBoard().pRefDesMap;
        EXPECT_EQ(std::string(entry.szRefDes) + "|" + entry.szFile + "|" + entry.szComponent + "|" +
                      (entry.bFileOk ? "1" : "0") + (entry.bComponentOk ? "1" : "0"),
                  row.sEntry);
    }
}

// References within the file.
TEST(BoardReferences, SameFile)
{
    const auto map = [](std::string_view line) {
        return "[Reference Designator Map]\n" + std::string(line) + "\n";
    };
    const std::string nodes = "Pin A1 Node U1.A1\n[Path Description] R\nPin A2 Node U1.Z9 Node U1.Z9\n";
    const std::string plane = "WARNING - Pin 'A2' was referenced on Electrical Paths but is implicitly "
                              "connected to a power or a gnd plane";
    const std::string other = "[Begin Board Description] Sub\n[Manufacturer] Acme\n" + LIST +
                              "[Path Description] P\nPin A1\n" + END_BOARD;
    EXPECT_EQ(
        EbdMessages(Board(nodes, map("U1 t.ebd B"))),
        (Lines{plane, "ERROR - Reference Designator 'U1' refers to the Component 'B' itself being defined"}));
    EXPECT_EQ(EbdMessages(Board(nodes, map("U1 t.ebd Sub")) + other),
              (Lines{plane, NoPin("Z9", "Sub", "t.ebd"), NoPin("Z9", "Sub", "t.ebd")}));
    EXPECT_EQ(EbdMessages(Board(nodes, map("U1 t.ebd Sup"))),
              (Lines{plane, NoComponent("Sup", "t.ebd"), NoComponent("Sup", "t.ebd"),
                     NoComponent("Sup", "t.ebd")}));
    EXPECT_EQ(EbdMessages(other + other + other),
              Lines(3, "ERROR - Board Description 'Sub' is duplicated within the .ebd file."));
}

// The component file is read in a root of its own, with all that it has to say.
TEST(BoardReferences, ComponentFile)
{
    const std::string path = TestFolder() + "/part.ibs";
    const Totals totals;
    WritePart();
    const auto messages = [](std::string_view nodes, std::string_view file = "part.ibs") {
        return Unfolded(Messages(
            Ebd(Board("Pin A1 " + std::string(nodes) + "\n",
                      "[Reference Designator Map]\nU1 " + std::string(file) + " Chip\nU2 part.ibs Chap\n")),
            "t.ebd"));
    };
    // Newest first.
    EXPECT_EQ(messages("Node U1.1 Node U1.9 Node U2.1 Node U1.123456 Node U3.1"),
              (Lines{"ERROR - Reference Designator 'U3' used in Path 'P' not defined",
                     "ERROR - Length of Pin '123456' referenced for Component 'Chip' is too long",
                     NoComponent("Chap", path), NoPin("9", "Chip", path)}));
    EXPECT_EQ(totals.count(), 1);
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    EXPECT_EQ(root->pComponents, nullptr);
    EXPECT_EQ(std::string_view(root->pBoards->szName), "B");
    // Every file is read once, the one named last first.
    WriteTestFile("other.ibs", Header("5.1", "wrong.ibs") + "[End]\n");
    EXPECT_EQ(messages("Node U1.1 Node U1.2 Node U2.1 Node U2.2", "other.ibs"),
              (Lines{NoComponent("Chap", path), NoComponent("Chap", path),
                     At(2) + "File name opened 'other.ibs' not the same as File_name 'wrong.ibs'.",
                     "ERROR - Required keyword 'Component' not found.",
                     NoComponent("Chip", TestFolder() + "/other.ibs"),
                     NoComponent("Chip", TestFolder() + "/other.ibs")}));
    EXPECT_EQ(totals.count(), 3);
    // A file that is not there.
    EXPECT_EQ(messages("Node U1.1", "gone.ibs"),
              (Lines{"ERROR - Unable To Open File '" + TestFolder() + "/gone.ibs'",
                     "ERROR - Could not determine Version for file " + TestFolder() + "/gone.ibs"}));
    EXPECT_EQ(totals.count(), 4);
}

// A board of another file is looked up there, and what that file refers to is not followed.
TEST(BoardReferences, BoardFile)
{
    const Totals totals;
    const std::string path = TestFolder() + "/sub.ebd";
    const auto sub = [](std::string_view map) {
        std::string body =
            Board("Pin A1 Node U1.1\n", "[Reference Designator Map]\n" + std::string(map) + "\n");
        body.replace(body.find("] B"), 3, "] Sub");
        WriteTestFile("sub.ebd", Ebd(body, "5.1", "sub.ebd"));
    };
    const auto messages = [](std::string_view nodes) {
        return Unfolded(Messages(Ebd(Board("Pin A1 " + std::string(nodes) + "\n",
                                           "[Reference Designator Map]\nU1 sub.ebd Sub\nU2 sub.ebd Sup\n")),
                                 "t.ebd"));
    };
    sub("U1 gone.ibs Chip");
    EXPECT_EQ(messages("Node U1.A2 Node U1.A3 Node U2.A1"),
              (Lines{NoComponent("Sup", path), NoPin("A3", "Sub", path)}));
    sub("U1 t.ebd B\nU2 t.ebd Other\nU3 t.ebd B");
    const std::string back = "ERROR - Ebd file '" + path +
                             "' recursively references the component B in the calling Ebd file 't.ebd'";
    EXPECT_EQ(messages("Node U1.A1 Node U1.A2"), (Lines{back, back}));
    // A board file that refers to itself under its real name, and not by its [File Name].
    EXPECT_EQ(Unfolded(Messages(Header("5.1", "name.ebd") +
                                    Board("Pin A1 Node U1.A1\n", "[Reference Designator Map]\nU1 t.ebd B\n") +
                                    "[End]\n",
                                "t.ebd")),
              (Lines{At(2) + "File name opened 't.ebd' not the same as File_name 'name.ebd'.",
                     At(2) + "File name opened 't.ebd' not the same as File_name 'name.ebd'."}));
    EXPECT_EQ(totals.count(), 3);
}

// In the working directory there is no directory to put ahead of a name.
TEST(BoardReferences, FilesOfTheWorkingDirectory)
{
    const Totals quiet;
    WritePart();
    const std::string file = WriteTestFile(
        "t.ebd", Ebd(Board("Pin A1 Node U1.1\n", "[Reference Designator Map]\nU1 part.ibs Chap\n")));
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(TestFolder());
    CMN_SetDirectory("");
    EXPECT_EQ(MessagesOfFile("t.ebd", IBIS_FILE_EBD), Lines{NoComponent("Chap", "part.ibs")});
    std::filesystem::current_path(former);
}

// A host may name the folder with or without its slash.
TEST(BoardReferences, FolderGetsItsSlash)
{
    const Totals quiet;
    WritePart();
    ReadHandle(Ebd(Board("Pin A1 Node U1.1\n", "[Reference Designator Map]\nU1 part.ibs Chap\n")), "t.ebd");
    for (const char* end : {"", "/"}) {
        MSG_ClearContainer();
        CMN_SetDirectory(TestFolder() + end);
        ibis* root = nullptr;
        IBIS_GetCurrent(&root);
        EBDMDL_CheckFile(root->pBoards, false);
        EXPECT_EQ(StoredMessages(), Lines{NoComponent("Chap", TestFolder() + "/part.ibs")});
    }
}

TEST(Board, DeepForksNeedNoStack)
{
    std::string open;
    std::string close;
    for (int i = 0; i < 100000; ++i) {
        open += "Fork Node U1.1\n";
        close += "Endfork\n";
    }
    WritePart();
    const Totals quiet;
    EXPECT_EQ(Messages(Ebd(Board("Pin A1\n" + open + close)), "t.ebd"), Lines{});
    EXPECT_EQ(MessagesWith("Forks", Ebd(Board("Pin A1\n" + open)), "t.ebd").size(), 1U);
    TalIbisFileManager::destroyInstance();
}
