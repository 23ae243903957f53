// Look for: from three corners to sixty, each with the same picture, which stands still while the corners turn.

#include "Drawing.h"
#include "Scenes.h"

#include <common/Paint.h>

#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <cmath>
#include <numbers>

namespace gallery
{

namespace
{

using namespace gui::gl;
using td::ColorID;

using Points = cnt::PushBackVector<td::Point<float>>;

constexpr unsigned int cNumbersOfCorners[] = {3, 4, 5, 6, 7, 8, 12, 60};
constexpr float cPetalRadius = 0.80F;
constexpr float cRim = 0.055F;

constexpr ColorID cPetals[] = {ColorID::Gold,         ColorID::Coral,      ColorID::DeepPink, ColorID::DarkOrchid,
                               ColorID::MidnightBlue, ColorID::DodgerBlue, ColorID::Turquoise};

glm::vec3 rosette(const glm::vec2& place)
{
    const glm::vec2 point = 2.0F * place - 1.0F;
    const float radius = glm::length(point);
    const float angle = std::atan2(point.y, point.x);
    const float petals = std::cos(12 * angle);
    const float way = radius * (1 + 0.10F * petals) + 0.05F * std::sin(20 * radius);
    const glm::vec3 color(gradient(cPetals, way));
    // Bright seams between rings of petals.
    const float ring = std::abs(std::sin(std::numbers::pi_v<float> * (4.5F * way + 0.25F)));
    const float seam = 1 - glm::smoothstep(0.0F, 0.16F, ring);
    const float shade = 0.82F + 0.18F * std::cos(24 * angle) * glm::smoothstep(0.1F, 0.4F, radius);
    return glm::mix(color * shade, glm::vec3(1, 0.96F, 0.86F), 0.75F * seam);
}

class Polygon : public Scene
{
public:
    bool init() override
    {
        gui::Texture picture = examples::paint(384, 384, rosette);
        return _backdrop.init() && _program.link() && _rimProgram.link() &&
               _textures.append({&picture}, Texture::Type::Tex2D);
    }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> cells = makeGrid(frame, 4, 2);
        _backdrop.draw(frame, cells);
        const auto turn = static_cast<float>(0.35 * (frame.seconds - 2));
        _polygons.reset();
        _rims.reset();
        for (const unsigned int nCorners : cNumbersOfCorners)
            record(nCorners, std::numbers::pi_v<float> / 2 + turn);
        if (!_polygons.commit() || !_rims.commit())
            return;

        _rimProgram.setBuffer(&_rims);
        _rimProgram.activate();
        for (std::size_t i = 0; i < cells.size(); ++i)
        {
            _rimProgram.setMVP(unitsToClip(frame, cells[i]));
            _rimProgram.execute(i, 1);
        }
        _textures.setActive(Textures::Unit::T0, 0);
        _program.setBuffer(&_polygons);
        _program.activate();
        for (std::size_t i = 0; i < cells.size(); ++i)
        {
            _program.setMVP(unitsToClip(frame, cells[i]));
            _program.execute(i, 1);
        }
        _program.deActivate();
    }

private:
    void record(unsigned int nCorners, float startAngle)
    {
        Points points, coordinates;
        generateSymPolygon({{0, 0}, cPetalRadius}, nCorners, points, startAngle, &coordinates);
        const std::size_t first = _polygons.getNoOfVertices();
        for (std::size_t i = 0; i < nCorners; ++i)
        {
            const float vertex[] = {points[i].x, points[i].y, coordinates[i].x, coordinates[i].y};
            _polygons.appendVertices(vertex, 1);
        }
        Command* pCommand = _polygons.createCommand();
        pCommand->createDrawArrays(Primitive::TriangleFan, first, nCorners);
        _polygons.encode(pCommand);

        // As wide along every edge: corners lie further out the sharper they are.
        const float out = cRim / std::cos(std::numbers::pi_v<float> / static_cast<float>(nCorners));
        generateSymPolygon({{0, 0}, cPetalRadius + out}, nCorners, points, startAngle);
        const std::size_t firstOfRim = _rims.getNoOfVertices();
        _rims.appendVertices(points);
        pCommand = _rims.createCommand();
        pCommand->createDrawArrays(Primitive::TriangleFan, firstOfRim, nCorners);
        pCommand->setColor(ColorID::Ivory);
        _rims.encode(pCommand);
    }

    Backdrop _backdrop;
    Texture2DProgram _program;
    Flat2DProgram _rimProgram;
    Textures _textures;
    Buffer _polygons{DataType::Vec2, DataType::Vec2};
    Buffer _rims{DataType::Vec2};
};

} // namespace

std::unique_ptr<Scene> makePolygon() { return std::make_unique<Polygon>(); }

} // namespace gallery
