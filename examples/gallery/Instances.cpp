// Look for: ten thousand columns in a sunflower's pattern, each with a place, a height and a colour of its own; one
// command.

#include "Drawing.h"
#include "Scenes.h"

#include <gui/gl/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <numbers>

namespace gallery
{

namespace
{

using namespace gui::gl;
using td::ColorID;

constexpr int cInstances = 10'000;
constexpr float cColumnRadius = 0.0088F; // of a column; the field's radius is 1

constexpr ColorID cColumnColors[] = {ColorID::DarkSlateBlue, ColorID::RoyalBlue, ColorID::DeepSkyBlue,
                                     ColorID::Aquamarine,    ColorID::Gold,      ColorID::Tomato};

/// What the buffer holds of each instance.
struct Instance
{
    glm::mat4 model;
    glm::vec4 color;
};

class InstancesProgram : public Program
{
public:
    [[nodiscard]] bool link() { return Program::link(":gallery/instances.vert", ":gallery/instances.frag"); }

protected:
    void onLinked() override { _matrixLocation = getUniformLocation("mvp"); }
};

class Instances : public Scene
{
public:
    bool init() override
    {
        // A mat4 takes four attributes of four floats each.
        _buffer.init(1, 36, 72, cInstances, {DataType::Vec3, DataType::Vec3},
                     {DataType::Vec4, DataType::Vec4, DataType::Vec4, DataType::Vec4, DataType::Vec4}, {});
        appendColumn();
        for (int i = 0; i < cInstances; ++i)
            appendInstance(i);

        Command* pCommand = _buffer.createCommand();
        pCommand->createDrawElementsInstanced(Primitive::Triangles, 0,
                                              static_cast<unsigned int>(_buffer.getNoOfIndices()), cInstances);
        _buffer.encode(pCommand);
        _program.setBuffer(&_buffer);
        return _backdrop.init() && _program.link() && _buffer.commit();
    }

    void draw(const Frame& frame) override
    {
        _backdrop.draw(frame);
        const auto aspect = static_cast<float>(frame.size.width / frame.size.height);
        glm::mat4 toClip = glm::perspective(glm::radians(30.0F), aspect, 0.5F, 10.0F);
        toClip *= glm::lookAt(glm::vec3(0, 1.62F, 2.45F), glm::vec3(0, -0.03F, 0.15F), glm::vec3(0, 1, 0));
        _program.activate();
        _program.setMVP(glm::rotate(toClip, static_cast<float>(0.1 * frame.seconds), {0, 1, 0}));
        Context::enable(Context::Flag::DepthTest);
        _program.execute();
        Context::disable(Context::Flag::DepthTest);
        _program.deActivate();
    }

private:
    void appendVertex(const glm::vec3& position, const glm::vec3& normal)
    {
        const float vertex[] = {position.x, position.y, position.z, normal.x, normal.y, normal.z};
        _buffer.appendVertices(vertex, 1);
    }

    // A column with six sides, radius and height 1, that stands on the origin. Nobody sees it from below.
    void appendColumn()
    {
        const auto corner = [](unsigned int i, float y)
        {
            const glm::vec2 place = onCircle(static_cast<float>(i) / 6, 1);
            return glm::vec3(place.x, y, place.y);
        };
        for (unsigned int i = 0; i < 6; ++i)
            appendVertex(corner(i, 1), {0, 1, 0});
        for (unsigned int i = 2; i < 6; ++i)
        {
            const unsigned int triangle[] = {0, i - 1, i};
            _buffer.appendIndices(triangle, 3);
        }
        for (unsigned int i = 0; i < 6; ++i)
        {
            const auto first = static_cast<unsigned int>(_buffer.getNoOfVertices());
            const glm::vec2 outwards = onCircle((static_cast<float>(i) + 0.5F) / 6, 1);
            for (const glm::vec3& place : {corner(i, 0), corner(i, 1), corner(i + 1, 0), corner(i + 1, 1)})
                appendVertex(place, {outwards.x, 0, outwards.y});
            const unsigned int triangles[] = {first, first + 1, first + 2, first + 2, first + 1, first + 3};
            _buffer.appendIndices(triangles, 6);
        }
    }

    // Seeds of a sunflower: each a golden angle further around, all with the same room. Waves run over them.
    void appendInstance(int i)
    {
        const float distance = std::sqrt((static_cast<float>(i) + 0.5F) / cInstances);
        const glm::vec2 place = onCircle(static_cast<float>(i) * (2 - std::numbers::phi_v<float>), distance);
        const float wave = 0.5F + 0.5F * std::cos(18 * distance);
        const float height = 0.02F + 0.26F * wave * std::exp(-2.2F * distance);

        Instance instance;
        instance.model = glm::translate(glm::mat4(1), {place.x, 0, place.y});
        instance.model = glm::scale(instance.model, {cColumnRadius, height, cColumnRadius});
        instance.color = gradient(cColumnColors, 1.15F * wave * std::exp(-0.9F * distance));
        static_assert(sizeof(Instance) == 20 * sizeof(float));
        _buffer.appendInstances(&instance.model[0][0], 1);
    }

    Backdrop _backdrop;
    InstancesProgram _program;
    Buffer _buffer;
};

} // namespace

std::unique_ptr<Scene> makeInstances() { return std::make_unique<Instances>(); }

} // namespace gallery
