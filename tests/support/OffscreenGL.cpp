#include "OffscreenGL.h"

#include "Pinning.h"

#include <gui/gl/CurrentContext.h>

#include <epoxy/gl.h>

#include <array>
#include <iostream>
#include <utility>

namespace test
{

namespace
{

bool isFault(GLenum type)
{
    return type == GL_DEBUG_TYPE_ERROR || type == GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR ||
           type == GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR;
}

void onMessage(GLenum, GLenum type, GLuint, GLenum, GLsizei, const GLchar* text, const void* pErrors)
{
    if (isFault(type))
        static_cast<std::vector<std::string>*>(const_cast<void*>(pErrors))->emplace_back(text);
    else
        std::cout << "GL: " << text << '\n';
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const Pixel& pixel)
{
    return stream << '(' << pixel.red << ' ' << pixel.green << ' ' << pixel.blue << ' ' << pixel.alpha << ')';
}

OffscreenGL::OffscreenGL(const td::Size<int>& size)
    : _size(size)
{
}

OffscreenGL::~OffscreenGL() = default;

void OffscreenGL::SetUp()
{
    const gui::gl::Context settings(gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::Bits8,
                                    gui::gl::Context::Profile::Core41);
    _context = std::make_unique<gui::gl::OffscreenContext>(_size, settings, true);
    ASSERT_TRUE(_context->isOk());
    pinLoadedLibraries();
    glEnable(GL_DEBUG_OUTPUT);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    glDebugMessageControl(GL_DONT_CARE, GL_DONT_CARE, GL_DONT_CARE, 0, nullptr, GL_TRUE);
    glDebugMessageCallback(onMessage, &_errors);
}

void OffscreenGL::TearDown()
{
    if (_context && _context->isOk())
        _context->makeCurrent();
    for (const std::string& error : takeErrors())
        ADD_FAILURE() << "GL: " << error;
    _context.reset();
}

std::vector<std::string> OffscreenGL::takeErrors()
{
    if (gui::gl::CurrentContext::getID() != 0)
    {
        for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError())
            _errors.push_back("glGetError answers " + std::to_string(error));
    }
    return std::exchange(_errors, {});
}

bool OffscreenGL::isDriver(std::string_view name)
{
    return std::string_view(reinterpret_cast<const char*>(glGetString(GL_RENDERER))).starts_with(name);
}

int OffscreenGL::mostSamples()
{
    GLint most = 1;
    glGetIntegerv(GL_MAX_SAMPLES, &most);
    return most > 1 ? most : 1;
}

void OffscreenGL::clear(const Pixel& color)
{
    const auto channel = [](int value) { return static_cast<float>(value) / 255; };
    glClearColor(channel(color.red), channel(color.green), channel(color.blue), channel(color.alpha));
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

Pixel OffscreenGL::pixel(int x, int y)
{
    std::array<unsigned char, 4> bytes{};
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

// OpenGL ES, where it reads depths at all, gives no floats of others.
void OffscreenGL::readDepths(int width, int height, float* pDepths)
{
    std::vector<GLuint> depths(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    glReadPixels(0, 0, width, height, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, depths.data());
    for (std::size_t i = 0; i < depths.size(); ++i)
        pDepths[i] = static_cast<float>(depths[i] / 4294967295.0);
}

float OffscreenGL::depthAt(int x, int y)
{
    GLuint depth = 0;
    glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, &depth);
    return static_cast<float>(depth / 4294967295.0);
}

} // namespace test
