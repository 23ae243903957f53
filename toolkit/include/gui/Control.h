#pragma once

#include "Frame.h"

#include <td/Export.h>

namespace gui
{

struct CellInfo;

/// A frame that a layout places.
class GUIGL_API Control : public Frame
{
public:
    /// Reports what the control needs, again after a change of its content. The default leaves the cell as it is.
    virtual void reMeasure(CellInfo& cell);

    /// Reports what the control needs. The default leaves the cell as it is.
    virtual void measure(CellInfo& cell);
};

} // namespace gui
