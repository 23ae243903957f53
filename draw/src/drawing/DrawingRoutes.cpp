#include "DrawingImpl.h"

#include <tuple>

namespace gui::draw
{

Drawing::ID Drawing::Impl::addTextOn(const Path& path, const TextLayout& layout, const TextOnPath& placement)
{
    const std::uint32_t slot = add(Kind::Text);
    ++nShapes;
    Item& text = items[slot];
    text.pLetters = std::make_unique<Letters>();
    text.pLetters->pRoute = std::make_unique<TextRoute>(path, placement);
    text.origin = text.pLetters->pRoute->getOrigin();
    routedTexts.push_back(slot);
    setText(text, layout);
    return idOf(slot);
}

void Drawing::Impl::setRoute(Item& text, const Path& path)
{
    TextRoute& route = *text.pLetters->pRoute;
    route.setPath(path);
    text.origin = route.getOrigin();
    for (const std::uint32_t member : text.getMembers())
        items[member].origin = text.origin;
    update(text);
    placeRoute(text);
}

bool Drawing::Impl::placeRoute(Item& text)
{
    Letters& letters = *text.pLetters;
    const Affine toScreen = toScreenOf(text);
    const Affine own = wholeOf(text), whole = toPoints * Affine{own.a, own.b, own.c, own.d, 0, 0};
    const bool isUpsideDown = whole.a * whole.d - whole.b * whole.c < 0;
    const bool isInPoints = letters.style.isInPoints;
    const Affine toText = isInPoints ? whole : Affine::scaling(1, isUpsideDown ? -1 : 1);
    if (!letters.pRoute->place(toText, isInPoints ? Affine() : toScreen))
        return false;
    const std::vector<TextRoute::Letter>& placed = letters.pRoute->getLetters();
    for (const std::uint32_t member : text.getMembers())
    {
        turns.clear();
        for (const Letters::Turn& turn : items[member].pLetters->turns)
        {
            const auto& [at, way] = std::tie(placed[turn.letter].at, placed[turn.letter].way);
            for (const double number :
                 {at.x + way.x * turn.x - way.y * turn.y, at.y + way.y * turn.x + way.x * turn.y, way.x, way.y})
                turns.push_back(static_cast<float>(number));
        }
        if (!turns.empty())
            tables.setTurns(items[member].places, turns);
        if (items[member].pLetters->decorations.empty())
            continue;
        // Steps so short that letters look bent no less.
        const double step = std::max(letters.text.size, 1e-3) / 8;
        Path lines;
        for (const Rect& rect : items[member].pLetters->decorations)
            letters.pRoute->addBent(rect, step, lines);
        setOutline(items[member], lines, FillRule::NonZero);
        place(items[member]);
    }
    isChanged = true;
    return true;
}

void Drawing::Impl::placeRoutes(const Sight& sight)
{
    std::erase_if(routedTexts, [this](std::uint32_t slot)
                  { return items[slot].kind != Kind::Text || !items[slot].pLetters->pRoute; });
    for (const std::uint32_t slot : routedTexts)
        if (const std::span<const std::uint32_t> members = items[slot].getMembers();
            !members.empty() && isInSight(items[members.front()], sight))
            placeRoute(items[slot]);
}

} // namespace gui::draw
