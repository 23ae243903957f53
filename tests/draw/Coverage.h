#pragma once

#include "FillChecks.h"

#include <gui/draw/Path.h>
#include <gui/draw/Stroke.h>

#include <gtest/gtest.h>

#include <vector>

namespace test
{

/// How much of each pixel of a picture is covered, 0 to 1, row by row from the top.
class Coverage
{
public:
    /// Some of the pixels.
    struct Region
    {
        int left, top, right, bottom;
    };

    Coverage(int width, int height);

    /// Draws over what is there what rings, in pixels, have inside of them: exact along x, at 64 heights of each row.
    void add(const Rings& rings, gui::draw::FillRule rule, double alpha = 1);

    double& at(int x, int y) { return _pixels[static_cast<std::size_t>(y * _width + x)]; }
    double at(int x, int y) const { return _pixels[static_cast<std::size_t>(y * _width + x)]; }
    int getWidth() const { return _width; }
    int getHeight() const { return _height; }

private:
    int _width, _height;
    std::vector<double> _pixels;
};

/// The black that was drawn on white into the framebuffer and the viewport that are bound.
Coverage readCoverage();

/// How far a picture may be from the exact one, in 1/255.
struct Closeness
{
    double mean;     ///< of pixels that are covered in part
    double permille; ///< of them, what one in a thousand exceeds
    double largest;  ///< of all pixels
};

testing::AssertionResult isClose(const Coverage& drawn, const Coverage& exact, const Coverage::Region& region,
                                 const Closeness& limits);

/// A path's points, its curves as chords of which each turns by less than a degree or two, for a fill.
Rings fillRings(const gui::draw::Path& path);

/// What a stroke covers, as SVG 2 computes it: rings for the rule NonZero. Lengths are in the path's units.
Rings strokeRings(const gui::draw::Path& path, const gui::draw::Stroke& stroke);

/// The same rings where a map takes them.
Rings mapped(Rings rings, const gui::draw::Affine& map);

} // namespace test
