#include <gui/draw/Dimensions.h>

#include "DrawingImpl.h"

#include "../space/DimensionMeasure.h"
#include "../space/ScreenSigns.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <utility>
#include <vector>

namespace gui::draw
{

namespace
{

using Point = Drawing::Point;

constexpr glm::dvec3 cUp(0, 0, 1);

glm::dvec3 inSpace(const Point& point) { return {point.x, point.y, 0}; }

/// How long a dimension is, in points, until a view has been seen.
constexpr double cUsualLength = 200;

/// Of the eye's view, half: where its middle is.
constexpr double cMiddle = 1;

// Directions that differ by the rounding of numbers alone.
bool isNear(double a, double b) { return std::abs(a - b) < 1e-9; }

// Looks at the plane as a map does, with a point in the middle of its view.
Eye eyeOver(const glm::dvec3& base, const Affine& map)
{
    glm::dmat4 projection(1);
    projection[0] = {map.a, -map.b, 0, 0};
    projection[1] = {map.c, -map.d, 0, 0};
    return {base, glm::dmat3(1), projection, {2 * cMiddle, 2 * cMiddle}};
}

} // namespace

struct Dimensions::Impl : ViewFollower
{
    struct Dimension
    {
        ID id = 0; // the group
        DimensionMeasure measure;
        DimensionStyle style;
        TextLayout layout;
        glm::dvec3 base{0};        // where its parts are laid out from
        std::array<ID, 3> lines{}; // extension lines, and the dimension line
        ID text = 0;
        std::array<ID, 2> ends{};
        std::array<std::optional<Point>, 2> directions{}; // of the ends' shapes
        double turn = 0;                                  // of the text
        std::optional<Affine> map{};                      // that it was laid out for last
    };

    explicit Impl(Drawing& drawing_)
        : drawing(drawing_)
    {
    }

    void follow(const Affine& map) override;

    ID add(std::optional<DimensionMeasure>&& measure, const DimensionStyle& style);
    /// From where its own points are, in all groups, to points on the screen, without a shift.
    Affine mapOf(const Dimension& dimension, const Affine& fromModel) const;
    void lay(Dimension& dimension, const Affine& map);
    TextPlacement placementOf(const Dimension& dimension) const
    {
        return {.anchor = Anchor::Center,
                .angle = -dimension.turn * 180 / std::numbers::pi,
                .frame = dimension.style.frame};
    }
    bool isThere(const Dimension& dimension) const
    {
        return drawing.getGroup(dimension.text) == dimension.id && dimension.id != 0;
    }
    const Dimension* find(ID id) const
    {
        const auto found = std::find_if(dimensions.begin(), dimensions.end(),
                                        [id](const Dimension& dimension) { return dimension.id == id; });
        return found == dimensions.end() || !isThere(*found) ? nullptr : &*found;
    }

    Drawing& drawing;
    std::vector<Dimension> dimensions{};
    std::optional<Affine> toPoints{}; // of the view that was seen last
};

Dimensions::ID Dimensions::Impl::add(std::optional<DimensionMeasure>&& measure, const DimensionStyle& style)
{
    if (!measure)
        return 0;
    TextStyle text = style.text;
    text.unit = Unit::Points;
    Dimension& dimension = dimensions.emplace_back();
    dimension.style = style;
    dimension.layout = TextLayout(measure->words, text);
    dimension.measure = std::move(*measure);
    DimensionShape& shape = dimension.measure.shape;
    shape.farthest = std::numeric_limits<double>::infinity();
    dimension.base = (shape.ends[0] + shape.ends[1]) / 2.0;
    const auto onPlane = [](const glm::dvec3& point) { return Point(point.x, point.y); };
    dimension.id = drawing.beginGroup();
    for (ID& line : dimension.lines)
        line = drawing.stroke({}, {.width = style.width, .join = Join::Round}, style.paint);
    for (std::size_t i = 0; i < 2; ++i)
        if (shape.hasArrow[i] && style.arrow > 0)
            dimension.ends[i] = drawing.symbol(onPlane(shape.ends[i]), {}, style.paint);
    dimension.text = drawing.text(onPlane(dimension.base), dimension.layout, placementOf(dimension));
    drawing.endGroup();
    const double scale = cUsualLength / glm::distance(shape.ends[0], shape.ends[1]);
    lay(dimension, toPoints ? mapOf(dimension, *toPoints) : Affine::scaling(scale, -scale));
    return dimension.id;
}

Affine Dimensions::Impl::mapOf(const Dimension& dimension, const Affine& fromModel) const
{
    Drawing::Impl& impl = *drawing._pImpl;
    const Drawing::Impl::Item* const pGroup = impl.find(dimension.id);
    Affine map = pGroup == nullptr ? fromModel : fromModel * impl.wholeOf(*pGroup);
    map.e = map.f = 0;
    return map;
}

void Dimensions::Impl::lay(Dimension& dimension, const Affine& map)
{
    if (dimension.map == map)
        return;
    const std::optional<Affine> inverse = map.inverse();
    if (!inverse)
        return;
    dimension.map = map;
    const DimensionPicture picture = DimensionPicture::of(eyeOver(dimension.base, map), dimension.measure.shape,
                                                          dimension.style, dimension.layout.getSize());
    const auto fromBase = [&](const Point& point) {
        return inverse->mapVector({point.x - cMiddle, point.y - cMiddle});
    };
    const auto inModel = [&](const Point& point)
    {
        const Point way = fromBase(point);
        return Point(dimension.base.x + way.x, dimension.base.y + way.y);
    };
    // Apart: a line of some points has no room in the steps of one that is zoomed into.
    std::array<Path, 3> lines;
    for (std::size_t i = 0; i < picture.lines.size(); ++i)
        lines[i < picture.nExtensions ? i : 2]
            .moveTo(inModel(picture.lines[i].first))
            .lineTo(inModel(picture.lines[i].second));
    for (std::vector<Point> arc : picture.arcs)
    {
        std::transform(arc.begin(), arc.end(), arc.begin(), inModel);
        lines[2].addPolyline(arc);
    }
    for (std::size_t i = 0; i < lines.size(); ++i)
        drawing.setPath(dimension.lines[i], lines[i]);
    for (std::size_t i = 0; i < 2; ++i)
    {
        const std::optional<DimensionPicture::Arrow>& arrow = picture.arrows[i];
        drawing.setVisible(dimension.ends[i], arrow.has_value());
        const std::optional<Point>& before = dimension.directions[i];
        if (!arrow || (before && isNear(before->x, arrow->direction.x) && isNear(before->y, arrow->direction.y)))
            continue;
        dimension.directions[i] = arrow->direction;
        const Affine turn = ScreenSigns::arrowAt({0, 0}, {-arrow->direction.x, -arrow->direction.y});
        drawing.setPath(dimension.ends[i], ScreenSigns::endOf(dimension.style).transformed(turn));
    }
    drawing.setVisible(dimension.text, picture.isShown);
    if (!picture.isShown)
        return;
    const Point way = fromBase(picture.text);
    drawing.setTransform(dimension.text, Affine::translation(way.x, way.y));
    if (isNear(picture.turn, dimension.turn))
        return;
    dimension.turn = picture.turn;
    drawing.setText(dimension.text, dimension.layout, placementOf(dimension));
}

void Dimensions::Impl::follow(const Affine& map)
{
    toPoints = map;
    std::erase_if(dimensions, [this](const Dimension& dimension) { return !isThere(dimension); });
    for (Dimension& dimension : dimensions)
        lay(dimension, mapOf(dimension, map));
}

Dimensions::Dimensions(Drawing& drawing)
    : _pImpl(std::make_unique<Impl>(drawing))
{
    drawing._pImpl->followers.push_back(_pImpl.get());
}

Dimensions::~Dimensions() { std::erase(_pImpl->drawing._pImpl->followers, _pImpl.get()); }

Dimensions::ID Dimensions::addLinear(Point from, Point to, Point offset, const DimensionStyle& style)
{
    return addLinearAlong(from, to, to - from, offset, style);
}

Dimensions::ID Dimensions::addLinearAlong(Point from, Point to, Point along, Point offset, const DimensionStyle& style)
{
    return _pImpl->add(DimensionMeasure::linear(inSpace(from), inSpace(to), inSpace(along), inSpace(offset), style),
                       style);
}

Dimensions::ID Dimensions::addRadius(Point center, double radius, Point towards, const DimensionStyle& style)
{
    return _pImpl->add(DimensionMeasure::circle(inSpace(center), cUp, radius, inSpace(towards), style, false), style);
}

Dimensions::ID Dimensions::addDiameter(Point center, double radius, Point towards, const DimensionStyle& style)
{
    return _pImpl->add(DimensionMeasure::circle(inSpace(center), cUp, radius, inSpace(towards), style, true), style);
}

Dimensions::ID Dimensions::addAngle(Point apex, Point from, Point to, double radius, const DimensionStyle& style)
{
    return _pImpl->add(DimensionMeasure::angle(inSpace(apex), inSpace(from), inSpace(to), radius, style), style);
}

void Dimensions::clear()
{
    for (const Impl::Dimension& dimension : _pImpl->dimensions)
        _pImpl->drawing.remove(dimension.id);
    _pImpl->dimensions.clear();
}

std::size_t Dimensions::getNumberOfDimensions() const
{
    return static_cast<std::size_t>(std::count_if(_pImpl->dimensions.begin(), _pImpl->dimensions.end(),
                                                  [this](const Impl::Dimension& dimension)
                                                  { return _pImpl->isThere(dimension); }));
}

double Dimensions::getValue(ID id) const
{
    const Impl::Dimension* const pDimension = _pImpl->find(id);
    return pDimension == nullptr ? 0 : pDimension->measure.value;
}

std::string Dimensions::getText(ID id) const
{
    const Impl::Dimension* const pDimension = _pImpl->find(id);
    return pDimension == nullptr ? std::string() : pDimension->measure.words;
}

} // namespace gui::draw
