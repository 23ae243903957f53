#include "Legend.h"

#include <gui/gl/Context.h>

#include <glm/ext/matrix_clip_space.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace worldmap
{

namespace
{

using examples::Captions;
using gui::gl::Blend;
using gui::gl::Context;
using td::ColorID;

// In points.
constexpr double cLineHeight = 22;
constexpr double cLeft = 10;
constexpr double cColumnGap = 14;
constexpr double cBarLength = 120; // at most
constexpr double cBarBottom = 8;   // above the line
constexpr double cTickHeight = 6;
constexpr double cBarTextGap = 6;
constexpr double cBarTextWidth = 60;

constexpr double cKilometresPerDegree = 111.2; // on a sphere as large as the earth
constexpr double cLastLatitude = 85;

constexpr const char* cWidestPlace = "189.99\u00b0 W  89.99\u00b0 N";

struct Color
{
    ColorID id;
    int alpha; // 0 to 255
};
constexpr Color cInkColor{ColorID::DarkSlateGray, 255};
constexpr Color cRimColor{ColorID::White, 255};
constexpr Color cGroundColor{ColorID::White, 215};

void appendBox(gui::gl::Buffer& shapes, const Captions::Box& box, const Color& color)
{
    const td::Point<float> corners[] = {
        {box.left, box.top}, {box.left, box.bottom}, {box.right, box.top}, {box.right, box.bottom}};
    gui::gl::Command* pCommand = shapes.createCommand();
    pCommand->createDrawArrays(gui::gl::Primitive::TriangleStrip, shapes.getNoOfVertices(), 4);
    shapes.appendVertices(corners, 4);
    pCommand->setColor(color.id, color.alpha);
    shapes.encode(pCommand);
}

std::string placeText(const Outlook& outlook, const td::Point<double>& pointer)
{
    const td::Point<double> degrees = outlook.toDegrees(pointer);
    if (!sheetOf(outlook.projection).contains(project(outlook.projection, degrees)))
        return {};
    // What is rounded to 0 is neither west nor south.
    const auto rounded = [](double value) { return std::round(value * 100) / 100; };
    const double longitude = rounded(std::remainder(degrees.x, 360)), latitude = rounded(degrees.y);
    char text[60];
    std::snprintf(text, sizeof text, "%.2f\u00b0 %c  %.2f\u00b0 %c", std::abs(longitude), longitude < 0 ? 'W' : 'E',
                  std::abs(latitude), latitude < 0 ? 'S' : 'N');
    return text;
}

} // namespace

double roundLength(double length)
{
    const double power = std::pow(10, std::floor(std::log10(length)));
    return (length >= 5 * power ? 5 : length >= 2 * power ? 2 : 1) * power;
}

Legend::Legend()
    : _shapes{gui::gl::DataType::Vec2}
{
}

bool Legend::init()
{
    _program.link(gui::gl::Flat2DProgram::Colors::WithAlpha);
    return initWriting(_captions);
}

void Legend::draw(const Outlook& outlook, const std::optional<td::Point<double>>& pointer, const std::string& country)
{
    const std::string place = pointer.has_value() ? placeText(outlook, *pointer) : std::string();
    if (outlook != _outlook || place != _place || country != _country)
    {
        _outlook = outlook;
        _place = place;
        _country = country;
        layOut();
    }
    const auto width = static_cast<float>(outlook.size.width), height = static_cast<float>(outlook.size.height);
    Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
    Context::enable(Context::Flag::Blend);
    _program.draw(_shapes, glm::ortho(0.0F, width * outlook.scale, height * outlook.scale, 0.0F));
    drawWriting(_captions);
}

void Legend::layOut()
{
    const float scale = _outlook.scale;
    const auto pixels = [scale](double points) { return std::round(static_cast<float>(points) * scale); };
    const float lineTop = pixels(_outlook.size.height - cLineHeight);
    _captions.begin(_outlook.size, scale);

    // Along the parallel in the middle of the view.
    const double latitude = _outlook.toDegrees({_outlook.size.width / 2, _outlook.size.height / 2}).y;
    const double kilometresPerPoint =
        cKilometresPerDegree / _outlook.zoom() *
        std::cos(std::clamp(latitude, -cLastLatitude, cLastLatitude) * std::numbers::pi / 180);
    const double length = roundLength(cBarLength * kilometresPerPoint);
    char text[40];
    std::snprintf(text, sizeof text, "%g km", length);
    _length = text;
    fillShapes(length / kilometresPerPoint);
    const float textHeight = _captions.measure(_length).height;
    _captions.add({pixels(cLeft + length / kilometresPerPoint + cBarTextGap),
                   lineTop - pixels(cBarBottom) - (pixels(cTickHeight) + textHeight) / 2},
                  _length, cRimmed);

    std::snprintf(text, sizeof text, "zoom %.*f", _outlook.zoom() < 10 ? 2 : 1, _outlook.zoom());
    const float y = lineTop + (pixels(cLineHeight) - textHeight) / 2;
    const float countryLeft = pixels(cLeft + cColumnGap) + _captions.measure(cWidestPlace).width;
    const float zoomLeft = pixels(_outlook.size.width - cLeft) - _captions.measure(text).width;
    _captions.add({pixels(cLeft), y}, _place, cPlain);
    _captions.add({countryLeft, y}, _country, cPlain);
    if (countryLeft + _captions.measure(_country).width + pixels(cColumnGap) < zoomLeft)
        _captions.add({zoomLeft, y}, text, cPlain);
}

void Legend::fillShapes(double barLength)
{
    const float scale = _outlook.scale;
    const auto pixels = [scale](double points) { return std::round(static_cast<float>(points) * scale); };
    const float lineTop = pixels(_outlook.size.height - cLineHeight), pen = std::max(1.0F, pixels(1));
    const float left = pixels(cLeft), right = pixels(cLeft + barLength);
    const float bottom = lineTop - pixels(cBarBottom), top = bottom - pixels(cTickHeight);
    const Captions::Box bars[] = {
        {left, bottom - pen, right, bottom}, {left, top, left + pen, bottom}, {right - pen, top, right, bottom}};
    _shapes.reset();
    appendBox(_shapes, {0, lineTop, pixels(_outlook.size.width), pixels(_outlook.size.height)}, cGroundColor);
    for (const Captions::Box& bar : bars)
        appendBox(_shapes, {bar.left - pen, bar.top - pen, bar.right + pen, bar.bottom + pen}, cRimColor);
    for (const Captions::Box& bar : bars)
        appendBox(_shapes, bar, cInkColor);
}

std::vector<Captions::Box> Legend::boxesIn(const Outlook& outlook)
{
    const auto pixels = [&](double points) { return static_cast<float>(points) * outlook.scale; };
    const float lineTop = pixels(outlook.size.height - cLineHeight), bottom = pixels(outlook.size.height);
    return {{0, lineTop, pixels(outlook.size.width), bottom},
            {0, lineTop - pixels(cBarBottom + 2 * cTickHeight),
             pixels(cLeft + cBarLength + cBarTextGap + cBarTextWidth), lineTop}};
}

} // namespace worldmap
