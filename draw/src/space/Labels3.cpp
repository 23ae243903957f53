#include <gui/draw/Labels3.h>

#include "../drawing/LabelRoom.h"
#include "ScreenSigns.h"

#include <td/GUIThread.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cLeaderGap = 3;  // in points, between a leader and a text without a frame
constexpr double cMoreToCome = 3; // in points: room around a label that had none
constexpr double cJump = 100;     // in points: what was seen that far off does not count

Anchor anchorOf(const Label3& look)
{
    if (look.anchor)
        return *look.anchor;
    if (look.offset.x != 0)
        return look.offset.x > 0 ? Anchor::Left : Anchor::Right;
    return look.offset.y < 0 ? Anchor::Bottom : look.offset.y > 0 ? Anchor::Top : Anchor::Center;
}

bool isLine(const Label3& look) { return look.leader && look.leader->width > 0 && std::isfinite(look.leader->width); }

bool hasEnd(const Label3& look) { return look.leader && look.leader->end != Leader::End::None; }

double haloOf(const TextLayout& layout)
{
    double halo = 0;
    for (std::size_t i = 0; i < layout.getNumberOfStyles(); ++i)
        halo = std::max(halo, layout.getStyle(i).halo.width);
    return halo;
}

// Between a text and the edges of its box.
td::Point<double> paddingOf(const TextLayout& layout, const Label3& look)
{
    if (look.frame)
        return {std::round(look.frame->padding), std::round(look.frame->padding / 2)};
    const double halo = haloOf(layout);
    return {isLine(look) ? std::max(halo, cLeaderGap) : halo, halo};
}

// About the label's point; of whole points, so that edges are sharp.
td::RectNormalized<double> boxOf(const TextLayout& layout, const Label3& look)
{
    const td::Size<double> size = layout.getSize();
    const td::Point<double> padding = paddingOf(layout, look);
    const double width = std::ceil(size.width) + 2 * padding.x, height = std::ceil(size.height) + 2 * padding.y;
    const Anchor anchor = anchorOf(look);
    const double baseline = layout.getLines().empty() ? 0 : layout.getLines().front().baseline;
    const double left = std::round(look.offset.x - anchor.x * width);
    const double top = std::round(look.offset.y - (anchor.y ? *anchor.y * height : padding.y + baseline));
    return {left, top, left + width, top + height};
}

} // namespace

Labels3::Labels3() { setFaintness(_faintness); }

Labels3::Labels3(DepthProbe& probe)
    : Labels3()
{
    _pProbe = &probe;
}

Labels3::~Labels3() { clear(); }

Labels3::Label* Labels3::find(ID id)
{
    const auto found = _indices.find(id);
    return found == _indices.end() ? nullptr : &_labels[found->second];
}

const Labels3::Label* Labels3::find(ID id) const
{
    const auto found = _indices.find(id);
    return found == _indices.end() ? nullptr : &_labels[found->second];
}

Labels3::ID Labels3::add(const glm::dvec3& at, std::string_view text, const TextStyle& style, const Label3& look)
{
    return add(at, TextLayout(text, style), look);
}

Labels3::ID Labels3::add(const glm::dvec3& at, const TextLayout& layout, const Label3& look)
{
    TD_ASSERT_GUI_THREAD(0);
    if (!ScreenSigns::isFinite(at) || !std::isfinite(look.offset.x) || !std::isfinite(look.offset.y))
        return 0;
    Label label{.id = ++_lastID, .at = at, .words = {}, .look = look, .box = {}, .shapes = {}, .place = {}};
    if (std::isnan(look.priority))
        label.look.priority = -std::numeric_limits<double>::infinity();
    if (_pProbe != nullptr && look.behind != Behind::Show)
    {
        label.probe = _pProbe->add(at, look.tolerance);
        _pProbe->setAsked(label.probe, !_isHidden);
    }
    addShapes(label, layout);
    _indices.emplace(label.id, _labels.size());
    _labels.push_back(std::move(label));
    _isSorted = false;
    return _lastID;
}

// Hidden, in both drawings if it may be faint.
void Labels3::addShapes(Label& label, const TextLayout& layout)
{
    const Label3& look = label.look;
    const td::Point<double> padding = paddingOf(layout, look);
    label.box = boxOf(layout, look);
    label.words = layout.getText();
    label.width = layout.getSize().width;
    const Affine aside = ScreenSigns::aside(label.id);
    for (std::size_t i = 0; i < (look.behind == Behind::Fade ? 2 : 1); ++i)
    {
        Drawing& drawing = _drawings[i];
        Shapes& shapes = label.shapes[i];
        shapes.box = drawing.beginGroup(aside);
        if (look.frame)
        {
            const double radius = look.frame->radius, half = look.frame->width / 2,
                         inner = std::max(radius - half, 0.0);
            const td::RectNormalized<double>& box = label.box;
            drawing.fill(Path().addRoundedRect(box, {radius, radius}), look.frame->fill);
            if (half > 0)
                drawing.stroke(
                    Path().addRoundedRect({box.left + half, box.top + half, box.right - half, box.bottom - half},
                                          {inner, inner}),
                    {.width = look.frame->width}, look.frame->line);
        }
        shapes.text =
            drawing.text({label.box.left + padding.x, label.box.top + padding.y}, layout, {.anchor = Anchor::TopLeft});
        drawing.endGroup();
        drawing.setVisible(shapes.box, false);
        if (!look.leader)
            continue;
        const Leader& leader = *look.leader;
        if (leader.end == Leader::End::Dot)
            shapes.end = drawing.stroke(Path().moveTo({0, 0}).lineTo({0, 0}),
                                        {.width = leader.endSize, .cap = Cap::Round}, leader.paint);
        else if (leader.end == Leader::End::Arrow)
            shapes.end = ScreenSigns::add(drawing, ScreenSigns::arrow(2 * leader.endSize), leader.paint, aside);
        if (isLine(look))
            shapes.leader = drawing.stroke(Path().moveTo({0, 0}).lineTo({1, 0}), {.width = leader.width}, leader.paint);
        // Below all texts, the line first.
        for (const Drawing::ID id : {shapes.end, shapes.leader})
        {
            drawing.setVisible(id, false);
            drawing.lower(id);
        }
    }
}

void Labels3::removeShapes(Label& label)
{
    for (std::size_t i = 0; i < _drawings.size(); ++i)
        for (const Drawing::ID id : {label.shapes[i].box, label.shapes[i].leader, label.shapes[i].end})
            _drawings[i].remove(id);
    label.shapes = {};
    label.state = State::Away;
}

bool Labels3::move(ID id, const glm::dvec3& at)
{
    TD_ASSERT_GUI_THREAD(false);
    Label* const pLabel = find(id);
    if (pLabel == nullptr || !ScreenSigns::isFinite(at))
        return false;
    pLabel->at = at;
    if (_pProbe != nullptr)
        _pProbe->move(pLabel->probe, at);
    return true;
}

bool Labels3::setText(ID id, const TextLayout& layout)
{
    TD_ASSERT_GUI_THREAD(false);
    Label* const pLabel = find(id);
    if (pLabel == nullptr)
        return false;
    removeShapes(*pLabel);
    addShapes(*pLabel, layout);
    return true;
}

bool Labels3::setWanted(ID id, bool isWanted)
{
    TD_ASSERT_GUI_THREAD(false);
    Label* const pLabel = find(id);
    if (pLabel == nullptr)
        return false;
    pLabel->isWanted = isWanted;
    if (_pProbe != nullptr)
        _pProbe->setAsked(pLabel->probe, isWanted && !_isHidden);
    return true;
}

bool Labels3::remove(ID id)
{
    TD_ASSERT_GUI_THREAD(false);
    const auto found = _indices.find(id);
    if (found == _indices.end())
        return false;
    const std::size_t index = found->second;
    removeShapes(_labels[index]);
    if (_pProbe != nullptr)
        _pProbe->remove(_labels[index].probe);
    _indices.erase(found);
    if (index + 1 < _labels.size())
    {
        _labels[index] = std::move(_labels.back());
        _indices[_labels[index].id] = index;
    }
    _labels.pop_back();
    _isSorted = false;
    return true;
}

void Labels3::clear()
{
    if (_pProbe != nullptr)
        for (const Label& label : _labels)
            _pProbe->remove(label.probe);
    for (Drawing& drawing : _drawings)
        drawing.clear();
    _labels.clear();
    _indices.clear();
    _order.clear();
    _nShown = _nFaint = 0;
}

void Labels3::setMargin(double points) { _margin = std::isfinite(points) ? points : 0; }

void Labels3::setFaintness(double opacity)
{
    _faintness = opacity >= 0 && opacity <= 1 ? opacity : _faintness;
    _drawings[1].setOpacity(_faintness);
}

void Labels3::setIsHidden(std::function<bool(const glm::dvec3& point, const Eye& eye)> isHidden)
{
    _isHidden = std::move(isHidden);
    if (_pProbe != nullptr)
        for (const Label& label : _labels)
            _pProbe->setAsked(label.probe, label.isWanted && !_isHidden);
}

bool Labels3::isHidden(const Label& label, const Eye& eye) const
{
    if (label.look.behind == Behind::Show)
        return false;
    if (_isHidden)
        return _isHidden(label.at, eye);
    return _pProbe != nullptr && _pProbe->isHidden(label.probe);
}

void Labels3::sort()
{
    if (_isSorted)
        return;
    _order.resize(_labels.size());
    std::iota(_order.begin(), _order.end(), 0U);
    std::sort(_order.begin(), _order.end(),
              [this](std::uint32_t i, std::uint32_t j)
              {
                  const Label &a = _labels[i], &b = _labels[j];
                  return a.look.priority != b.look.priority ? a.look.priority > b.look.priority : a.id < b.id;
              });
    _isSorted = true;
}

void Labels3::show(Label& label, State state, const td::Point<double>& place, double scale)
{
    const auto shapesOf = [&label](State of) { return label.shapes[of == State::Faint ? 1 : 0]; };
    const auto drawingOf = [this](State of) -> Drawing& { return _drawings[of == State::Faint ? 1 : 0]; };
    const auto setVisible = [&](State of, bool isVisible)
    {
        const Shapes shapes = shapesOf(of);
        for (const Drawing::ID id : {shapes.box, shapes.leader, shapes.end})
            if (id != 0)
                drawingOf(of).setVisible(id, isVisible);
    };
    const State before = std::exchange(label.state, state);
    if (before != state && before != State::Away)
        setVisible(before, false);
    label.place = place;
    if (state == State::Away)
        return;
    const Shapes shapes = shapesOf(state);
    Drawing& drawing = drawingOf(state);
    const td::Point<double> whole(std::round(place.x * scale) / scale, std::round(place.y * scale) / scale);
    drawing.setTransform(shapes.box, Affine::translation(whole.x, whole.y));
    if (label.look.leader)
    {
        const td::Point<double> tip(whole.x + label.look.offset.x, whole.y + label.look.offset.y);
        const Affine along = ScreenSigns::between(place, tip);
        const double length = std::hypot(along.a, along.b);
        const bool isArrow = label.look.leader->end == Leader::End::Arrow && length > 0;
        // A line would make the arrow's tip blunt.
        const double from = isArrow ? std::min(label.look.leader->endSize, length) / length : 0;
        drawing.setTransform(shapes.leader, ScreenSigns::between(along.map({from, 0}), tip));
        drawing.setTransform(shapes.end, isArrow ? ScreenSigns::arrowAt(place, {along.a / length, along.b / length})
                                                 : Affine::translation(place.x, place.y));
    }
    if (before != state)
        setVisible(state, true);
}

bool Labels3::draw(const Eye& eye)
{
    TD_ASSERT_GUI_THREAD(false);
    if (_pProbe != nullptr)
        _pProbe->settle();
    sort();
    const td::Size<double>& size = eye.getSize();
    _candidates.clear();
    for (const std::uint32_t i : _order)
    {
        const Label& label = _labels[i];
        const auto seen = label.isWanted ? eye.project(label.at) : std::nullopt;
        if (seen && seen->x >= 0 && seen->y >= 0 && seen->x <= size.width && seen->y <= size.height &&
            eye.getClipping().isSeen(label.at) &&
            (!(label.look.extent > 0) || label.look.extent >= eye.getSizeAt(label.at) * label.width))
            _candidates.push_back({i, {seen->x, seen->y}, State::Away});
    }
    LabelRoom room(_candidates.size());
    const auto around = [](const td::Point<double>& place, const Drawing::Rect& box, double margin)
    {
        return Drawing::Rect{place.x + box.left - margin, place.y + box.top - margin, place.x + box.right + margin,
                             place.y + box.bottom + margin};
    };
    const auto take = [&](const Label& label, const td::Point<double>& place)
    {
        if (_margin < 0)
            return true;
        const bool hadNoRoom = label.isInView && label.state == State::Away &&
                               std::abs(place.x - label.place.x) < cJump && std::abs(place.y - label.place.y) < cJump;
        const double margin = _margin / 2, more = margin + (hadNoRoom ? cMoreToCome : 0);
        const double r = hasEnd(label.look) ? std::clamp(label.look.leader->endSize / 2, 0.0, cJump) : 0;
        if (!room.isFree(around(place, label.box, more)) ||
            (r > 0 && !room.isFree(around(place, {-r, -r, r, r}, margin))))
            return false;
        room.take(around(place, label.box, margin));
        if (r > 0)
            room.take(around(place, {-r, -r, r, r}, margin));
        return true;
    };
    // What is clear comes before what is faint.
    for (Candidate& candidate : _candidates)
    {
        const Label& label = _labels[candidate.label];
        const bool isBehind = isHidden(label, eye);
        if (isBehind && label.look.behind == Behind::Fade)
            candidate.state = State::Faint;
        else if (!isBehind && take(label, candidate.place))
            candidate.state = State::Clear;
    }
    for (Candidate& candidate : _candidates)
        if (candidate.state == State::Faint && !take(_labels[candidate.label], candidate.place))
            candidate.state = State::Away;
    std::size_t next = 0;
    _nShown = _nFaint = 0;
    for (const std::uint32_t i : _order)
    {
        const bool isThere = next < _candidates.size() && _candidates[next].label == i;
        _labels[i].isInView = isThere;
        const Candidate candidate = isThere ? _candidates[next++] : Candidate{i, {}, State::Away};
        show(_labels[i], candidate.state, candidate.place, eye.getScale());
        _nShown += candidate.state == State::Away ? 0 : 1;
        _nFaint += candidate.state == State::Faint ? 1 : 0;
    }
    const bool isFaintDrawn = _nFaint == 0 || _drawings[1].draw(Affine(), eye.getScale());
    return (_nShown == _nFaint || _drawings[0].draw(Affine(), eye.getScale())) && isFaintDrawn;
}

bool Labels3::isShown(ID id) const
{
    const Label* const pLabel = find(id);
    return pLabel != nullptr && pLabel->state != State::Away;
}

bool Labels3::isFaint(ID id) const
{
    const Label* const pLabel = find(id);
    return pLabel != nullptr && pLabel->state == State::Faint;
}

std::string Labels3::getText(ID id) const
{
    const Label* const pLabel = find(id);
    return pLabel == nullptr ? std::string() : pLabel->words;
}

std::optional<td::RectNormalized<double>> Labels3::getRect(ID id) const
{
    const Label* const pLabel = find(id);
    if (pLabel == nullptr || pLabel->state == State::Away)
        return std::nullopt;
    const td::Point<double>& place = pLabel->place;
    const td::RectNormalized<double>& box = pLabel->box;
    return td::RectNormalized<double>{place.x + box.left, place.y + box.top, place.x + box.right, place.y + box.bottom};
}

Labels3::ID Labels3::pick(const td::Point<double>& point) const
{
    ID picked = 0; // where they overlap, the one that is drawn over the others
    for (const Label& label : _labels)
        if (const auto rect = getRect(label.id);
            rect && point.x >= rect->left && point.x < rect->right && point.y >= rect->top && point.y < rect->bottom)
            picked = std::max(picked, label.id);
    return picked;
}

} // namespace gui::draw
