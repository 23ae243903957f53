#pragma once

#include <td/Color.h>
#include <td/Export.h>
#include <td/Types.h>

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace gui
{

/// An image in memory: rows from the top down, pixels from left to right, channels of one byte each, nothing between
/// rows. Loads PNG and JPEG, saves PNG, and serves as the target of frames that are read back. Moves, but can't be
/// copied.
class GUIGL_API Texture
{
public:
    /// No image: isOk() is false.
    Texture() = default;
    ~Texture() = default;
    Texture(const Texture&) = delete;
    Texture& operator=(const Texture&) = delete;
    Texture(Texture&& other) noexcept; ///< leaves the other one without an image
    Texture& operator=(Texture&& other) noexcept;

    /// Loads a PNG or a JPEG image; which of the two it is, the file's first bytes say. The pixels become 3 bytes (red,
    /// green, blue), or 4 (with alpha, not premultiplied) when the file has alpha or a transparent colour: grey and
    /// palette images are widened, 16-bit channels are rounded to 8, and CMYK becomes red, green, blue. Colour
    /// profiles, gamma and the orientation that cameras write are ignored.
    /// @param fileName  a path, or a resource's name after a colon (":name", see gui::Res). Null is misuse
    ///                  ("fileName != nullptr") and gives false.
    /// @return true when the image was loaded. Otherwise one line says why ("ERROR! Texture::loadFromFile cannot load
    ///         file: NAME (CAUSE)"), and the texture is what it was. Refused are files that can't be read, are neither
    ///         PNG nor JPEG, are seen to be damaged or end too soon; files of more than 1 GiB; images of more than
    ///         65,535 pixels in a direction, or of 4 GiB of pixels or more; and files too short to hold what they
    ///         claim, which is found out before memory is taken.
    [[nodiscard]] bool loadFromFile(const char* fileName);

    /// Loads an image file whose content lies in memory, like loadFromFile. @param bytes  read during the call only
    [[nodiscard]] bool loadFromMemory(const td::BYTE* bytes, std::size_t nBytes);

    /// Writes the image to a PNG file, replacing it. The new file takes the old one's place only when it is complete.
    /// @return true when it was written. Otherwise one line says why ("ERROR! Texture::saveToFile cannot save file:
    ///         PATH (CAUSE)"), and no file is left or changed. Pixels must be 3 or 4 bytes.
    [[nodiscard]] bool saveToFile(const char* path) const;

    /// Whether its alpha means nothing: saveToFile then writes 3 bytes per pixel. Frames that were read back start so;
    /// false keeps the alpha that the frame was left with. An image that is loaded has its own alpha.
    void setOpaque(bool isOpaque) { _isOpaque = isOpaque ? 1 : 0; }
    bool isOpaque() const { return _isOpaque != 0; } ///< see setOpaque

    /// Reverses the order of the rows.
    void mirrorVertically();

    /// Makes room for at least nBytes bytes of pixels, the new ones 0. What the texture holds stays, but getBytes() may
    /// change. Never takes room away.
    void reserve(unsigned int nBytes);

    /// Whether there is an image of at least one pixel.
    bool isOk() const { return _pBytes != nullptr && _nBytes != 0; }

    int getWidth() const { return _width; }                          ///< pixels
    int getHeight() const { return _height; }                        ///< pixels
    unsigned int getBytesPerPixel() const { return _bytesPerPixel; } ///< 3 or 4 for what was loaded

    /// The first row's first pixel; null while no room was made. Valid until the texture loads, reserves or goes away.
    td::BYTE* getBytes() { return _pBytes; }
    const td::BYTE* getBytes() const { return _pBytes; }

private:
    friend class TextureHelper;
    friend struct TextureLayout;

    bool load(const td::BYTE* bytes, std::size_t nBytes, std::string& cause);
    bool load(const char* fileName, std::vector<td::BYTE>* pContent);
    bool write(std::FILE* pFile, std::string& cause) const;
    bool isRoomFor(int width, int height, unsigned short bytesPerPixel) const;
    void updateInfo(int width, int height, unsigned short bytesPerPixel);
    void swap(Texture& other) noexcept;

    std::unique_ptr<td::BYTE[]> _storage; // owns what _pBytes points to
    td::BYTE* _pBytes = nullptr;
    unsigned int _nBytes = 0;   // width * height * bytes per pixel
    unsigned int _capacity = 0; // bytes of _storage
    int _width = 0;
    int _height = 0;
    td::Color _color; // part of the record's layout, as are the last three bytes
    td::BYTE _bytesPerPixel = 0;
    td::BYTE _isOpaque = 0;
    [[maybe_unused]] td::BYTE _reserved[3] = {};
};

/// Fills textures with pixels that come from elsewhere, frames that are read back for instance.
class TextureHelper
{
public:
    explicit TextureHelper(Texture* pTexture)
        : _pTexture(pTexture)
    {
    }

    /// See Texture::loadFromFile. @param content  gets the file's, or the resource's, bytes; undefined after a failure
    [[nodiscard]] bool loadFromFile(const char* fileName, std::vector<td::BYTE>& content)
    {
        return _pTexture->load(fileName, &content);
    }

    /// See Texture::reserve.
    void reserve(unsigned int nBytes) { _pTexture->reserve(nBytes); }

    /// Says what the texture's bytes are: after this it holds width * height pixels, whatever its bytes were before.
    /// Room for them must have been made: negative sizes, more than 255 bytes per pixel and images beyond the room are
    /// misuse ("isRoomFor(width, height, bytesPerPixel)"), which leaves the texture as it was.
    void updateInfo(int width, int height, unsigned short bytesPerPixel)
    {
        _pTexture->updateInfo(width, height, bytesPerPixel);
    }

private:
    Texture* _pTexture;
};

} // namespace gui
