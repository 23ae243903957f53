#pragma once

#include <gui/draw/Drawing.h>

#include <optional>
#include <span>
#include <vector>

namespace gui::draw
{

/// The lines around an area, made ready once to look for room in many parts of it: see Labels::findRoom.
class RoomFinder
{
public:
    /// @param area    filled by the even-odd rule; read here only
    /// @param within  the part that is looked at: curves are as fine as that takes
    RoomFinder(const Path& area, const Drawing::Rect& within);
    RoomFinder(const RoomFinder&) = delete;
    RoomFinder& operator=(const RoomFinder&) = delete;

    std::optional<Drawing::Rect> find(const Drawing::Rect& within) const;

private:
    /// Some points of a line in a row, the last of which is the first one of the next stretch.
    struct Stretch
    {
        std::span<const Path::Point> points;
        Drawing::Rect box; // around them
    };

    Polylines _outline;
    std::vector<Stretch> _stretches;
};

} // namespace gui::draw
