#include "fuzz/target.h"

#include "ibis/source/nuibis_msg.h"
#include "ibis/source/nuibis_state.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>

namespace
{

// In memory where the system has such a place, since every input is written before it is read.
class Folder
{
  public:
    Folder()
    {
        const std::filesystem::path shared = "/dev/shm";
        const std::filesystem::path base =
            std::filesystem::is_directory(shared) ? shared : std::filesystem::temp_directory_path();
        mPath = (base / "talibis_fuzz_XXXXXX").string();
        if (mkdtemp(mPath.data()) == nullptr) {
            std::perror("no folder for the inputs");
            std::exit(1);
        }
    }
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    const std::string& pathOf(std::string_view name)
    {
        std::string& path = mFiles[std::string(name)];
        if (path.empty()) {
            path = mPath + "/" + std::string(name);
        }
        return path;
    }

  private:
    std::string mPath;
    std::map<std::string, std::string> mFiles;
};

}  // namespace

const std::string& FUZZ_Write(std::string_view name, std::string_view content)
{
    static Folder folder;
    const std::string& path = folder.pathOf(name);
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr || std::fwrite(content.data(), 1, content.size(), file) != content.size()) {
        std::perror(path.c_str());
        std::exit(1);
    }
    std::fclose(file);
    return path;
}

void FUZZ_Scope::forget()
{
    TalIbisFileManager::getInstance();  // a parameter file read on its own makes none, and then frees nothing
    TalIbisFileManager::destroyInstance();
    geIbisVersion = IBIS_VER_NONE;
    geFileType = IBIS_FILE_NONE;
    guiLineNumber = 0;
    MSG_ClearContainer();
    talSetCautions(true);
}

TalIbis* FUZZ_Read(std::string_view name, ibis_file_type type, std::string_view content)
{
    TalIbis* handle = nullptr;
    talReadIbisFile(FUZZ_Write(name, content).c_str(), type, &handle);
    return handle;
}
