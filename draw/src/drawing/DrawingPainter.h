#pragma once

#include "DrawList.h"
#include "GlyphStore.h"
#include "ImageStore.h"
#include "ShapeTables.h"

#include <gui/gl/ContextResource.h>
#include <gui/gl/Framebuffer.h>
#include <gui/gl/Program.h>
#include <gui/gl/Quads.h>

#include <td/Size.h>

#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <span>
#include <vector>

namespace gui::draw
{

/// Where a drawing is seen: the model point in the viewport's middle, and how model units become pixels, y upwards.
struct Sight
{
    td::Point<double> center;
    Affine toPixels; // its linear part alone
    double pixelsPerPoint = 1;
    td::Size<int> size; // of the viewport

    /// What may be seen, in model units.
    DrawList::Rect getVisible() const;
    /// In points per model unit: the geometric mean of what the axes are stretched by.
    double getZoom() const
    {
        return std::sqrt(std::abs(toPixels.a * toPixels.d - toPixels.b * toPixels.c)) / pixelsPerPoint;
    }
    bool operator==(const Sight& other) const
    {
        return center.x == other.center.x && center.y == other.center.y && toPixels == other.toPixels &&
               pixelsPerPoint == other.pixelsPerPoint && size == other.size;
    }
};

/// Draws a drawing's tables into a layer of its own, and the layer over what is there. The layer has what it takes to
/// draw each shape once per pixel, whatever the framebuffer below has, and stays as it is until something changes. When
/// it moves by whole pixels alone, what stays in sight is copied, and only what comes into sight is drawn.
class DrawingPainter
{
public:
    DrawingPainter();
    ~DrawingPainter();

    /// @param isChanged  whether tables or list are others than last time
    bool draw(ShapeTables& tables, DrawList& list, GlyphStore& glyphs, ImageStore& images, const Sight& sight,
              bool isChanged);

    /// Of the whole layer, 0 to 1.
    void setOpacity(float opacity) { _opacity = opacity; }

private:
    class ShapeProgram;
    class LayerProgram;

    /// A part of the layer, in pixels from its lower left corner.
    struct Region
    {
        int x, y, width, height;
    };

    bool prepare();
    void onContext(gl::ContextResource::Event event);
    bool makeLayer(gl::Framebuffer& layer, td::Size<int> size);
    bool moveLayer(const Sight& sight, std::vector<Region>& regions);
    bool drawRegion(const ShapeTables& tables, DrawList& list, ImageStore& images, const Region& region);
    ShapeProgram* programFor(unsigned int features);
    bool fail(const char* reason);
    bool drawRanges(const ShapeTables& tables, const Sight& sight, unsigned int features,
                    std::span<const gl::Quads::Range> ranges);
    bool drawShapes(const ShapeTables& tables, const DrawList& list, ImageStore& images, const Sight& sight,
                    double stretch);

    std::array<gl::Framebuffer, 2> _layers;
    std::size_t _shown = 0;                                          // of the layers; the other one is for moving it
    std::map<unsigned int, std::unique_ptr<ShapeProgram>> _programs; // by features
    std::unique_ptr<LayerProgram> _pComposite;
    gl::Quads _quads;
    Sight _sight; // of the layer, to a fraction of a pixel what was asked for
    Sight _asked;
    float _opacity = 1;
    bool _isLayerValid = false;
    bool _isLayerLost = false; // with its context, since it was last drawn
    gl::ContextResource _home{[](void* pThis, gl::ContextResource::Event event)
                              { static_cast<DrawingPainter*>(pThis)->onContext(event); },
                              this};
    const char* _lastFailure = nullptr;
};

} // namespace gui::draw
