#include <gui/Texture.h>

#include "FileBytes.h"
#include "ImageDecoder.h"
#include "ReadResource.h"

#include <td/Assert.h>
#include <vo/Log.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

#include <unistd.h>

namespace gui
{

// Members of different access are laid out as others are by every compiler there is; clang doubts it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
// The record's layout is fixed.
struct TextureLayout
{
    static_assert(offsetof(Texture, _pBytes) == 8 && offsetof(Texture, _nBytes) == 16);
    static_assert(offsetof(Texture, _width) == 24 && offsetof(Texture, _height) == 28);
    static_assert(offsetof(Texture, _color) == 32 && offsetof(Texture, _bytesPerPixel) == 36);
    static_assert(sizeof(Texture) == 48);
};
#pragma GCC diagnostic pop

namespace
{

constexpr std::size_t cMaxFileBytes = std::size_t(1) << 30;

/// The file beside the one to be written: it is renamed when complete, and removed otherwise.
class PartialFile
{
public:
    explicit PartialFile(const char* path)
        : _path(path)
        , _partPath(_path + "." + std::to_string(::getpid()) + ".part")
        , _pFile(std::fopen(_partPath.c_str(), "wbe"))
    {
    }
    ~PartialFile()
    {
        if (_pFile != nullptr)
            std::fclose(_pFile);
        if (!_isDone && _wasOpened)
            std::remove(_partPath.c_str());
    }
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    /// Null, with errno set, when it could not be opened.
    std::FILE* file() const { return _pFile; }

    /// @return false with errno set
    bool finish()
    {
        _isDone =
            std::fclose(std::exchange(_pFile, nullptr)) == 0 && std::rename(_partPath.c_str(), _path.c_str()) == 0;
        return _isDone;
    }

private:
    std::string _path;
    std::string _partPath;
    std::FILE* _pFile;
    bool _wasOpened = _pFile != nullptr;
    bool _isDone = false;
};

} // namespace

Texture::Texture(Texture&& other) noexcept { swap(other); }

Texture& Texture::operator=(Texture&& other) noexcept
{
    Texture moved(std::move(other));
    swap(moved);
    return *this;
}

void Texture::swap(Texture& other) noexcept
{
    std::swap(_storage, other._storage);
    std::swap(_pBytes, other._pBytes);
    std::swap(_nBytes, other._nBytes);
    std::swap(_capacity, other._capacity);
    std::swap(_width, other._width);
    std::swap(_height, other._height);
    std::swap(_bytesPerPixel, other._bytesPerPixel);
    std::swap(_isOpaque, other._isOpaque);
}

bool Texture::loadFromFile(const char* fileName)
{
    TD_ASSERT(fileName != nullptr, false);
    return load(fileName, nullptr);
}

bool Texture::load(const char* fileName, std::vector<td::BYTE>* pContent)
{
    std::vector<td::BYTE> content;
    std::span<const td::BYTE> bytes;
    std::string cause;
    bool isRead = false;
    if (fileName[0] == ':')
        isRead = readResource(fileName, cMaxFileBytes, content, bytes, cause);
    else if ((isRead = readFile(fileName, cMaxFileBytes, content, cause)))
        bytes = content;
    if (isRead && load(bytes.data(), bytes.size(), cause))
    {
        // A resource may be a part of the program.
        if (pContent != nullptr && bytes.data() != content.data())
            pContent->assign(bytes.begin(), bytes.end());
        else if (pContent != nullptr)
            *pContent = std::move(content);
        return true;
    }
    vo::dbgLog("ERROR! Texture::loadFromFile cannot load file: %s (%s)", fileName, cause.c_str());
    return false;
}

bool Texture::loadFromMemory(const td::BYTE* bytes, std::size_t nBytes)
{
    TD_ASSERT(bytes != nullptr || nBytes == 0, false);
    std::string cause;
    if (load(bytes, nBytes, cause))
        return true;
    vo::dbgLog("ERROR! Texture::loadFromMemory cannot load image (%s)", cause.c_str());
    return false;
}

bool Texture::load(const td::BYTE* bytes, std::size_t nBytes, std::string& cause)
{
    DecodedImage image;
    if (!decodeImage({bytes, nBytes}, image, cause))
        return false;
    _storage = std::move(image.pixels);
    _pBytes = _storage.get();
    _nBytes = _capacity = image.nBytes;
    _width = image.width;
    _height = image.height;
    _bytesPerPixel = image.bytesPerPixel;
    _isOpaque = 0;
    return true;
}

bool Texture::write(std::FILE* pFile, std::string& cause) const
{
    constexpr unsigned int cOpaqueBytes = 3;
    if (_isOpaque == 0 || _bytesPerPixel == cOpaqueBytes)
        return writePNG(pFile, _pBytes, _width, _height, _bytesPerPixel, cause);
    const std::size_t nPixels = std::size_t(_width) * std::size_t(_height);
    std::vector<td::BYTE> pixels(nPixels * cOpaqueBytes);
    for (std::size_t i = 0; i < nPixels; ++i)
        std::copy_n(_pBytes + i * _bytesPerPixel, cOpaqueBytes, pixels.data() + i * cOpaqueBytes);
    return writePNG(pFile, pixels.data(), _width, _height, cOpaqueBytes, cause);
}

bool Texture::saveToFile(const char* path) const
{
    TD_ASSERT(path != nullptr, false);
    std::string cause;
    if (!isOk())
        cause = "no image";
    else if (_bytesPerPixel != 3 && _bytesPerPixel != 4)
        cause = std::to_string(_bytesPerPixel) + " bytes per pixel";
    else
    {
        PartialFile part(path);
        if (part.file() == nullptr)
            cause = std::strerror(errno);
        else if (write(part.file(), cause))
        {
            if (part.finish())
                return true;
            cause = std::strerror(errno);
        }
    }
    vo::dbgLog("ERROR! Texture::saveToFile cannot save file: %s (%s)", path, cause.c_str());
    return false;
}

void Texture::mirrorVertically()
{
    if (!isOk())
        return;
    const std::size_t rowBytes = _nBytes / std::size_t(_height);
    td::BYTE* pTop = _pBytes;
    td::BYTE* pBottom = _pBytes + _nBytes - rowBytes;
    for (; pTop < pBottom; pTop += rowBytes, pBottom -= rowBytes)
        std::swap_ranges(pTop, pTop + rowBytes, pBottom);
}

void Texture::reserve(unsigned int nBytes)
{
    if (nBytes <= _capacity)
        return;
    auto storage = std::make_unique<td::BYTE[]>(nBytes);
    std::copy_n(_pBytes, _nBytes, storage.get());
    _storage = std::move(storage);
    _pBytes = _storage.get();
    _capacity = nBytes;
}

bool Texture::isRoomFor(int width, int height, unsigned short bytesPerPixel) const
{
    // Each factor is below 2^31, then 2^8: the product of the first two is checked before it meets the third.
    if (width < 0 || height < 0 || bytesPerPixel > 255)
        return false;
    const std::uint64_t nPixels = std::uint64_t(width) * std::uint64_t(height);
    return nPixels <= _capacity && nPixels * bytesPerPixel <= _capacity;
}

void Texture::updateInfo(int width, int height, unsigned short bytesPerPixel)
{
    TD_ASSERT(isRoomFor(width, height, bytesPerPixel));
    _width = width;
    _height = height;
    _bytesPerPixel = td::BYTE(bytesPerPixel);
    _isOpaque = 0;
    _nBytes = static_cast<unsigned int>(width) * static_cast<unsigned int>(height) * bytesPerPixel;
}

} // namespace gui
