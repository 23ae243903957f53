#include <gui/BaseView.h>

namespace gui
{

void BaseView::onGeometryChange(const td::PointAndSize<double>&) {}

} // namespace gui
