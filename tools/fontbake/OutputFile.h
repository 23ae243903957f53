#pragma once

#include <string>

namespace fontbake
{

/// A file that appears only when it is complete: the bytes go to a file beside it, which keep() renames. Until then
/// what stood under the name is untouched, and without keep() it stays so.
class OutputFile
{
public:
    /// Writes the bytes. Throws Error, for a name that belongs to something else than a file too.
    OutputFile(const std::string& path, const std::string& bytes);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void keep(); ///< Throws Error.

private:
    const std::string _path;
    const std::string _partPath;
    bool _isKept = false;
};

/// The bytes of a file. Throws Error.
std::string contentOf(const std::string& path);

} // namespace fontbake
