#include "Overview.h"

#include <gui/Key.h>

namespace worldmap
{

namespace
{

constexpr double cFrameWidth = 2; // points

} // namespace

Overview::Overview(const Countries& countries, SheetView& map)
    : SheetView(countries, map.getMapProjection())
    , _map(map)
    , _triang(4)
    , _frame{gui::gl::DataType::Vec2}
    , _window("World map - overview", {440, 232})
{
    createContext(false);
}

void Overview::onInit()
{
    SheetView::onInit();
    _program.link();
}

void Overview::cleanResources()
{
    SheetView::cleanResources();
    _frame.release();
    _program.release();
}

void Overview::onDraw(const td::RectNormalized<double>& rect)
{
    if (getMapProjection() != _map.getMapProjection())
        setProjection(_map.getMapProjection());
    SheetView::onDraw(rect);
    fillFrame(_map.getVisible());
    _program.draw(_frame, getProjection());
}

void Overview::fillFrame(const Box& box)
{
    const auto left = static_cast<float>(box.min.x), right = static_cast<float>(box.max.x);
    const auto bottom = static_cast<float>(box.min.y), top = static_cast<float>(box.max.y);
    const td::Point<float> corners[] = {{left, bottom}, {right, bottom}, {right, top}, {left, top}};
    _frame.reset();
    gui::gl::Command* pCommand =
        _triang.triangulateLine(&_frame, corners, 4, static_cast<float>(cFrameWidth / 2 / getZoom()), true);
    if (pCommand == nullptr)
        return;
    pCommand->setColor(td::ColorID::Crimson);
    _frame.encode(pCommand);
}

void Overview::onPrimaryButtonPressed(const gui::InputDevice& device)
{
    _map.center(getModelPoint(device.getFramePoint()));
}

void Overview::onCursorDragged(const gui::InputDevice& device) { onPrimaryButtonPressed(device); }

bool Overview::onKeyPressed(const gui::Key& key)
{
    if (key.getChar() != 'o' && key.getChar() != 'O' && key.getVirtual() != gui::Key::Virtual::Escape)
        return false;
    _window.close();
    return true;
}

} // namespace worldmap
