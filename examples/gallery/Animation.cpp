// Look for: waves that run through the row without a jerk, and a row that rests when it is in line after a minute.

#include "Figures.h"
#include "Scenes.h"

#include <gui/gl/gl.h>

#include <glm/common.hpp>
#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <numbers>
#include <utility>

namespace gallery
{

namespace
{

using namespace gui::gl;
using td::ColorID;

constexpr int cPendulums = 24;
constexpr double cRound = 60;       // seconds until all are in line again
constexpr double cSlowest = 22;     // swings of the longest in that time; each of the others makes one more
constexpr double cAmplitude = 0.55; // radians
constexpr float cLongest = 2.0F;
constexpr float cHalfRow = 1.4F;
constexpr float cBob = 0.072F;

constexpr ColorID cRow[] = {ColorID::Gold,       ColorID::Coral,     ColorID::HotPink,    ColorID::MediumOrchid,
                            ColorID::DodgerBlue, ColorID::Turquoise, ColorID::SpringGreen};

class Animation : public Scene
{
public:
    bool init() override
    {
        const figures::SolidVertices ball = figures::makeBall();
        _buffer.init(2 * cPendulums + 1, cPendulums * (ball.size() + 2) + 2, 0, {DataType::Vec3, DataType::Vec4});
        for (int i = 0; i < cPendulums; ++i)
        {
            const glm::vec4 color = gradient(cRow, static_cast<float>(i) / (cPendulums - 1));
            record(Primitive::Triangles, paint(ball, color));
            record(Primitive::Lines, {{{0, 0, 0}, colorOf(ColorID::SlateGray)}, {{0, -1, 0}, color}});
        }
        record(Primitive::Lines, {{{-cHalfRow, 0, 0}, colorOf(ColorID::LightSteelBlue)},
                                  {{cHalfRow, 0, 0}, colorOf(ColorID::LightSteelBlue)}});
        _program.setBuffer(&_buffer);
        return _backdrop.init() && _program.link() && _buffer.commit();
    }

    void draw(const Frame& frame) override
    {
        _backdrop.draw(frame);
        glm::mat4 camera = unitsToClip(frame, makeGrid(frame, 1, 1).front());
        camera *= glm::perspective(glm::radians(32.0F), 1.0F, 1.0F, 10.0F);
        camera = glm::rotate(glm::translate(camera, {-0.13F, 0.62F, -3.7F}), glm::radians(24.0F), {1, 0, 0});
        camera = glm::rotate(camera, glm::radians(-34.0F), {0, 1, 0});

        _program.activate();
        Context::enable(Context::Flag::DepthTest);
        for (int i = 0; i < cPendulums; ++i)
            drawPendulum(camera, i, frame.seconds);
        _program.setMVP(camera);
        _program.execute(2 * cPendulums, 1);
        Context::disable(Context::Flag::DepthTest);
        _program.deActivate();
    }

    bool moves() const override { return true; }

    // Time stops when a round is over.
    bool prepareNextFrame(double seconds) override
    {
        const double nthRound = std::floor(seconds / cRound);
        return std::exchange(_nthRound, nthRound) == nthRound;
    }

private:
    static figures::SolidVertices paint(figures::SolidVertices ball, const glm::vec4& color)
    {
        const glm::vec3 light = glm::normalize(glm::vec3(0.3F, 0.8F, 0.6F));
        for (SolidVertex& vertex : ball)
        {
            const float brightness = 0.55F + 0.45F * glm::dot(vertex.position, light);
            vertex.color = glm::vec4(glm::vec3(color) * brightness, 1);
        }
        return ball;
    }

    void record(Primitive primitive, const figures::SolidVertices& vertices)
    {
        const std::size_t first = _buffer.getNoOfVertices();
        _buffer.appendVertices(&vertices.front().position.x, vertices.size());
        Command* pCommand = _buffer.createCommand();
        pCommand->createDrawArrays(primitive, first, static_cast<unsigned int>(vertices.size()));
        _buffer.encode(pCommand);
    }

    void drawPendulum(const glm::mat4& camera, int i, double seconds)
    {
        const double nSwings = cSlowest + i;
        const double turns = nSwings * seconds / cRound;
        const auto angle = static_cast<float>(cAmplitude * std::cos(2 * std::numbers::pi * turns));
        // A pendulum four times as long takes twice the time.
        const float length = cLongest * static_cast<float>(cSlowest * cSlowest / (nSwings * nSwings));
        const float place = cHalfRow * (2 * static_cast<float>(i) / (cPendulums - 1) - 1);
        const glm::mat4 hung = glm::rotate(glm::translate(camera, {place, 0, 0}), angle, {1, 0, 0});
        _program.setMVP(glm::scale(hung, {1, length, 1}));
        _program.execute(2 * static_cast<std::size_t>(i) + 1, 1);
        _program.setMVP(glm::scale(glm::translate(hung, {0, -length, 0}), glm::vec3(cBob)));
        _program.execute(2 * static_cast<std::size_t>(i), 1);
    }

    Backdrop _backdrop;
    Color3DProgram _program;
    Buffer _buffer; // each pendulum's bob and string, then the bar
    double _nthRound = 0;
};

} // namespace

std::unique_ptr<Scene> makeAnimation() { return std::make_unique<Animation>(); }

} // namespace gallery
