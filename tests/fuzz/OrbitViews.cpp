// Models to turn, and globes.

#include "Views.h"

#include <gui/draw/GlobeView.h>
#include <gui/draw/Instances.h>
#include <gui/draw/OrbitView.h>

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <optional>

namespace fuzz::views
{

namespace
{

using namespace gui::draw;

template <typename Base>
class Space : public Heard<Base>
{
public:
    using Heard<Base>::Heard;

protected:
    using Heard<Base>::hear;

    void drawScene(const Eye& eye) override
    {
        static Instances* const s_pSolid = makeSolid();
        s_pSolid->draw(eye);
        hear();
    }
    void drawOver(const Eye&) override { hear(); }
    std::optional<glm::dvec3> pick(const Ray& ray) override
    {
        hear();
        return Base::pick(ray);
    }
    void onPointed(const std::optional<Ray>& ray) override
    {
        require(!ray || (isFinite(ray->origin) && isFinite(ray->direction)), "a pointer is somewhere");
        hear();
        Base::onPointed(ray);
    }
    void onClicked(const Ray& ray) override
    {
        require(isFinite(ray.origin) && isFinite(ray.direction), "a click is somewhere");
        hear();
        Base::onClicked(ray);
    }
    void onCameraMoved() override
    {
        hear();
        Base::onCameraMoved();
    }
    bool onAnimate(double) override
    {
        hear();
        return this->decide();
    }

private:
    // It stays, and its programs with it.
    static Instances* makeSolid()
    {
        auto* const pSolid = new Instances;
        Mesh mesh;
        mesh.positions = {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}};
        mesh.indices = {0, 1, 2, 0, 3, 1, 0, 2, 3, 1, 3, 2};
        require(pSolid->setMesh(mesh) && pSolid->add({}), "there is something to see");
        return pSolid;
    }
};

class OrbitWorld : public ViewWorld
{
protected:
    using ViewWorld::ViewWorld;

    struct Range
    {
        double min;
        double max;
    };
    struct EyeRange
    {
        glm::dvec3 center;
        Range distance;
    };

    virtual OrbitView& orbit() = 0;
    OrbitView& view() override { return orbit(); }
    OrbitCamera& camera() { return orbit().camera(); }
    std::vector<double> where() override
    {
        const OrbitCamera::Pose& pose = camera().getPose();
        std::vector<double> numbers{pose.target.x, pose.target.y, pose.target.z, pose.distance,
                                    camera().isMoving() ? 1.0 : 0.0};
        const double* const pFirst = &pose.rotation[0][0];
        numbers.insert(numbers.end(), pFirst, pFirst + 9);
        return numbers;
    }

    glm::dvec3 takeVector()
    {
        const double x = takeNumber(), y = takeNumber();
        return {x, y, takeNumber()};
    }
    Box3 takeBox()
    {
        Box3 box;
        box.add(takeVector());
        box.add(takeVector());
        if (_input.below(8) == 1)
            box.max = takeVector();
        return box;
    }

    void setClock()
    {
        orbit().control().setClock([this] { return _seconds += 1.0 / 64; });
    }

    void change() override
    {
        switch (_input.below(8))
        {
        case 0:
            return changeView();
        case 1:
        case 2:
            return setLimits();
        case 3:
            return move();
        case 4:
            return steer();
        default:
            show();
        }
    }

    void noteLimits() { _isLate = _hasFlown = camera().isMoving(); }

    void check() override
    {
        const OrbitCamera::Pose& pose = camera().getPose();
        require(pose.distance > 0, "a camera has a distance");
        const glm::dmat3 one = pose.rotation * glm::transpose(pose.rotation);
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 3; ++k)
                require(std::abs(one[i][k] - (i == k ? 1 : 0)) < 1e-9, "a camera is turned, and nothing else");
        checkLimits();
        checkRoundTrip();
    }

    void stop() override { camera().stop(); }

    std::optional<Range> _distances;
    std::optional<EyeRange> _eyes;

private:
    void changeView()
    {
        OrbitView& it = orbit();
        switch (_input.below(8))
        {
        case 0:
            return it.setDepth(static_cast<Eye::Depth>(_input.below(3)));
        case 1:
        {
            Clipping clipping(takeBool() ? Clipping::Kind::Cut : Clipping::Kind::Notch);
            clipping.add(takeVector(), takeVector());
            return it.setClipping(clipping);
        }
        case 2:
            return it.setShadows({.quality = static_cast<Shadows::Quality>(_input.below(2)),
                                  .direction = takeVector(),
                                  .occlusion = takeNumber(),
                                  .reach = takeNumber()});
        case 3:
            return it.setBackground(takeColor(), takeColor());
        case 4:
            return it.setSky(1 + static_cast<int>(_input.below(6)),
                             [this, words = std::vector<int>(8)](const glm::vec3& direction)
                             {
                                 hear();
                                 require(words.size() == 8, "a function that is called is there");
                                 return direction;
                             });
        case 5:
            return it.control().setGizmo(static_cast<OrbitControl::Corner>(_input.below(5)));
        case 6:
            return it.control().setOnChange(
                [this, words = std::vector<int>(8)]
                {
                    hear();
                    orbit().reRender();
                    require(words.size() == 8, "a function that is called is there");
                });
        default:
            it.control().setPick(
                [this, words = std::vector<int>(8)](const Point& point)
                {
                    hear();
                    require(words.size() == 8, "a function that is called is there");
                    return std::optional(camera().getEye().unproject(point, takeNumber()));
                });
        }
    }

    void setLimits()
    {
        const double min = takeNumber(), max = takeNumber();
        switch (_input.below(6))
        {
        case 0:
            expect(!(min > 0 && min <= max && std::isfinite(max)));
            camera().setDistanceLimits(min, max);
            if (min > 0 && min <= max && std::isfinite(max))
                _distances = {min, max};
            break;
        case 1:
            expect(!(min >= -90 && min <= max && max <= 90));
            camera().setElevationLimits(min, max);
            if (min >= -90 && min <= max && max <= 90)
                _elevations = {min, max};
            break;
        case 2:
            camera().setTargetLimits(takeBox());
            break;
        case 3:
            return camera().setInertia(min);
        case 4:
            expect(!(min > 0 && min < 180));
            return camera().setFieldOfView(min);
        default:
        {
            const glm::dvec3 center = takeVector();
            expect(!(isFinite(center) && min >= 0 && min <= max && std::isfinite(max)));
            camera().setEyeLimits(center, min, max);
            if (isFinite(center) && min >= 0 && min <= max && std::isfinite(max))
                _eyes = {center, {min, max}};
        }
        }
        noteLimits();
    }

    void move()
    {
        OrbitCamera& it = camera();
        switch (_input.below(8))
        {
        case 0:
            return it.turn(takeVector(), takeNumber(), takeNumber());
        case 1:
            return it.zoom(takeVector(), takeNumber());
        case 2:
            return it.pan(takeVector(), takePlace());
        case 3:
            return it.focus(takeVector());
        case 4:
            return it.glide(takeVector(), takeNumber(), takeNumber());
        case 5:
            return it.glide(takeVector());
        case 6:
            return it.setTurning(takeBool() ? OrbitCamera::Turning::Upright : OrbitCamera::Turning::Free);
        default:
            it.setProjection(takeBool() ? OrbitCamera::Projection::Perspective : OrbitCamera::Projection::Orthographic);
        }
    }

    void steer()
    {
        OrbitCamera& it = camera();
        switch (_input.below(7))
        {
        case 0:
            return it.setDirection(takeNumber(), takeNumber());
        case 1:
            return it.setTarget(takeVector());
        case 2:
            return it.setDistance(takeNumber());
        case 3:
            it.look(takeVector(), takeVector());
            return;
        case 4:
            return it.show(static_cast<OrbitCamera::Side>(_input.below(7)));
        case 5:
            it.flyTo({takeVector(), it.getPose().rotation, takeNumber()}, takeNumber());
            return;
        default:
            it.setBounds(takeBox());
        }
    }

    void show()
    {
        OrbitView& it = orbit();
        const Box3 box = takeBox();
        const double margin = takeNumber();
        const unsigned int before = nActs(), how = _input.below(4);
        if (how == 0)
            return it.flyTo(static_cast<OrbitCamera::Side>(_input.below(7)), margin);
        const std::vector<double> place = where();
        const bool isDone = how == 1 ? it.flyTo(box, margin, takeNumber()) : it.fit(box, margin);
        require(isDone || !isUntouched(before) || where() == place, "what can't be shown changes nothing");
    }

    void checkLimits()
    {
        const OrbitCamera::Pose& pose = camera().getPose();
        if (_isLate) // for a flight that was under way
            return;
        if (_eyes)
        {
            const glm::dvec3 eye = pose.target + pose.distance * glm::transpose(pose.rotation)[2];
            const double distance = glm::distance(eye, _eyes->center);
            const double slack = 1e-6 * _eyes->distance.max +
                                 1e-12 * (glm::length(pose.target) + glm::length(_eyes->center) + pose.distance);
            require(!std::isfinite(distance + slack) ||
                        (distance >= _eyes->distance.min - slack && distance <= _eyes->distance.max + slack),
                    "an eye is as near as it may be");
        }
        // Flights go beyond, and may be stopped there.
        _hasFlown = _hasFlown || camera().isMoving();
        if (_hasFlown)
            return;
        require(!_distances || (pose.distance >= _distances->min && pose.distance <= _distances->max),
                "a distance is within its limits");
        const double elevation = camera().getElevation();
        require(camera().getTurning() == OrbitCamera::Turning::Free ||
                    (elevation >= _elevations.min - 1e-6 && elevation <= _elevations.max + 1e-6),
                "an elevation is within its limits");
    }

    // To a millionth of the view's size, or what double can tell apart there.
    void checkRoundTrip()
    {
        const Eye eye = camera().getEye();
        const Point place(_input.below(60), _input.below(40));
        const double pixel = eye.isValid() ? eye.getSizeAt(camera().getTarget()) : 0;
        if (!(pixel > 0))
            return;
        const glm::dvec3 there = camera().getPlace(place);
        const std::optional<glm::dvec3> back = eye.project(there);
        const td::Size<double>& size = eye.getSize();
        const double lost = 1e-13 * (glm::length(eye.getPosition()) + glm::length(there)) / pixel;
        require(!back || !(lost < 1) ||
                    std::hypot(back->x - place.x, back->y - place.y) <= 1e-6 * (size.width + size.height) + lost,
                "a point comes back to where it was");
    }

    Range _elevations{-90, 90};
    double _seconds = 0;
    bool _isLate = false, _hasFlown = false;
};

class ModelWorld : public OrbitWorld
{
public:
    explicit ModelWorld(Input& input)
        : OrbitWorld(input)
        , _view(*this, takeBool() ? OrbitCamera::Up::Y : OrbitCamera::Up::Z)
    {
        setClock();
        _view.createContext();
        _view.fit({glm::dvec3(-1), glm::dvec3(1)}, 2);
    }

private:
    OrbitView& orbit() override { return _view; }

    Space<OrbitView> _view;
};

class Earth : public Space<GlobeView>
{
public:
    using Space::Space;

protected:
    void onPlacePointed(const std::optional<Globe::Place>& place) override
    {
        require(!place || isFinite(*place), "what is pointed at is somewhere");
        hear();
    }
};

class GlobeWorld : public OrbitWorld
{
public:
    explicit GlobeWorld(Input& input)
        : OrbitWorld(input)
        , _view(*this, Globe{std::ldexp(1 + _input.below(255), static_cast<int>(_input.below(64)) - 32)})
    {
        setClock();
        _view.createContext();
        const double radius = _view.getGlobe().radius;
        noteHeights(radius / 100, 8 * radius);
    }

private:
    OrbitView& orbit() override { return _view; }

    void noteHeights(double lowest, double highest)
    {
        const double radius = _view.getGlobe().radius;
        _eyes = {glm::dvec3(0), {radius + lowest, radius + highest}};
        _distances = {0.7 * lowest, radius + highest};
        noteLimits();
    }

    void change() override
    {
        const unsigned int how = _input.below(6);
        if (how > 1)
            return OrbitWorld::change();
        if (how == 0)
        {
            const double lowest = takeNumber(), highest = takeNumber();
            const bool isRange = lowest > 0 && lowest <= highest && std::isfinite(highest);
            expect(!isRange);
            _view.setHeightLimits(lowest, highest);
            if (isRange)
                noteHeights(lowest, highest);
            return;
        }
        const std::vector<double> place = where();
        const unsigned int before = nActs();
        const bool isDone = _view.look(takePoint(), takeNumber(), takePoint(), takeNumber());
        require(isDone || !isUntouched(before) || where() == place, "what can't be looked at changes nothing");
    }

    Earth _view;
};

} // namespace

void playWithModel(Input& input) { ModelWorld(input).live(); }

void playWithGlobe(Input& input) { GlobeWorld(input).live(); }

} // namespace fuzz::views
