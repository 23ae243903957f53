#include "MapLayers.h"

#include "Coloring.h"

#include <gui/gl/Context.h>
#include <td/ColorID.h>
#include <vo/Log.h>

#include <cmath>

namespace worldmap
{

namespace
{

using gui::gl::Buffer;
using gui::gl::Command;
using gui::gl::DataType;
using gui::gl::Primitive;
using td::ColorID;

struct LayerColor
{
    ColorID id;
    int alpha; // 0 to 255
};

// The sea shines through the land and takes the edge off its colours.
constexpr LayerColor cLandColors[] = {{ColorID::Khaki, 220},   {ColorID::PeachPuff, 235},  {ColorID::Pink, 200},
                                      {ColorID::Thistle, 215}, {ColorID::GreenYellow, 80}, {ColorID::Cornsilk, 220}};
static_assert(std::size(cLandColors) == cNoOfColors);

constexpr LayerColor cHighlightColor{ColorID::Coral, 220};
constexpr LayerColor cPaperColor{ColorID::White, 255};
constexpr LayerColor cSeaColor{ColorID::LightSteelBlue, 255};
constexpr LayerColor cNetColor{ColorID::White, 90};
constexpr LayerColor cCoastColor{ColorID::SlateGray, 255};
constexpr LayerColor cBorderColor{ColorID::DimGray, 255};
constexpr LayerColor cEdgeColor{ColorID::SlateGray, 255};

constexpr double cBorderWidth = 1.0; // points
constexpr double cFinest = 0.8;      // points; what borders have that is smaller than that is left out

constexpr double cNetStep = 15;     // degrees
constexpr double cFarAway = 10'000; // of the map, farther than any view shows

void record(Buffer& buffer, Command* pCommand, const LayerColor& color)
{
    pCommand->setColor(color.id, color.alpha);
    buffer.encode(pCommand);
}

void append(Buffer& buffer, Primitive primitive, const std::vector<td::Point<float>>& points, const LayerColor& color)
{
    Command* pCommand = buffer.createCommand();
    pCommand->createDrawArrays(primitive, buffer.getNoOfVertices(), static_cast<unsigned int>(points.size()));
    buffer.appendVertices(points.data(), points.size());
    record(buffer, pCommand, color);
}

} // namespace

MapLayers::MapLayers(const Countries& countries)
    : _countries(countries)
    , _triang(5000)
    , _sea{DataType::Vec2}
    , _lands{DataType::Vec2}
    , _borders{DataType::Vec2}
    , _frame{DataType::Vec2}
{
}

void MapLayers::init(Projection projection)
{
    _program.link(gui::gl::Flat2DProgram::Colors::WithAlpha);
    setProjection(projection);
}

void MapLayers::setProjection(Projection projection)
{
    _projection = projection;
    fillSea();
    fillLands();
    fillFrame();
    _borderLines.clear();
    for (const Countries::Line& line : _countries.getBorders())
        _borderLines.push_back(toPlane(line));
    _borderZoom = 0;
}

void MapLayers::draw(const glm::mat4& mvp, double zoom)
{
    using gui::gl::Blend;
    using gui::gl::Context;
    if (zoom != _borderZoom)
        fillBorders(zoom);
    Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
    Context::enable(Context::Flag::Blend);
    for (Buffer* pLayer : {&_sea, &_lands, &_borders, &_frame})
        _program.draw(*pLayer, mvp);
    Context::disable(Context::Flag::Blend);
}

void MapLayers::highlight(std::size_t country)
{
    setLandColor(_highlighted, false);
    setLandColor(country, true);
    _highlighted = country;
}

// The recorded commands go on; only their colour is another.
void MapLayers::setLandColor(std::size_t country, bool isHighlighted)
{
    if (country == Countries::cNone)
        return;
    const LayerColor& color = isHighlighted ? cHighlightColor : cLandColors[_countries.getCountries()[country].color];
    for (std::size_t i = 0; i < _fills.size(); ++i)
    {
        const Ring& ring = _countries.getRings()[i];
        if (ring.country == country && !ring.isHole && _fills[i] != nullptr)
            _fills[i]->setColor(color.id, color.alpha);
    }
}

MapLayers::Points MapLayers::toPlane(const std::vector<td::Point<double>>& degrees) const
{
    Points points;
    points.reserve(degrees.size());
    for (const td::Point<double>& place : degrees)
    {
        const td::Point<double> point = project(_projection, place);
        points.emplace_back(static_cast<float>(point.x), static_cast<float>(point.y));
    }
    return points;
}

void MapLayers::fillSea()
{
    const Box sheet = sheetOf(_projection);
    const td::Point<double> southWest = unproject(_projection, sheet.min);
    const td::Point<double> northEast = unproject(_projection, sheet.max);
    std::vector<td::Point<double>> net;
    for (double longitude = std::ceil(southWest.x / cNetStep) * cNetStep; longitude < northEast.x;
         longitude += cNetStep)
        net.insert(net.end(), {{longitude, southWest.y}, {longitude, northEast.y}});
    for (double latitude = std::ceil(southWest.y / cNetStep) * cNetStep; latitude < northEast.y; latitude += cNetStep)
        net.insert(net.end(), {{southWest.x, latitude}, {northEast.x, latitude}});

    _sea.reset();
    const Points corners = toPlane({southWest, {northEast.x, southWest.y}, {southWest.x, northEast.y}, northEast});
    append(_sea, Primitive::TriangleStrip, corners, cSeaColor);
    append(_sea, Primitive::Lines, toPlane(net), cNetColor);
}

void MapLayers::fillLands()
{
    const std::vector<Ring>& rings = _countries.getRings();
    std::vector<Points> lines;
    std::vector<std::size_t> firsts;
    _lands.reset();
    _lands.reserveCommands(2 * rings.size()); // the commands stay where they are
    _fills.clear();
    std::size_t nFailed = 0;
    for (const Ring& ring : rings)
    {
        Points& points = lines.emplace_back(toPlane(ring.line.points));
        firsts.push_back(_lands.getNoOfVertices());
        Command* pFill = _triang.triangulate(&_lands, points.data(), static_cast<unsigned int>(points.size()));
        _fills.push_back(pFill);
        if (pFill != nullptr)
            record(_lands, pFill, ring.isHole ? cSeaColor : cLandColors[_countries.getCountries()[ring.country].color]);
        else
            ++nFailed;
        points.resize(ring.line.nLinePoints);
        if (ring.line.isLoop)
        {
            points.push_back(points.front());
            _lands.appendVertex(points.front());
        }
    }
    // Over all of the land. Loops are strips with the first point repeated: software renderers close long ones too
    // often.
    for (std::size_t i = 0; i < rings.size(); ++i)
    {
        Command* pCoast = _triang.createRecycledLine(&_lands, Primitive::LineStrip, lines[i].data(),
                                                     static_cast<unsigned int>(firsts[i]),
                                                     static_cast<unsigned int>(lines[i].size()));
        if (pCoast != nullptr)
            record(_lands, pCoast, cCoastColor);
    }
    if (nFailed > 0)
        vo::dbgLog("Warning! MapLayers::fillLands %zu of %zu rings cross themselves and stay empty", nFailed,
                   rings.size());
    setLandColor(_highlighted, true);
}

void MapLayers::fillBorders(double zoom)
{
    const double finest = cFinest / zoom;
    gui::gl::Triang2D::Points vertices;
    gui::gl::Triang2D::Indices indices;
    Points line;
    for (const Points& border : _borderLines)
    {
        line.assign(1, border.front());
        for (const td::Point<float>& point : border)
            if (&point == &border.back() || std::hypot(point.x - line.back().x, point.y - line.back().y) >= finest)
                line.push_back(point);
        _triang.triangulateLine(line.data(), static_cast<unsigned int>(line.size()),
                                static_cast<float>(cBorderWidth / 2 / zoom), border.front() == border.back(), vertices,
                                indices);
    }
    _borders.reset();
    _borders.appendVertices(vertices);
    _borders.appendIndices(indices);
    Command* pCommand = _borders.createCommand();
    pCommand->createDrawElements(Primitive::Triangles, 0, static_cast<unsigned int>(indices.size()));
    record(_borders, pCommand, cBorderColor);
    _borderZoom = zoom;
}

void MapLayers::fillFrame()
{
    const Box sheet = sheetOf(_projection);
    const auto left = static_cast<float>(sheet.min.x), right = static_cast<float>(sheet.max.x);
    const auto bottom = static_cast<float>(sheet.min.y), top = static_cast<float>(sheet.max.y);
    const auto far = static_cast<float>(cFarAway);
    _frame.reset();
    append(_frame, Primitive::TriangleStrip,
           {{left, bottom},
            {-far, -far},
            {right, bottom},
            {far, -far},
            {right, top},
            {far, far},
            {left, top},
            {-far, far},
            {left, bottom},
            {-far, -far}},
           cPaperColor);
    append(_frame, Primitive::LineLoop, {{left, bottom}, {right, bottom}, {right, top}, {left, top}}, cEdgeColor);
}

} // namespace worldmap
