#include "Hall.h"

#include "Drawing.h"

#include <common/Paint.h>

#include <gui/Texture.h>
#include <gui/gl/Camera.h>
#include <gui/gl/Context.h>

#include <glm/common.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/mat3x3.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <vector>

namespace gallery
{

namespace
{

using namespace gui::gl;
using glm::vec2;
using glm::vec3;
using td::ColorID;

const vec3 cSun = glm::normalize(vec3(-0.55F, 0.75F, 0.6F));

vec3 evening(const vec3& direction)
{
    const float height = std::abs(direction.y); // below the horizon lies a lake that mirrors it
    const vec3 low(0.98F, 0.74F, 0.56F), middle(0.50F, 0.56F, 0.78F), high(0.13F, 0.21F, 0.46F);
    vec3 color = glm::mix(glm::mix(low, middle, glm::smoothstep(0.0F, 0.30F, height)), high,
                          glm::smoothstep(0.2F, 0.9F, height));
    const vec3 plane = vec3(direction.x, 0, direction.z) / (height + 0.15F);
    const float cover = examples::clouds(0.9F * plane + 8.0F, 6);
    color = glm::mix(color, vec3(1, 0.86F, 0.78F),
                     0.6F * glm::smoothstep(0.48F, 0.75F, cover) * glm::smoothstep(0.02F, 0.25F, height));
    return direction.y < 0 ? 0.82F * color : color;
}

// Two by two tiles of dark stone.
vec3 stone(const vec2& place)
{
    const bool isBright = (place.x < 0.5F) == (place.y < 0.5F);
    const vec3 color = isBright ? vec3(0.46F, 0.42F, 0.38F) : vec3(0.17F, 0.18F, 0.21F);
    const vec2 inTile = glm::fract(2.0F * place);
    const float edge = std::min(std::min(inTile.x, inTile.y), std::min(1 - inTile.x, 1 - inTile.y));
    const float veins = std::abs(examples::clouds(vec3(9.0F * place, isBright ? 3 : 7), 5) - 0.5F);
    return color * glm::smoothstep(0.0F, 0.012F, edge) + 0.05F * (1 - glm::smoothstep(0.0F, 0.05F, veins));
}

constexpr int cNoOfExhibits = 6;

// The middle of a ball on its plinth.
vec3 exhibitPlace(int i) { return {i % 2 == 0 ? -1.75F : 1.75F, 1.45F, 1.4F - 2.3F * static_cast<float>(i)}; }

} // namespace

bool Hall::init(const glm::mat4& perspective, const Camera& camera)
{
    _pPerspective = &perspective;
    _pCamera = &camera;
    gui::Texture floor = examples::paint(256, 256, stone);
    if (!_textures.append({&floor}, Texture::Type::Tex2D) ||
        !_textures.append({":gallery/earth.jpg"}, Texture::Type::Tex2D))
        return false;

    constexpr ColorID cStone = ColorID::Linen, cWall = ColorID::AntiqueWhite;
    for (const float x : {-3.9F, 3.9F})
    {
        for (int i = 0; i < 6; ++i)
        {
            const float z = 3.2F - 3 * static_cast<float>(i);
            addBox({x, 0.15F, z}, {0.9F, 0.3F, 0.9F}, cStone);
            addBox({x, 2, z}, {0.56F, 3.4F, 0.56F}, cStone);
            addBox({x, 3.85F, z}, {0.9F, 0.3F, 0.9F}, cStone);
        }
        addBox({x, 4.3F, -4.3F}, {1, 0.6F, 17}, cWall);
    }
    addBox({0, 2.3F, -13.2F}, {8.8F, 4.6F, 0.4F}, cWall);
    addBox({0, 2.25F, -12.98F}, {4.7F, 2.5F, 0.1F}, ColorID::SaddleBrown);

    struct Exhibit
    {
        unsigned int sectors;
        ColorID color;
    };
    constexpr Exhibit cExhibits[cNoOfExhibits] = {{6, ColorID::Coral},           {8, ColorID::Goldenrod},
                                                  {10, ColorID::MediumSeaGreen}, {14, ColorID::MediumTurquoise},
                                                  {24, ColorID::RoyalBlue},      {64, ColorID::MediumVioletRed}};
    for (int i = 0; i < cNoOfExhibits; ++i)
    {
        addBox(exhibitPlace(i) * vec3(1, 0, 1) + vec3(0, 0.45F, 0), {0.7F, 0.9F, 0.7F}, ColorID::Silver);
    }
    _nBoxes = _solids.getCommandList().size();
    for (int i = 0; i < cNoOfExhibits; ++i)
    {
        const auto [sectors, color] = cExhibits[i];
        Command* const pCommand = _solids.addSphere(0.55F, sectors, sectors / 2 + 1, Texture::Type::CubeMap);
        pCommand->setColor(color);
        _solids.encode(pCommand);
    }

    addPicture({-10, 0, 10}, {20, 0, 0}, {0, 0, -24}, {10, 12}, 0);
    addPicture({-2.2F, 1.1F, -12.92F}, {4.4F, 0, 0}, {0, 2.2F, 0}, {1, 1}, 1);
    _program.setBuffer(&_solids);
    _pictureProgram.setBuffer(&_pictures);
    _pictureProgram.setTextures(&_textures);
    return _sky.init(_pPerspective, _pCamera, 256, evening) && _program.link() && _pictureProgram.link() &&
           _solids.commit() && _pictures.commit();
}

void Hall::addBox(const vec3& middle, const vec3& size, ColorID color)
{
    std::vector<vec3> vertices;
    for (int axis = 0; axis < 3; ++axis)
    {
        for (const float sign : {-1.0F, 1.0F})
        {
            vec3 normal(0), right(0), up(0);
            normal[axis] = sign;
            right[(axis + 1) % 3] = size[(axis + 1) % 3] / 2;
            up[(axis + 2) % 3] = size[(axis + 2) % 3] / 2;
            const vec3 face = middle + normal * size / 2.0F;
            for (const vec3& corner : {-right - up, right - up, up - right, up - right, right - up, right + up})
                vertices.insert(vertices.end(), {face + corner, normal});
        }
    }
    const std::size_t first = _solids.getNoOfVertices();
    _solids.appendVertices(&vertices.front().x, vertices.size() / 2);
    Command* const pCommand = _solids.createCommand();
    pCommand->createDrawArrays(Primitive::Triangles, first, static_cast<unsigned int>(vertices.size() / 2));
    pCommand->setColor(color);
    _solids.encode(pCommand);
}

void Hall::addPicture(const vec3& corner, const vec3& right, const vec3& up, const vec2& repeats, char texture)
{
    const std::size_t first = _pictures.getNoOfVertices();
    for (const vec2& place : {vec2(0, 0), vec2(1, 0), vec2(0, 1), vec2(1, 1)})
    {
        const vec3 point = corner + place.x * right + place.y * up;
        const float vertex[] = {point.x, point.y, point.z, place.x * repeats.x, place.y * repeats.y};
        _pictures.appendVertices(vertex, 1);
    }
    Command* const pCommand = _pictures.createCommand();
    pCommand->createDrawArrays(Primitive::TriangleStrip, first, 4);
    pCommand->setTexture(Textures::Unit::T0, texture);
    _pictures.encode(pCommand);
}

void Hall::draw()
{
    const glm::mat4 toClip = *_pPerspective * _pCamera->getViewMatrix();
    const glm::mat4 mirror = glm::scale(glm::mat4(1), vec3(1, -1, 1));
    Context::clear({Context::Clear::Color, Context::Clear::Depth});
    Context::enable(Context::Flag::DepthTest);
    for (const glm::mat4& world : {mirror, glm::mat4(1)})
    {
        drawSolids(world, toClip);
        _pictureProgram.activate();
        _pictureProgram.setMVP(toClip * world);
        _pictureProgram.execute(1, 1);
    }
    Context::setDepthBufferFunction(DepthBuffer::Function::LessOrEqual);
    _sky.render(false);
    Context::setDepthBufferFunction(DepthBuffer::Function::Less);

    // The world below shows through the floor, the more the brighter the stone is.
    Context::setBlendFunction(Blend::Factor::One, Blend::Factor::SrcColor);
    Context::enable(Context::Flag::Blend);
    _pictureProgram.activate();
    _pictureProgram.setMVP(toClip);
    _pictureProgram.execute(0, 1);
    _pictureProgram.deActivate();
    Context::disable(Context::Flag::Blend);
    Context::disable(Context::Flag::DepthTest);
}

void Hall::drawSolids(const glm::mat4& world, const glm::mat4& toClip)
{
    _program.activate();
    _program.setSun(glm::mat3(world) * cSun);
    _program.setAmbient(0.42F);
    _program.setMatrices(world, toClip);
    _program.execute(0, _nBoxes);
    for (int i = 0; i < cNoOfExhibits; ++i)
    {
        // A sphere's axis is z.
        const glm::mat4 moved = glm::translate(world, exhibitPlace(i));
        _program.setMatrices(glm::rotate(moved, glm::radians(-90.0F), {1, 0, 0}), toClip);
        _program.execute(_nBoxes + static_cast<std::size_t>(i), 1);
    }
}

} // namespace gallery
