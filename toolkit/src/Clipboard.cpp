#include <gui/Clipboard.h>

#include <gui/port/WindowSystem.h>
#include <td/GUIThread.h>
#include <vo/UTFConverter.h>

namespace gui
{

bool Clipboard::setText(std::string_view text, Kind kind)
{
    TD_ASSERT_GUI_THREAD(false);
    if (text.find('\0') != std::string_view::npos || !vo::UTFConverter::isWellFormed(text))
        return false;
    return WindowSystem::instance().setClipboardText(kind, std::string(text));
}

std::string Clipboard::getText(Kind kind)
{
    TD_ASSERT_GUI_THREAD({});
    return vo::UTFConverter::toWellFormed(WindowSystem::instance().getClipboardText(kind).c_str());
}

bool Clipboard::hasText(Kind kind) { return WindowSystem::instance().hasClipboardText(kind); }

bool WindowSystem::setClipboardText(Clipboard::Kind kind, const std::string& text)
{
    (kind == Clipboard::Kind::Copied ? _copied : _selected) = text;
    return true;
}

std::string WindowSystem::getClipboardText(Clipboard::Kind kind)
{
    return kind == Clipboard::Kind::Copied ? _copied : _selected;
}

bool WindowSystem::hasClipboardText(Clipboard::Kind kind) { return !getClipboardText(kind).empty(); }

} // namespace gui
