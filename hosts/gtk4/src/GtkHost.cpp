#include "GtkHost.h"

#include <gui/NativeView.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/OffscreenContext.h>
#include <gui/gl/port/HostedView.h>
#include <gui/port/WindowSystem.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <memory>
#include <utility>

namespace gui::gtk
{

namespace
{

using Clock = gui::RunLoop::Clock;

gui::RunLoop& runLoop() { return gui::WindowSystem::instance().getRunLoop(); }

GdkClipboard* clipboardOf(gui::Clipboard::Kind kind)
{
    GdkDisplay* const pDisplay = gdk_display_get_default();
    return kind == gui::Clipboard::Kind::Copied ? gdk_display_get_clipboard(pDisplay)
                                                : gdk_display_get_primary_clipboard(pDisplay);
}

// What this program has put there.
std::string getLocalText(GdkClipboard* pClipboard)
{
    std::string text;
    GValue value = G_VALUE_INIT;
    g_value_init(&value, G_TYPE_STRING);
    GdkContentProvider* const pContent = gdk_clipboard_get_content(pClipboard);
    if (pContent != nullptr && gdk_content_provider_get_value(pContent, &value, nullptr))
        if (const char* const string = g_value_get_string(&value))
            text = string;
    g_value_unset(&value);
    return text;
}

// Kept by the request, which ends when it likes.
struct Answer
{
    std::string text;
    bool isThere = false;
};

void onAnswer(GObject* pClipboard, GAsyncResult* pResult, void* pData)
{
    const std::unique_ptr<std::shared_ptr<Answer>> pAnswer(static_cast<std::shared_ptr<Answer>*>(pData));
    if (char* const text = gdk_clipboard_read_text_finish(GDK_CLIPBOARD(pClipboard), pResult, nullptr))
    {
        (*pAnswer)->text = text;
        g_free(text);
    }
    (*pAnswer)->isThere = true;
}

} // namespace

struct GtkHost::Source
{
    GSource base;
    GtkHost* pHost;

    static GtkHost& hostOf(GSource* pSource) { return *reinterpret_cast<Source*>(pSource)->pHost; }
};

GSourceFuncs GtkHost::s_functions = {
    // Before the loop sleeps.
    [](GSource* pSource, int* pTimeout) -> gboolean
    {
        // Whatever was current, GTK may have changed it.
        gui::gl::OffscreenContext::leave();
        gui::gl::CurrentContext::set(nullptr);
        const std::optional<gui::RunLoop::Time> due = Source::hostOf(pSource).getDue();
        *pTimeout = -1;
        if (!due)
            return FALSE;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*due - Clock::now()).count();
        *pTimeout = static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX));
        return left <= 0;
    },
    // After it.
    [](GSource* pSource) -> gboolean
    {
        const std::optional<gui::RunLoop::Time> due = Source::hostOf(pSource).getDue();
        return due && *due <= Clock::now();
    },
    [](GSource* pSource, GSourceFunc, void*) -> gboolean
    {
        Source::hostOf(pSource).takeTurn();
        return G_SOURCE_CONTINUE;
    },
    nullptr, nullptr, nullptr};

void GtkHost::use()
{
    static const bool isUsed = gui::WindowSystem::setHost(std::make_unique<GtkHost>());
    static_cast<void>(isUsed);
}

GtkHost::GtkHost()
    : _pSource(g_source_new(&s_functions, sizeof(Source)))
{
    reinterpret_cast<Source*>(_pSource)->pHost = this;
    g_source_set_static_name(_pSource, "GuiGL");
    // Beside GTK's frames: neither keeps the other waiting.
    g_source_set_priority(_pSource, GDK_PRIORITY_REDRAW);
    // What a turn calls may run a loop, of a dialog.
    g_source_set_can_recurse(_pSource, TRUE);
    g_source_attach(_pSource, nullptr);
}

GtkHost::~GtkHost()
{
    g_source_destroy(_pSource);
    g_source_unref(_pSource);
}

void GtkHost::wakeUp() { g_main_context_wakeup(nullptr); }

// A loop that starts in there, of a dialog, is GTK's own.
bool GtkHost::isServing(int depth) const { return _isServing && depth == _depth; }

std::optional<gui::RunLoop::Time> GtkHost::getDue() const
{
    return isServing(g_main_depth()) ? _until : runLoop().getNextDue();
}

void GtkHost::takeTurn()
{
    if (isServing(g_main_depth() - 1))
        return;
    const bool wasInTurn = std::exchange(_isInTurn, true);
    runLoop().step(0);
    _isInTurn = wasInTurn;
}

void GtkHost::serveEvents(const std::optional<gui::RunLoop::Time>& until)
{
    if (!_isInTurn)
        iterate(until);
}

void GtkHost::iterate(const std::optional<gui::RunLoop::Time>& until)
{
    const bool wasServing = std::exchange(_isServing, true);
    const int outerDepth = std::exchange(_depth, g_main_depth());
    const std::optional<gui::RunLoop::Time> outerUntil = std::exchange(_until, until);
    if (!until || *until > Clock::now())
        g_main_context_iteration(nullptr, TRUE);
    _until.reset();
    // All that is there, by their priorities; but there are sources that are ready at any time.
    constexpr std::chrono::milliseconds cLongest(10);
    const gui::RunLoop::Time end = Clock::now() + cLongest;
    while (g_main_context_iteration(nullptr, FALSE) && Clock::now() < end)
        ;
    _until = outerUntil;
    _depth = outerDepth;
    _isServing = wasServing;
}

double GtkHost::getDisplayRate(const gui::NativeView* pView) const
{
    const gui::gl::HostWidget* const pWidget = gui::gl::HostedView::widgetOf(pView);
    return pWidget != nullptr ? pWidget->getDisplayRate() : 0;
}

float GtkHost::getMainDisplayScale() const
{
    const std::vector<gui::DisplayInfo> displays = getDisplays();
    return displays.empty() ? 1 : displays.front().scale;
}

std::vector<gui::DisplayInfo> GtkHost::getDisplays() const
{
    constexpr double cMilli = 1000;
    std::vector<gui::DisplayInfo> displays;
    GListModel* const pMonitors = gdk_display_get_monitors(gdk_display_get_default());
    for (guint i = 0; i < g_list_model_get_n_items(pMonitors); ++i)
    {
        auto* const pMonitor = static_cast<GdkMonitor*>(g_list_model_get_item(pMonitors, i));
        GdkRectangle place{};
        gdk_monitor_get_geometry(pMonitor, &place);
        const char* const name = gdk_monitor_get_connector(pMonitor);
        displays.push_back({name != nullptr ? name : "",
                            {{double(place.x), double(place.y)}, {double(place.width), double(place.height)}},
                            float(gdk_monitor_get_scale_factor(pMonitor)),
                            gdk_monitor_get_refresh_rate(pMonitor) / cMilli});
        g_object_unref(pMonitor);
    }
    return displays;
}

bool GtkHost::setClipboardText(gui::Clipboard::Kind kind, const std::string& text)
{
    GdkClipboard* const pClipboard = clipboardOf(kind);
    if (text.empty())
        return gdk_clipboard_set_content(pClipboard, nullptr) != FALSE;
    gdk_clipboard_set_text(pClipboard, text.c_str());
    return true;
}

std::string GtkHost::getClipboardText(gui::Clipboard::Kind kind)
{
    GdkClipboard* const pClipboard = clipboardOf(kind);
    if (gdk_clipboard_is_local(pClipboard))
        return getLocalText(pClipboard);
    const auto pAnswer = std::make_shared<Answer>();
    gdk_clipboard_read_text_async(pClipboard, nullptr, onAnswer, new std::shared_ptr<Answer>(pAnswer));
    constexpr std::chrono::seconds cPatience(1);
    for (const gui::RunLoop::Time end = Clock::now() + cPatience; !pAnswer->isThere && Clock::now() < end;)
        iterate(end);
    return pAnswer->text;
}

bool GtkHost::hasClipboardText(gui::Clipboard::Kind kind) { return !getClipboardText(kind).empty(); }

} // namespace gui::gtk
