// A test of a view without a display: draws it, reads what it drew, and compares. Ends with 0 when all is well.
#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/Window.h>
#include <gui/gl/gl.h>
#include <vo/Log.h>

#include <cstdio>
#include <string>
#include <vector>

using namespace gui::gl;

namespace
{

// What the application shows: red, and green once it is told that all is well.
class LampView : public View
{
public:
    void setGood(bool isGood)
    {
        _isGood = isGood;
        reDraw();
    }

protected:
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, _isGood ? td::ColorID::Green : td::ColorID::Red);
    }

private:
    bool _isGood = false;
};

// The next frame of a view, upright. Ends the test's patience after some seconds.
bool takeFrame(gui::Application& app, View& view, gui::Texture& frame)
{
    bool isDone = false;
    view.readFrameFrameBuffer(frame, [&isDone] { isDone = true; });
    for (int i = 0; i < 100 && !isDone; ++i)
        app.step(0.05);
    frame.mirrorVertically();
    return isDone;
}

std::string colorOf(const gui::Texture& frame, int x, int y)
{
    const auto width = static_cast<std::size_t>(frame.getWidth());
    const std::size_t pixel = static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x);
    const td::BYTE* const p = frame.getBytes() + pixel * frame.getBytesPerPixel();
    char text[8];
    std::snprintf(text, sizeof(text), "#%02x%02x%02x", p[0], p[1], p[2]);
    return text;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> complaints;
    vo::setLogSink(
        [&complaints](const char* line)
        {
            const std::string text = line;
            if (text.find("rror") != std::string::npos || text.find("ERROR") != std::string::npos)
                complaints.push_back(text);
        });

    gui::Application app(argc, argv);
    LampView view;
    view.createContext({DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    gui::Window window("Lamp", {32, 32});
    window.show(view);

    gui::Texture frame;
    for (const bool isGood : {false, true})
    {
        view.setGood(isGood);
        if (!takeFrame(app, view, frame))
            complaints.emplace_back("no frame came");
        const std::string expected = isGood ? "#008000" : "#ff0000";
        if (frame.isOk() && colorOf(frame, 16, 16) != expected)
            complaints.push_back("the lamp is " + colorOf(frame, 16, 16) + " and should be " + expected);
    }
    for (const std::string& complaint : complaints)
        std::puts(complaint.c_str());
    std::puts(complaints.empty() ? "passed" : "failed");
    return complaints.empty() ? 0 : 1;
}
