#pragma once

#include <gui/draw/Drawing.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace gui::draw
{

/// The boxes that are taken, in squares of the plane: for labels that are not to cover each other.
class LabelRoom
{
public:
    explicit LabelRoom(std::size_t nLabels)
        : _squares(std::bit_ceil(std::max<std::size_t>(nLabels, 64)), cNone)
    {
    }

    /// Whether no part of a box is taken.
    bool isFree(const Drawing::Rect& box) const
    {
        const auto meets = [&box](const Place& place)
        {
            const Drawing::Rect& other = place.box;
            return box.left < other.right && box.right > other.left && box.top < other.bottom && box.bottom > other.top;
        };
        if (std::ranges::any_of(_large, meets))
            return false;
        const std::optional<Squares> squares = squaresOf(box);
        if (!squares)
            return std::ranges::none_of(_places, meets);
        for (std::int64_t y = squares->top; y <= squares->bottom; ++y)
            for (std::int64_t x = squares->left; x <= squares->right; ++x)
                for (std::uint32_t i = _squares[indexOf(x, y)]; i != cNone; i = _places[i].next)
                    if (meets(_places[i]))
                        return false;
        return true;
    }

    void take(const Drawing::Rect& box)
    {
        const std::optional<Squares> squares = squaresOf(box);
        if (!squares)
        {
            _large.push_back({box, cNone});
            return;
        }
        for (std::int64_t y = squares->top; y <= squares->bottom; ++y)
            for (std::int64_t x = squares->left; x <= squares->right; ++x)
            {
                std::uint32_t& first = _squares[indexOf(x, y)];
                _places.push_back({box, first});
                first = static_cast<std::uint32_t>(_places.size()) - 1;
            }
    }

private:
    /// Of the squares in which boxes are looked up, in points: about as large as labels are.
    static constexpr double cSquare = 64;
    static constexpr std::uint32_t cNone = UINT32_MAX;

    struct Place
    {
        Drawing::Rect box;
        std::uint32_t next; // in the same square
    };

    struct Squares
    {
        std::int64_t left, top, right, bottom;
    };

    /// Those that a box has a part in; none for one that is so large or so far away, or no box, that it is compared
    /// with all others.
    static std::optional<Squares> squaresOf(const Drawing::Rect& box)
    {
        constexpr double cMostSquares = 64, cFarthestSquare = 1e15;
        const double left = std::floor(box.left / cSquare), right = std::floor(box.right / cSquare);
        const double top = std::floor(box.top / cSquare), bottom = std::floor(box.bottom / cSquare);
        const auto isNear = [](double x) { return std::abs(x) < cFarthestSquare; }; // NaN is not
        if (!isNear(left) || !isNear(top) || !isNear(right) || !isNear(bottom) || right - left > cMostSquares ||
            bottom - top > cMostSquares)
            return std::nullopt;
        const auto whole = [](double x) { return static_cast<std::int64_t>(x); };
        return Squares{whole(left), whole(top), whole(right), whole(bottom)};
    }

    // Many squares of the plane share one of these: boxes are compared all the same.
    std::size_t indexOf(std::int64_t x, std::int64_t y) const
    {
        const std::uint64_t hash =
            (static_cast<std::uint64_t>(x) * 0x9e3779b97f4a7c15U ^ static_cast<std::uint64_t>(y) * 0xc2b2ae3d27d4eb4fU);
        return static_cast<std::size_t>(hash >> 20U) & (_squares.size() - 1);
    }

    std::vector<std::uint32_t> _squares; // as many as a power of two
    std::vector<Place> _places;
    std::vector<Place> _large; // in no square
};

} // namespace gui::draw
