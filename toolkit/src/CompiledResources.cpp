#include "CompiledResources.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <unistd.h>

namespace gui
{

namespace
{

namespace fs = std::filesystem;

bool writeFile(const fs::path& path, const CompiledResource& resource)
{
    std::FILE* const pFile = std::fopen(path.c_str(), "wbxe");
    if (pFile == nullptr)
        return false;
    const std::size_t nBytes = std::size_t(resource.end - resource.begin);
    const bool isWritten = std::fwrite(resource.begin, 1, nBytes, pFile) == nBytes;
    if (std::fclose(pFile) == 0 && isWritten)
        return true;
    std::remove(path.c_str());
    return false;
}

} // namespace

CompiledResources& CompiledResources::instance()
{
    static CompiledResources* const pResources = new CompiledResources;
    return *pResources;
}

void CompiledResources::add(std::span<const CompiledResource> resources)
{
    for (const CompiledResource& resource : resources)
        _entries.push_back({&resource, {}});
}

void CompiledResources::remove(std::span<const CompiledResource> resources)
{
    for (const CompiledResource& resource : resources)
        std::erase_if(_entries, [&](const Entry& entry) { return entry.pResource == &resource; });
}

std::optional<std::span<const td::BYTE>> CompiledResources::find(std::string_view name) const
{
    const auto entry = std::find_if(_entries.rbegin(), _entries.rend(),
                                    [&](const Entry& candidate) { return candidate.pResource->name == name; });
    if (entry == _entries.rend())
        return std::nullopt;
    return std::span(entry->pResource->begin, entry->pResource->end);
}

fs::path CompiledResources::fileOf(std::string_view name)
{
    const auto entry = std::find_if(_entries.rbegin(), _entries.rend(),
                                    [&](const Entry& candidate) { return candidate.pResource->name == name; });
    if (entry == _entries.rend())
        return {};
    std::error_code error;
    // Whoever tidies the temporary folder may have removed the file.
    if (!entry->file.empty() && fs::is_regular_file(entry->file, error))
        return entry->file;
    if (!makeFolder())
        return {};
    const fs::path file = _folder / (std::to_string(_nFiles++) + "-" + fs::path(name).filename().string());
    if (!writeFile(file, *entry->pResource))
        return {};
    return entry->file = file;
}

bool CompiledResources::makeFolder()
{
    std::error_code error;
    if (!_folder.empty() && _folderOwner == ::getpid() && fs::is_directory(_folder, error))
        return true;
    const fs::path temporary = fs::temp_directory_path(error);
    if (error)
        return false;
    std::string path = (temporary / "guigl-XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr)
        return false;
    if (_folder.empty())
        std::atexit([] { instance().removeFolder(); });
    _folder = path;
    _folderOwner = ::getpid();
    return true;
}

void CompiledResources::removeFolder()
{
    // A forked child leaves its parent's files alone.
    if (_folderOwner != ::getpid())
        return;
    std::error_code error;
    fs::remove_all(_folder, error);
}

} // namespace gui
