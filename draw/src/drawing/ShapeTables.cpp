#include "ShapeTables.h"

#include "../stroke/DashPattern.h"

#include <bit>
#include <cmath>

namespace gui::draw
{

namespace
{

// A gradient as the shaders read it: linear or not, spread, number of stops, six numbers of its place in the shape's
// steps, then offset, red, green, blue and alpha of each stop.
void encode(const Paint& paint, td::Point<double> origin, double step, std::vector<float>& values)
{
    const RadialGradient& gradient = paint.getGradient();
    const auto toSteps = [&](td::Point<double> p)
    { return td::Point<double>((p.x - origin.x) / step, (p.y - origin.y) / step); };
    const td::Point<double> center = toSteps(gradient.center),
                            focus = toSteps(gradient.focus.value_or(gradient.center));
    const double dx = center.x - focus.x, dy = center.y - focus.y, square = dx * dx + dy * dy;
    const double radius = gradient.radius / step;
    // What has no extent is all beyond its end.
    const bool isFlat = paint.isLinear() ? square == 0 : !(radius > 0);
    std::array<double, 6> place{0, 0, 1, 0, 0, 0};
    if (!isFlat && paint.isLinear())
        place = {dx / square, dy / square, -(focus.x * dx + focus.y * dy) / square, 0, 0, 0};
    else if (!isFlat)
    {
        // Within the circle, as SVG 1.1 wants it.
        const double away = std::sqrt(square) / radius, share = away > 0.999 ? 0.999 / away : 1;
        place = {center.x - dx * share, center.y - dy * share, 1 / radius, dx * share / radius, dy * share / radius, 0};
    }
    values = {isFlat || paint.isLinear() ? 1.0F : 0.0F, static_cast<float>(gradient.spread),
              static_cast<float>(gradient.stops.size())};
    for (const double number : place)
        values.push_back(static_cast<float>(number));
    double offset = 0;
    for (const GradientStop& stop : gradient.stops)
    {
        offset = std::clamp(stop.offset, offset, 1.0);
        const td::Color color = stop.color;
        values.push_back(static_cast<float>(offset));
        for (const td::BYTE component : {color.red(), color.green(), color.blue(), color.alpha()})
            values.push_back(static_cast<float>(component) / 255);
    }
}

} // namespace

ShapeTables::ShapeTables()
    : _records(gl::BufferTexture::Format::UInt4)
    , _elements(gl::BufferTexture::Format::Int2)
    , _longElements(gl::BufferTexture::Format::UInt4)
    , _points(gl::BufferTexture::Format::Int2)
    , _nodes(gl::BufferTexture::Format::Int4)
    , _numbers(gl::BufferTexture::Format::Float)
    , _links(gl::BufferTexture::Format::UInt)
    , _glyphs(gl::BufferTexture::Format::UInt4)
{
}

void ShapeTables::addShape(ShapePlaces& places, std::uint32_t flags, std::uint32_t order)
{
    places = {};
    places.record = _records.take(1);
    _records.change(places.record,
                    [&](ShapeRecord& record)
                    {
                        record = {};
                        record.flags = flags;
                        record.order = order;
                    });
}

void ShapeTables::giveBack(ShapePlaces& places)
{
    _points.giveBack(places.points.first, places.points.count);
    _nodes.giveBack(places.nodes.first, places.nodes.count);
    _numbers.giveBack(places.numbers.first, places.numbers.count);
    _glyphs.giveBack(places.glyphs.first, places.glyphs.count);
    places.points = places.nodes = places.numbers = places.glyphs = {};
    giveBackElements(places);
}

void ShapeTables::giveBackElements(ShapePlaces& places)
{
    _elements.giveBack(places.elements.first, places.elements.count);
    _longElements.giveBack(places.longElements.first, places.longElements.count);
    places.elements = places.longElements = {};
    places.nTriangles = 0;
}

void ShapeTables::removeShape(ShapePlaces& places)
{
    giveBack(places);
    // Links to it may be left at corners.
    _records.setMember(places.record, &ShapeRecord::flags, 0U);
    _links.giveBack(places.links.first, places.links.count);
    _numbers.giveBack(places.gradient.first, places.gradient.count);
    _records.giveBack(places.record, 1);
    places = {};
}

void ShapeTables::addElements(ShapePlaces& places, const ShapeGeometry& geometry)
{
    const auto ofShape = [&places](auto& element) { element.shapeAndKind |= places.record; };
    places.nTriangles = geometry.nTriangles;
    places.elements = {_elements.take(geometry.elements.size()), static_cast<std::uint32_t>(geometry.elements.size())};
    if (geometry.longElements.empty())
    {
        _elements.set(places.elements.first, geometry.elements, ofShape);
        return;
    }
    places.longElements = {_longElements.take(geometry.longElements.size()),
                           static_cast<std::uint32_t>(geometry.longElements.size())};
    _longElements.set(places.longElements.first, geometry.longElements, ofShape);
    _elements.set(places.elements.first, geometry.elements,
                  [&](Element& element)
                  {
                      if (element.shapeAndKind == bitsOf(ElementKind::Long))
                          element.what += places.longElements.first;
                      ofShape(element);
                  });
}

void ShapeTables::setGeometry(ShapePlaces& places, const ShapeGeometry& geometry, const Stroke* pStroke)
{
    giveBack(places);
    const auto add = [](auto& table, const auto& records) -> TableRange {
        return {table.add(records), static_cast<std::uint32_t>(records.size())};
    };
    places.points = add(_points, geometry.points);
    places.nodes = add(_nodes, geometry.nodes);
    addElements(places, geometry);

    const bool hasDashes = pStroke != nullptr && addDashes(places, geometry, *pStroke);
    _features |= pStroke == nullptr ? HasFills : HasStrokes;
    _records.change(places.record,
                    [&](ShapeRecord& record)
                    {
                        record.points = places.points.first;
                        record.nodes = places.nodes.first;
                        record.nNodes = places.nodes.count;
                        record.reach = geometry.reach;
                        record.dashes = -1;
                        constexpr std::uint32_t cStyle =
                            IsStroke | IsWidthInPoints | AreDashesInPoints | 3U << CapShift | 3U << JoinShift;
                        record.flags &= ~cStyle;
                        if (pStroke == nullptr)
                            return;
                        const Stroke& stroke = *pStroke;
                        record.links = geometry.mostOfLeaves;
                        record.nLinks = geometry.leastOfOthers;
                        record.lengths = geometry.leastOfLeaves;
                        const bool isInPoints = stroke.unit == Unit::Points;
                        record.halfWidth = static_cast<float>(stroke.width / 2 / (isInPoints ? 1 : geometry.step));
                        record.miterLimit = static_cast<float>(std::max(stroke.miterLimit, 1.0));
                        record.flags |= IsStroke | (isInPoints ? IsWidthInPoints : 0U) |
                                        (stroke.dashUnit == Unit::Points ? AreDashesInPoints : 0U) |
                                        static_cast<std::uint32_t>(stroke.cap) << CapShift |
                                        static_cast<std::uint32_t>(stroke.join) << JoinShift;
                        if (hasDashes)
                        {
                            record.dashes = static_cast<std::int32_t>(places.numbers.first);
                            record.lengths = static_cast<std::uint32_t>(places.numbers.first + places.numbers.count -
                                                                        geometry.lengths.size());
                        }
                    });
    if (pStroke == nullptr)
        return;
    _features |= geometry.hasRound ? HasRound : 0U;
    _features |= (pStroke->cap != Cap::Butt ? HasCaps : 0U) |
                 (pStroke->cap == Cap::Round || pStroke->join == Join::Round ? HasRound : 0U);
}

bool ShapeTables::addDashes(ShapePlaces& places, const ShapeGeometry& geometry, const Stroke& stroke)
{
    if (stroke.dashes.empty())
        return false;
    const DashPattern pattern(stroke);
    if (pattern.lengths.empty())
        return false;
    _features |= HasDashes;
    _values = {static_cast<float>(pattern.lengths.size()), static_cast<float>(pattern.sum),
               static_cast<float>(pattern.offset)};
    for (const double length : pattern.lengths)
        _values.push_back(static_cast<float>(length));
    _values.insert(_values.end(), geometry.lengths.begin(), geometry.lengths.end());
    places.numbers = {_numbers.add(_values), static_cast<std::uint32_t>(_values.size())};
    return true;
}

void ShapeTables::setImage(ShapePlaces& places, const td::RectNormalized<double>& rect, td::Point<double> origin,
                           double step)
{
    const double width = rect.right - rect.left, height = rect.bottom - rect.top;
    _values = {static_cast<float>(step / width), static_cast<float>((origin.x - rect.left) / width),
               static_cast<float>(step / height), static_cast<float>((origin.y - rect.top) / height)};
    setPaintValues(places);
    _records.setMember(places.record, &ShapeRecord::rgba, places.gradient.first);
    setFlag(places, HasGradient, false);
    setFlag(places, IsOpaque, false);
    setFlag(places, HasImage, true);
}

void ShapeTables::setPaintValues(ShapePlaces& places)
{
    if (places.gradient.count != _values.size())
    {
        _numbers.giveBack(places.gradient.first, places.gradient.count);
        places.gradient = {_numbers.take(_values.size()), static_cast<std::uint32_t>(_values.size())};
    }
    if (!_values.empty())
        _numbers.set(places.gradient.first, _values);
}

std::uint32_t ShapeTables::addGlyph(const ShapeGeometry& geometry)
{
    const GlyphRecord glyph{_nodes.add(geometry.nodes),
                            static_cast<std::uint32_t>(geometry.nodes.size()),
                            _points.add(geometry.points),
                            static_cast<float>(geometry.step),
                            {static_cast<float>(geometry.origin.x), static_cast<float>(geometry.origin.y)},
                            {}};
    return _glyphs.add(std::span(&glyph, 1));
}

std::uint32_t ShapeTables::copyGlyph(std::uint32_t number)
{
    GlyphRecord glyph = _glyphs[number];
    glyph.picture = {};
    return _glyphs.add(std::span(&glyph, 1));
}

void ShapeTables::setPicture(std::uint32_t glyph, const GlyphPicture& picture)
{
    _glyphs.setMember(glyph, &GlyphRecord::picture, picture);
}

td::RectNormalized<double> ShapeTables::getBoxOf(std::uint32_t number) const
{
    const GlyphRecord& glyph = _glyphs[number];
    if (glyph.nNodes == 0)
        return {0, 0, 0, 0};
    const std::array<std::int32_t, 4>& box = _nodes[glyph.nodes].box;
    const double x = glyph.origin[0], y = glyph.origin[1], step = glyph.step;
    return {x + step * box[0], y + step * box[1], x + step * box[2], y + step * box[3]};
}

std::uint32_t ShapeTables::addColoredGlyph()
{
    GlyphRecord glyph;
    glyph.picture.place = GlyphPicture::cIsColored | GlyphPicture::cIsWaited;
    _glyphFeatures |= HasColors | HasPictures;
    return _glyphs.add(std::span(&glyph, 1));
}

void ShapeTables::setColoredPicture(std::uint32_t number, const GlyphPicture& picture, double step, double left,
                                    double top)
{
    GlyphRecord glyph = _glyphs[number];
    glyph.picture = picture;
    glyph.step = static_cast<float>(step);
    glyph.origin = {static_cast<float>(left), static_cast<float>(top)};
    _glyphs.set(number, std::span(&glyph, 1));
}

std::uint32_t ShapeTables::setOwnGlyph(ShapePlaces& places, const ShapeGeometry& geometry)
{
    giveBack(places);
    const std::uint32_t number = addGlyph(geometry);
    const GlyphRecord& glyph = _glyphs[number];
    places.glyphs = {number, 1};
    places.nodes = {glyph.nodes, glyph.nNodes};
    places.points = {glyph.points, static_cast<std::uint32_t>(geometry.points.size())};
    return number;
}

// What glyphs have elsewhere than other shapes: the size instead of nodes, the offset instead of their number and of
// points, cosine and sine instead of links.
void ShapeTables::setGlyphs(ShapePlaces& places, std::span<const LongElement> elements, const GlyphStyle& style,
                            double step)
{
    giveBackElements(places);
    _patched.assign(elements.begin(), elements.end());
    for (LongElement& element : _patched)
        element.shapeAndKind |= places.record;
    places.longElements = {_longElements.add(_patched), static_cast<std::uint32_t>(_patched.size())};

    const auto bits = [](double number) { return std::bit_cast<std::uint32_t>(static_cast<float>(number)); };
    ShapeRecord record = _records[places.record];
    record.nodes = bits(style.size);
    record.nNodes = bits(style.offset.x);
    record.points = bits(style.offset.y);
    record.links = bits(style.cosine);
    record.nLinks = bits(style.sine);
    record.reach = 1;
    record.dashes = -1;
    record.flags &= ~std::uint32_t(IsStroke | IsWidthInPoints | 3U << CapShift | 3U << JoinShift);
    record.flags |= AreGlyphs | (style.isInPoints ? IsWidthInPoints : 0U);
    _glyphFeatures |= HasGlyphs | (style.isInPoints && style.cosine == 1 ? HasPictures : 0U) |
                      (style.lineWidth > 0 ? HasStrokes | HasRound : HasFills);
    if (style.lineWidth > 0)
    {
        record.flags |= IsStroke | static_cast<std::uint32_t>(Join::Round) << JoinShift;
        record.halfWidth = static_cast<float>(style.lineWidth / 2 / (style.isInPoints ? 1 : style.size * step));
    }
    _records.set(places.record, std::span(&record, 1));
}

void ShapeTables::setGlyph(const ShapePlaces& places, std::uint32_t i, std::uint32_t glyph)
{
    LongElement element = _longElements[places.longElements.first + i];
    element.points[0] = glyph;
    _longElements.set(places.longElements.first + i, std::span(&element, 1));
}

void ShapeTables::setPlacedGlyphs(ShapePlaces& places, std::span<const LongElement> elements, const GlyphStyle& style,
                                  double step, std::span<const float> turns, std::span<const std::uint32_t> neighbours)
{
    _numbers.giveBack(places.numbers.first, places.numbers.count);
    _links.giveBack(places.links.first, places.links.count);
    places.numbers = {_numbers.add(turns), static_cast<std::uint32_t>(turns.size())};
    places.links = {_links.add(neighbours), static_cast<std::uint32_t>(neighbours.size())};
    _placed.assign(elements.begin(), elements.end());
    std::uint32_t link = 0;
    for (std::size_t i = 0; i < _placed.size(); ++i)
    {
        _placed[i].shapeAndKind = bitsOf(ElementKind::Placed);
        _placed[i].points[1] = places.numbers.first + static_cast<std::uint32_t>(4 * i);
        _placed[i].points[2] = neighbours.empty() ? 0 : places.links.first + link + 1;
        link += neighbours.empty() ? 0 : neighbours[link] + 1;
    }
    setGlyphs(places, _placed, style, step);
    _glyphFeatures |= HasPlaced | (neighbours.empty() ? 0U : HasHalos);
}

void ShapeTables::setPaint(ShapePlaces& places, const Paint& paint, td::Point<double> origin, double step)
{
    const bool areGlyphs = (_records[places.record].flags & AreGlyphs) != 0;
    std::uint32_t what = paint.getColor().rgba();
    _values.clear();
    if (paint.isGradient())
    {
        encode(paint, origin, step, _values);
        (areGlyphs ? _glyphFeatures : _features) |= HasGradients;
    }
    setPaintValues(places);
    if (paint.isGradient())
        what = places.gradient.first;
    _records.setMember(places.record, &ShapeRecord::rgba, what);
    const std::uint32_t flags = _records[places.record].flags & ~std::uint32_t(HasGradient | HasImage | IsOpaque);
    _records.setMember(places.record, &ShapeRecord::flags,
                       flags | (paint.isGradient() ? HasGradient : 0U) | (paint.isOpaque() ? IsOpaque : 0U));
}

bool ShapeTables::hasColor(const ShapePlaces& places, const Paint& paint) const
{
    const ShapeRecord& record = _records[places.record];
    return !paint.isGradient() && (record.flags & (HasGradient | HasImage)) == 0 &&
           record.rgba == paint.getColor().rgba() && ((record.flags & IsOpaque) != 0) == paint.isOpaque();
}

void ShapeTables::setFlag(const ShapePlaces& places, ShapeFlag flag, bool isOn)
{
    const std::uint32_t flags = _records[places.record].flags;
    _records.setMember(places.record, &ShapeRecord::flags, isOn ? flags | flag : flags & ~std::uint32_t(flag));
}

void ShapeTables::setOrder(const ShapePlaces& places, std::uint32_t order)
{
    _records.setMember(places.record, &ShapeRecord::order, order);
}

bool ShapeTables::makeRoomFor(double largest)
{
    if (largest < _room)
        return false;
    int exponent = 0;
    std::frexp(largest, &exponent);
    // Some room to grow before all places have to be set again.
    _unit = exponent + 4 - 62;
    _room = std::ldexp(1, _unit + 61);
    // Where it is a number, which multiplies as ldexp does.
    _scale = std::abs(_unit) < 1000 ? std::ldexp(1, -_unit) : 0;
    return true;
}

namespace
{
constexpr double cMostUnits = 0x1p62;

// As ilogb, of a step: those are no smaller than numbers with all of their bits are.
int powerOf(double step) { return static_cast<int>(std::bit_cast<std::uint64_t>(step) >> 52) - 1023; }
} // namespace

int ShapeTables::getCoarseness(td::Point<double> point) const
{
    const double units = std::ldexp(std::max(std::abs(point.x), std::abs(point.y)), -_unit);
    // What is even farther shows no shape, nor does a point that is none.
    return units > cMostUnits ? std::min(std::isfinite(units) ? std::ilogb(units / cMostUnits) + 1 : 31, 31) : 0;
}

std::array<std::uint32_t, 2> ShapeTables::toUnits(double coordinate, int coarseness) const
{
    const double units =
        coarseness == 0 && _scale != 0 ? coordinate * _scale : std::ldexp(coordinate, -_unit - coarseness);
    const auto bits =
        static_cast<std::uint64_t>(std::isnan(units) ? 0 : std::llrint(std::clamp(units, -cMostUnits, cMostUnits)));
    return {static_cast<std::uint32_t>(bits), static_cast<std::uint32_t>(bits >> 32)};
}

bool ShapeTables::setPlace(const ShapePlaces& places, td::Point<double> origin, double step, const Affine& transform)
{
    const td::Point<double> at = transform.map(origin);
    const double largest = std::max(std::abs(at.x), std::abs(at.y));
    if (makeRoomFor(largest > 0 && std::isfinite(largest) ? largest : std::ldexp(step, 30)))
        return false;
    const std::array<std::uint32_t, 2> x = toUnits(at.x), y = toUnits(at.y);
    const std::array<float, 4> linear{static_cast<float>(transform.a), static_cast<float>(transform.b),
                                      static_cast<float>(transform.c), static_cast<float>(transform.d)};
    const int shift = powerOf(step) - _unit;
    const auto rounded = static_cast<float>(step);
    const bool isMoved = transform.a != 1 || transform.b != 0 || transform.c != 0 || transform.d != 1;
    const ShapeRecord& old = _records[places.record];
    const std::uint32_t flags = isMoved ? old.flags | IsMoved : old.flags & ~std::uint32_t(IsMoved);
    if (old.shift == shift && old.step == rounded && old.flags == flags && old.linear == linear)
    {
        _records.setMember(places.record, &ShapeRecord::originX, x);
        _records.setMember(places.record, &ShapeRecord::originY, y);
        return true;
    }
    _records.change(places.record,
                    [&](ShapeRecord& record)
                    {
                        record.originX = x;
                        record.originY = y;
                        record.linear = linear;
                        record.shift = shift;
                        record.step = rounded;
                        record.stepsPerUnit = static_cast<float>(1 / step);
                        record.flags = flags;
                    });
    return true;
}

void ShapeTables::setLinks(ShapePlaces& places, std::span<const std::uint32_t> records, std::size_t nEdges)
{
    constexpr std::size_t cMost = 65535;
    nEdges = std::min(nEdges, cMost);
    records = records.first(std::min(records.size(), nEdges + cMost));
    const bool isRoomNew = places.links.count != records.size();
    if (isRoomNew)
    {
        _links.giveBack(places.links.first, places.links.count);
        places.links = {_links.take(records.size()), static_cast<std::uint32_t>(records.size())};
        _records.setMember(places.record, &ShapeRecord::links, places.links.first);
    }
    _records.setMember(places.record, &ShapeRecord::nLinks,
                       static_cast<std::uint32_t>(nEdges | (records.size() - nEdges) << 16));
    if (!records.empty() && (isRoomNew || !std::equal(records.begin(), records.end(), &_links[places.links.first])))
        _links.set(places.links.first, records);
    setFlag(places, IsLinked, !records.empty());
    _features |= records.empty() ? 0U : HasLinks;
}

void ShapeTables::clear()
{
    _records.clear();
    _elements.clear();
    _longElements.clear();
    _points.clear();
    _nodes.clear();
    _numbers.clear();
    _links.clear();
    _glyphs.clear();
    _room = 0;
    _features = _glyphFeatures = 0;
}

void ShapeTables::reorderElements(std::span<ShapePlaces* const> shapes)
{
    constexpr std::uint32_t cKind = 15U << 28;
    _ordered.clear();
    _patched.clear();
    for (ShapePlaces* const pPlaces : shapes)
    {
        TableRange &elements = pPlaces->elements, &longOnes = pPlaces->longElements;
        const auto first = static_cast<std::uint32_t>(_ordered.size()),
                   firstLong = static_cast<std::uint32_t>(_patched.size());
        for (std::uint32_t i = 0; i < elements.count; ++i)
        {
            Element element = _elements[elements.first + i];
            if ((element.shapeAndKind & cKind) == bitsOf(ElementKind::Long))
                element.what += firstLong - longOnes.first;
            _ordered.push_back(element);
        }
        for (std::uint32_t i = 0; i < longOnes.count; ++i)
            _patched.push_back(_longElements[longOnes.first + i]);
        elements.first = first;
        longOnes.first = firstLong;
    }
    _elements.clear();
    _elements.add(_ordered);
    _longElements.clear();
    _longElements.add(_patched);
}

bool ShapeTables::upload()
{
    bool mayGrow = true;
    return _records.upload(mayGrow) && _elements.upload(mayGrow) && _longElements.upload(mayGrow) &&
           _points.upload(mayGrow) && _nodes.upload(mayGrow) && _numbers.upload(mayGrow) && _links.upload(mayGrow) &&
           _glyphs.upload(mayGrow);
}

void ShapeTables::bind() const
{
    using Place = gl::Texture::Unit;
    _records.bind(Place::T0);
    _elements.bind(Place::T1);
    _points.bind(Place::T2);
    _nodes.bind(Place::T3);
    _numbers.bind(Place::T4);
    _links.bind(Place::T5);
    _glyphs.bind(Place::T6);
    _longElements.bind(Place::T11);
}

} // namespace gui::draw
