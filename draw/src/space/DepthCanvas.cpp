#include <gui/draw/DepthCanvas.h>

#include "Occlusion.h"
#include "ShadowMap.h"
#include "SpaceLayers.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Context.h>
#include <gui/gl/Textures.h>

#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

// Of a slice's farthest distance and its nearest: 24 bits of depth tell 10^-4 of a distance apart there.
constexpr double cSliceRatio = 2000;
constexpr double cOverlap = 1.001; // of slices, so that nothing falls between

bool hasReversedDepth()
{
    constexpr int cFirstVersion = 45;
    return gl::Context::isAtLeast(cFirstVersion, 0) ||
           epoxy_has_gl_extension(gl::Context::isES() ? "GL_EXT_clip_control" : "GL_ARB_clip_control");
}

// From the nearest slice to the farthest one.
std::vector<Eye> slicesOf(const Eye& eye)
{
    const double nearest = eye.getNearest(), farthest = eye.getFarthest();
    const double whole = std::log(farthest / nearest);
    // Without an end, and from an eye that sees nothing, there is but one.
    if (eye.getDepth() != Eye::Depth::Sliced || eye.isOrthographic() || !std::isfinite(whole))
        return {eye.getDepth() == Eye::Depth::Sliced ? eye.getBetween(nearest, farthest) : eye};
    const double n = std::max(1.0, std::ceil(whole / std::log(cSliceRatio)));
    const double ratio = std::pow(farthest / nearest, 1 / n);
    std::vector<Eye> eyes;
    double begin = nearest;
    for (int i = 1; i <= static_cast<int>(n); ++i)
    {
        const double end = nearest * std::pow(ratio, i);
        eyes.push_back(eye.getBetween(begin, i == static_cast<int>(n) ? farthest : end * cOverlap));
        begin = end;
    }
    return eyes;
}

} // namespace

DepthCanvas::DepthCanvas(Depth depth)
    : _depth(depth)
{
}

DepthCanvas::~DepthCanvas() = default;

void DepthCanvas::setDepth(Depth depth) { _depth = depth; }

void DepthCanvas::setShadows(const Shadows& shadows, const Box3& bounds)
{
    _shadows = shadows;
    _bounds = bounds;
}

void DepthCanvas::setSamples(int n)
{
    _nSamples = n;
    _framebuffer.release();
}

DepthCanvas::Depth DepthCanvas::getDepth() const
{
    if (_depth != Depth::Reversed)
        return _depth;
    const gl::CurrentContext::ID context = gl::CurrentContext::getID();
    if (context != 0 && context != _asked)
    {
        _asked = context;
        _hasClipControl = hasReversedDepth();
        if (!_hasClipControl && !_saidSliced)
            vo::dbgLog("Warning! DepthCanvas: no reversed depth here, the scene is drawn in slices");
        _saidSliced = _saidSliced || !_hasClipControl;
    }
    return _hasClipControl ? Depth::Reversed : Depth::Sliced;
}

// @return whether its own framebuffer is bound
bool DepthCanvas::begin()
{
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    const td::Size<int> size(viewport[2], viewport[3]);
    if (!_framebuffer.isOk())
    {
        using gl::DepthBuffer, gl::StencilBuffer;
        if (!_framebuffer.create(
                size,
                {.depth = DepthBuffer::Size::Bits32, .stencil = StencilBuffer::Size::Bits8, .samples = _nSamples}))
            return false;
    }
    else if (!_framebuffer.resize(size))
        return false;
    return _framebuffer.begin();
}

// Brings what was drawn to where it is seen.
void DepthCanvas::end()
{
    using gl::Context;
    _framebuffer.end();
    if (_pBuffer == nullptr)
    {
        constexpr float cCorners[] = {-1, -1, 0, 0, 3, -1, 2, 0, -1, 3, 0, 2}; // one triangle over all of it
        _pBuffer =
            std::make_unique<gl::Buffer>(std::initializer_list<gl::DataType>{gl::DataType::Vec2, gl::DataType::Vec2});
        _pBuffer->appendVertices(cCorners, 3);
        _pBuffer->createCommand()->createDrawAll(gl::Primitive::Triangles);
    }
    if (!_program.isOK() && !_program.link())
        return;
    Context::disable(Context::Flag::Blend);
    gl::Textures::bindToSamplerUnit(_framebuffer.getTextureID(), gl::Textures::Unit::T0, gl::Texture::Type::Tex2D);
    _program.draw(*_pBuffer);
}

DepthCanvas::Frame::Frame(DepthCanvas& canvas, const Eye& eye, bool isAside)
    : _canvas(canvas)
    , _pLayers(std::make_shared<SpaceLayers>(isAside ? SpaceLayers::What::Solid : SpaceLayers::What::All))
    , _eyes(slicesOf(eye))
    , _eye(eye)
    , _isReversed(eye.getDepth() == Depth::Reversed)
    , _isAside(isAside)
{
    if (_isReversed && !isAside)
        _isBound = canvas.begin();
}

// The sun's, when it casts shadows.
const Eye* DepthCanvas::Frame::beginShadows()
{
    using gl::Context;
    const Shadows& shadows = _canvas._shadows;
    if (shadows.quality == Shadows::Quality::None || _isAside || gl::CurrentContext::getID() == 0)
        return nullptr;
    if (_canvas._pShadowMap == nullptr)
        _canvas._pShadowMap = std::make_unique<ShadowMap>();
    ShadowMap& map = *_canvas._pShadowMap;
    if (!map.look(shadows, _canvas._bounds, _eye) || !map.begin())
        return nullptr;
    _isInShadows = true;
    _pLayers->setWhat(SpaceLayers::What::Shadows);
    Context::maskDepthBuffer(true);
    Context::clear(Context::Clear::Depth);
    Context::enable(Context::Flag::DepthTest);
    Context::setDepthBufferFunction(gl::DepthBuffer::Function::Less);
    _eye = map.getEye();
    _eye._pLayers = _pLayers;
    return &_eye;
}

const Eye* DepthCanvas::Frame::next()
{
    using gl::Context;
    if (!std::exchange(_hasBegun, true))
        if (const Eye* const pSun = beginShadows())
            return pSun;
    if (std::exchange(_isInShadows, false))
    {
        _canvas._pShadowMap->end();
        _pLayers->setWhat(SpaceLayers::What::All);
        _pLayers->setShadowMap(_canvas._pShadowMap.get());
    }
    else
        flush();
    if (_eyes.empty())
        return nullptr;
    _eye = _eyes.back();
    _eye._pLayers = _pLayers;
    _eyes.pop_back();
    if (_isReversed)
    {
        glClipControl(GL_LOWER_LEFT, GL_ZERO_TO_ONE);
        Context::setClearDepth(0);
    }
    Context::maskDepthBuffer(true);
    Context::clear(Context::Clear::Depth);
    Context::enable(Context::Flag::DepthTest);
    Context::setDepthBufferFunction(_eye.getNearer());
    _isDrawn = true;
    return &_eye;
}

// Where no context is any more, there is nothing to draw into.
void DepthCanvas::Frame::flush()
{
    const Shadows& shadows = _canvas._shadows;
    if (gl::CurrentContext::getID() == 0 || !std::exchange(_isDrawn, false))
        return;
    const double radius = _canvas._bounds.getRadius(), reach = shadows.reach > 0 ? shadows.reach : radius / 20;
    if (shadows.quality != Shadows::Quality::None && !_isAside && shadows.occlusion > 0 && reach > 0)
    {
        if (_canvas._pOcclusion == nullptr)
            _canvas._pOcclusion = std::make_unique<Occlusion>();
        _canvas._pOcclusion->draw(_eye, shadows, reach);
    }
    _pLayers->flush();
}

DepthCanvas::Frame::~Frame()
{
    using gl::Context;
    if (_isInShadows)
        _canvas._pShadowMap->end();
    flush();
    Context::disable(Context::Flag::DepthTest);
    if (_isReversed)
    {
        glClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
        Context::setClearDepth(1);
        Context::setDepthBufferFunction(gl::DepthBuffer::Function::Less);
    }
    if (_isBound)
        _canvas.end();
}

} // namespace gui::draw
