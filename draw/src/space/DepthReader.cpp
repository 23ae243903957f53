#include "DepthReader.h"

#include "BoundTarget.h"

#include <gui/gl/Context.h>
#include <gui/gl/Program.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/Textures.h>

#include <epoxy/gl.h>

#include <span>

namespace gui::draw
{

namespace
{

constexpr gl::Texture::Unit cDepthUnit = gl::Texture::Unit::T5;

} // namespace

class DepthReader::BitsProgram final : public gl::Program
{
public:
    bool link() { return Program::link(":draw/depthbits.vert", ":draw/depthbits.frag"); }

protected:
    void onLinked() override
    {
        activate();
        setUniformValue(static_cast<unsigned int>(getUniformLocation("picture")), static_cast<int>(cDepthUnit));
    }
};

bool DepthReader::prepare(int width, int height, unsigned int depthFormat)
{
    if (_home.getID() != gl::CurrentContext::getID())
    {
        release();
        _pProgram.reset();
    }
    if (_pProgram == nullptr)
    {
        _pProgram = std::make_shared<BitsProgram>();
        _pProgram->link();
    }
    _home.set(gl::CurrentContext::getID());
    if (!_pProgram->isOK())
        return false;
    if (_depth != 0 && _width == width && _height == height && _format == depthFormat)
        return true;
    release();
    _home.set(gl::CurrentContext::getID());
    BoundTarget wanted = BoundTarget::get();
    wanted.viewport = {0, 0, width, height};
    glGenTextures(1, &_depth);
    glGenFramebuffers(1, &_depthBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, _depthBuffer);
    gl::Context::setActiveTextureUnit(cDepthUnit);
    wanted.attachDepthTexture(_depth);
    glBindTexture(GL_TEXTURE_2D, 0);
    constexpr GLenum cNone = GL_NONE;
    glDrawBuffers(1, &cNone);
    glReadBuffer(GL_NONE);
    bool isComplete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    GLint renderbufferBefore = 0;
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &renderbufferBefore);
    glGenRenderbuffers(1, &_bits);
    glBindRenderbuffer(GL_RENDERBUFFER, _bits);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(renderbufferBefore));
    glGenFramebuffers(1, &_bitsBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, _bitsBuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, _bits);
    isComplete = isComplete && glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    if (!isComplete)
        release();
    _width = width;
    _height = height;
    _format = depthFormat;
    return isComplete;
}

bool DepthReader::read(int width, int height, void* pDepths)
{
    if (!gl::Context::isES())
    {
        glReadPixels(0, 0, width, height, GL_DEPTH_COMPONENT, GL_FLOAT, pDepths);
        return true;
    }
    using gl::Context;
    const gl::StateGuard guard;
    BoundTarget target = BoundTarget::get();
    target.viewport = {0, 0, width, height};
    if (target.depthFormat == 0 || !prepare(width, height, target.depthFormat))
        return false;
    for (const Context::Flag flag : {Context::Flag::DepthTest, Context::Flag::CullFace, Context::Flag::StencilTest,
                                     Context::Flag::Blend, Context::Flag::ScissorTest})
        Context::disable(flag);
    target.copyDepth(_depthBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, _bitsBuffer);
    glViewport(0, 0, width, height);
    Context::maskColorBuffer(true, true, true, true);
    _pProgram->activate();
    gl::Textures::bindToSamplerUnit(_depth, cDepthUnit, gl::Texture::Type::Tex2D);
    const gl::Quads::Range all{0, 1};
    const bool isDrawn = _quads.draw(std::span(&all, 1));
    gl::Textures::bindToSamplerUnit(0, cDepthUnit, gl::Texture::Type::Tex2D);
    if (isDrawn)
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pDepths);
    return isDrawn;
}

void DepthReader::onContext(gl::ContextResource::Event event)
{
    if (event == gl::ContextResource::Event::Restored)
        _depth = _depthBuffer = _bits = _bitsBuffer = 0;
    release();
}

void DepthReader::release()
{
    using Kind = gl::CurrentContext::Kind;
    _home.deleteName(Kind::Framebuffer, _depthBuffer);
    _home.deleteName(Kind::Framebuffer, _bitsBuffer);
    _home.deleteName(Kind::Texture, _depth);
    _home.deleteName(Kind::Renderbuffer, _bits);
    _depth = _depthBuffer = _bits = _bitsBuffer = 0;
    _home.set(0);
}

} // namespace gui::draw
