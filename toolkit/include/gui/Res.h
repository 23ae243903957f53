#pragma once

#include <td/Export.h>
#include <td/StringBase.h>
#include <td/Types.h>

#include <cstddef>
#include <span>

namespace gui
{

/// A resource that is part of a program or a library: its name and its bytes, which live as long as the program is
/// loaded.
struct CompiledResource
{
    const char* name;
    const td::BYTE* begin;
    const td::BYTE* end;
};

/// Resources: files that belong to an application, found by name wherever the application stands. A name is a relative
/// path such as "gl/flat.vert", with or without a colon before it. A resource is looked up in
///   1. the folders given to addSearchFolder(), in the order they were given;
///   2. the folders of the environment variable GUIGL_RESOURCES, separated by colons;
///   3. the folder of the executable, and the folder "resources" in it;
///   4. "share/guigl" of the prefix the library was configured for, and "../share/guigl" seen from the executable;
///   5. the resources compiled into the program and its libraries with the CMake function guigl_add_resources; of two
///      of the same name the program's comes before a library's.
/// Names that are empty, absolute, or have a ".." in them name nothing. GUI thread only, but for what is compiled in,
/// which adds itself while the program starts.
class Res
{
public:
    /// Adds a folder to search, after those added before. @param folder  relative ones are meant from where the program
    /// runs now. Null or empty is misuse ("folder != nullptr && *folder != '\0'") and adds nothing.
    GUIGL_API static void addSearchFolder(const char* folder);

    /// The path of a file that holds the resource. One that is compiled in is written, once, to a file in a folder that
    /// only this user can read, and that is removed when the program ends.
    /// @return false when there is no such resource, with nothing logged, or when that file can't be written, which is
    ///         logged ("ERROR! Res::getFileName cannot write file for resource: NAME"); fileName is unchanged then
    GUIGL_API static bool getFileName(const char* name, td::StringBase& fileName);

    /// Where a resource is: the path of its file, or, with an empty path, the bytes that are compiled in. No file is
    /// written.  @return false when there is no such resource; path and bytes are unchanged then
    GUIGL_API static bool find(const char* name, td::StringBase& path, std::span<const td::BYTE>& bytes);

    /// The bytes of a resource that is compiled in, whether or not a folder holds one of that name.
    /// @return false when there is none; bytes is unchanged then
    GUIGL_API static bool getCompiled(const char* name, std::span<const td::BYTE>& bytes);

    /// What guigl_add_resources calls when the program or library is loaded, and when it is unloaded again. The entries
    /// are not copied, and removed by their addresses.
    GUIGL_API static void addCompiled(std::span<const CompiledResource> resources);
    GUIGL_API static void removeCompiled(std::span<const CompiledResource> resources);
};

/// The text of a resource, shader source for instance, found as Res finds it.
/// @return empty when there is none, or when it can't be read, with one line in the log ("ERROR! getResText cannot load
///         resource: NAME (CAUSE)")
GUIGL_API td::StringBase getResText(const char* name);

} // namespace gui
