#include "FileBytes.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace gui
{

namespace
{

class OpenFile
{
public:
    // Without O_NONBLOCK, opening a pipe that nobody writes to would wait for ever.
    explicit OpenFile(const char* path)
        : _fd(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
    }
    ~OpenFile()
    {
        if (_fd >= 0)
            ::close(_fd);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int fd() const { return _fd; }

private:
    int _fd;
};

/// @return the number of bytes read: fewer than nBytes at the end of the file, -1 on an error
ssize_t readFully(int fd, td::BYTE* bytes, std::size_t nBytes)
{
    std::size_t nRead = 0;
    while (nRead < nBytes)
    {
        const ssize_t n = ::read(fd, bytes + nRead, nBytes - nRead);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return -1;
        if (n == 0)
            break;
        nRead += std::size_t(n);
    }
    return ssize_t(nRead);
}

} // namespace

bool readFile(const char* path, std::size_t maxBytes, std::vector<td::BYTE>& bytes, std::string& cause)
{
    const OpenFile file(path);
    struct stat status = {};
    if (file.fd() < 0 || ::fstat(file.fd(), &status) != 0)
    {
        cause = std::strerror(errno);
        return false;
    }
    if (!S_ISREG(status.st_mode))
    {
        cause = "not a regular file";
        return false;
    }
    if (std::size_t(status.st_size) > maxBytes)
    {
        cause = "file too large";
        return false;
    }
    // A file that shrinks meanwhile gives what is left of it.
    std::vector<td::BYTE> content(std::size_t(status.st_size));
    const ssize_t nRead = readFully(file.fd(), content.data(), content.size());
    if (nRead < 0)
    {
        cause = std::strerror(errno);
        return false;
    }
    content.resize(std::size_t(nRead));
    bytes = std::move(content);
    return true;
}

} // namespace gui
