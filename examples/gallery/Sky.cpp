// Look for: a horizon that runs through all faces without a seam, balls that mirror it, and a sky that keeps its
// distance.

#include "MirrorProgram.h"
#include "Scenes.h"
#include "Stage.h"

#include <common/Paint.h>

#include <gui/InputDevice.h>
#include <gui/gl/gl.h>

#include <glm/common.hpp>
#include <glm/exponential.hpp>
#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <limits>

namespace gallery
{

namespace
{

using namespace gui::gl;
using glm::vec3;

constexpr int cFaceSize = 512;
constexpr float cHorizon = 0.004F; // half the height of the haze between water and air

vec3 sunDirection() { return glm::normalize(vec3(0.34F, 0.085F, -1)); }

float between(float low, float high, float value) { return glm::smoothstep(low, high, value); }

// The air above the horizon, at dusk.
vec3 air(const vec3& direction)
{
    const float height = std::max(direction.y, 0.0F);
    const float toSun = std::max(glm::dot(direction, sunDirection()), 0.0F);
    const float side = 0.5F + 0.5F * glm::dot(glm::normalize(vec3(direction.x, 0.001F, direction.z)), sunDirection());
    const vec3 low = glm::mix(vec3(0.66F, 0.50F, 0.66F), vec3(1.0F, 0.58F, 0.30F), side * side);
    const vec3 middle = glm::mix(vec3(0.30F, 0.38F, 0.66F), vec3(0.70F, 0.40F, 0.52F), side);
    const vec3 high(0.06F, 0.10F, 0.26F);
    vec3 color = glm::mix(low, middle, between(0, 0.22F, height));
    color = glm::mix(color, high, between(0.1F, 0.75F, height));
    color += examples::starlight(direction, 90, 0.02F) * between(0.25F, 0.7F, height);
    color += vec3(1.0F, 0.45F, 0.15F) * 0.45F * std::pow(toSun, 24.0F) +
             vec3(1, 0.8F, 0.5F) * 0.6F * std::pow(toSun, 400.0F);

    // Clouds lie in a plane above; near the horizon they are thin lines.
    const vec3 plane(direction.x / (height + 0.1F), 0, 2.2F * direction.z / (height + 0.1F));
    const float cover = examples::clouds(1.1F * plane + vec3(3.1F, 0, 5.7F), 6);
    const float thickness =
        between(0.5F, 0.72F, cover) * between(0.015F, 0.12F, height) * (1 - 0.75F * between(0.3F, 0.9F, height));
    const vec3 lit = glm::mix(vec3(0.30F, 0.24F, 0.40F), vec3(1.0F, 0.62F, 0.42F),
                              std::pow(side, 3.0F) * between(0.9F, 0.45F, cover));
    color = glm::mix(color, lit, 0.85F * thickness);
    return color;
}

vec3 withSun(const vec3& direction)
{
    return glm::mix(air(direction), vec3(1, 0.96F, 0.86F),
                    between(0.99935F, 0.99965F, glm::dot(direction, sunDirection())));
}

// Air above, and water that mirrors it below.
vec3 skyColor(const vec3& direction)
{
    if (direction.y >= cHorizon)
        return withSun(direction);
    const float depth = -std::min(direction.y, -cHorizon);
    const vec3 place(direction.x / depth, 0, direction.z / depth);
    const float wave = examples::clouds(vec3(0.9F, 1, 2.4F) * place, 3) - 0.5F;
    const float steepness = 0.35F * between(0, 0.5F, depth) + 0.06F;
    const vec3 mirrored = glm::normalize(vec3(direction.x, depth + steepness * (wave + 0.35F), direction.z));
    const float share = glm::mix(0.85F, 0.45F, between(0, 0.8F, depth));
    vec3 water = glm::mix(vec3(0.03F, 0.07F, 0.14F), air(mirrored), share);
    // The sun glitters on those waves that lean the right way.
    const float aside =
        glm::dot(glm::normalize(vec3(direction.x, 0, direction.z)), glm::normalize(sunDirection() * vec3(1, 0, 1)));
    const float ripples = examples::clouds(vec3(3, 1, 9) * place + 40.0F, 2);
    water += vec3(1, 0.72F, 0.42F) * between(0.9965F, 0.99995F, aside) * between(0.48F, 0.62F, ripples) *
             between(0.30F, 0.02F, depth);
    return glm::mix(air(vec3(direction.x, cHorizon, direction.z)), water,
                    between(-cHorizon, 3 * cHorizon, -direction.y));
}

struct Ball
{
    vec3 middle;
    float radius;
    vec3 tint;
};

constexpr Ball cBalls[] = {
    {{-1.5F, 0.25F, -4.8F}, 1.0F, {1, 0.97F, 0.94F}}, {{0.42F, -0.42F, -5.0F}, 0.45F, {1, 0.80F, 0.48F}},
    {{3.1F, 0.85F, -6.2F}, 0.72F, {0.72F, 0.86F, 1}}, {{0.25F, 1.35F, -8}, 0.45F, {1, 0.72F, 0.68F}},
    {{3.7F, -0.7F, -7.4F}, 0.4F, {0.80F, 1, 0.86F}},  {{-4.3F, -0.3F, -8.4F}, 0.55F, {0.85F, 0.80F, 1}}};

class Sky : public Scene
{
public:
    bool init() override
    {
        if (!_textures.appendCubeMap(cFaceSize, skyColor))
            return false;
        _buffer.addSphere(1, 96, 48, gui::gl::Texture::Type::CubeMap)->encode();
        _program.setBuffer(&_buffer);
        _camera.setYawLimits(-std::numeric_limits<float>::max(), std::numeric_limits<float>::max());
        if (!_sky.init(&_perspective, _textures.getID(0), Textures::Unit::T0) || !_program.link() || !_buffer.commit())
            return false;
        _sky.commit(1);
        _sky.setCamera(&_turned);
        return true;
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        const auto aspect = static_cast<float>(frame.size.width / frame.size.height);
        _perspective = glm::perspective(glm::radians(50.0F), aspect, 0.1F, 100.0F);
        _turned.place(vec3(0), _camera.getYaw() + static_cast<float>(4 * (frame.seconds - 2)), _camera.getPitch());
        const glm::mat4 toClip = _perspective * _turned.getViewMatrix();

        Context::clear({Context::Clear::Color, Context::Clear::Depth});
        Context::enable(Context::Flag::DepthTest);
        _program.activate();
        _textures.setActive(Textures::Unit::T0, 0);
        for (const Ball& ball : cBalls)
        {
            const glm::mat4 model = glm::scale(glm::translate(glm::mat4(1), ball.middle), vec3(ball.radius));
            _program.setMatrices(model, toClip, vec3(0));
            _program.setTint(ball.tint);
            _program.execute();
        }
        // Behind them: where nothing is nearer than the far plane.
        Context::setDepthBufferFunction(DepthBuffer::Function::LessOrEqual);
        _sky.render(false);
        Context::setDepthBufferFunction(DepthBuffer::Function::Less);
        Context::disable(Context::Flag::DepthTest);
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        if (event != PointerEvent::Scrolled || gui::isCmdPressed(device.getKeyboardModifiers()))
            return;
        const td::Point<double>& distance = device.getFramePoint();
        _camera.processScroll({static_cast<float>(distance.x), static_cast<float>(distance.y)}, false);
        _pStage->redraw();
    }

private:
    SkyBox _sky;
    Camera _camera{{0, 0, 0}, -90, 4}; // turned by the wheel
    Camera _turned;                    // and by time
    MirrorProgram _program;
    Buffer _buffer{DataType::Vec3, DataType::Vec3};
    Textures _textures;
    glm::mat4 _perspective{1};
    Stage* _pStage = nullptr;
};

} // namespace

std::unique_ptr<Scene> makeSky() { return std::make_unique<Sky>(); }

} // namespace gallery
