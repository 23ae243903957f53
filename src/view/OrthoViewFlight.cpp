#include "PlaneFlight.h"

#include <gui/gl/OrthoView.h>

#include <glm/ext/matrix_clip_space.hpp>

#include <chrono>
#include <cmath>
#include <optional>
#include <tuple>
#include <utility>

namespace gui::gl
{

struct OrthoView::Flight
{
    using Clock = std::chrono::steady_clock;

    PlaneFlight way;
    Fit fit;
    double seconds;
    Clock::time_point begin;
    // Where it was last: elsewhere somebody else has moved the plane.
    td::Point<double> origin;
    double zoom;
};

OrthoView::OrthoView()
    : _projection(glm::ortho(-1.0F, 1.0F, -1.0F, 1.0F, -1.0F, 1.0F))
{
}

OrthoView::~OrthoView() = default;

bool OrthoView::flyTo(const td::RectNormalized<double>& model, double margin, double seconds)
{
    const td::Point<double> center = getCenter(), origin = _origin;
    const double zoom = _zoom;
    const auto width = static_cast<double>(_width);
    if (!(seconds > 0) || !std::isfinite(seconds) || !(width > 0 && _height > 0))
        return fit(model, margin);
    // Nobody hears of where it will end.
    const std::optional<Place> end = placeOf({model, margin});
    if (!end)
        return false;
    const td::Point<double> endCenter(end->origin.x + width / 2 / end->zoom,
                                      end->origin.y + static_cast<double>(_height) / 2 / end->zoom);
    _pFlight.reset(new Flight{PlaneFlight({center, width / zoom}, {endCenter, width / end->zoom}),
                              {model, margin},
                              seconds,
                              Flight::Clock::now(),
                              origin,
                              zoom});
    startAnimation();
    return true;
}

bool OrthoView::flyHome(double seconds)
{
    if (!_home)
        return false;
    const Fit home = _home->fit;
    return flyTo(home.model, home.margin, seconds);
}

bool OrthoView::isFlying() const { return _pFlight != nullptr; }

bool OrthoView::prepareNextFrame()
{
    if (_pFlight == nullptr)
        return false;
    Flight& flight = *_pFlight;
    const double time = std::chrono::duration<double>(Flight::Clock::now() - flight.begin).count() / flight.seconds;
    const bool isLeft = flight.origin != _origin || flight.zoom != _zoom;
    if (isLeft || time >= 1)
    {
        const std::unique_ptr<Flight> pFlight = std::move(_pFlight);
        if (!isLeft)
            fit(pFlight->fit.model, pFlight->fit.margin);
        return false;
    }
    const PlaneFlight::Sight sight = flight.way.at(time * time * (3 - 2 * time));
    setZoom(static_cast<double>(_width) / sight.width);
    setCenter(sight.center);
    if (_pFlight != nullptr) // whoever hears of it may have begun another one
        std::tie(_pFlight->origin, _pFlight->zoom) = std::tie(_origin, _zoom);
    return _pFlight != nullptr;
}

} // namespace gui::gl
