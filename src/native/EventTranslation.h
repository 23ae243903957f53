#pragma once

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/TextComposition.h>
#include <gui/gl/InputTuning.h>
#include <gui/gl/port/SurfaceEvents.h>
#include <td/Export.h>
#include <td/Point.h>

#include <cstdint>
#include <initializer_list>
#include <string>

/// The arithmetic between a surface's events and the toolkit's records: pure functions.
namespace gui::gl
{

/// The OR of the events' bits.
GUIGL_API unsigned short buildEventMask(const std::initializer_list<gui::InputDevice::Event>& events);

/// What pointer tracking a view needs, as bits: 0x04 cursor updates, 0x80 always active and 0x200 over what is visible,
/// these always; 0x02 motion when the mask has CursorMove; 0x01 entering and leaving when it has CursorEnterLeave.
GUIGL_API std::uint64_t getTrackingOptions(unsigned short eventMask);

/// The record's name of a button.
GUIGL_API gui::InputDevice::Button toRecordButton(ButtonEvent::Button button);

/// Whether a wheel event zooms (Command held and dy not 0).
GUIGL_API bool isWheelZoom(const WheelEvent& event);
/// 1 + s_zoomIncrement * dy / 100, never below 0.05, so that no single event turns a model inside out.
GUIGL_API double getWheelZoomFactor(const WheelEvent& event);
/// The distance to scroll in points: (dx, dy) times s_scrollAccelleration, five times that with Option held.
GUIGL_API td::Point<double> getWheelScroll(const WheelEvent& event);
/// 1 + magnification / s_zoomGestureReduction, from 0.8 to 1.2.
GUIGL_API double getGestureZoomFactor(double magnification);

/// The record of a key that went down: virtual for the codes that zav::getVirtualKeyCode knows and for Tab, else its
/// character, else, without one, its key code shifted left by 8.
GUIGL_API gui::Key createKey(const KeyEvent& event);
/// The record of a key that went up, never virtual: its character when that is one from 1 to 127 and the key is neither
/// Escape (53) nor key 8, else its key code shifted left by 8.
GUIGL_API gui::Key createReleasedKey(const KeyEvent& event);

/// The text to insert, well-formed and without control characters; none for what a key makes with Ctrl, Alt or Super,
/// but not AltGr.
GUIGL_API std::string toTypedText(const TextEvent& event);
/// The record of a composition; characters that aren't there are counted as its end.
GUIGL_API gui::TextComposition toComposition(const CompositionEvent& event);

} // namespace gui::gl
