// `talibis check` as a process: folders, patterns, the standard input, files side by side, terminals,
// signals.

#include "tests/builders.h"
#include "tests/programs.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <pty.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

Result Check(const std::string& words, bool withErrors = false, const std::string& environment = "")
{
    return RunProgram("env",
                      "-C '" + TestFolder() + "' " + environment + " '" TALIBIS_PROGRAM "' check " + words,
                      withErrors);
}

std::string Clean(const std::string& name)
{
    return name + ": no findings\n";
}

void WriteClean(const std::string& name)
{
    const std::filesystem::path path(name);
    std::filesystem::create_directories(TestFolder() / path.parent_path());
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), ::tolower);
    WriteTestFile(name, extension == ".ibs" ? Edit(Ibs(Model("M")), {{"t.ibs", path.filename().string()}})
                                            : Header("5.1", path.filename().string()) + "[End]\n");
}

// A pipe that is open for writing, where nothing is written: its reader waits until it is ended.
class EndlessFile
{
  public:
    explicit EndlessFile(const std::string& name) : mPath(TestFolder() + "/" + name)
    {
        EXPECT_EQ(mkfifo(mPath.c_str(), 0600), 0);
        mWriter = open(mPath.c_str(), O_RDWR | O_CLOEXEC);
    }
    ~EndlessFile()
    {
        close(mWriter);
        std::filesystem::remove(mPath);
    }
    EndlessFile(const EndlessFile&) = delete;
    EndlessFile& operator=(const EndlessFile&) = delete;

  private:
    std::string mPath;
    int mWriter;
};

// The program on a terminal of its own.
class OnTerminal
{
  public:
    explicit OnTerminal(const std::vector<std::string>& words)
    {
        winsize size = {24, 60, 0, 0};
        mChild = forkpty(&mTerminal, nullptr, nullptr, &size);
        if (mChild == 0) {
            std::vector<std::string> all{TALIBIS_PROGRAM, "check"};
            all.insert(all.end(), words.begin(), words.end());
            std::vector<char*> arguments;
            for (std::string& word : all) {
                arguments.push_back(word.data());
            }
            arguments.push_back(nullptr);
            setenv("TERM", "xterm", 1);
            unsetenv("NO_COLOR");
            _exit(chdir(TestFolder().c_str()) == 0 ? execv(arguments[0], arguments.data()) : 127);
        }
    }
    ~OnTerminal() { close(mTerminal); }
    OnTerminal(const OnTerminal&) = delete;
    OnTerminal& operator=(const OnTerminal&) = delete;

    pid_t child() const { return mChild; }
    const std::string& out() const { return mOut; }
    /// Reads on until the text has come; false when the program ends without it.
    bool waitFor(const std::string& text)
    {
        while (mOut.find(text) == std::string::npos) {
            if (!readSome()) {
                return false;
            }
        }
        return true;
    }
    void type(char c) const { EXPECT_EQ(write(mTerminal, &c, 1), 1); }
    int finish()
    {
        while (readSome()) {
        }
        int status = 0;
        waitpid(mChild, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    bool readSome()
    {
        char block[4096];
        const ssize_t got = read(mTerminal, block, sizeof block);
        mOut.append(block, static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        return got > 0;
    }

    int mTerminal = -1;
    pid_t mChild = -1;
    std::string mOut;
};

// A container may have no pseudo-terminals.
class CheckOnTerminal : public testing::Test
{
  protected:
    void SetUp() override
    {
        int terminal = -1;
        int program = -1;
        if (openpty(&terminal, &program, nullptr, nullptr, nullptr) != 0) {
            GTEST_SKIP() << "no pseudo-terminal here";
        }
        close(terminal);
        close(program);
    }
};

// The reading processes of a running program.
std::vector<pid_t> ChildrenOf(pid_t process)
{
    const std::string name = std::to_string(process);
    std::ifstream file("/proc/" + name + "/task/" + name + "/children");
    std::vector<pid_t> children;
    for (pid_t child = 0; file >> child;) {
        children.push_back(child);
    }
    return children;
}

// Whether the program has got as far as to catch the signal.
bool Catches(pid_t process, int signal)
{
    static constexpr std::string_view CAUGHT = "SigCgt:";
    std::ifstream file("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(CAUGHT)) {
            return (std::stoull(line.substr(CAUGHT.size()), nullptr, 16) >> (signal - 1) & 1U) != 0;
        }
    }
    return false;
}

bool IsAlive(pid_t process)
{
    return kill(process, 0) == 0;
}

constexpr const char* INTERRUPT_KEY = "\x03";

}  // namespace

TEST(CheckRun, FoldersAndPatternsStandForTheirModelFiles)
{
    for (const char* name : {"tree/b/x.IBS", "tree/a.pkg", "tree/a/z.ibs", "tree/.git/no.ibs"}) {
        WriteClean(name);
    }
    WriteTestFile("tree/notes.txt", "x\n");
    std::filesystem::create_directories(TestFolder() + "/tree/empty");
    const std::string all = Clean("tree/a.pkg") + Clean("tree/a/z.ibs") + Clean("tree/b/x.IBS");
    EXPECT_EQ(Check("tree").out, all + "3 files: no findings\n");
    EXPECT_EQ(Check("'tree/*/*.[iI]*'").out,
              Clean("tree/a/z.ibs") + Clean("tree/b/x.IBS") + "2 files: no findings\n");
    EXPECT_EQ(Check("'tree/?'").out,
              Clean("tree/a/z.ibs") + Clean("tree/b/x.IBS") + "2 files: no findings\n");
    EXPECT_EQ(Check("tree/a.pkg tree/a.pkg").out,
              Clean("tree/a.pkg") + Clean("tree/a.pkg") + "2 files: no findings\n");
    WriteClean("tree/[ab]*");  // a file by this name is no pattern
    EXPECT_TRUE(Check("--type pkg 'tree/[ab]*'").out.starts_with("tree/[ab]*: error: "));
    std::filesystem::remove(TestFolder() + "/tree/[ab]*");
    const Result empty = Check("tree/empty tree/a.pkg", true);
    EXPECT_EQ(empty.out,
              "talibis: tree/empty: no model files (.ibs, .pkg, .ebd, .ami)\n" + Clean("tree/a.pkg"));
    EXPECT_EQ(empty.status, 2);
    EXPECT_EQ(Check("'none/*.ibs'").out, "none/*.ibs: error: Unable To Open File 'none/*.ibs' [1905]\n");
}

TEST(CheckRun, StandardInputIsAFileLikeOthers)
{
    WriteClean("in.ibs");
    WriteTestFile("bad.ibs", Header("5.1", "in.ibs") + "[Bad]\n[End]\n");
    const std::string temporary = "TMPDIR='" + TestFolder() + "/tmp'";
    std::filesystem::create_directories(TestFolder() + "/tmp");
    EXPECT_EQ(Check("--type ibs - < '" + TestFolder() + "/in.ibs'", true, temporary).out, Clean("<stdin>"));
    EXPECT_EQ(Check("--type ibs --format gcc - < '" + TestFolder() + "/bad.ibs'", true, temporary).out,
              "<stdin>:4: error: Invalid Keyword: Bad [916]\n"
              "<stdin>: error: Required keyword 'Component' not found. [4101]\n");
    EXPECT_NE(
        Check("--type ibs --format json - </dev/null", true, temporary).out.find("{\"path\":\"<stdin>\""),
        std::string::npos);
    EXPECT_EQ(Check("--type ibs - </dev/null", true, temporary).out.find("tmp"), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_empty(TestFolder() + "/tmp"));
    const Result untyped = Check("- </dev/null", true);
    EXPECT_EQ(untyped.out, "talibis: - (standard input) needs --type\n");
    EXPECT_EQ(untyped.status, 2);
}

TEST(CheckRun, OutputIsTheSameWithAnyNumberOfJobs)
{
    std::string words;
    for (int i = 0; i < 60; ++i) {
        const std::string name = "many/" + std::to_string(i) + ".ibs";
        WriteClean(name);
        if (i % 7 == 0) {  // a file that takes longer than those behind it, with a long list of findings
            std::string lines;
            for (int k = 0; k < 300; ++k) {
                lines += "[Bad " + std::to_string(k) + "]\n";
            }
            WriteTestFile(name, Header("5.1", name) + lines + "[End]\n");
        }
        words += " " + name;
    }
    for (const char* format : {"text", "json", "sarif"}) {
        const std::string one = Check(std::string("--jobs 1 --format ") + format + words).out;
        EXPECT_GT(one.size(), 10000U);
        for (const char* jobs : {"2", "7", "100"}) {
            EXPECT_EQ(Check(std::string("--jobs ") + jobs + " --format " + format + words).out, one) << jobs;
        }
    }
}

TEST_F(CheckOnTerminal, ColourFollowsTheTerminalAndTheOptions)
{
    WriteTestFile("bad.ibs", Header("5.1", "bad.ibs") + "[Bad]\n[End]\n");
    WriteClean("c.pkg");
    const std::string plain = Check("c.pkg bad.ibs").out;
    EXPECT_EQ(plain.find('\033'), std::string::npos);
    EXPECT_EQ(Check("--color always c.pkg bad.ibs", false, "NO_COLOR=1").out,
              "\033[32mc.pkg: no findings\033[0m\n"
              "\033[1mbad.ibs:4:\033[0m \033[1;31merror:\033[0m Invalid Keyword: Bad\033[2m [916]\033[0m\n"
              "\033[2m     4 | \033[0m[Bad]\n"
              "\033[1mbad.ibs:\033[0m \033[1;31merror:\033[0m Required keyword 'Component' not found.\033[2m "
              "[4101]\033[0m\n"
              "\033[1;31mbad.ibs: 2 errors, 0 warnings\033[0m\n"
              "\033[1m2 files: 2 errors, 0 warnings\033[0m\n");
    OnTerminal coloured({"c.pkg"});
    EXPECT_EQ(coloured.finish(), 0);
    EXPECT_EQ(coloured.out(), "\033[32mc.pkg: no findings\033[0m\r\n");
    OnTerminal never({"--color", "never", "c.pkg"});
    EXPECT_EQ(never.finish(), 0);
    EXPECT_EQ(never.out(), "c.pkg: no findings\r\n");
}

TEST_F(CheckOnTerminal, SourceLinesFitTheTerminal)
{
    WriteTestFile("wide.ibs", Header("5.1", "wide.ibs") + "[" + std::string(100, 'x') + "]\n[End]\n");
    OnTerminal narrow({"--color", "never", "wide.ibs"});
    EXPECT_EQ(narrow.finish(), 1);
    EXPECT_NE(narrow.out().find("     4 | [" + std::string(47, 'x') + "...\r\n"), std::string::npos)
        << narrow.out();
}

// The line of progress is erased before anything else is printed.
TEST_F(CheckOnTerminal, AReadingProcessThatDiesTakesNoOtherFileDown)
{
    WriteClean("c.pkg");
    const EndlessFile endless("endless.ibs");
    OnTerminal run({"--color", "never", "--jobs", "2", "c.pkg", "endless.ibs", "c.pkg"});
    ASSERT_TRUE(run.waitFor("1 of 3 files"));
    const std::vector<pid_t> children = ChildrenOf(run.child());
    ASSERT_EQ(children.size(), 1U);
    kill(children[0], SIGKILL);
    EXPECT_EQ(run.finish(), 2);
    EXPECT_NE(run.out().find("1 of 3 files\r\033[Kendless.ibs: error: The reading process ended: Killed\r\n"),
              std::string::npos)
        << run.out();
    EXPECT_NE(
        run.out().find("c.pkg: no findings\r\n3 files: 1 error, 0 warnings; could not be read: 1 file\r\n"),
        std::string::npos)
        << run.out();
}

// On a terminal the key goes to the program and to its reading processes.
TEST_F(CheckOnTerminal, CtrlCEndsTheRunInOrder)
{
    WriteClean("c.pkg");
    const EndlessFile endless("endless.ibs");
    OnTerminal run({"--color", "never", "--jobs", "1", "c.pkg", "endless.ibs", "c.pkg"});
    ASSERT_TRUE(run.waitFor("1 of 3 files"));
    const std::vector<pid_t> children = ChildrenOf(run.child());
    ASSERT_EQ(children.size(), 1U);
    run.type(*INTERRUPT_KEY);
    EXPECT_EQ(run.finish(), 130);
    EXPECT_FALSE(IsAlive(children[0]));
    EXPECT_TRUE(run.out().starts_with("c.pkg: no findings\r\n\r\033[K1 of 3 files")) << run.out();
    EXPECT_EQ(run.out().find("endless"), std::string::npos);
}

TEST_F(CheckOnTerminal, CtrlCEndsTheWaitForInput)
{
    OnTerminal run({"--type", "ibs", "--format", "junit", "-"});
    for (int tries = 0; tries < 1000 && !Catches(run.child(), SIGINT); ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    run.type(*INTERRUPT_KEY);
    EXPECT_EQ(run.finish(), 130);
    EXPECT_EQ(run.out().find("testsuites"), std::string::npos) << run.out();
}

TEST(CheckRun, ASignalLeavesAWholeDocumentAndNoTemporaryFiles)
{
    WriteClean("c.ibs");
    const EndlessFile endless("endless.ibs");
    std::filesystem::create_directories(TestFolder() + "/tmp");
    const Result result =
        RunProgram("env", "-C '" + TestFolder() + "' TMPDIR='" + TestFolder() +
                              "/tmp' timeout 1 '" TALIBIS_PROGRAM
                              "' check --type ibs --jobs 1 --format junit - endless.ibs < '" +
                              TestFolder() + "/c.ibs'");
    EXPECT_EQ(result.status, 124);
    EXPECT_NE(result.out.find("<testsuite name=\"&lt;stdin&gt;\""), std::string::npos) << result.out;
    EXPECT_TRUE(result.out.ends_with("</testsuites>\n")) << result.out;
    EXPECT_TRUE(std::filesystem::is_empty(TestFolder() + "/tmp"));
}
