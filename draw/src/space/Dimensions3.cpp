#include <gui/draw/Dimensions3.h>

#include "DimensionMeasure.h"
#include "ScreenSigns.h"

#include <td/GUIThread.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

/// A dimension's shapes in one of the drawings.
struct Dimensions3::Shapes
{
    std::array<Drawing::ID, DimensionPicture::cMostLines> lines{}; // each from (0, 0) to (1, 0)
    std::array<Drawing::ID, 2> arrows{};                           // groups: tips at the origin, pointing left
    Drawing::ID arc = 0;
    Drawing::ID text = 0; // a group, about its middle
};

struct Dimensions3::Dimension
{
    enum class State : td::BYTE
    {
        Away,
        Clear,
        Faint
    };

    ID id = 0;
    DimensionMeasure measure;
    DimensionStyle style;
    td::Size<double> size; // of the text, in points
    std::array<DepthProbe::ID, 2> probes{};
    std::array<Shapes, 2> shapes; // clear, faint
    bool isWanted = true;
    State state = State::Away;
};

Dimensions3::Dimensions3() { setFaintness(0.3); }

Dimensions3::Dimensions3(DepthProbe& probe)
    : Dimensions3()
{
    _pProbe = &probe;
}

Dimensions3::~Dimensions3() { clear(); }

const Dimensions3::Dimension* Dimensions3::find(ID id) const
{
    const auto found = _indices.find(id);
    return found == _indices.end() ? nullptr : &_dimensions[found->second];
}

Dimensions3::ID Dimensions3::addLinear(const glm::dvec3& from, const glm::dvec3& to, const glm::dvec3& offset,
                                       const DimensionStyle& style)
{
    return addLinearAlong(from, to, to - from, offset, style);
}

Dimensions3::ID Dimensions3::addLinearAlong(const glm::dvec3& from, const glm::dvec3& to, const glm::dvec3& along,
                                            const glm::dvec3& offset, const DimensionStyle& style)
{
    std::optional<DimensionMeasure> measure = DimensionMeasure::linear(from, to, along, offset, style);
    const glm::dvec3 middle = measure ? (measure->shape.ends[0] + measure->shape.ends[1]) / 2.0 : glm::dvec3(0);
    return add(std::move(measure), style, {middle});
}

Dimensions3::ID Dimensions3::addRadius(const glm::dvec3& center, const glm::dvec3& axis, double radius,
                                       const glm::dvec3& towards, const DimensionStyle& style)
{
    std::optional<DimensionMeasure> measure = DimensionMeasure::circle(center, axis, radius, towards, style, false);
    const glm::dvec3 end = measure ? measure->shape.ends[1] : glm::dvec3(0);
    return add(std::move(measure), style, {end});
}

Dimensions3::ID Dimensions3::addDiameter(const glm::dvec3& center, const glm::dvec3& axis, double radius,
                                         const glm::dvec3& towards, const DimensionStyle& style)
{
    std::optional<DimensionMeasure> measure = DimensionMeasure::circle(center, axis, radius, towards, style, true);
    const auto ends = measure ? measure->shape.ends : std::array<glm::dvec3, 2>{};
    return add(std::move(measure), style, {ends[0], ends[1]});
}

Dimensions3::ID Dimensions3::addAngle(const glm::dvec3& apex, const glm::dvec3& from, const glm::dvec3& to,
                                      double radius, const DimensionStyle& style)
{
    std::optional<DimensionMeasure> measure = DimensionMeasure::angle(apex, from, to, radius, style);
    const glm::dvec3 middle = measure ? measure->shape.onArc(0.5) : glm::dvec3(0);
    return add(std::move(measure), style, {middle});
}

Dimensions3::ID Dimensions3::add(std::optional<DimensionMeasure>&& measure, const DimensionStyle& style,
                                 std::initializer_list<glm::dvec3> probed)
{
    TD_ASSERT_GUI_THREAD(0);
    if (!measure)
        return 0;
    Dimension dimension;
    dimension.id = ++_lastID;
    dimension.measure = std::move(*measure);
    dimension.style = style;
    if (_pProbe != nullptr && dimension.style.behind != Behind::Show)
        std::transform(probed.begin(), probed.end(), dimension.probes.begin(),
                       [&](const glm::dvec3& point) { return _pProbe->add(point, dimension.style.tolerance); });
    addShapes(dimension);
    _indices.emplace(dimension.id, _dimensions.size());
    _dimensions.push_back(std::move(dimension));
    return _lastID;
}

// Hidden, in both drawings if it may be faint.
void Dimensions3::addShapes(Dimension& dimension)
{
    const DimensionStyle& style = dimension.style;
    TextStyle text = style.text;
    // Texts that are turned with their group are in units of the plane, which are points.
    text.unit = style.place == DimensionStyle::Text::AboveLine ? Unit::Model : Unit::Points;
    const TextLayout layout(dimension.measure.words, text);
    dimension.size = layout.getSize();
    const Affine aside = ScreenSigns::aside(dimension.id);
    for (std::size_t i = 0; i < (style.behind == Behind::Fade ? 2 : 1); ++i)
    {
        Drawing& drawing = _drawings[i];
        Shapes& shapes = dimension.shapes[i];
        const auto hide = [&drawing](Drawing::ID id)
        {
            drawing.setVisible(id, false);
            return id;
        };
        for (Drawing::ID& line : shapes.lines)
            line = hide(drawing.stroke(Path().moveTo({0, 0}).lineTo({1, 0}), {.width = style.width}, style.paint));
        if (dimension.measure.shape.isAngle)
            shapes.arc = hide(drawing.stroke(Path(), {.width = style.width, .join = Join::Round}, style.paint));
        for (Drawing::ID& arrow : shapes.arrows)
            if (style.arrow > 0)
                arrow = ScreenSigns::add(drawing, ScreenSigns::endOf(style), style.paint, aside);
        shapes.text = hide(drawing.beginGroup(aside));
        drawing.text({0, 0}, layout, {.anchor = Anchor::Center, .frame = style.frame});
        drawing.endGroup();
    }
}

bool Dimensions3::setWanted(ID id, bool isWanted)
{
    TD_ASSERT_GUI_THREAD(false);
    const auto found = _indices.find(id);
    if (found == _indices.end())
        return false;
    Dimension& dimension = _dimensions[found->second];
    dimension.isWanted = isWanted;
    if (_pProbe != nullptr)
        for (const DepthProbe::ID probe : dimension.probes)
            _pProbe->setAsked(probe, isWanted);
    return true;
}

bool Dimensions3::remove(ID id)
{
    TD_ASSERT_GUI_THREAD(false);
    const auto found = _indices.find(id);
    if (found == _indices.end())
        return false;
    const std::size_t index = found->second;
    Dimension& dimension = _dimensions[index];
    for (std::size_t i = 0; i < _drawings.size(); ++i)
    {
        const Shapes& shapes = dimension.shapes[i];
        for (const Drawing::ID line : shapes.lines)
            _drawings[i].remove(line);
        for (const Drawing::ID shape : {shapes.arrows[0], shapes.arrows[1], shapes.arc, shapes.text})
            _drawings[i].remove(shape);
    }
    if (_pProbe != nullptr)
        for (const DepthProbe::ID probe : dimension.probes)
            _pProbe->remove(probe);
    _indices.erase(found);
    if (index + 1 < _dimensions.size())
    {
        _dimensions[index] = std::move(_dimensions.back());
        _indices[_dimensions[index].id] = index;
    }
    _dimensions.pop_back();
    return true;
}

void Dimensions3::clear()
{
    while (!_dimensions.empty())
        remove(_dimensions.back().id);
}

void Dimensions3::setFaintness(double opacity)
{
    if (opacity >= 0 && opacity <= 1)
        _drawings[1].setOpacity(opacity);
}

// Where all that it was asked for is.
bool Dimensions3::isHidden(const Dimension& dimension) const
{
    if (_pProbe == nullptr || dimension.style.behind == Behind::Show)
        return false;
    return std::all_of(dimension.probes.begin(), dimension.probes.end(),
                       [this](DepthProbe::ID probe) { return probe == 0 || _pProbe->isHidden(probe); });
}

bool Dimensions3::draw(const Eye& eye)
{
    TD_ASSERT_GUI_THREAD(false);
    using State = Dimension::State;
    if (_pProbe != nullptr)
        _pProbe->settle();
    std::array<bool, 2> isAnyShown{};
    const double scale = eye.getScale();
    for (Dimension& dimension : _dimensions)
    {
        const bool isBehind = isHidden(dimension), isOut = isBehind && dimension.style.behind == Behind::Hide;
        const DimensionPicture picture =
            dimension.isWanted && !isOut && eye.isValid()
                ? DimensionPicture::of(eye, dimension.measure.shape, dimension.style, dimension.size)
                : DimensionPicture();
        const State before = std::exchange(dimension.state, !picture.isShown ? State::Away
                                                            : isBehind       ? State::Faint
                                                                             : State::Clear);
        for (std::size_t i = 0; i < _drawings.size(); ++i)
        {
            const State own = i == 0 ? State::Clear : State::Faint;
            const bool isShown = dimension.state == own;
            if (!isShown && before != own)
                continue;
            isAnyShown[i] = isAnyShown[i] || isShown;
            Drawing& drawing = _drawings[i];
            const Shapes& shapes = dimension.shapes[i];
            const auto show = [&](Drawing::ID id, bool isThere, const Affine& transform)
            {
                if (isThere && isShown)
                    drawing.setTransform(id, transform);
                drawing.setVisible(id, isThere && isShown);
            };
            for (std::size_t j = 0; j < shapes.lines.size(); ++j)
            {
                const bool isThere = j < picture.lines.size();
                show(shapes.lines[j], isThere,
                     isThere ? ScreenSigns::between(picture.lines[j].first, picture.lines[j].second) : Affine());
            }
            for (std::size_t j = 0; j < shapes.arrows.size(); ++j)
            {
                const auto& arrow = picture.arrows[j];
                show(shapes.arrows[j], arrow.has_value(),
                     arrow ? ScreenSigns::arrowAt(arrow->tip, {-arrow->direction.x, -arrow->direction.y}) : Affine());
            }
            if (shapes.arc != 0 && isShown)
            {
                Path arc;
                for (const std::vector<td::Point<double>>& piece : picture.arcs)
                    arc.addPolyline(piece);
                drawing.setPath(shapes.arc, arc);
            }
            if (shapes.arc != 0)
                drawing.setVisible(shapes.arc, isShown);
            // Upright texts stand on whole pixels.
            const td::Point<double>& middle = picture.text;
            show(shapes.text, true,
                 picture.turn == 0
                     ? Affine::translation(std::round(middle.x * scale) / scale, std::round(middle.y * scale) / scale)
                     : Affine::translation(middle.x, middle.y) * Affine::rotation(picture.turn));
        }
    }
    const bool isFaintDrawn = !isAnyShown[1] || _drawings[1].draw(Affine(), scale);
    return (!isAnyShown[0] || _drawings[0].draw(Affine(), scale)) && isFaintDrawn;
}

std::size_t Dimensions3::getNumberOfDimensions() const { return _dimensions.size(); }

bool Dimensions3::isShown(ID id) const
{
    const Dimension* const pDimension = find(id);
    return pDimension != nullptr && pDimension->state != Dimension::State::Away;
}

bool Dimensions3::isFaint(ID id) const
{
    const Dimension* const pDimension = find(id);
    return pDimension != nullptr && pDimension->state == Dimension::State::Faint;
}

double Dimensions3::getValue(ID id) const
{
    const Dimension* const pDimension = find(id);
    return pDimension == nullptr ? 0 : pDimension->measure.value;
}

std::string Dimensions3::getText(ID id) const
{
    const Dimension* const pDimension = find(id);
    return pDimension == nullptr ? std::string() : pDimension->measure.words;
}

} // namespace gui::draw
