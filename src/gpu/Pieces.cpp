#include "Pieces.h"

#include <algorithm>

namespace gui::gl
{

namespace
{

// A call of GL's costs about as much as some kilobytes: beyond so many pieces the gaps between them are sent as well.
constexpr std::size_t cMostPieces = 512;

} // namespace

// @return the piece that begins at pos, or the end
std::size_t Pieces::split(std::size_t pos)
{
    if (pos == _size)
        return _pieces.size();
    std::size_t i = 0;
    for (; pos >= _pieces[i].n; ++i)
        pos -= _pieces[i].n;
    if (pos == 0)
        return i;
    Piece& head = _pieces[i];
    const Piece tail{head.n - pos, head.isThere() ? head.at + pos : cNowhere};
    head.n = pos;
    _pieces.insert(_pieces.begin() + static_cast<std::ptrdiff_t>(i) + 1, tail);
    return i + 1;
}

// Makes one piece of i and the one before it, if it can.
void Pieces::join(std::size_t i)
{
    if (i == 0 || i >= _pieces.size())
        return;
    Piece& before = _pieces[i - 1];
    const Piece& piece = _pieces[i];
    if (before.isThere() ? before.at + before.n != piece.at : piece.isThere())
        return;
    before.n += piece.n;
    _pieces.erase(_pieces.begin() + static_cast<std::ptrdiff_t>(i));
}

// Puts n elements that GL lacks in the place of the pieces from begin to end.
void Pieces::replace(std::size_t begin, std::size_t end, std::size_t n)
{
    const auto at = _pieces.erase(_pieces.begin() + static_cast<std::ptrdiff_t>(begin),
                                  _pieces.begin() + static_cast<std::ptrdiff_t>(end));
    if (n > 0)
    {
        _pieces.insert(at, {n, cNowhere});
        join(begin + 1);
    }
    join(begin);
    if (_isResendable && _pieces.size() > cMostPieces)
        thin();
}

void Pieces::insert(std::size_t pos, std::size_t n)
{
    if (n == 0)
        return;
    const std::size_t i = split(pos);
    _size += n;
    replace(i, i, n);
}

void Pieces::extendTo(std::size_t n)
{
    if (n > _size)
        insert(_size, n - _size);
}

void Pieces::remove(std::size_t pos, std::size_t n)
{
    const std::size_t begin = split(pos), end = split(pos + n);
    _size -= n;
    replace(begin, end, 0);
}

void Pieces::change(std::size_t pos, std::size_t n)
{
    if (n == 0)
        return;
    const std::size_t begin = split(pos), end = split(pos + n);
    replace(begin, end, n);
}

void Pieces::forget()
{
    _pieces.clear();
    if (_size > 0)
        _pieces.push_back({_size, cNowhere});
}

bool Pieces::dropThere()
{
    const bool isAny = isAnyThere();
    if (isAny)
    {
        _size = countMissing(0, _size);
        forget();
    }
    return isAny;
}

std::size_t Pieces::countMissing(std::size_t pos, std::size_t n) const
{
    std::size_t nMissing = 0, begin = 0;
    for (const Piece& piece : _pieces)
    {
        const std::size_t end = begin + piece.n;
        if (!piece.isThere() && end > pos && begin < pos + n)
            nMissing += std::min(end, pos + n) - std::max(begin, pos);
        begin = end;
        if (begin >= pos + n)
            break;
    }
    return nMissing;
}

void Pieces::extendThere(std::size_t n)
{
    _pieces.back().n += n;
    _size += n;
}

void Pieces::settle(std::size_t base)
{
    _pieces.clear();
    if (_size > 0)
        _pieces.push_back({_size, base});
}

bool Pieces::isAnyThere() const { return std::ranges::any_of(_pieces, &Piece::isThere); }

std::optional<std::size_t> Pieces::getShift() const
{
    std::optional<std::size_t> shift;
    std::size_t place = 0;
    for (const Piece& piece : _pieces)
    {
        if (piece.isThere())
        {
            if (piece.at < place || shift.value_or(piece.at - place) != piece.at - place)
                return {};
            shift = piece.at - place;
        }
        place += piece.n;
    }
    return shift.value_or(0);
}

// The shorter half of what GL has will be sent again.
void Pieces::thin()
{
    std::vector<std::size_t> lengths;
    for (const Piece& piece : _pieces)
        if (piece.isThere())
            lengths.push_back(piece.n);
    const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
    std::nth_element(lengths.begin(), middle, lengths.end());
    std::vector<Piece> pieces;
    for (Piece piece : _pieces)
    {
        if (piece.n <= *middle)
            piece.at = cNowhere;
        if (!pieces.empty() && !pieces.back().isThere() && !piece.isThere())
            pieces.back().n += piece.n;
        else
            pieces.push_back(piece);
    }
    _pieces = std::move(pieces);
}

} // namespace gui::gl
