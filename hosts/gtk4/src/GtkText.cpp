#include "GtkText.h"

#include "Kept.h"

#include <cmath>
#include <utility>

namespace gui::gtk
{

GtkText::GtkText(GtkWidget* pWidget, gui::gl::HostedView& view)
    : _pWidget(pWidget)
    , _view(view)
{
}

GtkText::~GtkText()
{
    if (_pMethod == nullptr)
        return;
    g_signal_handlers_disconnect_by_data(_pMethod, this);
    g_object_unref(_pMethod);
}

void GtkText::set(bool isOn, const td::RectNormalized<double>& caret)
{
    _isOn = isOn;
    if (isOn && _pMethod == nullptr)
    {
        _pMethod = gtk_im_multicontext_new();
        g_signal_connect(_pMethod, "commit", G_CALLBACK(+[](GtkIMContext*, char* text, void* pThis) -> void {
                             static_cast<GtkText*>(pThis)->onCommit(text);
                         }),
                         this);
        g_signal_connect(
            _pMethod, "preedit-changed",
            G_CALLBACK(+[](GtkIMContext*, void* pThis) -> void { static_cast<GtkText*>(pThis)->onPreedit(); }), this);
    }
    follow();
    if (!_isActive)
        return;
    const GdkRectangle rect{static_cast<int>(std::floor(caret.left)), static_cast<int>(std::floor(caret.top)),
                            static_cast<int>(std::ceil(caret.right - caret.left)),
                            static_cast<int>(std::ceil(caret.bottom - caret.top))};
    gtk_im_context_set_cursor_location(_pMethod, &rect);
}

void GtkText::setFocus(bool hasFocus)
{
    _hasFocus = hasFocus;
    follow();
}

void GtkText::follow()
{
    const bool isActive = _isOn && _hasFocus;
    if (_pMethod == nullptr || std::exchange(_isActive, isActive) == isActive)
        return;
    if (isActive)
    {
        gtk_im_context_set_client_widget(_pMethod, _pWidget);
        gtk_im_context_focus_in(_pMethod);
        return;
    }
    gtk_im_context_focus_out(_pMethod);
    gtk_im_context_reset(_pMethod);
    gtk_im_context_set_client_widget(_pMethod, nullptr);
    _isComposing = _isPending = false;
}

// Composing takes its keys. Text that a key makes at once, as most keys do, comes behind the key.
GtkText::Filtered GtkText::filter(GdkEvent* pKeyEvent)
{
    if (!_isActive)
        return {false, {}};
    const bool wasComposing = _isComposing || _isPending;
    _committed.clear();
    _isFiltering = true;
    const bool isUsed = gtk_im_context_filter_keypress(_pMethod, pKeyEvent) != FALSE;
    _isFiltering = false;
    if (!isUsed)
        return {false, {}};
    const bool hasText = !_committed.empty();
    if (gdk_event_get_event_type(pKeyEvent) == GDK_KEY_PRESS && gdk_key_event_is_modifier(pKeyEvent) == FALSE)
        _isPending = !hasText;
    return {!hasText || wasComposing, std::exchange(_committed, {})};
}

void GtkText::onCommit(const char* text)
{
    if (_isFiltering)
    {
        _committed += text;
        return;
    }
    _isPending = false;
    const Kept kept(_pWidget);
    _view.tell(
        [text](const gui::gl::SharedClient& pClient)
        {
            (*pClient)->onText({text});
            return true;
        });
}

void GtkText::onPreedit()
{
    char* text = nullptr;
    int caret = 0;
    gtk_im_context_get_preedit_string(_pMethod, &text, nullptr, &caret);
    const std::string composed = text;
    g_free(text);
    const bool wasComposing = std::exchange(_isComposing, !composed.empty());
    if (composed.empty() && !wasComposing)
        return;
    const Kept kept(_pWidget);
    _view.tell(
        [&](const gui::gl::SharedClient& pClient)
        {
            (*pClient)->onComposition({composed, static_cast<std::size_t>(caret)});
            return true;
        });
}

} // namespace gui::gtk
