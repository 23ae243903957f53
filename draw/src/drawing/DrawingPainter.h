#pragma once

#include "ShapeTables.h"

#include <gui/gl/Program.h>
#include <gui/gl/Quads.h>

#include <td/Size.h>

#include <memory>

namespace gui::draw
{

/// Where a drawing is seen: the model point in the viewport's middle, and how model units become pixels, y upwards.
struct Sight
{
    td::Point<double> center;
    Affine toPixels; // its linear part alone
    double pixelsPerPoint = 1;

    bool operator==(const Sight& other) const
    {
        return center.x == other.center.x && center.y == other.center.y && toPixels == other.toPixels &&
               pixelsPerPoint == other.pixelsPerPoint;
    }
};

/// Draws a drawing's tables into a layer of its own, and the layer over what is there. The layer has what it takes to
/// draw each shape once per pixel, whatever the framebuffer below has, and stays as it is until something changes.
class DrawingPainter
{
public:
    DrawingPainter();
    ~DrawingPainter();

    /// @param ranges  of elements, in the order of drawing  @param isChanged  whether the tables are others than last
    ///                time
    bool draw(ShapeTables& tables, std::span<const gl::Quads::Range> ranges, const Sight& sight, bool isChanged);

private:
    struct Layer;
    class ShapeProgram;
    class LayerProgram;

    bool prepare();
    bool fail(const char* reason);

    std::unique_ptr<Layer> _pLayer;
    std::unique_ptr<ShapeProgram> _pShapes;
    std::unique_ptr<LayerProgram> _pComposite;
    gl::Quads _quads;
    Sight _sight;
    bool _isLayerValid = false;
    gl::CurrentContext::ID _failedContext = 0; // where programs were found not to link
    const char* _lastFailure = nullptr;
};

} // namespace gui::draw
