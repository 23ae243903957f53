#pragma once

#include <cstdint>

namespace gui::gl
{

/// A set of numbers below some n that finds its next member in a few steps: words of bits, and words of bits that tell
/// which of the words below hold any.
struct CornerSet
{
    static constexpr unsigned int cMaxLevels = 6; ///< enough for 2^32
    static constexpr unsigned int cNone = ~0U;

    std::uint64_t* pWords[cMaxLevels];
    unsigned int nWords; ///< of the first level
    unsigned int nLevels;
};

// Internal to the source that includes it: versions for several machines stay apart when they are linked.
namespace
{

constexpr std::uint64_t bit(unsigned int i) { return std::uint64_t(1) << i; }

inline unsigned int firstBit(std::uint64_t bits) { return static_cast<unsigned int>(__builtin_ctzll(bits)); }

/// Bits 0 to n - 1.
constexpr std::uint64_t firstBits(unsigned int n) { return n < 64 ? bit(n) - 1 : ~std::uint64_t(0); }

/// Tells the upper levels that a word of the first has got its first member, or lost its last.
[[gnu::noinline]] inline void setWord(const CornerSet& set, unsigned int i, bool isOne)
{
    for (unsigned int level = 1; level < set.nLevels; ++level, i /= 64)
    {
        std::uint64_t& word = set.pWords[level][i / 64];
        const bool hadAny = word != 0;
        word = (word & ~bit(i % 64)) | std::uint64_t(isOne) << i % 64;
        isOne = word != 0;
        if (isOne == hadAny)
            return;
    }
}

/// Makes the upper levels what the first one is.
inline void fillUpperWords(const CornerSet& set)
{
    unsigned int n = set.nWords;
    for (unsigned int level = 1; level < set.nLevels; ++level)
    {
        for (unsigned int i = 0; i < n; i += 64)
        {
            std::uint64_t word = 0;
            for (unsigned int j = 0; j < 64 && i + j < n; ++j)
                word |= std::uint64_t(set.pWords[level - 1][i + j] != 0) << j;
            set.pWords[level][i / 64] = word;
        }
        n = (n + 63) / 64;
    }
}

/// Inserts a number or takes it out.
inline void setMember(const CornerSet& set, unsigned int i, bool isOne)
{
    std::uint64_t& word = set.pWords[0][i / 64];
    const bool hadAny = word != 0;
    word = (word & ~bit(i % 64)) | std::uint64_t(isOne) << i % 64;
    if ((word != 0) != hadAny) [[unlikely]]
        setWord(set, i / 64, !hadAny);
}

/// The smallest member from i on; cNone when there is none.
inline unsigned int findFrom(const CornerSet& set, unsigned int i)
{
    unsigned int nWords = set.nWords;
    for (unsigned int level = 0; level < set.nLevels && i / 64 < nWords; ++level, nWords = (nWords + 63) / 64)
    {
        const std::uint64_t members = set.pWords[level][i / 64] & ~std::uint64_t(0) << i % 64;
        if (members != 0) [[likely]]
        {
            i = i / 64 * 64 + firstBit(members);
            while (level-- > 0)
                i = i * 64 + firstBit(set.pWords[level][i]);
            return i;
        }
        i = i / 64 + 1;
    }
    return CornerSet::cNone;
}

/// Takes members out of a set, one after the other and round again. The word where it is stays in registers until
/// putBack(), and what is put in behind is kept apart: the next member is found without waiting for it.
class CornerTaker
{
public:
    explicit CornerTaker(const CornerSet& set)
        : _set(set)
        , _behind(set.pWords[0][0])
    {
    }

    /// Whether the next member is in another word.
    bool isAtEnd() const { return _ahead == 0; }

    /// Goes to the first member from a number on, or from 0 on when there is none. @return false when there are no more
    bool goOn(unsigned int from)
    {
        putBack();
        unsigned int member = findFrom(_set, from);
        if (member == CornerSet::cNone)
            member = findFrom(_set, 0);
        if (member == CornerSet::cNone)
            return false;
        _number = member / 64;
        const std::uint64_t word = _set.pWords[0][_number];
        _reach = ~std::uint64_t(0) << member % 64;
        _ahead = word & _reach;
        _behind = word & ~_reach;
        return true;
    }

    /// Takes the next member, which is in this word.
    unsigned int take()
    {
        const unsigned int member = _number * 64 + firstBit(_ahead);
        _ahead &= _ahead - 1;
        return member;
    }

    /// The next is taken behind a number, which is not a member.
    void skipTo(unsigned int i)
    {
        _reach = i / 64 == _number ? ~std::uint64_t(0) << i % 64 << 1 : 0;
        _behind |= _ahead & ~_reach;
        _ahead &= _reach;
    }

    void insert(unsigned int i)
    {
        if (i / 64 != _number)
            setMember(_set, i, true);
        else if ((_reach >> i % 64 & 1) != 0)
            _ahead |= bit(i % 64);
        else
            _behind |= bit(i % 64);
    }

    /// Of a number that the last one skipped to, or one before it.
    void setBehind(unsigned int i, bool isMember)
    {
        if (i / 64 != _number)
            setMember(_set, i, isMember);
        else
            _behind = (_behind & ~bit(i % 64)) | std::uint64_t(isMember) << i % 64;
    }

    void putBack()
    {
        std::uint64_t& word = _set.pWords[0][_number];
        const bool hadAny = word != 0;
        word = _ahead | _behind;
        if ((word != 0) != hadAny)
            setWord(_set, _number, !hadAny);
    }

private:
    const CornerSet& _set;
    unsigned int _number = 0; // of the word
    std::uint64_t _ahead = 0, _behind;
    std::uint64_t _reach = 0; // bits of what is ahead
};

} // namespace

} // namespace gui::gl
