#include <gui/gl/Text.h>

#include <gui/gl/Context.h>

#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <glm/ext/matrix_clip_space.hpp>

namespace gui::gl
{

namespace
{

constexpr const char* cVertexShader = "#version 330 core\n"
                                      "layout (location = 0) in vec2 position;\n"
                                      "layout (location = 1) in vec2 texCoord;\n"
                                      "uniform mat4 mvp;\n"
                                      "uniform float z;\n"
                                      "out vec2 fragTexCoord;\n"
                                      "void main(){\n"
                                      "gl_Position = mvp * vec4(position, z, 1.0);\n"
                                      "fragTexCoord = texCoord;}";

constexpr const char* cFragmentShader = "#version 330 core\n"
                                        "in vec2 fragTexCoord;\n"
                                        "uniform vec4 color;\n"
                                        "uniform sampler2D textureSampler;\n"
                                        "out vec4 fragColor;\n"
                                        "void main(){\n"
                                        "vec4 texValue = texture(textureSampler, fragTexCoord);\n"
                                        "fragColor = texValue.r * color;}";

constexpr std::size_t cScratchAtFirst = 256;

constexpr td::BYTE cNoDepthTestBit = 1;
constexpr td::BYTE cNoCullingBit = 2;
constexpr td::BYTE cBlendBit = 4;
constexpr td::BYTE cAllBits = 7;

} // namespace

void Text::Prog::setSampler(Textures::Unit unit)
{
    setUniformValue(static_cast<unsigned int>(_samplerPos), static_cast<unsigned int>(unit));
}

void Text::Prog::setColor(const glm::vec4& color) { setUniformValue(static_cast<unsigned int>(_colorPos), color); }

void Text::Prog::setZPos(float z) { setUniformValue(static_cast<unsigned int>(_zPos), z); }

void Text::Prog::onLinked()
{
    _matrixLocation = getUniformLocation("mvp");
    _samplerPos = getUniformLocation("textureSampler");
    _colorPos = getUniformLocation("color");
    _zPos = getUniformLocation("z");
    TD_ASSERT(_matrixLocation >= 0);
    TD_ASSERT(_samplerPos >= 0);
    TD_ASSERT(_colorPos >= 0);
    TD_ASSERT(_zPos >= 0);
}

void Text::Prog::onError() { TD_ASSERT(false); }

Text::Text()
    : _projection(glm::ortho(-1.0f, 1.0f, -1.0f, 1.0f, -1.0f, 1.0f))
{
}

Text::~Text() = default;

void Text::init(const td::Size<double>& frameSize, Textures::Unit unit)
{
    TD_ASSERT(unit <= Textures::Unit::T31);
    _program.release();
    const bool isLinked = _program.link(cVertexShader, cFragmentShader, nullptr);
    setFrameSize(frameSize);
    _unit = unit;
    if (!isLinked)
        return;
    // A uniform is set in the program in use.
    _program.activate();
    _program.setSampler(unit);
    _program.deActivate();
}

Font& Text::init(const char* fontName)
{
    init({0, 0}, Textures::Unit::T0);
    allocFonts(1);
    if (loadFont(0, fontName) == nullptr)
        vo::dbgLog("Error! Text::init cannot load font: %s", fontName != nullptr ? fontName : "(null)");
    return _fonts[0];
}

void Text::setFrameSize(const td::Size<double>& size)
{
    const auto width = static_cast<float>(size.width);
    const auto height = static_cast<float>(size.height);
    if (width == 0 || height == 0)
        return;
    _projection = glm::ortho(0.0f, width, height, 0.0f, -1.0f, 1.0f);
}

void Text::allocFonts(unsigned char n)
{
    _fonts.reserve(n);
    if (_utf32 == nullptr)
        _utf32 = std::make_shared<cnt::SafeFullVector<wchar_t, false>>();
    if (_utf32->size() == 0)
        _utf32->reserve(cScratchAtFirst);
    for (Font& font : _fonts)
        font._pUTF32 = _utf32;
    _isMissingTextureSaid = false;
}

// An index beyond the fonts stops the program, in every build: it says why.
Font* Text::getFont(unsigned char index)
{
    if (index >= _fonts.size())
        vo::dbgLog("Error! Text::getFont %u of %zu fonts! Call allocFonts before!", unsigned(index), _fonts.size());
    return &_fonts[index];
}

Font* Text::loadFont(unsigned char index, const char* fileName) { return getFont(index)->load(fileName); }

Font* Text::loadFont(unsigned char index, const td::StringBase& fileName) { return getFont(index)->load(fileName); }

void Text::commit()
{
    for (Font& font : _fonts)
        font.commit();
}

void Text::render(Ctrl ctrl) { render(ctrl, _projection); }

void Text::render(Ctrl ctrl, const glm::mat4& projection)
{
    TD_ASSERT(_program.isOK());
    _program.activate();
    _program.setProjection(projection);
    _program.setSampler(_unit);
    startCtrl(ctrl);
    Context::setActiveTextureUnit(_unit);
    for (unsigned int i = 0; i < _fonts.size(); ++i)
    {
        Font& font = _fonts[i];
        if (!font.commit())
            continue;
        if (font._textureID == 0 && !font._isTextureLost && !_isMissingTextureSaid)
        {
            vo::dbgLog("Error! Text::render font %u has no texture!", i);
            _isMissingTextureSaid = true;
        }
        font.draw(&_program);
    }
    endCtrl(ctrl);
    glBindVertexArray(0);
    _program.deActivate();
}

void Text::release()
{
    for (Font& font : _fonts)
        font.release();
}

void startCtrl(Text::Ctrl ctrl)
{
    const auto bits = static_cast<td::BYTE>(ctrl);
    if (bits > cAllBits)
        return;
    if ((bits & cNoDepthTestBit) != 0)
        Context::disable(Context::Flag::DepthTest);
    if ((bits & cNoCullingBit) != 0)
        Context::disable(Context::Flag::CullFace);
    if ((bits & cBlendBit) != 0)
    {
        Context::enable(Context::Flag::Blend);
        Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
    }
}

void endCtrl(Text::Ctrl ctrl)
{
    if (static_cast<td::BYTE>(ctrl) >= cBlendBit)
        Context::disable(Context::Flag::Blend);
}

} // namespace gui::gl
