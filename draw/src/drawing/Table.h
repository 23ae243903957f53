#pragma once

#include "GrowingArray.h"

#include <gui/gl/BufferTexture.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace gui::draw
{

/// Records in memory and the same in GL, where only what has changed is sent: room for some in a row can be taken and
/// given back.
template <typename Record>
class Table
{
public:
    explicit Table(gl::BufferTexture::Format format)
        : _format(format)
        , _pTexture(makeTexture())
    {
    }

    /// @return the first of n records in a row, whose content is undefined
    std::uint32_t take(std::size_t n)
    {
        if (n == 0)
            return 0;
        if (const auto free = _free.lower_bound(n); free != _free.end())
        {
            const auto [size, first] = *free;
            _free.erase(free);
            if (size > n)
                _free.emplace(size - n, first + static_cast<std::uint32_t>(n));
            return first;
        }
        const auto first = static_cast<std::uint32_t>(_records.size());
        _records.grow(n);
        return first;
    }

    void giveBack(std::uint32_t first, std::size_t n)
    {
        if (n != 0)
            _free.emplace(n, first);
    }

    /// Takes room for records and fills it.
    std::uint32_t add(std::span<const Record> records)
    {
        const std::uint32_t first = take(records.size());
        set(first, records);
        return first;
    }

    void set(std::uint32_t first, std::span<const Record> records)
    {
        std::copy(records.begin(), records.end(), _records.data() + first);
        markChanged(first * sizeof(Record), records.size() * sizeof(Record));
    }

    /// The same, with something done to each of them in its place.
    template <typename Change>
    void set(std::uint32_t first, std::span<const Record> records, Change change)
    {
        Record* pRecord = _records.data() + first;
        for (const Record& record : records)
        {
            *pRecord = record;
            change(*pRecord++);
        }
        markChanged(first * sizeof(Record), records.size() * sizeof(Record));
    }

    /// Changes a record in its place.
    template <typename Change>
    void change(std::uint32_t i, Change change)
    {
        change(_records[i]);
        markChanged(i * sizeof(Record), sizeof(Record));
    }

    /// For a change of some bytes of a record. @param member  a pointer to a member of it
    template <typename Member, typename Value>
    void setMember(std::uint32_t i, Member member, const Value& value)
    {
        Record& record = _records[i];
        if (record.*member == value)
            return;
        record.*member = value;
        const auto* begin = reinterpret_cast<const char*>(_records.data());
        markChanged(static_cast<std::size_t>(reinterpret_cast<const char*>(&(record.*member)) - begin), sizeof(Value));
    }

    const Record& operator[](std::size_t i) const { return _records[i]; }
    const Record* data() const { return _records.data(); }
    /// With those that nobody has.
    std::size_t size() const { return _records.size(); }

    void clear()
    {
        _records.clear();
        _free.clear();
        _changes.clear();
    }

    /// Sends what has changed.
    /// @param mayGrow  whether to make a larger table before there has to be one; false afterwards if it did
    /// @return false when GL has no room
    bool upload(bool& mayGrow)
    {
        const std::size_t texel = _pTexture->getTexelSize(), nBytes = _records.size() * sizeof(Record);
        const std::size_t nTexels = std::max<std::size_t>(nBytes / texel, 1);
        if (!makeRoom(nTexels, mayGrow))
            return false;
        if (_changes.size() > 1)
            merge();
        std::size_t nSent = 0;
        for (const auto& [begin, end] : _changes)
        {
            write(*_pTexture, begin, end);
            if (_pLarger && begin < _nCopied)
                write(*_pLarger, begin, std::min(end, _nCopied));
            nSent += end - begin;
        }
        _changes.clear();
        if (_pLarger)
            copySome(std::max(cCopiedAtOnce, cCopiedForEach * nSent), nBytes);
        return true;
    }

    void bind(gl::Texture::Unit unit) const { _pTexture->bind(unit); }

private:
    // A table that is nearly full is copied within GL to a larger one, some of it in each upload, so that none takes
    // long: more than what is sent meanwhile by so much that it is done before there is no room any more. Drivers clear
    // what they give, at a millisecond for some two megabytes: it is not much larger, and no two are in one frame.
    static constexpr std::size_t cCopiedAtOnce = std::size_t(1) << 20, cCopiedForEach = 10;
    static constexpr std::size_t cLargeTable = std::size_t(1) << 20;

    std::unique_ptr<gl::BufferTexture> makeTexture() const
    {
        auto pTexture = std::make_unique<gl::BufferTexture>(_format);
        // It is here, for a context that is lost as well.
        pTexture->setKeptForRestore(false);
        return pTexture;
    }

    void write(gl::BufferTexture& texture, std::size_t begin, std::size_t end)
    {
        texture.writeBytes(begin, reinterpret_cast<const char*>(_records.data()) + begin, end - begin);
    }

    bool makeRoom(std::size_t nTexels, bool& mayGrow)
    {
        const std::size_t size = _pTexture->getSize(), texel = _pTexture->getTexelSize();
        if (size == 0)
        {
            // A little more than that: most drawings are made and stay.
            _pLarger = nullptr;
            if (!_pTexture->resize(nTexels + nTexels / 16))
                return false;
            _changes.assign(1, {0, _records.size() * sizeof(Record)});
            return true;
        }
        if (size < nTexels)
        {
            if ((!_pLarger || _pLarger->getSize() < nTexels) && !startLarger(nTexels + nTexels / 2))
                return false;
            copySome(size * texel, size * texel);
        }
        else if (mayGrow && !_pLarger && size * texel > cLargeTable && nTexels > size - size / 8 && size != _largest)
        {
            mayGrow = false;
            if (!startLarger(size + size / 4))
                _largest = size; // until there has to be a larger one
        }
        return true;
    }

    bool startLarger(std::size_t nTexels)
    {
        _pLarger = makeTexture();
        _nCopied = 0;
        if (_pLarger->resize(nTexels))
            return true;
        _pLarger = nullptr;
        return false;
    }

    // @param nBytes  of what there is in all, after which the larger one takes its place
    void copySome(std::size_t n, std::size_t nBytes)
    {
        if (_pLarger->getSize() == 0)
        {
            _pLarger = nullptr;
            return;
        }
        n = std::min(n, nBytes - std::min(_nCopied, nBytes));
        _pLarger->copyBytes(_nCopied, *_pTexture, _nCopied, n);
        _nCopied += n;
        if (_nCopied >= nBytes)
            _pTexture = std::exchange(_pLarger, nullptr);
    }

    void markChanged(std::size_t begin, std::size_t nBytes)
    {
        if (nBytes == 0)
            return;
        // Of what was just added.
        if (!_changes.empty() && _changes.back().first <= begin && _changes.back().second >= begin + nBytes)
            return;
        if (!_changes.empty() && _changes.back().second == begin)
            _changes.back().second = begin + nBytes;
        else
            _changes.emplace_back(begin, begin + nBytes);
    }

    void merge()
    {
        std::sort(_changes.begin(), _changes.end());
        join(0);
        // A call costs about as much as some kilobytes: many little ones are more than what is between them.
        for (std::size_t gap = 1024; _changes.size() > 1000; gap *= 4)
            join(gap);
    }

    void join(std::size_t gap)
    {
        std::size_t n = 0;
        for (std::size_t i = 1; i < _changes.size(); ++i)
            if (_changes[i].first <= _changes[n].second + gap)
                _changes[n].second = std::max(_changes[n].second, _changes[i].second);
            else
                _changes[++n] = _changes[i];
        _changes.resize(n + 1);
    }

    gl::BufferTexture::Format _format;
    std::unique_ptr<gl::BufferTexture> _pTexture;
    std::unique_ptr<gl::BufferTexture> _pLarger; // that will take its place
    std::size_t _nCopied = 0;                    // bytes of it
    std::size_t _largest = 0;                    // texels, beyond which there was no room
    GrowingArray<Record> _records;
    std::multimap<std::size_t, std::uint32_t> _free; // by size
    std::vector<std::pair<std::size_t, std::size_t>> _changes;
};

} // namespace gui::draw
