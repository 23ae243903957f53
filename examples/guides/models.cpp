// A temple of a few solids: how its mesh is put together, how it is shown, and which part is under a pixel.
#include <gui/draw/Model.h>
#include <gui/draw/OrbitCamera.h>
#include <gui/gl/gl.h>

#include <glm/ext/matrix_transform.hpp>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

using namespace gui::draw;

namespace
{

// From z = 0 upwards, by its corners seen from above, against the clock.
Mesh makePrism(const std::vector<glm::dvec2>& corners, double height)
{
    Mesh mesh;
    const auto n = static_cast<std::uint32_t>(corners.size());
    for (const glm::dvec2& p : corners)
    {
        mesh.positions.emplace_back(p, 0);
        mesh.positions.emplace_back(p, height);
    }
    for (std::uint32_t i = 0; i < n; ++i)
    {
        const std::uint32_t here = 2 * i, next = 2 * ((i + 1) % n);
        mesh.indices.insert(mesh.indices.end(), {here, next, next + 1, here, next + 1, here + 1});
        if (i > 1)
            mesh.indices.insert(mesh.indices.end(), {0, here, here - 2, 1, here - 1, here + 1});
    }
    return mesh;
}

Mesh makeBlock(double width, double depth, double height)
{
    const double x = width / 2, y = depth / 2;
    return makePrism({{-x, -y}, {x, -y}, {x, y}, {-x, y}}, height);
}

Mesh makeColumn()
{
    std::vector<glm::dvec2> circle;
    for (int i = 0; i < 32; ++i)
        circle.emplace_back(0.4 * std::cos(2 * std::numbers::pi * i / 32),
                            0.4 * std::sin(2 * std::numbers::pi * i / 32));
    return makePrism(circle, 4);
}

enum Tag : std::uint64_t
{
    Step,
    Column,
    Roof
};

Mesh makeTemple()
{
    const auto at = [](double x, double y, double z) { return glm::translate(glm::dmat4(1), {x, y, z}); };
    const Material stone{.color = "#d9d2c3", .shininess = 0.1};
    Mesh temple;
    for (int i = 0; i < 3; ++i)
        temple.add(makeBlock(12 - i, 7 - i, 0.4), stone, Step, at(0, 0, 0.4 * i));
    for (int i = 0; i < 5; ++i)
        for (const double y : {-1.8, 1.8})
            temple.add(makeColumn(), {.color = "#efe9dc", .shininess = 0.4}, Column, at(2.1 * i - 4.2, y, 1.2));
    temple.add(makeBlock(10.4, 5, 0.6), stone, Roof, at(0, 0, 5.2));
    const glm::dmat4 lying = glm::rotate(at(-5.4, 0, 5.8), std::numbers::pi / 2, {0, 1, 0}) *
                             glm::rotate(glm::dmat4(1), std::numbers::pi / 2, {0, 0, 1});
    temple.add(makePrism({{-2.7, 0}, {2.7, 0}, {0, 1.6}}, 10.8), {.color = "#b5553c"}, Roof, lying);
    return temple;
}

// The part at a place, in pixels from the upper left corner; -1 for none.
int partAt(Model& model, const Eye& eye, int x, int y)
{
    using namespace gui::gl;
    Framebuffer ids;
    if (!ids.create({static_cast<int>(eye.getSize().width), static_cast<int>(eye.getSize().height)},
                    {.depth = DepthBuffer::Size::Bits24}))
        return -1;
    {
        const Framebuffer::Drawing drawing(ids);
        Context::clear(td::Color(0, 0, 0, 0));
        Context::clear({Context::Clear::Color, Context::Clear::Depth});
        model.drawIds(eye, 1);
    }
    std::vector<float> bytes;
    if (!ids.readValues(bytes))
        return -1;
    const float* p = &bytes[4 * static_cast<std::size_t>(y * static_cast<int>(eye.getSize().width) + x)];
    return static_cast<int>(std::lround(255 * p[0]) + 256 * std::lround(255 * p[1])) - 1;
}

} // namespace

int main(int argc, char** argv)
{
    using namespace gui::gl;
    Context settings(DepthBuffer::Size::Bits24, StencilBuffer::Size::None, Context::Profile::Core41);
    settings.setSamples(4);
    OffscreenContext context({640, 400}, settings);

    Model model;
    if (!model.setMesh(makeTemple()))
        return 1;
    model.setLight(Light::sun({2, -3, 4}));
    model.setEdges({.width = 1, .color = "#4a4038"});

    OrbitCamera camera(OrbitCamera::Up::Z);
    camera.setSize({640, 400});
    camera.setDirection(35, 18);
    camera.fit(model.getBounds(), 30);
    const Eye eye = camera.getEye();

    const int part = partAt(model, eye, 340, 240);
    std::printf("%s\n", part >= 0 && model.getTag(static_cast<std::size_t>(part)) == Column ? "a column" : "something");
    model.setSelected(static_cast<std::size_t>(part), true);

    Context::clear(td::Color("#e8eef4")); // what it is cleared to
    Context::clear({Context::Clear::Color, Context::Clear::Depth});
    return model.draw(eye) && context.savePicture(argc > 1 ? argv[1] : "models.png") ? 0 : 1;
}
