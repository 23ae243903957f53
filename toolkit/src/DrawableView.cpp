#include <gui/DrawableView.h>

namespace gui
{

void DrawableView::onDraw(const td::RectNormalized<double>&) {}

void DrawableView::onPrimaryButtonPressed(const InputDevice&) {}

void DrawableView::onPrimaryButtonReleased(const InputDevice&) {}

void DrawableView::onSecondaryButtonPressed(const InputDevice&) {}

void DrawableView::onSecondaryButtonReleased(const InputDevice&) {}

void DrawableView::onPrimaryButtonDblClick(const InputDevice&) {}

void DrawableView::onCursorEntered(const InputDevice&) {}

void DrawableView::onCursorMoved(const InputDevice&) {}

void DrawableView::onCursorDragged(const InputDevice&) {}

void DrawableView::onCursorExited(const InputDevice&) {}

bool DrawableView::onZoom(const InputDevice&) { return false; }

bool DrawableView::onScroll(const InputDevice&) { return false; }

void DrawableView::onResize(const td::Size<double>&) {}

void DrawableView::onFocusIn() {}

void DrawableView::onFocusOut() {}

void DrawableView::onOtherButtonPressed(const InputDevice&) {}

void DrawableView::onOtherButtonReleased(const InputDevice&) {}

void DrawableView::onOtherDragged(const InputDevice&) {}

void DrawableView::onTextInput(std::string_view) {}

void DrawableView::onTextComposition(const TextComposition&) {}

void DrawableView::onDropped(const Drop&) {}

} // namespace gui
