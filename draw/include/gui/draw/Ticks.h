#pragma once

#include "Scale.h"

#include <td/Export.h>

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gui::draw
{

/// The places of an axis that have a label, and the smaller ones between them.
///
///     const Ticks ticks(Scale::linear(), {8.1, 14.1}, {.length = 400, .distance = 100});
///     for (const Ticks::Tick& tick : ticks.getTicks())
///         std::printf("%s at %g\n", tick.label.c_str(), tick.value);   // 8, 10, 12, 14, and 9, 11, 13 without labels
///
/// On linear axes steps are chosen by the scores of Talbot, Lin and Hanrahan, "An Extension of Wilkinson's Algorithm
/// for Positioning Tick Labels on Axes" (IEEE InfoVis 2010): simplicity, coverage, density, and legibility, which is
/// that labels keep clear of each other. Logarithmic ones have ticks at powers of ten, or at 1, 2 and 5 times these, or
/// by the scores where there is less than a decade. Time has steps of its calendar, in a zone of the world.
///
/// Labels never collide: those of one axis are apart by a space at least, or there are fewer of them. A value; needs no
/// context.
class GUIGL_API Ticks
{
public:
    /// A place with a label.
    struct Tick
    {
        double value = 0;
        std::string label;
        /// What a second line says from here on: the day above hours, the year below months. Empty where it is as
        /// before, and where it has no room.
        std::string context{};
    };

    /// The ends of an axis; low is below high.
    struct Range
    {
        double low = 0;
        double high = 1;

        bool operator==(const Range&) const = default;
    };

    /// The room that there is.
    struct Room
    {
        double length = 400;  ///< of the axis, in points
        double distance = 80; ///< from label to label that looks good, in points
        /// How much of the axis a label takes, in points; without it 7 for each character.
        std::function<double(std::string_view label)> extentOf{};
        double space = 8; ///< between labels at least
    };

    /// Labels in a row, evenly: what the search finds.
    struct Sequence
    {
        double low = 0;   ///< the first label
        double high = 0;  ///< the last one
        double step = 0;  ///< from one to the next
        double score = 0; ///< at most 1; below -1 when nothing was found
    };
    /// How good labels look, 1 at best; minus infinity for what must not be.
    using Legibility = std::function<double(const Sequence& sequence)>;

    /// None.
    Ticks() = default;
    /// @param scale  what the axis is
    /// @param range  what it shows; where that is not finite, or not longer than 10^-13 of its larger end, there are no
    ///               ticks
    /// @param step   a step to keep to, as getStep gave it, while the range only moves; 0 for the best one. It is left
    ///               where labels would collide
    Ticks(const Scale& scale, const Range& range, const Room& room, double step = 0);

    std::span<const Tick> getTicks() const { return _ticks; }   ///< rising, within the range
    std::span<const double> getMinor() const { return _minor; } ///< rising, within the range
    /// What all labels have in common and leave out, to be written at the axis' end: "×10⁶", "+1 234 567"; else empty.
    const std::string& getNote() const { return _note; }
    /// Of the labels: their difference, the number of decades, or in seconds.
    double getStep() const { return _step; }

    /// The published search: the labels with the highest score for a range of data.
    /// @param wanted      how many labels, 2 or more, not a whole number either
    /// @param legibility  empty for 1  @param isLoose  whether labels reach to both ends of the data, or beyond
    static Sequence search(const Range& range, double wanted, const Legibility& legibility = {}, bool isLoose = false);
    /// What the search compares: the publication's score of labels, with legibility 1.
    /// @param order  of the step's first digits in 1, 5, 2, 2.5, 4, 3, from 0  @param skip  j: every so manieth
    /// multiple of these digits has a label  @param count  of labels, from 2
    static double score(const Range& range, double wanted, const Sequence& sequence, unsigned int order,
                        unsigned int skip, unsigned int count);

    /// A number as a label: with so many places behind the point, a true minus, thin spaces between thousands from five
    /// digits on.
    static std::string format(double value, int places);

private:
    friend class TimeTicks;

    void makeLinear(const Scale& scale, const Range& range, const Room& room, double step);
    void makeLogarithmic(const Range& range, const Room& room, double step);
    void makeTime(const Scale& scale, const Range& range, const Room& room, double step);
    void placeLinear(const Range& range, double step);
    bool collide(const Scale& scale, const Range& range, const Room& room) const;
    void thin(const Scale& scale, const Range& range, const Room& room);
    void clearContexts(const Range& range, const Room& room);

    std::vector<Tick> _ticks;
    std::vector<double> _minor;
    std::string _note;
    double _step = 0;
};

} // namespace gui::draw
