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
    static double heightOf(const TextStyle& style) { return style.size * 1.2; }

private:
    struct Entry
    {
        Drawing::ID id;
        Drawing::Point at;
        bool isUsed;
        bool isVisible;
    };

    Drawing _drawing;
    std::unordered_map<std::string, std::vector<Entry>> _entries;
    std::size_t _nEntries = 0;
    std::unordered_map<std::string, double> _advances; // of characters, for each size
};

} // namespace gui::draw
