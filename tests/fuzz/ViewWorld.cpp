#include "Views.h"

#include <gui/draw/Drawing.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/OffscreenContext.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace fuzz::views
{

using namespace gui::gl;

namespace
{

constexpr int cPixels = 64;
constexpr double cMostPixels = 3e5; // that are drawn

// It stays, as the driver does.
OffscreenContext& theContext()
{
    static auto* s_pContext = new OffscreenContext(
        {cPixels, cPixels}, Context(DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41));
    return *s_pContext;
}

} // namespace

/// What a window system knows of a view.
struct ViewWorld::Desk
{
    SharedClient pClient = std::make_shared<NativeSurfaceClient*>(nullptr);
    td::Size<double> size{60, 40};
    float scale = 1;
    unsigned int nRequests = 0;
    bool hasClock = false;
    gui::Cursor::Type cursor = gui::Cursor::Type::Default;
};

class ViewWorld::Surface : public NativeSurface
{
public:
    Surface(Desk& desk, NativeSurfaceClient& client)
        : _desk(desk)
    {
        *desk.pClient = &client;
    }
    ~Surface() override
    {
        *_desk.pClient = nullptr;
        _desk.hasClock = false;
    }
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    bool makeCurrent() override { return theContext().makeCurrent(); }
    void flush() override {}
    td::Size<double> getSize() const override { return _desk.size; }
    float getBackingScale() const override { return _desk.scale; }
    td::Size<int> getDrawableSize() const override
    {
        const double scale = _desk.scale > 0 && _desk.scale <= 4 ? static_cast<double>(_desk.scale) : 1;
        return {static_cast<int>(_desk.size.width * scale), static_cast<int>(_desk.size.height * scale)};
    }
    unsigned int getDefaultFramebuffer() const override { return theContext().getDefaultFramebuffer(); }
    void setNeedsDisplay() override { ++_desk.nRequests; }
    void setCursor(gui::Cursor::Type type) override { _desk.cursor = type; }
    void startFrameClock(float, float) override { _desk.hasClock = true; }
    void stopFrameClock() override { _desk.hasClock = false; }

private:
    Desk& _desk;
};

ViewWorld::ViewWorld(Input& input)
    : Careless(input, 64, 24)
    , _pDesk(std::make_unique<Desk>())
    , _pOtherDesk(std::make_unique<Desk>())
    , _scope(
          [this](NativeSurfaceClient& client, const PixelFormat&, const td::Size<double>&)
          {
              Desk& desk = std::exchange(_hasFirst, true) ? *_pOtherDesk : *_pDesk;
              return std::make_unique<Surface>(desk, client);
          })
{
    theContext().makeCurrent();
    glViewport(0, 0, cPixels, cPixels);
    // Programs that drawings share take longer to link than an input to draw.
    static auto* s_pDrawing = new gui::draw::Drawing;
    s_pDrawing->draw(gui::draw::Affine());
}

ViewWorld::~ViewWorld() = default;

NativeSurfaceClient* ViewWorld::client() const { return *_pDesk->pClient; }

Point ViewWorld::takePoint()
{
    const double x = takeNumber();
    return {x, takeNumber()};
}

Point ViewWorld::takePlace()
{
    if (_input.below(12) == 1)
        return takePoint();
    const double x = _input.below(80);
    return {x - 10, _input.below(60) - 10.0};
}

td::RectNormalized<double> ViewWorld::takeRect()
{
    const Point a = takePoint(), b = takePoint();
    td::RectNormalized<double> rect(a, b);
    if (_input.below(16) == 1)
        std::swap(rect.left, rect.right);
    return rect;
}

void ViewWorld::live()
{
    while (_input.left() > 0)
    {
        act();
        checkView();
    }
    comeToRest();
}

void ViewWorld::hear()
{
    if (_isAtRest || _depth > 2 || _input.below(6) != 1)
        return;
    ++_nActs;
    ++_depth;
    takeBool() ? changeView() : act();
    --_depth;
}

void ViewWorld::act()
{
    switch (_input.below(16))
    {
    case 0:
    case 1:
        return useButton();
    case 2:
    case 3:
    case 4:
        return useMotion();
    case 5:
        return useWheel();
    case 6:
        return useFingers();
    case 7:
        return useKey();
    case 8:
        return type();
    case 9:
        return useWindow();
    case 10:
    case 11:
        return draw();
    default:
        changeView();
    }
}

void ViewWorld::changeView()
{
    View& it = view();
    switch (_input.below(24))
    {
    case 0:
        return it.startAnimation();
    case 1:
        return it.stopAnimation();
    case 2:
        return it.startTextInput();
    case 3:
        _isComposing = false; // without another word
        return it.stopTextInput();
    case 4:
        return it.setTextInputRect(takeRect());
    case 5:
        return it.registerForFocusEvents();
    case 6:
    {
        const double scale = takeNumber();
        expect(it.getHandle() != nullptr && !(scale > 0 && std::isfinite(scale)));
        return zav::setScale(&it, scale);
    }
    case 7:
        return zav::resetScaling(&it);
    case 8:
        return it.reRender();
    default:
        change();
    }
}

template <typename Say>
void ViewWorld::tell(bool isFinite, const Say& say)
{
    if (client() == nullptr)
        return;
    const unsigned int nActs = _nActs;
    const std::vector<double> before = where();
    say();
    require(isFinite || !isUntouched(nActs) || where() == before, "what has numbers that are none changes nothing");
}

void ViewWorld::useButton()
{
    const auto button = static_cast<ButtonEvent::Button>(_input.below(8) % 5);
    const bool isDown = takeBool();
    const ButtonEvent event{button,
                            isDown,
                            isDown ? button == ButtonEvent::Button::Left || takeBool() : _input.below(4) == 1,
                            static_cast<unsigned short>(1 + _input.below(3)),
                            takeModifiers(),
                            takePlace()};
    // What was moved finely may be thrown at a place that is none.
    tell(!isDown || isFinite(event.point), [&] { client()->onButton(event); });
}

void ViewWorld::useMotion()
{
    using Kind = MotionEvent::Kind;
    constexpr std::array cKinds{Kind::Dragged, Kind::Dragged, Kind::OtherDragged,
                                Kind::Moved,   Kind::Entered, Kind::Exited};
    const MotionEvent event{cKinds[_input.below(cKinds.size())], takeModifiers(), takePlace(),
                            static_cast<ButtonEvent::Button>(1 + _input.below(4))};
    tell(isFinite(event.point), [&] { client()->onMotion(event); });
}

void ViewWorld::useWheel()
{
    const bool isFine = takeBool();
    WheelEvent event{0, 0, takeModifiers(), takePlace()};
    event.dx = isFine ? takeNumber() : 10.0 * _input.below(3) - 10;
    event.dy = isFine ? takeNumber() : 10.0 * _input.below(5) - 20;
    // As a zoom it has one of the numbers that there may be.
    const bool isZoom = gui::isCmdPressed(event.modifiers);
    tell(isZoom || (std::isfinite(event.dx) && std::isfinite(event.dy)), [&] { client()->onWheel(event); });
}

void ViewWorld::useFingers()
{
    if (client() == nullptr)
        return;
    if (takeBool())
        return client()->onMagnification({takeNumber(), takeModifiers()});
    std::array<Point, 3> fingers;
    const std::size_t n = _input.below(4);
    for (std::size_t i = 0; i < n; ++i)
        fingers[i] = takePlace();
    const SharedClient pClient = _pDesk->pClient;
    _fingers.change({fingers.data(), n}, takeModifiers(), pClient);
}

void ViewWorld::useKey()
{
    if (client() == nullptr)
        return;
    constexpr char cCharacters[] = "+-=01234567pwasdWASD"; // of 'w' and 'W' the key is one
    constexpr std::array<unsigned short, 8> cCodes{123, 124, 125, 126, 115, 53, 69, 78}; // those that stand for nothing
    const unsigned int which = _input.below(4 * std::size(cCharacters));
    KeyEvent event{takeBool(), static_cast<unsigned short>(128 + which), 0, takeModifiers()};
    if (which < std::size(cCharacters))
    {
        event.character = static_cast<unsigned char>(cCharacters[which]);
        event.keyCode = static_cast<unsigned short>(128 + (event.character & 31U) + (event.character < 64 ? 32 : 0));
    }
    else if (which < 3 * std::size(cCharacters))
        event.keyCode = cCodes[which % cCodes.size()];
    else
        event.keyCode = static_cast<unsigned short>(_input.below(128));
    _held.erase(event.keyCode);
    if (event.isDown)
        _held.insert(event.keyCode);
    client()->onKey(event);
}

void ViewWorld::type()
{
    if (client() == nullptr)
        return;
    const std::string text = _input.text(_input.below(6));
    switch (_input.below(4))
    {
    case 0:
        return client()->onDrop({{text}, text, takeModifiers(), takePlace()});
    case 1:
        _isComposing = false; // which text ends
        return client()->onText({text, takeModifiers()});
    default:
        client()->onComposition({text, _input.below(8), _input.below(8)});
    }
}

// Where keys go up from then on is not heard.
void ViewWorld::loseFocus(bool isHidden)
{
    const unsigned int nActs = _nActs, nReleases = _nReleases;
    const std::size_t nHeld = std::exchange(_held, {}).size();
    if (isHidden)
        client()->leftWindow();
    if (client() != nullptr)
        client()->onFocus(false);
    // In a handler the view may be closed already, or about to let go.
    if (_depth > 0 || !isUntouched(nActs))
        return;
    require(_nReleases == nReleases + nHeld, "no key is held any more");
    require(!_isComposing, "nothing is composed any more");
}

void ViewWorld::useWindow()
{
    if (client() == nullptr)
        return;
    constexpr float cNaN = std::numeric_limits<float>::quiet_NaN(), cInfinity = std::numeric_limits<float>::infinity();
    constexpr std::array cScales{1.F, 1.25F, 2.F, 1.F, 0.F, -1.F, cNaN, cInfinity, 1e30F, 1e-30F};
    const std::array<td::Size<double>, 9> cSizes{
        {{60, 40}, {300, 200}, {400, 400}, {0, 0}, {0, 40}, {1, 1}, {20000, 3}, {1e6, 1e6}, {0.5, 1e9}}};
    switch (_input.below(12))
    {
    case 0:
        return client()->enteredWindow();
    case 1:
        return loseFocus(true);
    case 2:
        return client()->onFocus(true);
    case 3:
        return loseFocus(false);
    case 4:
        _pDesk->scale = cScales[_input.below(cScales.size())];
        return takeBool() ? client()->scaleChanged() : void(); // or it is told later
    case 5:
        if (!takeBool())
            return loseFocus(true);
        return _input.below(8) == 1 ? view().release() : client()->windowClosed();
    default:
        // In the midst of a frame it would be drawn at that size.
        _pDesk->size = cSizes[_input.below(_depth > 0 ? 6 : 9)];
        return _input.below(4) == 1 ? void() : client()->sizeChanged();
    }
}

void ViewWorld::draw()
{
    const td::Size<double>& size = _pDesk->size;
    if (client() == nullptr)
        return;
    // The view may have been told of another size.
    std::array<GLint, 4> viewport{};
    theContext().makeCurrent();
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    if (std::max(size.width * size.height, 1.0 * viewport[2] * viewport[3]) > cMostPixels)
        return;
    _pDesk->hasClock ? client()->onFrameTick() : client()->drawNow();
    theContext().makeCurrent();
    require(glGetError() == GL_NO_ERROR, "GL has no error");
}

void ViewWorld::checkView()
{
    require(_quiet.nAsserts == _nMisuses, "an assertion is for what its header calls misuse");
    for (const double number : where())
        require(std::isfinite(number), "a view shows what is somewhere");
    check();
}

void ViewWorld::comeToRest()
{
    _isAtRest = true;
    if (client() == nullptr)
        return;
    zav::resetScaling(&view());
    _pDesk->size = {60, 40};
    _pDesk->scale = 1;
    client()->sizeChanged();
    client()->scaleChanged();
    client()->enteredWindow();
    loseFocus(false);
    // Whatever was pressed was let go elsewhere.
    client()->onMotion({MotionEvent::Kind::Moved, 0, {10, 10}});
    draw();
    stop();
    for (int i = 0; i < 2; ++i)
        draw();
    require(!_pDesk->hasClock, "what rests has no clock");
    require(_pDesk->cursor == gui::Cursor::Type::Default, "the pointer looks as ever");
    const std::vector<double> before = where();
    client()->onMotion({MotionEvent::Kind::Dragged, 0, {30, 25}});
    for (const ButtonEvent::Button button : {ButtonEvent::Button::Right, ButtonEvent::Button::Middle})
        client()->onMotion({MotionEvent::Kind::OtherDragged, 0, {35, 5}, button});
    require(where() == before, "what nobody holds moves nothing");
    client()->onMotion({MotionEvent::Kind::Moved, 0, {12, 10}});
    draw();
    _pDesk->nRequests = 0;
    draw();
    require(_pDesk->nRequests == 0 && !_pDesk->hasClock, "what rests asks for no frame");
    checkView();
}

} // namespace fuzz::views
