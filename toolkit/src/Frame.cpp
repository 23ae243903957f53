#include <gui/Frame.h>

#include <gui/NativeObject.h>
#include <td/GUIThread.h>

namespace gui
{

void Frame::getSize(td::Size<double>& size) const
{
    if (_handle != nullptr)
        _handle->getSize(size);
    else
        size = {};
}

td::Size<double> Frame::getSize() const
{
    td::Size<double> size;
    getSize(size);
    return size;
}

void Frame::reDraw()
{
    TD_ASSERT_GUI_THREAD();
    if (_handle != nullptr)
        _handle->reDraw();
}

bool Frame::onKeyPressed(const Key&) { return false; }

bool Frame::onKeyReleased(const Key&) { return false; }

} // namespace gui
