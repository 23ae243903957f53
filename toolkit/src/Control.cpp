#include <gui/Control.h>

namespace gui
{

void Control::reMeasure(CellInfo&) {}

void Control::measure(CellInfo&) {}

} // namespace gui
