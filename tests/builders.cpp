#include "tests/builders.h"

#include "ibis/interface/talibis_tool.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_msg.h"
#include "ibis/source/nuibis_state.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{

// Removes the folder when the process ends.
struct Folder {
    std::string sPath;
    Folder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "talibis_test_XXXXXX").string();
        sPath = mkdtemp(pattern.data()) == nullptr ? "." : pattern;
    }
    ~Folder()
    {
        std::error_code ignored;
        if (sPath != ".") {
            std::filesystem::remove_all(sPath, ignored);
        }
    }
};

ibis_file_type TypeOf(std::string_view name)
{
    const std::string_view extension = name.substr(std::min(name.rfind('.'), name.size()));
    return extension == ".pkg"   ? IBIS_FILE_PKG
           : extension == ".ebd" ? IBIS_FILE_EBD
           : extension == ".ami" ? IBIS_FILE_AMI
                                 : IBIS_FILE_IBS;
}

Lines Texts(const IbisErrorContainer& findings)
{
    Lines lines;
    for (std::size_t i = 0; i < findings.getNumErrors(); ++i) {
        std::string text = findings.getErrMsg(i);
        if (text.ends_with('\n')) {
            text.pop_back();
        }
        lines.push_back(text);
    }
    return lines;
}

// Names behind the keywords that a pin may refer to.
Lines ReferableNames(std::string_view body)
{
    Lines names;
    std::istringstream lines{std::string(body)};
    for (std::string line; std::getline(lines, line);) {
        for (const std::string_view keyword : {"[Model] ", "[Model Selector] "}) {
            if (line.starts_with(keyword)) {
                names.push_back(line.substr(keyword.size()));
            }
        }
    }
    return names;
}

// A read of an earlier file leaves its version behind; a fresh process has none.
void ForgetFormerRead()
{
    TalIbisFileManager::destroyInstance();
    geIbisVersion = IBIS_VER_NONE;
    geFileType = IBIS_FILE_NONE;
    guiLineNumber = 0;
    MSG_ClearContainer();
}

}  // namespace

const std::string& TestFolder()
{
    static const Folder folder;
    return folder.sPath;
}

std::string WriteTestFile(std::string_view name, std::string_view content)
{
    const std::string path = TestFolder() + "/" + std::string(name);
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

QuietTotals::QuietTotals() : mpFile(std::fopen("/dev/null", "w"))
{
    MSG_SetSummaryStream(mpFile);
}

QuietTotals::~QuietTotals()
{
    MSG_SetSummaryStream(nullptr);
    std::fclose(mpFile);
}

Lines StoredMessages()
{
    return Texts(*MSG_GetContainer());
}

Lines MessagesOfFile(const std::string& path, ibis_file_type type)
{
    ForgetFormerRead();
    if (type == IBIS_FILE_AMI || type == IBIS_FILE_PARAM) {  // declare no version, so they are read alone
        const IbisErrorContainer* const findings = talReadParameterFile(path.c_str(), type);
        return Texts(findings == nullptr ? *talGetIbisError(nullptr) : *findings);
    }
    TalIbis* handle = nullptr;
    return Texts(*talReadIbisFile(path.c_str(), type, &handle));
}

Lines Messages(std::string_view content, std::string_view name)
{
    return MessagesOfFile(WriteTestFile(name, content), TypeOf(name));
}

Lines MessagesWith(std::string_view part, std::string_view content, std::string_view name)
{
    Lines lines = Messages(content, name);
    std::erase_if(lines, [part](const std::string& line) { return line.find(part) == std::string::npos; });
    return lines;
}

Lines MessagesOf(const std::function<void()>& calls)
{
    MSG_ClearContainer();
    geIbisVersion = IBIS_VER_5;
    geFileType = IBIS_FILE_IBS;
    guiLineNumber = 0;
    calls();
    return Texts(*MSG_GetContainer());
}

Lines Unfolded(Lines lines)
{
    for (std::string& line : lines) {
        if (const std::size_t fold = line.find(" -\n    "); fold != std::string::npos) {
            line.replace(fold, 7, " - ");
        }
    }
    return lines;
}

TalIbis* ReadHandle(std::string_view content, std::string_view name)
{
    ForgetFormerRead();
    TalIbis* handle = nullptr;
    talReadIbisFile(WriteTestFile(name, content).c_str(), TypeOf(name), &handle);
    EXPECT_NE(handle, nullptr);
    return handle;
}

ibis* RootOf(std::string_view content)
{
    ReadHandle(content);
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    MSG_ClearContainer();
    return root;
}

std::string Edit(std::string text, const std::vector<std::pair<std::string, std::string>>& edits)
{
    for (const auto& [from, to] : edits) {
        const std::size_t place = text.find(from);
        EXPECT_NE(place, std::string::npos) << from;
        if (place != std::string::npos) {
            text.replace(place, from.size(), to);
        }
    }
    return text;
}

std::string Header(std::string_view version, std::string_view fileName)
{
    std::ostringstream out;
    out << "[IBIS Ver] " << version << "\n[File Name] " << fileName << "\n[File Rev] 1.0\n";
    return out.str();
}

std::string Component(std::string_view name, std::string_view pinLines, std::string_view extra)
{
    std::ostringstream out;
    out << "[Component] " << name
        << "\n[Manufacturer] Acme\n"
           "[Package]\n"
           "R_pkg 50m 40m 60m\n"
           "L_pkg 2nH 1nH 3nH\n"
           "C_pkg 1pF 0.8pF 1.2pF\n"
           "[Pin] signal_name model_name R_pin L_pin C_pin\n"
        << pinLines << extra;
    return out.str();
}

std::string Model(std::string_view name, std::string_view extra)
{
    std::ostringstream out;
    out << "[Model] " << name
        << "\nModel_type Input\n"
           "Vinl = 0.8\n"
           "Vinh = 2.0\n"
           "C_comp 5pF 4pF 6pF\n"
           "[Voltage Range] 3.3 3.0 3.6\n"
        << extra;
    return out.str();
}

// Straight lines of 50 Ohm to either rail. Into 50 Ohm the output swings over half of the supply, of which
// the ramp gives 60 percent: 0.6 * 3.3 V / 2 = 0.99 V, and 0.9 V and 1.08 V at the corners.
std::string Driver(std::string_view name, std::string_view extra)
{
    std::ostringstream out;
    out << "[Model] " << name
        << "\nModel_type Output\n"
           "Vmeas = 1.5\n"
           "Cref = 50pF\n"
           "Rref = 500\n"
           "Vref = 0\n"
           "C_comp 5pF 4pF 6pF\n"
           "[Voltage Range] 3.3 3.0 3.6\n"
           "[Pulldown]\n"
           "-3.3 -66m -66m -66m\n"
           "0 0 0 0\n"
           "6.6 132m 132m 132m\n"
           "[Pullup]\n"
           "-3.3 66m 66m 66m\n"
           "0 0 0 0\n"
           "6.6 -132m -132m -132m\n"
           "[Ramp]\n"
           "dV/dt_r 0.99/1n 0.9/1.5n 1.08/0.8n\n"
           "dV/dt_f 0.99/1n 0.9/1.5n 1.08/0.8n\n"
           "R_load = 50\n"
        << extra;
    return out.str();
}

std::string Ibs(std::string_view body, std::string_view version, std::string_view componentExtra)
{
    std::string pins;
    int number = 0;
    for (const std::string& name : ReferableNames(body)) {
        const std::string pin = std::to_string(++number);
        pins += pin + " S" + pin + " " + name + " 50m 2nH 1pF\n";
    }
    pins += std::to_string(++number) + " VSS GND 50m 2nH 1pF\n";
    return Bare(Component("U1", pins, componentExtra) + std::string(body), version);
}

std::string Bare(std::string_view body, std::string_view version)
{
    return Header(version) + std::string(body) + "[End]\n";
}
