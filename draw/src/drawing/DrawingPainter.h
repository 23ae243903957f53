#pragma once

#include "DrawList.h"
#include "DrawingPrograms.h"
#include "GlyphStore.h"
#include "ImageStore.h"
#include "ShapeTables.h"
#include "Sight.h"

#include <gui/gl/ContextResource.h>
#include <gui/gl/Framebuffer.h>
#include <gui/gl/Quads.h>

#include <td/Size.h>

#include <array>
#include <map>
#include <memory>
#include <span>
#include <vector>

namespace gui::draw
{

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
    std::size_t _shown = 0;                          // of the layers; the other one is for moving it
    std::map<unsigned int, ShapeProgram*> _programs; // by features
    std::shared_ptr<DrawingPrograms> _pShared;
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
