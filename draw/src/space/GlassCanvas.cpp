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

bool hasSampleVariables()
{
    constexpr int cFirst = 40, cFirstES = 32;
    return gl::Context::isAtLeast(cFirst, cFirstES) ||
           epoxy_has_gl_extension(gl::Context::isES() ? "GL_OES_sample_variables" : "GL_ARB_sample_shading");
}

// Whether the nearest of floats is found by blending.
bool blendsFloats()
{
    constexpr int cFirstES = 32;
    return !gl::Context::isES() ||
           (epoxy_has_gl_extension("GL_EXT_float_blend") &&
            (gl::Context::isAtLeast(0, cFirstES) || epoxy_has_gl_extension("GL_EXT_color_buffer_float")));
}

// Whether there are framebuffers of half floats, which say more than bytes.
bool drawsHalfFloats()
{
    constexpr int cFirstES = 32;
    return !gl::Context::isES() || gl::Context::isAtLeast(0, cFirstES) ||
           epoxy_has_gl_extension("GL_EXT_color_buffer_float") ||
           epoxy_has_gl_extension("GL_EXT_color_buffer_half_float");
}

// The renderbuffer that the framebuffer has its depth in; 0 for none, or a texture.
unsigned int depthOf(const BoundTarget& target)
{
    if (target.framebuffer == 0)
        return 0;
    GLint type = GL_NONE, name = 0;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT,
                                          GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE, &type);
    if (type == GL_RENDERBUFFER)
        glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT,
                                              GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &name);
    return static_cast<unsigned int>(name);
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
    {
        if (gl::Context::isES())
            glTexStorage2DMultisample(target, _made.nSamples, format, width, height, GL_TRUE);
        else
            glTexImage2DMultisample(target, _made.nSamples, format, width, height, GL_TRUE);
    }
    else
    {
        glTexImage2D(target, 0, static_cast<GLint>(format), width, height, 0, format == GL_R32F ? GL_RED : GL_RGBA,
                     format == GL_RGBA8 ? GL_UNSIGNED_BYTE : GL_FLOAT, nullptr);
        glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    }
    glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, target, name, 0);
    return name;
}

// What layers are like over a target.
BoundTarget GlassCanvas::find(const BoundTarget& target)
{
    BoundTarget wanted = target;
    wanted.framebuffer = wanted.viewport[0] = wanted.viewport[1] = 0;
    _isPacked = !blendsFloats();
    _sharedDepth = 0;
    if (target.nSamples <= 1 || !gl::Context::isES())
        return wanted;
    _sharedDepth = _isPacked || !hasSampleVariables() ? 0 : depthOf(target);
    if (_sharedDepth == 0)
        wanted.nSamples = 0;
    else // places are those of the target
        wanted.viewport = {0, 0, target.viewport[0] + target.viewport[2], target.viewport[1] + target.viewport[3]};
    return wanted;
}

void GlassCanvas::attachDepth(unsigned int renderbuffer) const
{
    for (const unsigned int framebuffer : _framebuffers)
    {
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, _made.hasStencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT,
                                  GL_RENDERBUFFER, renderbuffer);
    }
}

// OpenGL ES has no drawing on condition.
bool GlassCanvas::isEmpty(std::size_t layer) const
{
    if (!gl::Context::isES())
        return false;
    GLuint passed = 0;
    glGetQueryObjectuiv(_queries[layer], GL_QUERY_RESULT, &passed);
    return passed == 0;
}

// @return false when there is no place for layers, or no way to tell them apart
bool GlassCanvas::prepare(const BoundTarget& wanted)
{
    if (_made == wanted)
        return !_isRefused;
    release();
    _made = wanted;
    _isRefused = true;
    if (wanted.depthFormat == 0 || (wanted.nSamples > 1 && !hasSampleVariables()))
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
    const GLenum drawn = drawsHalfFloats() ? GL_RGBA16F : GL_RGBA8;
    bool isComplete = true;
    for (std::size_t i = 0; i < _framebuffers.size(); ++i)
    {
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffers[i]);
        _textures[i] = makeTexture(i == cDrawn ? drawn : _isPacked ? GL_RGBA8 : GL_R32F);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, wanted.hasStencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT,
                                  GL_RENDERBUFFER, _depth);
        // With a depth alone it is complete, too.
        isComplete =
            isComplete && _textures[i] != 0 && glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
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
    const GLenum question = gl::Context::isES() ? GL_ANY_SAMPLES_PASSED : GL_SAMPLES_PASSED;
    const auto [x, y, width, height] = target.viewport;
    const bool isShared = _sharedDepth != 0;
    const auto bindFramebuffer = [&, x = x, y = y, width = width, height = height](std::size_t i)
    {
        // The depth test that finds a layer leaves its depths.
        if (_isPacked)
            target.copyDepth(_framebuffers[i]);
        glBindFramebuffer(GL_FRAMEBUFFER, _framebuffers[i]);
        glViewport(isShared ? x : 0, isShared ? y : 0, width, height);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    };
    const auto drawAll = [&](Pass::Kind kind, std::size_t layer)
    {
        gl::Context::enable(gl::Context::Flag::Blend);
        for (const Source& source : sources)
            source({kind, _made.nSamples, kind == Pass::Kind::Nearest ? 0 : _textures[layer], _isPacked});
    };
    const auto beginIf = [](unsigned int query)
    {
        if (!gl::Context::isES())
            glBeginConditionalRender(query, GL_QUERY_WAIT);
    };
    const auto endIf = []
    {
        if (!gl::Context::isES())
            glEndConditionalRender();
    };
    // Of what is found in a pixel the nearest stays.
    const auto findLayer = [&](std::size_t i)
    {
        bindFramebuffer(i % 2);
        glClearBufferfv(GL_COLOR, 0, cNothing.data());
        glBlendEquation(GL_MAX);
        if (i > 0)
            beginIf(_queries[i - 1]);
        glBeginQuery(question, _queries[i]);
        drawAll(i == 0 ? Pass::Kind::Nearest : Pass::Kind::Next, (i + 1) % 2);
        glEndQuery(question);
        if (i > 0)
            endIf();
    };
    // What is drawn goes behind what is there.
    const auto drawFound = [&](std::size_t i, Pass::Kind kind)
    {
        bindFramebuffer(cDrawn);
        glBlendEquation(GL_FUNC_ADD);
        gl::Context::setBlendFunction(gl::Blend::Factor::OneMinusDstAlpha, gl::Blend::Factor::One);
        beginIf(_queries[i]);
        drawAll(kind, i % 2);
        endIf();
    };
    bindFramebuffer(cDrawn);
    glClearBufferfv(GL_COLOR, 0, cNothing.data());
    for (std::size_t i = 0; i < cLayers; ++i)
    {
        findLayer(i);
        if (isEmpty(i))
            return;
        drawFound(i, Pass::Kind::Layer);
    }
    findLayer(cLayers);
    drawFound(cLayers, Pass::Kind::Rest);
}

void GlassCanvas::composite(const BoundTarget& target)
{
    if (_pComposite == nullptr || _pComposite->nSamplesOfIt != _made.nSamples)
    {
        _pComposite = std::make_shared<CompositeProgram>();
        _pComposite->link(_made.nSamples);
    }
    if (!_pComposite->isOK())
        return;
    _pComposite->activate();
    _pComposite->setUniformValue(static_cast<unsigned int>(_pComposite->corner),
                                 _sharedDepth != 0 ? glm::vec2(0) : glm::vec2(target.viewport[0], target.viewport[1]));
    bind({Pass::Kind::Rest, _made.nSamples, _textures[cDrawn]});
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
    if (!prepare(find(target)))
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
    if (_sharedDepth != 0)
        attachDepth(_sharedDepth);
    else
        target.copyDepth(_framebuffers[0]);
    drawLayers(target, sources);
    // It goes with the framebuffer that it is of.
    if (_sharedDepth != 0)
        attachDepth(_depth);
    target.bind();
    if (isScissored)
        gl::Context::enable(gl::Context::Flag::ScissorTest);
    composite(target);
    gl::Context::setActiveTextureUnit(cUnit);
    glBindTexture(targetOf(_made.nSamples), 0);
}

} // namespace gui::draw
