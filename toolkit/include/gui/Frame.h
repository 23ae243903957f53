#pragma once

#include "Consumer.h"

#include <td/Export.h>
#include <td/Size.h>

namespace gui
{

class Key;

/// An object that covers a rectangle of the screen and takes keys. The native object knows the rectangle.
class GUIGL_API Frame : public Consumer
{
public:
    /// The size in points; 0 by 0 while there is no native object.
    void getSize(td::Size<double>& size) const;
    /// The same as a result: `getSize().width`.
    td::Size<double> getSize() const;

    /// Asks for a redraw at the next opportunity. Nothing while there is no native object.
    void reDraw();

protected:
    /// A key went down; called only when the object asked for keys.
    /// @return true when the key is used up; false, the default, passes it on
    virtual bool onKeyPressed(const Key& key);

    /// A key went up; otherwise as onKeyPressed.
    virtual bool onKeyReleased(const Key& key);
};

} // namespace gui
