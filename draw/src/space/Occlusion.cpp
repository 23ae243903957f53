#include "Occlusion.h"

#include <gui/Res.h>
#include <gui/gl/Context.h>
#include <gui/gl/Program.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/Textures.h>

#include <vo/Log.h>

#include <glm/mat4x4.hpp>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace gui::draw
{

namespace
{

int looksOf(Shadows::Quality quality)
{
    return quality == Shadows::Quality::High ? 20 : quality == Shadows::Quality::Medium ? 12 : 8;
}

} // namespace

/// Looks about each pixel, or makes of what it saw a picture without noise.
class Occlusion::Program final : public gl::Program
{
public:
    bool link(bool isBlur)
    {
        const std::string head = isBlur ? "#version 330 core\n#define BLUR\n" : "#version 330 core\n";
        const std::string vertex = head + gui::getResText(":draw/glass.vert").c_str();
        const std::string fragment = head + gui::getResText(":draw/occlusion.frag").c_str();
        return gl::Program::link(vertex.c_str(), fragment.c_str());
    }
    /// Those that it has.
    enum Uniform : std::size_t
    {
        Picture,
        Reach,
        Corner,
        Projection,
        Size,
        IsReversed,
        Looks,
        Strength,
        cUniforms
    };
    template <typename Value>
    void set(Uniform uniform, const Value& value)
    {
        setUniformValue(static_cast<unsigned int>(_uniforms[uniform]), value);
    }

protected:
    void onLinked() override
    {
        constexpr std::array<const char*, cUniforms> cNames{"picture", "reach",      "corner", "projection",
                                                            "size",    "isReversed", "looks",  "strength"};
        std::transform(cNames.begin(), cNames.end(), _uniforms.begin(),
                       [this](const char* name) { return getUniformLocation(name); });
        activate();
        set(Picture, static_cast<int>(gl::Texture::Unit::T5));
    }

private:
    std::array<int, cUniforms> _uniforms{};
};

bool Occlusion::makeDepth(const BoundTarget& wanted)
{
    glGenTextures(1, &_depth);
    glGenFramebuffers(1, &_depthBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, _depthBuffer);
    wanted.attachDepthTexture(_depth);
    constexpr GLenum cNone = GL_NONE;
    glDrawBuffers(1, &cNone);
    glReadBuffer(GL_NONE);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

bool Occlusion::makeLight(const BoundTarget& wanted)
{
    glGenTextures(1, &_light);
    glBindTexture(GL_TEXTURE_2D, _light);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RG16F, wanted.viewport[2], wanted.viewport[3], 0, GL_RG, GL_FLOAT, nullptr);
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
    glGenFramebuffers(1, &_lightBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, _lightBuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, _light, 0);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

// @return false when there is no place for it
bool Occlusion::prepare(const BoundTarget& target)
{
    BoundTarget wanted = target;
    wanted.framebuffer = wanted.viewport[0] = wanted.viewport[1] = 0;
    if (_made == wanted && _home.getID() == gl::CurrentContext::getID())
        return !_isRefused;
    release();
    _home.set(gl::CurrentContext::getID());
    _made = wanted;
    gl::Context::setActiveTextureUnit(gl::Texture::Unit::T5);
    _isRefused = wanted.depthFormat == 0 || !makeDepth(wanted) || !makeLight(wanted);
    glBindTexture(GL_TEXTURE_2D, 0);
    if (!_isRefused && _pLook == nullptr)
    {
        _pLook = std::make_shared<Program>();
        _pBlur = std::make_shared<Program>();
        _isRefused = !_pLook->link(false) || !_pBlur->link(true);
    }
    if (_isRefused)
        vo::dbgLog("Error! DepthCanvas: GL has no room for the dark of corners");
    return !_isRefused;
}

void Occlusion::release()
{
    using Kind = gl::CurrentContext::Kind;
    _home.deleteName(Kind::Framebuffer, _depthBuffer);
    _home.deleteName(Kind::Framebuffer, _lightBuffer);
    _home.deleteName(Kind::Texture, _depth);
    _home.deleteName(Kind::Texture, _light);
    _depth = _light = _depthBuffer = _lightBuffer = 0;
    _made = {};
    _isRefused = false;
}

void Occlusion::draw(const Eye& eye, const Shadows& shadows, double reach)
{
    using gl::Context;
    const gl::StateGuard guard;
    const BoundTarget target = BoundTarget::get();
    if (target.isEmpty() || !eye.isValid() || !prepare(target))
        return;
    const bool isScissored = glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE;
    for (const Context::Flag flag : {Context::Flag::DepthTest, Context::Flag::CullFace, Context::Flag::StencilTest,
                                     Context::Flag::Blend, Context::Flag::ScissorTest})
        Context::disable(flag);
    Context::setPolygonMode(Context::PolygonMode::Fill);
    Context::maskColorBuffer(true, true, true, true);
    target.copyDepth(_depthBuffer);
    const gl::Quads::Range all{0, 1};
    const auto begin = [&](Program& program, unsigned int texture)
    {
        program.activate();
        gl::Textures::bindToSamplerUnit(texture, gl::Texture::Unit::T5, gl::Texture::Type::Tex2D);
    };
    glBindFramebuffer(GL_FRAMEBUFFER, _lightBuffer);
    glViewport(0, 0, target.viewport[2], target.viewport[3]);
    begin(*_pLook, _depth);
    _pLook->set(Program::Projection, glm::mat4(eye.getProjection()));
    _pLook->set(Program::Size, glm::vec2(target.viewport[2], target.viewport[3]));
    _pLook->set(Program::IsReversed, eye.getDepth() == Eye::Depth::Reversed ? 1 : 0);
    _pLook->set(Program::Reach, static_cast<float>(reach));
    _pLook->set(Program::Looks, looksOf(shadows.quality));
    _pLook->set(Program::Strength, static_cast<float>(std::clamp(shadows.occlusion, 0.0, 1.0)));
    _quads.draw(std::span(&all, 1));
    target.bind();
    if (isScissored)
        Context::enable(Context::Flag::ScissorTest);
    begin(*_pBlur, _light);
    _pBlur->set(Program::Corner, glm::vec2(target.viewport[0], target.viewport[1]));
    _pBlur->set(Program::Reach, static_cast<float>(reach));
    Context::enable(Context::Flag::Blend);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFuncSeparate(GL_ZERO, GL_SRC_COLOR, GL_ZERO, GL_ONE);
    _quads.draw(std::span(&all, 1));
    gl::Textures::bindToSamplerUnit(0, gl::Texture::Unit::T5, gl::Texture::Type::Tex2D);
}

} // namespace gui::draw
