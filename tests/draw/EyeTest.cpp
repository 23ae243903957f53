#include <gui/draw/Eye.h>
#include <gui/gl/Camera.h>
#include <gui/gl/CameraView.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <glm/vec4.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <random>

namespace
{

using gui::draw::Box3;
using gui::draw::Eye;
using gui::draw::Ray;
using Point = td::Point<double>;
using Rational = __float128; // 113 bits: what the doubles below would be without rounding

constexpr double cInfinity = std::numeric_limits<double>::infinity();

class Chance
{
public:
    double in(double min, double max) { return std::uniform_real_distribution<double>(min, max)(_engine); }
    glm::dvec3 vector(double size) { return {in(-size, size), in(-size, size), in(-size, size)}; }
    glm::dmat3 rotation()
    {
        const glm::dvec3 back = glm::normalize(vector(1)), right = glm::normalize(glm::cross(vector(1), back));
        return glm::transpose(glm::dmat3(right, glm::cross(back, right), back));
    }

private:
    std::mt19937 _engine{20};
};

struct Sort
{
    const char* name;
    bool isPerspective;
    Eye::Depth depth;
};
constexpr Sort cSorts[] = {{"perspective", true, Eye::Depth::Usual},
                           {"orthographic", false, Eye::Depth::Usual},
                           {"reversed", true, Eye::Depth::Reversed}};

constexpr td::Size<double> cSize(1200, 700);

Eye makeEye(Chance& chance, const Sort& sort, const glm::dvec3& position, double nearest, double farthest)
{
    const double aspect = cSize.width / cSize.height, half = 0.35 * nearest;
    glm::dmat4 projection = sort.isPerspective
                                ? glm::frustum(-half * aspect, half * aspect * 1.1, -half, half, nearest, farthest)
                                : glm::ortho(-aspect, aspect, -1.0, 1.0, nearest, farthest);
    if (sort.depth == Eye::Depth::Reversed)
    {
        projection[2][2] = 0;
        projection[3][2] = nearest;
    }
    return {position, chance.rotation(), projection, cSize, 2, sort.depth};
}

// Where a point is seen, without rounding, and its depth in the buffer.
std::array<Rational, 3> exactPlace(const Eye& eye, const glm::dvec3& point)
{
    Rational seen[4] = {0, 0, 0, 1};
    for (int row = 0; row < 3; ++row)
        for (int axis = 0; axis < 3; ++axis)
            seen[row] +=
                Rational(eye.getRotation()[axis][row]) * (Rational(point[axis]) - Rational(eye.getPosition()[axis]));
    Rational clip[4] = {};
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            clip[row] += Rational(eye.getProjection()[column][row]) * seen[column];
    const Rational depth = clip[2] / clip[3];
    return {(clip[0] / clip[3] + 1) / 2 * Rational(eye.getSize().width),
            (1 - clip[1] / clip[3]) / 2 * Rational(eye.getSize().height),
            eye.getDepth() == Eye::Depth::Reversed ? depth : (depth + 1) / 2};
}

double off(const Point& point, const std::array<Rational, 3>& exact)
{
    return std::hypot(static_cast<double>(Rational(point.x) - exact[0]),
                      static_cast<double>(Rational(point.y) - exact[1]));
}

// Differences taken too late, of coordinates instead of their distances from the eye: with the eye on an earth of 6.4e6
// m they are off by pixels; a projection that is not symmetric; a y that points the other way.
TEST(EyeTest, PlacesAreThoseOf128BitArithmetic)
{
    Chance chance;
    for (const Sort& sort : cSorts)
    {
        SCOPED_TRACE(sort.name);
        for (int i = 0; i < 2000; ++i)
        {
            const Eye eye = makeEye(chance, sort, chance.vector(1e7), 0.05, 400);
            const Point place(chance.in(0, cSize.width), chance.in(0, cSize.height));
            const double distance = std::pow(10, chance.in(-1, 2.5));
            const glm::dvec3 point = eye.unproject(place, distance);
            const std::array<Rational, 3> exact = exactPlace(eye, point);
            // A coordinate of 1e7 is right to 1e-9, which the nearest magnify to some 1e-5 of a point.
            ASSERT_LT(off(place, exact), 1e-4);

            const std::optional<glm::dvec3> seen = eye.project(point);
            ASSERT_TRUE(seen);
            ASSERT_LT(off({seen->x, seen->y}, exact), 1e-7);
            ASSERT_NEAR(seen->z, eye.getDistance(point), 1e-9);
            ASSERT_NEAR(seen->z, distance, 1e-8);
            ASSERT_NEAR(eye.getDistanceOfDepth(static_cast<double>(exact[2])), distance, 1e-7 * distance);

            const Ray ray = eye.getRay(place);
            ASSERT_NEAR(glm::length(ray.direction), 1, 1e-14);
            ASSERT_NEAR(eye.getDistance(ray.origin), 0.05, 1e-8);
            ASSERT_LT(off(place, exactPlace(eye, ray.at(distance))), 1e-4);

            // One point of the screen there.
            const Point beside(place.x, place.y + (place.y < 350 ? 1 : -1));
            ASSERT_NEAR(glm::distance(point, eye.unproject(beside, distance)) / eye.getSizeAt(point), 1, 1e-4);

            // What a shader does with the float distances from an origin near by.
            const glm::dvec3 origin = point + chance.vector(100 * eye.getSizeAt(point));
            const glm::vec4 clip = eye.getMatrix(origin) * glm::vec4(glm::vec3(point - origin), 1);
            const Point shaded((static_cast<double>(clip.x / clip.w) + 1) / 2 * cSize.width,
                               (1 - static_cast<double>(clip.y / clip.w)) / 2 * cSize.height);
            ASSERT_LT(off(shaded, exact), 0.01);

            // A part of the view shows the same, from its own corner on.
            const Eye part = eye.getPart({place.x - 3, place.y - 5, place.x + 17, place.y + 5});
            const std::optional<glm::dvec3> inPart = part.project(point);
            ASSERT_TRUE(inPart);
            ASSERT_NEAR(inPart->x, 3, 1e-4);
            ASSERT_NEAR(inPart->y, 5, 1e-4);

            // A slice begins and ends where it was told to, and shows all else as it was.
            const bool isEndless = sort.isPerspective && i % 2 == 0;
            const Eye slice = eye.getBetween(distance / 2, isEndless ? cInfinity : distance * 3);
            ASSERT_NEAR(slice.getNearest(), distance / 2, 1e-9 * distance);
            ASSERT_TRUE(isEndless || std::abs(slice.getFarthest() / distance - 3) < 1e-6);
            ASSERT_NEAR(slice.project(point)->x, seen->x, 1e-7);
        }
    }
}

// Boxes that are seen and left out: a sign, or an extent along the wrong axis; a test that lets all pass.
TEST(EyeTest, SeesBoxesOfWhichAPointIsInView)
{
    Chance chance;
    int nSeen = 0, nHidden = 0;
    for (const Sort& sort : cSorts)
    {
        SCOPED_TRACE(sort.name);
        for (int i = 0; i < 3000; ++i)
        {
            const Eye eye = makeEye(chance, sort, chance.vector(1e6), 1, 10);
            Box3 box;
            const glm::dvec3 middle = eye.getPosition() + chance.vector(9);
            const double size = chance.in(0, 4);
            box.add(middle + chance.vector(size));
            box.add(middle + chance.vector(size));
            bool isInView = false;
            for (int k = 0; k < 60 && !isInView; ++k)
            {
                const glm::dvec3 part(chance.in(0, 1), chance.in(0, 1), chance.in(0, 1));
                const std::optional<glm::dvec3> place = eye.project(box.min + part * box.getSize());
                isInView = place && place->x >= 0 && place->y >= 0 && place->x <= cSize.width &&
                           place->y <= cSize.height && place->z >= 1 &&
                           (place->z <= 10 || sort.depth == Eye::Depth::Reversed);
            }
            ASSERT_TRUE(!isInView || eye.sees(box));
            ++(isInView ? nSeen : nHidden);
            nHidden -= !isInView && eye.sees(box) ? 1 : 0;
        }
    }
    EXPECT_GT(nSeen, 500);
    EXPECT_GT(nHidden, 5000) << "and not all that is beside the view";
}

TEST(EyeTest, SeesNothingWithoutASizeAndBehind)
{
    Chance chance;
    const Eye good = makeEye(chance, cSorts[0], {1, 2, 3}, 1, 10);
    const Box3 all{{-100, -100, -100}, {100, 100, 100}};
    EXPECT_TRUE(good.sees(all));
    EXPECT_FALSE(good.sees(Box3()));
    EXPECT_TRUE(good.sees({{-cInfinity, 0, 0}, {cInfinity, 1, 1}}));
    EXPECT_FALSE(good.project(good.getPosition() - good.getDirection()));
    EXPECT_FALSE(good.project({std::nan(""), 0, 0}));
    for (const Eye& bad :
         {Eye(), Eye(good.getPosition(), good.getRotation(), good.getProjection(), {0, 100}),
          Eye({std::nan(""), 0, 0}, good.getRotation(), good.getProjection(), cSize),
          Eye(good.getPosition(), good.getRotation(), glm::dmat4(cInfinity), cSize), good.getPart({5, 5, 5, 9})})
    {
        EXPECT_FALSE(bad.isValid());
        EXPECT_FALSE(bad.sees(all));
        EXPECT_FALSE(bad.project(good.getPosition() + good.getDirection()));
        EXPECT_EQ(bad.getRay({1, 1}).direction, bad.getDirection());
    }
}

struct FlyingView : gui::gl::CameraView
{
    using CameraView::onResize;
};

// The flying camera's rays: with its own matrices, whatever its zoom.
TEST(EyeTest, LooksThroughAFlyingCamera)
{
    FlyingView view;
    EXPECT_FALSE(Eye(view).isValid());
    gui::gl::Camera camera({1, 2, 3}, -60, 25);
    camera.processZoom(3);
    view.setCamera(&camera);
    view.onResize({800, 600});
    // The view has no size of its own before it is in a window.
    const Eye seen(view);
    const Eye eye(seen.getPosition(), seen.getRotation(), seen.getProjection(), {800, 600});
    for (const Point& place : {Point(400, 300), Point(10, 20), Point(700, 599)})
    {
        const glm::dvec3 point = eye.getRay(place).at(20);
        const glm::vec4 clip = view.getPerspective() * view.getCameraMatrix() * glm::vec4(glm::vec3(point), 1);
        EXPECT_NEAR((clip.x / clip.w + 1) * 400, place.x, 0.01);
        EXPECT_NEAR((1 - clip.y / clip.w) * 300, place.y, 0.01);
    }
}

} // namespace
