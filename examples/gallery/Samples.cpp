// Look for: steps along every edge with one sample, none with four; below, the same pixels eight times as large.

#include "Drawing.h"
#include "Lettering.h"
#include "Scenes.h"

#include <gui/gl/gl.h>

#include <epoxy/gl.h>
#include <glm/ext/matrix_transform.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace gallery
{

namespace
{

using namespace gui::gl;

constexpr int cMagnification = 8;
constexpr int cRays = 36;
constexpr float cTurnsPerSecond = 0.004F;

/// The same picture with one sample per pixel and with several, drawn aside.
class Samples : public Scene
{
public:
    bool init() override
    {
        _rays.init(2, 600, 0, {DataType::Vec2, DataType::Vec4});
        std::vector<ColorVertex> triangles;
        for (int i = 0; i < cRays; ++i)
        {
            const float turns = static_cast<float>(i) / cRays;
            const td::Color color = td::Color::fromHSL(360 * turns, 0.75F, 0.65F);
            glm::vec4 rgba;
            Color::get(color, rgba);
            for (const glm::vec2 corner :
                 {onCircle(turns, 0.06F), onCircle(turns - 0.2F / cRays, 0.95F), onCircle(turns + 0.2F / cRays, 0.95F)})
                triangles.push_back({corner, rgba});
        }
        Command* const pCommand = _rays.createCommand();
        pCommand->createDrawArrays(Primitive::Triangles, append(_rays, triangles),
                                   static_cast<unsigned int>(triangles.size()));
        _rays.encode(pCommand);

        // The whole picture, and a part of it between two rays.
        _quads.init(2, 8, 0, {DataType::Vec2, DataType::Vec2});
        addQuad({0, 0}, 1);
        addQuad({0.6875F, 0.625F}, 1.0F / cMagnification);

        // More than four samples are shown where there are more.
        GLint mostSamples = 0;
        glGetIntegerv(GL_MAX_SAMPLES, &mostSamples);
        for (const int nSamples : {1, 4, 8})
            if (nSamples <= mostSamples)
                _nSamples.push_back(nSamples);
        _lettering.init();
        return _backdrop.init() && _rayProgram.link() && _quadProgram.link() && _rays.commit() && _quads.commit();
    }

    bool moves() const override { return true; }

    void draw(const Frame& frame) override
    {
        const auto nColumns = static_cast<int>(_nSamples.size());
        const std::vector<Cell> cells = makeGrid(frame, nColumns, 2);
        _backdrop.draw(frame, cells);
        // As many device pixels as fit, which a part of a whole number of them fills as well.
        const double room = 0.82 * static_cast<double>(std::min(cells[0].width, cells[0].height)) * frame.scale;
        const int side = std::max(1, static_cast<int>(room) / cMagnification) * cMagnification;
        for (std::size_t i = 0; i < _nSamples.size(); ++i)
        {
            if (!drawAside(i, side, static_cast<float>(frame.seconds)))
                continue;
            show(frame, cells[i], side, i, 0);
            show(frame, cells[_nSamples.size() + i], side, i, 1);
        }
        if (!_lettering.begin(frame))
            return;
        for (std::size_t i = 0; i < _nSamples.size(); ++i)
        {
            const Cell& cell = cells[i];
            const std::string number = std::to_string(_nSamples[i]);
            _lettering.add({cell.left + 14, cell.top + cell.height - 12},
                           number + (_nSamples[i] == 1 ? " sample" : " samples"), {0, td::ColorID::LightSteelBlue});
        }
        _lettering.draw();
    }

private:
    // A square of points, y downwards, and a square of the texture, whose t goes upwards.
    void addQuad(const glm::vec2& st, float size)
    {
        const std::array<float, 16> corners{0, 0, st.x,        st.y + size, 0, 1, st.x,        st.y,
                                            1, 1, st.x + size, st.y,        1, 0, st.x + size, st.y + size};
        _quads.encode(_quads.appendShape(Primitive::TriangleFan, corners.data(), 4));
    }

    // @return false when there is no such framebuffer, which the log has said
    bool drawAside(std::size_t i, int side, float seconds)
    {
        Framebuffer& aside = _asides[i];
        if (_sidesTried[i] != side)
        {
            _sidesTried[i] = side;
            if (!aside.create({side, side}, {.samples = _nSamples[i]}))
                aside.release();
        }
        if (!aside.isOk())
            return false;
        const Framebuffer::Drawing drawing(aside);
        if (!drawing)
            return false;
        Context::clear(Context::Clear::Color, "#1c2436");
        _rayProgram.draw(_rays, glm::rotate(glm::mat4(1), 6.2831853F * cTurnsPerSecond * seconds, {0, 0, 1}));
        _rayProgram.deActivate();
        return true;
    }

    // In the middle of the cell, on whole device pixels, each pixel as it is.
    void show(const Frame& frame, const Cell& cell, int side, std::size_t aside, std::size_t quad)
    {
        const auto scale = static_cast<float>(frame.scale);
        const float points = static_cast<float>(side) / scale;
        const float left = std::round((cell.left + (cell.width - points) / 2) * scale) / scale;
        const float top = std::round((cell.top + (cell.height - points) / 2) * scale) / scale;
        const glm::mat4 place = glm::translate(pointsToClip(frame), {left, top, 0});
        Context::setActiveTextureUnit(Texture::Unit::T0);
        Context::bindTextureToCurrentlyActiveTextureUnit(_asides[aside].getTextureID(), Texture::Type::Tex2D);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        _quadProgram.setBuffer(&_quads);
        _quadProgram.activate();
        _quadProgram.setMVP(glm::scale(place, {points, points, 1}));
        _quadProgram.execute(quad, 1);
        _quadProgram.deActivate();
    }

    Backdrop _backdrop;
    Color2DProgram _rayProgram;
    Texture2DProgram _quadProgram;
    Buffer _rays;
    Buffer _quads;
    std::vector<int> _nSamples;
    std::array<Framebuffer, 3> _asides;
    std::array<int, 3> _sidesTried{}; // in device pixels, also where it was refused
    Lettering _lettering{{{"sans", 14}}};
};

} // namespace

std::unique_ptr<Scene> makeSamples() { return std::make_unique<Samples>(); }

} // namespace gallery
