#pragma once

#include <td/Types.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

// What libFuzzer calls, with inputs of its own.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t n);

namespace fuzz
{

/// A way in for bytes from outside. Each has a source and a namespace with one such object in it; libFuzzer's programs
/// have one of them, the one that replays has all.
class Target
{
public:
    using Function = void (*)(const std::uint8_t* bytes, std::size_t n);

    /// @param name  of its corpus
    Target(const char* name, Function function);

    /// The program's only one without a name. Ends the program where there is none.
    static const Target& get(std::string_view name = {});

    void run(const std::uint8_t* bytes, std::size_t n) const { _run(bytes, n); }

private:
    const Function _run;
    const char* const _name;
    const Target* const _pNext;
    inline static const Target* s_pFirst = nullptr;
};

/// Ends the program, with the text, when what must hold does not: the input is a finding then.
void require(bool holds, const char* text);

/// The bytes of an input as values, from the first on. Behind the end all are 0.
class Input
{
public:
    Input(const std::uint8_t* bytes, std::size_t n)
        : _at(bytes)
        , _end(bytes + n)
    {
    }

    std::size_t left() const { return static_cast<std::size_t>(_end - _at); }

    template <typename T>
    T take()
    {
        T value{};
        const std::size_t n = left() < sizeof value ? left() : sizeof value;
        if (n > 0)
            std::memcpy(&value, _at, n);
        _at += n;
        return value;
    }

    /// 0 to n - 1, of one byte.
    unsigned int below(unsigned int n) { return take<td::BYTE>() % n; }

    /// The bytes that are left, at most max.
    std::string text(std::size_t max = SIZE_MAX)
    {
        const std::size_t n = left() < max ? left() : max;
        std::string result(reinterpret_cast<const char*>(_at), n);
        _at += n;
        return result;
    }

private:
    const std::uint8_t* _at;
    const std::uint8_t* _end;
};

/// Somebody who does not care what he hands over: takes it from an input.
class Careless
{
protected:
    /// @param fraction  numbers are mostly multiples of one over this
    /// @param nKinds    of so many numbers some three are of other kinds: none at all, infinite, any bits, huge, tiny
    Careless(Input& input, double fraction, unsigned int nKinds)
        : _input(input)
        , _fraction(fraction)
        , _nKinds(nKinds)
    {
    }

    double takeNumber();
    bool takeBool() { return _input.below(2) == 0; }

    Input& _input;

private:
    double _fraction;
    unsigned int _nKinds;
};

/// A file without a place on the disk that holds these bytes until the next call. @return its path
const char* fileOf(const void* bytes, std::size_t n);

/// While it lives, assertions that fail and lines of the log are counted, and nothing is written or stopped.
class Quiet
{
public:
    Quiet();
    ~Quiet();
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

    unsigned int nAsserts = 0;
    unsigned int nLines = 0;
};

} // namespace fuzz
