#pragma once

#include "LaidParagraph.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace gui::draw
{

/// Makes lines of a shaped paragraph: breaks it, orders each line's pieces and places their glyphs.
class LineFiller
{
public:
    LineFiller(std::shared_ptr<const ShapedParagraph> pShaped, const LineSettings& settings);
    LineFiller(const LineFiller&) = delete;
    LineFiller& operator=(const LineFiller&) = delete;

    LaidParagraph fill();

private:
    using Cluster = ShapedCluster;

    // A part of a run in a line.
    struct Piece
    {
        const ShapedRun* pRun;
        std::uint32_t begin, end;
        std::span<const Cluster> clusters;
        const ShapedGlyph* pGlyphs; // that the clusters count
        FriBidiLevel level;
        bool isOwn; // shaped for this line
    };

    // The clusters from first up to last, which is not in it.
    struct Line
    {
        std::size_t first, last;
        bool isSoft; // ended for lack of room
        bool isCut;
        std::optional<double> visible{}; // how wide it is up to the last letter, where that is known
    };

    std::uint32_t beginOf(std::size_t cluster) const;
    bool isGrapheme(std::size_t cluster) const;
    double widthOf(const Cluster& cluster, double x) const;
    bool isTooWide(double width) const { return width > _limit; }
    const ShapedRun& runOf(std::size_t cluster) const;
    std::size_t endOf(const ShapedRun& run) const;

    Line findLine(std::size_t first, bool wraps);
    std::size_t findOverflow(std::size_t first, std::size_t at) const;
    std::size_t findEarlier(const Line& line) const;
    void cutLine(Line& line);
    bool endsInSoftHyphen(std::size_t first, std::size_t last) const;
    double widthOfOther(const ShapedRun& run, std::string_view text);

    void takePieces(const Line& line);
    void addOther(const ShapedRun& run, std::uint32_t at, FriBidiLevel level, std::string_view text);
    std::string_view hyphenFor(const ShapedRun& run) const;
    double getVisibleWidth(const Line& line) const;
    void splitByLevels(const Line& line);
    void reorder();
    void addLine(const Line& line, bool isLast);
    LaidRun& addRun(const Piece& piece, std::size_t span, std::uint32_t begin, std::uint32_t end, double x);
    double addGlyphs(const Piece& piece, double x);
    void addPiece(const Piece& piece, double& x, double extra, std::uint32_t spacesFrom, std::uint32_t spacesTo);
    void measureHeight(std::uint32_t begin, LaidLine& laid) const;
    std::size_t spanAt(std::uint32_t offset) const;

    // Sums of the same numbers in another order differ.
    static constexpr double cSlack = 1e-9;

    std::shared_ptr<const ShapedParagraph> _pShaped;
    const LineSettings& _settings;
    bool _hasLimit;
    double _limit;                         // how wide a line is at most; infinite for none
    const std::vector<Cluster>& _clusters; // of the whole paragraph
    std::span<const ClusterBreak> _breaks;
    double _tabDistance = 0;
    LaidParagraph _laid;

    // Of the line at hand.
    std::vector<Piece> _pieces;
    bool _isPlain = true; // has no tab, and no piece is its own
    std::list<std::vector<Cluster>> _ownClusters;
    std::list<std::vector<ShapedGlyph>> _ownGlyphs;
    std::list<ShapedRun> _ownRuns;
    std::map<std::uint32_t, double> _tabWidths; // by where the tabs are
};

} // namespace gui::draw
