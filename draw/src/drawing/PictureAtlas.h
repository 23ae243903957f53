#pragma once

#include <gui/gl/ContextResource.h>
#include <gui/gl/Texture.h>

#include <td/Types.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace gui::draw
{

/// A texture of small pictures, in pages of some rows, each of which has shelves of pictures beside each other. It
/// grows page by page; when there are as many as may be, the one whose pictures were not used for longest is emptied.
class PictureAtlas
{
public:
    static constexpr int cWidth = 1024;

    struct Format
    {
        int nBytes = 1;      // of a pixel: 1 or 4, which are smoothed and have smaller copies
        int pageHeight = 64; // a power of two, and the largest picture's
        int nMostPages = 64; // a power of two
        int border = 0;      // that is left free around each picture
    };

    struct Place
    {
        int x, y;
    };

    explicit PictureAtlas(const Format& format)
        : _format(format)
    {
    }
    ~PictureAtlas() { release(); }
    PictureAtlas(const PictureAtlas&) = delete;
    PictureAtlas& operator=(const PictureAtlas&) = delete;

    /// Finds room for a picture, and copies it there. @param pixels  row by row, the first one at the place's y
    /// @param owner  a number to tell when it goes
    /// @param pEvicted  the owners of those that had to go for it are added to it; null when none may go
    /// @return none where there is no room: the pages that there may be are in use
    std::optional<Place> add(int width, int height, std::span<const td::BYTE> pixels, std::uint32_t owner,
                             std::vector<std::uint32_t>* pEvicted);

    /// From here on pictures are used that had not been before.
    void beginUse() { ++_now; }
    /// Says that what is in the row of a picture is used.
    void use(int y) { _pages[static_cast<std::size_t>(y / _format.pageHeight)].lastUse = _now; }

    /// Owners that are none any more are not told. @param areThere  by number
    void keepOwners(const std::vector<bool>& areThere);
    /// Forgets all pictures.
    void clear();

    /// Sends what is new, to the current context. @return false when GL has no room
    bool upload();
    void bind(gl::Texture::Unit unit) const;

    /// In pixels, of all that there is room for.
    int getHeight() const { return static_cast<int>(_pages.size()) * _format.pageHeight; }

private:
    struct Shelf
    {
        int y, height, width; // from its page on; how far it is filled
    };
    struct Page
    {
        std::vector<Shelf> shelves;
        std::vector<std::uint32_t> owners;
        int height = 0; // of its shelves
        std::uint64_t lastUse = 0;
    };
    struct Patch
    {
        int x, y, width, height;
    };

    std::optional<Place> find(int width, int height, std::size_t& page);
    std::optional<Place> findOn(std::size_t page, int width, int height);
    void copyTo(const Place& place, int width, int height, std::span<const td::BYTE> pixels);
    bool create();
    void release();
    void onContext(gl::ContextResource::Event event);

    Format _format;
    std::vector<Page> _pages;
    std::vector<td::BYTE> _pixels;
    std::vector<Patch> _patches; // that are not sent yet
    std::vector<td::BYTE> _rows;
    std::uint64_t _now = 1;
    unsigned int _texture = 0;
    int _textureHeight = 0;
    gl::ContextResource _home{[](void* pThis, gl::ContextResource::Event event)
                              { static_cast<PictureAtlas*>(pThis)->onContext(event); },
                              this};
};

} // namespace gui::draw
