#pragma once

#include <td/Export.h>

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

namespace gui::draw
{

/// Numbers in a row, from a handful to some 10^8, of which any range tells its lowest and highest at once: what a
/// Series is drawn from. It grows at its end while it is shown.
///
///     Samples temperature(std::move(readings));  // takes a vector over
///     temperature.append(21.5);
///     const Samples::Range noon = temperature.getRange(1000, 2000);
///
/// Over the numbers stands a pyramid: the bounds of each 16 of them, of each 16 of those, and so on. It takes 0.14
/// times the memory of the numbers, grows with them, and a range's bounds take some hundred comparisons however long it
/// is. They are those of a plain scan, to the bit.
///
/// NaN and infinite numbers are gaps: bounds pass over them. Numbers are float or double as given, all of one kind;
/// what is appended is converted. Moves, and can't be copied. For one thread at a time; needs no context.
class GUIGL_API Samples
{
public:
    /// What there is to know about a range.
    struct Range
    {
        double low = 0;   ///< of the numbers that are finite; above high when there are none
        double high = 0;  ///< likewise
        double first = 0; ///< the number that the range begins with, finite or not; NaN in an empty range
        double last = 0;  ///< the one that it ends with

        bool isEmpty() const { return !(low <= high); } ///< no finite number in it
    };

    /// Writes the numbers from an index on into a span of any length.
    using Function = std::function<void(std::size_t first, std::span<double> values)>;

    Samples();                                     ///< none yet, of doubles
    Samples(std::vector<double> values);           ///< takes the vector over: move it here to have no copy made
    Samples(std::vector<float> values);            ///< likewise
    Samples(std::span<const double> values);       ///< looks at them where they are: they outlive this and don't change
    Samples(std::span<const float> values);        ///< likewise
    Samples(std::initializer_list<double> values); ///< copied: `{3, 1, 4}`
    /// Numbers that are computed, or read from elsewhere, whenever they are looked at: each once now for the pyramid,
    /// which is all that is kept, and those that are seen one by one again. @param function  always gives the same
    static Samples computed(std::size_t n, Function function);
    /// None yet, of floats: half the memory.
    static Samples ofFloats() { return Samples(std::vector<float>()); }

    ~Samples();
    Samples(Samples&& other) noexcept; ///< leaves the other one empty
    Samples& operator=(Samples&& other) noexcept;

    /// Adds at the end. Appending to numbers that are looked at elsewhere, or computed, is possible: what is added is
    /// kept here.
    void append(double value);
    void append(std::span<const double> values);
    void append(std::span<const float> values);
    /// Keeps about so many of the last: whole blocks of 65,536 go from the beginning as soon as the others are enough.
    /// What is left keeps its index. @param n  0, at first, for all
    void setLimit(std::size_t n);
    /// Removes all. Indices begin at 0 again.
    void clear();

    /// The index behind the last; those that are there begin at getFirst.
    std::size_t size() const;
    /// The index of the first number that is still there; see setLimit.
    std::size_t getFirst() const;
    /// An index that is not there gives NaN.
    double operator[](std::size_t index) const;
    /// Copies numbers from an index on; what is not there is NaN.
    void read(std::size_t first, std::span<double> values) const;

    /// Of those from first on and before end, as far as they are there.
    Range getRange(std::size_t first, std::size_t end) const;
    /// Of several in a row: range i goes from edges[i] to edges[i + 1], which never fall.
    /// @param ranges  one fewer than edges (an assertion, and nothing is written)
    void getRanges(std::span<const std::size_t> edges, std::span<Range> ranges) const;
    /// Whether none is less than the one before it, as far as was ever seen: sorted places. A NaN breaks it, for good.
    bool isRising() const;
    /// The first index from `from` on whose number is not less than a value; size() when there is none. The numbers
    /// must rise.
    std::size_t lowerBound(double value, std::size_t from = 0) const;

    /// The bytes that all of this takes, numbers that are looked at elsewhere included.
    std::size_t getMemory() const;

private:
    friend class Series;
    struct Column;
    template <typename T>
    struct Blocks;

    explicit Samples(std::unique_ptr<Column> pColumn);
    /// a + factor * b, of which only the pyramid takes memory; a and b must keep their numbers as long as it lives.
    static Samples sumOf(const Samples& a, const Samples& b, double factor);

    std::unique_ptr<Column> _pColumn;
};

} // namespace gui::draw
