#include "TexelStore.h"

#include <algorithm>

namespace gui::draw
{

namespace
{

constexpr std::size_t cManyChanges = 1 << 16;

} // namespace

void TexelStore::resize(std::size_t nTexels)
{
    const std::size_t before = getSize();
    _words.resize(nTexels * _nWords);
    if (nTexels > before)
        change(before, nTexels - before);
}

std::uint32_t* TexelStore::change(std::size_t texel, std::size_t nTexels)
{
    if (!_changes.empty() && texel >= _changes.back().first && texel <= _changes.back().second)
        _changes.back().second = std::max(_changes.back().second, texel + nTexels);
    else
    {
        if (_changes.size() >= cManyChanges)
            mergeChanges();
        _changes.emplace_back(texel, texel + nTexels);
    }
    return &_words[texel * _nWords];
}

void TexelStore::mergeChanges()
{
    std::sort(_changes.begin(), _changes.end());
    std::size_t n = 0;
    for (const Range& range : _changes)
    {
        if (n > 0 && range.first <= _changes[n - 1].second)
            _changes[n - 1].second = std::max(_changes[n - 1].second, range.second);
        else
            _changes[n++] = range;
    }
    _changes.resize(n);
    // So many that lie apart are sent as one.
    if (n > cManyChanges / 2)
        _changes = {{_changes.front().first, _changes.back().second}};
}

bool TexelStore::upload()
{
    const std::size_t size = getSize();
    if (_contextID != gl::CurrentContext::getID() || _texture.getSize() < size)
    {
        // Room for more, so that what is appended now and then is sent alone.
        const bool isGrowing = _contextID == gl::CurrentContext::getID() && _texture.getSize() > 0;
        _contextID = 0;
        if (!(isGrowing && _texture.resize(size + size / 2)) && !_texture.resize(size))
            return false;
        _contextID = gl::CurrentContext::getID();
        _changes = {{0, size}};
    }
    mergeChanges();
    for (const auto& [first, end] : _changes)
        if (first < size)
            _texture.write(first, at(first), std::min(end, size) - first);
    _changes.clear();
    return true;
}

} // namespace gui::draw
