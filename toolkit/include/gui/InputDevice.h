#pragma once

#include "Key.h"

#include <td/Point.h>
#include <td/Types.h>

namespace gui
{

/// One event of a pointer, a wheel or a gesture, as views get it. Points are in points (not device pixels), with the
/// origin at the top left and y downwards.
class InputDevice
{
public:
    /// What made the event.
    enum class Type : td::BYTE
    {
        Mouse = 1,   ///< the pointer, its buttons and the wheel
        Gesture = 2, ///< magnification with two fingers
        Keyboard = 5 ///< a zoom step made with the keyboard
    };

    /// The button that the event is about.
    enum class Button : td::BYTE
    {
        None = 0,
        Primary = 1,
        Secondary = 2,
        Middle = 3,  ///< the wheel, pressed
        Back = 4,    ///< one of those at the side
        Forward = 5, ///< the other one
        Wheel = 128  ///< the wheel, turned
    };

    /// The kinds of events a view can ask for, one bit each.
    enum class Event : unsigned short
    {
        CursorEnterLeave = 0x0001,
        Reserved0002 = 0x0002,    ///< nothing acts on it
        PrimaryClicks = 0x0004,   ///< pressed, released, double-clicked
        Reserved0008 = 0x0008,    ///< nothing acts on it
        SecondaryClicks = 0x0010, ///< pressed and released
        CursorMove = 0x0020,      ///< with no button down
        CursorDrag = 0x0040,      ///< with the primary button down
        ScrollAndZoom = 0x0080,   ///< the wheel, zooming with the wheel, the magnification gesture
        Keyboard = 0x0100,        ///< keys pressed and released, and keyboard focus
        OtherClicks = 0x0200,     ///< pressed and released: the middle button and those at the side
        OtherDrag = 0x0400,       ///< with a button down that is not the primary one
        Drops = 0x0800            ///< files and text that are dropped; see DrawableView::onDropped
    };

    /// @param framePoint    position in the view's own coordinates; for the wheel the scroll distance instead
    /// @param contentPoint  position in the coordinates of the view's content; the frame point again in views that have
    ///                      no content of their own, all of them here
    /// @param windowPoint   position in the window's coordinates
    /// @param modifiers     mask of KeyModifier bits; the Ctrl key is Cmd
    InputDevice(const td::Point<double>& framePoint, const td::Point<double>& contentPoint,
                const td::Point<double>& windowPoint, unsigned int modifiers, Type type, Button button)
        : _framePoint(framePoint)
        , _place(framePoint)
        , _contentPoint(contentPoint)
        , _windowPoint(windowPoint)
        , _modifiers(modifiers)
        , _type(type)
        , _button(button)
    {
    }

    const td::Point<double>& getFramePoint() const { return _framePoint; }
    /// Where the pointer is in the view's own coordinates: the frame point, but in a record of the wheel's distance.
    const td::Point<double>& getPlace() const { return _place; }
    const td::Point<double>& getContentPoint() const { return _contentPoint; }
    const td::Point<double>& getWindowPoint() const { return _windowPoint; }
    Type getType() const { return _type; }
    Button getButton() const { return _button; }

    /// How many clicks in a row this one makes; 1 for everything that is no click.
    unsigned short getNoOfEvents() const { return _nEvents; }

    /// The zoom step as a factor: above 1 enlarges. 1 for everything that does not zoom.
    double getScale() const { return _scale; }

    unsigned int getKeyboardModifiers() const { return _modifiers; }
    bool isAnyModifierPressed() const { return _modifiers != 0; }

    /// The modifiers as a key that has nothing else: code and count are 0.
    Key getKey() const { return Key(0, _modifiers, 0, 0); }

    /// The step of zooming with the keyboard: enlarging multiplies by 1 plus this, reducing divides by it. It is 0.1.
    static constexpr double getDefaultZoomIncrement() { return 0.1; }

private:
    friend class InputDeviceHelper;

    void setNoOfEvents(unsigned short nEvents) { _nEvents = nEvents; }
    void setScale(double scale) { _scale = scale; }
    void setPlace(const td::Point<double>& place) { _place = place; }

    td::Point<double> _framePoint;
    td::Point<double> _place;
    td::Point<double> _contentPoint;
    td::Point<double> _windowPoint;
    double _scale = 1;
    unsigned int _modifiers;
    unsigned short _nEvents = 1;
    Type _type;
    Button _button;
};

/// Completes event records, for those who translate the window system's events.
class InputDeviceHelper
{
public:
    explicit InputDeviceHelper(InputDevice* pDevice)
        : _pDevice(pDevice)
    {
    }

    void setNoOfEvents(unsigned short nEvents) { _pDevice->setNoOfEvents(nEvents); }
    void setScale(double scale) { _pDevice->setScale(scale); }
    void setPlace(const td::Point<double>& place) { _pDevice->setPlace(place); }

private:
    InputDevice* _pDevice;
};

} // namespace gui
