#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace gui::gl
{

/// Where the elements of an array in memory stand in a buffer of GL's: pieces, of which each stands there in a row, or
/// is not there, or no longer as it is in memory.
class Pieces
{
public:
    static constexpr std::size_t cNowhere = std::numeric_limits<std::size_t>::max();

    struct Piece
    {
        std::size_t n;
        std::size_t at; // in GL, or cNowhere

        bool isThere() const { return at != cNowhere; }
    };

    std::size_t size() const { return _size; }
    const std::vector<Piece>& all() const { return _pieces; }

    /// n elements that GL lacks, before the one at pos.
    void insert(std::size_t pos, std::size_t n);
    /// The same behind the last, up to that many in all.
    void extendTo(std::size_t n);
    void remove(std::size_t pos, std::size_t n);
    void change(std::size_t pos, std::size_t n);
    /// GL has none of them any more.
    void forget();
    /// Those that GL had are none any more. @return whether there were some
    bool dropThere();
    /// All of them stand in GL now, in a row from base.
    void settle(std::size_t base);

    /// Of n elements from pos on, those that GL lacks.
    std::size_t countMissing(std::size_t pos, std::size_t n) const;
    /// One behind the other, n more elements stand in GL, which has all others: in a row, and at least one.
    void extendThere(std::size_t n);
    /// Whether memory has those that GL has, so that gaps between many pieces can be sent again; true at first.
    void setResendable(bool isResendable) { _isResendable = isResendable; }

    /// By how much all that are there stand behind their place in memory. Nothing when they were moved against each
    /// other, or stand before their place; 0 when GL has none.
    std::optional<std::size_t> getShift() const;
    bool isAnyThere() const;
    bool isSettled() const { return _pieces.empty() || (_pieces.size() == 1 && _pieces[0].isThere()); }

private:
    std::size_t split(std::size_t pos);
    void replace(std::size_t begin, std::size_t end, std::size_t n);
    void join(std::size_t i);
    void thin();

    std::vector<Piece> _pieces;
    std::size_t _size = 0;
    bool _isResendable = true;
};

} // namespace gui::gl
