#include <gui/gl/OffscreenContext.h>

#include "../capture/Capture.h"
#include "../context/FrameReader.h"
#include "../context/ResetStatus.h"

#include <gui/Texture.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/Framebuffer.h>
#include <gui/port/WindowSystem.h>
#include <vo/Log.h>

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <array>
#include <atomic>
#include <utility>
#include <vector>

namespace gui::gl
{

namespace
{

EGLDisplay initialised(EGLDisplay display)
{
    return display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr) ? display : EGL_NO_DISPLAY;
}

EGLDisplay openSurfacelessDisplay()
{
    if (!epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless"))
        return EGL_NO_DISPLAY;
    return initialised(eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr));
}

EGLDisplay openDeviceDisplay()
{
    if (!epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_EXT_platform_device") ||
        !epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_EXT_device_enumeration"))
        return EGL_NO_DISPLAY;
    std::array<EGLDeviceEXT, 16> devices{};
    EGLint nDevices = 0;
    if (!eglQueryDevicesEXT(static_cast<EGLint>(devices.size()), devices.data(), &nDevices))
        return EGL_NO_DISPLAY;
    for (EGLint i = 0; i < nDevices; ++i)
    {
        const EGLDisplay display =
            initialised(eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, devices[std::size_t(i)], nullptr));
        if (display != EGL_NO_DISPLAY)
            return display;
    }
    return EGL_NO_DISPLAY;
}

// One display for the process, kept to its end: drivers do not take well to being unloaded and loaded again.
EGLDisplay theDisplay()
{
    static const EGLDisplay display = []
    {
        if (!epoxy_has_egl())
            return EGLDisplay(EGL_NO_DISPLAY);
        const EGLDisplay surfaceless = openSurfacelessDisplay();
        return surfaceless != EGL_NO_DISPLAY ? surfaceless : openDeviceDisplay();
    }();
    return display;
}

// Of EGL's APIs, the thread's choice decides what eglCreateContext makes; somebody else may have chosen since.
void bindAPI(bool isES) { eglBindAPI(isES ? EGL_OPENGL_ES_API : EGL_OPENGL_API); }

// @return null when the system has no such configuration
EGLConfig findConfig(EGLDisplay display, const PixelFormatSizes& sizes)
{
    const EGLint channelBits = sizes.colorBits / 3;
    const EGLint renderable = sizes.isES ? EGL_OPENGL_ES3_BIT : EGL_OPENGL_BIT;
    const EGLint attributes[] = {
        EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, renderable,        EGL_RED_SIZE,   channelBits,
        EGL_GREEN_SIZE,   channelBits,     EGL_BLUE_SIZE,       channelBits,       EGL_ALPHA_SIZE, sizes.alphaBits,
        EGL_DEPTH_SIZE,   sizes.depthBits, EGL_STENCIL_SIZE,    sizes.stencilBits, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint nConfigs = 0;
    if (!eglChooseConfig(display, attributes, &config, 1, &nConfigs) || nConfigs < 1)
        return nullptr;
    return config;
}

// @param got  as asked at first, as it is to be had afterwards
EGLConfig findConfigInSteps(EGLDisplay display, const PixelFormatSizes& asked, PixelFormatSizes& got)
{
    got = asked;
    do
    {
        EGLConfig config = findConfig(display, got);
        if (config == nullptr)
            continue;
        if (got.depthBits != asked.depthBits || got.stencilBits != asked.stencilBits)
            vo::dbgLog("Warning! OffscreenContext asked for %d depth and %d stencil bits, got %d and %d",
                       asked.depthBits, asked.stencilBits, got.depthBits, got.stencilBits);
        return config;
    } while (fallBack(got));
    vo::dbgLog("ERROR! OffscreenContext cannot find a configuration with %d colour, %d alpha, %d depth and %d "
               "stencil bits; EGL %s offers none",
               asked.colorBits, asked.alphaBits, asked.depthBits, asked.stencilBits,
               eglQueryString(display, EGL_VERSION));
    return nullptr;
}

constexpr int cEGLWithDebug = 15;

EGLContext tryToCreateContext(EGLDisplay display, EGLConfig config, const PixelFormatSizes& sizes, bool debug)
{
    std::vector<EGLint> attributes;
    const auto add = [&attributes](EGLint name, EGLint value)
    {
        attributes.push_back(name);
        attributes.push_back(value);
    };
    add(EGL_CONTEXT_MAJOR_VERSION, sizes.is41 ? 4 : 3);
    add(EGL_CONTEXT_MINOR_VERSION, sizes.is41 || sizes.isES ? 1 : 2);
    // OpenGL ES has no profiles.
    if (!sizes.isES)
        add(EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT);
    // EGL 1.4 knows debug contexts by a flag alone, and refuses the attribute whatever its value.
    if (debug && epoxy_egl_version(display) >= cEGLWithDebug)
        add(EGL_CONTEXT_OPENGL_DEBUG, EGL_TRUE);
    else if (debug)
        add(EGL_CONTEXT_FLAGS_KHR, EGL_CONTEXT_OPENGL_DEBUG_BIT_KHR);
    // What tells of resets comes last: not every driver has it.
    add(EGL_CONTEXT_OPENGL_RESET_NOTIFICATION_STRATEGY, EGL_LOSE_CONTEXT_ON_RESET);
    attributes.push_back(EGL_NONE);
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, attributes.data());
    if (context == EGL_NO_CONTEXT)
    {
        attributes[attributes.size() - 3] = EGL_NONE;
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, attributes.data());
    }
    return context;
}

// @param sizes  as asked for; of OpenGL 3.2 afterwards if that is all there is
EGLContext createContext(EGLDisplay display, EGLConfig config, PixelFormatSizes& sizes, bool debug)
{
    bindAPI(sizes.isES);
    EGLContext context = tryToCreateContext(display, config, sizes, debug);
    const EGLint error = eglGetError();
    if (PixelFormatSizes older = sizes; context == EGL_NO_CONTEXT && fallBackVersion(older))
    {
        context = tryToCreateContext(display, config, older, debug);
        if (context != EGL_NO_CONTEXT)
        {
            // Once: it is the same for every context.
            static std::atomic<bool> s_isSaid = false;
            if (!s_isSaid.exchange(true))
                vo::dbgLog("Warning! OffscreenContext asked for %s, got %s", nameOfOpenGL(sizes), nameOfOpenGL(older));
            sizes = older;
        }
    }
    if (context == EGL_NO_CONTEXT)
        vo::dbgLog("ERROR! OffscreenContext cannot create an %s context (EGL error %x)", nameOfOpenGL(sizes), error);
    return context;
}

EGLSurface createSurface(EGLDisplay display, EGLConfig config, const td::Size<int>& size)
{
    if (size.width < 1 || size.height < 1)
    {
        vo::dbgLog("Error! OffscreenContext with a size of %d x %d pixels", size.width, size.height);
        return EGL_NO_SURFACE;
    }
    const EGLint attributes[] = {EGL_WIDTH, size.width, EGL_HEIGHT, size.height, EGL_NONE};
    const EGLSurface surface = eglCreatePbufferSurface(display, config, attributes);
    if (surface == EGL_NO_SURFACE)
        vo::dbgLog("ERROR! OffscreenContext cannot create a surface of %d x %d pixels (EGL error %x)", size.width,
                   size.height, eglGetError());
    return surface;
}

// The one that was made current last, until it is left.
EGLContext s_lastCurrent = EGL_NO_CONTEXT;

} // namespace

struct OffscreenContext::Impl
{
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLConfig config = nullptr;
    EGLContext context = EGL_NO_CONTEXT;
    EGLSurface surface = EGL_NO_SURFACE;
    CurrentContext::ID id = 0; // of the context
    PixelFormatSizes sizes{};  // as asked for, of the OpenGL that there is
    bool isDebugged = false;
    td::Size<int> size;
    // Of several samples, drawn into in the place of the surface: Mesa 25 offers surfaces with several samples that
    // stay empty.
    Framebuffer framebuffer;
    int nSamples = 1;
    bool isGone = false; // for good
    bool isLost = false; // it could not be made current, and the log says so

    Impl() = default;
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl();

    bool create(const td::Size<int>& newSize, const PixelFormatSizes& asked, bool debug);
    bool makeCurrent(EGLSurface newSurface);
    bool replace();
    void destroyContext();
    void addSamples(const PixelFormatSizes& asked, const PixelFormatSizes& got);
    bool resizeFramebuffer(const td::Size<int>& newSize);
};

void OffscreenContext::Impl::destroyContext()
{
    if (context == EGL_NO_CONTEXT)
        return;
    if (eglGetCurrentContext() == context)
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    CurrentContext::died(context);
    if (s_lastCurrent == context)
        s_lastCurrent = EGL_NO_CONTEXT;
    eglDestroyContext(display, std::exchange(context, EGL_NO_CONTEXT));
}

bool OffscreenContext::Impl::replace()
{
    if (context != EGL_NO_CONTEXT && makeCurrent(surface) && !(tellsResets() && isReset()))
        CurrentContext::retire();
    destroyContext();
    context = gl::createContext(display, config, sizes, isDebugged);
    const CurrentContext::ID lost = id;
    if (context == EGL_NO_CONTEXT || !makeCurrent(surface))
        return false;
    id = CurrentContext::getID();
    isGone = false;
    CurrentContext::restoreFrom(lost);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer.getID());
    glViewport(0, 0, size.width, size.height);
    Capture::beginFrame();
    return true;
}

OffscreenContext::Impl::~Impl()
{
    destroyContext();
    if (surface != EGL_NO_SURFACE)
        eglDestroySurface(display, surface);
}

bool OffscreenContext::Impl::create(const td::Size<int>& newSize, const PixelFormatSizes& asked, bool debug)
{
    display = theDisplay();
    if (display == EGL_NO_DISPLAY)
    {
        vo::dbgLog("ERROR! OffscreenContext needs EGL with a surfaceless or a device platform, and there is none");
        return false;
    }
    sizes = asked;
    bindAPI(sizes.isES);
    PixelFormatSizes got = sizes;
    config = findConfigInSteps(display, sizes, got);
    if (config == nullptr)
        return false;
    surface = createSurface(display, config, newSize);
    if (surface == EGL_NO_SURFACE)
        return false;
    context = createContext(display, config, sizes, debug);
    if (context == EGL_NO_CONTEXT)
        return false;
    size = newSize;
    if (!makeCurrent(surface))
        return false;
    id = CurrentContext::getID();
    isDebugged = debug;
    addSamples(sizes, got);
    Capture::beginFrame();
    return true;
}

void OffscreenContext::Impl::addSamples(const PixelFormatSizes& asked, const PixelFormatSizes& got)
{
    if (asked.nSamples <= 1)
        return;
    constexpr int cMediumBits = 24;
    constexpr int cSmallBits = 16;
    using Depth = DepthBuffer::Size;
    const Depth depth = got.depthBits > cMediumBits  ? Depth::Bits32
                        : got.depthBits > cSmallBits ? Depth::Bits24
                        : got.depthBits > 0          ? Depth::Bits16
                                                     : Depth::None;
    const auto stencil = got.stencilBits > 0 ? StencilBuffer::Size::Bits8 : StencilBuffer::Size::None;
    if (!framebuffer.create(size, {.depth = depth, .stencil = stencil, .samples = asked.nSamples}))
        return;
    nSamples = framebuffer.getSamples();
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer.getID());
}

bool OffscreenContext::Impl::resizeFramebuffer(const td::Size<int>& newSize)
{
    if (!framebuffer.isOk())
        return true;
    GLint bound = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &bound);
    const bool isBound = static_cast<GLuint>(bound) == framebuffer.getID();
    if (!framebuffer.resize(newSize))
        return false;
    if (isBound)
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer.getID());
    return true;
}

bool OffscreenContext::Impl::makeCurrent(EGLSurface newSurface)
{
    bindAPI(sizes.isES);
    if (context == EGL_NO_CONTEXT)
        return false;
    // Making a context current again costs a flush.
    const bool isCurrent = eglGetCurrentContext() == context && eglGetCurrentSurface(EGL_DRAW) == newSurface;
    if (!isCurrent)
        WindowSystem::leaveHostsContexts();
    if (!isCurrent && !eglMakeCurrent(display, newSurface, newSurface, context))
    {
        // Once, and not for every frame and event of a view whose context is lost.
        const EGLint error = eglGetError();
        isGone = isGone || error == EGL_CONTEXT_LOST;
        if (!std::exchange(isLost, true))
            vo::dbgLog("ERROR! OffscreenContext cannot be made current (EGL error %x)", error);
        return false;
    }
    isLost = false;
    s_lastCurrent = context;
    CurrentContext::set(context);
    return true;
}

void OffscreenContext::leave()
{
    const EGLContext last = std::exchange(s_lastCurrent, EGL_NO_CONTEXT);
    if (last == EGL_NO_CONTEXT || eglGetCurrentContext() != last)
        return;
    eglMakeCurrent(theDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    CurrentContext::set(nullptr);
}

OffscreenContext::OffscreenContext(const td::Size<int>& size, const Context& settings, bool debug)
    : OffscreenContext(size, requestPixelFormat(settings), debug)
{
}

OffscreenContext::OffscreenContext(const td::Size<int>& size, const PixelFormat& format, bool debug)
{
    auto pImpl = std::make_unique<Impl>();
    if (pImpl->create(size, decodePixelFormat(format), debug))
        _pImpl = std::move(pImpl);
}

OffscreenContext::~OffscreenContext() = default;

bool OffscreenContext::isOk() const { return _pImpl != nullptr; }

td::Size<int> OffscreenContext::getSize() const { return isOk() ? _pImpl->size : td::Size<int>(); }

int OffscreenContext::getSamples() const { return isOk() ? _pImpl->nSamples : 0; }

unsigned int OffscreenContext::getDefaultFramebuffer() const { return isOk() ? _pImpl->framebuffer.getID() : 0; }

bool OffscreenContext::makeCurrent() { return isOk() && _pImpl->makeCurrent(_pImpl->surface); }

bool OffscreenContext::isLost()
{
    if (!isOk())
        return false;
    if (!_pImpl->makeCurrent(_pImpl->surface))
        return _pImpl->isGone;
    return tellsResets() && isReset();
}

bool OffscreenContext::isGone() const { return isOk() && _pImpl->isGone; }

bool OffscreenContext::replace() { return isOk() && _pImpl->replace(); }

bool OffscreenContext::resize(const td::Size<int>& size)
{
    if (!isOk())
        return false;
    const EGLSurface surface = createSurface(_pImpl->display, _pImpl->config, size);
    if (surface == EGL_NO_SURFACE)
        return false;
    if (!_pImpl->makeCurrent(surface) || !_pImpl->resizeFramebuffer(size))
    {
        _pImpl->makeCurrent(_pImpl->surface);
        eglDestroySurface(_pImpl->display, surface);
        return false;
    }
    eglDestroySurface(_pImpl->display, _pImpl->surface);
    _pImpl->surface = surface;
    _pImpl->size = size;
    glViewport(0, 0, size.width, size.height);
    return true;
}

bool OffscreenContext::readPixels(gui::Texture& picture)
{
    if (!makeCurrent())
    {
        vo::dbgLog("Error! OffscreenContext::readPixels without a context");
        return false;
    }
    Capture::endFrame(getDefaultFramebuffer(), _pImpl->size);
    const bool isRead = readFrame(getDefaultFramebuffer(), _pImpl->size, picture);
    Capture::beginFrame();
    return isRead;
}

bool OffscreenContext::savePicture(const char* path)
{
    gui::Texture picture;
    return readPixels(picture) && picture.saveToFile(path);
}

} // namespace gui::gl
