#include "bench/files.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace
{

class Folder
{
  public:
    Folder() : mPath((std::filesystem::temp_directory_path() / "talibis_bench_XXXXXX").string())
    {
        if (mkdtemp(mPath.data()) == nullptr) {
            std::abort();
        }
    }
    ~Folder() { std::filesystem::remove_all(mPath); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& path() const { return mPath; }

  private:
    std::string mPath;
};

}  // namespace

std::string BenchPath(const std::string& name)
{
    static const Folder folder;
    return folder.path() + "/" + name;
}

std::string WriteBenchFile(const std::string& name, const std::string& text)
{
    const std::string path = BenchPath(name);
    std::ofstream(path, std::ios::binary) << text;
    return path;
}
