#include <gui/Res.h>

#include "CompiledResources.h"
#include "FileBytes.h"
#include "ReadResource.h"

#include <td/Assert.h>
#include <vo/Log.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace gui
{

namespace
{

namespace fs = std::filesystem;

constexpr std::size_t cMaxTextBytes = std::size_t(64) << 20;

std::vector<fs::path>& searchFolders()
{
    static std::vector<fs::path>* const pFolders = new std::vector<fs::path>;
    return *pFolders;
}

fs::path executableFolder()
{
    std::error_code error;
    const fs::path executable = fs::read_symlink("/proc/self/exe", error);
    return executable.parent_path();
}

/// The name without its colon; empty when it names nothing, or something outside the folders.
std::string_view resourceName(const char* name)
{
    std::string_view text = name != nullptr ? name : "";
    if (text.starts_with(':'))
        text.remove_prefix(1);
    const fs::path path(text);
    if (path.has_root_path())
        return {};
    for (const fs::path& part : path)
        if (part == "..")
            return {};
    return text;
}

bool isFileIn(const fs::path& folder, std::string_view name, fs::path& file)
{
    const fs::path candidate = folder / name;
    std::error_code error;
    if (!fs::is_regular_file(candidate, error))
        return false;
    file = candidate;
    return true;
}

bool isFileInEnvironment(std::string_view name, fs::path& file)
{
    const char* const variable = ::secure_getenv("GUIGL_RESOURCES");
    std::string_view rest = variable != nullptr ? variable : "";
    while (!rest.empty())
    {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
        if (!folder.empty() && isFileIn(folder, name, file))
            return true;
    }
    return false;
}

/// The file of a resource, compiled-in ones left aside. @param name  from resourceName()
bool findFile(std::string_view name, fs::path& file)
{
    for (const fs::path& folder : searchFolders())
        if (isFileIn(folder, name, file))
            return true;
    if (isFileInEnvironment(name, file))
        return true;
    const fs::path beside = executableFolder();
    if (!beside.empty() && (isFileIn(beside, name, file) || isFileIn(beside / "resources", name, file)))
        return true;
    return isFileIn(GUIGL_DATA_FOLDER, name, file) ||
           (!beside.empty() && isFileIn(beside.parent_path() / "share" / "guigl", name, file));
}

} // namespace

void Res::addSearchFolder(const char* folder)
{
    TD_ASSERT(folder != nullptr && *folder != '\0');
    std::error_code error;
    const fs::path path = fs::absolute(folder, error);
    searchFolders().push_back(error ? fs::path(folder) : path);
}

bool Res::getFileName(const char* name, td::StringBase& fileName)
{
    const std::string_view plainName = resourceName(name);
    if (plainName.empty())
        return false;
    fs::path file;
    if (!findFile(plainName, file))
    {
        CompiledResources& compiled = CompiledResources::instance();
        if (!compiled.find(plainName))
            return false;
        file = compiled.fileOf(plainName);
        if (file.empty())
        {
            vo::dbgLog("ERROR! Res::getFileName cannot write file for resource: %s", name);
            return false;
        }
    }
    fileName = file.c_str();
    return true;
}

bool Res::find(const char* name, td::StringBase& path, std::span<const td::BYTE>& bytes)
{
    fs::path file;
    if (const std::string_view plainName = resourceName(name); !plainName.empty() && findFile(plainName, file))
    {
        path = file.c_str();
        return true;
    }
    if (!getCompiled(name, bytes))
        return false;
    path = td::StringBase();
    return true;
}

bool Res::getCompiled(const char* name, std::span<const td::BYTE>& bytes)
{
    const auto found = CompiledResources::instance().find(resourceName(name));
    if (!found)
        return false;
    bytes = *found;
    return true;
}

void Res::addCompiled(std::span<const CompiledResource> resources) { CompiledResources::instance().add(resources); }

void Res::removeCompiled(std::span<const CompiledResource> resources)
{
    CompiledResources::instance().remove(resources);
}

bool readResource(const char* name, std::size_t maxBytes, std::vector<td::BYTE>& content,
                  std::span<const td::BYTE>& bytes, std::string& cause)
{
    const std::string_view plainName = resourceName(name);
    fs::path file;
    if (!plainName.empty() && findFile(plainName, file))
    {
        if (!readFile(file.c_str(), maxBytes, content, cause))
            return false;
        bytes = content;
        return true;
    }
    if (Res::getCompiled(name, bytes))
        return true;
    cause = plainName.empty() ? "not a resource name" : "no such resource";
    return false;
}

td::StringBase getResText(const char* name)
{
    std::vector<td::BYTE> content;
    std::span<const td::BYTE> bytes;
    std::string cause;
    if (readResource(name, cMaxTextBytes, content, bytes, cause))
        return td::StringBase(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    vo::dbgLog("ERROR! getResText cannot load resource: %s (%s)", name != nullptr ? name : "(null)", cause.c_str());
    return {};
}

} // namespace gui
