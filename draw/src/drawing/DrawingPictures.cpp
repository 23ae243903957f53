#include "DrawingImpl.h"

#include <algorithm>
#include <utility>

namespace gui::draw
{

namespace
{

/// What pictures may take of a frame, in microseconds or so: counted, not measured, so that all runs are alike.
constexpr double cTimePerFrame = 2000;
/// Of the first frame at a scale, in which all else is made too: outlines instead would take longer, and a view at rest
/// would stay with them.
constexpr double cTimeAtFirst = 20000;

} // namespace

void Drawing::Impl::await(Item& item)
{
    if (!std::exchange(item.pLetters->isListed, true))
        waitingTexts.push_back(slotOf(item));
}

bool Drawing::Impl::isInSight(const Item& item, const Sight& sight) const
{
    Rect bounds;
    if (!item.zooms.has(pointsPerUnit) || !boundsOf(item, bounds))
        return false;
    const Affine& map = sight.toPixels;
    const double scale = std::min(std::hypot(map.a, map.b), std::hypot(map.c, map.d)) / sight.pixelsPerPoint;
    const double margin = largestMargin / scale;
    const Rect visible = sight.getVisible();
    return bounds.left - margin <= visible.right && bounds.right + margin >= visible.left &&
           bounds.top - margin <= visible.bottom && bounds.bottom + margin >= visible.top;
}

void Drawing::Impl::usePicturesOf(const Item& item)
{
    for (std::uint32_t i = 0; i < item.places.longElements.count; ++i)
        if (const GlyphPicture& picture =
                tables.getPicture(tables.getLongElements()[item.places.longElements.first + i].points[0]);
            picture.isThere())
            glyphs.atlasOf(picture).use(picture.getY());
}

bool Drawing::Impl::lookAtPictures(Item& item, double& time, bool mayDraw, std::vector<std::uint32_t>* pEvicted)
{
    bool hasPictures = false, hasOutlines = false, isWaiting = false;
    for (std::uint32_t i = 0; i < item.places.longElements.count; ++i)
    {
        const std::uint32_t glyph = tables.getLongElements()[item.places.longElements.first + i].points[0];
        if (const GlyphPicture& old = tables.getPicture(glyph);
            old.isWaited() && (time > 0 || (old.isColored() && mayDraw)))
        {
            double cost = 0;
            const GlyphStore::Result result = glyphs.drawPicture(glyph, tables, cost, pEvicted);
            time = result == GlyphStore::Result::NoRoom ? 0 : time - cost;
            nPicturesDrawn += result != GlyphStore::Result::NoRoom ? 1 : 0;
        }
        const GlyphPicture& picture = tables.getPicture(glyph);
        hasPictures = hasPictures || picture.isThere();
        hasOutlines = hasOutlines || !picture.isThere();
        isWaiting = isWaiting || picture.isWaited();
    }
    const std::uint32_t ink = !hasPictures  ? DrawList::cGlyphs
                              : hasOutlines ? std::uint32_t(DrawList::cBoth)
                                            : DrawList::cPictures;
    if (std::exchange(item.pLetters->passInk, ink) != ink)
        enlist(item);
    return isWaiting;
}

void Drawing::Impl::renewPictures(const Sight& sight)
{
    const bool isScaled = glyphs.setScale(sight.pixelsPerPoint, tables);
    const auto isPictured = [this](std::uint32_t slot)
    { return items[slot].kind == Kind::Glyphs && items[slot].pLetters->mayHavePictures; };
    const auto lookAtAll = [&]
    {
        double noTime = 0;
        for (const std::uint32_t slot : order)
            if (slot != cNoItem && isPictured(slot) && lookAtPictures(items[slot], noTime, false, nullptr))
                await(items[slot]);
        isChanged = true;
    };
    if (isScaled)
        lookAtAll();
    if (waitingTexts.empty())
        return;
    glyphs.getPictures().beginUse();
    glyphs.getColoredPictures().beginUse();
    const std::size_t nBefore = nPicturesDrawn;
    double time = isScaled || nPicturesDrawn == 0 ? cTimeAtFirst : cTimePerFrame;
    std::vector<std::uint32_t> evicted;
    std::vector<std::uint32_t>* pEvicted = nullptr;
    visited.clear();
    std::swap(visited, waitingTexts);
    // Slots may be of something else by now.
    std::erase_if(visited, [&isPictured](std::uint32_t slot) { return !isPictured(slot); });
    for (const std::uint32_t slot : visited)
        items[slot].pLetters->isListed = false;
    std::erase_if(visited, [this](std::uint32_t slot) { return !items[slot].isShown; });
    for (const std::uint32_t slot : visited)
    {
        Item& item = items[slot];
        bool isWaiting = true;
        if (time < 0 && !item.pLetters->hasColors)
            isWaitingSeen = true; // or it may be
        else if (isInSight(item, sight))
        {
            const double before = time;
            isWaiting = lookAtPictures(item, time, true, pEvicted);
            if (isWaiting && time == 0 && before > 0 && pEvicted == nullptr)
            {
                // There is no room: what is seen stays, something else goes.
                pEvicted = &evicted;
                for (const std::uint32_t other : order)
                    if (other != cNoItem && isPictured(other) && isInSight(items[other], sight))
                        usePicturesOf(items[other]);
                time = before;
                isWaiting = lookAtPictures(item, time, true, pEvicted);
            }
            usePicturesOf(item);
            // Where even so there is no room, outlines do until something else is seen.
            isWaitingSeen = isWaitingSeen || (isWaiting && time != 0);
        }
        if (isWaiting)
            await(item);
    }
    isChanged = isChanged || nPicturesDrawn != nBefore;
    if (!evicted.empty())
        lookAtAll();
}

void Drawing::Impl::sweepGlyphs()
{
    std::vector<bool> areUsed;
    for (const std::uint32_t slot : order)
        if (slot != cNoItem && items[slot].kind == Kind::Glyphs)
            for (std::uint32_t i = 0; i < items[slot].places.longElements.count; ++i)
            {
                const std::uint32_t glyph =
                    tables.getLongElements()[items[slot].places.longElements.first + i].points[0];
                if (glyph >= areUsed.size())
                    areUsed.resize(glyph + std::size_t(1000));
                areUsed[glyph] = true;
            }
    glyphs.sweep(areUsed, tables);
    sweepAt = 2 * glyphs.getNumberOfSized() + 10000;
}

} // namespace gui::draw
