#include "ibis/source/nuibis_main.h"

#include "ibis/source/nuibis_msg.h"
#include "ibis/source/nuibis_state.h"
#include "tests/builders.h"

namespace
{

// Calls the entry; gives its result, its summary and the stored messages.
struct Checked {
    int iResult;
    std::string sSummary;
    Lines messages;

    explicit Checked(std::vector<std::string> arguments)
    {
        std::vector<const char*> argv{"check"};
        for (const std::string& argument : arguments) {
            argv.push_back(argument.c_str());
        }
        std::FILE* const stream = std::tmpfile();
        MSG_SetSummaryStream(stream);
        MSG_ClearContainer();
        geIbisVersion = IBIS_VER_NONE;  // as a fresh process has it
        iResult = IBIS_Main(static_cast<int>(argv.size()), argv.data());
        messages = StoredMessages();
        MSG_SetSummaryStream(stderr);
        std::rewind(stream);
        for (int c; (c = std::fgetc(stream)) != EOF;) {
            sSummary += static_cast<char>(c);
        }
        std::fclose(stream);
        MSG_SetSuppressCautions(true);
        MSG_SetPlainMessages(true);
    }
};

}  // namespace

TEST(Main, ResultsByArguments)
{
    const std::string good = WriteTestFile("main.ibs", Bare(""));
    const std::string old = WriteTestFile("mold.ibs", "[IBIS Ver] 1.1\n");
    const std::string oldBoard = WriteTestFile("mold.ebd", "[IBIS Ver] 2.1\n");
    const std::string noVersion = WriteTestFile("mnone.ibs", "| text\n[Component] U1\n");
    const std::string package = WriteTestFile("main.pkg", Header("5.1", "main.pkg") + "[End]\n");
    const std::string parameters =
        WriteTestFile("main.ami", "(m (Reserved_Parameters (AMI_Version (Usage Info) "
                                  "(Type String) (Value \"5.1\"))))\n");
    const struct {
        std::vector<std::string> arguments;
        int iResult;
    } rows[] = {
        {{}, 1},
        {{good, "-x"}, 1},
        {{good, good, "-pkg"}, 1},
        {{"-Ebd", oldBoard}, 1},
        {{"-Caution", good}, 1},
        {{good}, 0},
        {{"-caution", "-NUMBERED", good}, 0},
        {{package, "-pkg"}, 0},
        {{"-PKG", package}, 0},
        {{"-ami", parameters}, 0},
        {{TestFolder() + "/absent.ibs"}, 2},
        {{noVersion}, 3},
        {{"-ebd", oldBoard}, 3},
        {{old}, 1},
    };
    for (const auto& row : rows) {
        std::string line;
        for (const std::string& argument : row.arguments) {
            line += argument + ' ';
        }
        SCOPED_TRACE(line);
        EXPECT_EQ(Checked(row.arguments).iResult, row.iResult);
    }
}

TEST(Main, ReadsChecksAndCounts)
{
    const Checked run({WriteTestFile("t.ibs", Bare(""))});
    EXPECT_EQ(run.messages, (Lines{"ERROR - Required keyword 'Component' not found."}));
    EXPECT_NE(run.sSummary.find("File Failed"), std::string::npos);
    const Checked numbered({"-numbered", WriteTestFile("t.ibs", Bare(""))});
    EXPECT_EQ(numbered.messages, Lines{});
}
