#pragma once

#include <cstddef>
#include <new>
#include <string>

namespace test
{

/// An element that fails on demand: the copy or array allocation that finds no steps left throws (-1: none ever does).
/// Its text is too long for std::string's own storage, so the sanitizer sees reads of a destroyed element.
struct Failing
{
    inline static int s_nLive = 0;
    inline static int s_nStepsLeft = -1;

    std::string text;

    Failing() { ++s_nLive; }
    explicit Failing(int value)
        : Failing()
    {
        text = "an element of value " + std::to_string(value);
    }
    Failing(const Failing& other)
        : Failing()
    {
        *this = other;
    }
    Failing& operator=(const Failing& other)
    {
        step();
        text = other.text;
        return *this;
    }
    ~Failing() { --s_nLive; }

    static void* operator new[](std::size_t nBytes)
    {
        step();
        return ::operator new[](nBytes);
    }
    static void operator delete[](void* pMemory) { ::operator delete[](pMemory); }

    bool operator==(const Failing&) const = default;

private:
    static void step()
    {
        if (s_nStepsLeft >= 0 && s_nStepsLeft-- == 0)
            throw std::bad_alloc();
    }
};

} // namespace test
