// Data that changes: the trail of two pendulums, of which the newest points stay, and boxes that come, change and go.
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
    const double turn = 0.02 * t, x = 0.62 * std::sin(2.01 * t) + 0.3 * std::sin(3 * t), y = 0.85 * std::cos(3.005 * t);
    const auto hue = static_cast<float>(200 + 60 * std::sin(0.1 * t));
    return {static_cast<float>(x * std::cos(turn) - y * std::sin(turn)),
            static_cast<float>(x * std::sin(turn) + y * std::cos(turn)), td::Color::fromHSL(hue, 0.9F, 0.6F).rgba()};
}

class Boxes
{
public:
    explicit Boxes(std::size_t n)
    {
        _program.link();
        _corners.setDynamic();
        _corners.createCommand()->createDrawAll(Primitive::Triangles);
        Buffer::Appender corners(_corners, 6 * n);
        for (std::size_t i = 0; i < n; ++i)
        {
            const float x = -0.98F + 1.96F * static_cast<float>(i) / static_cast<float>(n);
            const Point box[6] = {corner(x, -1),     corner(x + 0.02F, -1), corner(x, -0.95F),
                                  corner(x, -0.95F), corner(x + 0.02F, -1), corner(x + 0.02F, -0.95F)};
            corners.append(box);
        }
    }

    void highlight(std::size_t i)
    {
        const float x = -0.98F + 1.96F * static_cast<float>(i) / 49;
        const Point top[1] = {{x, -0.85F, td::Color(td::ColorID::White).rgba()}};
        _corners.updateVertices(6 * i + 2, &top[0].x, 1);
    }

    void remove(std::size_t i) { _corners.removeVertices(6 * i, 6); }

    void draw() { _program.draw(_corners); }

private:
    static Point corner(float x, float y) { return {x, y, td::Color("#ff9f43").rgba()}; }

    Color2DProgram _program;
    Buffer _corners{DataType::Vec2, DataType::NormUByte4};
};

void say(const char* what)
{
    FrameLedger::end();
    const FrameLedger::Frame& frame = FrameLedger::getLast();
    std::printf("%s: %u draw of %u vertices, %u bytes sent\n", what, frame.nDraws,
                static_cast<unsigned int>(frame.nVertices), static_cast<unsigned int>(frame.nBytesUploaded));
    FrameLedger::begin();
}

} // namespace

int main(int argc, char** argv)
{
    OffscreenContext context({960, 600},
                             Context(DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41));
    Trail trail;
    Boxes boxes(49);
    FrameLedger::start(FrameLedger::Times::CPU);
    FrameLedger::begin();
    for (int frame = 1; frame <= 600; ++frame)
    {
        std::vector<Point> arrived;
        for (int i = 0; i < 20; ++i)
            arrived.push_back(at(0.01 * (20 * frame + i)));
        Context::clear(Context::Clear::Color, td::ColorID::Black);
        trail.draw(arrived);
        if (frame == 1 || frame == 600)
            say(frame == 1 ? "Frame 1" : "Frame 600");
        else
            FrameLedger::begin();
    }
    boxes.draw();
    say("49 boxes");
    boxes.highlight(24);
    boxes.draw();
    say("One corner changed");
    boxes.remove(10);
    boxes.draw();
    say("A box removed");
    boxes.draw();
    say("Nothing changed");
    return context.savePicture(argc > 1 ? argv[1] : "large.png") ? 0 : 1;
}
