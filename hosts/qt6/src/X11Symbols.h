#pragma once

#include <QtGlobal>

class QKeyEvent;

namespace gui::qt
{

/// The XKB symbol that a key has in the layout in use with Shift alone applied, by a question to the server; 0 where
/// that can't be asked, which is anywhere but on X11. Qt says what it is with all modifiers.
quint32 getX11Symbol(const QKeyEvent& event);

} // namespace gui::qt
