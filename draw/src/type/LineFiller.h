#pragma once

#include "LaidParagraph.h"

#include <cstddef>
#include <cstdint>
#include <deque>
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
    ~LineFiller();
    LineFiller(const LineFiller&) = delete;
    LineFiller& operator=(const LineFiller&) = delete;

    LaidParagraph fill();

private:
    // Glyphs that belong together, in the text's order.
    struct Cluster
    {
        std::uint32_t begin; // of its text
        std::uint32_t run;
        std::uint32_t firstGlyph; // of the run's, from left to right
        std::uint32_t nGlyphs;
        double advance;   // with letter spacing; a tab's is known in its line
        bool hangs;       // may stand out at a line's end
        bool isWordSpace; // is wider in a justified line
        bool isTab;
        bool isUnsafeToBreak;
    };

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
    };

    void addClusters(const ShapedRun& run, std::uint32_t begin, std::uint32_t end, std::span<const ShapedGlyph> glyphs,
                     std::vector<Cluster>& clusters) const;
    std::uint32_t beginOf(std::size_t cluster) const;
    bool isGrapheme(std::size_t cluster) const;
    double widthOf(const Cluster& cluster, double x) const;
    bool isTooWide(double width) const { return _hasLimit && width > _settings.width * (1 + cSlack); }

    Line findLine(std::size_t first, bool wraps);
    std::size_t findOverflow(std::size_t first, std::size_t at) const;
    std::size_t findEarlier(const Line& line) const;
    void cutLine(Line& line);
    bool endsInSoftHyphen(std::size_t first, std::size_t last) const;
    double widthOfOther(const ShapedRun& run, std::string_view text);

    void takePieces(const Line& line);
    void addOther(const ShapedRun& run, std::uint32_t at, FriBidiLevel level, std::string_view text);
    std::string_view hyphenFor(const ShapedRun& run) const;
    double getVisibleWidth() const;
    void splitByLevels(const Line& line);
    void reorder();
    void addLine(const Line& line, bool isLast);
    void addPiece(const Piece& piece, double& x, double extra, std::uint32_t spacesFrom, std::uint32_t spacesTo);
    void measureHeight(std::uint32_t begin, LaidLine& laid) const;
    std::size_t spanAt(std::uint32_t offset) const;

    // Memory that the thread's next one has again.
    static thread_local std::vector<Cluster> s_spareClusters;
    // Sums of the same numbers in another order differ.
    static constexpr double cSlack = 1e-9;

    std::shared_ptr<const ShapedParagraph> _pShaped;
    const LineSettings& _settings;
    bool _hasLimit;
    std::vector<Cluster> _clusters; // of the whole paragraph
    std::span<const LineBreak> _breaks;
    double _tabDistance = 0;
    LaidParagraph _laid;

    // Of the line at hand.
    std::vector<Piece> _pieces;
    std::deque<std::vector<Cluster>> _ownClusters;
    std::deque<std::vector<ShapedGlyph>> _ownGlyphs;
    std::deque<ShapedRun> _ownRuns;
    std::vector<std::uint32_t> _offsets;
    std::vector<FriBidiLevel> _levels;
    std::map<std::uint32_t, double> _tabWidths; // by where the tabs are
};

} // namespace gui::draw
