#pragma once

#include "ZavObject.h"

#include <td/Export.h>

namespace gui
{

/// An object that events can be addressed to. It adds no operation of its own.
class GUIGL_API Consumer : public ZavObject
{
};

} // namespace gui
