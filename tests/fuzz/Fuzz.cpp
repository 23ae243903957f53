#include "Fuzz.h"

#include <td/Assert.h>
#include <vo/Log.h>

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t n)
{
    fuzz::Target::get().run(bytes, n);
    return 0;
}

namespace fuzz
{

Target::Target(const char* name, Function function)
    : _run(function)
    , _name(name)
    , _pNext(s_pFirst)
{
    s_pFirst = this;
}

const Target& Target::get(std::string_view name)
{
    const Target* pTarget = s_pFirst;
    while (pTarget != nullptr && !name.empty() && name != pTarget->_name)
        pTarget = pTarget->_pNext;
    require(pTarget != nullptr, "a target has that name");
    return *pTarget;
}

void require(bool holds, const char* text)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", text);
    std::abort();
}

double Careless::takeNumber()
{
    using Limits = std::numeric_limits<double>;
    switch (_input.below(_nKinds))
    {
    case 0:
        return std::array{Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), 0.0, -0.0}[_input.below(5)];
    case 1:
        return _input.take<double>();
    case 2:
    {
        const auto digits = _input.take<std::int16_t>();
        return std::ldexp(digits, _input.take<std::int8_t>());
    }
    default:
        return static_cast<double>(_input.take<std::int16_t>()) / _fraction;
    }
}

const char* fileOf(const void* bytes, std::size_t n)
{
    static const int s_descriptor = memfd_create("input", MFD_CLOEXEC);
    static const std::string s_path = "/proc/self/fd/" + std::to_string(s_descriptor);
    require(ftruncate(s_descriptor, 0) == 0 && pwrite(s_descriptor, bytes, n, 0) == static_cast<ssize_t>(n),
            "a file in memory is written");
    return s_path.c_str();
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
