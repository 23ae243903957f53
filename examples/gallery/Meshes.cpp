// Look for: six faces of a strip and of a cube map that meet at their edges, spheres that grow round, normals that
// stand straight on them.

#include "Drawing.h"
#include "Scenes.h"

#include <common/Paint.h>

#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <glm/common.hpp>
#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>
#include <glm/vector_relational.hpp>

#include <array>
#include <cmath>
#include <string>

namespace gallery
{

namespace
{

using namespace gui::gl;
using glm::vec3;
using td::ColorID;
using Type = gui::gl::Texture::Type;

const vec3 cMeshSun = glm::normalize(vec3(-0.5F, 0.75F, 0.8F));

struct Sphere
{
    unsigned int sectors;
    unsigned int stacks;
    float xyScale;
    float radius;
    ColorID color;
    ColorID wire; // NoColor for none
    bool hasNormals;
};

constexpr Sphere cSpheres[] = {{5, 4, 1, 1, ColorID::Coral, ColorID::MistyRose, false},
                               {12, 8, 1, 1, ColorID::Goldenrod, ColorID::LemonChiffon, false},
                               {64, 32, 1, 1, ColorID::MediumSeaGreen, ColorID::NoColor, false},
                               {24, 14, 1.3F, 0.72F, ColorID::SteelBlue, ColorID::PaleTurquoise, false},
                               {18, 10, 1, 0.78F, ColorID::MediumPurple, ColorID::NoColor, true}};

// The bands of a planet, with the light that falls on each side of the cube.
vec3 bands(const vec3& direction)
{
    const vec3 size = glm::abs(direction);
    const float most = std::max({size.x, size.y, size.z});
    const vec3 side = glm::sign(direction) * vec3(glm::equal(size, vec3(most)));
    const float light =
        0.62F + 0.42F * std::max(glm::dot(glm::normalize(side), glm::normalize(vec3(0.75F, 0.7F, 0.45F))), 0.0F);

    constexpr ColorID cBands[] = {ColorID::RosyBrown, ColorID::Wheat, ColorID::Sienna,      ColorID::BlanchedAlmond,
                                  ColorID::Peru,      ColorID::Linen, ColorID::SaddleBrown, ColorID::Tan};
    const float whirl = examples::clouds(vec3(3, 9, 3) * direction + 5.0F, 5) - 0.5F;
    const float latitude = 0.5F + 0.5F * direction.y + 0.09F * whirl;
    // A storm, and the bands that part around it.
    const float storm = glm::length(
        (glm::normalize(direction - vec3(0, 0.04F, 0)) - glm::normalize(vec3(0.12F, -0.3F, 1))) * vec3(0.6F, 1, 0.6F));
    const vec3 color = vec3(gradient(cBands, latitude + 0.07F * std::exp(-30 * storm * storm)));
    return light * glm::mix(vec3(0.78F, 0.28F, 0.16F), color, glm::smoothstep(0.08F, 0.15F, storm + 0.05F * whirl));
}

class Meshes : public Scene
{
public:
    bool init() override
    {
        std::array<gui::Texture, 6> faces;
        for (std::size_t i = 0; i < faces.size(); ++i)
            if (!faces[i].loadFromFile((":gallery/face" + std::to_string(i + 1) + ".png").c_str()))
                return false;
        gui::Texture strip = joinFaces(faces);
        gui::Texture earth;
        if (!earth.loadFromFile(":gallery/earth.jpg") || !_textures.append({&strip, &earth}, Type::Tex2D) ||
            !_maps.appendCubeMap(256, bands))
            return false;

        Command* pCommand = _strip.addCube(1.3F, Type::CubeStrip);
        pCommand->setTexture(Textures::Unit::T0, 0);
        _strip.encode(pCommand);
        pCommand = _map.addCube(1.3F, Type::CubeMap);
        pCommand->setTexture(Textures::Unit::T0, 0);
        _map.encode(pCommand);
        pCommand = _earth.addSphere(1, 64, 32, Type::Tex2D);
        pCommand->setTexture(Textures::Unit::T0, 1);
        _earth.encode(pCommand);
        for (const Sphere& sphere : cSpheres)
            record(sphere);

        _stripProgram.setBuffer(&_strip);
        _stripProgram.setTextures(&_textures);
        _mapProgram.setBuffer(&_map);
        _mapProgram.setTextures(&_maps);
        _earthProgram.setBuffer(&_earth);
        _earthProgram.setTextures(&_textures);
        _program.setBuffer(&_spheres);
        return _backdrop.init() && _program.link() && _stripProgram.link() && _mapProgram.link() &&
               _earthProgram.link() && _strip.commit() && _map.commit() && _earth.commit() && _spheres.commit();
    }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> cells = makeGrid(frame, 4, 2);
        _backdrop.draw(frame, cells);
        const auto degrees = static_cast<float>(16 * frame.seconds);
        Context::enable(Context::Flag::DepthTest);
        _stripProgram.activate();
        _stripProgram.setMVP(toClip(frame, cells[0]) * turned(degrees + 4, 24));
        _stripProgram.execute();
        _mapProgram.activate();
        _mapProgram.setMVP(toClip(frame, cells[1]) * turned(degrees - 72, 24));
        _mapProgram.execute();
        _earthProgram.activate();
        _earthProgram.setSun(cMeshSun);
        _earthProgram.setMatrices(stand(degrees + 100), toClip(frame, cells[7]));
        _earthProgram.execute();

        _program.activate();
        _program.setSun(cMeshSun);
        std::size_t command = 0;
        for (std::size_t i = 0; i < std::size(cSpheres); ++i)
            drawSphere(cSpheres[i], command, stand(degrees), toClip(frame, cells[i + 2]));
        _program.deActivate();
        Context::disable(Context::Flag::DepthTest);
    }

private:
    static gui::Texture joinFaces(const std::array<gui::Texture, 6>& faces)
    {
        const int size = faces[0].getWidth();
        return examples::paint(6 * size, size,
                               [&](const glm::vec2& place)
                               {
                                   const glm::ivec2 pixel(place * glm::vec2(6 * size, size));
                                   // A strip's pictures stand on t = 0, images hang from it.
                                   const int row = size - 1 - pixel.y;
                                   const td::BYTE* p = faces[static_cast<std::size_t>(pixel.x / size)].getBytes() +
                                                       3 * (row * size + pixel.x % size);
                                   return vec3(p[0], p[1], p[2]) / 255.0F;
                               });
    }

    void record(const Sphere& sphere)
    {
        const std::size_t first = _spheres.getNoOfVertices();
        const std::size_t firstIndex = _spheres.getNoOfIndices();
        Command* pCommand =
            _spheres.addSphere(sphere.radius, sphere.sectors, sphere.stacks, Type::CubeMap, true, sphere.xyScale);
        pCommand->setColor(sphere.color);
        _spheres.encode(pCommand);
        if (sphere.wire != ColorID::NoColor)
        {
            pCommand = _spheres.createCommand();
            pCommand->createDrawElements(Primitive::Triangles, firstIndex,
                                         static_cast<unsigned int>(_spheres.getNoOfIndices() - firstIndex));
            pCommand->setColor(sphere.wire);
            _spheres.encode(pCommand);
        }
        if (!sphere.hasNormals)
            return;
        std::vector<vec3> lines;
        const float* const pVertices = _spheres.getVertices().begin();
        for (std::size_t i = first; i < _spheres.getNoOfVertices(); ++i)
        {
            const vec3 place(pVertices[6 * i], pVertices[6 * i + 1], pVertices[6 * i + 2]);
            const vec3 normal(pVertices[6 * i + 3], pVertices[6 * i + 4], pVertices[6 * i + 5]);
            lines.insert(lines.end(), {place, normal, place + 0.24F * normal, normal});
        }
        const std::size_t firstLine = _spheres.getNoOfVertices();
        _spheres.appendVertices(&lines.data()->x, lines.size() / 2);
        pCommand = _spheres.createCommand();
        pCommand->createDrawArrays(Primitive::Lines, firstLine, static_cast<unsigned int>(lines.size() / 2));
        pCommand->setColor(ColorID::Gold);
        _spheres.encode(pCommand);
    }

    void drawSphere(const Sphere& sphere, std::size_t& command, const glm::mat4& model, const glm::mat4& clip)
    {
        _program.setAmbient(0.22F);
        _program.setMatrices(model, clip);
        _program.execute(command++, 1);
        if (sphere.wire != ColorID::NoColor)
        {
            // A little above the surface, or half of it would sink in.
            _program.setAmbient(0.55F);
            _program.setMatrices(glm::scale(model, vec3(1.004F)), clip);
            Context::setPolygonMode(Context::PolygonMode::Line);
            _program.execute(command++, 1);
            Context::setPolygonMode(Context::PolygonMode::Fill);
        }
        if (sphere.hasNormals)
        {
            _program.setAmbient(0.7F);
            _program.execute(command++, 1);
        }
    }

    static glm::mat4 toClip(const Frame& frame, const Cell& cell)
    {
        const glm::mat4 perspective = glm::perspective(glm::radians(34.0F), 1.0F, 1.0F, 10.0F);
        return glm::translate(unitsToClip(frame, cell) * perspective, {0, 0, -4.1F});
    }

    static glm::mat4 turned(float degrees, float tilt)
    {
        const glm::mat4 tilted = glm::rotate(glm::mat4(1), glm::radians(tilt), {1, 0, 0});
        return glm::rotate(tilted, glm::radians(degrees), {0, 1, 0});
    }

    // A sphere's axis is z.
    static glm::mat4 stand(float degrees) { return glm::rotate(turned(degrees, 24), glm::radians(-90.0F), {1, 0, 0}); }

    Backdrop _backdrop;
    Texture3DProgram _stripProgram;
    CubeMap3DProgram _mapProgram;
    LitTexture3DProgram _earthProgram;
    Lit3DProgram _program;
    Buffer _strip{DataType::Vec3, DataType::Vec2};
    Buffer _map{DataType::Vec3};
    Buffer _earth{DataType::Vec3, DataType::Vec3, DataType::Vec2};
    Buffer _spheres{DataType::Vec3, DataType::Vec3};
    Textures _textures; // the strip of faces, the earth
    Textures _maps;
};

} // namespace

std::unique_ptr<Scene> makeMeshes() { return std::make_unique<Meshes>(); }

} // namespace gallery
