// The read entry and the file cache.

#include "ibis/interface/talibis.h"
#include "ibis/interface/talibis_tool.h"
#include "ibis/source/nuibis_cmn.h"
#include "ibis/source/nuibis_ibis.h"
#include "ibis/source/nuibis_ibis11.h"
#include "ibis/source/nuibis_parse.h"
#include "ibis/source/nuibis_sniff.h"
#include "platform/hostport.h"
#include "platform/internpool.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>

namespace
{

TalIbisFileManager* gpFileManager = nullptr;  // made on first use
ibis_ver geSniffedVersion = IBIS_VER_NONE;    // of the last read; distinct from the version of the parse
TalIbisListener gpToolListener = nullptr;
void* gpToolContext = nullptr;

constexpr std::size_t BLOCK_SIZE = 2048;

// Tab, line feed, carriage return and form feed pass, and the end-of-file mark of old systems. Bytes of 32
// and above are the line reader's business.
bool IsBinary(std::span<const char> block)
{
    constexpr std::uint32_t mask = 0xfbffc9ff;
    return std::any_of(block.begin(), block.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 32 && ((mask >> byte) & 1U) != 0;
    });
}

// Texts of the entry itself: they have no number and are not counted.
void AddEntryError(const char* text)
{
    MSG_Add(MSG_TYPE_ERROR, text);
}

ibis* CurrentRoot()
{
    ibis* root = nullptr;
    IBIS_GetCurrent(&root);
    return root;
}

void SlashName(std::span<char> out, const char* name)
{
    CMN_CopyText(out, name, CMN_PATH_LIMIT);
    std::replace(out.begin(), out.end(), '\\', '/');
}

const char* SeverityWord(MSG_Severity severity)
{
    static constexpr std::array<const char*, 5> words{"bug", "error", "warning", "caution", "note"};
    return words[static_cast<std::size_t>(severity)];
}

void PassOn(void*, const MSG_Event& event)
{
    gpToolListener(gpToolContext, TalIbisFinding{SeverityWord(event.eSeverity), event.iCode, event.uiLine,
                                                 event.bLine, event.sFile, event.sText});
}

}  // namespace

void TalIbisMapping::add(const char* name, ibis_file_type, TalIbis* ibis)
{
    handles.insert_or_assign(name, ibis);
}

TalIbis* TalIbisMapping::find(const char* name) const
{
    const auto entry = handles.find(name);
    return entry == handles.end() ? nullptr : entry->second;
}

void TalIbisMapping::erase(const char* name)
{
    handles.erase(name);
}

TalIbisFileManager* TalIbisFileManager::getInstance()
{
    if (gpFileManager == nullptr) {
        gpFileManager = new (std::nothrow) TalIbisFileManager();
    }
    return gpFileManager;
}

void TalIbisFileManager::destroyInstance()
{
    delete gpFileManager;
    gpFileManager = nullptr;
}

void TalIbisFileManager::release(TalIbis* handle)
{
    delete handle->pErrors;
    delete handle;
}

TalIbisFileManager::~TalIbisFileManager()
{
    for (const auto& [name, handle] : handles) {
        release(handle);
    }
    if (ibis* const root = CurrentRoot(); root != nullptr) {
        IBIS_Free(root);
    }
}

// The root of the former read stays on the list of roots.
void TalIbisFileManager::drop(const char* name, TalIbis* handle)
{
    release(handle);
    erase(name);
}

TalIbis* TalIbisFileManager::getIbis(const char* name, ibis_file_type type)
try {
    if (name == nullptr) {
        return nullptr;
    }
    const char* const key = InternPool::Private::singleton().insertC(name);
    if (TalIbis* const cached = find(key); cached != nullptr) {
        hst_stat_t info;
        if (hst_stat(key, &info) == 0 && info.tModified <= cached->tTimeStamp) {
            return cached;
        }
        drop(key, cached);
    }
    ibis_ver version = IBIS_VER_NONE;
    if (!readIbisFile(key, type, &version) || CurrentRoot() == nullptr) {
        return nullptr;
    }
    auto handle = std::make_unique<TalIbis>(key, type, version);
    handle->setIbis(CurrentRoot());
    // "Read at": a file that is touched in the second of its read counts as unchanged.
    handle->setFileTimeStamp(hst_time());
    add(key, type, handle.get());
    handle->setErrorContainer(*MSG_GetContainer());
    return handle.release();
} catch (const std::bad_alloc&) {
    return nullptr;
}

bool TalIbisFileManager::readIbisFile(const char* name, ibis_file_type type, ibis_ver* version)
{
    ibis_ver ignored = IBIS_VER_NONE;
    ibis_ver& result = version == nullptr ? ignored : *version;
    MSG_GetContainer()->clear();
    if (name == nullptr) {
        AddEntryError("ERROR - IBIS filename is not given.\n");
        return false;
    }
    CMN_Path path{};
    SlashName(path, name);
    if (!validateFile(path.data(), type)) {
        return false;
    }
    int lines = 0;
    const ibis_ver sniffed = CMN_SniffVersion(path.data(), &lines, type);
    if (sniffed != IBIS_VER_NONE && !CMN_HasFileType(sniffed, type)) {
        AddEntryError("ERROR - Version not valid for .ebd files.\n");
        return false;
    }
    if (sniffed == IBIS_VER_NONE) {
        if (lines > 0) {
            AddEntryError(
                "ERROR - IBIS Version Cannot be Determined. Perhaps the file is not an IBIS file.\n");
        }
        result = IBIS_VER_NONE;
        return false;
    }
    geSniffedVersion = sniffed;
    result = sniffed;
    if (sniffed == IBIS_VER_1) {
        IBIS11_CheckFile(path.data());
        return true;
    }
    return doReadIbisFile(path.data(), type);
}

ibis_ver TalIbisFileManager::getSniffedVersion()
{
    return geSniffedVersion;
}

bool TalIbisFileManager::doReadIbisFile(const char* name, ibis_file_type type)
{
    if (!IBIS_Create() || !PARSE_ReadFile(name, type)) {
        return false;
    }
    IBIS_Finish(name, type, 0);
    return true;
}

bool TalIbisFileManager::validateFile(const char* name, ibis_file_type type)
{
    if (name == nullptr) {
        return false;
    }
    CMN_Stream stream;
    CMN_Path baseName;
    if (!CMN_OpenFile(name, type, stream, baseName)) {
        return false;
    }
    // A shorter file is not looked at: the line reader reports its characters one by one.
    std::array<char, BLOCK_SIZE> block;
    if (stream.readBlock(block) == block.size() && IsBinary(block)) {
        AddEntryError("ERROR - The file is a binary file, not an IBIS file.\n");
        return false;
    }
    return true;
}

const IbisErrorContainer* talReadIbisFile(const char* name, ibis_file_type type, TalIbis** out)
{
    TalIbisFileManager* const manager = TalIbisFileManager::getInstance();
    if (out == nullptr || manager == nullptr) {
        return MSG_GetContainer();
    }
    *out = manager->getIbis(name, type);
    return talGetIbisError(*out);
}

const IbisErrorContainer* talGetIbisError(const TalIbis* ibis)
{
    TalIbisFileManager::getInstance();
    return ibis != nullptr ? ibis->getErrorContainer() : MSG_GetContainer();
}

void talSetListener(TalIbisListener listener, void* context)
{
    gpToolListener = listener;
    gpToolContext = context;
    MSG_SetListener(listener == nullptr ? nullptr : PassOn, nullptr);
}

void talSetCautions(bool on)
{
    MSG_SetSuppressCautions(!on);
}

// A parameter file declares no version of its own and is judged as 6.1.
const IbisErrorContainer* talReadParameterFile(const char* name, ibis_file_type type)
{
    MSG_GetContainer()->clear();
    CMN_Path path{};
    SlashName(path, name);
    geIbisVersion = IBIS_VER_6_1;
    return TalIbisFileManager::doReadIbisFile(path.data(), type) ? MSG_GetContainer() : nullptr;
}
