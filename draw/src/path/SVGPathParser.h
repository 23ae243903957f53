#pragma once

#include <gui/draw/Path.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace gui::draw
{

/// Reads SVG path data once, from the first byte to the last or to the first error.
class SVGPathParser
{
public:
    explicit SVGPathParser(std::string_view text)
        : _text(text)
    {
    }

    /// @param path  an empty one, which gets all whole segments before an error
    std::optional<Path::SVGError> parse(Path& path);

private:
    using Point = Path::Point;

    bool isAt(std::string_view characters) const;
    void skipSpace();
    void skipComma();
    bool takeNumber(double& number);
    bool takeFlag(bool& flag);
    bool takePoint(Point& point);
    bool takeSegment(char command, Path& path);
    bool takeArc(Path& path);
    bool fail(const char* expected);

    std::string_view _text;
    std::size_t _at = 0;
    const char* _expected = nullptr;
    bool _isRelative = false;
    Point _current;
    Point _cubicControl, _quadControl; // of the segment before; the current point after any other
};

} // namespace gui::draw
