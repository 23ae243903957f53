// What may go first: a context before its objects, a window before its view, one context's objects in another's turn.
#include <gui/Application.h>
#include <gui/Window.h>
#include <gui/gl/gl.h>

#include <cstdio>
#include <memory>

using namespace gui::gl;

namespace
{

const Context cPlain{DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41};

void fill(Buffer& buffer)
{
    const float corners[] = {-1, -1, 1, -1, 0, 1};
    buffer.reset();
    buffer.appendShape(Primitive::Triangles, corners, 3)->setColor(td::ColorID::Gold);
}

// An object outlives its context: it forgets its names, and serves in the next one.
void outliveContext()
{
    Flat2DProgram program;
    Buffer buffer{DataType::Vec2};
    for (int i = 1; i <= 2; ++i)
    {
        const OffscreenContext context({64, 64}, cPlain);
        program.release();
        program.link();
        fill(buffer);
        program.draw(buffer);
        std::printf("context %d: drawn\n", i);
    }
    buffer.release(); // no context any more, and none needed
    std::puts("released without a context");
}

// Each context has objects of its own: what was made in one is nothing in the other.
void switchContexts()
{
    OffscreenContext first({64, 64}, cPlain);
    auto pBuffer = std::make_unique<Buffer>();
    pBuffer->init(1, 3, 0, {DataType::Vec2});
    fill(*pBuffer);
    pBuffer->commit();

    const OffscreenContext second({64, 64}, cPlain); // current now
    Buffer other{DataType::Vec2};
    fill(other);
    other.commit();
    pBuffer.reset(); // its GL objects are deleted when their context is next current
    std::puts("deleted later");
    first.makeCurrent();
    std::puts("deleted now");
}

class ClosingView : public View
{
public:
    // What a handler of the application's, a timer say, has to do before it makes GL objects.
    void addMore()
    {
        makeCurrentContext();
        fill(_more);
        _more.commit();
        reDraw();
    }

protected:
    void onInit() override
    {
        fill(_buffer);
        _program.link();
    }

    void onDraw(const td::RectNormalized<double>&) override { _program.draw(_buffer); }

    // The window goes first: the context lives for the time of this call, and no longer.
    void cleanResources() override
    {
        _program.release();
        _buffer.release();
        _more.release();
        std::puts("cleaned up");
    }

private:
    Flat2DProgram _program;
    Buffer _buffer{DataType::Vec2};
    Buffer _more{DataType::Vec2};
};

void closeWindowFirst()
{
    ClosingView view;
    view.createContext(cPlain);
    gui::Window window("Lifetimes", {64, 64});
    window.show(view);
    view.addMore();
    window.close();
    view.reDraw(); // does nothing
    std::puts("the view lives on");
}

} // namespace

int main(int argc, char** argv)
{
    const gui::Application app(argc, argv);
    outliveContext();
    switchContexts();
    closeWindowFirst();
    return 0;
}
