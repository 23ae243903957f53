#include <gui/gl/View.h>

#include "ViewHelper.h"

#include <gui/CellInfo.h>
#include <gui/Texture.h>
#include <gui/gl/Program.h>
#include <gui/gl/port/Zav.h>
#include <td/Assert.h>
#include <td/GUIThread.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <climits>
#include <utility>

namespace gui::gl
{

View::View()
    : _self(std::make_shared<View*>(this))
{
}

View::~View()
{
    zav::setAnimationMode(this, 0);
    zav::cleanOpenGLResources(this);
    release();
}

void View::createContext(const Context& context)
{
    TD_ASSERT_GUI_THREAD();
    TD_ASSERT(_handle == nullptr);
    const td::PointAndSize<double> geometry({0, 0}, {400, 400});
    const std::weak_ptr<View*> self = _self;
    gui::NativeObject* const pNative = zav::createGLView(this, &geometry, context);
    if (self.expired()) // onInit ended the view's life
        return;
    _handle = pNative;
    TD_ASSERT(_handle != nullptr);
}

void View::createContext(const Context& context, const std::initializer_list<gui::InputDevice::Event>& events,
                         const td::PointAndSize<double>* geometry)
{
    TD_ASSERT_GUI_THREAD();
    TD_ASSERT(_handle == nullptr);
    const std::weak_ptr<View*> self = _self;
    gui::NativeObject* const pNative = zav::createGLView(this, geometry, events, context);
    if (self.expired())
        return;
    _handle = pNative;
    TD_ASSERT(_handle != nullptr);
}

void View::makeCurrentContext() const
{
    TD_ASSERT_GUI_THREAD();
    zav::makeCurrentContext(this);
}

void View::reRender() const
{
    TD_ASSERT_GUI_THREAD();
    zav::reRender(this);
}

void View::startAnimation()
{
    TD_ASSERT_GUI_THREAD();
    _isContRenderMode = true;
    zav::setAnimationMode(this, 1);
}

void View::stopAnimation()
{
    TD_ASSERT_GUI_THREAD();
    _isContRenderMode = false;
    zav::setAnimationMode(this, 0);
}

void View::setCursor(gui::Cursor::Type type, bool globally) const
{
    TD_ASSERT_GUI_THREAD();
    zav::setCursor(this, type, globally);
}

void View::startTextInput() const
{
    TD_ASSERT_GUI_THREAD();
    zav::setTextInput(this, true);
}

void View::stopTextInput() const { zav::setTextInput(this, false); }

bool View::takesTextInput() const { return zav::takesTextInput(this); }

void View::setTextInputRect(const td::RectNormalized<double>& rect) const { zav::setTextInputRect(this, rect); }

void View::registerForFocusEvents() const { zav::registerForFocusEvents(this); }

std::tuple<int, int> View::getOpenGLVersion() const
{
    int minor = 0;
    const int major = zav::getOpenGLVersion(this, minor);
    return {major, minor};
}

int View::getSamples() const { return zav::getSamples(this); }

void View::getVisiblePartInModelCoordinates(td::RectNormalized<double>&) const { TD_ASSERT(false); }

void View::activateScreenFB() { glBindFramebuffer(GL_FRAMEBUFFER, _screenFB); }

unsigned int View::linkProgram(const char* vertexResID, const char* fragmentResID)
{
    return Program::_link(vertexResID, fragmentResID, nullptr, nullptr, nullptr);
}

void View::loseContext() const { zav::loseContext(this); }

void View::readFrameFrameBuffer(gui::Texture& texture, const std::function<void()>& callback)
{
    TD_ASSERT_GUI_THREAD();
    constexpr int cBytesPerPixel = 4;
    td::Size<double> size;
    getSize(size);
    const auto scale = static_cast<double>(zav::getBackingScale(this));
    const double width = size.width * scale;
    const double height = size.height * scale;
    TD_ASSERT(width <= INT_MAX && height <= INT_MAX && width * height * cBytesPerPixel <= UINT_MAX);

    _frameReadCallback = callback;
    const int pixelWidth = static_cast<int>(width);
    const int pixelHeight = static_cast<int>(height);
    gui::TextureHelper helper(&texture);
    helper.reserve(static_cast<unsigned int>(pixelWidth) * static_cast<unsigned int>(pixelHeight) * cBytesPerPixel);
    helper.updateInfo(pixelWidth, pixelHeight, cBytesPerPixel);
    texture.setOpaque(true);
    zav::setOnDrawCallback(this, &texture);
    reDraw();
}

bool View::savePicture(const char* path)
{
    TD_ASSERT_GUI_THREAD(false);
    TD_ASSERT(path != nullptr, false);
    gui::Texture picture;
    if (zav::drawInto(this, picture))
        return picture.saveToFile(path);
    vo::dbgLog("Error! View::savePicture there is no frame to save: %s", path);
    return false;
}

unsigned int View::getObjType() const
{
    constexpr unsigned int cGLView = 22;
    return cGLView;
}

void View::reMeasure(gui::CellInfo& cell) { cell = {16, 16, 1, 1}; }

void View::measure(gui::CellInfo& cell) { cell = {16, 16, 1, 1}; }

double View::getZoom() const { return 1.0; }

void View::onInit() {}

void View::cleanResources() {}

void View::onContextLost() {}

void View::onContextRestored() {}

void View::onZoomChanged() {}

void View::onOriginChanged() {}

bool View::prepareNextFrame() { return false; }

void View::setPixelHiDPISizeScale(float scale)
{
    _pixelHiDPISizeScale = scale;
    td::Size<double> size;
    getSize(size);
    if (size.width != 0 && size.height != 0)
        onResize(size);
}

void ViewHelper::sendAsyncOnFrameRead(gui::Texture* pTexture)
{
    // The callback goes with its frame: the next request may come before this one is delivered.
    _pView->_frameReadCallbacks.push_back(std::exchange(_pView->_frameReadCallback, {}));
    const std::weak_ptr<View*> self = _pView->_self;
    gui::ZavObject::asyncCall(new std::function<void()>(
                                  [self, pTexture]
                                  {
                                      // A view that is gone takes no frames any more.
                                      if (const auto pView = self.lock())
                                          prepareFrame(*pView, pTexture);
                                  }),
                              true);
}

void ViewHelper::prepareFrame(View* pView, gui::Texture*)
{
    const auto callback = std::move(pView->_frameReadCallbacks.front());
    pView->_frameReadCallbacks.pop_front();
    callback();
}

} // namespace gui::gl
