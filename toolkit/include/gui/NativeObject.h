#pragma once

#include <td/Export.h>
#include <td/Size.h>

namespace gui
{

/// What stands behind a toolkit object in the window system, as far as the toolkit has to know it. The window system's
/// side implements it; its lifetime is its own business, release() is how the toolkit lets go.
class GUIGL_API NativeObject
{
public:
    /// The toolkit object needs it no longer. The pointer is not used again.
    virtual void release() = 0;

    /// Its size in points.
    virtual void getSize(td::Size<double>& size) const = 0;

    /// Asks for a redraw at the next opportunity; returns at once.
    virtual void reDraw() = 0;

protected:
    virtual ~NativeObject() = default;
};

} // namespace gui
