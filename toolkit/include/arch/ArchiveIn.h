#pragma once

#include "FileSerializerIn.h"

#include <td/Export.h>

#include <cstdint>

namespace arch
{

/// Values read from a file one after the other: their bytes as they lie, without header, gaps or markers.
/// Reading throws std::ios_base::failure where the file ends.
class GUIGL_API ArchiveIn
{
public:
    /// @param file  open; not owned
    explicit ArchiveIn(FileSerializerIn& file)
        : _file(file)
    {
    }

    ArchiveIn& operator>>(float& value) { return getValue(&value, sizeof value); }
    ArchiveIn& operator>>(unsigned int& value) { return getValue(&value, sizeof value); }
    ArchiveIn& operator>>(unsigned short& value) { return getValue(&value, sizeof value); }

    /// Reads n bytes.
    void get(char* bytes, unsigned int n);

    /// How many bytes were read through this object.
    std::uint64_t getNoOfBytes() const { return _nBytes; }

    /// Closes the file.
    void close() { _file.close(); }

private:
    ArchiveIn& getValue(void* pValue, unsigned int nBytes);

    FileSerializerIn& _file;
    std::uint64_t _nBytes = 0;
};

} // namespace arch
