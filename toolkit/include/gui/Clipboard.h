#pragma once

#include <td/Export.h>
#include <td/Types.h>

#include <string>
#include <string_view>

namespace gui
{

/// Text that programs hand to each other.
///
///     if (gui::Clipboard::hasText())
///         editor.paste(gui::Clipboard::getText());
///
/// It is the window system's: X11's and Wayland's. On both a text is the program's that gave it, and goes with it
/// unless the desktop keeps it; on Wayland only a program whose window has, or had, the keyboard may give one or hear
/// of it. Without a display it is the program's own, so that programs run unchanged: what was set is what there is, and
/// nobody else sees it.
///
/// Texts are UTF-8. GUI thread only.
class GUIGL_API Clipboard
{
public:
    /// Which one.
    enum class Kind : td::BYTE
    {
        Copied,  ///< what was copied or cut, for Ctrl-V
        Selected ///< what was selected last, for the middle button; where the desktop has none, or SDL is older than
                 ///< 2.26, it is empty and can't be set
    };

    /// @param text  an empty one empties it. UTF-8 that is malformed, or has zeros in it, is refused
    /// @return false, with what is there unchanged, when it was refused, or when the window system doesn't take it
    static bool setText(std::string_view text, Kind kind = Kind::Copied);

    /// What is there; empty when there is no text. It may come from any program: malformed sequences in it are U+FFFD
    /// here, and it ends at a zero. Another program that doesn't answer is waited for, a second at most.
    static std::string getText(Kind kind = Kind::Copied);

    /// Whether there is text that is not empty. As getText, it may ask another program.
    static bool hasText(Kind kind = Kind::Copied);
};

} // namespace gui
