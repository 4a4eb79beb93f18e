#include "ibis/source/nuibis_main.h"

#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_ibis11.h"
#include "ibis/source/nuibis_parse.h"
#include "ibis/source/nuibis_sniff.h"

#include <algorithm>
#include <array>

namespace
{

enum Exit : int {
    EXIT_DONE = 0,
    EXIT_USAGE = 1,
    EXIT_NO_LINE = 2,
    EXIT_NO_VERSION = 3,
};

struct Switch {
    std::string_view sSmall;
    std::string_view sCapital;
    ibis_file_type eType;

    bool is(std::string_view argument) const { return argument == sSmall || argument == sCapital; }
};

constexpr std::array<Switch, 3> FILE_SWITCHES{{
    {"-ebd", "-EBD", IBIS_FILE_EBD},
    {"-pkg", "-PKG", IBIS_FILE_PKG},
    {"-ami", "-AMI", IBIS_FILE_AMI},
}};
constexpr Switch CAUTION{"-caution", "-CAUTION", IBIS_FILE_NONE};

struct Request {
    const char* pszName = nullptr;
    ibis_file_type eType = IBIS_FILE_IBS;
};

// Takes an argument that only sets how messages come.
bool TakeSetting(std::string_view argument)
{
    if (CAUTION.is(argument)) {
        MSG_SetSuppressCautions(false);
        return true;
    }
    if (CMN_Equal(argument, "-numbered")) {
        MSG_SetPlainMessages(false);
        return true;
    }
    return false;
}

ibis_file_type TypeOfSwitch(std::string_view argument)
{
    const auto* const row = std::find_if(FILE_SWITCHES.begin(), FILE_SWITCHES.end(),
                                         [argument](const Switch& s) { return s.is(argument); });
    return row == FILE_SWITCHES.end() ? IBIS_FILE_NONE : row->eType;
}

// The file and, with two arguments, its kind.
bool ReadArguments(int argc, const char* const* argv, Request& request)
{
    std::array<const char*, 2> arguments{};
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        if (TakeSetting(argv[i])) {
            continue;
        }
        if (count < arguments.size()) {
            arguments[count] = argv[i];
        }
        ++count;
    }
    if (count == 1) {
        request.pszName = arguments[0];
        return true;
    }
    if (count != 2) {
        return false;
    }
    for (const std::size_t place : {0U, 1U}) {
        if (const ibis_file_type type = TypeOfSwitch(arguments[place]); type != IBIS_FILE_NONE) {
            request = {arguments[1 - place], type};
            return true;
        }
    }
    return false;
}

int ReadOldFile(const char* program, const char* name)
{
    const char* const argv[] = {program, name};
    return IBIS11_Main(2, argv);
}

int ReadFile(const Request& request)
{
    if (!IBIS_Create()) {
        return EXIT_USAGE;
    }
    PARSE_ReadFile(request.pszName, request.eType);
    IBIS_Finish(request.pszName, request.eType, 0);
    ibis* root = nullptr;
    if (IBIS_GetCurrent(&root)) {
        IBIS_Free(root);
    }
    MSG_Summary();
    return EXIT_DONE;
}

}  // namespace

int IBIS_Main(int argc, const char* const* argv)
{
    Request request;
    if (!ReadArguments(argc, argv, request)) {
        return EXIT_USAGE;
    }
    if (request.eType == IBIS_FILE_AMI) {
        geIbisVersion = IBIS_VER_6_1;
        return ReadFile(request);
    }
    int lines = 0;
    const ibis_ver version = CMN_SniffVersion(request.pszName, &lines, request.eType);
    if (version == IBIS_VER_NONE) {
        return lines == 0 ? EXIT_NO_LINE : EXIT_NO_VERSION;
    }
    if (!CMN_HasFileType(version, request.eType)) {
        return EXIT_NO_VERSION;
    }
    return version == IBIS_VER_1 ? ReadOldFile(argv[0], request.pszName) : ReadFile(request);
}
