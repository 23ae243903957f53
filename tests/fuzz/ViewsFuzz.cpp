// Views in the hands of a user without a plan and of a program that doesn't care: planes, drawings, plots, models,
// globes and scenes to fly through. What they show stays somewhere, and within its limits.

#include "Views.h"

#include <gui/draw/PlotView.h>
#include <gui/gl/Camera.h>
#include <gui/gl/CameraView.h>

#include <glm/geometric.hpp>

namespace fuzz::views
{

namespace
{

using namespace gui::draw;

class PlotWorld : public ViewWorld
{
public:
    explicit PlotWorld(Input& input)
        : ViewWorld(input)
    {
        _view.add(Series::line({3, 1, 4, 1, 5, 9, 2, 6}));
    }

private:
    gui::gl::View& view() override { return _view; }

    void change() override
    {
        Axis& axis = takeBool() ? _view.axes().x() : _view.axes().y();
        switch (_input.below(8))
        {
        case 0:
            _view.add(Series::line({takeNumber(), takeNumber(), takeNumber()}));
            return;
        case 1:
            axis.setRange(takeNumber(), takeNumber());
            return;
        case 2:
            return axis.setScale(takeBool() ? Scale::logarithmic() : Scale::linear());
        case 3:
            return _view.axes().clear();
        case 4:
            return _view.getPlot().setCrosshair(takeBool());
        case 5:
        {
            PlotStyle style;
            style.labelSize = takeNumber();
            return _view.setStyle(style);
        }
        case 6:
            // Another one of as many words, which knows of the view no less.
            return _view.getPlot().setOnChange(
                [this, words = std::vector<int>(8)]
                {
                    hear();
                    _view.reRender();
                    require(words.size() == 8, "a function that is called is there");
                });
        default:
            _view.axes().fit();
        }
    }

    void check() override { require(_view.axes().x().getRange().low < _view.axes().x().getRange().high, "a range"); }

    std::vector<double> where() override
    {
        const Ticks::Range &x = _view.axes().x().getRange(), &y = _view.axes().y().getRange();
        return {x.low, x.high, y.low, y.high};
    }

    Heard<PlotView> _view{*this};
};

class FlightWorld : public ViewWorld
{
public:
    explicit FlightWorld(Input& input)
        : ViewWorld(input)
    {
        using gui::gl::Context;
        _view.createContext(
            Context(gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::None, Context::Profile::Core41));
        _view.setCamera(&_camera);
    }

private:
    gui::gl::View& view() override { return _view; }
    float takeFloat() { return static_cast<float>(takeNumber()); }

    void change() override
    {
        const float a = takeFloat(), b = takeFloat(), c = takeFloat();
        switch (_input.below(10))
        {
        case 0:
            return _view.setCamera(takeBool() ? nullptr : &_camera);
        case 1:
            expect(!(a > 0 && a < 180));
            return _view.setFieldOfView(a);
        case 2:
            expect(!(a > 0 && a < b && std::isfinite(b)));
            return _view.setDepthRange(a, b);
        case 3:
            return _view.scaleFieldOfView(a);
        case 4:
            return _camera.place({a, b, c}, takeFloat(), takeFloat());
        case 5:
            expect(!(a <= b));
            return takeBool() ? _camera.setYawLimits(a, b) : _camera.setPitchLimits(a, b);
        case 6:
            return _camera.setZoomFactorLimits(a, b);
        case 7:
            return _camera.setSpeed(a);
        case 8:
            takeBool() ? _camera.setYaw(a) : _camera.setPitch(b);
            return _camera.updateCameraVectors();
        default:
            _camera.updatePosition(takeBool());
        }
    }

    void check() override
    {
        require(isFiniteMatrix(_view.getPerspective()) && isFiniteMatrix(_view.getCameraMatrix()),
                "what is seen is somewhere");
        require(std::abs(glm::length(_camera.getFront()) - 1) < 1e-4F, "a camera looks somewhere");
    }

    std::vector<double> where() override
    {
        const glm::dvec3 position = _camera.getPosition(), front = _camera.getFront();
        return {position.x, position.y, position.z, front.x, front.y, front.z};
    }

    // As a frame of an animation does.
    void stop() override
    {
        const std::vector<double> before = where();
        _camera.updatePosition(false);
        require(where() == before, "no key moves it any more");
    }

    gui::gl::Camera _camera;
    Heard<gui::gl::CameraView> _view{*this};
};

void run(const std::uint8_t* bytes, std::size_t n)
{
    Input input(bytes, n);
    switch (input.below(6))
    {
    case 0:
        return playWithPlane(input);
    case 1:
        return playWithDrawing(input);
    case 2:
        return PlotWorld(input).live();
    case 3:
        return playWithModel(input);
    case 4:
        return playWithGlobe(input);
    default:
        FlightWorld(input).live();
    }
}

const Target cTarget("views", run);

} // namespace

} // namespace fuzz::views
