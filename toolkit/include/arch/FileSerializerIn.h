#pragma once

#include <td/Export.h>
#include <td/Types.h>

#include <cstdint>
#include <fstream>
#include <span>

namespace arch
{

/// A binary file, or bytes in memory in its place, read from the start to the end. Closes itself.
class GUIGL_API FileSerializerIn
{
public:
    /// Opens a regular file; pipes and devices may never end and are refused. @param fileName  a path, not null
    /// @return false when it can't be opened; nothing is logged
    [[nodiscard]] bool open(const char* fileName);
    /// Reads bytes in memory. @param bytes  not owned: they must be there until all is read
    void open(std::span<const td::BYTE> bytes);

    /// Reads n bytes. @throws std::ios_base::failure when the file has fewer left, or can't be read
    void read(char* bytes, unsigned int n);

    /// For sizes that the file itself states: throws what read would, before room is made for them.
    /// @throws std::ios_base::failure when the file has fewer than n bytes left
    void require(std::uint64_t n) const;

    /// Nothing when it is closed already. Reading throws from then on.
    void close();

private:
    std::ifstream _file;
    const td::BYTE* _pMemory = nullptr; // what is read next when it is no file
    std::uint64_t _nBytesLeft = 0;
};

} // namespace arch
