// A view whose context is lost twelve times, and the frame behind each loss. Its own GL texture is the one thing that
// it has to make again.
#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <epoxy/gl.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace gui::gl;

namespace
{

class FlagView : public View
{
public:
    ~FlagView() override { CurrentContext::deleteName(_contextID, CurrentContext::Kind::Texture, _checks); }

    std::vector<td::BYTE> takePicture(gui::Application& app)
    {
        gui::Texture picture;
        readFrameFrameBuffer(picture, [this] { _isRead = true; });
        for (_isRead = false; !_isRead;)
            app.step(0.1);
        return {picture.getBytes(), picture.getBytes() + std::ptrdiff_t(4) * picture.getWidth() * picture.getHeight()};
    }

protected:
    // Buffers and programs, made once: what is said about them in no other place.
    void onInit() override
    {
        const float pole[] = {-0.9F, -1, -0.85F, -1, -0.9F, 0.9F, -0.85F, 0.9F};
        _pole.appendShape(Primitive::TriangleStrip, pole, 4)->setColor(td::ColorID::SaddleBrown);
        _flat.link();
        const float cloth[] = {-0.85F, 0, 0, 0, 0.8F, -0.1F, 1, 0, -0.85F, 0.85F, 0, 1, 0.8F, 0.75F, 1, 1};
        _cloth.appendShape(Primitive::TriangleStrip, cloth, 4);
        _textured.link();
        glClearColor(0.75F, 0.9F, 1, 1);
        makeChecks();
    }

    // The name is none any more; there is nothing to delete.
    void onContextLost() override { _checks = 0; }
    void onContextRestored() override { makeChecks(); }

    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color);
        _flat.draw(_pole);
        Textures::bindToSamplerUnit(_checks, Texture::Unit::T0, Texture::Type::Tex2D);
        _textured.draw(_cloth);
    }

private:
    void makeChecks()
    {
        std::vector<td::BYTE> pixels;
        for (int i = 0; i < 64; ++i)
            pixels.insert(pixels.end(), 4, (i + i / 8) % 2 == 0 ? 255 : 40);
        glGenTextures(1, &_checks);
        _contextID = CurrentContext::getID();
        Textures::bindToSamplerUnit(_checks, Texture::Unit::T0, Texture::Type::Tex2D);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        glGenerateMipmap(GL_TEXTURE_2D);
    }

    Flat2DProgram _flat;
    Texture2DProgram _textured;
    Buffer _pole{DataType::Vec2}, _cloth{DataType::Vec2, DataType::Vec2};
    unsigned int _checks = 0; // a GL texture, made by GL calls
    CurrentContext::ID _contextID = 0;
    bool _isRead = false;
};

// A picture of a server's, in an OffscreenContext.
bool drawOffscreen()
{
    const Context settings{DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41};
    OffscreenContext context({64, 64}, settings);
    Flat2DProgram program;
    Buffer buffer{DataType::Vec2};
    const float corners[] = {-1, -1, 1, -1, 0, 1};
    buffer.appendShape(Primitive::Triangles, corners, 3)->setColor(td::ColorID::Gold);
    program.link();
    if (context.isLost() && !context.replace())
        return false;
    program.draw(buffer);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    FlagView view;
    view.createContext({DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    const std::vector<td::BYTE> before = view.takePicture(app);
    int nSame = 0;
    for (int i = 0; i < 12; ++i)
    {
        view.loseContext();
        nSame += view.takePicture(app) == before ? 1 : 0;
    }
    std::printf("%d of 12 pictures are the same\n", nSame);
    return nSame == 12 && drawOffscreen() ? EXIT_SUCCESS : EXIT_FAILURE;
}
