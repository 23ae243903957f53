// Triangles, lines and points of any numbers, found with a tree as without one, also after they moved.

#include "Fuzz.h"

#include <gui/draw/TriangleIndex.h>

#include <glm/ext/matrix_clip_space.hpp>

#include <algorithm>
#include <tuple>

namespace fuzz::triangleindex
{

namespace
{

using namespace gui::draw;

// Way 0 is on a grid of few numbers, where much is the same, flat or edge-on; way 2 is any bits.
glm::dvec3 takeVector(Input& input, unsigned int way)
{
    const auto take = [&]() -> double
    {
        if (way == 0)
            return input.below(5) - 2.0;
        return way == 1 ? input.take<std::int16_t>() / 1024.0 : input.take<double>();
    };
    const double x = take(), y = take();
    return {x, y, take()};
}

bool isSame(const TriangleIndex::Hit& a, const TriangleIndex::Hit& b)
{
    return a.index == b.index && a.distance == b.distance && a.aside == b.aside && a.isFront == b.isFront;
}

bool isSame(const std::optional<TriangleIndex::Hit>& a, const std::optional<TriangleIndex::Hit>& b)
{
    return a.has_value() == b.has_value() && (!a || isSame(*a, *b));
}

void compare(const TriangleIndex& tree, const TriangleIndex& plain, Input& input, unsigned int way)
{
    for (int i = 0; i < 8 && input.left() > 0; ++i)
    {
        const Ray ray{takeVector(input, way), takeVector(input, input.below(2) == 0 ? way : 0)};
        const TriangleIndex::Reach reach(input.below(4) * 0.3, input.below(4) * 0.1);
        require(isSame(tree.getNearest(ray, reach), plain.getNearest(ray, reach)), "the nearest hit is the same");
        require(isSame(tree.getClosest(ray, reach), plain.getClosest(ray, reach)), "the closest hit is the same");
        const auto some = tree.getAll(ray, reach), all = plain.getAll(ray, reach);
        require(std::equal(some.begin(), some.end(), all.begin(), all.end(),
                           [](const auto& a, const auto& b) { return isSame(a, b); }),
                "all hits are the same");
        const Eye eye(takeVector(input, way), glm::dmat3(1), glm::perspective(1.0, 1.0, 0.1, 100.0), {100, 100});
        std::vector<td::Point<double>> lasso;
        for (unsigned int k = input.below(6); k > 0; --k)
            lasso.emplace_back(input.below(101), input.below(101));
        for (const auto take : {TriangleIndex::Take::Touched, TriangleIndex::Take::Whole})
            require(tree.getWithin(eye, lasso, take) == plain.getWithin(eye, lasso, take), "the lasso takes the same");
    }
}

void run(const std::uint8_t* bytes, std::size_t nBytes)
{
    const Quiet quiet;
    Input input(bytes, nBytes);
    const unsigned int way = input.below(3), kind = input.below(3);
    std::vector<glm::dvec3> vertices(input.below(64));
    for (glm::dvec3& vertex : vertices)
        vertex = takeVector(input, way);
    std::vector<std::uint32_t> indices(input.below(128) * (3 - kind) + (input.below(32) == 0 ? 1 : 0));
    for (std::uint32_t& index : indices)
        // One beyond the end now and then.
        index = input.take<std::uint16_t>() % static_cast<std::uint32_t>(vertices.size() * 64 + 1) / 64;
    TriangleIndex tree, plain;
    const auto set = [&](TriangleIndex& index, TriangleIndex::Build build)
    {
        return kind == 0   ? index.setTriangles(vertices, indices, build)
               : kind == 1 ? index.setLines(vertices, indices, build)
                           : index.setPoints(vertices, build);
    };
    const bool isSet = set(tree, TriangleIndex::Build::Now);
    require(isSet == set(plain, TriangleIndex::Build::InPieces), "both take the same");
    require(quiet.nLines == (isSet ? 0U : 2U), "a line for each refusal");
    compare(tree, plain, input, way);
    for (glm::dvec3& vertex : vertices)
        if (input.below(2) == 0)
            vertex = takeVector(input, way);
    if (isSet)
        require(tree.move(vertices) && plain.move(vertices), "vertices move");
    compare(tree, plain, input, way);
}

const Target cTarget("triangleindex", run);

} // namespace

} // namespace fuzz::triangleindex
