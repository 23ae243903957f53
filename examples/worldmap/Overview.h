#pragma once

#include "SheetView.h"

#include <gui/Window.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Flat2DProgram.h>
#include <gui/gl/Triang2D.h>

namespace worldmap
{

/// A window of its own with the whole map, on which a rectangle shows what another view sees of it. A click, or a drag,
/// moves that view there.
class Overview : public SheetView
{
public:
    /// @param countries, map  must outlive the overview
    Overview(const Countries& countries, SheetView& map);

    /// @return false, with a log line, when there is no window to be had
    bool open() { return _window.show(*this); }
    bool isOpen() const { return _window.isOpen(); }

protected:
    void onInit() override;
    void cleanResources() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onPrimaryButtonPressed(const gui::InputDevice& device) override;
    void onCursorDragged(const gui::InputDevice& device) override;
    bool onScroll(const gui::InputDevice&) override { return true; }
    bool onZoom(const gui::InputDevice&) override { return true; }
    bool onKeyPressed(const gui::Key& key) override;

private:
    void fillFrame(const Box& box);

    SheetView& _map;
    gui::gl::Flat2DProgram _program;
    gui::gl::Triang2D _triang;
    gui::gl::Buffer _frame;
    gui::Window _window; // the last one: when it closes, cleanResources needs the others
};

} // namespace worldmap
