#pragma once

#include "GtkText.h"

#include <gui/gl/port/ClickCounter.h>
#include <gui/gl/port/Fingers.h>
#include <gui/gl/port/HostedView.h>

#include <gtk/gtk.h>

#include <optional>
#include <utility>
#include <vector>

namespace gui::gtk
{

/// What GTK reports of the pointer, the keyboard, fingers and input methods to a widget, as its view is told.
class GtkInput
{
public:
    /// @param pWidget, view  outlive this
    GtkInput(GtkWidget* pWidget, gui::gl::HostedView& view);
    GtkInput(const GtkInput&) = delete;
    GtkInput& operator=(const GtkInput&) = delete;
    ~GtkInput() = default;

    void setText(bool isOn, const td::RectNormalized<double>& caret) { _text.set(isOn, caret); }
    /// The widget goes.
    void close();

private:
    bool onEvent(GdkEvent* pEvent);
    bool onButton(GdkEvent* pEvent);
    bool onMotion(GdkEvent* pEvent);
    bool onWheel(GdkEvent* pEvent);
    bool onKey(GdkEvent* pEvent);
    bool onTouch(GdkEvent* pEvent);
    bool onPinch(GdkEvent* pEvent);
    void onEnter(const td::Point<double>& point, unsigned int modifiers);
    void onLeave(unsigned int modifiers);
    void onFocus(bool hasFocus);
    GtkEventController* newDropTarget();
    bool onDrop(const GValue& value, const td::Point<double>& point);

    std::optional<td::Point<double>> pointOf(GdkEvent* pEvent) const;
    unsigned int modifiersOf(GdkModifierType state) const;
    unsigned int modifiersOf(GdkEvent* pEvent) const { return modifiersOf(gdk_event_get_modifier_state(pEvent)); }
    static GdkModifierType stateOf(void* pController)
    {
        return gtk_event_controller_get_current_event_state(GTK_EVENT_CONTROLLER(pController));
    }

    GtkWidget* _pWidget;
    gui::gl::HostedView& _view;
    GtkText _text;
    gui::gl::ClickCounter _clicks;
    gui::gl::Fingers _fingers;
    std::vector<std::pair<GdkEventSequence*, td::Point<double>>> _down; // fingers, as they came
    td::Point<double> _point;                                           // where the pointer was last
    unsigned int _pressed = 0;                                          // buttons, bits by their names
    bool _isInside = false;                                             // the pointer, as the view knows
    bool _hasLeft = false; // in a drag, of which the view is told when that is over
    bool _isAltGr = false;
};

} // namespace gui::gtk
