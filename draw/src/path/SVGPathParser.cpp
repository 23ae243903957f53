#include "SVGPathParser.h"

#include <charconv>
#include <cmath>
#include <numbers>
#include <system_error>

namespace gui::draw
{

namespace
{

constexpr std::string_view cSpace = " \t\n\f\r";
constexpr std::string_view cDigits = "0123456789";

Path::Point mirrored(Path::Point p, Path::Point about) { return {2 * about.x - p.x, 2 * about.y - p.y}; }

} // namespace

std::optional<Path::SVGError> SVGPathParser::parse(Path& path)
{
    skipSpace();
    while (_at < _text.size())
    {
        const char command = _text[_at];
        if (!isAt(path.isEmpty() ? "Mm" : "MmZzLlHhVvCcSsQqTtAa"))
        {
            fail(path.isEmpty() ? "M or m" : "a command");
            break;
        }
        ++_at;
        skipSpace();
        _isRelative = command >= 'a';
        const char upper = _isRelative ? static_cast<char>(command - 'a' + 'A') : command;
        if (upper == 'Z')
        {
            path.close();
            _current = _cubicControl = _quadControl = path.getCurrentPoint();
            continue;
        }
        if (!takeSegment(upper, path))
            break;
        // More numbers are the same command again; after a move they are lines.
        const auto goesOn = [this]
        {
            skipSpace();
            return isAt("+-.,") || isAt(cDigits);
        };
        bool isRight = true;
        while (isRight && goesOn())
        {
            skipComma();
            isRight = takeSegment(upper == 'M' ? 'L' : upper, path);
        }
        if (!isRight)
            break;
    }
    if (_expected == nullptr)
        return std::nullopt;
    return Path::SVGError{_at, _expected};
}

bool SVGPathParser::fail(const char* expected)
{
    _expected = expected;
    return false;
}

bool SVGPathParser::isAt(std::string_view characters) const
{
    return _at < _text.size() && characters.find(_text[_at]) != characters.npos;
}

void SVGPathParser::skipSpace()
{
    while (isAt(cSpace))
        ++_at;
}

// White space with one comma in it, or less.
void SVGPathParser::skipComma()
{
    skipSpace();
    if (isAt(","))
    {
        ++_at;
        skipSpace();
    }
}

bool SVGPathParser::takeNumber(double& number)
{
    const std::size_t begin = _at;
    const auto takeDigits = [this]
    {
        const std::size_t first = _at;
        while (isAt(cDigits))
            ++_at;
        return _at > first;
    };
    if (isAt("+-"))
        ++_at;
    const std::size_t digits = _at;
    bool hasDigits = takeDigits();
    const std::size_t point = _at;
    if (isAt("."))
    {
        ++_at;
        if (takeDigits())
            hasDigits = true;
        else
            _at = point;
    }
    if (!hasDigits)
    {
        _at = begin;
        return fail("a number");
    }
    const std::size_t exponent = _at;
    if (isAt("eE"))
    {
        ++_at;
        if (isAt("+-"))
            ++_at;
        if (!takeDigits())
            _at = exponent;
    }
    const char* const first = _text.data() + digits;
    if (std::from_chars(first, _text.data() + _at, number).ec == std::errc::result_out_of_range)
    {
        // Too small is 0, too large is nothing that could be drawn.
        const bool isSmall = exponent < _at && _text[exponent + 1] == '-';
        if (!isSmall)
        {
            _at = begin;
            return fail("a number of at most 1.8e308");
        }
        number = 0;
    }
    if (_text[begin] == '-')
        number = -number;
    return true;
}

bool SVGPathParser::takeFlag(bool& flag)
{
    if (!isAt("01"))
        return fail("0 or 1");
    flag = _text[_at++] == '1';
    return true;
}

bool SVGPathParser::takePoint(Point& point)
{
    if (!takeNumber(point.x))
        return false;
    skipComma();
    if (!takeNumber(point.y))
        return false;
    if (_isRelative)
        point = {_current.x + point.x, _current.y + point.y};
    return true;
}

// One segment's numbers, all of them before anything is added.
bool SVGPathParser::takeSegment(char command, Path& path)
{
    const auto takeNext = [this](Point& point)
    {
        skipComma();
        return takePoint(point);
    };
    Point control1 = _current, control2 = _current, p = _current;
    switch (command)
    {
    case 'M':
        if (!takePoint(p))
            return false;
        path.moveTo(p);
        break;
    case 'L':
        if (!takePoint(p))
            return false;
        path.lineTo(p);
        break;
    case 'H':
    case 'V':
    {
        double& coordinate = command == 'H' ? p.x : p.y;
        const double before = coordinate;
        if (!takeNumber(coordinate))
            return false;
        coordinate += _isRelative ? before : 0;
        path.lineTo(p);
        break;
    }
    case 'C':
        if (!takePoint(control1) || !takeNext(control2) || !takeNext(p))
            return false;
        path.cubicTo(control1, control2, p);
        break;
    case 'S':
        control1 = mirrored(_cubicControl, _current);
        if (!takePoint(control2) || !takeNext(p))
            return false;
        path.cubicTo(control1, control2, p);
        break;
    case 'Q':
        if (!takePoint(control1) || !takeNext(p))
            return false;
        path.quadTo(control1, p);
        break;
    case 'T':
        control1 = mirrored(_quadControl, _current);
        if (!takePoint(p))
            return false;
        path.quadTo(control1, p);
        break;
    default:
        if (!takeArc(path))
            return false;
        p = path.getCurrentPoint();
        break;
    }
    _current = p;
    _cubicControl = command == 'C' || command == 'S' ? control2 : p;
    _quadControl = command == 'Q' || command == 'T' ? control1 : p;
    return true;
}

bool SVGPathParser::takeArc(Path& path)
{
    Point radii, p;
    double degrees = 0;
    bool isLarge = false, isPositive = false;
    if (!takeNumber(radii.x))
        return false;
    skipComma();
    if (!takeNumber(radii.y))
        return false;
    skipComma();
    if (!takeNumber(degrees))
        return false;
    skipComma();
    if (!takeFlag(isLarge))
        return false;
    skipComma();
    if (!takeFlag(isPositive))
        return false;
    skipComma();
    if (!takePoint(p))
        return false;
    path.arcTo(radii, std::fmod(degrees, 360) * (std::numbers::pi / 180), isLarge, isPositive, p);
    return true;
}

} // namespace gui::draw
