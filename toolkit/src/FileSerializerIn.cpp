#include <arch/FileSerializerIn.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace arch
{

namespace fs = std::filesystem;

bool FileSerializerIn::open(const char* fileName)
{
    close();
    std::error_code error;
    // Opening a pipe that nobody writes to would wait for ever.
    if (!fs::is_regular_file(fileName, error))
        return false;
    const std::uintmax_t nBytes = fs::file_size(fileName, error);
    if (error)
        return false;
    _file.exceptions(std::ios::goodbit);
    _file.open(fileName, std::ios::in | std::ios::binary);
    if (!_file.is_open())
        return false;
    _file.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
    _nBytesLeft = nBytes;
    return true;
}

void FileSerializerIn::open(std::span<const td::BYTE> bytes)
{
    close();
    _pMemory = bytes.data();
    _nBytesLeft = bytes.size();
}

void FileSerializerIn::read(char* bytes, unsigned int n)
{
    require(n);
    if (_pMemory != nullptr)
    {
        std::copy_n(_pMemory, n, bytes);
        _pMemory += n;
    }
    else
        _file.read(bytes, n);
    _nBytesLeft -= n;
}

void FileSerializerIn::require(std::uint64_t n) const
{
    if (n > _nBytesLeft)
        throw std::ios_base::failure("FileSerializerIn: the file ends before its content does");
}

void FileSerializerIn::close()
{
    _file.exceptions(std::ios::goodbit);
    if (_file.is_open())
        _file.close();
    _file.clear();
    _pMemory = nullptr;
    _nBytesLeft = 0;
}

} // namespace arch
