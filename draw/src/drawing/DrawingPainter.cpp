#include "DrawingPainter.h"

#include <gui/Res.h>
#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/Textures.h>

#include <vo/Log.h>

#include <epoxy/gl.h>

#include <array>
#include <string>

namespace gui::draw
{

namespace
{

/// The unit behind those of the tables.
constexpr gl::Texture::Unit cLayerUnit = gl::Texture::Unit::T6;

glm::uvec4 wordsOf(std::int64_t x, std::int64_t y)
{
    const auto a = static_cast<std::uint64_t>(x), b = static_cast<std::uint64_t>(y);
    return {static_cast<std::uint32_t>(a), static_cast<std::uint32_t>(a >> 32), static_cast<std::uint32_t>(b),
            static_cast<std::uint32_t>(b >> 32)};
}

} // namespace

/// A texture of colours and a depth buffer.
struct DrawingPainter::Layer
{
    ~Layer() { release(); }

    void release()
    {
        using gl::CurrentContext;
        CurrentContext::deleteName(contextID, CurrentContext::Kind::Framebuffer, framebuffer);
        CurrentContext::deleteName(contextID, CurrentContext::Kind::Texture, texture);
        CurrentContext::deleteName(contextID, CurrentContext::Kind::Renderbuffer, depth);
        framebuffer = texture = depth = 0;
        contextID = 0;
        size = {0, 0};
    }

    bool resize(td::Size<int> newSize)
    {
        if (size.width == newSize.width && size.height == newSize.height && gl::CurrentContext::isAlive(contextID) &&
            contextID == gl::CurrentContext::getID())
            return true;
        release();
        contextID = gl::CurrentContext::getID();
        glGenTextures(1, &texture);
        gl::Textures::bindToSamplerUnit(texture, cLayerUnit, gl::Texture::Type::Tex2D);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, newSize.width, newSize.height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glGenRenderbuffers(1, &depth);
        glBindRenderbuffer(GL_RENDERBUFFER, depth);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, newSize.width, newSize.height);
        glBindRenderbuffer(GL_RENDERBUFFER, 0);
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth);
        if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
        {
            release();
            return false;
        }
        size = newSize;
        return true;
    }

    unsigned int framebuffer = 0, texture = 0, depth = 0;
    gl::CurrentContext::ID contextID = 0;
    td::Size<int> size{0, 0};
};

class DrawingPainter::ShapeProgram : public gl::Program
{
public:
    bool link()
    {
        const std::string common = gui::getResText(":draw/drawing.glsl").c_str();
        const std::string vertex = common + gui::getResText(":draw/drawing.vert").c_str();
        const std::string fragment = common + gui::getResText(":draw/drawing.frag").c_str();
        return Program::link(vertex.c_str(), fragment.c_str());
    }

    int center = -1, toPixels = -1, halfSize = -1, pixelsPerPoint = -1;

protected:
    void onLinked() override
    {
        center = getUniformLocation("center");
        toPixels = getUniformLocation("toPixels");
        halfSize = getUniformLocation("halfSize");
        pixelsPerPoint = getUniformLocation("pixelsPerPoint");
        activate();
        int unit = 0;
        for (const char* name : {"shapes", "elements", "points", "nodes", "numbers", "links"})
            setUniformValue(static_cast<unsigned int>(getUniformLocation(name)), unit++);
    }
};

class DrawingPainter::LayerProgram : public gl::Program
{
public:
    bool link() { return Program::link(":draw/layer.vert", ":draw/layer.frag"); }

    int corner = -1;

protected:
    void onLinked() override
    {
        corner = getUniformLocation("corner");
        activate();
        setUniformValue(static_cast<unsigned int>(getUniformLocation("layer")), static_cast<int>(cLayerUnit));
    }
};

DrawingPainter::DrawingPainter() = default;
DrawingPainter::~DrawingPainter() = default;

bool DrawingPainter::fail(const char* reason)
{
    if (_lastFailure != reason)
        vo::dbgLog("Error! Drawing::draw: %s!", reason);
    _lastFailure = reason;
    return false;
}

bool DrawingPainter::prepare()
{
    if (_pShapes && !_pShapes->isOK())
        _pShapes.reset();
    if (_pComposite && !_pComposite->isOK())
        _pComposite.reset();
    if (!_pShapes)
    {
        if (_failedContext == gl::CurrentContext::getID())
            return false;
        _failedContext = gl::CurrentContext::getID();
        auto pShapes = std::make_unique<ShapeProgram>();
        auto pComposite = std::make_unique<LayerProgram>();
        if (!pShapes->link() || !pComposite->link())
            return false;
        _pShapes = std::move(pShapes);
        _pComposite = std::move(pComposite);
        _isLayerValid = false;
        _failedContext = 0;
    }
    if (!_pLayer)
        _pLayer = std::make_unique<Layer>();
    return true;
}

bool DrawingPainter::draw(ShapeTables& tables, std::span<const gl::Quads::Range> ranges, const Sight& sight,
                          bool isChanged)
{
    if (!gl::CurrentContext::isThere("Drawing::draw"))
        return false;
    const gl::StateGuard guard;
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    if (viewport[2] <= 0 || viewport[3] <= 0)
        return true;
    GLint target = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &target);
    const bool isScissored = glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE;
    const td::Size<int> size{viewport[2], viewport[3]};
    if (!prepare())
        return fail("its program does not link");
    const gl::CurrentContext::ID layerContext = _pLayer->contextID;
    if (_pLayer->size.width != size.width || _pLayer->size.height != size.height)
        _isLayerValid = false;
    if (!_pLayer->resize(size))
        return fail("there is no framebuffer of the viewport's size");
    if (_pLayer->contextID != layerContext)
        _isLayerValid = false;

    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glBlendEquation(GL_FUNC_ADD);
    glDisable(GL_CULL_FACE);
    glDisable(GL_STENCIL_TEST);
    gl::Context::enable(gl::Context::Flag::Blend);
    gl::Context::setBlendFunction(gl::Blend::Factor::One, gl::Blend::Factor::OneMinusSrcAlpha);
    if (!_isLayerValid || isChanged || !(sight == _sight))
    {
        _isLayerValid = false;
        if (!tables.upload())
            return fail("GL has no room for its shapes");
        glDisable(GL_SCISSOR_TEST);
        glBindFramebuffer(GL_FRAMEBUFFER, _pLayer->framebuffer);
        glViewport(0, 0, size.width, size.height);
        glClearColor(0, 0, 0, 0);
        gl::Context::maskDepthBuffer(true);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        // Each shape is nearer than those before, and so passes over them, but not over itself.
        gl::Context::enable(gl::Context::Flag::DepthTest);
        gl::Context::setDepthBufferFunction(gl::DepthBuffer::Function::Less);
        tables.bind();
        ShapeProgram& program = *_pShapes;
        program.activate();
        const auto send = [&program](int location, const auto& value)
        { program.setUniformValue(static_cast<unsigned int>(location), value); };
        send(program.center, wordsOf(tables.toUnits(sight.center.x), tables.toUnits(sight.center.y)));
        const Affine& map = sight.toPixels;
        send(program.toPixels, glm::vec4(map.a, map.b, map.c, map.d));
        send(program.halfSize, glm::vec2(size.width / 2.0, size.height / 2.0));
        send(program.pixelsPerPoint, static_cast<float>(sight.pixelsPerPoint));
        _quads.draw(ranges);
        _sight = sight;
        _isLayerValid = true;
    }
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(target));
    glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    isScissored ? glEnable(GL_SCISSOR_TEST) : glDisable(GL_SCISSOR_TEST);
    gl::Context::disable(gl::Context::Flag::DepthTest);
    gl::Textures::bindToSamplerUnit(_pLayer->texture, cLayerUnit, gl::Texture::Type::Tex2D);
    _pComposite->activate();
    _pComposite->setUniformValue(static_cast<unsigned int>(_pComposite->corner), glm::vec2(viewport[0], viewport[1]));
    const gl::Quads::Range one{0, 1};
    _quads.draw(std::span(&one, 1));
    _lastFailure = nullptr;
    return true;
}

} // namespace gui::draw
