#include "Borders.h"

#include "Geography.h"

#include <gui/gl/Context.h>

#include <glm/vec4.hpp>

#include <algorithm>
#include <cmath>

namespace globe
{

namespace
{

using namespace gui::gl;

constexpr float cRadius = 1.0015F;
// Longer lines would run below the surface, which is round.
constexpr double cLongestStep = 1.5;

constexpr glm::vec4 cCoast(1, 1, 1, 0.30F), cBorder(1, 0.95F, 0.85F, 0.55F);

// Where maps end there are lines in the data, and none on the earth.
bool isAtEdge(const td::Point<double>& a, const td::Point<double>& b)
{
    return (std::abs(a.x) > 179.99 && std::abs(b.x) > 179.99) || (std::abs(a.y) > 89.99 && std::abs(b.y) > 89.99);
}

} // namespace

bool Borders::init(const examples::TopoJSON& countries)
{
    _buffer.init(1, 200'000, 400'000, {DataType::Vec3, DataType::Vec4});
    for (const examples::TopoJSON::Area& area : countries.getAreas())
        for (const examples::TopoJSON::Polygon& polygon : area.polygons)
            for (const examples::TopoJSON::Ring& ring : polygon)
                add(ring, true, cCoast);
    for (const examples::TopoJSON::Border& border : countries.getBorders())
        add(border.line, false, cBorder);
    Command* const pCommand = _buffer.createCommand();
    pCommand->createDrawElements(Primitive::Lines, 0, static_cast<unsigned int>(_buffer.getNoOfIndices()));
    _buffer.encode(pCommand);
    _program.setBuffer(&_buffer);
    return _program.link(":globe/border.vert", ":globe/border.frag") && _buffer.commit();
}

void Borders::add(const Line& line, bool isLoop, const glm::vec4& color)
{
    const auto addVertex = [&](const td::Point<double>& point)
    {
        const glm::vec3 place = cRadius * directionOf({point.x, point.y});
        const float vertex[] = {place.x, place.y, place.z, color.r, color.g, color.b, color.a};
        _buffer.appendVertices(vertex, 1);
        return static_cast<unsigned int>(_buffer.getNoOfVertices() - 1);
    };
    const std::size_t nSteps = isLoop ? line.size() : line.size() - 1;
    unsigned int last = addVertex(line.front());
    for (std::size_t i = 0; i < nSteps; ++i)
    {
        const td::Point<double> from = line[i];
        td::Point<double> to = line[(i + 1) % line.size()];
        const bool isLeftOut = isAtEdge(from, to);
        to.x = from.x + std::remainder(to.x - from.x, 360); // the short way around the earth
        const int nPieces =
            std::max(1, static_cast<int>(std::ceil(std::hypot(to.x - from.x, to.y - from.y) / cLongestStep)));
        for (int piece = 1; piece <= nPieces; ++piece)
        {
            const double way = static_cast<double>(piece) / nPieces;
            const unsigned int next = addVertex({from.x + way * (to.x - from.x), from.y + way * (to.y - from.y)});
            if (!isLeftOut)
            {
                _buffer.appendIndex(last);
                _buffer.appendIndex(next);
            }
            last = next;
        }
    }
}

void Borders::draw(const Sight& sight)
{
    Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
    Context::enable(Context::Flag::Blend);
    Context::maskDepthBuffer(false);
    _program.activate();
    _program.setSight(sight, glm::mat4(1));
    _program.execute();
    _program.deActivate();
    Context::maskDepthBuffer(true);
    Context::disable(Context::Flag::Blend);
}

} // namespace globe
