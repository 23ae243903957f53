// The earth under the stars: a sphere with a texture, in the light of a sun, to fly around.
#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <glm/common.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>

using namespace gui::gl;

class EarthView : public CameraView
{
    Camera _camera{glm::vec3(0.8F, 1.1F, 3.2F), glm::vec3(0)};
    LitTexture3DProgram _program;
    Buffer _sphere{DataType::Vec3, DataType::Vec3, DataType::Vec2}; // position, normal, place in the image
    Textures _textures;
    SkyBox _sky;

    // Black, but for the few directions in which there is a star.
    static glm::vec3 starlight(const glm::vec3& direction)
    {
        const glm::vec3 cell = glm::floor(direction * 60.0F);
        const float noise = std::sin(cell.x * 12.99F + cell.y * 78.23F + cell.z * 37.72F) * 43758.5F;
        const float chance = noise - std::floor(noise);
        const float distance = glm::length(direction * 60.0F - cell - 0.5F);
        return glm::vec3(0.9F, 0.95F, 1) * (chance > 0.97F && distance < 0.2F ? 50 * chance - 48 : 0.02F);
    }

    void onInit() override
    {
        gui::Texture earth;
        if (!earth.loadFromFile(":earth.jpg"))
            return;
        _textures.append({&earth}, Texture::Type::Tex2D);
        if (Command* pSphere = _sphere.addSphere(1, 96, 48, Texture::Type::Tex2D))
            pSphere->setTexture(Textures::Unit::T0, 0);
        _program.link();
        _program.setTextures(&_textures);
        _sky.init(&_perspective, &_camera, 1024, starlight);
        setCamera(&_camera);
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear({Context::Clear::Color, Context::Clear::Depth});
        Context::enable(Context::Flag::DepthTest);
        Context::setDepthBufferFunction(DepthBuffer::Function::LessOrEqual);
        // The poles lie on the z axis: turn them up, and Africa to the front.
        const glm::mat4 upright = glm::rotate(glm::mat4(1), glm::radians(-90.0F), glm::vec3(1, 0, 0));
        const glm::mat4 model = glm::rotate(upright, glm::radians(90.0F), glm::vec3(0, 0, 1));
        _program.activate();
        _program.setMatrices(model, _perspective * getCameraMatrix());
        _program.setSun({-1, 0.6F, 1});
        _program.draw(_sphere);
        _sky.render(false);
    }
};

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    EarthView view;
    view.createContext({DepthBuffer::Size::Bits24, StencilBuffer::Size::None, Context::Profile::Core41});
    return app.run(view, "Earth", {640, 400});
}
