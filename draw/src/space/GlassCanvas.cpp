#include "GlassCanvas.h"

#include "SharedInContext.h"

#include <gui/Res.h>
#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/Textures.h>

#include <vo/Log.h>

#include <epoxy/gl.h>

#include <string>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr std::size_t cDrawn = 2; // the framebuffer

int glInteger(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

bool hasFeature(int version, const char* extension)
{
    return epoxy_gl_version() >= version || epoxy_has_gl_extension(extension);
}

GLenum targetOf(int nSamples) { return nSamples > 1 ? GL_TEXTURE_2D_MULTISAMPLE : GL_TEXTURE_2D; }

} // namespace

/// Puts layers over what they are seen before.
class GlassCanvas::CompositeProgram final : public gl::Program
{
public:
    bool link(int nSamples)
    {
        std::string head = "#version 330 core\n";
        if (nSamples > 1)
            head += "#extension GL_ARB_sample_shading : enable\n#define SAMPLES\n";
        const std::string vertex = head + gui::getResText(":draw/glass.vert").c_str();
        const std::string fragment = head + gui::getResText(":draw/glass.frag").c_str();
        nSamplesOfIt = nSamples;
        return Program::link(vertex.c_str(), fragment.c_str());
    }
    int nSamplesOfIt = 0;
    int corner = -1;

protected:
    void onLinked() override
    {
        corner = getUniformLocation("corner");
        activate();
        setUniformValue(static_cast<unsigned int>(getUniformLocation("layers")), static_cast<int>(cUnit));
    }
};

std::shared_ptr<GlassCanvas> GlassCanvas::get() { return getSharedInContext<GlassCanvas>(); }

// Attaches it too, to the framebuffer that is bound.
unsigned int GlassCanvas::makeTexture(unsigned int format) const
{
    GLuint name = 0;
    glGenTextures(1, &name);
    const GLenum target = targetOf(_made.nSamples);
    glBindTexture(target, name);
    const int width = _made.viewport[2], height = _made.viewport[3];
    if (_made.nSamples > 1)
        glTexImage2DMultisample(target, _made.nSamples, format, width, height, GL_TRUE);
    else
    {
        glTexImage2D(target, 0, static_cast<GLint>(format), width, height, 0, GL_RED, GL_FLOAT, nullptr);
        glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    }
    glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, target, name, 0);
    return name;
}

// @return false when there is no place for layers, or no way to tell them apart
bool GlassCanvas::prepare(const BoundTarget& target)
{
    BoundTarget wanted = target;
    wanted.framebuffer = wanted.viewport[0] = wanted.viewport[1] = 0;
    if (_made == wanted)
        return !_isRefused;
    release();
    _made = wanted;
    _isRefused = true;
    constexpr int cFirstVersion = 40;
    if (wanted.depthFormat == 0 || (wanted.nSamples > 1 && !hasFeature(cFirstVersion, "GL_ARB_sample_shading")))
    {
        if (!std::exchange(_isSaid, true))
            vo::dbgLog("Warning! Model::draw: no layers here, translucent surfaces are blended as they are drawn");
        return false;
    }
    const GLuint renderbufferBefore = static_cast<GLuint>(glInteger(GL_RENDERBUFFER_BINDING));
    gl::Context::setActiveTextureUnit(cUnit);
    glGenRenderbuffers(1, &_depth);
    glBindRenderbuffer(GL_RENDERBUFFER, _depth);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, wanted.nSamples > 1 ? wanted.nSamples : 0, wanted.depthFormat,
                                     wanted.viewport[2], wanted.viewport[3]);
    glBindRenderbuffer(GL_RENDERBUFFER, renderbufferBefore);
    glGenFramebuffers(static_cast<GLsizei>(_framebuffers.size()), _framebuffers.data());
    bool isComplete = true;
    for (std::size_t i = 0; i < _framebuffers.size(); ++i)
    {
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffers[i]);
        _textures[i] = makeTexture(i == cDrawn ? GL_RGBA16F : GL_R32F);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, wanted.hasStencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT,
                                  GL_RENDERBUFFER, _depth);
        isComplete = isComplete && glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    }
    glBindTexture(targetOf(wanted.nSamples), 0);
    glGenQueries(static_cast<GLsizei>(_queries.size()), _queries.data());
    _isRefused = !isComplete;
    if (_isRefused && !std::exchange(_isSaid, true))
        vo::dbgLog("Error! Model::draw: GL has no room for layers, translucent surfaces are blended as they are drawn");
    return isComplete;
}

void GlassCanvas::release()
{
    using Kind = gl::CurrentContext::Kind;
    for (const unsigned int name : _framebuffers)
        _home.deleteName(Kind::Framebuffer, name);
    for (const unsigned int name : _textures)
        _home.deleteName(Kind::Texture, name);
    for (const unsigned int name : _queries)
        _home.deleteName(Kind::Query, name);
    _home.deleteName(Kind::Renderbuffer, _depth);
    _framebuffers = _textures = {};
    _depth = 0;
    _queries = {};
    _made = {};
    _isRefused = false;
}

void GlassCanvas::bind(const Pass& pass)
{
    if (pass.nearness == 0)
        return;
    gl::Context::setActiveTextureUnit(cUnit);
    glBindTexture(targetOf(pass.nSamples), pass.nearness);
}

void GlassCanvas::drawLayers(const BoundTarget& target, std::span<const Source> sources)
{
    constexpr std::array<float, 4> cNothing{};
    const auto bindFramebuffer = [&](std::size_t i)
    {
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffers[i]);
        glViewport(0, 0, target.viewport[2], target.viewport[3]);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    };
    const auto drawAll = [&](Pass::Kind kind, std::size_t layer)
    {
        gl::Context::enable(gl::Context::Flag::Blend);
        for (const Source& source : sources)
            source({kind, target.nSamples, kind == Pass::Kind::Nearest ? 0 : _textures[layer]});
    };
    // Of what is found in a pixel the nearest stays.
    const auto find = [&](std::size_t i)
    {
        bindFramebuffer(i % 2);
        glClearBufferfv(GL_COLOR, 0, cNothing.data());
        glBlendEquation(GL_MAX);
        if (i > 0)
            glBeginConditionalRender(_queries[i - 1], GL_QUERY_WAIT);
        glBeginQuery(GL_SAMPLES_PASSED, _queries[i]);
        drawAll(i == 0 ? Pass::Kind::Nearest : Pass::Kind::Next, (i + 1) % 2);
        glEndQuery(GL_SAMPLES_PASSED);
        if (i > 0)
            glEndConditionalRender();
    };
    // What is drawn goes behind what is there.
    const auto drawFound = [&](std::size_t i, Pass::Kind kind)
    {
        bindFramebuffer(cDrawn);
        glBlendEquation(GL_FUNC_ADD);
        gl::Context::setBlendFunction(gl::Blend::Factor::OneMinusDstAlpha, gl::Blend::Factor::One);
        glBeginConditionalRender(_queries[i], GL_QUERY_WAIT);
        drawAll(kind, i % 2);
        glEndConditionalRender();
    };
    bindFramebuffer(cDrawn);
    glClearBufferfv(GL_COLOR, 0, cNothing.data());
    for (std::size_t i = 0; i < cLayers; ++i)
    {
        find(i);
        drawFound(i, Pass::Kind::Layer);
    }
    find(cLayers);
    drawFound(cLayers, Pass::Kind::Rest);
}

void GlassCanvas::composite(const BoundTarget& target)
{
    if (_pComposite == nullptr || _pComposite->nSamplesOfIt != target.nSamples)
    {
        _pComposite = std::make_shared<CompositeProgram>();
        _pComposite->link(target.nSamples);
    }
    if (!_pComposite->isOK())
        return;
    _pComposite->activate();
    _pComposite->setUniformValue(static_cast<unsigned int>(_pComposite->corner),
                                 glm::vec2(target.viewport[0], target.viewport[1]));
    bind({Pass::Kind::Rest, target.nSamples, _textures[cDrawn]});
    using gl::Context;
    for (const Context::Flag flag : {Context::Flag::DepthTest, Context::Flag::CullFace, Context::Flag::StencilTest})
        Context::disable(flag);
    Context::setPolygonMode(Context::PolygonMode::Fill);
    Context::enable(Context::Flag::Blend);
    glBlendEquation(GL_FUNC_ADD);
    Context::setBlendFunction(gl::Blend::Factor::One, gl::Blend::Factor::OneMinusSrcAlpha);
    const gl::Quads::Range all{0, 1};
    _quads.draw(std::span(&all, 1));
}

void GlassCanvas::draw(std::span<const Source> sources)
{
    const gl::StateGuard guard;
    const BoundTarget target = BoundTarget::get();
    if (target.isEmpty())
        return;
    if (!prepare(target))
    {
        target.bind();
        gl::Context::enable(gl::Context::Flag::Blend);
        glBlendEquation(GL_FUNC_ADD);
        gl::Context::setBlendFunction(gl::Blend::Factor::One, gl::Blend::Factor::OneMinusSrcAlpha);
        for (const Source& source : sources)
            source({Pass::Kind::Unsorted, target.nSamples, 0});
        return;
    }
    // Of what is aside all is drawn.
    const bool isScissored = glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE;
    gl::Context::disable(gl::Context::Flag::ScissorTest);
    target.copyDepth(_framebuffers[0]);
    drawLayers(target, sources);
    target.bind();
    if (isScissored)
        gl::Context::enable(gl::Context::Flag::ScissorTest);
    composite(target);
    gl::Context::setActiveTextureUnit(cUnit);
    glBindTexture(targetOf(target.nSamples), 0);
}

} // namespace gui::draw
