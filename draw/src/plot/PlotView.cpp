#include <gui/draw/PlotView.h>

#include <gui/Key.h>

#include <utility>

namespace gui::draw
{

PlotView::PlotView(std::size_t rows, std::size_t columns)
    : _plot(rows, columns)
{
    using Event = InputDevice::Event;
    _plot.setOnChange([this] { reRender(); });
    createContext(gl::Context(gl::DepthBuffer::Size::None, gl::StencilBuffer::Size::None, gl::Context::Profile::Core41),
                  {Event::Keyboard, Event::CursorEnterLeave, Event::PrimaryClicks, Event::CursorMove, Event::CursorDrag,
                   Event::ScrollAndZoom});
}

PlotView::PlotView(Series series)
    : PlotView()
{
    add(std::move(series));
}

PlotView::~PlotView() = default;

void PlotView::onDraw(const td::RectNormalized<double>&)
{
    td::Size<double> size;
    getSize(size);
    _plot.draw(size, static_cast<double>(getPixelHiDPIScale()));
}

void PlotView::showDrag(bool isDragging)
{
    if (std::exchange(_isDragShown, isDragging) != isDragging)
        setCursor(isDragging ? Cursor::Type::Pan : Cursor::Type::Default, true);
}

void PlotView::onPrimaryButtonPressed(const InputDevice& device) { _plot.onPressed(device); }

void PlotView::onPrimaryButtonReleased(const InputDevice& device)
{
    _plot.onReleased(device);
    showDrag(false);
}

void PlotView::onPrimaryButtonDblClick(const InputDevice& device) { _plot.onDoubleClick(device); }

void PlotView::onCursorMoved(const InputDevice& device)
{
    showDrag(false); // whose end may have gone to somebody else
    _plot.onMoved(device);
}

void PlotView::onCursorDragged(const InputDevice& device)
{
    if (!device.getKey().isShiftPressed())
        showDrag(true);
    _plot.onDragged(device);
}

void PlotView::onCursorExited(const InputDevice&) { _plot.onExited(); }

bool PlotView::onScroll(const InputDevice& device) { return _plot.onScroll(device); }

bool PlotView::onZoom(const InputDevice& device) { return _plot.onZoom(device); }

bool PlotView::onKeyPressed(const Key& key) { return _plot.onKey(key); }

} // namespace gui::draw
