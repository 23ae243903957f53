#include "OutputFile.h"

#include "Error.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fontbake
{

namespace
{

[[noreturn]] void failTo(const char* verb, const std::string& path)
{
    throw Error(std::string("cannot ") + verb + " " + path + ": " + std::strerror(errno));
}

} // namespace

OutputFile::OutputFile(const std::string& path, const std::string& bytes)
    : _path(path)
    , _partPath(path + "." + std::to_string(getpid()) + ".part")
{
    std::error_code error;
    const std::filesystem::file_status there = std::filesystem::status(path, error);
    if (std::filesystem::exists(there) && !std::filesystem::is_regular_file(there))
        throw Error("cannot write " + path + ": there is something that is no file");

    errno = 0;
    std::ofstream file(_partPath, std::ios::binary);
    if (!file)
        failTo("write", path);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
    {
        const int cause = errno;
        std::remove(_partPath.c_str());
        errno = cause;
        failTo("write", path);
    }
}

OutputFile::~OutputFile()
{
    if (!_isKept)
        std::remove(_partPath.c_str());
}

void OutputFile::keep()
{
    if (std::rename(_partPath.c_str(), _path.c_str()) != 0)
        failTo("write", _path);
    _isKept = true;
}

std::string contentOf(const std::string& path)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw Error("cannot read " + path + ": it is a folder");
    std::ifstream file(path, std::ios::binary);
    if (!file)
        failTo("read", path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace fontbake
