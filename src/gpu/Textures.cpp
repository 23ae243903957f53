#include <gui/gl/Textures.h>

#include "../context/Restoration.h"
#include "../context/TextureBinding.h"
#include "CubeMapPainting.h"
#include "KeptTexture.h"
#include "TextureUpload.h"

#include <gui/Texture.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <array>
#include <cstddef>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace gui::gl
{

namespace
{

constexpr std::size_t cNoOfFaces = 6;
constexpr int cMaxFaceSize = 16384;

// Which name belongs to each face in GL's order: +x, -x, +y, -y, +z, -z.
constexpr std::array<std::size_t, cNoOfFaces> cNameOfFace{2, 0, 4, 5, 1, 3};

// @param before  its name in a context that was lost, 0 if there was none
unsigned int generateTexture(unsigned int before = 0)
{
    return Restoration::makeName(CurrentContext::Kind::Texture, before);
}

void finish2DTexture()
{
    glGenerateMipmap(GL_TEXTURE_2D);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

// Unbinds a texture that was refused after it got its name, and gives the name back.
bool refuse(GLenum target, GLuint id)
{
    glBindTexture(target, 0);
    glDeleteTextures(1, &id);
    return false;
}

bool areFacesUsable(const std::array<const gui::Texture*, cNoOfFaces>& faces)
{
    for (std::size_t slot = 0; slot < cNoOfFaces; ++slot)
    {
        const gui::Texture& face = *faces[slot];
        if (!face.isOk())
        {
            vo::dbgLog("Error! Textures::appendCubeMap cannot load texture with pos=%zu!", slot);
            return false;
        }
        if (face.getWidth() != faces[0]->getWidth() || face.getHeight() != faces[0]->getHeight())
        {
            vo::dbgLog("Error! Textures::appendCubeMap ->All faces in cube map must have same size!");
            return false;
        }
        if (face.getBytesPerPixel() != 3)
        {
            vo::dbgLog("Error! Textures::appendCubeMap tries to use non RGB texture with pos=%zu!", slot);
            return false;
        }
    }
    return true;
}

// It is bound to no target afterwards, unless it fails.
bool fillCubeMap(GLuint id, const std::array<const gui::Texture*, cNoOfFaces>& faces)
{
    glBindTexture(GL_TEXTURE_CUBE_MAP, id);
    for (std::size_t i = 0; i < cNoOfFaces; ++i)
    {
        if (faces[i]->getBytes() == nullptr)
        {
            vo::dbgLog("Error! Textures::appendCubeMap empty texture at position: %d", static_cast<int>(i));
            return false;
        }
        uploadImage(GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(i), GL_RGB, *faces[i]);
        const GLenum error = glGetError();
        if (error != GL_NO_ERROR)
        {
            vo::dbgLog("ERROR! OpenGL error in setupVBO! Error code = %x", error);
            return false;
        }
    }
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_WRAP_R, GL_CLAMP_TO_EDGE);
    glBindTexture(GL_TEXTURE_CUBE_MAP, 0);
    return true;
}

} // namespace

Textures::Textures() = default;

Textures::~Textures() { release(); }

// The places stay: a command that names one finds no texture there.
void Textures::forgetDead()
{
    if (_home.isAlive())
        return;
    for (TextureInfo& texture : _textures)
        texture.id = 0;
}

bool Textures::canAppend(const char* operation, std::size_t n)
{
    if (!CurrentContext::isThere(operation))
        return false;
    if (!_home.isAlive())
    {
        _textures.reset();
        _kept.clear();
        _hasLost = false;
    }
    TD_ASSERT(_textures.size() == 0 || _home.getID() == CurrentContext::getID(), false);
    TD_ASSERT(_textures.size() + n <= std::numeric_limits<unsigned short>::max(), false);
    _home.set(CurrentContext::getID());
    forgetTexture();
    return true;
}

bool Textures::append(const std::initializer_list<gui::Texture*>& textures, Texture::Type type)
{
    if (!canAppend("Textures::append", textures.size()))
        return false;

    GLint maxTextureUnits = 0;
    glGetIntegerv(GL_MAX_TEXTURE_IMAGE_UNITS, &maxTextureUnits);
    TD_ASSERT(maxTextureUnits >= 16, false);
    _maxUnits = static_cast<unsigned short>(maxTextureUnits);
    if (_textures.capacity() == 0)
        _textures.reserve(textures.size());
    GLint maxCombinedUnits = 0;
    glGetIntegerv(GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, &maxCombinedUnits);
    _maxCombinedUnits = static_cast<unsigned short>(maxCombinedUnits);

    int position = 0;
    for (const gui::Texture* pTexture : textures)
    {
        TD_ASSERT(pTexture != nullptr, false);
        const GLuint id = generateTexture();
        if (id == 0)
        {
            glBindTexture(GL_TEXTURE_2D, 0);
            return false;
        }
        glBindTexture(GL_TEXTURE_2D, id);
        const unsigned int bytesPerPixel = pTexture->getBytesPerPixel();
        if (bytesPerPixel != 3 && bytesPerPixel != 4)
        {
            vo::dbgLog("Error! Textures::append tries to use non RGB texture!");
            return refuse(GL_TEXTURE_2D, id);
        }
        if (!pTexture->isOk())
        {
            vo::dbgLog("Error! Textures::append empty texture at position: %d", position);
            return refuse(GL_TEXTURE_2D, id);
        }
        uploadImage(GL_TEXTURE_2D, bytesPerPixel == 4 ? GL_RGBA : GL_RGB, *pTexture);
        finish2DTexture();
        _textures.push_back({id, type});
        if (_isKept)
            keep(KeptImage(*pTexture), false);
        ++position;
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    return true;
}

bool Textures::append(const std::initializer_list<const char*>& fileNames, Texture::Type type)
{
    if (!canAppend("Textures::append", fileNames.size()))
        return false;

    int position = 0;
    for (const char* fileName : fileNames)
    {
        if (fileName == nullptr)
        {
            vo::dbgLog("Error! Textures::append empty texture name at pos = %d", position);
            glBindTexture(GL_TEXTURE_2D, 0);
            return false;
        }
        gui::Texture image;
        std::vector<td::BYTE> file;
        if (!gui::TextureHelper(&image).loadFromFile(fileName, file) || !image.isOk())
        {
            vo::dbgLog("Error! Textures::append cannot load texture with name = %s", fileName);
            glBindTexture(GL_TEXTURE_2D, 0);
            return false;
        }
        image.mirrorVertically();
        const GLuint id = generateTexture();
        if (id == 0)
            return false;
        glBindTexture(GL_TEXTURE_2D, id);
        if (image.getBytesPerPixel() != 3)
        {
            vo::dbgLog("Error! Textures::append tries to use non RGB texture! Texture name=%s", fileName);
            return refuse(GL_TEXTURE_2D, id);
        }
        uploadImage(GL_TEXTURE_2D, GL_RGB, image);
        finish2DTexture();
        _textures.push_back({id, type});
        if (_isKept)
            keep(KeptImage(std::move(file)), true);
        ++position;
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    return true;
}

bool Textures::appendCubeMap(const cnt::Array<const char*, 6>& fileNames)
{
    for (std::size_t i = 0; i < cNoOfFaces; ++i)
    {
        const char* img = fileNames[i];
        TD_ASSERT(img, false);
    }
    if (!canAppend("Textures::appendCubeMap", 1))
        return false;

    std::array<gui::Texture, cNoOfFaces> images;
    std::array<std::vector<td::BYTE>, cNoOfFaces> files;
    std::array<const gui::Texture*, cNoOfFaces> faces{};
    for (std::size_t slot = 0; slot < cNoOfFaces; ++slot)
    {
        // uploadFaces tells
        std::ignore = gui::TextureHelper(&images[slot]).loadFromFile(fileNames[cNameOfFace[slot]], files[slot]);
        faces[slot] = &images[slot];
    }
    if (!uploadFaces(faces))
        return false;
    if (_isKept)
        for (std::vector<td::BYTE>& file : files)
            keep(KeptImage(std::move(file)), false);
    return true;
}

bool Textures::appendCubeMap(const cnt::Array<const gui::Texture*, 6>& textures)
{
    for (std::size_t i = 0; i < cNoOfFaces; ++i)
    {
        const gui::Texture* img = textures[i];
        TD_ASSERT(img, false);
    }
    if (!canAppend("Textures::appendCubeMap", 1))
        return false;

    std::array<const gui::Texture*, cNoOfFaces> faces{};
    for (std::size_t slot = 0; slot < cNoOfFaces; ++slot)
        faces[slot] = textures[cNameOfFace[slot]];
    if (!uploadFaces(faces))
        return false;
    if (_isKept)
        for (const gui::Texture* pFace : faces)
            keep(KeptImage(*pFace), false);
    return true;
}

bool Textures::appendCubeMap(int size, const std::function<glm::vec3(const glm::vec3& direction)>& color)
{
    TD_ASSERT(size > 0 && size <= cMaxFaceSize, false);
    TD_ASSERT(color, false);
    const std::array<gui::Texture, cNoOfFaces> images = paintCubeMap(size, color);
    return appendCubeMap({&images[0], &images[1], &images[2], &images[3], &images[4], &images[5]});
}

// An image of the texture that was appended last.
void Textures::keep(KeptImage image, bool isMirrored)
{
    _kept.resize(_textures.size());
    if (_kept.back() == nullptr)
        _kept.back() = std::make_unique<KeptTexture>();
    _kept.back()->isMirrored = isMirrored;
    _kept.back()->images.push_back(std::move(image));
}

// One cube map of six images in GL's order.
bool Textures::uploadFaces(const std::array<const gui::Texture*, 6>& faces)
{
    if (!areFacesUsable(faces))
        return false;

    const GLuint id = generateTexture();
    if (id == 0)
    {
        vo::dbgLog("Error! Textures::appendCubeMap cannot generate texture!");
        return false;
    }
    if (!fillCubeMap(id, faces))
        return refuse(GL_TEXTURE_CUBE_MAP, id);
    _textures.push_back({id, Texture::Type::CubeMap});
    return true;
}

void Textures::reserve(unsigned short n)
{
    release();
    _textures.reserve(n);
}

unsigned int Textures::getID(unsigned short index) const { return _textures.at(index).id; }

Texture::Type Textures::getType(unsigned short index) const { return _textures.at(index).type; }

std::tuple<unsigned int, Texture::Type> Textures::getIDAndType(unsigned short index) const
{
    const TextureInfo& texture = _textures.at(index);
    return {texture.id, texture.type};
}

void Textures::setActiveUnit(Unit unit) { activateUnit(unit); }

void Textures::bindToActiveUnit(unsigned short index)
{
    forgetDead();
    const auto [textureID, type] = getIDAndType(index);
    if (textureID == 0 && _hasLost)
        sayLoss(index);
    else
        TD_ASSERT(textureID != 0);
    bindTexture(type, textureID);
}

void Textures::setActive(Unit unit, unsigned short index)
{
    setActiveUnit(unit);
    bindToActiveUnit(index);
}

void Textures::setUniform(int location, Unit unit, unsigned short index)
{
    setActive(unit, index);
    glUniform1i(location, static_cast<GLint>(unit));
}

unsigned int Textures::getZavPosID(Unit unit) { return gl::getZavPosID(unit); }

void Textures::bindToSamplerUnit(unsigned int textureID, Unit unit, Texture::Type type)
{
    if (activateUnit(unit))
        bindTexture(type, textureID);
}

void Textures::release()
{
    forgetTexture();
    for (const TextureInfo& texture : _textures)
        _home.deleteName(CurrentContext::Kind::Texture, texture.id);
    _textures.release();
    _kept.clear();
    _hasLost = false;
}

void Textures::setKeptForRestore(bool isKept)
{
    _isKept = isKept;
    if (!isKept)
        _kept.clear();
}

void Textures::sayLoss(std::size_t index)
{
    if (!std::exchange(_isLossSaid, true))
        vo::dbgLog("Error! Textures: texture %zu went with its context, as it is not kept for restoring", index);
}

void Textures::onContext(ContextResource::Event event)
{
    forgetTexture();
    _isLossSaid = false;
    for (std::size_t i = 0; i < _textures.size(); ++i)
        if (event == ContextResource::Event::Leaving)
            _home.deleteName(CurrentContext::Kind::Texture, _textures[i].id);
        else
            restore(i);
}

void Textures::restore(std::size_t index)
{
    unsigned int& id = _textures[index].id;
    const unsigned int before = std::exchange(id, 0);
    const KeptTexture* const pKept = index < _kept.size() ? _kept[index].get() : nullptr;
    gui::Texture loaded[cNoOfFaces];
    std::array<const gui::Texture*, cNoOfFaces> images{};
    const std::size_t nImages = pKept != nullptr ? pKept->images.size() : 0;
    for (std::size_t i = 0; i < nImages; ++i)
        if (images[i] = pKept->images[i].get(loaded[i]); images[i] == nullptr)
        {
            _hasLost = true;
            return;
        }
    if (nImages == 0 || (id = generateTexture(before)) == 0)
    {
        _hasLost = true;
        return;
    }
    if (nImages == cNoOfFaces)
    {
        if (!fillCubeMap(id, images))
            _hasLost = true;
        return;
    }
    if (pKept->isMirrored)
        loaded[0].mirrorVertically();
    glBindTexture(GL_TEXTURE_2D, id);
    uploadImage(GL_TEXTURE_2D, images[0]->getBytesPerPixel() == 4 ? GL_RGBA : GL_RGB, *images[0]);
    finish2DTexture();
    glBindTexture(GL_TEXTURE_2D, 0);
}

} // namespace gui::gl
