// Things that go wrong, and what the log says of them.
#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <td/Assert.h>
#include <vo/Log.h>

#include <cstdio>

using namespace gui::gl;

int main()
{
    vo::setLogSink([](const char* line) { std::printf("log: %s\n", line); });
    td::setAssertHandler([](const td::AssertReport& report)
                         { std::printf("%s asserts: %s\n", report.function, report.condition); });

    OffscreenContext context({64, 64}, {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});

    Flat2DProgram program;
    Buffer buffer{DataType::Vec2};
    program.draw(buffer);

    gui::Texture image;
    if (!image.loadFromFile("nowhere.png"))
        std::puts("No image.");

    Text text;
    text.init(":nowhere.font");

    program.link();
    const float point[] = {0, 0};
    buffer.appendVertices(point, 1);
    program.draw(buffer);
    buffer.appendVertices(point, 1); // after the commit

    buffer.createCommand()->execute();
    return 0;
}
