#pragma once

#include <gui/gl/port/HostedView.h>

#include <gtk/gtk.h>

#include <string>

namespace gui::gtk
{

/// The input method of a view that takes text.
class GtkText
{
public:
    /// @param pWidget, view  outlive this
    GtkText(GtkWidget* pWidget, gui::gl::HostedView& view);
    ~GtkText();
    GtkText(const GtkText&) = delete;
    GtkText& operator=(const GtkText&) = delete;

    void set(bool isOn, const td::RectNormalized<double>& caret);
    void setFocus(bool hasFocus);

    /// What a key event becomes.
    struct Filtered
    {
        bool isTaken;     ///< no key event follows
        std::string text; ///< that it has made
    };
    Filtered filter(GdkEvent* pKeyEvent);

private:
    void follow();
    void onCommit(const char* text);
    void onPreedit();

    GtkWidget* _pWidget;
    gui::gl::HostedView& _view;
    GtkIMContext* _pMethod = nullptr; // from the first time on that the view takes text
    std::string _committed;           // while a key is filtered
    bool _isOn = false;
    bool _hasFocus = false;
    bool _isActive = false;
    bool _isFiltering = false;
    bool _isComposing = false; // the view shows something
    bool _isPending = false;   // keys were taken, of which nothing has become yet
};

} // namespace gui::gtk
