#pragma once

#include <cnt/PushBackVector.h>
#include <td/Export.h>

namespace gui::gl
{

/// A container for drawings that belong together. It holds nothing yet, and its operations do nothing: a place is kept.
class GUIGL_API Scene
{
public:
    /// Nothing yet.
    void execute();
    void reset();
    void release();

private:
    struct _part
    {
    };
    cnt::PushBackVector<_part, 0> _parts;
};

} // namespace gui::gl
