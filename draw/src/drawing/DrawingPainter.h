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

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <vector>

namespace gui::draw
{

/// Draws a drawing's tables into a layer of its own, and the layer over what is there. The layer has what it takes to
/// draw each shape once per pixel, whatever the framebuffer below has, and stays as it is until something changes. When
/// it moves by whole pixels alone, what stays in sight is copied, and only what comes into sight is drawn.
///
/// A drawing that is seen from several places in each frame, through loupes, say, has a layer for each. There is one at
/// first. Another one is made when what is asked for was drawn not long ago, and given up for something else since; of
/// all of them the one that was not asked for the longest is drawn anew for what is new. Those go that would not have
/// been missed for a while.
class DrawingPainter
{
public:
    DrawingPainter();
    ~DrawingPainter();

    /// Whether draw has but to show what it drew before, unless something is changed.
    bool hasPicture(const Sight& sight) const;

    /// @param isChanged  whether tables or list are others than last time, but for what the sight alone decides
    /// @param isWaiting  whether more of the same is to come by itself
    bool draw(ShapeTables& tables, DrawList& list, GlyphStore& glyphs, ImageStore& images, const Sight& sight,
              bool isChanged, bool isWaiting);

    /// Of the whole layer, 0 to 1.
    void setOpacity(float opacity) { _opacity = opacity; }

private:
    /// A part of the layer, in pixels from its lower left corner.
    struct Region
    {
        int x, y, width, height;
    };

    /// What a layer shows, or did.
    struct Shown
    {
        Sight asked;
        std::uint64_t version = 0; // of the shapes

        bool isOf(const Sight& sight, std::uint64_t now) const { return version == now && asked == sight; }
    };
    struct View : Shown
    {
        std::unique_ptr<gl::Framebuffer> pLayer = std::make_unique<gl::Framebuffer>();
        Sight sight; // to a fraction of a pixel what was asked for
        bool isValid = false;
        bool isLost = false; // with its context, since it was last drawn
        bool isWaiting = false;
    };

    bool prepare();
    void onContext(gl::ContextResource::Event event);
    View& findView(const Sight& sight);
    void giveUp(const Shown& shown);
    /// Those that are too many. @param first  size of the first one
    void dropViews(td::Size<int> first);
    bool makeLayer(gl::Framebuffer& layer, td::Size<int> size);
    bool moveLayer(View& view, const Sight& sight, std::vector<Region>& regions);
    bool drawLayer(View& view, ShapeTables& tables, DrawList& list, GlyphStore& glyphs, ImageStore& images,
                   const std::vector<Region>& regions);
    bool drawRegion(const ShapeTables& tables, DrawList& list, ImageStore& images, const Sight& sight,
                    const Region& region);
    ShapeProgram* programFor(unsigned int features);
    bool fail(const char* reason);
    bool drawRanges(const ShapeTables& tables, const Sight& sight, unsigned int features,
                    std::span<const gl::Quads::Range> ranges);
    bool drawShapes(const ShapeTables& tables, const DrawList& list, ImageStore& images, const Sight& sight,
                    double stretch);

    std::vector<View> _views;    // as they were asked for, the last one first
    std::vector<Shown> _givenUp; // the last ones, whose layers have something else
    std::size_t _deepest = 0;    // of the views that had to be there, among the last draws,
    unsigned int _nDraws = 0;    // which are so many
    std::uint64_t _version = 0;  // of the shapes
    std::unique_ptr<gl::Framebuffer> _pSpare = std::make_unique<gl::Framebuffer>(); // for moving one
    std::map<unsigned int, ShapeProgram*> _programs;                                // by features
    std::shared_ptr<DrawingPrograms> _pShared;
    float _opacity = 1;
    gl::ContextResource _home{[](void* pThis, gl::ContextResource::Event event)
                              { static_cast<DrawingPainter*>(pThis)->onContext(event); },
                              this};
    const char* _lastFailure = nullptr;
};

} // namespace gui::draw
