#include "Lettering.h"

#include <gui/Res.h>
#include <vo/Log.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace gallery
{

namespace
{

using gui::gl::Font;

// Of the fonts that are baked; not every family has all of them.
constexpr int cSizes[] = {12, 14, 16, 24, 28, 32, 48, 64, 96};

float floatAt(std::span<const td::BYTE> bytes, std::size_t pos)
{
    float value = 0;
    std::memcpy(&value, bytes.data() + pos, sizeof value);
    return value;
}

} // namespace

Lettering::Lettering(std::vector<Typeface> faces)
    : _faces(std::move(faces))
    , _metrics(_faces.size())
{
}

Lettering::~Lettering() { _text.release(); }

void Lettering::init() { _text.init({1, 1}, gui::gl::Textures::Unit::T0); }

bool Lettering::begin(const Frame& frame)
{
    const auto scale = static_cast<float>(frame.scale);
    _text.setFrameSize({frame.size.width * frame.scale, frame.size.height * frame.scale});
    if (scale != _scale)
    {
        _text.release();
        _text.allocFonts(0);
        _text.allocFonts(static_cast<unsigned char>(_faces.size()));
        _scale = scale;
        for (std::size_t face = 0; face < _faces.size(); ++face)
        {
            if (!load(face))
                return false;
        }
    }
    for (std::size_t face = 0; face < _faces.size(); ++face)
        _text.getFont(static_cast<unsigned char>(face))->reset();
    return true;
}

// The smallest font that is not smaller than what is shown, or else the largest.
bool Lettering::load(std::size_t face)
{
    const float wanted = static_cast<float>(_faces[face].size) * _scale;
    std::span<const td::BYTE> bytes;
    std::string name;
    int size = 0;
    for (const int candidate : cSizes)
    {
        const std::string resource =
            std::string("gallery/") + _faces[face].family + "-" + std::to_string(candidate) + ".font";
        if (!gui::Res::getCompiled(resource.c_str(), bytes))
            continue;
        name = ":" + resource;
        size = candidate;
        if (static_cast<float>(size) >= wanted)
            break;
    }
    Font* const pFont = _text.loadFont(static_cast<unsigned char>(face), name.c_str());
    if (pFont == nullptr)
    {
        vo::dbgLog("ERROR! Lettering::load has no font of the family %s", _faces[face].family);
        return false;
    }
    // A font file begins with metrics, of which the second is the baseline and the fifth the line pitch.
    pFont->setSpaceBetweenLines(0);
    _metrics[face] = {wanted / static_cast<float>(size), floatAt(bytes, 4), floatAt(bytes, 16),
                      pFont->measure("x", 0, {}).height};
    return true;
}

void Lettering::add(const glm::vec2& place, const std::string& text, const Style& style)
{
    Font& font = *_text.getFont(static_cast<unsigned char>(style.face));
    const Metrics& metrics = _metrics[style.face];
    const float pitch = style.pitch != 0 ? std::round(style.pitch * _scale / metrics.scale) : metrics.linePitch;
    font.setSpaceBetweenLines(pitch - metrics.lineHeight);
    const Font::_format format{metrics.scale, style.z, style.color, style.alignment};
    const float left = std::round(place.x * _scale);
    const float top = std::round(place.y * _scale - metrics.baseline * metrics.scale);
    if (style.alignment != Font::cCentre)
    {
        font.addString({left, top}, text.c_str(), 0, format);
        return;
    }
    // A line whose width is odd would begin half a pixel off, and come out blurred.
    float y = top;
    for (std::size_t start = 0; start < text.size(); y += pitch * metrics.scale)
    {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string line = text.substr(start, end - start);
        const float width = font.measure(line.c_str(), 0, {}).width * metrics.scale;
        font.addString({left + width / 2 - std::floor(width / 2), y}, line.c_str(), 0, format);
        start = end + 1;
    }
}

float Lettering::widthOf(const std::string& text, std::size_t face)
{
    const float width = _text.getFont(static_cast<unsigned char>(face))->measure(text.c_str(), 0, {}).width;
    return width * _metrics[face].scale / _scale;
}

std::string Lettering::wrapped(const std::string& text, float width, std::size_t face)
{
    std::string result;
    std::string line;
    for (std::size_t start = 0; start < text.size();)
    {
        const std::size_t end = std::min(text.find(' ', start), text.size());
        const std::string word = text.substr(start, end - start);
        if (!line.empty() && widthOf(line + ' ' + word, face) > width)
        {
            result += line + '\n';
            line.clear();
        }
        line += line.empty() ? word : ' ' + word;
        start = end + 1;
    }
    return result + line;
}

void Lettering::draw(gui::gl::Text::Ctrl ctrl) { _text.render(ctrl); }

} // namespace gallery
