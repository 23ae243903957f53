#pragma once

#include <gui/draw/Affine.h>
#include <gui/draw/Path.h>
#include <gui/draw/TextLayout.h>
#include <gui/draw/TextOnPath.h>

#include <vector>

namespace gui::draw
{

/// A text along a path: its letters, and where they are in the text's own unit about the path's point that the text is
/// at, y downwards.
class TextRoute
{
public:
    using Point = td::Point<double>;
    using Rect = td::RectNormalized<double>;

    /// A letter with its marks, as far as it goes on along the base line.
    struct Letter
    {
        double middle = 0; // from the text's anchor
        double width = 0;
        double top = 0, bottom = 0; // of its line
        Point at;                   // on the path
        Point way{1, 0};            // of length 1; 0, 0 for one that is not shown
    };

    TextRoute(const Path& path, const TextOnPath& placement);

    void setPath(const Path& path);
    /// Where the text is, on the path.
    Point getOrigin() const { return _origin; }
    const TextOnPath& getPlacement() const { return _placement; }

    /// Takes the letters of another layout.
    void setLayout(const TextLayout& layout, Point anchor);
    /// The letter that a glyph belongs to.
    std::size_t letterOf(std::size_t run, std::size_t glyph) const { return _letterOf[_firstOf[run] + glyph]; }

    /// Places the letters. @param toText  from the path's coordinates, without a shift @param toScreen  from the text's
    /// own unit, likewise @return whether they are elsewhere than before
    bool place(const Affine& toText, const Affine& toScreen);
    const std::vector<Letter>& getLetters() const { return _letters; }
    /// From the text's own unit to a letter's: from the middle of it along its base line.
    static Affine toLetter(const Letter& letter);
    /// Adds to a path what becomes of a line under letters or through them, as far as they are shown. @param rect  from
    /// the text's anchor @param step  how far the line goes straight
    void addBent(const Rect& rect, double step, Path& path) const;
    static Rect boxOf(const Letter& letter) { return {-letter.width / 2, letter.top, letter.width / 2, letter.bottom}; }

private:
    void measure(const Affine& toText);
    Point pointAt(double length) const;
    void placeLetters(double start, bool isReversed);

    TextOnPath _placement;
    std::vector<Point> _points; // of the path, about the origin
    bool _isClosed = false;
    Point _origin;
    std::vector<Letter> _letters;
    std::vector<std::size_t> _firstOf, _letterOf; // glyphs of runs; letters of glyphs
    double _begin = 0, _end = 0;                  // of the text, from its anchor
    double _start = 0;                            // of the anchor, along the path
    // As placed last, in the text's own unit.
    std::vector<Point> _line;
    std::vector<double> _lengths;
    Affine _toText{0, 0, 0, 0, 0, 0};
    bool _isReversed = false;
    bool _isStale = true;
};

} // namespace gui::draw
