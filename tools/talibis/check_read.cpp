#include "tools/talibis/check_read.h"

#include "ibis/interface/talibis_tool.h"
#include "ibis/source/nuibis_msg.h"
#include "tools/talibis/check_place.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <unordered_map>
#include <utility>

namespace
{

struct TypeName {
    std::string_view sName;
    std::string_view sExtension;
    ibis_file_type eType;
};

constexpr std::array<TypeName, 5> TYPES{{
    {"ibs", ".ibs", IBIS_FILE_IBS},
    {"pkg", ".pkg", IBIS_FILE_PKG},
    {"ebd", ".ebd", IBIS_FILE_EBD},
    {"ami", ".ami", IBIS_FILE_AMI},
    {"param", "", IBIS_FILE_PARAM},
}};

const TypeName* RowOf(std::string_view path)
{
    std::string extension(path.substr(std::min(path.rfind('.'), path.size())));
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return std::find_if(TYPES.begin(), TYPES.end() - 1,
                        [&](const TypeName& type) { return type.sExtension == extension; });
}

void Collect(void* context, const TalIbisFinding& told)
{
    Finding& finding = static_cast<std::vector<Finding>*>(context)->emplace_back();
    finding.severity = SeverityOf(told.pszSeverity);
    finding.code = told.iCode;
    finding.hasLine = told.bLine;
    finding.line = told.uiLine;
    finding.text = told.sText;
    finding.file = told.sFile;
}

struct ReadResult {
    const IbisErrorContainer* findings;
    bool readable;
};

ReadResult Read(const std::string& path, ibis_file_type type)
{
    if (type == IBIS_FILE_AMI || type == IBIS_FILE_PARAM) {
        const IbisErrorContainer* const findings = talReadParameterFile(path.c_str(), type);
        return {findings == nullptr ? talGetIbisError(nullptr) : findings, findings != nullptr};
    }
    TalIbis* handle = nullptr;
    const IbisErrorContainer* const findings = talReadIbisFile(path.c_str(), type, &handle);
    // Files of version 1.x are checked by a reader that keeps no records, so they have no handle.
    return {findings, handle != nullptr || TalIbisFileManager::getSniffedVersion() == IBIS_VER_1};
}

Finding WithoutStructure(const IbisErrorMessage& message)
{
    Finding finding;
    finding.severity = message.getType() == MSG_TYPE_ERROR ? Severity::Error : Severity::Warning;
    finding.text = message.getErrMsg();
    return finding;
}

// What was told, by its text; equal texts in the order in which they came.
class Heard
{
  public:
    explicit Heard(std::vector<Finding> findings) : mFindings(std::move(findings)), mNext(mFindings.size())
    {
        for (std::size_t i = mFindings.size(); i-- > 0;) {
            const auto [entry, fresh] = mFirst.try_emplace(mFindings[i].text, i);
            mNext[i] = fresh ? mFindings.size() : std::exchange(entry->second, i);
        }
    }
    /// Null behind the last one of this text.
    const Finding* take(std::string_view text)
    {
        const auto entry = mFirst.find(text);
        if (entry == mFirst.end() || entry->second == mFindings.size()) {
            return nullptr;
        }
        return &mFindings[std::exchange(entry->second, mNext[entry->second])];
    }

  private:
    std::vector<Finding> mFindings;
    std::vector<std::size_t> mNext;
    std::unordered_map<std::string_view, std::size_t> mFirst;
};

// The stored messages with the structure that was told while they came. The listener also hears what went
// into other containers, so the two are matched by their texts.
std::vector<Finding> Match(const IbisErrorContainer& stored, Heard heard)
{
    std::vector<Finding> findings;
    for (std::size_t i = 0; i < stored.getNumErrors(); ++i) {
        const Finding* const told = heard.take(stored.getErrMsg(i));
        findings.push_back(told != nullptr ? *told : WithoutStructure(*stored.getError(i)));
    }
    return findings;
}

// A copy of the standard input is shown as what it stands for.
void ShowUnder(const std::string& name, const std::string& path, std::vector<Finding>& findings)
{
    for (Finding& finding : findings) {
        for (std::size_t at = finding.text.find(path); at != std::string::npos;
             at = finding.text.find(path, at + name.size())) {
            finding.text.replace(at, path.size(), name);
        }
    }
}

}  // namespace

ibis_file_type TypeOfName(std::string_view path)
{
    return RowOf(path)->eType;
}

void SilenceSummaries()
{
    MSG_SetSummaryStream(std::fopen("/dev/null", "w"));
}

bool IsModelFile(std::string_view path)
{
    return RowOf(path)->eType != IBIS_FILE_PARAM;
}

std::string_view NameOfType(ibis_file_type type)
{
    return std::find_if(TYPES.begin(), TYPES.end(), [type](const TypeName& row) { return row.eType == type; })
        ->sName;
}

FileReport ReadModelFile(const CheckFile& file, bool places)
{
    std::vector<Finding> heard;
    if (file.type == IBIS_FILE_EBD) {
        SilenceSummaries();
    }
    talSetListener(Collect, &heard);
    talSetCautions(true);
    const ReadResult result = Read(file.path, file.type);
    talSetListener(nullptr, nullptr);
    FileReport report{file.shown, std::string(NameOfType(file.type)), result.readable,
                      Match(*result.findings, Heard(std::move(heard)))};
    if (places) {
        FindPlaces(file.path, report.findings);
    }
    if (file.path != file.shown) {
        ShowUnder(file.shown, file.path, report.findings);
    }
    return report;
}
