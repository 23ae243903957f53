#pragma once

#include <gui/draw/Drawing.h>

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace gui::draw
{

/// The texts of a plot, said anew for each frame: those that were there before stay, and only move.
class PlotTexts
{
public:
    /// @param anchor, angle  see TextPlacement
    void add(std::string_view text, const TextStyle& style, Drawing::Point at, Anchor anchor, double angle = 0);
    /// Hides what was not added since the last call.
    void finish();
    void clear();

    Drawing& getDrawing() { return _drawing; }

    /// How wide and high a text is, in points. Of a line of few characters it is the sum of theirs, which is not less.
    double widthOf(std::string_view text, const TextStyle& style);
    /// As much of each line as there is room for, with three dots where something is missing.
    std::string shortened(std::string_view text, const TextStyle& style, double width);
    static double heightOf(const TextStyle& style) { return style.size * 1.2; }

private:
    struct Entry
    {
        Drawing::ID id;
        Drawing::Point at;
        bool isUsed;
        bool isVisible;
    };

    using Advances = std::unordered_map<std::string, double>; // of characters

    Advances& advancesOf(const TextStyle& style);
    std::size_t add(std::string_view text, std::size_t i, const TextStyle& style, Advances& advances, double& sum);

    Drawing _drawing;
    std::unordered_map<std::string, std::vector<Entry>> _entries;
    std::size_t _nEntries = 0;
    std::unordered_map<std::string, Advances> _advances; // for each size and face
};

} // namespace gui::draw
