// Names of resources: what is found lies in a folder of resources, whatever the name.

#include "Fuzz.h"

#include <gui/Res.h>

#include <filesystem>
#include <fstream>

namespace fuzz::resource
{

namespace
{

namespace fs = std::filesystem;

/// A folder with a resource in it and a file beside it that no name may reach. Goes away with the program.
class Folders
{
public:
    Folders()
        : _path(fs::temp_directory_path() / ("guigl-names-" + std::to_string(fs::hash_value(fs::current_path())) + "-" +
                                             fs::read_symlink("/proc/self").string()))
    {
        fs::create_directories(_path / "inside/a");
        for (const char* const file : {"inside/a/b", "outside"})
            std::ofstream(_path / file) << file;
        gui::Res::addSearchFolder((_path / "inside").c_str());
    }

    ~Folders() { fs::remove_all(_path); }

    bool isInside(const fs::path& file) const
    {
        return fs::canonical(file).string().starts_with(fs::canonical(_path / "inside").string() + "/");
    }

private:
    fs::path _path;
};

void run(const std::uint8_t* bytes, std::size_t n)
{
    static const Folders s_folders;
    static const fs::path s_beside = fs::read_symlink("/proc/self/exe").parent_path();
    Quiet quiet;
    const std::string name(reinterpret_cast<const char*>(bytes), n);

    td::StringBase fileName("before");
    std::span<const td::BYTE> compiled;
    const bool isCompiled = gui::Res::getCompiled(name.c_str(), compiled);
    const bool isFound = gui::Res::getFileName(name.c_str(), fileName);
    require(isFound || fileName == td::StringBase("before"), "the file name is what it was");
    require(isFound || !isCompiled, "what is compiled in has a file");
    if (isFound && !isCompiled)
    {
        const fs::path file(fileName.c_str());
        require(fs::is_regular_file(file), "a resource is a file");
        const bool isBeside = fs::canonical(file).string().starts_with(s_beside.string() + "/");
        require(s_folders.isInside(file) || isBeside, "no name leads out of the folders");
    }
    if (isFound && isCompiled)
        require(fs::file_size(fileName.c_str()) == compiled.size(), "the file holds the resource");
    require(quiet.nLines == 0, "a name that is none is no matter for the log");
    gui::getResText(name.c_str());
    require(quiet.nLines <= 1, "one line at most");
}

const Target cTarget("resource", run);

} // namespace

} // namespace fuzz::resource
