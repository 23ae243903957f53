// SVG path data, and everything that is asked of a path.

#include "Fuzz.h"

#include <gui/draw/Path.h>

#include <cmath>

namespace fuzz::pathdata
{

using gui::draw::Path;

namespace
{

void run(const std::uint8_t* bytes, std::size_t nBytes)
{
    Input input(bytes, nBytes);
    const std::string data = input.text(400);
    Path::SVGError error;
    Path path;
    const bool isRight = path.addSVG(data, &error);
    require(isRight == (*error.expected == 0), "an error is told");
    require(error.position <= data.size(), "its position is in the text or at the end");
    // What stands before an error is right by itself.
    if (!isRight)
    {
        Path before;
        const bool isWhole = before.addSVG(data.substr(0, error.position), &error);
        require(isWhole || before.getBounds() == path.getBounds(), "what stands before an error stays");
    }

    gui::draw::Polylines lines;
    path.flatten(1, lines);
    std::size_t nPoints = 0;
    for (const gui::draw::Polylines::Line& line : lines.lines)
    {
        require(line.first == nPoints && line.count > 0, "lines follow each other");
        nPoints += line.count;
    }
    require(nPoints == lines.points.size(), "every point is in a line");
    const auto bounds = path.getBounds();
    const double length = path.getLength();
    if (bounds && std::isfinite(length) && length < 1e100)
    {
        const Path::Place place = path.placeAt(length / 2).value();
        const double slack = 1e-9 * (1 + length + std::abs(bounds->left) + std::abs(bounds->top));
        require(place.position.x >= bounds->left - slack && place.position.x <= bounds->right + slack &&
                    place.position.y >= bounds->top - slack && place.position.y <= bounds->bottom + slack,
                "places are within the bounds");
    }
}

const Target cTarget("pathdata", run);

} // namespace

} // namespace fuzz::pathdata
