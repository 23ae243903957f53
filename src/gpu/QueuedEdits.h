#pragma once

#include "Pieces.h"

#include <cnt/PushBackVector.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace gui::gl
{

/// Edits of an array of which GL has the most, and a queue in memory those elements that GL lacks, in their order.
/// @param nEach  numbers of an element
template <typename T>
class QueuedEdits
{
public:
    QueuedEdits(Pieces& pieces, cnt::PushBackVector<T, 0>& queue, std::size_t nEach)
        : _pieces(pieces)
        , _queue(queue)
        , _nEach(nEach)
    {
    }

    /// What was pushed to the queue is behind all others.
    void noteAppended()
    {
        if (_queue.size() != 0)
            _pieces.extendTo(_pieces.size() + _queue.size() / _nEach - _pieces.countMissing(0, _pieces.size()));
    }

    void insert(std::size_t pos, const T* data, std::size_t n)
    {
        const std::size_t at = _pieces.countMissing(0, pos);
        replace(at, 0, data, n);
        _pieces.insert(pos, n);
    }

    void update(std::size_t first, const T* data, std::size_t n)
    {
        replace(_pieces.countMissing(0, first), _pieces.countMissing(first, n), data, n);
        _pieces.change(first, n);
    }

    void remove(std::size_t first, std::size_t n)
    {
        replace(_pieces.countMissing(0, first), _pieces.countMissing(first, n), nullptr, 0);
        _pieces.remove(first, n);
    }

    /// GL has all now. Room for many is given back.
    void empty()
    {
        constexpr std::size_t cLargest = std::size_t(1) << 18; // numbers
        if (_queue.capacity() > cLargest)
            _queue.release();
        else
            _queue.reset();
    }

    /// Makes a queue of all elements.
    void dropThere()
    {
        T* to = _queue.begin();
        const T* from = to;
        for (const Pieces::Piece& piece : _pieces.all())
        {
            if (!piece.isThere())
                to = std::copy_n(from, piece.n * _nEach, to);
            from += piece.n * _nEach;
        }
        setSize(static_cast<std::size_t>(to - _queue.begin()));
    }

private:
    // Elements of the queue, by n others.
    void replace(std::size_t at, std::size_t nOld, const T* data, std::size_t n)
    {
        const std::size_t size = _queue.size(), tail = (at + nOld) * _nEach, newTail = (at + n) * _nEach;
        if (n > nOld)
        {
            _queue.pushSlots(newTail - tail);
            std::copy_backward(_queue.begin() + tail, _queue.begin() + size, _queue.end());
        }
        else if (n < nOld)
        {
            std::copy(_queue.begin() + tail, _queue.end(), _queue.begin() + newTail);
            setSize(size - (tail - newTail));
        }
        std::copy_n(data, n * _nEach, _queue.begin() + at * _nEach);
    }

    void setSize(std::size_t n)
    {
        _queue.reset();
        _queue.pushSlots(n);
    }

    Pieces& _pieces;
    cnt::PushBackVector<T, 0>& _queue;
    std::size_t _nEach;
};

} // namespace gui::gl
