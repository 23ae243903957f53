// Look for: points, lines, line strips, line loops; below, triangles, a fan, a strip, and one patch, tessellated and
// smooth.

#include "Figures.h"
#include "PatchProgram.h"
#include "Scenes.h"

#include <gui/gl/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/trigonometric.hpp>

#include <array>

namespace gallery
{

namespace
{

using namespace gui::gl;

constexpr float cPointSizes[] = {18, 16, 14, 11, 8, 5, 3}; // in points of the screen, from the middle outwards

class Primitives : public Scene
{
public:
    bool init() override
    {
        using namespace figures;
        _buffer.init(64, 2000, 0, {DataType::Vec2, DataType::Vec4});
        for (std::size_t ring = 0; ring < _rings.size(); ++ring)
            _rings[ring] = appendFigure(makeGridRing(ring));
        record(1, Primitive::Lines, makeEnvelope());
        for (int arm = 0; arm < 5; ++arm)
            record(2, Primitive::LineStrip, makeSpiral(static_cast<float>(arm) / 5));
        for (int i = 0; i < 22; ++i)
            record(3, Primitive::LineLoop, makeWhirlHexagon(i, static_cast<float>(i) / 21));
        record(4, Primitive::Triangles, makeTriangles(4));
        record(5, Primitive::TriangleFan, makeColorWheel());
        record(6, Primitive::TriangleStrip, makeRibbon());
        _program.setBuffer(&_buffer);
        recordPatch();
        // Tessellation came with OpenGL 4.0; before, the last cell stays empty.
        _hasPatch = Context::isAtLeast(41, 31);
        return _backdrop.init() && _program.link() && (!_hasPatch || _patchProgram.link()) && _buffer.commit() &&
               _patch.commit();
    }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> cells = makeGrid(frame, 4, 2);
        for (std::size_t i = 0; i < cells.size(); ++i)
            _matrices[i] = glm::scale(unitsToClip(frame, cells[i]), {0.84F, 0.84F, 1});
        recordPoints(static_cast<float>(frame.scale));
        _backdrop.draw(frame, cells);
        _program.activate();
        _points.execute();
        _program.execute();
        _program.deActivate();
        if (_hasPatch)
            drawPatch();
    }

private:
    struct Range
    {
        std::size_t first;
        unsigned int count;
    };

    Range appendFigure(const figures::Vertices& vertices)
    {
        return {append(_buffer, vertices), static_cast<unsigned int>(vertices.size())};
    }

    // Two commands: the cell's matrix, which is read when they are executed, and the figure.
    void record(std::size_t cell, Primitive primitive, const figures::Vertices& vertices)
    {
        Command* pCommand = _buffer.createCommand();
        pCommand->createMVPSetter(&_matrices[cell]);
        _buffer.encode(pCommand);
        const Range range = appendFigure(vertices);
        pCommand = _buffer.createCommand();
        pCommand->createDrawArrays(primitive, range.first, range.count);
        _buffer.encode(pCommand);
    }

    // The size of points is in device pixels, so their commands depend on the screen.
    void recordPoints(float scale)
    {
        _points.reset();
        Command* pCommand = _points.get();
        pCommand->createMVPSetter(&_matrices[0]);
        _points.encode(pCommand);
        for (std::size_t ring = 0; ring < _rings.size(); ++ring)
        {
            pCommand = _points.get();
            pCommand->createDrawArrayPoints(_rings[ring].first, _rings[ring].count, cPointSizes[ring] * scale);
            _points.encode(pCommand);
        }
    }

    // The same patch twice, in a shade for the surface and one for its net.
    void recordPatch()
    {
        const std::array<glm::vec3, 16> points = figures::makePatch();
        _patch.init(2, points.size(), 0, {DataType::Vec3});
        _patch.appendVertices(&points.front().x, points.size());
        for (const td::ColorID shade : {td::ColorID::Gray81, td::ColorID::White})
        {
            Command* pCommand = _patch.createCommand();
            pCommand->createDrawArrayPatches(0, 16, 16);
            pCommand->setColor(shade);
            _patch.encode(pCommand);
        }
        _patchProgram.setBuffer(&_patch);
    }

    void drawPatch()
    {
        glm::mat4 matrix = _matrices[7] * glm::perspective(glm::radians(34.0F), 1.0F, 1.0F, 10.0F);
        matrix = glm::rotate(glm::translate(matrix, {0, 0, -4.2F}), glm::radians(-56.0F), {1, 0, 0});
        matrix = glm::rotate(matrix, glm::radians(-28.0F), {0, 0, 1});
        _patchProgram.activate();
        Context::enable(Context::Flag::DepthTest);
        _patchProgram.setMVP(matrix);
        _patchProgram.execute(0, 1);
        // A hair nearer than the surface.
        _patchProgram.setMVP(glm::translate(glm::mat4(1), {0, 0, -0.003F}) * matrix);
        Context::setPolygonMode(Context::PolygonMode::Line);
        _patchProgram.execute(1, 1);
        Context::setPolygonMode(Context::PolygonMode::Fill);
        Context::disable(Context::Flag::DepthTest);
        _patchProgram.deActivate();
    }

    Backdrop _backdrop;
    Color2DProgram _program;
    PatchProgram _patchProgram;
    Buffer _buffer;
    Buffer _patch;
    bool _hasPatch = false;
    CommandList _points;
    std::array<Range, std::size(cPointSizes)> _rings{};
    std::array<glm::mat4, 8> _matrices{}; // of the cells
};

} // namespace

std::unique_ptr<Scene> makePrimitives() { return std::make_unique<Primitives>(); }

} // namespace gallery
