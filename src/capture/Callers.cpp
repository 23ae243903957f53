#include "Callers.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>

namespace gui::gl
{

namespace
{

std::string hex(std::uintptr_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "+0x%zx", static_cast<std::size_t>(value));
    return text;
}

// Without its parameters, which are long.
std::string readable(const char* symbol)
{
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(symbol, nullptr, nullptr, &status),
                                                      std::free);
    std::string text = status == 0 ? name.get() : symbol;
    return text.substr(0, text.find('('));
}

std::string describe(void* address)
{
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr)
        return {};
    const char* const slash = std::strrchr(info.dli_fname, '/');
    const std::string file = slash != nullptr ? slash + 1 : info.dli_fname;
    // A call returns behind itself.
    const auto at = reinterpret_cast<std::uintptr_t>(address) - 1;
    if (info.dli_sname != nullptr)
        return file + "(" + readable(info.dli_sname) + hex(at - reinterpret_cast<std::uintptr_t>(info.dli_saddr)) + ")";
    return file + hex(at - reinterpret_cast<std::uintptr_t>(info.dli_fbase));
}

} // namespace

std::string callersText()
{
    constexpr std::size_t cMost = 64;
    constexpr std::size_t cOwn = 4; // this, the recording, the listener, the entry point's place
    static std::map<void*, std::string> s_known;
    std::array<void*, cMost> addresses{};
    const auto n = static_cast<std::size_t>(backtrace(addresses.data(), static_cast<int>(addresses.size())));
    std::string text;
    for (std::size_t i = cOwn; i < n; ++i)
    {
        const auto [it, isNew] = s_known.try_emplace(addresses[i]);
        if (isNew)
            it->second = describe(addresses[i]);
        if (it->second.starts_with("libc.so"))
            break; // before main
        text += it->second + "\n";
    }
    return text;
}

} // namespace gui::gl
