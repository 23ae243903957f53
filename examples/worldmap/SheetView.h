#pragma once

#include "MapLayers.h"

#include <gui/gl/OrthoView.h>

#include <memory>

namespace worldmap
{

/// A view with a map in it, whole and in the middle at first. While nobody moves it, it fits the view at every size.
class SheetView : public gui::gl::OrthoView
{
public:
    /// @param countries  must outlive the view
    SheetView(const Countries& countries, Projection projection);

    /// Shows the whole map.
    void fit();
    void setProjection(Projection projection);
    Projection getMapProjection() const { return _projection; }

    /// Moves the map so that a point of its plane is in the view's middle.
    void center(const td::Point<double>& point);

    /// The part of the map's plane that is seen, and what is around the map.
    Box getVisible() const;

    void highlight(std::size_t country);

protected:
    void onInit() override;
    void cleanResources() override;
    void onResize(const td::Size<double>& size) override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onOriginChanged() override;

private:
    td::Point<double> keptInSight(const td::Point<double>& origin) const;

    const Countries& _countries;
    Projection _projection;
    std::unique_ptr<MapLayers> _pLayers;
    td::Size<double> _size;
    bool _isFitted = true;
};

} // namespace worldmap
