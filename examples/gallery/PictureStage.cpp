#include "PictureStage.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/Texture.h>

#include <cmath>
#include <utility>

namespace gallery
{

void PictureStage::grab(gui::Texture& image, const std::function<void()>& callback)
{
    _pImage = &image;
    _callback = callback;
}

void PictureStage::play(Scene& scene, const td::Size<double>& size)
{
    using gui::InputDevice, gui::Key;
    using Button = InputDevice::Button;
    const auto modifiers =
        static_cast<unsigned int>(gui::KeyModifier::Shift) | static_cast<unsigned int>(gui::KeyModifier::Cmd);
    const auto send = [&](PointerEvent event, const td::Point<double>& point, Button button, double zoom = 1)
    {
        InputDevice device(point, point, point, modifiers, InputDevice::Type::Mouse, button);
        gui::InputDeviceHelper(&device).setScale(zoom);
        scene.onPointer(event, device);
    };
    // A figure of eight, the way from 0 to 1.
    const auto onPath = [&size](double way)
    {
        const double angle = 6.2 * way - 1.6;
        return td::Point<double>{size.width * (0.4 + 0.33 * std::sin(angle)),
                                 size.height * (0.27 + 0.17 * std::sin(2 * angle))};
    };
    scene.onFocus(true);
    send(PointerEvent::Entered, onPath(0), Button::None);
    for (int i = 0; i <= 140; ++i)
    {
        const bool isDrag = i > 70 && i < 110;
        const td::Point<double> point = onPath(i / 140.0);
        if (i == 25 || i == 40)
            send(i == 25 ? PointerEvent::SecondaryPressed : PointerEvent::SecondaryReleased, point, Button::Secondary);
        if (i == 70 || i == 110)
            send(i == 70 ? PointerEvent::Pressed : PointerEvent::Released, point, Button::Primary);
        send(isDrag ? PointerEvent::Dragged : PointerEvent::Moved, point, isDrag ? Button::Primary : Button::None);
    }
    for (const PointerEvent event : {PointerEvent::Pressed, PointerEvent::Released, PointerEvent::DoubleClicked})
        send(event, onPath(1), Button::Primary);
    send(PointerEvent::Scrolled, {-60, 130}, Button::Wheel);
    send(PointerEvent::Zoomed, onPath(1), Button::Wheel, 2.2);
    for (const char character : {'p', 'e', 'n', 'g', 'l'})
    {
        scene.onKey(Key(static_cast<unsigned char>(character), modifiers, 1, 0), true);
        if (character != 'g' && character != 'l')
            scene.onKey(Key(static_cast<unsigned char>(character), modifiers, 1, 0), false);
    }
    scene.onKey(Key(0, modifiers, 1, static_cast<unsigned char>(Key::Virtual::F5)), true);
}

bool PictureStage::finishFrame()
{
    if (gui::Texture* const pImage = std::exchange(_pImage, nullptr))
    {
        if (!_context.readPixels(*pImage))
            return false;
        pImage->mirrorVertically(); // frames of a view begin with their bottom row
        std::exchange(_callback, {})();
    }
    return std::exchange(_isDrawWanted, false);
}

} // namespace gallery
