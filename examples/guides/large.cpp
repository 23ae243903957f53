// Data that changes: the trail of two pendulums, of which the newest points stay, and bars that change and go.
// Says what each frame sends to GL, and draws the last one into a PNG file.
#include <gui/gl/gl.h>

#include <cmath>
#include <cstdio>
#include <vector>

using namespace gui::gl;

namespace
{

struct Point
{
    float x, y;
    unsigned int color; // td::Color::rgba
};

class Trail
{
public:
    Trail()
    {
        _program.link();
        _points.setRing(4000);
        _points.init(1, 0, 0, {DataType::Vec2, DataType::NormUByte4});
        _points.createCommand()->createDrawAll(Primitive::LineStrip);
    }

    void draw(const std::vector<Point>& arrived)
    {
        _points.appendRecords(arrived.data(), arrived.size());
        _program.draw(_points);
    }

private:
    Color2DProgram _program;
    Buffer _points;
};

// Where the pen is after t seconds.
Point at(double t)
{
    const double turn = 0.02 * t, x = 0.55 * std::sin(2.01 * t) + 0.22 * std::sin(3 * t), y = 0.6 * std::cos(3.005 * t);
    const auto hue = static_cast<float>(200 + 60 * std::sin(0.1 * t));
    return {static_cast<float>(x * std::cos(turn) - y * std::sin(turn)),
            static_cast<float>(x * std::sin(turn) + y * std::cos(turn) + 0.12),
            td::Color::fromHSL(hue, 0.9F, 0.6F).rgba()};
}

// Two triangles from the bottom of the picture up.
class Bars
{
public:
    explicit Bars(std::size_t n)
    {
        _program.link();
        _corners.setDynamic();
        _corners.createCommand()->createDrawAll(Primitive::Triangles);
        Buffer::Appender corners(_corners, 6 * n);
        for (std::size_t i = 0; i < n; ++i)
            corners.append(makeBar(i, 0.08F + 0.05F * std::sin(0.4F * static_cast<float>(i)), "#ff9f43").corners);
    }

    void set(std::size_t i, float height)
    {
        const Bar bar = makeBar(i, height, "#ffffff");
        _corners.updateRecords(6 * i, bar.corners, 6);
    }

    void remove(std::size_t i) { _corners.removeVertices(6 * i, 6); }

    void draw() { _program.draw(_corners); }

private:
    struct Bar
    {
        Point corners[6];
    };

    static Bar makeBar(std::size_t i, float height, td::Color color)
    {
        const float left = -0.98F + 0.04F * static_cast<float>(i), right = left + 0.03F, top = height - 1;
        const unsigned int rgba = color.rgba();
        return {{{left, -1, rgba},
                 {right, -1, rgba},
                 {left, top, rgba},
                 {left, top, rgba},
                 {right, -1, rgba},
                 {right, top, rgba}}};
    }

    Color2DProgram _program;
    Buffer _corners{DataType::Vec2, DataType::NormUByte4};
};

// Draws a frame, and says what it cost if it has a name.
template <typename Draw>
void drawFrame(const char* name, const Draw& draw)
{
    FrameLedger::begin();
    draw();
    FrameLedger::end();
    const FrameLedger::Frame& frame = FrameLedger::getLast();
    if (name != nullptr)
        std::printf("%s: %u draw of %u vertices, %u bytes sent\n", name, frame.nDraws,
                    static_cast<unsigned int>(frame.nVertices), static_cast<unsigned int>(frame.nBytesUploaded));
}

} // namespace

int main(int argc, char** argv)
{
    Context settings(DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41);
    settings.setSamples(4);
    OffscreenContext context({960, 600}, settings);
    Trail trail;
    Bars bars(49);
    FrameLedger::start(FrameLedger::Times::CPU);
    for (int i = 1; i <= 600; ++i)
    {
        std::vector<Point> arrived;
        arrived.reserve(20);
        for (int j = 0; j < 20; ++j)
            arrived.push_back(at(0.01 * (20 * i + j)));
        Context::clear(Context::Clear::Color, td::ColorID::Black);
        const char* const name = i == 1 ? "Frame 1" : i == 600 ? "Frame 600" : nullptr;
        drawFrame(name, [&] { trail.draw(arrived); });
    }
    drawFrame("49 bars", [&] { bars.draw(); });
    bars.set(24, 0.2F);
    Context::clear(Context::Clear::Color, td::ColorID::Black);
    drawFrame("Nothing arrived", [&] { trail.draw({}); });
    drawFrame("A bar changed", [&] { bars.draw(); });
    bars.remove(48);
    bars.remove(10);
    Context::clear(Context::Clear::Color, td::ColorID::Black);
    drawFrame(nullptr, [&] { trail.draw({}); });
    drawFrame("Two bars removed", [&] { bars.draw(); });
    return context.savePicture(argc > 1 ? argv[1] : "large.png") ? 0 : 1;
}
