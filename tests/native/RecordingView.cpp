#include "RecordingView.h"

#include <gui/gl/port/Zav.h>

#include <cstdio>

namespace test
{

namespace
{

template <typename... Numbers>
std::string formatted(const char* format, Numbers... numbers)
{
    char text[128];
    std::snprintf(text, sizeof text, format, numbers...);
    return text;
}

} // namespace

// Nothing of the view is touched behind the last line: it may be gone.
void RecordingView::note(const std::string& name, const std::string& details)
{
    _window.journal.note(name + details + (_window.isCurrent() ? "" : " in another context"));
    const auto found = in.find(name);
    const std::function<void()> act = found != in.end() ? found->second : nullptr;
    if (act)
        act();
}

bool RecordingView::note(const std::string& name, const gui::Key& key)
{
    const bool isUsedUp = handles;
    note(name, formatted(" %u virtual %d modifiers %u", key.getCode(), static_cast<int>(key.getVirtual()),
                         key.getModifiers()));
    return isUsedUp;
}

bool RecordingView::note(const std::string& name, const gui::InputDevice& device)
{
    const bool isUsedUp = handles;
    const td::Point<double>& point = device.getFramePoint();
    EXPECT_EQ(device.getContentPoint(), point);
    const double scale = zav::getScale(this);
    EXPECT_EQ(device.getWindowPoint(), td::Point<double>(point.x * scale, point.y * scale));
    // Where the pointer is stands beside the wheel's distance alone.
    const std::string place =
        device.getPlace() == point ? "" : formatted(" at (%g, %g)", device.getPlace().x, device.getPlace().y);
    note(name, place + formatted(" (%g, %g) modifiers %u type %d button %d events %d scale %g", point.x, point.y,
                                 device.getKeyboardModifiers(), static_cast<int>(device.getType()),
                                 static_cast<int>(device.getButton()), device.getNoOfEvents(), device.getScale()));
    return isUsedUp;
}

bool RecordingView::prepareNextFrame()
{
    const bool answer = hasNextFrame;
    note("prepareNextFrame");
    return answer;
}

void RecordingView::onDraw(const td::RectNormalized<double>& rect)
{
    note("onDraw", formatted(" %g %g %g %g", rect.left, rect.top, rect.right, rect.bottom));
}

void RecordingView::onGeometryChange(const td::PointAndSize<double>& geometry)
{
    note("onGeometryChange",
         formatted(" %g %g %g %g", geometry.point.x, geometry.point.y, geometry.size.width, geometry.size.height));
}

void RecordingView::onResize(const td::Size<double>& size)
{
    note("onResize", formatted(" %g %g", size.width, size.height));
}

} // namespace test
