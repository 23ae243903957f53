// Path's curves as straight lines.

#include <gui/draw/Path.h>

#include <td/Assert.h>

#include <algorithm>

namespace gui::draw
{

void Path::flatten(double tolerance, Polylines& result, bool hasTangents) const
{
    TD_ASSERT(tolerance > 0);
    Polylines::Line line{.first = result.points.size()};
    const auto endLine = [&](bool isClosed)
    {
        // A subpath has its beginning at least, and something after it.
        line.count = result.points.size() - line.first;
        line.isClosed = isClosed;
        if (line.count > 0)
            result.lines.push_back(line);
        line.first = result.points.size();
    };
    Point start;
    // Lines, which most paths are all of, are taken without making segments of them.
    const bool areThereCurves = hasCurves();
    Iterator at = begin();
    const Point* pPoint = _points.data();
    for (auto next = _verbs.begin(); next != _verbs.end(); ++next, areThereCurves ? void(++at) : void())
    {
        const Verb verb = *next;
        if (verb == Verb::MoveTo)
        {
            endLine(false);
            start = *pPoint++;
            continue;
        }
        if (result.points.size() == line.first)
            result.points.push_back(start);
        if (verb == Verb::Close)
        {
            // The beginning once more at the end is what closing means.
            if (result.points.size() - line.first > 1 && result.points.back() == start)
                result.points.pop_back();
            endLine(true);
            continue;
        }
        if (verb == Verb::LineTo)
        {
            // All that follow each other at once.
            const auto end =
                areThereCurves ? next + 1
                               : std::find_if(next + 1, _verbs.end(), [](Verb other) { return other != Verb::LineTo; });
            result.points.insert(result.points.end(), pPoint, pPoint + (end - next));
            pPoint += end - next;
            next = end - 1;
            continue;
        }
        const PathSegment segment = *at;
        pPoint += verb == Verb::CubicTo ? 3 : verb == Verb::QuadTo ? 2 : 1;
        const unsigned int n = segment.nPieces(tolerance);
        if (n > 1)
        {
            result.areWithinCurves.resize(result.points.size());
            constexpr double cNear = 1.0 / 1024;
            if (hasTangents)
                result.points.push_back(segment.at(cNear / n));
            for (unsigned int i = 1; i < n; ++i)
                result.points.push_back(segment.at(double(i) / n));
            if (hasTangents)
                result.points.push_back(segment.at(1 - cNear / n));
            result.areWithinCurves.resize(result.points.size(), true);
        }
        result.points.push_back(segment.to);
    }
    endLine(false);
    result.areWithinCurves.resize(result.points.size());
}

Polylines Path::flatten(double tolerance) const
{
    Polylines result;
    flatten(tolerance, result);
    return result;
}

} // namespace gui::draw
