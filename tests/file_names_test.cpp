// Names of other files come from strangers. They are looked for where the rules of their keyword tell, most
// often beside the file that has them, and are data whatever they hold: nothing runs.

#include "ibis/source/nuibis_extblock.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/builders.h"

#include <filesystem>

namespace
{

namespace fs = std::filesystem;

// deck/ has the file that is read; what stands above it would be told if it was read.
std::string Deck()
{
    const std::string above = TestFolder() + "/names/";
    fs::create_directories(above + "deck");
    WriteTestFile("names/secret.ami", "(secret");
    for (const char* name : {"secret.ibs", "secret.ebd", "secret.pkg"}) {
        WriteTestFile("names/" + std::string(name), "[Secret]\n[Define Package Model] ../secret\n");
    }
    WriteTestFile("names/deck/code.so", "");
    WriteTestFile("names/deck/good.ami",
                  "(r (Reserved_Parameters (AMI_Version (Usage Info)(Type String)(Value "
                  "\"6.1\")))(Model_Specific (p (Usage Info)(Type Float)(Value 1))))");
    return above + "deck/";
}

std::string Executable(const std::string& code, const std::string& parameters)
{
    return Ibs(Model("M", "[Algorithmic Model]\nExecutable Linux_gcc_64 " + code + " " + parameters +
                              "\n[End Algorithmic Model]\n"),
               "6.1");
}

std::string External(const std::string& corner, const std::string& reference)
{
    return Ibs(
        Model("M", "[External Model]\nLanguage VHDL-AMS\nCorner Typ " + corner +
                       " c\nParameters x = " + reference +
                       "(r(Model_Specific(p)))\nPorts A_signal D_receive A_gnd\n[End External Model]\n"),
        "6.1");
}

struct Keyword {
    const char* pszName;
    const char* pszFile;  // of the file that holds the name
    std::string (*file)(const std::string& name);
};

const Keyword CODE{"code file", "t.ibs",
                   [](const std::string& name) { return Executable(name, "good.ami"); }};
const Keyword PARAMETERS{"parameter file", "t.ibs",
                         [](const std::string& name) { return Executable("code.so", name); }};
const Keyword REFERENCE{"reference to a parameter", "t.ibs",
                        [](const std::string& name) { return External("f", name); }};
const Keyword CORNER{"circuit of a corner", "t.ibs",
                     [](const std::string& name) { return External(name, "good.ami"); }};
const Keyword PACKAGE{"package", "t.ibs", [](const std::string& name) {
                          return Ibs(Model("M"), "5.1", "[Package Model] " + name + "\n");
                      }};
const Keyword OWN{"own name", "t.ibs", [](const std::string& name) {
                      return Edit(Ibs(Model("M")), {{"t.ibs", name}});
                  }};
const Keyword PART{"part of a board", "t.ebd", [](const std::string& name) {
                       return Header("5.1", "t.ebd") +
                              "[Begin Board Description] B\n[Manufacturer] Acme\n[Number Of Pins] 1\n"
                              "[Pin List] signal_name\nA1 S1\n[Path Description] P\nPin A1 Node U1.1\n"
                              "[Reference Designator Map]\nU1 " +
                              name + " Chip\n[End Board Description]\n[End]\n";
                   }};

Lines Read(const Keyword& keyword, const std::string& name)
{
    const std::string path = WriteTestFile("names/deck/" + std::string(keyword.pszFile), keyword.file(name));
    const bool board = path.ends_with(".ebd");
    Lines lines = Unfolded(MessagesOfFile(path, board ? IBIS_FILE_EBD : IBIS_FILE_IBS));
    for (std::string& line : lines) {
        if (const std::size_t at = line.find(" (line "); at != line.npos) {
            line.erase(at, line.find(')', at) + 1 - at);
        }
        for (std::size_t at; (at = line.find(TestFolder())) != line.npos;) {
            line.replace(at, TestFolder().size(), "~");
        }
    }
    return lines;
}

const EXTCORNER& Corner()
{
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return *root->pModels->pExternalModel->pTyp;
}

}  // namespace

TEST(FileNames, AreLookedForWhereTheRulesTell)
{
    const QuietTotals quiet;
    const std::string deck = Deck();
    const std::string x2000(2000, 'x');
    const std::string x500(500, 'x');
    const std::string wide = "ERROR - Exceeds 120 chararacters.";
    const auto ignored = [](const std::string& name) {
        return "ERROR - Referenced parameter 'p' not found in file '" + name + "'. Parameter 'x' Ignored.";
    };
    const auto character = [](const std::string& name, char c) {
        return "ERROR - File_name '" + name + "' contains a character '" + c + "' that is illegal for DOS.";
    };
    const auto periods = [](const std::string& name) {
        return "ERROR - File_name '" + name + "' contains more than one period.";
    };
    const auto noPackage = [](const std::string& name) {
        return "ERROR - Unable to find Package Model '" + name + "' for Component 'U1'";
    };
    const auto notOwn = [](const std::string& name) {
        return "ERROR - File name opened 't.ibs' not the same as File_name '" + name + "'.";
    };
    const struct {
        const Keyword& keyword;
        std::string sName;
        Lines messages;
    } rows[] = {
        // Whether a code file exists is all that is asked, from the folder of the file on.
        {CODE, "../secret.ibs", {}},
        {CODE, "/etc/passwd", {"ERROR - Code file /etc/passwd not found."}},
        {CODE,
         x2000,
         {wide, "ERROR - Incorrect Number of Line Items (3) For Algorithmic Model: Expecting 4",
          "ERROR - Empty [Algorithmic Model] defined for Model M"}},
        // A parameter file has to exist from that folder on, and is then read from the working directory if
        // its
        // name has a folder of its own.
        {PARAMETERS, "../secret.ami", {"ERROR - Unable To Open File '../secret.ami'"}},
        {PARAMETERS, "/dev/zero.ami", {"ERROR - Parameter file /dev/zero.ami not found."}},
        {PARAMETERS,
         x500 + ".ami",
         {wide, "ERROR - Filename too long " + x500 + ".ami",
          "ERROR - Parameter file " + x500.substr(0, 44) + " not found."}},
        {REFERENCE,
         "../secret.ami",
         {"ERROR - Unable To Open File '../secret.ami'", ignored("../secret.ami")}},
        {REFERENCE, "/etc/passwd", {"ERROR - Parameter file /etc/passwd not found.", ignored("/etc/passwd")}},
        {REFERENCE, "/dev/zero", {"ERROR - Parameter file /dev/zero not found.", ignored("/dev/zero")}},
        {REFERENCE,
         "../secret.ibs",
         {"ERROR - Parameter file name ../secret.ibs invalid. '.ibs', '.ebd' or '.pkg' extensions are not "
          "allowed",
          ignored("../secret.ibs")}},
        {REFERENCE, "..", {"ERROR - Parameter file .. not found.", ignored("..")}},
        // A circuit is kept for the simulator and never looked for.
        {CORNER, "../secret.ibs", {}},
        {CORNER, "/dev/zero", {}},
        // The name of a package is searched for within the files of the folder, and is the name of none.
        {PACKAGE, "../secret", {noPackage("../secret")}},
        {PACKAGE, "/etc/passwd", {noPackage("/etc/passwd")}},
        {OWN,
         "../t.ibs",
         {periods("../t.ibs"), character("../t.ibs", '/'), periods("../t.ibs"), notOwn("../t.ibs")}},
        {OWN,
         "/etc/passwd",
         {character("/etc/passwd", '/'), character("/etc/passwd", '/'),
          "ERROR - File_name '/etc/passwd' must contain one period.", notOwn("/etc/passwd")}},
        // A part has to lie beside the board.
        {PART,
         "../secret.ibs",
         {periods("../secret.ibs"), character("../secret.ibs", '/'), periods("../secret.ibs")}},
        {PART,
         "../secret.ebd",
         {periods("../secret.ebd"), character("../secret.ebd", '/'), periods("../secret.ebd")}},
        {PART, "/dev/zero.ibs", {character("/dev/zero.ibs", '/'), character("/dev/zero.ibs", '/')}},
        {PART, x500 + ".ibs", {wide, "ERROR - File name '" + x500 + ".ibs' too long. Will be truncated"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Read(row.keyword, row.sName), row.messages) << row.keyword.pszName << ' ' << row.sName;
    }
}

// Signs that a shell acts on. A file of such a name is found and read like any other: what it holds is told.
TEST(FileNames, AreNothingButData)
{
    const QuietTotals quiet;
    const std::string deck = Deck();
    const std::string touch = "touch${IFS}pwned";
    const struct {
        std::string sName;
        std::string sIllegal;  // for the name of a part
    } rows[] = {{"`" + touch + "`", ""},
                {"$(" + touch + ")", ""},
                {";" + touch + ";", ";;"},
                {"&" + touch + "&", ""},
                {">pwned", ">"},
                {"';" + touch + ";'", ";;"},
                {"\"\"" + touch, "\"\""},
                {"%s%n%s%n", ""},
                {"-rf", ""},
                {"*?", "*?"},
                {"~root", ""}};
    for (const auto& [name, illegal] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(Read(CODE, name), Lines{"ERROR - Code file " + name + " not found."});
        EXPECT_EQ(Read(PARAMETERS, name + ".ami"),
                  Lines{"ERROR - Parameter file " + name + ".ami not found."});
        EXPECT_EQ(Read(CORNER, name), Lines{});
        EXPECT_STREQ(Corner().pszFile, name.c_str());
        for (const char* extension : {".so", ".ami", ".ibs", ".pkg"}) {
            WriteTestFile("names/deck/" + name + extension,
                          "(no tree\n[Define Package Model] " +
                              (extension == std::string_view(".pkg") ? name : "") + "\n");
        }
        const std::string tree = "ERROR - The Parameter file " + name + ".ami has mismatched parenthesis";
        EXPECT_EQ(Read(CODE, name + ".so"), Lines{});
        EXPECT_EQ(Read(PARAMETERS, name + ".ami"), Lines{tree});
        if (name.find_first_of("(\"") == name.npos) {  // signs of the reference itself
            EXPECT_EQ(Read(REFERENCE, name + ".ami"),
                      (Lines{tree, "ERROR - Referenced parameter 'p' not found in file '" + name +
                                       ".ami'. Parameter 'x' Ignored."}));
        }
        Lines part;
        for (const char c : illegal) {
            part.push_back("ERROR - File_name '" + name + ".ibs' contains a character '" + c +
                           "' that is illegal for DOS.");
        }
        EXPECT_EQ(Read(PART, name + ".ibs"),
                  illegal.empty()
                      ? Lines{"ERROR - Could not determine Version for file ~/names/deck/" + name + ".ibs"}
                      : part);
        EXPECT_EQ(Read(PACKAGE, name),
                  (Lines{"ERROR - Could not determine Version for file " + name + ".pkg",
                         "ERROR - Unable to find Package Model '" + name + "' for Component 'U1'"}));
        for (const std::string& folder :
             {std::string(), TestFolder() + "/", TestFolder() + "/names/", deck}) {
            EXPECT_FALSE(fs::exists(folder + "pwned")) << folder;
        }
        fs::remove_all(deck);
        Deck();
    }
}
