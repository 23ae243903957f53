// Planes to pan and zoom, and drawings in them.

#include "Views.h"

#include <gui/draw/DrawingView.h>
#include <gui/draw/ScaleBar.h>
#include <gui/gl/OrthoView.h>

#include <limits>
#include <memory>
#include <optional>

namespace fuzz::views
{

namespace
{

using namespace gui::draw;
using gui::gl::OrthoView;
using Rect = td::RectNormalized<double>;

class Plan : public Heard<DrawingView>
{
public:
    using Heard::Heard;

protected:
    void onPointed() override { hear(); }
    void onShapeEntered(Drawing::ID) override { hear(); }
    void onShapeClicked(Drawing::ID) override { hear(); }
    void onShapeDoubleClicked(Drawing::ID shape) override
    {
        hear();
        DrawingView::onShapeDoubleClicked(shape);
    }
    void onBoxDrawn(const Drawing::Rect& box) override
    {
        require(std::isfinite(box.right - box.left) && (box.left < box.right || box.top < box.bottom),
                "a box has a width or a height");
        hear();
        DrawingView::onBoxDrawn(box);
    }
    void onDraw(const Rect& rect) override
    {
        Heard::onDraw(rect);
        _bar.draw(*this);
    }

private:
    ScaleBar _bar;
};

class PlaneWorld : public ViewWorld
{
protected:
    using ViewWorld::ViewWorld;

    virtual OrthoView& plane() = 0;
    OrthoView& view() override { return plane(); }
    std::vector<double> where() override
    {
        const Point origin = plane().getOrigin();
        return {origin.x, origin.y, plane().getZoom(), plane().isFlying() ? 1.0 : 0.0};
    }

    void change() override
    {
        OrthoView& it = plane();
        switch (_input.below(14))
        {
        case 0:
            return it.setBindings(takeBool() ? OrthoView::Bindings::Plain : OrthoView::Bindings::Modified);
        case 1:
            return it.setModelRefPoint(takePoint());
        case 2:
            return takeBool() ? it.setCenter(takePoint()) : it.setCenter(takePoint(), takeNumber());
        case 3:
            it.zoomBy(takeNumber());
            return;
        case 4:
            it.goHome();
            return;
        case 5:
            it.flyHome(takeNumber());
            return;
        case 6:
            return it.removePlaneLimits();
        case 7:
            return setPlaneLimits();
        case 8:
            return setZoom();
        case 9:
            return setZoomLimits();
        default:
            show();
        }
    }

    void check() override
    {
        OrthoView& it = plane();
        require(it.getZoom() > 0, "a plane has a zoom");
        require(isFiniteMatrix(it.getProjection()), "a projection is finite");
        checkRoundTrip();
        checkLimits();
    }

    void stop() override
    {
        OrthoView& it = plane();
        it.removePlaneLimits();
        const Point& origin = it.getOrigin();
        it.setModelRefPoint(origin == Point(1, 2) ? Point(2, 3) : Point(1, 2));
    }

private:
    void show()
    {
        OrthoView& it = plane();
        const Rect rect = takeRect();
        const double margin = takeNumber();
        const unsigned int before = nActs();
        const std::vector<double> place = where();
        const bool hadHome = it.hasHome();
        const unsigned int how = _input.below(4);
        const bool isDone = how == 0   ? it.setHome(rect, margin)
                            : how == 1 ? it.flyTo(rect, margin, takeNumber())
                                       : it.fit(rect, margin);
        require(isDone || !isUntouched(before) || (where() == place && it.hasHome() == hadHome),
                "what can't be shown changes nothing");
    }

    void setPlaneLimits()
    {
        const Rect limits = takeRect();
        const double inSight = takeBool() ? -1 : takeNumber();
        const unsigned int before = nActs();
        plane().setPlaneLimits(limits, inSight);
        if (isUntouched(before) && plane().getPlaneLimits() == limits)
            _inSight = inSight;
        else if (!isUntouched(before))
            _inSight.reset();
    }

    void setZoom()
    {
        const double zoom = takeNumber();
        const unsigned int before = nActs();
        plane().setZoom(zoom);
        if (isUntouched(before) && !std::isnan(zoom) && _zoomLimits)
            require(plane().getZoom() == std::clamp(zoom, _zoomLimits->x, _zoomLimits->y), "a zoom is in its limits");
    }

    void setZoomLimits()
    {
        const double min = takeNumber(), max = takeNumber();
        const unsigned int lines = nLines();
        plane().setZoomLimits(min, max);
        const bool isOrder = !(max < min), isRange = min > 0 && std::isfinite(max);
        require(nLines() == lines + (isOrder && !isRange ? 1 : 0), "limits that are none are told of");
        if (isOrder && isRange && _zoomLimits)
            _zoomLimits = {min, max};
    }

    // To a hundredth of a point, or what double can tell apart there.
    void checkRoundTrip()
    {
        const OrthoView& it = plane();
        const Point place = takePlace(), model = it.getModelPoint(place), back = it.getViewPoint(model);
        if (!isFinite(model) || !isFinite(back))
            return;
        const double digits = 8 * std::numeric_limits<double>::epsilon();
        const Point origin = it.getOrigin();
        const auto isNear = [&](double a, double b, double at, double size)
        { return std::abs(a - b) <= 0.01 + digits * (std::abs(a) + size + std::abs(at) * it.getZoom()); };
        require(isNear(place.x, back.x, origin.x, 0) && isNear(place.y, back.y, origin.y, it.getSize().height),
                "a point comes back to where it was");
    }

    void checkLimits()
    {
        const OrthoView& it = plane();
        const Rect seen = it.getVisible();
        const std::optional<Rect>& limits = it.getPlaneLimits();
        const bool isEmpty = seen.left == seen.right || seen.top == seen.bottom;
        if (!limits || !_inSight || isEmpty || limits->left > limits->right || limits->top > limits->bottom)
            return;
        const auto isWithin = [&](double low, double high, double min, double max)
        {
            const double length = high - low, slack = 1e-9 * (std::abs(min) + std::abs(max) + length);
            if (!(length > 0) || !std::isfinite(slack))
                return true; // without a size, or larger than numbers go
            if (*_inSight >= 0)
            {
                const double part = std::min({*_inSight / it.getZoom(), length, max - min}) - slack;
                return high >= min + part && low <= max - part;
            }
            if (length < max - min)
                return low >= min - slack && high <= max + slack;
            return std::abs(low / 2 + high / 2 - min / 2 - max / 2) <= slack;
        };
        require(isWithin(seen.left, seen.right, limits->left, limits->right) &&
                    isWithin(seen.top, seen.bottom, limits->top, limits->bottom),
                "what is seen is within the limits");
    }

    std::optional<double> _inSight; // of the limits that there are, if that is known

protected:
    std::optional<Point> _zoomLimits; // from x to y
};

class BareWorld : public PlaneWorld
{
public:
    explicit BareWorld(Input& input)
        : PlaneWorld(input)
    {
        _zoomLimits = {0.01, 100};
        _view.createContext(takeBool());
    }

private:
    OrthoView& plane() override { return _view; }

    Heard<OrthoView> _view{*this};
};

class PlanWorld : public PlaneWorld
{
public:
    explicit PlanWorld(Input& input)
        : PlaneWorld(input)
        , _view(*this, takeBool())
    {
    }

private:
    OrthoView& plane() override { return _view; }

    void change() override
    {
        switch (_input.below(14))
        {
        case 0:
            return _view.setBackground(takeColor());
        case 1:
            _view.showAll(takeNumber());
            return;
        case 2:
            return _view.setReach(takeNumber());
        case 3:
            return setOverview();
        case 4:
            return _view.drawing().clear();
        case 5:
        case 6:
        case 7:
        {
            Drawing& drawing = takeBool() ? _view.drawing() : _view.overlay();
            drawing.fill(Path().addRect(takeRect()), takeColor());
            return;
        }
        default:
            PlaneWorld::change();
        }
    }

    void setOverview()
    {
        if (!_pOther)
        {
            _pOther = std::make_unique<Heard<OrthoView>>(*this);
            _pOther->createContext(true);
        }
        const unsigned int which = _input.below(3);
        OrthoView* const pOf = which == 1 ? static_cast<OrthoView*>(&_view) : _pOther.get();
        _view.setOverviewOf(which == 0 ? nullptr : pOf, takeColor());
    }

    void check() override
    {
        PlaneWorld::check();
        require(!_view.getPointer() || isFinite(*_view.getPointer()), "the pointer is somewhere");
        require(!_pOther || isFinite(_pOther->getOrigin()), "what is looked over is somewhere");
    }

    void stop() override
    {
        _view.setOverviewOf(nullptr); // where a drag needs no press
        PlaneWorld::stop();
    }

    std::unique_ptr<Heard<OrthoView>> _pOther;
    Plan _view;
};

} // namespace

void playWithPlane(Input& input) { BareWorld(input).live(); }

void playWithDrawing(Input& input) { PlanWorld(input).live(); }

} // namespace fuzz::views
