#include "TriangReference.h"

#include <glm/geometric.hpp>
#include <glm/mat2x2.hpp>
#include <glm/matrix.hpp>
#include <glm/vec2.hpp>

#include <cmath>
#include <cstddef>

namespace test::reference
{

namespace
{

using gui::gl::Primitive;
using Point = td::Point<float>;

struct Fan
{
    bool isPossible;
    std::size_t start;
};

Fan classify(const Outline& p)
{
    const std::size_t n = p.size();
    if (n <= 4)
        return {true, 0};
    std::vector<std::size_t> left, right;
    for (std::size_t i = 0; i < n; ++i)
    {
        const Point a = p[i], b = p[(i + 1) % n], c = p[(i + 2) % n];
        const float turn = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
        if (turn > 0)
            left.push_back((i + 1) % n);
        if (turn < 0)
            right.push_back((i + 1) % n);
    }
    if (left.size() > 1 && right.size() > 1)
        return {false, 0};
    if (left.empty() || right.empty())
        return {true, 0};
    return {true, right.size() == 1 ? right[0] : left[0]};
}

bool isLeft(const Point& a, const Point& b, const Point& p)
{
    return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x) >= 0;
}

bool isEar(const Outline& p, const std::vector<unsigned int>& left, std::size_t u, std::size_t v, std::size_t w)
{
    const Point a = p[left[u]], b = p[left[v]], c = p[left[w]];
    if (1e-10f > (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x))
        return false;
    for (std::size_t i = 0; i < left.size(); ++i)
        if (i != u && i != v && i != w && isLeft(b, c, p[left[i]]) && isLeft(c, a, p[left[i]]) &&
            isLeft(a, b, p[left[i]]))
            return false;
    return true;
}

glm::vec2 perp(const glm::vec2& v) { return {-v.y, v.x}; }
glm::vec2 vec(const Point& p) { return {p.x, p.y}; }
Point point(const glm::vec2& v) { return {v.x, v.y}; }

int turn(const Point& a, const Point& b, const Point& c)
{
    const float area = (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
    return (0 < area) - (area < 0);
}

bool isParallel(const glm::vec2& d1, const glm::vec2& d2) { return std::fabs(d1.x * d2.y - d1.y * d2.x) <= 1e-4f; }

glm::vec2 middleVector(const glm::vec2& a, const glm::vec2& b, const glm::vec2& c, float width)
{
    if (isParallel(glm::normalize(b - a), glm::normalize(c - b)))
        return width * perp(glm::normalize(b - a));
    const glm::vec2 W1 = width * glm::normalize(b - a), A1 = a + perp(W1);
    const glm::vec2 W2 = width * glm::normalize(b - c), A2 = c - perp(W2);
    const glm::vec2 tu = glm::inverse(glm::mat2(W1, -W2)) * (A2 - A1);
    const glm::vec2 X = A1 + tu.x * W1;
    return X - b;
}

Outline distinctPoints(const Outline& points, bool closed)
{
    Outline distinct;
    for (const Point& p : points)
        if (distinct.empty() || !(p == distinct.back()))
            distinct.push_back(p);
    while (closed && distinct.size() > 1 && distinct.back() == distinct.front())
        distinct.pop_back();
    return distinct;
}

void bevel(Outline& out, std::size_t pos, const Outline& p, std::size_t i, const glm::vec2& o, float width)
{
    const std::size_t n = p.size();
    const glm::vec2 P = vec(p[(i + n - 1) % n]), C = vec(p[i]), N = vec(p[(i + 1) % n]);
    const int s = turn(point(P), point(C), point(N));
    const auto neighbour = [&](int step) { return vec(p[(i + n + static_cast<std::size_t>(step)) % n]); };
    const glm::vec2 A = C + width * perp(glm::normalize(C - N));
    const glm::vec2 B = C - perp(width * glm::normalize(C - P));
    const glm::vec2 m = glm::normalize(o);
    const glm::vec2 D = C - static_cast<float>(s) * width * m;
    const glm::vec2 T = static_cast<float>(-s) * perp(width * m);
    const glm::vec2 U1 = width * glm::normalize(C - neighbour(s));
    const glm::vec2 U2 = width * glm::normalize(C - neighbour(-s));
    const glm::vec2 tu1 = glm::inverse(glm::mat2(U1, -T)) * (D - A);
    const glm::vec2 tu2 = glm::inverse(glm::mat2(U2, T)) * (D - B);
    const Point X1 = point(A + tu1.x * U1), X2 = point(B + tu2.x * U2);
    const auto at = [&](std::size_t offset) { return out.begin() + static_cast<std::ptrdiff_t>(pos + offset); };
    if (s <= 0)
    {
        *at(0) = X1;
        out.insert(at(2), X2);
        out.insert(at(3), Point(*at(1)));
    }
    else
    {
        *at(1) = X2;
        out.insert(at(2), Point(*at(0)));
        out.insert(at(3), X1);
    }
}

void turnBack(Outline& out, std::size_t pos, const glm::vec2& P, const glm::vec2& C, float width)
{
    const glm::vec2 d = glm::normalize(C - P), o = width * perp(d), E = C + width * d;
    const auto at = out.begin() + static_cast<std::ptrdiff_t>(pos);
    at[0] = point(E + o);
    at[1] = point(E - o);
    out.insert(at + 2, {point(E - o), point(E + o)});
}

void addTriangle(Tessellation& result, std::size_t a, std::size_t b, std::size_t c)
{
    if (turn(result.vertices[a], result.vertices[b], result.vertices[c]) < 0)
        std::swap(b, c);
    for (const std::size_t i : {a, b, c})
        result.indices.push_back(static_cast<unsigned int>(i));
}

} // namespace

bool isCounterClockwise(const Outline& p)
{
    float sum = 0;
    for (std::size_t i = 0; i < p.size(); ++i)
    {
        const Point& before = p[(i + p.size() - 1) % p.size()];
        sum += before.x * p[i].y - p[i].x * before.y;
    }
    return 0 < 0.5f * sum;
}

bool clipEars(const Outline& p, std::vector<unsigned int>& triangles)
{
    const std::size_t n = p.size();
    const bool isForward = isCounterClockwise(p);
    std::vector<unsigned int> left;
    for (std::size_t i = 0; i < n; ++i)
        left.push_back(static_cast<unsigned int>(isForward ? i : n - 1 - i));
    std::size_t nTries = 0;
    for (std::size_t v = n - 1; left.size() > 2;)
    {
        if (nTries++ == 2 * left.size())
            return false;
        const std::size_t u = v < left.size() ? v : 0;
        v = u + 1 < left.size() ? u + 1 : 0;
        const std::size_t w = v + 1 < left.size() ? v + 1 : 0;
        if (!isEar(p, left, u, v, w))
            continue;
        triangles.insert(triangles.end(), {left[u], left[v], left[w]});
        left.erase(left.begin() + static_cast<std::ptrdiff_t>(v));
        nTries = 0;
    }
    return true;
}

Tessellation triangulate(const Outline& points)
{
    const Fan fan = classify(points);
    Tessellation result{fan.isPossible ? Primitive::TriangleFan : Primitive::Triangles, 0, {}, {}};
    for (std::size_t i = 0; i < points.size(); ++i)
        result.vertices.push_back(points[(i + fan.start) % points.size()]);
    if (!fan.isPossible && !clipEars(points, result.indices))
    {
        result.primitive = static_cast<Primitive>(8);
        result.indices.clear();
    }
    result.count = static_cast<unsigned int>(result.indices.size());
    return result;
}

Tessellation triangulateLine(const Outline& points, float width, bool closed)
{
    Tessellation result{Primitive::Triangles, 0, {}, {}};
    const Outline p = distinctPoints(points, closed);
    const std::size_t n = p.size();
    if (n < 2 || !(width < 0 || width > 0))
        return result;
    const auto vector = [&](std::size_t i)
    { return middleVector(vec(p[(i + n - 1) % n]), vec(p[i]), vec(p[(i + 1) % n]), width); };
    Outline& out = result.vertices;
    for (std::size_t i = 0; i < n; ++i)
    {
        glm::vec2 o;
        if (closed || (i > 0 && i + 1 < n))
            o = vector(i);
        else if (i == 0)
            o = width * perp(glm::normalize(vec(p[1]) - vec(p[0])));
        else
            o = -perp(width * glm::normalize(vec(p[n - 2]) - vec(p[n - 1])));
        out.push_back(point(vec(p[i]) + o));
        out.push_back(point(vec(p[i]) - o));
    }
    for (std::size_t i = closed ? 0 : 1, pos = 2 * i; i < (closed ? n : n - 1); ++i, pos += 2)
    {
        const glm::vec2 P = vec(p[(i + n - 1) % n]), C = vec(p[i]), N = vec(p[(i + 1) % n]);
        const glm::vec2 d1 = glm::normalize(C - P), d2 = glm::normalize(N - C), o = vector(i);
        const std::size_t nBefore = out.size();
        if (!isParallel(d1, d2) && glm::length(o) > 2 * width)
            bevel(out, pos, p, i, o, width);
        else if (isParallel(d1, d2) && !(glm::dot(d1, d2) > 0))
            turnBack(out, pos, P, C, width);
        pos += out.size() - nBefore;
    }
    const std::size_t size = out.size();
    for (std::size_t j = 0; j + 3 < size; j += 2)
    {
        addTriangle(result, j, j + 1, j + 2);
        addTriangle(result, j + 3, j + 1, j + 2);
    }
    if (closed)
    {
        addTriangle(result, size - 2, size - 1, 0);
        addTriangle(result, 1, size - 1, 0);
    }
    result.count = static_cast<unsigned int>(result.indices.size());
    return result;
}

std::vector<unsigned int> recycle(const Outline& stored, const Outline& points, unsigned int first)
{
    std::vector<unsigned int> found;
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        // From the point's own place to the range's end, then from its start.
        std::size_t nTries = 0, j = i;
        while (nTries < points.size() && !(stored[first + j] == points[i]))
        {
            ++nTries;
            j = j + 1 < points.size() ? j + 1 : 0;
        }
        if (nTries == points.size())
            return {};
        found.push_back(first + static_cast<unsigned int>(j));
    }
    return found;
}

} // namespace test::reference
