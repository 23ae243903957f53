#pragma once

#include "DrawList.h"
#include "DrawingPainter.h"
#include "GlyphStore.h"
#include "ShapeIndex.h"
#include "ShapePicker.h"
#include "ShapeTables.h"
#include "SharedEdges.h"
#include "SlotArray.h"
#include "TextRoute.h"

#include <gui/draw/Drawing.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace gui::draw
{

inline constexpr std::uint32_t cNoItem = UINT32_MAX;

/// Lays shapes out for what is seen of a drawing, before that is drawn.
struct ViewFollower
{
    virtual ~ViewFollower() = default;
    /// @param toPoints  from model units to points, y downwards, without a shift; it has an inverse
    virtual void follow(const Affine& toPoints) = 0;
};

/// The shapes and groups of a drawing, and what is kept of them for drawing and for looking them up.
struct Drawing::Impl
{
    enum class Kind : td::BYTE
    {
        None,
        Fill,
        Stroke,
        Glyphs, ///< of a text, of one style
        Text,   ///< a group of glyphs
        Group
    };

    /// What texts are made from, and of that their glyphs the style and whether they are a halo or a frame. Rectangles
    /// are in the text's own unit, about its anchor, y downwards.
    struct Letters
    {
        /// Of glyphs along a path: the letter, and where it is in that.
        struct Turn
        {
            std::uint32_t letter;
            double x, y;
        };

        GlyphStyle style;
        std::vector<Rect> lines; // of the text
        Rect ink;                // around them, with halos
        Point anchor;            // in the layout
        bool isHalo = false;
        bool isFrame = false;
        bool isSymbol = false; // no text at all
        bool mayHavePictures = false;
        bool hasColors = false;                    // pictures in colour, in place of which there is nothing to draw
        bool isListed = false;                     // among waitingTexts
        std::uint32_t passInk = DrawList::cGlyphs; // how it is drawn, if its paint is a colour
        TextStyle text;                            // of its beginning
        std::optional<std::string> string;         // that setText gave it, in that style
        TextPlacement placement;
        std::unique_ptr<TextRoute> pRoute; // of a text along a path
        std::vector<Turn> turns;
        std::vector<Rect> decorations; // along a path: lines under letters and through them
    };

    /// Where what moves is: by its own transform, and with those of all groups around it.
    struct Moved
    {
        Affine own, whole;
    };

    /// What few items have.
    struct Extras
    {
        ZoomRange ownZooms;
        std::optional<Rect> imageRect; // where all of an image is
        std::unique_ptr<Paint> pGradient;
        std::vector<std::uint32_t> members; // of a group
    };

    /// A shape or a group, in a slot that is used again. There may be a million of these.
    struct Item
    {
        Kind kind = Kind::None;
        bool isVisible = true;
        bool isShown = true; // with all groups around it
        bool isPickable = true;
        FillRule rule = FillRule::NonZero;
        bool areLinksStale = false;
        bool hasBounds = false;
        std::uint32_t slot = 0;
        std::uint32_t generation = 0;
        std::uint32_t group = cNoItem;
        std::uint32_t place = 0;                // in the order of drawing, as far as that is up to date
        std::uint32_t image = 0;                // that a fill is painted with
        SharedEdges::Version version = cNoItem; // of what it shares
        ZoomRange zooms;                        // with those of all groups around it
        std::uint64_t tag = 0;
        td::Point<double> origin;
        double step = 1;
        ShapePlaces places;
        std::unique_ptr<Moved> pMoved;
        std::unique_ptr<draw::Stroke> pStroke;
        std::unique_ptr<Letters> pLetters; // of a text or of glyphs
        std::unique_ptr<Extras> pExtras;
        std::unique_ptr<std::vector<std::uint32_t>> pNeighbours; // fills that share edges with this one

        Affine getTransform() const { return pMoved ? pMoved->own : Affine(); }
        void setTransform(const Affine& transform) { pMoved = std::make_unique<Moved>(Moved{transform, {}}); }
        Extras& makeExtras()
        {
            if (!pExtras)
                pExtras = std::make_unique<Extras>();
            return *pExtras;
        }
        const Paint* getGradient() const { return pExtras ? pExtras->pGradient.get() : nullptr; }
        std::span<const std::uint32_t> getMembers() const
        {
            return pExtras ? std::span<const std::uint32_t>(pExtras->members) : std::span<const std::uint32_t>();
        }
        std::span<const std::uint32_t> getNeighbours() const
        {
            return pNeighbours ? std::span<const std::uint32_t>(*pNeighbours) : std::span<const std::uint32_t>();
        }
    };

    /// What a shape is asked in: its own steps.
    struct Local
    {
        Affine toSteps;
        double scale = 1; // steps per model unit
        double radius = 0;
        double dashScale = 1;
    };

    ID idOf(std::uint32_t slot) const { return ID(items[slot].generation) << 32 | (slot + 1); }

    /// Of the text that glyphs are of.
    ID idOfShape(std::uint32_t slot) const { return idOf(items[slot].kind == Kind::Glyphs ? items[slot].group : slot); }

    /// Of the text that glyphs are of.
    const Letters& textOf(const Item& part) const { return *items[part.group].pLetters; }

    Item* find(ID id);
    Item* findShape(ID id);
    Item* findText(ID id); ///< no symbol
    static std::uint32_t slotOf(const Item& item) { return item.slot; }

    /// The transform of an item with those of all groups around it; null where there is none.
    const Affine* findWhole(const Item& item) const
    {
        const Item* pItem = &item;
        while (!pItem->pMoved && pItem->group != cNoItem)
            pItem = &items[pItem->group];
        return pItem->pMoved ? &pItem->pMoved->whole : nullptr;
    }
    Affine wholeOf(const Item& item) const
    {
        const Affine* const pWhole = findWhole(item);
        return pWhole == nullptr ? Affine() : *pWhole;
    }

    /// With all groups around it.
    bool isPickable(const Item& item) const
    {
        return item.isPickable && (item.group == cNoItem || isPickable(items[item.group]));
    }
    /// Its own, or that of the innermost group that has one.
    std::uint64_t tagOf(const Item& item) const
    {
        return item.tag != 0 || item.group == cNoItem ? item.tag : tagOf(items[item.group]);
    }
    /// After a change of what is around it, or of its own.
    void updateZooms(Item& item);

    static bool hasMembers(const Item& item) { return item.kind == Kind::Group || item.kind == Kind::Text; }

    /// Takes a slot, in the group that was begun.
    std::uint32_t add(Kind kind);
    Item& addShape(Kind kind, const Paint& paint);
    void setPaint(Item& item, const Paint& paint);
    /// Paints a fill with an image; its geometry is made already.
    void setImage(Item& item, const Image& image);
    /// Whether there is a line of it.
    static bool isSeen(const draw::Stroke& stroke) { return stroke.width > 0 && std::isfinite(stroke.width); }
    void setPath(Item& item, const Path& path);
    void setStroke(Item& item, const draw::Stroke& stroke);
    /// Gives a fill or a stroke what `geometry` is.
    void setGeometry(Item& item);
    /// Whether a stroke has it already.
    bool hasGeometry(const Item& item) const;
    ID addText(Point at, const TextLayout& layout, const TextPlacement& placement);
    ID addTextOn(const Path& path, const TextLayout& layout, const TextOnPath& placement);
    ID addSymbol(Point at, const Path& path, const Paint& paint);
    void setSymbol(Item& item, const Path& path);
    /// Places the letters of texts along paths for what is seen.
    void placeRoutes(const Sight& sight);
    /// @return whether letters are elsewhere than before
    bool placeRoute(Item& text);
    void setRoute(Item& text, const Path& path);
    /// Replaces a text's glyphs.
    void setText(Item& text, const TextLayout& layout);
    void setGlyphs(Item& glyphs, const TextLayout& layout, std::size_t style, double size, double lineWidth);
    /// Adds to `neighbours` those of the elements of a halo that are one with each.
    void findNeighbours(const GlyphStyle& style);
    void setDecorations(Item& glyphs, const TextLayout& layout, std::size_t style);
    /// Gives glyphs an outline of their own, in the text's unit about its anchor.
    void setOutline(Item& item, const Path& path, FillRule rule);
    void setElements(Item& glyphs, double strokeStep);
    /// What has the text's colour in its pictures gets it.
    void recolor(Item& glyphs, td::Color foreground);
    static td::Color foregroundOf(const Paint& paint); // the first one of a gradient
    /// Draws pictures of small glyphs that are seen and have none yet, as many as take no time. See isWaitingSeen.
    void renewPictures(const Sight& sight);
    /// Looks which glyphs have pictures, and draws more while there is time. @param mayDraw  whatever time it takes,
    /// pictures in colour @return whether some still wait
    bool lookAtPictures(Item& item, double& time, bool mayDraw, std::vector<std::uint32_t>* pEvicted);
    void usePicturesOf(const Item& item);
    void await(Item& item);
    bool isInSight(const Item& item, const Sight& sight) const;
    void sweepGlyphs();
    /// From the model to a text's own unit about its anchor, as the last draw showed it.
    std::optional<Affine> toTextOf(const Item& glyphs) const;
    /// How far from its anchor something of a text may be.
    static double reachOf(const Rect& ink);
    /// From the text's own unit to points, without a shift; from model units whichever way y grows.
    Affine toScreenOf(const Item& item) const;
    /// Calls with each rectangle that a text's letters are in, and the map to what it is in from the text's own unit,
    /// until one answers true. @return whether one did
    bool findLine(const Item& glyphs, const std::function<bool(const Rect&, const Affine&)>& test) const;
    /// Around glyphs in model units, whichever way y grows.
    Rect boundsOfText(const Item& glyphs) const;
    void removeItem(std::uint32_t slot);
    /// Says where a shape is, after a change of its geometry or transform.
    void place(const Item& item);
    /// After a change of what is around it, or of its own transform or visibility.
    void update(Item& item);
    /// The same where it is elsewhere than what it shared edges with; findNeighbours comes before the change.
    void updateMoved(Item& item);
    /// @param to  the slot of a group that is not within it, or cNoItem
    void setGroup(Item& item, std::uint32_t to);

    /// Finds the fills around those whose geometry is new, before anything that asks for neighbours or moves some.
    void findNeighbours();
    void unlink(Item& item);
    void dropNeighbours(Item& item);
    /// Parts a shape from those that don't move with an item.
    void dropOutsiders(Item& shape, const Item& mover);
    bool isWithin(const Item& item, const Item& other) const;
    void markLinksStale(Item& item);
    /// The fills that a fill shares a corner with and no edge, as far as those around lead there.
    void findCorners(const Item& item, std::vector<std::uint32_t>& corners) const;
    /// Where both may have the same points.
    std::optional<Rect> overlapOf(const Item& a, const Item& b) const;
    static bool areTogether(const Item& a, const Item& b);
    bool haveCorner(const Item& a, const Item& b) const;
    void renewLinks();

    /// Of a shape that has some, as they are kept.
    Rect boundsOfPoints(const Item& item) const;
    /// What is seen of a shape, with its stroke's width as far as that is known; false when there is nothing.
    bool boundsOf(const Item& item, Rect& bounds) const;
    void widen(std::optional<Rect>& bounds, const Item& item) const;
    /// Tells list and index of a shape.
    void enlist(const Item& item);

    /// Puts a shape behind all others in the order.
    void append(Item& item);
    void leaveGap(const Item& item);
    /// Closes the gaps that removed and raised shapes have left.
    void renumber();
    /// Where elements lie in too many pieces, they are brought into their order.
    void tidy();
    void collectShapes(std::uint32_t slot, std::vector<std::uint32_t>& shapes) const;
    /// The shapes of an item, in the order of drawing.
    std::vector<std::uint32_t> shapesOf(const Item& item) const;
    /// Moves shapes, in their order, to before a place.
    void move(std::span<const std::uint32_t> shapes, std::size_t before);

    bool draw(const Sight& sight);

    std::optional<Local> localOf(const Item& item) const;

    using Test = std::function<bool(const Item&, const ShapePicker&, const Local&)>;
    /// The visible shapes near a rectangle that a test accepts, or the topmost of them alone; the topmost first.
    std::vector<std::uint32_t> findAll(const Rect& rect, bool isOneEnough, const Test& test);

    /// Expires with the drawing.
    const std::shared_ptr<const char> pLife = std::make_shared<const char>();
    SlotArray<Item> items;
    std::vector<std::uint32_t> freeSlots;
    std::size_t nShapes = 0;
    std::vector<std::uint32_t> order; // of drawing: shapes, and gaps
    std::size_t nGaps = 0;
    DrawList list;
    std::uint32_t group = cNoItem;           // what is added belongs to
    std::vector<std::uint32_t> groupsBefore; // that endGroup goes back to
    double tolerance = 0;
    double pointsPerUnit = 1;
    Affine toPoints = Affine::scaling(1); // of the last draw, y downwards
    bool areElementsStale = false;
    bool isChanged = true;
    bool hasSaidNoInverse = false;
    ShapeIndex index;
    double largestMargin = 0; // of strokes whose width is in points
    SharedEdges edges;
    std::vector<std::uint32_t> staleLinks;
    ShapeBuilder builder;
    ShapeGeometry geometry;
    ShapeTables tables;
    GlyphStore glyphs;
    std::vector<std::uint32_t> routedTexts; // some of which may be gone
    std::vector<float> turns;
    std::vector<Rect> boxes; // of a halo's glyphs
    std::vector<std::uint32_t> fromLeft;
    std::vector<std::pair<std::uint32_t, std::int32_t>> pairs;
    std::vector<std::uint32_t> neighbours;   // see ShapeTables::setPlacedGlyphs
    std::vector<std::uint32_t> waitingTexts; // shapes, some of whose glyphs wait for pictures
    std::vector<std::uint32_t> visited;
    bool isWaitingSeen = false; // whether some are still to be drawn for the last draw
    std::size_t nPicturesDrawn = 0;
    std::size_t sweepAt = 10000; // glyphs
    ImageStore images;
    std::vector<ViewFollower*> followers; // not owned
    std::vector<LongElement> elements;    // of glyphs
    std::vector<std::uint32_t> numbers;   // of glyphs
    DrawingPainter painter;
};

} // namespace gui::draw
