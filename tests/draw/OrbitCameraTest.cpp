#include <gui/draw/OrbitCamera.h>

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <random>
#include <string>

namespace
{

using gui::draw::Box3;
using gui::draw::Eye;
using gui::draw::OrbitCamera;
using Point = td::Point<double>;
using Side = OrbitCamera::Side;

constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double cInfinity = std::numeric_limits<double>::infinity();

class OrbitCameraTest : public testing::Test
{
protected:
    double in(double min, double max) { return std::uniform_real_distribution<double>(min, max)(_engine); }
    glm::dvec3 vector(double size) { return {in(-size, size), in(-size, size), in(-size, size)}; }

    /// One of every kind, somewhere far out.
    OrbitCamera any(int i)
    {
        OrbitCamera camera((i & 1) != 0 ? OrbitCamera::Up::Z : OrbitCamera::Up::Y);
        camera.setSize({in(50, 2000), in(50, 2000)});
        camera.setProjection((i & 2) != 0 ? OrbitCamera::Projection::Orthographic
                                          : OrbitCamera::Projection::Perspective);
        camera.setTurning((i & 4) != 0 ? OrbitCamera::Turning::Free : OrbitCamera::Turning::Upright);
        camera.setFieldOfView(in(5, 120));
        camera.setTarget(vector(6.4e6));
        camera.setDistance(std::pow(10, in(-1, 3)));
        camera.setDirection(in(-180, 180), in(-90, 90));
        return camera;
    }

    Point place(const OrbitCamera& camera) { return {in(0, camera.getSize().width), in(0, camera.getSize().height)}; }

private:
    std::mt19937 _engine{7};
};

double off(const OrbitCamera& camera, const glm::dvec3& point, const Point& place)
{
    const std::optional<glm::dvec3> seen = camera.getEye().project(point);
    return seen ? std::hypot(seen->x - place.x, seen->y - place.y) : cInfinity;
}

// What is under the pointer slips away: about the target instead of the pivot, by one projection, when free.
TEST_F(OrbitCameraTest, PivotsStayWhereTheyAreSeen)
{
    for (int i = 0; i < 2000; ++i)
    {
        OrbitCamera camera = any(i);
        const Point pointer = place(camera);
        const glm::dvec3 pivot = camera.getEye().unproject(pointer, camera.getDistance() * in(0.2, 3));
        // What coordinates of 6.4e6 are right to, in points.
        const double rounding = 1e-6 + 1e-8 / camera.getEye().getSizeAt(pivot);
        for (int step = 0; step < 5; ++step)
        {
            const glm::dmat3 rotation = camera.getPose().rotation;
            camera.turn(pivot, in(-50, 50), in(-50, 50));
            ASSERT_NE(camera.getPose().rotation, rotation);
            ASSERT_LT(off(camera, pivot, pointer), 50 * rounding);
            camera.zoom(pivot, in(0.7, 1.5));
            ASSERT_LT(off(camera, pivot, pointer), 50 * rounding);
        }
        const OrbitCamera::Pose pose = camera.getPose();
        const Eye eye = camera.getEye();
        camera.focus(pivot);
        EXPECT_NEAR(glm::dot(camera.getTarget() - pivot, eye.getDirection()), 0, 1e-7) << "as far as the pivot";
        ASSERT_LT(off(camera, pivot, pointer), 50 * rounding) << "and nothing has moved";
        ASSERT_EQ(camera.getPose().rotation, pose.rotation);

        const Point to = place(camera);
        camera.pan(pivot, to);
        ASSERT_LT(off(camera, pivot, to), 50 * rounding);
    }
}

TEST_F(OrbitCameraTest, TurnsTheWayItSays)
{
    for (const OrbitCamera::Up up : {OrbitCamera::Up::Y, OrbitCamera::Up::Z})
    {
        OrbitCamera camera(up);
        camera.setSize({400, 300});
        camera.setTarget({5, 6, 7});
        const glm::dvec3 top = up == OrbitCamera::Up::Y ? glm::dvec3(0, 1, 0) : glm::dvec3(0, 0, 1);
        const glm::dvec3 front = up == OrbitCamera::Up::Y ? glm::dvec3(0, 0, 1) : glm::dvec3(0, -1, 0);
        const struct
        {
            Side side;
            glm::dvec3 from;
            glm::dvec3 upwards;
        } sides[] = {{Side::Front, front, top},     {Side::Back, -front, top}, {Side::Right, {1, 0, 0}, top},
                     {Side::Left, {-1, 0, 0}, top}, {Side::Top, top, -front},  {Side::Bottom, -top, front}};
        for (const auto& s : sides)
        {
            camera.show(s.side);
            const Eye eye = camera.getEye();
            EXPECT_TRUE(camera.isAt(s.side));
            // Without rounding: what is parallel to an axis is drawn so.
            EXPECT_EQ(eye.getDirection(), -s.from);
            EXPECT_EQ(eye.getUp(), s.upwards);
            EXPECT_EQ(eye.getPosition(), camera.getTarget() + 10.0 * s.from);
        }
        for (const auto turning : {OrbitCamera::Turning::Free, OrbitCamera::Turning::Upright})
        {
            camera.setTurning(turning);
            camera.show(Side::Front);
            camera.turn(camera.getTarget(), 90, 0);
            EXPECT_NEAR(camera.getAzimuth(), 90, 1e-9);
            camera.turn(camera.getTarget(), 0, 30);
            EXPECT_NEAR(camera.getElevation(), 30, 1e-9);
        }
        camera.turn(camera.getTarget(), 0, 500);
        EXPECT_EQ(camera.getElevation(), 90) << "and not over the top";
        ASSERT_TRUE(camera.look(camera.getTarget() + 3.0 * (front + top), camera.getTarget()));
        EXPECT_NEAR(camera.getElevation(), 45, 1e-12);
        EXPECT_NEAR(camera.getAzimuth(), 0, 1e-12);
    }
}

// What is fitted reaches the margin and not beyond, and nothing of it is cut away by the planes.
TEST_F(OrbitCameraTest, FitsShowTheWholeBox)
{
    for (int i = 0; i < 2000; ++i)
    {
        OrbitCamera camera = any(i);
        Box3 box;
        const glm::dvec3 middle = vector(6.4e6), size(in(0, 9), in(0, 9), i % 3 == 0 ? 0 : in(0, 900));
        box.add(middle - size);
        box.add(middle + size);
        const double margin = in(0, 20);
        ASSERT_TRUE(camera.fit(box, margin));
        double room = cInfinity;
        const auto measure = [&]
        {
            const Eye eye = camera.getEye();
            room = cInfinity;
            for (unsigned int corner = 0; corner < 8; ++corner)
            {
                const std::optional<glm::dvec3> place = eye.project(box.getCorner(corner));
                ASSERT_TRUE(place);
                room = std::min(
                    {room, place->x, place->y, camera.getSize().width - place->x, camera.getSize().height - place->y});
                ASSERT_GT(place->z, eye.getNearest());
                ASSERT_LT(place->z, eye.getFarthest());
            }
        };
        measure();
        ASSERT_NEAR(room, margin, 1e-3);
        // The view changes: again, until somebody moves it.
        camera.setSize({camera.getSize().height, camera.getSize().width});
        measure();
        ASSERT_NEAR(room, margin, 1e-3);
        camera.setProjection(OrbitCamera::Projection::Perspective);
        camera.show(Side::Corner);
        measure();
        ASSERT_NEAR(room, margin, 1e-3);
        camera.zoom(box.getCenter(), 2);
        const OrbitCamera::Pose moved = camera.getPose();
        camera.setSize({999, 998});
        ASSERT_EQ(camera.getPose(), moved);
    }

    // Before there is a size it waits for one.
    OrbitCamera camera;
    ASSERT_TRUE(camera.fit({{0, 0, 0}, {2, 2, 2}}));
    camera.setDirection(20, 30);
    EXPECT_FALSE(camera.getEye().isValid());
    camera.setSize({300, 200});
    EXPECT_EQ(camera.getTarget(), glm::dvec3(1));
    EXPECT_TRUE(camera.isFitted());
}

// Planes that cut away what is in view, or that leave most of the depth to what nobody sees.
TEST_F(OrbitCameraTest, PlanesEncloseWhatIsSeen)
{
    int nTight = 0;
    for (int i = 0; i < 600; ++i)
    {
        OrbitCamera camera = any(i);
        Box3 box;
        box.add(camera.getTarget() + vector(3 * camera.getDistance()));
        box.add(camera.getTarget() + vector(3 * camera.getDistance()));
        camera.setBounds(box);
        const Eye eye = camera.getEye();
        ASSERT_LT(eye.getNearest(), eye.getFarthest());
        // Nearer than that it is cut away for the depth's sake.
        const double least = std::min(1e-4 * eye.getFarthest(), camera.getDistance() / 100);
        const bool isLeast = !eye.isOrthographic() && eye.getNearest() < 1.001 * least;
        double nearest = cInfinity, farthest = -cInfinity;
        for (int k = 0; k < 3000; ++k)
        {
            const glm::dvec3 part(in(-0.05, 1.05), in(-0.05, 1.05), in(-0.05, 1.05));
            const glm::dvec3 point = box.min + glm::clamp(part, 0.0, 1.0) * box.getSize();
            const std::optional<glm::dvec3> seen = eye.project(point);
            if (!seen || seen->x < 0 || seen->y < 0 || seen->x > camera.getSize().width ||
                seen->y > camera.getSize().height)
                continue;
            nearest = std::min(nearest, seen->z);
            farthest = std::max(farthest, seen->z);
            ASSERT_LT(seen->z, eye.getFarthest());
            ASSERT_TRUE(seen->z > eye.getNearest() || isLeast);
        }
        const double slack = 0.2 * (farthest - nearest);
        if (slack > 0 && eye.getFarthest() - farthest < slack && nearest - eye.getNearest() < slack)
            ++nTight;
    }
    EXPECT_GT(nTight, 200);
}

// Ends beside the view that was asked for; frames that change where it leads; a flight that rolls, or takes the long
// way round.
TEST_F(OrbitCameraTest, FlightsEndExactlyThere)
{
    const Box3 box{{6.4e6, 0, 0}, {6.4e6 + 4, 2, 2}};
    for (int i = 0; i < 8; ++i)
    {
        for (const Side side : {Side::Front, Side::Top, Side::Bottom, Side::Left, Side::Corner})
        {
            OrbitCamera camera = any(i), other = camera;
            OrbitCamera there = camera;
            there.show(side);
            camera.flyTo(side, 0.5);
            const glm::dvec3 up = camera.getUp() == OrbitCamera::Up::Y ? glm::dvec3(0, 1, 0) : glm::dvec3(0, 0, 1);
            const double roll = camera.getTurning() == OrbitCamera::Turning::Upright ? 1e-9 : 1;
            while (camera.advance(in(0.001, 0.05)))
                ASSERT_NEAR(glm::dot(camera.getEye().getRight(), up), 0, roll);
            EXPECT_EQ(camera.getPose(), there.getPose());
            EXPECT_TRUE(camera.isAt(side));
            EXPECT_FALSE(camera.advance(1));

            // To a box, in one frame or in many.
            ASSERT_TRUE(camera.flyTo(box, 10, 0.4) && there.flyTo(box, 10, 0.4));
            for (int frame = 0; frame < 10; ++frame)
                camera.advance(0.02);
            there.advance(0.2);
            EXPECT_LT(glm::distance(camera.getTarget(), there.getTarget()), 1e-6);
            there.advance(100);
            other.show(side);
            other.fit(box, 10);
            while (camera.advance(0.05))
                EXPECT_FALSE(camera.isFitted());
            EXPECT_EQ(there.getPose(), other.getPose());
            EXPECT_EQ(camera.getPose(), other.getPose());
            EXPECT_TRUE(camera.isFitted());
        }
    }
    // The short way: from 170 to -170 degrees past the back.
    OrbitCamera camera;
    camera.setSize({100, 100});
    camera.setDirection(-170, 0);
    OrbitCamera::Pose pose = camera.getPose();
    camera.setDirection(170, 0);
    ASSERT_TRUE(camera.flyTo(pose, 1));
    camera.advance(0.5);
    EXPECT_NEAR(std::abs(camera.getAzimuth()), 180, 1e-9);
    // Whoever moves it ends it.
    camera.turn({0, 0, 0}, 1, 0);
    EXPECT_FALSE(camera.isMoving());
    ASSERT_TRUE(camera.flyTo(pose, 1));
    EXPECT_TRUE(camera.setPose(pose));
    EXPECT_FALSE(camera.isMoving());
}

// A glide that never ends, that depends on the frames, or that goes another way than the pointer went.
TEST_F(OrbitCameraTest, GlidesComeToRest)
{
    OrbitCamera coarse;
    coarse.setSize({500, 500});
    coarse.setInertia(0.2);
    OrbitCamera fine = coarse;
    const double from = coarse.getAzimuth();
    coarse.glide(glm::dvec3(0), 100, 0);
    fine.glide(glm::dvec3(0), 100, 0);
    int nFrames = 0;
    for (bool goesOn = true; goesOn; ++nFrames)
    {
        goesOn = coarse.advance(1 / 60.0);
        fine.advance(1 / 240.0);
        fine.advance(3 / 240.0);
        EXPECT_NEAR(coarse.getAzimuth(), fine.getAzimuth(), 0.03);
    }
    EXPECT_LT(nFrames, 120);
    EXPECT_NEAR(coarse.getAzimuth() - from, 20, 1e-9) << "the speed times the time";
    EXPECT_FALSE(coarse.isMoving() || coarse.advance(1));

    coarse.glide(glm::dvec3(3, 0, 0));
    while (coarse.advance(0.5))
    {
    }
    EXPECT_NEAR(coarse.getTarget().x, 0.6, 1e-12);
    coarse.setInertia(0);
    coarse.glide(glm::dvec3(3, 0, 0));
    EXPECT_FALSE(coarse.isMoving());
}

TEST_F(OrbitCameraTest, StaysWithinItsLimits)
{
    OrbitCamera camera;
    camera.setSize({500, 500});
    camera.setDistanceLimits(2, 20);
    camera.setElevationLimits(5, 60);
    camera.setTargetLimits({{-1, -1, -1}, {1, 1, 1}});
    camera.zoom({0, 0, 0}, 1e9);
    EXPECT_EQ(camera.getDistance(), 2);
    camera.zoom({0, 0, 0}, 1e-9);
    EXPECT_EQ(camera.getDistance(), 20);
    camera.turn({0, 0, 0}, 0, -200);
    EXPECT_NEAR(camera.getElevation(), 5, 1e-9);
    camera.flyTo(Side::Top, 0.1);
    while (camera.advance(0.03))
    {
    }
    EXPECT_NEAR(camera.getElevation(), 60, 1e-9);
    camera.pan({0, 0, 0}, {5000, 250});
    EXPECT_TRUE((Box3{{-1, -1, -1}, {1, 1, 1}}.contains(camera.getTarget())));
    ASSERT_TRUE(camera.fit({{0, 0, 0}, {1e6, 1, 1}}));
    EXPECT_EQ(camera.getDistance(), 20);
    camera.setElevationLimits(-90, 90);
    camera.turn({0, 0, 0}, 0, -200);
    EXPECT_NEAR(camera.getElevation(), -90, 1e-9);
}

TEST_F(OrbitCameraTest, BadInputChangesNothing)
{
    OrbitCamera camera = any(0);
    camera.setBounds({camera.getTarget() - 5.0, camera.getTarget() + 5.0});
    const OrbitCamera before = camera;
    const glm::dvec3 bad(0, cNaN, 0), target = camera.getTarget();
    OrbitCamera::Pose skew = camera.getPose(), empty = skew, mirrored = skew;
    skew.rotation[0] *= 2;
    empty.distance = 0;
    mirrored.rotation[0] *= -1;
    const std::function<bool()> acts[] = {
        [&] { return camera.fit(Box3()); },
        [&] {
            return camera.fit({{0, 0, 0}, {1, cInfinity, 1}});
        },
        [&] {
            return camera.fit({{0, 0, 0}, {1, 1, 1}}, 1e9);
        },
        [&] {
            return camera.fit({{0, 0, 0}, {1, 1, 1}}, cNaN);
        },
        [&] { return camera.flyTo(Box3()); },
        [&] {
            return camera.flyTo(Box3{{0, 0, 0}, {1, 1, 1}}, 1e9);
        },
        [&] { return camera.setPose(skew); },
        [&] { return camera.setPose(empty); },
        [&] { return camera.flyTo(mirrored); },
        [&] { return camera.look(target, target); },
        [&] { return camera.look(bad, target); },
        [&] {
            return camera.setSize({0, 100}), false;
        },
        [&] {
            return camera.setSize({cNaN, 100}), false;
        },
        [&] {
            return camera.setBounds({{0, 0, 0}, {cInfinity, 1, 1}}), false;
        },
        [&] { return camera.turn(bad, 1, 1), camera.turn(target, cNaN, 1), camera.turn(target, 1, cInfinity), false; },
        [&] { return camera.zoom(bad, 2), camera.zoom(target, 0), camera.zoom(target, cNaN), false; },
        [&] { return camera.zoom(target, -1), camera.zoom(target, cInfinity), false; },
        [&] {
            return camera.pan(bad, {5, 5}), camera.pan(target, {cNaN, 5}), false;
        },
        [&] {
            return camera.pan(target + 100.0 * (target - camera.getEye().getPosition()) * -1.0, {5, 5}), false;
        },
        [&] { return camera.focus(bad), camera.setTarget(bad), camera.setDistance(-1), false; },
        [&] { return camera.setDirection(cNaN, 0), camera.setInertia(-1), camera.advance(cNaN); },
        [&] { return camera.glide(bad, 1, 1), camera.glide(bad), camera.isMoving(); },
    };
    int i = 0;
    for (const auto& act : acts)
    {
        EXPECT_FALSE(act()) << i;
        EXPECT_EQ(camera.getPose(), before.getPose()) << i;
        EXPECT_EQ(camera.getEye().getMatrix(), before.getEye().getMatrix()) << i;
        EXPECT_EQ(camera.getBounds(), before.getBounds()) << i;
        ++i;
    }
}

} // namespace
