// Meshes of any numbers: what has a fault is refused with a line and changes nothing, what has none is drawn, cut open
// and seen through without harm, and shows no part that it has not.

#include "Fuzz.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/draw/Model.h>
#include <gui/gl/OffscreenContext.h>

#include <epoxy/gl.h>

#include <glm/ext/matrix_clip_space.hpp>

#include <array>
#include <vector>

namespace fuzz::mesh
{

namespace
{

using namespace gui::draw;

constexpr int cSize = 16;

// Way 0 is on a grid of few numbers, where much is the same, flat or in a plane; way 2 is any bits.
double takeNumber(Input& input, unsigned int way)
{
    if (way == 0)
        return input.below(5) - 2.0;
    return way == 1 ? input.take<std::int16_t>() / 1024.0 : input.take<double>();
}

glm::dvec3 takeVector(Input& input, unsigned int way)
{
    const double x = takeNumber(input, way), y = takeNumber(input, way);
    return {x, y, takeNumber(input, way)};
}

Mesh takeMesh(Input& input, unsigned int way)
{
    Mesh mesh;
    mesh.positions.resize(input.below(40));
    for (glm::dvec3& position : mesh.positions)
        position = takeVector(input, way);
    mesh.indices.resize(3 * input.below(40) + (input.below(32) == 0 ? 1 : 0));
    for (std::uint32_t& index : mesh.indices)
        // One beyond the end now and then.
        index = input.take<std::uint16_t>() % static_cast<std::uint32_t>(mesh.positions.size() * 64 + 1) / 64;
    if (input.below(3) == 0)
        for (std::size_t i = mesh.positions.size() + (input.below(16) == 0 ? 1 : 0); i > 0; --i)
            mesh.normals.emplace_back(takeVector(input, way));
    if (input.below(3) == 0)
        for (std::size_t i = 0; i < mesh.positions.size(); ++i)
            mesh.textureCoordinates.emplace_back(takeNumber(input, way), takeNumber(input, way));
    std::size_t left = mesh.getNumberOfTriangles();
    for (unsigned int n = input.below(4); n > 0; --n)
    {
        const std::size_t some = n == 1 && input.below(16) > 0 ? left : left / 2;
        mesh.parts.push_back({some, {.color = td::Color(200, 100, 50, input.take<td::BYTE>())}, 0});
        mesh.parts.back().material.isTwoSided = input.below(2) == 0;
        left -= some;
    }
    if (input.below(4) == 0)
        mesh.smoothAngle = takeNumber(input, way);
    if (input.below(4) == 0)
        mesh.add(mesh, glm::dmat4(takeNumber(input, way)));
    return mesh;
}

void draw(Model& model, Input& input, unsigned int way)
{
    Clipping clipping(input.below(2) == 0 ? Clipping::Kind::Cut : Clipping::Kind::Notch);
    for (unsigned int n = input.below(4); n > 0; --n)
        clipping.add(takeVector(input, way), takeVector(input, way));
    DepthCanvas canvas(static_cast<Eye::Depth>(input.below(3)));
    canvas.setShadows({.quality = input.below(8) == 0 ? Shadows::Quality::Low : Shadows::Quality::None},
                      model.getBounds());
    OrbitCamera camera;
    camera.setSize({cSize, cSize});
    if (input.below(2) == 0)
        camera.fit(model.getBounds(), 0);
    Eye eye = canvas.getEye(camera, 1);
    eye.setClipping(clipping);
    {
        DepthCanvas::Frame frame(canvas, eye);
        while (const Eye* const pEye = frame.next())
            model.draw(*pEye);
    }
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    Eye plain = camera.getEye();
    plain.setClipping(clipping);
    model.drawIds(plain);
    std::array<unsigned char, std::size_t{4} * cSize * cSize> pixels{};
    glReadPixels(0, 0, cSize, cSize, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        require(pixels[i] <= model.getNumberOfParts() && pixels[i + 1] == 0 && pixels[i + 2] == 0, "ids are of parts");
    require(glGetError() == GL_NO_ERROR, "GL has no error");
}

void run(const std::uint8_t* bytes, std::size_t nBytes)
{
    static gui::gl::OffscreenContext s_context({cSize, cSize}, gui::gl::Context(gui::gl::DepthBuffer::Size::Bits24,
                                                                                gui::gl::StencilBuffer::Size::None,
                                                                                gui::gl::Context::Profile::Core41));
    const Quiet quiet;
    Input input(bytes, nBytes);
    Model model;
    model.setEdges({.width = input.below(3) * 1.0});
    for (int i = 0; i < 3 && input.left() > 0; ++i)
    {
        const unsigned int way = input.below(3), nLines = quiet.nLines;
        const Mesh mesh = takeMesh(input, way);
        const std::size_t nBefore = model.getNumberOfTriangles();
        const bool isWhole = mesh.findFault().empty();
        require(model.setMesh(mesh) == isWhole, "what has no fault is taken");
        require(quiet.nLines == nLines + (isWhole ? 0 : 1), "a line for each refusal");
        require(isWhole || model.getNumberOfTriangles() == nBefore, "what is refused changes nothing");
        require(model.getBounds().isEmpty() || model.getBounds().isFinite(), "bounds are finite");
        draw(model, input, way);
    }
}

const Target cTarget("mesh", run);

} // namespace

} // namespace fuzz::mesh
