#pragma once

#include <cstdint>
#include <vector>

namespace gui::draw
{

/// The edges that a sweep's line meets, from left to right, as a list and as a balanced tree at once. It knows places,
/// not edges: whoever uses it keeps what stands at a place in a list of its own, by the place's number.
///
/// The tree is a treap (R. Seidel, C. R. Aragon, "Randomized search trees", 1996): each place has a random priority,
/// and a parent a higher one than its children. The numbers are the same in every run.
class SweepLine
{
public:
    using Place = std::uint32_t;
    static constexpr Place cNone = 0; ///< no place; others begin at 1

    void clear();

    /// @param before  the place that the new one stands right of; cNone for the leftmost
    Place insertAfter(Place before);
    /// Its number is given to a later place.
    void erase(Place place);

    Place getRoot() const { return _links[0].children[1]; }
    Place getLeft(Place place) const { return _links[place].children[0]; }
    Place getRight(Place place) const { return _links[place].children[1]; }
    Place getPrevious(Place place) const { return _links[place].previous; }
    Place getNext(Place place) const { return _links[place].next; }

    /// One more than the largest number of a place so far.
    std::size_t getBound() const { return _links.size(); }

private:
    // The first one stands for both ends of the list, and its right child is the root.
    struct Link
    {
        Place children[2] = {cNone, cNone};
        Place parent = cNone;
        Place previous = cNone;
        Place next = cNone;
        std::uint32_t priority = 0;
    };

    void rotateUp(Place place);

    std::vector<Link> _links{1};
    Place _free = cNone;
    std::uint32_t _random = 1;
};

} // namespace gui::draw
