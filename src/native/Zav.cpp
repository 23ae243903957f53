#include <gui/gl/port/Zav.h>

#include "EventTranslation.h"
#include "GLView.h"
#include "Surfaces.h"

#include <gui/Display.h>
#include <gui/gl/View.h>
#include <td/Assert.h>

#include <utility>

namespace zav
{

namespace
{

using gui::gl::GLView;

GLView* bridgeCast(gui::NativeObject* pHandle)
{
    auto* const pNative = dynamic_cast<GLView*>(pHandle);
    if (pNative == nullptr)
        TD_ASSERT(false, nullptr);
    return pNative;
}

// @return null when the view has no native view
GLView* nativeView(const gui::gl::View* pView)
{
    gui::NativeObject* const pHandle = pView->getHandle();
    return pHandle != nullptr ? bridgeCast(pHandle) : nullptr;
}

gui::gl::SurfaceFactory s_makeSurface; // a host's

gui::gl::SurfaceFactory surfaceFactory() { return s_makeSurface ? s_makeSurface : gui::gl::getSurfaceFactory(); }

} // namespace

SurfaceScope::SurfaceScope(gui::gl::SurfaceFactory makeSurface)
    : _before(std::exchange(s_makeSurface, std::move(makeSurface)))
{
}

SurfaceScope::~SurfaceScope() { s_makeSurface = std::move(_before); }

gui::NativeObject* createGLView(gui::gl::View* pView, const td::PointAndSize<double>* pGeometry,
                                const gui::gl::Context& context)
{
    return GLView::createView(pView, pGeometry, 0, context, surfaceFactory());
}

gui::NativeObject* createGLView(gui::gl::View* pView, const td::PointAndSize<double>* pGeometry,
                                const std::initializer_list<gui::InputDevice::Event>& events,
                                const gui::gl::Context& context)
{
    return GLView::createView(pView, pGeometry, gui::gl::buildEventMask(events), context, surfaceFactory());
}

gui::gl::NativeSurfaceClient* createGLView(gui::gl::View* pView, const td::PointAndSize<double>* pGeometry,
                                           const std::initializer_list<gui::InputDevice::Event>& events,
                                           const gui::gl::Context& context, const gui::gl::SurfaceFactory& makeSurface)
{
    return GLView::createView(pView, pGeometry, gui::gl::buildEventMask(events), context, makeSurface);
}

void makeCurrentContext(const gui::gl::View* pView)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->makeCurrentContext();
}

void loseContext(const gui::gl::View* pView)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->loseContext();
}

void reRender(const gui::gl::View* pView)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->reDraw();
}

void setAnimationMode(gui::gl::View* pView, unsigned char mode)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->setContinuousMode(mode != 0);
}

void cleanOpenGLResources(gui::gl::View* pView)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->cleanResources();
}

int getOpenGLVersion(const gui::gl::View* pView, int& minor)
{
    minor = 0;
    GLView* const pNative = nativeView(pView);
    return pNative != nullptr ? pNative->getOpenGLVersion(minor) : 0;
}

int getSamples(const gui::gl::View* pView)
{
    GLView* const pNative = nativeView(pView);
    return pNative != nullptr ? pNative->getSamples() : 0;
}

void setCursor(const gui::gl::View* pView, gui::Cursor::Type type, bool globally)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->setCursor(type, globally);
}

void* getCursor(gui::Cursor::Type type) { return gui::gl::getNativeCursor(type); }

void setTextInput(const gui::gl::View* pView, bool isOn)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->setTextInput(isOn);
}

bool takesTextInput(const gui::gl::View* pView)
{
    const GLView* const pNative = nativeView(pView);
    return pNative != nullptr && pNative->takesTextInput();
}

void setTextInputRect(const gui::gl::View* pView, const td::RectNormalized<double>& rect)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->setTextInputRect(rect);
}

void registerForFocusEvents(const gui::gl::View* pView)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->registerFocusEvents();
}

void setOnDrawCallback(gui::gl::View* pView, gui::Texture* pTexture)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->setGrabFrameBuffer(pTexture);
}

float getBackingScale(const gui::gl::View* pView)
{
    const GLView* const pNative = nativeView(pView);
    return pNative != nullptr ? pNative->getBackingScale() : gui::Display::getDefaultBackingScaleFactor();
}

bool drawInto(gui::gl::View* pView, gui::Texture& picture)
{
    GLView* const pNative = nativeView(pView);
    return pNative != nullptr && pNative->drawInto(picture);
}

double getScale(const gui::gl::View* pView)
{
    const GLView* const pNative = nativeView(pView);
    return pNative != nullptr ? pNative->getScale() : 1;
}

void setScale(gui::gl::View* pView, double scale)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->setScale(scale);
}

void resetScaling(gui::gl::View* pView)
{
    if (GLView* const pNative = nativeView(pView))
        pNative->resetScaling();
}

void printMe(const gui::gl::View* pView)
{
    if (const GLView* const pNative = nativeView(pView))
        pNative->printMe();
}

void printMeToPDF(const gui::gl::View* pView, const char* fileName)
{
    if (const GLView* const pNative = nativeView(pView))
        pNative->printMeToPDF(fileName);
}

} // namespace zav
