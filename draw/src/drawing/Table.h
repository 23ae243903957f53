#pragma once

#include "GrowingArray.h"

#include <gui/gl/BufferTexture.h>

#include <algorithm>
#include <cstdint>
#include <map>
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
        : _texture(format)
    {
        // It is here, for a context that is lost as well.
        _texture.setKeptForRestore(false);
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

    void clear()
    {
        _records.clear();
        _free.clear();
        _changes.clear();
    }

    /// Sends what has changed. @return false when GL has no room
    bool upload()
    {
        const std::size_t texel = _texture.getTexelSize();
        const std::size_t nTexels = std::max<std::size_t>(_records.size() * sizeof(Record) / texel, 1);
        if (_texture.getSize() < nTexels)
        {
            // Room for half as much again; for less the first time: most drawings are made and stay.
            const std::size_t spare = nTexels / (_texture.getSize() == 0 ? 16 : 2);
            if (!_texture.resize(nTexels + spare))
                return false;
            _changes.assign(1, {0, _records.size() * sizeof(Record)});
        }
        if (_changes.size() > 1)
            merge();
        for (const auto& [begin, end] : _changes)
            _texture.writeBytes(begin, reinterpret_cast<const char*>(_records.data()) + begin, end - begin);
        _changes.clear();
        return true;
    }

    void bind(gl::Texture::Unit unit) const { _texture.bind(unit); }

private:
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
        std::size_t n = 0;
        for (std::size_t i = 1; i < _changes.size(); ++i)
            if (_changes[i].first <= _changes[n].second)
                _changes[n].second = std::max(_changes[n].second, _changes[i].second);
            else
                _changes[++n] = _changes[i];
        _changes.resize(n + 1);
        // A call costs about as much as some kilobytes: many little ones are more than all at once.
        if (_changes.size() > 1000)
            _changes.assign(1, {0, _records.size() * sizeof(Record)});
    }

    gl::BufferTexture _texture;
    GrowingArray<Record> _records;
    std::multimap<std::size_t, std::uint32_t> _free; // by size
    std::vector<std::pair<std::size_t, std::size_t>> _changes;
};

} // namespace gui::draw
