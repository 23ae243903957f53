// Bytes into code points, beside a decoder that knows nothing but the table of well-formed sequences.

#include "Fuzz.h"

#include <vo/UTFConverter.h>

#include <memory>

namespace fuzz::utf8
{

namespace
{

struct Row
{
    unsigned char leadFrom, leadTo, secondFrom, secondTo;
    std::size_t nBytes;
};

// The well-formed sequences of Unicode's chapter 3; bytes behind the second are 80 to BF.
constexpr Row cRows[] = {{0x00, 0x7F, 0, 0, 1},       {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
                         {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
                         {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};

/// How many bytes from the first on begin a well-formed sequence. @param nBytes  gets how many it would have
std::size_t beginningOf(const unsigned char* bytes, std::size_t n, std::size_t& nBytes)
{
    for (const Row& row : cRows)
    {
        if (bytes[0] < row.leadFrom || bytes[0] > row.leadTo)
            continue;
        nBytes = row.nBytes;
        std::size_t i = 1;
        for (; i < row.nBytes && i < n; ++i)
            if (bytes[i] < (i == 1 ? row.secondFrom : 0x80) || bytes[i] > (i == 1 ? row.secondTo : 0xBF))
                break;
        return i;
    }
    nBytes = 2;
    return 1;
}

std::vector<unsigned int> decoded(const unsigned char* bytes, std::size_t n)
{
    std::vector<unsigned int> text;
    for (std::size_t i = 0, nBytes = 0; i < n;)
    {
        const std::size_t nGood = beginningOf(bytes + i, n - i, nBytes);
        unsigned int c = nBytes == 1 ? bytes[i] : bytes[i] & (0xFFU >> (nBytes + 1));
        for (std::size_t j = 1; j < nGood; ++j)
            c = c << 6 | (bytes[i + j] & 0x3FU);
        text.push_back(nGood == nBytes ? c : 0xFFFD);
        i += nGood;
    }
    return text;
}

void run(const std::uint8_t* bytes, std::size_t n)
{
    constexpr auto cFlags = vo::UTFConverter::Flags::None;
    const std::vector<unsigned int> expected = decoded(bytes, n);
    require(vo::UTFConverter::measureUTF8toUTF32(bytes, bytes + n, cFlags) == std::ptrdiff_t(4 * expected.size()),
            "as many code points as there are");
    // Into memory of their size, and of half of it.
    for (const std::size_t nRoom : {expected.size(), expected.size() / 2})
    {
        const std::unique_ptr<unsigned int[]> out(new unsigned int[nRoom]);
        const bool isAll = vo::UTFConverter::convertUTF8toUTF32(bytes, bytes + n, out.get(), out.get() + nRoom, cFlags);
        require(isAll == (nRoom == expected.size()), "it says whether the room was enough");
        for (std::size_t i = 0; i < nRoom; ++i)
            require(out[i] == expected[i], "the code points are right");
    }
}

const Target cTarget("utf8", run);

} // namespace

} // namespace fuzz::utf8
