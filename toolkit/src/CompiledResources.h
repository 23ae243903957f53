#pragma once

#include <gui/Res.h>
#include <td/Types.h>

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace gui
{

/// The resources that are part of the program and its libraries, and the files they were written to on request.
class CompiledResources
{
public:
    /// Never destroyed: libraries take their resources away while the program ends.
    static CompiledResources& instance();

    void add(std::span<const CompiledResource> resources);
    void remove(std::span<const CompiledResource> resources);

    /// Of several of a name, the one that came last: libraries are loaded before the program that uses them.
    std::optional<std::span<const td::BYTE>> find(std::string_view name) const;

    /// The resource as a file, written when there is none yet. @return empty when that fails
    std::filesystem::path fileOf(std::string_view name);

private:
    struct Entry
    {
        const CompiledResource* pResource;
        std::filesystem::path file; // empty until it is written
    };

    /// @return whether there is a folder for the files
    bool makeFolder();
    void removeFolder();

    std::vector<Entry> _entries;
    std::filesystem::path _folder;
    unsigned int _nFiles = 0;
    pid_t _folderOwner = 0;
};

} // namespace gui
