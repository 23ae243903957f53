#include "Fuzz.h"

#include <td/Assert.h>
#include <vo/Log.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace fuzz
{

void require(bool holds, const char* text)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", text);
    std::abort();
}

MemoryFile::MemoryFile()
    : _descriptor(memfd_create("input", MFD_CLOEXEC))
    , _path("/proc/self/fd/" + std::to_string(_descriptor))
{
    require(_descriptor >= 0, "a file in memory");
}

MemoryFile::~MemoryFile() { close(_descriptor); }

void MemoryFile::write(const std::uint8_t* bytes, std::size_t n)
{
    require(ftruncate(_descriptor, 0) == 0 && pwrite(_descriptor, bytes, n, 0) == static_cast<ssize_t>(n),
            "a file in memory is written");
}

Quiet::Quiet()
{
    td::setAssertHandler([this](const td::AssertReport&) { ++nAsserts; });
    vo::setLogSink([this](const char*) { ++nLines; });
}

Quiet::~Quiet()
{
    td::setAssertHandler({});
    vo::setLogSink({});
}

} // namespace fuzz
