#pragma once

#include "AxesImpl.h"
#include "PlotPainter.h"
#include "PlotTexts.h"

#include <gui/draw/Plot.h>

#include <td/Size.h>

namespace gui::draw
{

/// A sheet, its picture's parts, and what a pointer is doing on it.
struct Plot::Impl
{
    using Rect = Axes::Rect;

    /// What a pressed button does until it is released.
    enum class Drag : td::BYTE
    {
        None,
        Pan,
        Box
    };

    Impl(std::size_t nRows, std::size_t nColumns);

    std::size_t getVersion() const;
    void changed() const;
    /// Fits the axes that nobody has moved to what there is.
    void fit();
    void build(const td::Size<double>& newSize, double newScale);
    void buildOverlay();
    Axes::Impl& axesOf(std::size_t i) { return *axes[i]->_pImpl; }
    /// The axes that a point belongs to, and which part of them; null for none.
    Axes::Impl* find(Point point, unsigned int& part);

    std::vector<std::unique_ptr<Axes>> axes; // by rows
    std::size_t rows, columns;
    std::vector<double> rowShares, columnShares;
    PlotStyle style;
    bool hasCrosshair = true;
    std::function<void()> onChange;
    std::size_t ownVersion = 1;
    bool isFitting = false; // in a frame, which asks for no other one

    // The picture.
    td::Size<double> size;
    double scale = 0;
    std::size_t builtVersion = 0;
    PlotScene scene, overlay;
    PlotTexts texts, overlayTexts;
    PlotPainter painter, overlayPainter;
    SeriesGeometry geometry;
    bool isOverlayChanged = true;
    bool isOverlayEmpty = true;
    bool isTooLarge = false; // and it was said

    // The pointer.
    std::optional<Point> pointer; // over the plot, with no button down
    Drag drag = Drag::None;
    Axes::Impl* pDragged = nullptr;
    unsigned int dragPart = 0;
    Point dragFrom, dragTo;
};

} // namespace gui::draw
