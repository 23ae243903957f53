#include "DrawingImpl.h"
#include "TextAnchor.h"

#include "../type/TypefaceImpl.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <numeric>
#include <utility>

namespace gui::draw
{

namespace
{

/// Of a text's place: fine enough for a million pixels per model unit.
constexpr double cTextStep = 0x1p-20;

double finite(double number) { return std::isfinite(number) ? number : 0; }

LongElement elementOf(std::uint32_t glyph, double x, double y)
{
    return {bitsOf(ElementKind::Glyph),
            {glyph, std::bit_cast<std::uint32_t>(static_cast<float>(x)),
             std::bit_cast<std::uint32_t>(static_cast<float>(y))}};
}

/// Glyphs that one shape draws.
struct Part
{
    enum class Kind : td::BYTE
    {
        Letters,
        Halo,
        Decoration,
        Frame,
        FrameLine,
        Nothing
    };

    std::size_t style;
    double size;
    double lineWidth = 0; // of halos and heavier letters
    Kind kind = Kind::Letters;

    bool isFrame() const { return kind == Kind::Frame || kind == Kind::FrameLine; }
};

const Paint& paintOf(const Part& part, const TextStyle& style, const TextPlacement& placement)
{
    switch (part.kind)
    {
    case Part::Kind::Halo:
        return style.halo.paint;
    case Part::Kind::Frame:
        return placement.frame->fill;
    case Part::Kind::FrameLine:
        return placement.frame->line;
    default:
        return style.paint;
    }
}

// Or the line along its inner edge.
Path pathOf(const Drawing::Rect& box, const TextFrame& frame, bool isLine)
{
    Path path;
    const auto add = [&](double inset)
    {
        const Drawing::Rect rect(box.left + inset, box.top + inset, box.right - inset, box.bottom - inset);
        const double radius = std::isfinite(frame.radius) ? frame.radius - inset : 0;
        if (box.right - box.left <= 2 * inset || box.bottom - box.top <= 2 * inset)
            return;
        if (radius > 0)
            path.addRoundedRect(rect, {radius, radius});
        else
            path.addRect(rect);
    };
    add(0);
    if (isLine)
        add(frame.width);
    return path;
}

// What a layout is drawn with, from below to above.
std::vector<Part> partsOf(const TextLayout& layout, const std::optional<TextFrame>& frame)
{
    std::vector<Part> letters, parts;
    if (frame)
        parts.push_back({0, 1, 0, Part::Kind::Frame});
    if (frame && frame->width > 0 && std::isfinite(frame->width))
        parts.push_back({0, 1, 0, Part::Kind::FrameLine});
    for (const TextLayout::Run& run : layout.getRuns())
        if (std::none_of(letters.begin(), letters.end(),
                         [&run](const Part& part) { return part.style == run.style && part.size == run.size; }))
            letters.push_back({run.style, run.size});
    const auto widthOf = [&layout](const Part& part)
    { return finite(layout.getStyle(part.style).embolden) * part.size; };
    for (Part part : letters)
        if (const double halo = finite(layout.getStyle(part.style).halo.width); halo > 0)
        {
            part.lineWidth = 2 * halo + std::max(widthOf(part), 0.0);
            part.kind = Part::Kind::Halo;
            parts.push_back(part);
        }
    for (const TextLayout::Decoration& decoration : layout.getDecorations())
        if (std::none_of(parts.begin(), parts.end(),
                         [&decoration](const Part& part)
                         { return part.kind == Part::Kind::Decoration && part.style == decoration.style; }))
            parts.push_back({decoration.style, 1, 0, Part::Kind::Decoration});
    for (Part part : letters)
    {
        parts.push_back(part);
        part.lineWidth = widthOf(part);
        if (part.lineWidth > 0)
            parts.push_back(part);
    }
    return parts;
}

} // namespace

td::Color Drawing::Impl::foregroundOf(const Paint& paint)
{
    if (!paint.isGradient())
        return paint.getColor();
    const std::vector<GradientStop>& stops = paint.getGradient().stops;
    return stops.empty() ? td::Color(td::ColorID::Black) : stops.front().color;
}

void Drawing::Impl::recolor(Item& item, td::Color foreground)
{
    bool isRecolored = false;
    for (std::uint32_t i = 0; i < item.places.longElements.count; ++i)
    {
        const std::uint32_t old = tables.getLongElements()[item.places.longElements.first + i].points[0];
        if (const std::uint32_t number = glyphs.recolored(old, foreground, tables); number != old)
        {
            tables.setGlyph(item.places, i, number);
            isRecolored = true;
        }
    }
    if (!isRecolored)
        return;
    double noTime = 0;
    if (lookAtPictures(item, noTime, false, nullptr))
        await(item);
    if (glyphs.getNumberOfSized() > sweepAt)
        sweepGlyphs();
}

double Drawing::Impl::reachOf(const Rect& ink)
{
    return std::hypot(std::max(std::abs(ink.left), std::abs(ink.right)),
                      std::max(std::abs(ink.top), std::abs(ink.bottom)));
}

Drawing::ID Drawing::Impl::addText(Point at, const TextLayout& layout, const TextPlacement& placement)
{
    const std::uint32_t slot = add(Kind::Text);
    ++nShapes;
    Item& text = items[slot];
    text.origin = {finite(at.x), finite(at.y)};
    text.pLetters = std::make_unique<Letters>();
    text.pLetters->placement = placement;
    setText(text, layout);
    return idOf(slot);
}

void Drawing::Impl::setText(Item& text, const TextLayout& layout)
{
    Letters& letters = *text.pLetters;
    const TextPlacement placement =
        letters.pRoute ? TextPlacement{letters.pRoute->getPlacement().anchor} : letters.placement;
    if (layout.getNumberOfStyles() > 0)
        letters.text = layout.getStyle(0);
    const td::Size<double> size = layout.getSize();
    letters.anchor = anchorIn(layout, placement.anchor);
    const double angle = std::remainder(finite(placement.angle), 360) * std::numbers::pi / 180;
    letters.style = {.size = 1,
                     .offset = {finite(placement.offset.x), finite(placement.offset.y)},
                     .cosine = angle == 0 ? 1 : std::cos(angle),
                     .sine = std::sin(angle),
                     .isInPoints = letters.text.unit == Unit::Points};
    letters.lines.clear();
    for (const TextLayout::Line& line : layout.getLines())
        letters.lines.emplace_back(line.left - letters.anchor.x, line.top - letters.anchor.y,
                                   line.left + line.width - letters.anchor.x, line.bottom - letters.anchor.y);
    double widest = 0;
    const std::optional<Rect> frame = frameIn(layout, placement);
    std::vector<Part> parts = partsOf(layout, frame ? placement.frame : std::nullopt);
    // Of an empty text one stays, for its place among the others.
    if (parts.empty())
        parts.push_back({0, 1, 0, Part::Kind::Nothing});
    for (const Part& part : parts)
        widest = std::max(widest, part.lineWidth / 2);
    const Rect ink = layout.getInkBounds().value_or(Rect(0, 0, 0, 0));
    letters.ink = {std::min(ink.left, 0.0) - widest - letters.anchor.x,
                   std::min(ink.top, 0.0) - widest - letters.anchor.y,
                   std::max(ink.right, size.width) + widest - letters.anchor.x,
                   std::max(ink.bottom, size.height) + widest - letters.anchor.y};
    if (frame)
    {
        letters.lines = {*frame};
        letters.ink = {std::min(letters.ink.left, frame->left), std::min(letters.ink.top, frame->top),
                       std::max(letters.ink.right, frame->right), std::max(letters.ink.bottom, frame->bottom)};
    }

    if (letters.pRoute)
        letters.pRoute->setLayout(layout, letters.anchor);

    // Shapes that are there already stay where they are among the others.
    std::vector<std::uint32_t> old = std::exchange(text.makeExtras().members, {});
    const std::size_t before = old.empty() ? SIZE_MAX : items[old.front()].place;
    const bool isReplaced = old.size() != parts.size();
    if (isReplaced)
        for (const std::uint32_t member : old)
            removeItem(member);
    else
        text.pExtras->members = std::move(old);
    const std::uint32_t slot = slotOf(text), around = std::exchange(group, slot);
    for (std::size_t i = 0; i < parts.size(); ++i)
    {
        const Part& part = parts[i];
        const TextStyle& style = layout.getNumberOfStyles() > 0 ? layout.getStyle(part.style) : letters.text;
        const Paint& paint = paintOf(part, style, placement);
        if (isReplaced)
            addShape(Kind::Glyphs, paint);
        Item& glyphs_ = items[text.getMembers()[i]];
        if (!glyphs_.pLetters)
            glyphs_.pLetters = std::make_unique<Letters>();
        glyphs_.pLetters->style = letters.style;
        glyphs_.pLetters->isHalo = part.kind == Part::Kind::Halo;
        glyphs_.pLetters->isFrame = part.isFrame();
        tables.setFlag(glyphs_.places, IsFrame, part.isFrame());
        glyphs_.origin = text.origin;
        glyphs_.step = cTextStep;
        glyphs_.hasBounds = part.kind != Part::Kind::Nothing;
        if (!isReplaced || paint.isGradient())
            setPaint(glyphs_, paint); // a gradient begins at the anchor
        if (part.isFrame())
            setOutline(glyphs_, pathOf(*frame, *placement.frame, part.kind == Part::Kind::FrameLine),
                       FillRule::EvenOdd);
        else if (part.kind == Part::Kind::Nothing)
            setOutline(glyphs_, {}, FillRule::NonZero);
        else if (part.kind == Part::Kind::Decoration)
            setDecorations(glyphs_, layout, part.style);
        else
            setGlyphs(glyphs_, layout, part.style, part.size, part.lineWidth);
    }
    group = around;
    if (isReplaced && before < order.size() && !text.getMembers().empty())
        move(text.getMembers(), before);
    update(text);
    if (letters.pRoute)
        placeRoute(text);
    if (glyphs.getNumberOfSized() > sweepAt)
        sweepGlyphs();
}

// A text of one glyph, which is its own.
Drawing::ID Drawing::Impl::addSymbol(Point at, const Path& path, const Paint& paint)
{
    const std::uint32_t slot = add(Kind::Text);
    ++nShapes;
    items[slot].origin = {finite(at.x), finite(at.y)};
    items[slot].pLetters = std::make_unique<Letters>();
    items[slot].pLetters->isSymbol = true;
    const std::uint32_t around = std::exchange(group, slot);
    addShape(Kind::Glyphs, Paint());
    group = around;
    Item& item = items[slot];
    Item& glyph = items[item.getMembers().front()];
    glyph.pLetters = std::make_unique<Letters>();
    glyph.origin = item.origin;
    glyph.step = cTextStep;
    glyph.hasBounds = true;
    tables.setFlag(glyph.places, IsSymbol, true);
    setPaint(glyph, paint);
    setSymbol(item, path);
    return idOf(slot);
}

void Drawing::Impl::setSymbol(Item& item, const Path& path)
{
    Letters& letters = *item.pLetters;
    const Rect bounds = path.getBounds().value_or(Rect(0, 0, 0, 0));
    letters.lines.assign(path.isEmpty() ? 0 : 1, bounds);
    letters.ink = {std::min(bounds.left, 0.0), std::min(bounds.top, 0.0), std::max(bounds.right, 0.0),
                   std::max(bounds.bottom, 0.0)};
    setOutline(items[item.getMembers().front()], path, FillRule::NonZero);
    update(item);
}

void Drawing::Impl::setGlyphs(Item& item, const TextLayout& layout, std::size_t style, double size, double lineWidth)
{
    Letters& letters = *item.pLetters;
    letters.style.size = size;
    letters.style.lineWidth = lineWidth;
    const Point anchor = textOf(item).anchor;
    const TextRoute* pRoute = textOf(item).pRoute.get();
    letters.turns.clear();
    letters.mayHavePictures = pRoute == nullptr && letters.style.isInPoints && letters.style.cosine == 1;
    letters.hasColors = false;
    const td::Color foreground = foregroundOf(layout.getStyle(style).paint);
    elements.clear();
    for (std::size_t iRun = 0; iRun < layout.getRuns().size(); ++iRun)
    {
        const TextLayout::Run& run = layout.getRuns()[iRun];
        if (run.style != style || run.size != size)
            continue;
        const bool isColored = TypefaceImpl::of(run.face)->font().isColored();
        for (std::size_t iGlyph = 0; iGlyph < run.glyphs.size(); ++iGlyph)
        {
            const TextLayout::Glyph& placed = run.glyphs[iGlyph];
            const double x = run.origin.x + double(placed.x) - anchor.x, y = run.origin.y + double(placed.y) - anchor.y;
            numbers.clear();
            if (isColored && run.face.isColorGlyph(placed.glyph))
            {
                // They are as heavy as they are.
                if (lineWidth == 0 || letters.isHalo)
                    glyphs.getColored(run.face, placed.glyph, letters.style.isInPoints ? size : 0, foreground,
                                      lineWidth > 0, builder, tables, numbers);
                letters.hasColors = true;
            }
            else if (const GlyphStore::Glyph glyph =
                         letters.mayHavePictures
                             ? glyphs.getSized(run.face, placed.glyph, size, lineWidth, builder, tables)
                             : glyphs.get(run.face, placed.glyph, lineWidth > 0, builder, tables);
                     !glyph.isEmpty)
                numbers.push_back(glyph.number);
            for (const std::uint32_t number : numbers)
            {
                elements.push_back(elementOf(number, x, y));
                if (pRoute == nullptr)
                    continue;
                const std::size_t letter = pRoute->letterOf(iRun, iGlyph);
                letters.turns.push_back(
                    {static_cast<std::uint32_t>(letter), x - pRoute->getLetters()[letter].middle, y});
            }
        }
    }
    letters.mayHavePictures = letters.mayHavePictures || letters.hasColors;
    if (pRoute != nullptr || letters.isHalo)
    {
        // Along a path they are placed later.
        turns.assign(4 * elements.size(), 0);
        if (pRoute == nullptr)
            for (std::size_t i = 0; i < elements.size(); ++i)
            {
                const std::array<std::uint32_t, 3>& points = elements[i].points;
                turns[4 * i] = std::bit_cast<float>(points[1]);
                turns[4 * i + 1] = std::bit_cast<float>(points[2]);
                turns[4 * i + 2] = 1;
            }
        neighbours.clear();
        if (letters.isHalo)
            findNeighbours(letters.style);
        tables.setPlacedGlyphs(item.places, elements, letters.style, GlyphStore::cStrokeStep, turns, neighbours);
    }
    else
        tables.setGlyphs(item.places, elements, letters.style, GlyphStore::cStrokeStep);
    letters.passInk = DrawList::cGlyphs;
    double noTime = 0;
    if (letters.mayHavePictures && lookAtPictures(item, noTime, false, nullptr))
        await(item);
}

// Those whose strokes may touch, as far as their boxes tell: for text along a path as if that were straight.
void Drawing::Impl::findNeighbours(const GlyphStyle& style)
{
    // Pictures' boxes end with a pixel.
    const double margin = style.lineWidth / 2 + (style.isInPoints ? 1.5 : 0.1 * style.size);
    boxes.clear();
    for (const LongElement& element : elements)
    {
        const Rect box = tables.getBoxOf(element.points[0]);
        const double x = double(std::bit_cast<float>(element.points[1])),
                     y = double(std::bit_cast<float>(element.points[2]));
        boxes.emplace_back(finite(x + box.left * style.size - margin), finite(y + box.top * style.size - margin),
                           finite(x + box.right * style.size + margin), finite(y + box.bottom * style.size + margin));
    }
    fromLeft.resize(boxes.size());
    std::iota(fromLeft.begin(), fromLeft.end(), 0U);
    std::sort(fromLeft.begin(), fromLeft.end(),
              [this](std::uint32_t a, std::uint32_t b) { return boxes[a].left < boxes[b].left; });
    pairs.clear();
    for (std::size_t i = 0; i < fromLeft.size(); ++i)
    {
        const std::uint32_t a = fromLeft[i];
        pairs.emplace_back(a, 0);
        for (std::size_t k = i + 1; k < fromLeft.size() && boxes[fromLeft[k]].left < boxes[a].right; ++k)
            if (const std::uint32_t b = fromLeft[k]; boxes[a].top < boxes[b].bottom && boxes[b].top < boxes[a].bottom)
            {
                const auto difference = static_cast<std::int32_t>(b) - static_cast<std::int32_t>(a);
                pairs.emplace_back(a, difference);
                pairs.emplace_back(b, -difference);
            }
    }
    std::sort(pairs.begin(), pairs.end());
    std::size_t count = 0; // stands there
    for (std::size_t i = 0; i < pairs.size(); ++i)
    {
        if (i == 0 || pairs[i].first != pairs[i - 1].first)
        {
            count = neighbours.size();
            neighbours.push_back(0);
        }
        ++neighbours[count];
        neighbours.push_back(static_cast<std::uint32_t>(pairs[i].second));
    }
}

// Lines under a text and through it are glyphs of its own. Along a path they are made when the letters are placed.
void Drawing::Impl::setDecorations(Item& item, const TextLayout& layout, std::size_t style)
{
    Letters& letters = *item.pLetters;
    letters.decorations.clear();
    const Point anchor = textOf(item).anchor;
    Path path;
    for (const TextLayout::Decoration& decoration : layout.getDecorations())
        if (decoration.style == style)
        {
            const Rect& rect = decoration.rect;
            const Rect placed(rect.left - anchor.x, rect.top - anchor.y, rect.right - anchor.x, rect.bottom - anchor.y);
            if (textOf(item).pRoute)
                letters.decorations.push_back(placed);
            else
                path.addRect(placed);
        }
    setOutline(item, path, FillRule::NonZero);
}

void Drawing::Impl::setOutline(Item& item, const Path& path, FillRule rule)
{
    Letters& letters = *item.pLetters;
    letters.style.size = 1;
    letters.style.lineWidth = 0;
    letters.mayHavePictures = letters.hasColors = false;
    letters.passInk = DrawList::cGlyphs;
    letters.turns.clear();
    builder.makeFill(path, rule, 0, geometry);
    elements.clear();
    const std::uint32_t number = tables.setOwnGlyph(item.places, geometry);
    if (!geometry.nodes.empty())
        elements.push_back(elementOf(number, 0, 0));
    tables.setGlyphs(item.places, elements, letters.style, 1);
}

Affine Drawing::Impl::toScreenOf(const Item& item) const
{
    const Affine whole = wholeOf(item), local = toPoints * Affine{whole.a, whole.b, whole.c, whole.d, 0, 0};
    return local.a * local.d - local.b * local.c < 0 ? local * Affine::scaling(1, -1) : local;
}

std::optional<Affine> Drawing::Impl::toTextOf(const Item& item) const
{
    const GlyphStyle& style = item.pLetters->style;
    const Point at = wholeOf(item).map(item.origin);
    const Affine local = Affine::translation(style.offset.x, style.offset.y) *
                         (style.isInPoints ? Affine() : toScreenOf(item)) *
                         Affine{style.cosine, -style.sine, style.sine, style.cosine, 0, 0};
    const std::optional<Affine> inverse = local.inverse();
    if (!inverse)
        return std::nullopt;
    return *inverse * toPoints * Affine::translation(-at.x, -at.y);
}

bool Drawing::Impl::findLine(const Item& item, const std::function<bool(const Rect&, const Affine&)>& test) const
{
    const Letters& text = textOf(item);
    if (!text.pRoute)
        return std::any_of(text.lines.begin(), text.lines.end(),
                           [&test](const Rect& line) { return test(line, Affine()); });
    const std::vector<TextRoute::Letter>& letters = text.pRoute->getLetters();
    return std::any_of(letters.begin(), letters.end(),
                       [&test](const TextRoute::Letter& letter) {
                           return (letter.way.x != 0 || letter.way.y != 0) &&
                                  test(TextRoute::boxOf(letter), TextRoute::toLetter(letter));
                       });
}

Drawing::Rect Drawing::Impl::boundsOfText(const Item& item) const
{
    const Letters& letters = *item.pLetters;
    const Affine whole = wholeOf(item);
    const Point at = whole.map(item.origin);
    Rect bounds(at.x, at.y, at.x, at.y);
    if (letters.style.isInPoints)
        return bounds;
    const auto [size, offset, cosine, sine, isInPoints, lineWidth] = letters.style;
    Rect ink = textOf(item).ink;
    if (textOf(item).pRoute)
    {
        // However the path turns, no letter is farther from the anchor than along the base line.
        const double reach = reachOf(ink);
        ink = {-reach, -reach, reach, reach};
    }
    for (const double up : {1.0, -1.0})
        for (const double x : {ink.left, ink.right})
            for (const double y : {ink.top, ink.bottom})
            {
                const Point turned(x * cosine + y * sine, (y * cosine - x * sine) * up);
                const Point p = whole.map({item.origin.x + turned.x, item.origin.y + turned.y});
                bounds = {std::min(bounds.left, p.x), std::min(bounds.top, p.y), std::max(bounds.right, p.x),
                          std::max(bounds.bottom, p.y)};
            }
    return bounds;
}

} // namespace gui::draw
