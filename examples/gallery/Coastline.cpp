// Look for: coasts and borders in the colours of their countries, and no line that is torn or drawn back across the map.

#include "Drawing.h"
#include "Scenes.h"

#include <common/NaturalEarth.h>
#include <common/TopoJSON.h>
#include <gui/Res.h>
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
        std::span<const td::BYTE> file;
        if (!gui::Res::getCompiled(":gallery/countries-50m.json", file) ||
            !world.load({reinterpret_cast<const char*>(file.data()), file.size()}, "countries"))
            return false;

        _buffer.init(world.getNoOfRings() + 18, 101'000, 0, {DataType::Vec2});
        appendSea();
        for (const TopoJSON::Area& country : world.getAreas())
            for (const TopoJSON::Polygon& polygon : country.polygons)
                for (const TopoJSON::Ring& ring : polygon)
                    appendRing(ring, colorOf(country.name));

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
        _program.execute();
        Context::disable(Context::Flag::Blend);
        _program.deActivate();
    }

private:
    // One of the colours above, always the same for a country.
    static ColorID colorOf(const std::string& country)
    {
        unsigned int hash = 0;
        for (const char letter : country)
            hash = hash * 31 + static_cast<unsigned char>(letter);
        return cCountryColors[hash % std::size(cCountryColors)];
    }

    void record(Primitive primitive, std::span<const td::Point<float>> points, ColorID color, int alpha)
    {
        const std::size_t first = _buffer.getNoOfVertices();
        _buffer.appendVertices(points.data(), points.size());
        Command* pCommand = _buffer.createCommand();
        pCommand->createDrawArrays(primitive, first, static_cast<unsigned int>(points.size()));
        pCommand->setColor(color, alpha);
        _buffer.encode(pCommand);
    }

    void appendRing(const TopoJSON::Ring& ring, ColorID color)
    {
        const NaturalEarth::Outline outline = _map.project(ring);
        record(outline.isLoop ? Primitive::LineLoop : Primitive::LineStrip,
               std::span(outline.points).first(outline.nLinePoints), color, 255);
    }

    // The map's whole area, and a thin net of meridians and parallels 30 degrees apart.
    void appendSea()
    {
        record(Primitive::TriangleFan, NaturalEarth::getEdge(), ColorID::DodgerBlue, 60);
        std::vector<td::Point<float>> line;
        for (int longitude = -180; longitude <= 180; longitude += 30)
        {
            line.clear();
            for (int latitude = -90; latitude <= 90; latitude += 2)
                line.push_back(NaturalEarth::project(longitude, latitude));
            record(Primitive::LineStrip, line, ColorID::LightSkyBlue, 40);
        }
        for (int latitude = -60; latitude <= 60; latitude += 30)
        {
            line = {NaturalEarth::project(-180, latitude), NaturalEarth::project(180, latitude)};
            record(Primitive::LineStrip, line, ColorID::LightSkyBlue, 40);
        }
    }

    const NaturalEarth _map{cMiddleLongitude};
    Backdrop _backdrop;
    Flat2DProgram _program;
    Buffer _buffer;
};

} // namespace

std::unique_ptr<Scene> makeCoastline() { return std::make_unique<Coastline>(); }

} // namespace gallery
