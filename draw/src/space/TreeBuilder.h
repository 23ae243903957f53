#pragma once

#include "PrimitiveTree.h"
#include "Primitives.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace gui::draw
{

/// Builds a tree over primitives in small steps, and puts them, at the end, into the order of the tree.
///
/// Triangles that share an edge and follow each other are taken for one, as most do in most meshes, which is half the
/// work. All are sorted along a curve that fills space. Neighbours along it then merge, two at a time, again and
/// again: those that make the smallest box with each other of all within a few places (D. Meister, J. Bittner,
/// "Parallel Locally-Ordered Clustering for Bounding Volume Hierarchy Construction", IEEE TVCG 24(3), 2018). Nodes of
/// four are taken from those of two.
class TreeBuilder
{
public:
    /// @param primitives  must stay as they are until the last step  @param bounds  about all of them
    TreeBuilder(const Primitives& primitives, const Box3& bounds);

    /// Works for some 100 microseconds. @return whether all is done
    bool step();
    /// From 0 to 1.
    double getProgress() const;

    /// When all is done: the tree, and the primitives in its order, those that can't be used behind the others.
    void take(PrimitiveTree& tree, Primitives& primitives);

private:
    enum class Stage
    {
        Boxes,
        Sort,
        Gather,
        Pair,
        Merge,
        Collapse,
        Order,
        Vertices,
        Fit,
        Done
    };

    struct Box
    {
        float least[3];
        float greatest[3];
    };

    /// Two merged; those with numbers below _n are primitives, or pairs of them.
    struct Merged
    {
        std::uint32_t left;
        std::uint32_t right;
        float area;
    };

    /// A node of four to be filled with what is below one of two.
    struct Pending
    {
        std::uint32_t merged;
        std::uint32_t node;
        std::uint32_t level;
    };

    void go(Stage stage);
    void findBoxes(std::size_t end);
    bool findBox(std::size_t i, Box& box) const;
    bool isPair(std::size_t i, const Box& box, const Box& next) const;
    void addKey(const Box& box);
    void startSort();
    bool sortSome();
    void refineRuns();
    void gather(std::size_t end);
    void pair(std::size_t end);
    void merge(std::size_t end);
    void endMerge();
    void collapseSome();
    void addLeaf(std::uint32_t merged);
    void order(std::size_t end);
    void copyVertices(std::size_t end);

    const Primitives& _given;
    Primitives _ordered;
    PrimitiveTree _tree;
    float _half;    // of the bounds' largest side, in the tree's coordinates
    float _toPlace; // from there to places along the curve

    Stage _stage = Stage::Boxes;
    std::size_t _at = 0; // within the stage
    std::size_t _n = 0;  // primitives that can be used, and pairs of such

    LargeVector<Box> _boxes;            // of primitives and pairs, in the order of the first ones
    LargeVector<std::uint32_t> _firsts; // of the same: the primitive, or a pair's first one and cIsPair
    LargeVector<std::uint64_t> _keys;   // place on the curve, and which of the same
    LargeVector<std::uint64_t> _sorted; // the other half of each pass
    std::array<std::vector<std::uint32_t>, 3> _counts;
    std::size_t _pass = 0;
    std::vector<std::uint32_t> _unusable;

    // Of clusters, the first cMargin and the last cMargin of them boxes that nothing merges with.
    std::array<LargeVector<float>, 6> _sides;
    LargeVector<std::uint32_t> _ids;
    LargeVector<std::uint32_t> _partners;
    std::size_t _nClusters = 0;
    std::size_t _nNext = 0; // that are merged already
    bool _isForced = false; // the neighbours themselves merge
    LargeVector<Merged> _merged;

    std::vector<Pending> _pending;
    LargeVector<std::uint32_t> _order; // of primitives, as in the tree
    LargeVector<std::uint32_t> _names; // in the order, of vertices
};

} // namespace gui::draw
