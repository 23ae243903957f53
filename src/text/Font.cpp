#include <gui/gl/Font.h>

#include "../context/Restoration.h"
#include "../context/TextureBinding.h"
#include "../gpu/KeptTexture.h"
#include "FontEdits.h"
#include "GlyphTable.h"
#include "LayoutMemo.h"

#include <gui/gl/Color.h>
#include <gui/gl/Context.h>
#include <gui/gl/Text.h>

#include <arch/FileSerializerIn.h>
#include <gui/Res.h>
#include <gui/Texture.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace gui::gl
{

namespace
{

constexpr unsigned long cVerticesPerGlyph = 6;
constexpr std::size_t cCommandsReserved = 128;

// Every implementation takes textures of this size; for larger ones it has to be asked.
constexpr unsigned int cSizeAlwaysTaken = 1024;

bool exceedsGLsLimit(unsigned int width, unsigned int height, GLint& limit)
{
    const unsigned int size = std::max(width, height);
    if (size <= cSizeAlwaysTaken)
        return false;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    return size > static_cast<unsigned int>(limit);
}

// Pixels of 1 (coverage), 2 (grey, alpha), 3 (RGB) or 4 bytes as 4: the shader reads the red channel.
std::vector<td::BYTE> widened(const td::BYTE* pFrom, std::size_t nPixels, unsigned int bytesPP)
{
    std::vector<td::BYTE> pixels(nPixels * 4);
    if (bytesPP == 1)
    {
        // Atlases of fonts, many at once.
        for (std::size_t i = 0; i < nPixels; ++i)
        {
            const std::uint32_t pixel = pFrom[i] * 0x01010101U;
            std::memcpy(pixels.data() + 4 * i, &pixel, sizeof pixel);
        }
        return pixels;
    }
    for (td::BYTE* pTo = pixels.data(); pTo != pixels.data() + pixels.size(); pTo += 4, pFrom += bytesPP)
    {
        const bool isGrey = bytesPP <= 2;
        pTo[0] = pFrom[0];
        pTo[1] = isGrey ? pFrom[0] : pFrom[1];
        pTo[2] = isGrey ? pFrom[0] : pFrom[2];
        pTo[3] = bytesPP == 3 ? td::BYTE(255) : pFrom[bytesPP - 1];
    }
    return pixels;
}

// What tells a string's colour from another's: that of the table by its number, others by their word.
using ColorKey = std::uint64_t;

ColorKey keyOf(const Font::_cmd& cmd)
{
    constexpr ColorKey cNotOfTable = ColorKey(1) << 32;
    return cmd.hasColor ? cNotOfTable | cmd.color.rgba() : ColorKey(cmd.colorID);
}

using Colors = std::array<glm::vec4, 256>;

// The colour of every byte.
const Colors& allColors()
{
    static const Colors s_colors = []
    {
        Colors colors;
        for (std::size_t i = 0; i < colors.size(); ++i)
            Color::get(static_cast<td::ColorID>(i), colors[i]);
        return colors;
    }();
    return s_colors;
}

} // namespace

Font::Font() = default;

Font::Font(Font&& other) noexcept
    : _pUTF32(std::move(other._pUTF32))
    , _glyphs(std::move(other._glyphs))
    , _glyphMap(std::move(other._glyphMap))
    , _vertices(std::move(other._vertices))
    , _commands(std::move(other._commands))
    , _textureID(std::exchange(other._textureID, 0))
    , _lineHeight(other._lineHeight)
    , _glyphPadding(other._glyphPadding)
    , _metricA(other._metricA)
    , _additionalSpace(other._additionalSpace)
    , _metricB(other._metricB)
    , _spaceWidth(other._spaceWidth)
    , _lineSpacing(other._lineSpacing)
    , _zLevel{other._zLevel[0], other._zLevel[1]}
    , _vao(std::exchange(other._vao, 0))
    , _vbo(std::exchange(other._vbo, 0))
    , _committed(std::exchange(other._committed, false))
    , _pTable(std::move(other._pTable))
    , _pMemo(std::move(other._pMemo))
    , _pEdits(std::move(other._pEdits))
    , _isKept(other._isKept)
    , _isTextureLost(other._isTextureLost)
    , _isMipmapped(other._isMipmapped)
    , _pImage(std::move(other._pImage))
{
    _textureHome.set(other._textureHome.getID());
    _bufferHome.set(other._bufferHome.getID());
}

Font::~Font()
{
    deleteTexture();
    deleteBuffers();
}

void Font::deleteTexture()
{
    _pImage.reset();
    _isTextureLost = false;
    if (_textureID == 0)
        return;
    forgetTexture();
    _textureHome.deleteName(CurrentContext::Kind::Texture, std::exchange(_textureID, 0));
}

Font* Font::load(const char* fileName)
{
    if (fileName == nullptr)
        return nullptr;
    td::String path(fileName);
    std::span<const td::BYTE> bytes;
    if (fileName[0] == ':' && !gui::Res::find(fileName, path, bytes))
        return nullptr;
    arch::FileSerializerIn file;
    if (fileName[0] == ':' && path.length() == 0)
    {
        file.open(bytes);
        path = fileName;
    }
    else if (!file.open(path.c_str()))
    {
        vo::dbgLog("ERROR! Font::load cannot load file: %s", path.c_str());
        return nullptr;
    }

    // From here on the glyphs change, and the old atlas has no pictures of the new ones.
    deleteTexture();
    gui::Image::_data imgData;
    float metricC = 0;
    if (!read(file, path.c_str(), imgData, metricC))
    {
        vo::dbgLog("ERROR! Font::load cannot load file: %s", path.c_str());
        return nullptr;
    }
    if (!CurrentContext::isThere("Font::load"))
        return nullptr;
    GLint limit = 0;
    if (exceedsGLsLimit(imgData.width, imgData.height, limit))
    {
        vo::dbgLog("ERROR! Font::load atlas of %u x %u pixels exceeds GL's limit of %d in file: %s", imgData.width,
                   imgData.height, limit, path.c_str());
        return nullptr;
    }
    const std::size_t nPixels = std::size_t(imgData.width) * imgData.height;
    const unsigned int bytesPP = imgData.bitsPerPixel / 8;
    const std::size_t nBytes = nPixels * bytesPP;
    TD_ASSERT(nBytes == imgData.data.size(), nullptr);
    return makeTexture(imgData.width, imgData.height, imgData.data.begin(), bytesPP, false) ? this : nullptr;
}

Font* Font::load(const td::StringBase& fileName) { return load(fileName.c_str()); }

bool Font::setTexture(const gui::Texture& image)
{
    if (!CurrentContext::isThere("Font::setTexture"))
        return false;
    const auto width = static_cast<unsigned int>(image.getWidth());
    const auto height = static_cast<unsigned int>(image.getHeight());
    const unsigned int bytesPP = image.getBytesPerPixel();
    GLint limit = 0;
    if (!image.isOk() || (bytesPP != 3 && bytesPP != 4) || exceedsGLsLimit(width, height, limit))
    {
        vo::dbgLog("Error! Font::setTexture using invalid texture");
        forgetTexture();
        glBindTexture(GL_TEXTURE_2D, 0);
        return false;
    }
    forgetDead();
    TD_ASSERT(_textureID == 0, false);
    _pImage.reset();
    _isTextureLost = false;
    return makeTexture(width, height, image.getBytes(), bytesPP, true);
}

// @param isMipmapped  for where it is made smaller  @param before  its name in a context that was lost
bool Font::makeTexture(unsigned int width, unsigned int height, const td::BYTE* pPixels, unsigned int bytesPP,
                       bool isMipmapped, unsigned int before)
{
    _textureID = Restoration::makeName(CurrentContext::Kind::Texture, before);
    if (_textureID == 0)
        return false;
    _textureHome.set(CurrentContext::getID());
    const std::size_t nPixels = std::size_t(width) * height;
    const std::vector<td::BYTE> pixels = widened(pPixels, nPixels, bytesPP);
    forgetTexture();
    glBindTexture(GL_TEXTURE_2D, _textureID);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, static_cast<GLsizei>(width), static_cast<GLsizei>(height), 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, pixels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, isMipmapped ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glGenerateMipmap(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
    _isMipmapped = isMipmapped;
    if (_isKept && _pImage == nullptr)
    {
        _pImage = std::make_unique<gui::Texture>();
        copyPixels(*_pImage, static_cast<int>(width), static_cast<int>(height), bytesPP, pPixels);
    }
    return true;
}

void Font::setKeptForRestore(bool isKept)
{
    _isKept = isKept;
    if (!isKept)
        _pImage.reset();
}

void Font::onTextureContext(ContextResource::Event event)
{
    if (event == ContextResource::Event::Leaving)
    {
        _textureHome.deleteName(CurrentContext::Kind::Texture, _textureID);
        return;
    }
    const unsigned int before = std::exchange(_textureID, 0);
    if (before == 0)
        return;
    if (_pImage != nullptr &&
        makeTexture(static_cast<unsigned int>(_pImage->getWidth()), static_cast<unsigned int>(_pImage->getHeight()),
                    _pImage->getBytes(), _pImage->getBytesPerPixel(), _isMipmapped, before))
        return;
    _isTextureLost = true;
    vo::dbgLog("Error! Font: its atlas went with its context, as it is not kept for restoring");
}

void Font::onBufferContext(ContextResource::Event event)
{
    if (event == ContextResource::Event::Leaving)
    {
        deleteBufferNames();
        return;
    }
    if (_committed)
        _committed = upload();
    else
        _vao = _vbo = 0;
}

FontMetrics Font::metrics() const
{
    return {.lineHeight = _lineHeight,
            .glyphPadding = _glyphPadding,
            .spaceWidth = _spaceWidth,
            .additionalSpace = _additionalSpace,
            .lineSpacing = _lineSpacing};
}

void Font::setAdditionalSpaceBetweenGlyphs(float space)
{
    _additionalSpace = space;
    if (_pTable != nullptr)
        _pTable->setMetrics(metrics());
}

void Font::setSpaceBetweenLines(float space)
{
    _lineSpacing = space;
    if (_pTable != nullptr)
        _pTable->setMetrics(metrics());
}

void Font::setZLevel(float first, float second)
{
    _zLevel[0] = first;
    _zLevel[1] = second;
}

void Font::reserve(unsigned long nGlyphs)
{
    if (_pMemo != nullptr)
        _pMemo->forget();
    _pEdits.reset();
    _vertices.reserve(cVerticesPerGlyph * nGlyphs);
    _commands.reserve(cCommandsReserved);
}

// What went with its context.
void Font::forgetDead()
{
    if (!_textureHome.isAlive())
        _textureID = 0;
    if (_bufferHome.isAlive())
        return;
    _vao = _vbo = 0;
    _committed = false;
}

bool Font::commit()
{
    forgetDead();
    if (_committed && _pEdits == nullptr) [[likely]]
        return true;
    if (!CurrentContext::isThere("Font::commit"))
        return false;
    if (_committed)
        return uploadEdits();
    deleteBuffers();
    _bufferHome.set(CurrentContext::getID());
    return _committed = upload();
}

bool Font::upload()
{
    const unsigned int oldVBO = std::exchange(_vbo, 0);
    _vao = Restoration::makeName(CurrentContext::Kind::VertexArray, _vao);
    if (_vao == 0)
    {
        vo::dbgLog("ERROR! Font::commit cannot create VAO!");
        return false;
    }
    glBindVertexArray(_vao);
    _vbo = Restoration::makeName(CurrentContext::Kind::Buffer, oldVBO);
    if (_vbo == 0)
    {
        vo::dbgLog("ERROR! Font::commit cannot create VBO!");
        return false;
    }
    glBindBuffer(GL_ARRAY_BUFFER, _vbo);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(_vertices.size() * sizeof(_vd)), _vertices.begin(),
                 GL_STATIC_DRAW);
    if (_pEdits != nullptr)
        _pEdits->vertices.adopt(_vertices.size());
    describeVertices();
    return true;
}

// To the vertex array that is bound, which is none afterwards.
void Font::describeVertices() const
{
    glBindBuffer(GL_ARRAY_BUFFER, _vbo);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, sizeof(_vd), reinterpret_cast<const void*>(offsetof(_vd, x)));
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, sizeof(_vd), reinterpret_cast<const void*>(offsetof(_vd, u)));
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void Font::draw(Program* prog)
{
    TD_ASSERT(_vao != 0);
    if (_textureID == 0 && _isTextureLost)
        return;
    TD_ASSERT(_textureID != 0);
    auto* const pTextProg = dynamic_cast<Text::Prog*>(prog);
    TD_ASSERT(pTextProg != nullptr);
    glBindVertexArray(_vao);
    Context::bindTextureToCurrentlyActiveTextureUnit(_textureID, Texture::Type::FontAtlas);

    // The program's setters and the colour table, without the calls.
    const Colors& colors = allColors();
    const GLint colorPos = pTextProg->_colorPos;
    const GLint zPos = pTextProg->_zPos;
    ColorKey lastColor = ColorKey(td::ColorID::NoColor);
    float lastZ = 10000.0f;
    for (const _cmd *pCmd = _commands.begin(), *const pEnd = _commands.end(); pCmd != pEnd;)
    {
        if (const ColorKey key = keyOf(*pCmd); key != lastColor)
        {
            lastColor = key;
            glm::vec4 color = colors[std::size_t(pCmd->colorID)];
            if (pCmd->hasColor)
                Color::get(pCmd->color, color);
            glUniform4fv(colorPos, 1, glm::value_ptr(color));
        }
        if (pCmd->z != lastZ)
        {
            lastZ = pCmd->z;
            glUniform1f(zPos, lastZ);
        }
        do
        {
            glDrawArrays(GL_TRIANGLES, static_cast<GLint>(pCmd->firstVertex), static_cast<GLsizei>(pCmd->vertexCount));
            ++pCmd;
        } while (pCmd != pEnd && keyOf(*pCmd) == lastColor && pCmd->z == lastZ);
    }
}

void Font::reset()
{
    if (_pMemo != nullptr)
        _pMemo->restart(_commands.size());
    _pEdits.reset();
    _vertices.reset();
    _commands.reset();
    _committed = false;
}

void Font::release()
{
    deleteBuffers();
    if (_pMemo != nullptr)
        _pMemo->forget();
    _pEdits.reset();
    _vertices.release();
    _commands.release();
}

void Font::deleteBuffers()
{
    deleteBufferNames();
    _vbo = _vao = 0;
}

void Font::deleteBufferNames() const
{
    _bufferHome.deleteName(CurrentContext::Kind::Buffer, _vbo);
    _bufferHome.deleteName(CurrentContext::Kind::VertexArray, _vao);
}

} // namespace gui::gl
