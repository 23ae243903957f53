#include "PictureAtlas.h"

#include <gui/gl/Context.h>
#include <gui/gl/Textures.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <bit>

namespace gui::draw
{

namespace
{

/// What a shelf may be higher than a picture on it, beside a quarter of that: less, and there are many shelves that
/// few pictures fit on.
constexpr int cSlack = 2;

/// Smaller copies of pictures in colour: halves, quarters, eighths.
constexpr int cSmallest = 3;

} // namespace

std::optional<PictureAtlas::Place> PictureAtlas::findOn(std::size_t number, int width, int height)
{
    Page& page = _pages[number];
    Shelf* pBest = nullptr;
    for (Shelf& shelf : page.shelves)
        if (shelf.height >= height && shelf.height <= height + height / 4 + cSlack && shelf.width + width <= cWidth &&
            (pBest == nullptr || shelf.height < pBest->height))
            pBest = &shelf;
    if (pBest == nullptr)
    {
        if (page.height + height > _format.pageHeight)
            return std::nullopt;
        page.shelves.push_back({page.height, height, 0});
        pBest = &page.shelves.back();
        page.height += height;
    }
    const Place place{pBest->width, static_cast<int>(number) * _format.pageHeight + pBest->y};
    pBest->width += width;
    return place;
}

std::optional<PictureAtlas::Place> PictureAtlas::find(int width, int height, std::size_t& page)
{
    // The last pages are those that have room.
    constexpr std::size_t cTried = 4;
    const std::size_t nTried = std::min(_pages.size(), cTried);
    for (std::size_t i = 1; i <= nTried; ++i)
        if (const std::optional<Place> place = findOn(page = _pages.size() - i, width, height))
            return place;
    for (std::size_t i = 0; i + nTried < _pages.size(); ++i)
        if (const std::optional<Place> place = findOn(page = i, width, height))
            return place;
    return std::nullopt;
}

std::optional<PictureAtlas::Place> PictureAtlas::add(int width, int height, std::span<const td::BYTE> pixels,
                                                     std::uint32_t owner, std::vector<std::uint32_t>* pEvicted)
{
    const int border = _format.border, w = width + 2 * border, h = height + 2 * border;
    if (width <= 0 || height <= 0 || w > cWidth || h > _format.pageHeight)
        return std::nullopt;
    std::size_t page = 0;
    std::optional<Place> place = find(w, h, page);
    if (!place)
    {
        page = _pages.size();
        if (_pages.size() < static_cast<std::size_t>(_format.nMostPages))
        {
            _pages.emplace_back();
            _pixels.resize(std::size_t(cWidth) * static_cast<std::size_t>(getHeight() * _format.nBytes));
        }
        else
        {
            if (pEvicted == nullptr)
                return std::nullopt;
            const auto oldest = std::min_element(_pages.begin(), _pages.end(),
                                                 [](const Page& a, const Page& b) { return a.lastUse < b.lastUse; });
            if (oldest->lastUse == _now)
                return std::nullopt;
            page = static_cast<std::size_t>(oldest - _pages.begin());
            pEvicted->insert(pEvicted->end(), oldest->owners.begin(), oldest->owners.end());
            *oldest = {};
        }
        place = findOn(page, w, h);
    }
    _pages[page].lastUse = _now;
    _pages[page].owners.push_back(owner);
    // With its border, for what stood there before.
    const auto rowSize = static_cast<std::size_t>(w * _format.nBytes);
    if (border > 0)
    {
        _rows.assign(rowSize * static_cast<std::size_t>(h), 0);
        for (int y = 0; y < height; ++y)
            std::copy_n(&pixels[static_cast<std::size_t>(y * width * _format.nBytes)],
                        static_cast<std::size_t>(width * _format.nBytes),
                        &_rows[static_cast<std::size_t>(y + border) * rowSize +
                               static_cast<std::size_t>(border * _format.nBytes)]);
        pixels = _rows;
    }
    copyTo(*place, w, h, pixels);
    return Place{place->x + border, place->y + border};
}

void PictureAtlas::copyTo(const Place& place, int width, int height, std::span<const td::BYTE> pixels)
{
    const auto n = static_cast<std::size_t>(width * _format.nBytes);
    for (int y = 0; y < height; ++y)
        std::copy_n(&pixels[static_cast<std::size_t>(y) * n], n,
                    &_pixels[static_cast<std::size_t>(((place.y + y) * cWidth + place.x) * _format.nBytes)]);
    _patches.push_back({place.x, place.y, width, height});
}

void PictureAtlas::keepOwners(const std::vector<bool>& areThere)
{
    for (Page& page : _pages)
        std::erase_if(page.owners,
                      [&areThere](std::uint32_t owner) { return owner >= areThere.size() || !areThere[owner]; });
}

void PictureAtlas::clear()
{
    for (Page& page : _pages)
        page = {};
    _patches.clear();
}

// With room for as much again, so that it does not grow often.
bool PictureAtlas::create()
{
    release();
    const auto nPages = static_cast<int>(std::bit_ceil(std::max<std::size_t>(_pages.size(), 1)));
    const int height = nPages * _format.pageHeight;
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    glGenTextures(1, &_texture);
    if (_texture == 0 || height > most || cWidth > most)
        return false;
    _home.set(gl::CurrentContext::getID());
    _textureHeight = height;
    const bool isColored = _format.nBytes == 4;
    glBindTexture(GL_TEXTURE_2D, _texture);
    glTexImage2D(GL_TEXTURE_2D, 0, isColored ? GL_RGBA8 : GL_R8, cWidth, height, 0, isColored ? GL_RGBA : GL_RED,
                 GL_UNSIGNED_BYTE, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, isColored ? GL_LINEAR : GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, isColored ? GL_LINEAR_MIPMAP_LINEAR : GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, isColored ? cSmallest : 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    _patches.clear();
    if (!_pages.empty())
        _patches.push_back({0, 0, cWidth, getHeight()});
    return true;
}

bool PictureAtlas::upload()
{
    const bool isThere = _home.getID() == gl::CurrentContext::getID() && _texture != 0;
    if (_pages.empty() || (isThere && _patches.empty()))
        return true;
    glActiveTexture(gl::Textures::getZavPosID(gl::Texture::Unit::T9));
    if ((!isThere || getHeight() > _textureHeight) && !create())
        return false;
    glBindTexture(GL_TEXTURE_2D, _texture);
    const GLenum components = _format.nBytes == 4 ? GL_RGBA : GL_RED;
    for (const Patch& patch : _patches)
    {
        const auto n = static_cast<std::size_t>(patch.width * _format.nBytes);
        // GL reads rows of a multiple of four bytes; those of pictures are one.
        _rows.resize(n * static_cast<std::size_t>(patch.height));
        for (int y = 0; y < patch.height; ++y)
            std::copy_n(&_pixels[static_cast<std::size_t>(((patch.y + y) * cWidth + patch.x) * _format.nBytes)], n,
                        &_rows[static_cast<std::size_t>(y) * n]);
        glTexSubImage2D(GL_TEXTURE_2D, 0, patch.x, patch.y, patch.width, patch.height, components, GL_UNSIGNED_BYTE,
                        _rows.data());
    }
    _patches.clear();
    if (_format.nBytes == 4)
        glGenerateMipmap(GL_TEXTURE_2D);
    return true;
}

void PictureAtlas::bind(gl::Texture::Unit unit) const
{
    glActiveTexture(gl::Textures::getZavPosID(unit));
    glBindTexture(GL_TEXTURE_2D, _home.getID() == gl::CurrentContext::getID() ? _texture : 0);
}

void PictureAtlas::release()
{
    _home.deleteName(gl::CurrentContext::Kind::Texture, _texture);
    _texture = 0;
    _textureHeight = 0;
    _home.set(0);
}

// The pixels are here: the next upload sends them all.
void PictureAtlas::onContext(gl::ContextResource::Event event)
{
    if (event == gl::ContextResource::Event::Restored)
        _texture = 0;
    release();
}

} // namespace gui::draw
