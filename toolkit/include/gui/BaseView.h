#pragma once

#include "Control.h"

#include <td/Export.h>
#include <td/PointAndSize.h>

namespace gui
{

/// A control that is told where it stands.
class GUIGL_API BaseView : public Control
{
protected:
    friend class BaseViewHelper;

    /// The view was moved or resized within its parent. @param geometry  in points. The default does nothing.
    virtual void onGeometryChange(const td::PointAndSize<double>& geometry);
};

/// The way in for the window system: forwards to the view's protected handler.
class BaseViewHelper
{
public:
    explicit BaseViewHelper(BaseView* pView)
        : _pView(pView)
    {
    }

    void onGeometryChange(const td::PointAndSize<double>& geometry) { _pView->onGeometryChange(geometry); }

private:
    BaseView* _pView;
};

} // namespace gui
