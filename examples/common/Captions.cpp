#include "Captions.h"

#include <vo/Log.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace examples
{

namespace
{

constexpr float cMargin = 3; // points to the left and right of a text

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

Captions::~Captions() { _text.release(); }

bool Captions::init(std::span<const BakedFont> fonts, float size)
{
    _size = size;
    _text.init({1, 1}, gui::gl::Textures::Unit::T0);
    _text.allocFonts(static_cast<unsigned char>(fonts.size()));
    for (std::size_t i = 0; i < fonts.size(); ++i)
    {
        if (_text.loadFont(static_cast<unsigned char>(i), fonts[i].name) == nullptr)
        {
            vo::dbgLog("ERROR! Captions::init has no font %s", fonts[i].name);
            return false;
        }
        _sizes.push_back(fonts[i].size);
    }
    return true;
}

void Captions::begin(const td::Size<double>& size, float scale)
{
    _taken.clear();
    font().reset();
    // The smallest font that need not be enlarged.
    const float wanted = _size * scale;
    const auto found =
        std::find_if(_sizes.begin(), _sizes.end() - 1, [wanted](float baked) { return baked >= wanted; });
    _nthFont = static_cast<unsigned char>(found - _sizes.begin());
    font().reset();
    _scale = scale;
    _fontScale = wanted / *found;
    _width = static_cast<float>(size.width) * scale;
    _height = static_cast<float>(size.height) * scale;
    _text.setFrameSize({static_cast<double>(_width), static_cast<double>(_height)});
}

td::Size<float> Captions::measure(const std::string& text) const
{
    td::Size<float> all(0, 0);
    for (const std::string& line : linesOf(text))
    {
        const td::Size<float> size = font().measure(line.c_str(), 0, {});
        all = {std::max(all.width, size.width * _fontScale), all.height + size.height * _fontScale};
    }
    return all;
}

bool Captions::addIfFree(const td::Point<float>& middle, const std::string& text, const Style& style)
{
    const std::vector<std::string> lines = linesOf(text);
    const td::Size<float> size = measure(text);
    const float top = std::round(middle.y - size.height / 2), margin = cMargin * _scale;
    const Box box{middle.x - size.width / 2 - margin, top, middle.x + size.width / 2 + margin, top + size.height};
    if (box.left < 0 || box.top < 0 || box.right > _width || box.bottom > _height ||
        std::any_of(_taken.begin(), _taken.end(), [&box](const Box& other) { return box.overlaps(other); }))
        return false;
    reserve(box);
    for (std::size_t i = 0; i < lines.size(); ++i)
        add({middle.x - measure(lines[i]).width / 2,
             top + size.height * static_cast<float>(i) / static_cast<float>(lines.size())},
            lines[i], style);
    return true;
}

void Captions::add(const td::Point<float>& place, const std::string& text, const Style& style)
{
    const float x = std::round(place.x), y = std::round(place.y);
    for (const td::Point<float>& shift : style.ground)
        font().addString({x + std::round(shift.x * _scale), y + std::round(shift.y * _scale)}, text.c_str(), 0,
                         style.groundColor, _fontScale);
    font().addString({x, y}, text.c_str(), 0, style.color, _fontScale);
}

} // namespace examples
