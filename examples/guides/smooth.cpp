// What the pixels of smooth edges look like: draws shapes on 80 by 50 pixels and writes them eight times as large.
#include <gui/Texture.h>
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>

#include <vector>

using namespace gui::draw;

namespace
{

void addShapes(Drawing& drawing)
{
    // A fill with a hole, and one with a sharp point.
    drawing.fill(Path().addCircle({13, 13}, 11).addCircle({13, 13}, 6.5), "#f2b632", FillRule::EvenOdd);
    drawing.fill(Path::fromSVG("M28 23L34 2L40 23Z"), "#ef7d6b");
    // Lines of a quarter of a pixel to three.
    double x = 46;
    for (const double width : {0.25, 0.5, 1.0, 2.0, 3.0})
    {
        drawing.stroke(Path().moveTo({x, 23}).lineTo({x + 4, 2}), {.width = width}, "#ffffff");
        x += 6.5;
    }
    // A translucent line over itself.
    drawing.stroke(Path::fromSVG("M4 45C30 20 30 60 4 31"), {.width = 3}, "#7ddc9a99");
    // Opaque tiles that share their edges: none of the ground shows between them.
    for (int i = 0; i < 6; ++i)
    {
        const double left = 32 + 7.3 * i;
        drawing.fill(
            Path().addPolygon(std::vector<Path::Point>{{left, 29}, {left + 7.3, 29}, {left + 4.3, 47}, {left - 3, 47}}),
            td::Color::fromHSL(static_cast<float>(190 + 22 * i), 0.6F, 0.55F));
    }
}

} // namespace

int main(int argc, char** argv)
{
    using namespace gui::gl;
    constexpr int cWidth = 80, cHeight = 50, cTimes = 8;
    OffscreenContext context({cWidth, cHeight},
                             {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    Context::clear(Context::Clear::Color, "#1b2440");
    Drawing small;
    addShapes(small);
    gui::Texture pixels;
    if (!small.draw(Affine()) || !context.readPixels(pixels) || !context.resize({cWidth * cTimes, cHeight * cTimes}))
        return 1;

    // Each pixel is a square of its own.
    Drawing large;
    const td::BYTE* p = pixels.getBytes();
    for (int y = 0; y < cHeight; ++y)
    {
        for (int x = 0; x < cWidth; ++x, p += pixels.getBytesPerPixel())
            large.fill(Path().addRect({double(x), double(y), x + 1.0, y + 1.0}), td::Color(p[0], p[1], p[2], 255));
    }
    return large.draw(Affine::scaling(cTimes)) && context.savePicture(argc > 1 ? argv[1] : "smooth.png") ? 0 : 1;
}
