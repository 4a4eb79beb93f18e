#include "platform/hostcore.h"
#include "platform/hostpath.h"
#include "platform/hostport.h"
#include "platform/internpool.h"
#include "platform/qelrt.h"
#include "platform/qelrt_inspect.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

// A fresh directory that is the working directory and TMPDIR as long as the test runs.
class HostFiles : public testing::Test
{
  protected:
    void SetUp() override
    {
        std::string name = testing::TempDir() + "platformXXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        m_directory = fs::canonical(name);
        fs::current_path(m_directory);
        setenv("TMPDIR", m_directory.c_str(), 1);
    }

    void TearDown() override
    {
        fs::current_path(m_outerDirectory);
        fs::remove_all(m_directory);
        m_outerTmp ? setenv("TMPDIR", m_outerTmp->c_str(), 1) : unsetenv("TMPDIR");
    }

    // The file's text, or the reason of the failed opening.
    static std::string Read(const std::string& name, const char* mode = "r")
    {
        FILE* stream = HostPath(name).fopen(mode);
        if (stream == nullptr) {
            return std::strerror(errno);
        }
        char text[100];
        const std::size_t size = std::fread(text, 1, sizeof text, stream);
        std::fclose(stream);
        return {text, size};
    }

    fs::path m_directory;

  private:
    const fs::path m_outerDirectory = fs::current_path();
    const std::optional<std::string> m_outerTmp =
        std::getenv("TMPDIR") ? std::optional<std::string>(std::getenv("TMPDIR")) : std::nullopt;
};

int Sign(int number)
{
    return (number > 0) - (number < 0);
}

}  // namespace

TEST(InternPool, EqualTextHasOneStablePointer)
{
    InternPoolDatabase& pool = InternPool::Private::singleton();
    std::string name = "Typ";
    const char* first = pool.insertC(name.c_str());
    name[0] = 'x';
    std::vector<const char*> others;
    for (int i = 0; i < 5000; ++i) {
        others.push_back(pool.insertC("name" + std::to_string(i)));
    }
    EXPECT_STREQ(first, "Typ");
    EXPECT_EQ(pool.insertC(std::string_view("Typical", 3)), first);
    EXPECT_EQ(pool.insertC(std::string_view("Typ\0x", 5)), first);
    EXPECT_NE(pool.insertC("typ"), first);
    EXPECT_EQ(pool.insertC("name0"), others[0]);
    EXPECT_STREQ(pool.insertC(""), "");
    EXPECT_EQ(pool.insertC(nullptr), nullptr);
}

TEST(HostPort, ComparisonsOrderAndFoldAsciiOnly)
{
    struct {
        const char *a, *b;
        int iExact, iBlind;
    } const rows[] = {
        {"abc", "abc", 0, 0},     {"ABC", "abc", -1, 0}, {"ab", "abc", -1, -1},
        {"_", "A", 1, -1},        {"[", "{", -1, -1},    {"\xE4", "z", 1, 1},
        {"\xC4", "\xE4", -1, -1}, {"", nullptr, 1, 1},   {nullptr, nullptr, 0, 0},
    };
    for (const auto& [a, b, iExact, iBlind] : rows) {
        SCOPED_TRACE(a == nullptr ? "null" : a);
        EXPECT_EQ(Sign(hst_strcmp(a, b)), iExact);
        EXPECT_EQ(Sign(hst_strcmp(b, a)), -iExact);
        EXPECT_EQ(Sign(hst_stricmp(a, b)), iBlind);
        EXPECT_EQ(Sign(hst_stricmp(b, a)), -iBlind);
    }
}

TEST(HostPort, NumbersReadAlikeInEveryLocale)
{
    const auto check = [] {
        const char* text = "1.25e-3,5";
        char* end = nullptr;
        EXPECT_EQ(hst_strtod(text, &end), 1.25e-3);
        EXPECT_EQ(end, text + 7);
        EXPECT_EQ(hst_strtod("x", nullptr), 0.0);
        EXPECT_EQ(hst_strtod("-1e999", nullptr), -HUGE_VAL);
    };
    check();
    EXPECT_EQ(hst_strtod(nullptr, nullptr), 0.0);

    const std::string outer = std::setlocale(LC_ALL, nullptr);
    bool bFound = false;
    for (const char* name : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "fr_FR"}) {
        if (!bFound && std::setlocale(LC_ALL, name) != nullptr) {
            bFound = true;
            check();
        }
    }
    std::setlocale(LC_ALL, outer.c_str());
    if (!bFound) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
}

// A cache that takes a file for newer than its own read drops the handle that the host has just been given.
TEST_F(HostFiles, TheClockIsNeverBehindTheStampOfAFile)
{
    const std::int64_t end = hst_time() + 2;  // a second begins in between
    while (hst_time() < end) {
        std::ofstream("stamp") << "x";
        hst_stat_t info;
        ASSERT_EQ(hst_stat("stamp", &info), 0);
        ASSERT_LE(info.tModified, hst_time());
    }
}

TEST_F(HostFiles, StatTellsKindSizeAndTime)
{
    std::ofstream("a.ibs") << "12345";
    hst_stat_t file{}, directory{};
    ASSERT_EQ(hst_stat("a.ibs", &file), 0);
    ASSERT_EQ(hst_stat(".", &directory), 0);
    EXPECT_EQ(file.iSize, 5);
    EXPECT_TRUE(file.bRegular && !file.bDirectory);
    EXPECT_TRUE(directory.bDirectory && !directory.bRegular);
    // A file written before the clock is read never looks newer: the file cache depends on it.
    EXPECT_LE(file.tModified, hst_time());
    EXPECT_GE(file.tModified, hst_time() - 60);

    const timespec times[2] = {{1000000000, 0}, {1234567890, 999999999}};
    ASSERT_EQ(utimensat(AT_FDCWD, "a.ibs", times, 0), 0);
    ASSERT_EQ(hst_stat("a.ibs", &file), 0);
    EXPECT_EQ(file.tModified, 1234567890);
    EXPECT_EQ(hst_stat("absent", &file), -1);
    EXPECT_EQ(hst_stat(nullptr, &file), -1);
    EXPECT_EQ(hst_stat("a.ibs", nullptr), -1);
    EXPECT_EQ(file.tModified, 1234567890);
}

TEST_F(HostFiles, OnlyFilesAndPipesAreRead)
{
    std::ofstream("\xC3\xA4.ibs") << "text";
    fs::create_directory("folder");
    ASSERT_EQ(mkfifo("idle", 0600), 0);
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    std::thread slowWriter([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_EQ(write(pipe[1], "piped", 5), 5);
        close(pipe[1]);
    });
    EXPECT_EQ(Read("/dev/fd/" + std::to_string(pipe[0])), "piped");
    slowWriter.join();
    close(pipe[0]);

    EXPECT_EQ(Read("\xC3\xA4.ibs"), "text");
    EXPECT_EQ(Read("\xC3\xA4.ibs", "rb"), "text");
    EXPECT_EQ(Read("idle"), "");
    EXPECT_EQ(Read("folder"), std::strerror(EISDIR));
    EXPECT_EQ(Read("/dev/zero"), std::strerror(ENODEV));
    EXPECT_EQ(Read("absent"), std::strerror(ENOENT));
    EXPECT_EQ(Read(""), std::strerror(ENOENT));
    EXPECT_EQ(Read("folder", nullptr), std::strerror(EINVAL));
}

TEST_F(HostFiles, PathsWriteListRemoveAndResolve)
{
    for (const char* name : {"b.pkg", "B.pkg", ".hidden", "\xC3\xA4.pkg", "a.pkg"}) {
        FILE* stream = HostPath(name).fopen("w");
        ASSERT_NE(stream, nullptr);
        std::fclose(stream);
    }
    fs::create_directory("folder");
    EXPECT_EQ(HostPath(".").list(), (Names{".hidden", "B.pkg", "a.pkg", "b.pkg", "folder", "\xC3\xA4.pkg"}));
    for (const char* none : {"a.pkg", "absent", ""}) {
        EXPECT_EQ(HostPath(none).list(), Names{}) << none;
    }

    EXPECT_TRUE(HostPath("a.pkg").remove());
    EXPECT_FALSE(HostPath("a.pkg").remove());
    EXPECT_FALSE(HostPath("folder").remove());
    EXPECT_EQ(hst_remove("b.pkg"), 0);
    EXPECT_EQ(hst_remove(nullptr), -1);
    EXPECT_EQ(HostPath(".").list(), (Names{".hidden", "B.pkg", "folder", "\xC3\xA4.pkg"}));

    EXPECT_EQ(HostPath::currentDirectory(), m_directory.string());
    EXPECT_EQ(HostPath("models/tx").absolute(), m_directory.string() + "/models/tx");
    EXPECT_EQ(HostPath("/models/tx").absolute(), "/models/tx");
    EXPECT_EQ(HostPath("").absolute(), "");
}

TEST_F(HostFiles, TemporaryFilesArePrivateAndGoAway)
{
    std::string path;
    {
        HostTempFile file("ibisc");
        const HostTempFile other("ibisc");
        path = file.path();
        EXPECT_NE(other.path(), path);
        EXPECT_TRUE(path.starts_with(m_directory.string() + "/ibisc")) << path;
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_TRUE(file.remove());
        EXPECT_FALSE(fs::exists(path));
        EXPECT_FALSE(file.remove());
    }
    EXPECT_EQ(HostPath(".").list(), Names{});

    setenv("TMPDIR", (m_directory / "absent").c_str(), 1);
    EXPECT_TRUE(HostTempFile("ibisc").path().starts_with("/tmp/ibisc"));
    EXPECT_EQ(hst_tempnam("no/such/folder"), "");
    EXPECT_EQ(hst_tempnam(nullptr), "");
}

namespace
{

// A value as text: [1, "two", nil], and `?` for a string without text.
std::string Show(QVALUE value)
{
    int number = 0;
    if (value == nullptr) {
        return "nil";
    }
    if (qval_integer_value(value, &number) != 0) {
        return std::to_string(number);
    }
    if (!qval_is_list(value)) {
        const char* text = qval_value_data(value);
        return text == nullptr ? "?" : '"' + std::string(text) + '"';
    }
    std::string items;
    for (std::size_t i = 0; i < qval_list_size(value); ++i) {
        items += (i == 0 ? "" : ", ") + Show(qval_list_item(value, i));
    }
    return "[" + items + "]";
}

using Value = std::unique_ptr<VALUE_HEADER, void (*)(QVALUE)>;

Value Own(QVALUE value)
{
    return {value, qval_free_value};
}

// Gives its parameters back as a list; one that is neither string nor integer is reported and left out.
QVALUE Echo()
{
    QVALUE result = qval_create_list(static_cast<std::size_t>(qrun_num_parm()));
    for (int i = 0; i < qrun_num_parm(); ++i) {
        QVALUE value = nullptr;
        if (qrun_get_typed_parm(i, QvalString, &value) == 0 &&
            qrun_get_typed_parm(i, QvalInteger, &value) == 0) {
            qrun_parm_error(304, i, "string parameter is expected");
        }
        qval_put_list_item(result, static_cast<std::size_t>(i), value);
        qval_free_value(value);
    }
    return result;
}

// Calls Echo with one bad parameter of its own, then goes on in its own frame.
QVALUE Nest()
{
    const QVALUE parameters[] = {nullptr};
    const Value inner = Own(qel_call("deEcho", parameters));
    qrun_parm_error(7, qrun_num_parm(), nullptr);
    return Echo();
}

}  // namespace

TEST(QelRuntime, ListsShareTheirItems)
{
    const Value list = Own(qval_create_list(3));
    Value text = Own(qval_create_string("two"));
    const Value number = Own(qval_create_raw_integer(-1));
    EXPECT_EQ(qval_put_list_item(list.get(), 0, number.get()), 1);
    EXPECT_EQ(qval_put_list_item(list.get(), 1, text.get()), 1);
    EXPECT_EQ(qval_put_list_item(list.get(), 1, text.get()), 1);
    text.reset();
    EXPECT_EQ(Show(list.get()), "[-1, \"two\", nil]");
    EXPECT_EQ(qval_put_list_item(list.get(), 1, number.get()), 1);
    EXPECT_EQ(qval_put_list_item(list.get(), 3, number.get()), 0);
    EXPECT_EQ(qval_put_list_item(list.get(), 0, nullptr), 0);
    EXPECT_EQ(qval_put_list_item(number.get(), 0, list.get()), 0);
    EXPECT_EQ(Show(list.get()), "[-1, -1, nil]");
    EXPECT_EQ(qval_create_list(SIZE_MAX), nullptr);

    int untouched = 5;
    EXPECT_EQ(qval_integer_value(list.get(), &untouched), 0);
    EXPECT_EQ(untouched, 5);
    EXPECT_EQ(qval_value_data(number.get()), nullptr);
}

TEST(QelRuntime, DeepListsAreFreedWithoutRecursion)
{
    QVALUE list = qval_create_list(0);
    for (int i = 0; i < 300000; ++i) {
        QVALUE outer = qval_create_list(1);
        ASSERT_EQ(qval_put_list_item(outer, 0, list), 1);
        qval_free_value(list);
        list = outer;
    }
    qval_free_value(list);
}

TEST(QelRuntime, CallsHaveFramesOfTheirOwn)
{
    static const QEL_ROW rows[] = {{"deEcho", Echo}, {"deNest", Nest}};
    static const QEL_TABLE table = {"QEL", rows, std::size(rows)};
    ASSERT_NE(qutil_initialize(0, 0, 0, 1, &table), 0);

    const std::array values{Own(qval_create_string("a")), Own(qval_create_string(nullptr)),
                            Own(qval_create_raw_integer(3)), Own(qval_create_list(0))};
    const QVALUE parameters[] = {values[0].get(), values[1].get(), values[2].get(), values[3].get()};
    using Errors = std::vector<QEL_PARM_ERROR>;
    Errors errors;
    EXPECT_EQ(Show(Own(qel_call("deNest", parameters, &errors)).get()), "[\"a\", ?, 3, nil]");
    EXPECT_EQ(errors, (Errors{{7, 4, ""}, {304, 3, "string parameter is expected"}}));
    EXPECT_EQ(Show(Own(qel_call("deEcho", {})).get()), "[]");
    EXPECT_EQ(qel_call("deAbsent", parameters), nullptr);
    EXPECT_EQ(qel_call(nullptr, parameters), nullptr);

    QVALUE value = nullptr;
    EXPECT_EQ(qrun_num_parm(), 0);
    EXPECT_EQ(qrun_get_typed_parm(0, QvalString, &value), 0);
    qrun_parm_error(304, 0, "outside a call");
}

TEST(QelRuntime, TablesAreTakenWholeOrNotAtAll)
{
    static const QEL_ROW good[] = {{"deLate", Echo}};
    static const QEL_ROW bad[] = {{"deEarly", Echo}, {"deNoHandler", nullptr}};
    const QEL_TABLE tables[] = {{"TCL", good, 1}, {nullptr, good, 1}, {"QEL", nullptr, 1}, {"QEL", bad, 2}};
    for (const QEL_TABLE& table : tables) {
        EXPECT_EQ(qutil_initialize(0, 0, 0, 1, &table), 0);
    }
    EXPECT_EQ(qel_call("deEarly", {}), nullptr);
    EXPECT_EQ(qel_call("deLate", {}), nullptr);
}
