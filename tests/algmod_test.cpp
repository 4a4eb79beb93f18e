#include "ibis/source/nuibis_algmod.h"

#include "ibis/source/nuibis_efile.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_mdl.h"
#include "tests/builders.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr std::string_view KEYWORD = "[Algorithmic Model]\n";
constexpr std::string_view GOOD_AMI =
    "(r (Reserved_Parameters (e (Usage Info)(Type Boolean)(Value True)))\n"
    "(Model_Specific (a (Usage In)(Type Float)(Range 1 0 2))(b (Usage Info)(Type Integer)(Default 3)(Value "
    "4))"
    "(o (Usage Out)(Type Float)(Value 1))(t (Usage Info)(Type Float)(Table (0 1)(1 2)))"
    "(g (d (Usage Info)(Type UI)(Gaussian 1 2)))))\n";

// A file whose model has this keyword, with the files that good lines name.
std::string FileOf(std::string_view lines, std::string_view version, std::string_view type = "Input")
{
    WriteTestFile("good.ami", GOOD_AMI);
    WriteTestFile("code.so", "");
    std::string file =
        Ibs(Model("M", std::string(KEYWORD) + std::string(lines) + "[End Algorithmic Model]\n"), version);
    const std::string input = "Model_type Input\nVinl = 0.8\nVinh = 2.0\n";
    if (type != "Input") {
        file.replace(file.find(input), input.size(), "Model_type " + std::string(type) + "\n");
    }
    return file;
}

// Line numbers count from that of the keyword: "(+1)" is the line behind it.
Lines Relative(Lines lines, const std::string& file)
{
    const auto keyword =
        std::count(file.begin(), file.begin() + static_cast<long>(file.find(KEYWORD)), '\n') + 1;
    for (std::string& line : lines) {
        if (const std::size_t at = line.find("(line "); at != std::string::npos) {
            const long number = std::stol(line.substr(at + 6));
            line.replace(at, line.find(')', at) + 1 - at, "(+" + std::to_string(number - keyword) + ")");
        }
        if (const std::size_t at = line.find(" on line " + std::to_string(keyword));
            at != std::string::npos) {
            line.replace(at, std::string::npos, " on line 0");
        }
    }
    return lines;
}

Lines KeywordMessages(std::string_view lines)
{
    const std::string file = FileOf(lines, "6.1");
    return Relative(Unfolded(Messages(file)), file);
}

// What this keyword alone says of a model of some type, which lacks what else that type needs.
Lines TypeMessages(std::string_view lines, std::string_view version, std::string_view type)
{
    const std::string file = FileOf(lines, version, type);
    Lines messages = Relative(Unfolded(Messages(file)), file);
    std::erase_if(messages, [](const std::string& line) {
        return line.find("Algorithmic") == std::string::npos && line.find("Executable") == std::string::npos;
    });
    return messages;
}

// The messages of a parameter file that a good line names.
Lines ParamFileMessages(std::string_view text)
{
    WriteTestFile("bad.ami", text);
    return KeywordMessages("Executable Linux_gcc_64 code.so bad.ami\n");
}

ibis* ReadRoot(std::string_view lines)
{
    ReadHandle(FileOf(lines, "6.1"));
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return root;
}

Lines Findings()
{
    Lines lines;
    for (std::size_t i = 0; i < MSG_GetContainer()->getNumErrors(); ++i) {
        lines.emplace_back(MSG_GetContainer()->getErrMsg(i));
        lines.back().pop_back();
    }
    MSG_ClearContainer();
    return Unfolded(lines);
}

}  // namespace

TEST(AlgorithmicModel, LinesOfTheKeyword)
{
    const std::string at = "ERROR (+1) - ";
    const std::string long45(45, 'x');
    const std::string empty = "ERROR - Empty [Algorithmic Model] defined for Model M";
    const std::string fields =
        at + "Could not parse Platform, Compiler, Bits  for [Algorithmic Model] Executable Sub-parameter";
    const struct {
        std::string sLine;
        Lines messages;
    } rows[] = {
        {"Executable Linux_gcc_64 code.so good.ami", {}},
        {"Executable linux_gcc4.1.2_32 CODE.SO.none good.AMI.ami",
         {at + "Code file CODE.SO.none not found.", at + "Parameter file good.AMI.ami not found."}},
        {"Executable Linux_gcc_64 code.so",
         {at + "Incorrect Number of Line Items (3) For Algorithmic Model: Expecting 4", empty}},
        {"Executable Linux_gcc_64 code.so good.ami x y",
         {at + "Incorrect Number of Line Items (6) For Algorithmic Model: Expecting 4", empty}},
        {"executable Linux_gcc_64 code.so good.ami", {"ERROR - Unknown Line in Algorithmic Model", empty}},
        {"Executable Windows_32 code.so good.ami", {fields, empty}},
        {"Executable Linux__gcc_64 code.so good.ami", {fields, empty}},
        {"Executable Linux_gcc_x64 code.so good.ami",
         {at + "Could not parse the Bits in Linux_gcc_x64 for [Algorithmic Model] Executable Sub-parameter",
          "ERROR - The Number of Bits should be 32 or 64 for Platform Linux and Compiler gcc for Algorithmic "
          "Model "
          "defined on line 0"}},
        {"Executable Linux_gcc_64x code.so good.ami", {}},
        {"Executable " + long45 + "_" + long45 + "y_64 code.so good.ami",
         {at + "Exceeds 120 chararacters.", at + "Platform name too long " + long45,
          at + "Compiler name too long " + long45 + "y"}},
        {"Executable Linux_gcc_64 " + long45 + " " + long45 + ".ami",
         {at + "Filename too long " + long45, at + "Code file " + long45.substr(1) + " not found.",
          at + "Filename too long " + long45 + ".ami",
          at + "Parameter file " + long45.substr(1) + " not found."}},
        {"Executable Linux_gcc_64 code.so good.txt",
         {at + "AMI Parameter file good.txt should have '.ami' extension."}},
        {"Executable Linux_gcc_64 code.so goodami",
         {at + "AMI Parameter file goodami should have '.ami' extension."}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(KeywordMessages(row.sLine + "\n"), row.messages) << row.sLine;
    }
}

TEST(AlgorithmicModel, TheKeywordLine)
{
    EXPECT_EQ(KeywordMessages(""), (Lines{"ERROR - Empty [Algorithmic Model] defined for Model M"}));
    const std::string line = "Executable Linux_gcc_64 code.so good.ami\n";
    const std::string twice =
        line + "[End Algorithmic Model]\n[Algorithmic Model] x y\nExecutable Linux_gcc_16 code.so good.ami\n";
    EXPECT_EQ(KeywordMessages(twice),
              (Lines{"ERROR (+3) - Algorithmic Model: Already Defined for this model",
                     "ERROR (+3) - Incorrect Number of Line Items (3) For Algorithmic Model: Expecting 1",
                     "ERROR - The Number of Bits should be 32 or 64 for Platform Linux and Compiler gcc for "
                     "Algorithmic "
                     "Model defined on line 22"}));
    const ibis* const root = ReadRoot(twice);
    ASSERT_NE(root->pModels->pAlgorithmicModel->pFirst, nullptr);
    EXPECT_EQ(root->pModels->pAlgorithmicModel->pFirst->pNext, nullptr);
    EXPECT_EQ(root->pParamFiles->pTree, nullptr);  // went with the first keyword's line
}

TEST(AlgorithmicModel, RepeatedLines)
{
    const auto repeat = [](const char* platform, const char* compiler) {
        return "ERROR - Duplicate Sub-Parameter: Platform " + std::string(platform) + " Compiler " +
               compiler + " Bits 64 for Algorithmic Model defined on line 0";
    };
    EXPECT_EQ(KeywordMessages("Executable Linux_gcc_64 code.so good.ami\n"
                              "Executable linux_GCC_64 code.so good.ami\n"
                              "Executable Linux_gcc_32 code.so good.ami\n"
                              "Executable Linux_cc_64 code.so good.ami\n"
                              "Executable LINUX_Gcc_64 code.so good.ami\n"),
              (Lines{repeat("LINUX", "Gcc"), repeat("LINUX", "Gcc"), repeat("linux", "GCC")}));
    EXPECT_EQ(TypeMessages("Executable_Tx Linux_gcc_64 code.so good.ami\n"
                           "Executable_Rx Linux_gcc_64 code.so good.ami\n",
                           "6.1", "I/O_diff"),
              Lines{});
}

TEST(AlgorithmicModel, RecordsOfTheLines)
{
    const ibis* const root = ReadRoot("Executable Linux_gcc_64 code.so good.ami\n"
                                      "Executable Windows_vs_64 CODE.so GOOD.ami\n"
                                      "Executable Linux_gcc_32 code.so good.ami\n"
                                      "Executable Linux_cc_64 none.so no.txt\n");
    const ALGMOD* line = root->pModels->pAlgorithmicModel->pFirst;  // last line first
    EXPECT_STREQ(line->szCompiler, "cc");
    EXPECT_EQ(line->pParamFile, nullptr);
    EXPECT_STREQ(line->pCodeFile->szName, "none.so");
    EXPECT_FALSE(line->bCodeFileUsable);
    const ALGMOD* const narrow = line->pNext;
    EXPECT_EQ(narrow->iBits, 32);
    EXPECT_FALSE(narrow->bCodeFileUsable);
    const ALGMOD* const windows = narrow->pNext;
    EXPECT_FALSE(windows->bCodeFileUsable);
    const ALGMOD* const first = windows->pNext;
    EXPECT_STREQ(first->szPlatform, "Linux");
    EXPECT_TRUE(first->bCodeFileUsable);
    EXPECT_TRUE(first->pCodeFile->bUsable);
    EXPECT_EQ(first->pNext, nullptr);
    EXPECT_EQ(first->pCodeFile, windows->pCodeFile);
    EXPECT_EQ(first->pParamFile, windows->pParamFile);
    EXPECT_EQ(first->pParamFile, narrow->pParamFile);
    EXPECT_EQ(root->pParamFiles, first->pParamFile);
    EXPECT_EQ(root->pParamFiles->pNext, nullptr);
    EXPECT_EQ(root->pParamFiles->uiDirection, PFILE_BOTH);
    EXPECT_STREQ(AMI_Root(root->pParamFiles->pTree)->pszName, "r");
}

TEST(AlgorithmicModel, DuplicatesCanBeMarked)
{
    const ibis* const root = ReadRoot("Executable Linux_a_64 code.so good.ami\n"
                                      "Executable Linux_b_32 code.so good.ami\n"
                                      "Executable linux_c_64 code.so good.ami\n"
                                      "Executable linux_d_64 good.ami good.ami\n");
    const auto marks = [](const ALGMOD_LIST& list) {
        std::string text;
        for (const ALGMOD* line = list.pFirst; line != nullptr; line = line->pNext) {
            text += line->bDuplicate ? '1' : '0';
        }
        return text;
    };
    ALGMOD_LIST& list = *root->pModels->pAlgorithmicModel;
    ALGMOD_MarkDuplicates(&list);
    EXPECT_EQ(marks(list), "0001");
    ALGMOD_LIST tail{list.pFirst->pNext};
    ALGMOD_MarkDuplicatesAcross(&list, &tail);  // the first line has a code file of its own
    EXPECT_EQ(marks(list), "0001");
    ALGMOD_MarkDuplicatesAcross(&tail, &list);
    EXPECT_EQ(marks(list), "0101");
}

TEST(AlgorithmicModel, EveryLineNamesItsMissingFile)
{
    EXPECT_EQ(
        KeywordMessages(
            "Executable Linux_gcc_64 none.so none.ami\nExecutable Linux_gcc_32 NONE.so NONE.ami\n"),
        (Lines{"ERROR (+1) - Code file none.so not found.", "ERROR (+1) - Parameter file none.ami not found.",
               "ERROR (+2) - Code file none.so not found."}));
}

TEST(AlgorithmicModel, FaultsOfAParameterFile)
{
    const struct {
        const char* pszText;
        Lines messages;
    } rows[] = {
        {"", {}},
        {"| a comment\n",
         {"ERROR - Expected a parenthesis or a branch or found an invalid parameter in a list"}},
        {"(r (a 1)", {"ERROR - The Parameter file bad.ami has mismatched parenthesis"}},
        {"  (r (a 1) wrong (b 2)(c 3)(d 4)(e 5)(f 6))",
         {"ERROR - An unexpected token found around: ) wrong (b 2)(c 3)(d 4)(e 5)(f "}},
        {"(r (a 1\n(b \"x\")))", {"ERROR - An unexpected token found around: (b \"x\")))"}},
        {"(r)", {"ERROR - Too few nodes in branches or leaves."}},
        {"(r (a 1 ) ( ))", {"ERROR - Too few nodes in branches or leaves."}},
        {"(r (a 1)) (s 1)", {"PROGRAM BUG - Internal error while parsing Parameter file"}},
        {"(r (Reserved_Parameters (e (Usage No))))",
         {"ERROR - Illegal Usage No specified for e", "ERROR - Type is mandatory for e",
          "ERROR - e: Either Format/Value or Default should be specified"}},
    };
    for (const auto& row : rows) {
        WriteTestFile("bad.ami", row.pszText);
        const std::string file = FileOf("Executable Linux_gcc_64 code.so bad.ami\n", "6.1");
        EXPECT_EQ(Unfolded(Messages(file)), row.messages) << row.pszText;
    }
    EXPECT_EQ(ParamFileMessages(
                  "(r \"(|)\" (Reserved_Parameters | (cut\n(e (Usage Info)(Type String)(Value \"a|b\"))))"),
              (Lines{"ERROR - An unexpected token found around: (Reserved_Parameters  (e (Usage"}));
}

TEST(AlgorithmicModel, AFaultyParameterFileIsReadOnce)
{
    WriteTestFile("bad.ami", "(r (Reserved_Parameters (e (Usage No)(Type Float)(Value 1))))");
    const std::string lines =
        "Executable Linux_gcc_64 code.so bad.ami\nExecutable Linux_gcc_32 code.so BAD.ami\n";
    EXPECT_EQ(KeywordMessages(lines), (Lines{"ERROR - Illegal Usage No specified for e"}));
    const ibis* const root = ReadRoot(lines);
    ASSERT_NE(root->pParamFiles, nullptr);
    EXPECT_EQ(root->pParamFiles->pTree, nullptr);
    EXPECT_EQ(root->pParamFiles->pNext, nullptr);
}

TEST(AlgorithmicModel, KindsOfLinesByModelType)
{
    const std::string one = "Executable Linux_gcc_64 code.so good.ami\n";
    const std::string tx = "Executable_Tx Linux_gcc_64 code.so good.ami\n";
    const std::string rx = "Executable_Rx Linux_gcc_64 code.so good.ami\n";
    const auto refused = [](const std::string& word, const std::string& type) {
        return "ERROR - [Algorithmic Model] Sub parameter " + word +
               " is not allowed for model M which is of type " + type;
    };
    for (const char* type :
         {"Input", "Input_ECL", "Input_diff", "Output", "3-state", "Open_drain", "Open_sink", "Open_source",
          "Output_ECL", "3-state_ECL", "Output_diff", "3-state_diff"}) {
        EXPECT_EQ(TypeMessages(tx + one + rx, "6.1", type),
                  (Lines{refused("Executable_Rx", type), refused("Executable_Tx", type)}));
    }
    const auto tooOld = [](int line, const std::string& word) {
        return "ERROR (+" + std::to_string(line) + ") - " + word +
               " is only allowed in IBIS Version 6.1 or greater";
    };
    for (const char* type :
         {"I/O", "I/O_open_drain", "I/O_open_sink", "I/O_open_source", "I/O_ECL", "I/O_diff"}) {
        EXPECT_EQ(TypeMessages(one + tx + rx, "6.1", type), (Lines{refused("Executable", type)}));
        EXPECT_EQ(TypeMessages(one + tx + rx, "6.0", type),
                  (Lines{tooOld(2, "Executable_Tx"), tooOld(3, "Executable_Rx")}));
    }
    for (const char* type : {"Series", "Series_switch"}) {
        EXPECT_EQ(TypeMessages(tx, "6.1", type),
                  (Lines{"ERROR - Algorithmic Model is not allowed for model M which is of type " +
                         std::string(type)}));
    }
    EXPECT_EQ(TypeMessages(tx, "6.1", "Terminator"), Lines{});
}

TEST(AlgorithmicModel, DirectionsOfParameterFiles)
{
    PFILE file{};
    std::strcpy(file.szName, "p.ami");
    ALGMOD line{};
    line.eKind = ALGMOD_EXECUTABLE_RX;
    line.pParamFile = &file;
    ALGMOD_LIST list{&line};
    nuibis_mdl model{};
    std::strcpy(model.szName, "M");
    model.pAlgorithmicModel = &list;
    const auto check = [&](nuibis_model_type type, PFILE_Direction direction, bool levels) {
        file.uiDirection = direction;
        file.bPam4 = levels;
        model.eModelType = type;
        MSG_ClearContainer();
        ALGMOD_CheckModels(&model);
        Lines lines = Findings();
        std::erase_if(
            lines, [](const std::string& text) { return text.find("Sub parameter") != std::string::npos; });
        return lines;
    };
    const auto wrong = [](const std::string& type, const std::string& direction) {
        return Lines{"ERROR - Model M of type " + type +
                     " is associated with a parameter file p.ami which was found to have " + "a direction '" +
                     direction + "-only'"};
    };
    const auto levels = [](const std::string& type) {
        return Lines{
            "ERROR - Model M of type " + type +
            " is a receiver associated with parameter file p.ami which has " +
            "Modulation PAM4 defined but PAM4_UpperThreshold and PAM4_LowerThreshold are not specified"};
    };
    EXPECT_EQ(check(MODEL_INPUT_DIFF, PFILE_TX_ONLY, true), wrong("Input_diff", "Tx"));
    EXPECT_EQ(check(MODEL_INPUT, PFILE_BOTH, true), levels("Input"));
    EXPECT_EQ(check(MODEL_INPUT, PFILE_RX_ONLY, true), Lines{});
    EXPECT_EQ(check(MODEL_OUTPUT_DIFF, PFILE_RX_ONLY, true), wrong("Output_diff", "Rx"));
    EXPECT_EQ(check(MODEL_3STATE, PFILE_RX_ONLY, true), Lines{});
    EXPECT_EQ(check(MODEL_IO_DIFF, PFILE_BOTH, true), levels("I/O_diff"));
    line.eKind = ALGMOD_EXECUTABLE_TX;
    EXPECT_EQ(check(MODEL_IO_DIFF, PFILE_BOTH, true), Lines{});

    ibis* const root = ReadRoot("Executable Linux_gcc_64 code.so good.ami\n");
    ALGMOD_LIST* const lines = root->pModels->pAlgorithmicModel;
    const auto next = [&](const char* word, PFILE_Direction direction) {
        root->pParamFiles->uiDirection = direction;
        MSG_ClearContainer();
        ALGMOD_Line(std::string(word) + " Linux_gcc_64 code.so good.ami", lines);
        return Findings();
    };
    EXPECT_EQ(next("Executable_Rx", PFILE_TX_ONLY),
              (Lines{"ERROR - Sub parameter Executable_Rx is associated with a parameter file good.ami which "
                     "was found to "
                     "have a direction 'Tx-only'"}));
    EXPECT_EQ(next("Executable_Tx", PFILE_RX_ONLY),
              (Lines{"ERROR - Sub parameter Executable_Tx is associated with a parameter file good.ami which "
                     "was found to "
                     "have a direction 'Rx-only'"}));
    EXPECT_EQ(next("Executable", PFILE_RX_ONLY), Lines{});
}

TEST(ParameterReference, FindsWhatABranchTells)
{
    const ibis* const root = ReadRoot("Executable Linux_gcc_64 code.so good.ami\n");
    WriteTestFile(
        "values.txt",
        "(v (Model_Specific (p (Usage Info)(Type UI)(Range 1 0 2))(q (Usage In)(Type Float)(Value 1))))");
    WriteTestFile("dep.ami", "(r (Reserved_Parameters (AMI_Version (Usage Info)(Type String)(Value \"6.1\"))"
                             "(p (Usage Dep)(Type Float)(Value 1))))");
    const struct {
        std::vector<std::string_view> tokens;
        const char* pszInfo;  // usage, type, format, value
        Lines messages;
    } rows[] = {
        {{"good.ami", "r", "Model_Specific", "a"}, "0 5 12 1", {}},
        {{"GOOD.ami", "r", "Model_Specific", "b"}, "2 6 11 4", {}},
        {{"good.ami", "r", "Model_Specific", "o"},
         "1 5 11 1",
         {"o: Usage should be Info or In for parameters in AMI files. (L 'N')"}},
        {{"good.ami", "r", "Model_Specific", "t"},
         "2 5 17 -",
         {"t: cannot be of Format Table, Guassian, Dual-Dirac, DjRj. (L 'N')"}},
        {{"good.ami", "r", "Model_Specific", "g", "d"},
         "2 10 18 -",
         {"d: cannot be of Format Table, Guassian, Dual-Dirac, DjRj. (L 'N')"}},
        {{"good.ami", "r", "Model_Specific", "x"},
         "",
         {"Referenced parameter 'x' not found in file 'good.ami'. L 'N' Ignored."}},
        {{"good.ami", "s", "Model_Specific", "a"},
         "",
         {"Referenced parameter 'a' not found in file 'good.ami'. L 'N' Ignored."}},
        {{"good.ami", "r"}, "", {"Referenced parameter 'r' not found in file 'good.ami'. L 'N' Ignored."}},
        {{"good.ami"}, "", {"Referenced parameter 'good.ami' not found in file 'good.ami'. L 'N' Ignored."}},
        {{"values.txt", "v", "Model_Specific", "p"}, "2 10 12 1", {}},
        {{"values.txt", "v", "Model_Specific", "q"},
         "0 5 11 1",
         {"q: Usage should be Info for parameters in non-AMI files. (L 'N')"}},
        {{"dep.ami", "r", "Reserved_Parameters", "p"},
         "4 5 11 1",
         {"(L 'N'): Usage cannot be Dep for referenced parameter 'p' in AMI file when the file is not "
          "referenced in the "
          "[Algorithmic Model] section of the containing Model",
          "(L 'N'): Usage cannot be Dep for referenced parameter'p' in AMI file when the file does not have "
          "a "
          "Resolve_Exists parameter with value True"}},
        {{"none", "r", "p"},
         "",
         {"Parameter file none not found.",
          "Referenced parameter 'p' not found in file 'none'. L 'N' Ignored."}},
        {{"x.PKG", "r", "p"},
         "",
         {"Parameter file name x.PKG invalid. '.ibs', '.ebd' or '.pkg' extensions are not allowed",
          "Referenced parameter 'p' not found in file 'x.PKG'. L 'N' Ignored."}},
    };
    for (const auto& row : rows) {
        MSG_ClearContainer();
        AMI_PARAMINFO info{};
        const bool found = ALGMOD_ResolveParameter(row.tokens, "N", "L", root->pModels, &info);
        EXPECT_EQ(found, row.pszInfo[0] != '\0');
        if (found) {
            EXPECT_EQ(std::to_string(info.eUsage) + " " + std::to_string(info.eType) + " " +
                          std::to_string(info.iFormat) + " " +
                          (info.pszValue == nullptr ? "-" : info.pszValue),
                      row.pszInfo);
        }
        Lines expected = row.messages;
        for (std::string& line : expected) {
            line.insert(0, "ERROR (line   " + std::to_string(PARSE_GetLineNumber()) + ") - ");
        }
        EXPECT_EQ(Findings(), expected);
    }
}

TEST(ParameterFile, IsCheckedOnItsOwn)
{
    EXPECT_EQ(Messages(GOOD_AMI, "alone.ami"), Lines{});
    const std::string path = TestFolder() + "/alone.ami";
    EXPECT_EQ(Messages("(r (a 1)", "alone.ami"),
              (Lines{"ERROR - The Parameter file " + path + " has mismatched parenthesis"}));
    EXPECT_EQ(Messages(std::string(1'000'000, '('), "alone.ami"),
              (Lines{"ERROR - The Parameter file " + path + " has mismatched parenthesis"}));
    EXPECT_EQ(MessagesOfFile(TestFolder() + "/missing.ami", IBIS_FILE_AMI),
              (Lines{"ERROR - Unable To Open File '" + TestFolder() + "/missing.ami'"}));
}
