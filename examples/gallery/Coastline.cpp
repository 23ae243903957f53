// Look for: every coast and border in its country's colour, and no line that is torn or drawn back across the map.

#include "Drawing.h"
#include "Scenes.h"

#include <common/NaturalEarth.h>
#include <common/TopoJSON.h>
#include <gui/gl/gl.h>

#include <glm/ext/matrix_transform.hpp>

#include <algorithm>

namespace gallery
{

namespace
{

using namespace gui::gl;
using examples::NaturalEarth;
using examples::TopoJSON;
using td::ColorID;

// The map ends in the Bering Strait, where next to nothing reaches across its edge.
constexpr double cMiddleLongitude = 11;

constexpr ColorID cCountryColors[] = {
    ColorID::Gold,          ColorID::SandyBrown, ColorID::LightSalmon, ColorID::Khaki,        ColorID::Aquamarine,
    ColorID::PaleTurquoise, ColorID::Plum,       ColorID::YellowGreen, ColorID::LightSkyBlue, ColorID::Coral};

class Coastline : public Scene
{
public:
    bool init() override
    {
        TopoJSON world;
        if (!world.loadCompiled(":gallery/countries-50m.json", "countries"))
            return false;

        _buffer.init(0, 101'000, 0, {DataType::Vec2});
        _coasts.reserve(world.getNoOfRings());
        recordSea();
        for (const TopoJSON::Area& country : world.getAreas())
            recordCountry(country);
        _program.setBuffer(&_buffer);
        return _backdrop.init() && _program.link(Flat2DProgram::Colors::WithAlpha) && _buffer.commit();
    }

    void draw(const Frame& frame) override
    {
        _backdrop.draw(frame);
        const Cell cell = makeGrid(frame, 1, 1).front();
        const double half = std::min(cell.width, cell.height) / 2;
        const double scale =
            std::min(cell.width / NaturalEarth::cHalfWidth, cell.height / NaturalEarth::cHalfHeight) / 2 / half;

        _program.activate();
        _program.setMVP(glm::scale(unitsToClip(frame, cell), glm::vec3(static_cast<float>(scale))));
        Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
        Context::enable(Context::Flag::Blend);
        _sea.execute();
        fillCountries();
        _coasts.execute();
        Context::disable(Context::Flag::Blend);
        _program.deActivate();
    }

private:
    // Fans overlap where an outline turns inwards. What an odd number of them covers is inside: they are drawn into the
    // stencil buffer first, then as colour where it is set, which unsets it.
    void fillCountries()
    {
        using Function = StencilBuffer::Function;
        using Operation = StencilBuffer::Operation;
        Context::enable(Context::Flag::StencilTest);
        std::size_t first = 0;
        for (const std::size_t nRings : _nRings)
        {
            Context::setStencilBufferFunction(Function::Never, 0, 1);
            Context::setStencilBufferOperation(Operation::Invert, Operation::Keep, Operation::Keep);
            _lands.execute(first, nRings);
            Context::setStencilBufferFunction(Function::NotEqual, 0, 1);
            Context::setStencilBufferOperation(Operation::Keep, Operation::Zero, Operation::Zero);
            _lands.execute(first, nRings);
            first += nRings;
        }
        Context::disable(Context::Flag::StencilTest);
    }

    void record(CommandList& list, Primitive primitive, std::size_t first, std::size_t count, ColorID color, int alpha)
    {
        Command* pCommand = list.get();
        pCommand->createDrawArrays(primitive, first, static_cast<unsigned int>(count));
        pCommand->setColor(color, alpha);
        list.encode(pCommand);
    }

    std::size_t append(const std::vector<td::Point<float>>& points)
    {
        const std::size_t first = _buffer.getNoOfVertices();
        _buffer.appendVertices(points.data(), points.size());
        return first;
    }

    void recordCountry(const TopoJSON::Area& country)
    {
        unsigned int hash = 0;
        for (const char letter : country.name)
            hash = hash * 31 + static_cast<unsigned char>(letter);
        const ColorID color = cCountryColors[hash % std::size(cCountryColors)];

        const std::size_t nBefore = _lands.size();
        for (const TopoJSON::Polygon& polygon : country.polygons)
        {
            for (const TopoJSON::Ring& ring : polygon)
            {
                const NaturalEarth::Outline outline = _map.project(ring);
                const std::size_t first = append(outline.points);
                record(_lands, Primitive::TriangleFan, first, outline.points.size(), color, 95);
                record(_coasts, outline.isLoop ? Primitive::LineLoop : Primitive::LineStrip, first, outline.nLinePoints,
                       color, 255);
            }
        }
        _nRings.push_back(_lands.size() - nBefore);
    }

    void recordSea()
    {
        const std::vector<td::Point<float>> edge = NaturalEarth::getEdge();
        record(_sea, Primitive::TriangleFan, append(edge), edge.size(), ColorID::DodgerBlue, 60);
        for (const std::vector<td::Point<float>>& line : NaturalEarth::getNet(30))
            record(_sea, Primitive::LineStrip, append(line), line.size(), ColorID::LightSkyBlue, 40);
    }

    const NaturalEarth _map{cMiddleLongitude};
    Backdrop _backdrop;
    Flat2DProgram _program;
    Buffer _buffer;
    CommandList _sea;
    CommandList _lands;               // a fan for each ring, country after country
    CommandList _coasts;              // a line for each ring
    std::vector<std::size_t> _nRings; // of each country
};

} // namespace

std::unique_ptr<Scene> makeCoastline() { return std::make_unique<Coastline>(); }

} // namespace gallery
