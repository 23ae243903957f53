#include "LineFiller.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace gui::draw
{

namespace
{

using Kind = ShapedRun::Kind;

constexpr std::string_view cSoftHyphen = "\u00AD", cHyphen = "\u2010", cPlainHyphen = "-";

double scaleOf(const ShapedRun& run, const ShapeStyle& style)
{
    const double unitsPerEm = run.face.getMetrics().unitsPerEm;
    return unitsPerEm > 0 ? style.size / unitsPerEm : 0;
}

// Spaces at which lines break, and which may stand out then (UAX 14's classes SP and, of BA, the spaces).
bool isHangingSpace(char32_t c)
{
    return c == ' ' || c == 0x1680 || (c >= 0x2000 && c <= 0x200A && c != 0x2007) || c == 0x205F || c == 0x3000;
}

} // namespace

std::size_t LaidParagraph::getBytes() const
{
    return sizeof *this + lines.capacity() * sizeof(LaidLine) + runs.capacity() * sizeof(LaidRun) +
           glyphs.capacity() * sizeof(TextLayout::Glyph);
}

thread_local std::vector<LineFiller::Cluster> LineFiller::s_spareClusters;

LineFiller::LineFiller(std::shared_ptr<const ShapedParagraph> pShaped, const LineSettings& settings)
    : _pShaped(std::move(pShaped))
    , _settings(settings)
    , _hasLimit(settings.width > 0 && std::isfinite(settings.width))
{
    const std::vector<ShapedRun>& runs = _pShaped->getRuns();
    _clusters.swap(s_spareClusters);
    _clusters.clear();
    _clusters.reserve(_pShaped->getGlyphs().size() + runs.size());
    for (const ShapedRun& run : runs)
        addClusters(run, run.begin, run.end, _pShaped->glyphsOf(run), _clusters);
    const bool hasInvisible = std::ranges::find(runs, Kind::Invisible, &ShapedRun::kind) != runs.end();
    if ((_hasLimit && _settings.wraps) || hasInvisible)
        _breaks = _pShaped->getLineBreaks();

    const ShapeStyle& style = _pShaped->getStyles().front();
    constexpr double cSpacesPerTab = 8;
    _tabDistance = _settings.tabDistance;
    if (!(_tabDistance > 0) || !std::isfinite(_tabDistance))
        _tabDistance = cSpacesPerTab * style.face.getAdvance(style.face.getGlyph(' ')) * style.scale();
    if (!(_tabDistance > 0))
        _tabDistance = std::max(style.size, 1e-3);
}

LineFiller::~LineFiller() { s_spareClusters.swap(_clusters); }

void LineFiller::addClusters(const ShapedRun& run, std::uint32_t begin, std::uint32_t end,
                             std::span<const ShapedGlyph> glyphs, std::vector<Cluster>& clusters) const
{
    const std::string& text = _pShaped->getText();
    const auto runIndex = static_cast<std::uint32_t>(&run - _pShaped->getRuns().data());
    if (run.kind != Kind::Text)
    {
        if (begin < end)
            clusters.push_back({begin, runIndex, 0, 0, 0, true, false, run.kind == Kind::Tab, false});
        return;
    }
    const ShapeStyle& style = _pShaped->getStyles()[run.style];
    const double scale = scaleOf(run, style);
    const std::size_t n = glyphs.size();
    for (std::size_t i = 0; i < n;)
    {
        // Runs from right to left begin at their last glyph.
        const auto at = [&](std::size_t k) -> const ShapedGlyph&
        { return glyphs[run.isRightToLeft() ? n - 1 - k : k]; };
        std::size_t next = i;
        double advance = 0;
        bool isUnsafe = false;
        for (; next < n && at(next).cluster == at(i).cluster; ++next)
        {
            advance += at(next).advance;
            isUnsafe = isUnsafe || at(next).isUnsafeToBreak;
        }
        const std::uint32_t offset = at(i).cluster;
        const char first = text[offset];
        const char32_t c = first >= 0 ? char32_t(first) : characterAt(text, offset);
        clusters.push_back({offset, runIndex, static_cast<std::uint32_t>(run.isRightToLeft() ? n - next : i),
                            static_cast<std::uint32_t>(next - i), advance * scale + style.letterSpacing,
                            isHangingSpace(c), c == ' ' || c == 0xA0, false, isUnsafe});
        i = next;
    }
}

std::uint32_t LineFiller::beginOf(std::size_t cluster) const
{
    return cluster < _clusters.size() ? _clusters[cluster].begin
                                      : static_cast<std::uint32_t>(_pShaped->getText().size());
}

bool LineFiller::isGrapheme(std::size_t cluster) const
{
    return std::ranges::binary_search(_pShaped->getGraphemes(), beginOf(cluster));
}

// A tab reaches to the next stop.
double LineFiller::widthOf(const Cluster& cluster, double x) const
{
    if (!cluster.isTab)
        return cluster.advance;
    for (const double stop : _settings.tabs)
        if (stop > x && std::isfinite(stop))
            return stop - x;
    const double stop = (std::floor(x / _tabDistance * (1 + cSlack)) + 1) * _tabDistance;
    return std::max(stop - x, 0.0);
}

bool LineFiller::endsInSoftHyphen(std::size_t first, std::size_t last) const
{
    const std::size_t end = beginOf(last);
    return last > first && end >= cSoftHyphen.size() && beginOf(first) <= end - cSoftHyphen.size() &&
           _pShaped->getText().compare(end - cSoftHyphen.size(), cSoftHyphen.size(), cSoftHyphen) == 0;
}

std::string_view LineFiller::hyphenFor(const ShapedRun& run) const
{
    return run.face.getGlyph(0x2010) != 0 ? cHyphen : cPlainHyphen;
}

double LineFiller::widthOfOther(const ShapedRun& run, std::string_view text)
{
    ShapedRun other = run;
    double advance = 0;
    for (const ShapedGlyph& glyph : _pShaped->shapeOther(other, text))
        advance += glyph.advance;
    const ShapeStyle& style = _pShaped->getStyles()[run.style];
    return advance * scaleOf(other, style) + style.letterSpacing;
}

// Where a line ends that has no room for the cluster and no place to break before it: between letters.
std::size_t LineFiller::findOverflow(std::size_t first, std::size_t at) const
{
    for (std::size_t i = at; i > first; --i)
        if (isGrapheme(i))
            return i;
    std::size_t i = std::max(at, first + 1);
    while (i < _clusters.size() && !isGrapheme(i))
        ++i;
    return i;
}

LineFiller::Line LineFiller::findLine(std::size_t first, bool wraps)
{
    double x = 0;
    std::size_t candidate = first;
    auto next = std::ranges::upper_bound(_breaks, beginOf(first), {}, &LineBreak::offset);
    for (std::size_t i = first; i < _clusters.size(); ++i)
    {
        const Cluster& cluster = _clusters[i];
        while (next != _breaks.end() && next->offset < cluster.begin)
            ++next;
        if (next != _breaks.end() && next->offset == cluster.begin && i > first)
        {
            if (next->isHard)
                return {first, i, false, false};
            if (!endsInSoftHyphen(first, i) ||
                !isTooWide(x + widthOfOther(_pShaped->getRuns()[_clusters[i - 1].run],
                                            hyphenFor(_pShaped->getRuns()[_clusters[i - 1].run]))))
                candidate = i;
        }
        const double width = widthOf(cluster, x);
        if (wraps && !(cluster.hangs && !cluster.isTab) && i > first && isTooWide(x + width))
            return {first, candidate > first ? candidate : findOverflow(first, i), true, false};
        x += width;
    }
    return {first, _clusters.size(), false, false};
}

// The place to break before the one that a line has; the line's beginning when there is none.
std::size_t LineFiller::findEarlier(const Line& line) const
{
    auto next = std::ranges::lower_bound(_breaks, beginOf(line.last), {}, &LineBreak::offset);
    while (next != _breaks.begin() && (--next)->offset > beginOf(line.first))
    {
        const auto found = std::ranges::lower_bound(_clusters, next->offset, {}, &Cluster::begin);
        if (found != _clusters.end() && found->begin == next->offset)
            return static_cast<std::size_t>(found - _clusters.begin());
    }
    for (std::size_t i = line.last - 1; i > line.first; --i)
        if (isGrapheme(i))
            return i;
    return line.first;
}

// Takes of the text from the line's beginning on what has room beside an ellipsis.
void LineFiller::cutLine(Line& line)
{
    const std::size_t first = line.first;
    const Line whole = findLine(first, false);
    double room = _settings.width;
    if (_hasLimit && first < _clusters.size())
        room -= widthOfOther(_pShaped->getRuns()[_clusters[first].run], _settings.ellipsis);
    double x = 0;
    std::size_t last = first;
    for (; last < whole.last; ++last)
    {
        const double width = widthOf(_clusters[last], x);
        if (_hasLimit && x + width > room * (1 + cSlack))
            break;
        x += width;
    }
    while (last > first && last < _clusters.size() && !isGrapheme(last))
        --last;
    while (last > first && _clusters[last - 1].hangs)
        --last;
    line = {first, last, false, true};
}

void LineFiller::addOther(const ShapedRun& run, std::uint32_t at, FriBidiLevel level, std::string_view text)
{
    ShapedRun& own = _ownRuns.emplace_back(run);
    own.begin = own.end = at;
    own.level = level;
    auto& glyphs = _ownGlyphs.emplace_back(_pShaped->shapeOther(own, text));
    if (glyphs.empty())
        return;
    own.kind = Kind::Text;
    double advance = 0;
    for (ShapedGlyph& glyph : glyphs)
    {
        glyph.cluster = at & 0x7FFFFFFFU;
        advance += glyph.advance;
    }
    const ShapeStyle& style = _pShaped->getStyles()[run.style];
    const Cluster cluster{at,
                          0,
                          0,
                          static_cast<std::uint32_t>(glyphs.size()),
                          advance * scaleOf(own, style) + style.letterSpacing,
                          false,
                          false,
                          false,
                          false};
    const auto& clusters = _ownClusters.emplace_back(1, cluster);
    _pieces.push_back({&own, at, at, clusters, glyphs.data(), level, true});
}

void LineFiller::takePieces(const Line& line)
{
    _pieces.clear();
    _ownClusters.clear();
    _ownGlyphs.clear();
    _ownRuns.clear();
    for (std::size_t i = line.first; i < line.last;)
    {
        const ShapedRun& run = _pShaped->getRuns()[_clusters[i].run];
        std::size_t next = i;
        while (next < line.last && _clusters[next].run == _clusters[i].run)
            ++next;
        Piece piece{&run,
                    beginOf(i),
                    std::min(run.end, beginOf(next)),
                    std::span(_clusters).subspan(i, next - i),
                    _pShaped->glyphsOf(run).data(),
                    run.level,
                    false};
        // Letters that reach beyond the line look otherwise without what is there.
        if (run.kind == Kind::Text && ((piece.begin > run.begin && _clusters[i].isUnsafeToBreak) ||
                                       (piece.end < run.end && _clusters[next].isUnsafeToBreak)))
        {
            const auto& glyphs = _ownGlyphs.emplace_back(_pShaped->shapePart(run, piece.begin, piece.end));
            auto& clusters = _ownClusters.emplace_back();
            addClusters(run, piece.begin, piece.end, glyphs, clusters);
            piece.clusters = clusters;
            piece.pGlyphs = glyphs.data();
            piece.isOwn = true;
        }
        _pieces.push_back(piece);
        i = next;
    }
    if (line.isSoft && endsInSoftHyphen(line.first, line.last))
    {
        const ShapedRun& run = *_pieces.back().pRun;
        addOther(run, beginOf(line.last), run.level, hyphenFor(run));
    }
    if (line.isCut && !_pShaped->getRuns().empty())
    {
        const ShapedRun& run = _pieces.empty()
                                   ? _pShaped->getRuns()[_clusters[std::min(line.first, _clusters.size() - 1)].run]
                                   : *_pieces.back().pRun;
        addOther(run, beginOf(line.last), FriBidiLevel(_pShaped->isRightToLeft()), _settings.ellipsis);
    }
}

// Up to the last letter.
double LineFiller::getVisibleWidth() const
{
    double x = 0, width = 0;
    for (const Piece& piece : _pieces)
        for (const Cluster& cluster : piece.clusters)
        {
            x += widthOf(cluster, x);
            if (!cluster.hangs)
                width = x;
        }
    return width;
}

// The spaces at a line's end have its paragraph's level, whichever run they are in.
void LineFiller::splitByLevels(const Line& line)
{
    if (!_pShaped->hasLevels())
        return;
    _pShaped->getLineLevels(beginOf(line.first), beginOf(line.last), _offsets, _levels);
    std::vector<Piece> split;
    std::size_t at = 0;
    for (const Piece& piece : _pieces)
    {
        if (piece.begin == piece.end)
        {
            split.push_back(piece);
            continue;
        }
        for (std::size_t i = 0; i < piece.clusters.size(); ++i)
        {
            const std::uint32_t begin = piece.clusters[i].begin;
            while (at + 1 < _offsets.size() && _offsets[at] < begin)
                ++at;
            if (i > 0 && split.back().level == _levels[at])
                continue;
            if (i > 0)
            {
                Piece& before = split.back();
                before.end = begin;
                before.clusters = before.clusters.first(before.clusters.size() - (piece.clusters.size() - i));
            }
            split.push_back(piece);
            split.back().begin = i > 0 ? begin : piece.begin;
            split.back().clusters = piece.clusters.subspan(i);
            split.back().level = _levels[at];
        }
    }
    _pieces.swap(split);
}

// Rule L2 of Unicode's report 9: from the highest level to the lowest odd one, what is at it or above is turned round.
void LineFiller::reorder()
{
    FriBidiLevel highest = 0;
    for (const Piece& piece : _pieces)
        highest = std::max(highest, piece.level);
    for (FriBidiLevel level = highest; level > 0; --level)
        for (std::size_t i = 0; i < _pieces.size();)
        {
            std::size_t end = i;
            while (end < _pieces.size() && _pieces[end].level >= level)
                ++end;
            std::reverse(_pieces.begin() + std::ptrdiff_t(i), _pieces.begin() + std::ptrdiff_t(end));
            i = std::max(end, i + 1);
        }
}

std::size_t LineFiller::spanAt(std::uint32_t offset) const
{
    const auto& spans = _pShaped->getSpans();
    const auto found = std::ranges::upper_bound(spans, offset, {}, &ParagraphText::Span::end);
    return std::min(static_cast<std::size_t>(found - spans.begin()), spans.size() - 1);
}

void LineFiller::measureHeight(std::uint32_t begin, LaidLine& laid) const
{
    const auto include = [&](const Typeface& face, double size)
    {
        const Typeface::Metrics& metrics = face.getMetrics();
        const double scale = metrics.unitsPerEm > 0 ? size / metrics.unitsPerEm : 0;
        const double ascent = metrics.ascent * scale, descent = metrics.descent * scale;
        const double gap =
            _settings.lineHeight > 0 ? _settings.lineHeight * size - ascent - descent : metrics.lineGap * scale;
        laid.ascent = std::max(laid.ascent, ascent + gap / 2);
        laid.descent = std::max(laid.descent, descent + gap / 2);
    };
    laid.ascent = laid.descent = -std::numeric_limits<double>::max();
    for (const Piece& piece : _pieces)
    {
        const ShapeStyle& style = _pShaped->getStyles()[piece.pRun->style];
        include(style.face, style.size);
        // Lines of a height that was asked for are even, whatever other faces come in.
        if (!(_settings.lineHeight > 0) && piece.pRun->kind == Kind::Text && piece.pRun->face != style.face)
            include(piece.pRun->face, style.size);
    }
    if (_pieces.empty())
    {
        const ShapeStyle& style = _pShaped->getStyles()[_pShaped->getSpans()[spanAt(begin)].style];
        include(style.face, style.size);
    }
}

void LineFiller::addPiece(const Piece& piece, double& x, double extra, std::uint32_t spacesFrom, std::uint32_t spacesTo)
{
    const ShapedRun& run = *piece.pRun;
    const ShapeStyle& style = _pShaped->getStyles()[run.style];
    const double scale = scaleOf(run, style);
    const auto& spans = _pShaped->getSpans();
    const std::size_t n = piece.clusters.size();
    std::size_t span = spanAt(piece.begin);
    const bool isOneSpan = spans[span].end >= piece.end;
    const auto isReversed = run.isRightToLeft();
    LaidRun* pLaid = nullptr;
    for (std::size_t k = 0; k < n; ++k)
    {
        const std::size_t i = isReversed ? n - 1 - k : k;
        const Cluster& cluster = piece.clusters[i];
        const std::uint32_t end = i + 1 < n ? piece.clusters[i + 1].begin : piece.end;
        if (!isOneSpan)
            span = spanAt(cluster.begin);
        if (pLaid == nullptr || pLaid->span != span)
        {
            pLaid = &_laid.runs.emplace_back(LaidRun{.face = run.face,
                                                     .size = style.size,
                                                     .span = static_cast<std::uint32_t>(span),
                                                     .begin = cluster.begin,
                                                     .end = end,
                                                     .firstGlyph = static_cast<std::uint32_t>(_laid.glyphs.size()),
                                                     .nGlyphs = 0,
                                                     .left = x,
                                                     .right = x,
                                                     .isRightToLeft = isReversed});
        }
        pLaid->begin = std::min(pLaid->begin, cluster.begin);
        pLaid->end = std::max(pLaid->end, end);
        const double right =
            x + (cluster.isTab ? _tabWidths[cluster.begin] : cluster.advance) +
            (cluster.isWordSpace && cluster.begin >= spacesFrom && cluster.begin < spacesTo ? extra : 0);
        double pen = x;
        for (std::size_t g = cluster.firstGlyph; g < cluster.firstGlyph + cluster.nGlyphs; ++g)
        {
            const ShapedGlyph& glyph = piece.pGlyphs[g];
            const bool isLast = g + 1 == cluster.firstGlyph + cluster.nGlyphs;
            const double advance = isLast ? right - pen : glyph.advance * scale;
            _laid.glyphs.push_back({glyph.glyph, glyph.cluster, float(pen + glyph.xOffset * scale),
                                    float(-glyph.yOffset * scale), float(advance)});
            pen += advance;
        }
        x = right;
        pLaid->right = x;
        pLaid->nGlyphs = static_cast<std::uint32_t>(_laid.glyphs.size()) - pLaid->firstGlyph;
    }
}

void LineFiller::addLine(const Line& line, bool isLast)
{
    LaidLine laid{.begin = beginOf(line.first),
                  .end = beginOf(line.last),
                  .firstRun = static_cast<std::uint32_t>(_laid.runs.size()),
                  .nRuns = 0,
                  .left = 0,
                  .right = 0,
                  .ascent = 0,
                  .descent = 0,
                  .isCut = line.isCut,
                  .isSoft = line.isSoft};
    measureHeight(laid.begin, laid);
    double visible = getVisibleWidth();

    double extra = 0;
    std::uint32_t spacesFrom = laid.begin, spacesTo = laid.begin;
    if (_settings.isJustified && _hasLimit && line.isSoft && !isLast && visible < _settings.width)
    {
        std::size_t nSpaces = 0, nPending = 0;
        for (const Piece& piece : _pieces)
            for (const Cluster& cluster : piece.clusters)
                if (cluster.isTab)
                {
                    spacesFrom = cluster.begin + 1;
                    nSpaces = nPending = 0;
                }
                else if (cluster.isWordSpace)
                    ++nPending;
                else if (!cluster.hangs)
                {
                    nSpaces += std::exchange(nPending, 0);
                    spacesTo = cluster.begin;
                }
        if (nSpaces > 0)
        {
            extra = (_settings.width - visible) / double(nSpaces);
            visible = _settings.width;
        }
    }

    // Tabs are as wide as what stands before them in the text makes them.
    _tabWidths.clear();
    double x = 0;
    for (const Piece& piece : _pieces)
        for (const Cluster& cluster : piece.clusters)
        {
            const double width = widthOf(cluster, x);
            x += width;
            if (cluster.isTab)
                _tabWidths.emplace(cluster.begin, width);
        }
    splitByLevels(line);
    reorder();
    x = 0;
    for (const Piece& piece : _pieces)
        addPiece(piece, x, extra, spacesFrom, spacesTo);
    laid.left = _pShaped->isRightToLeft() ? x - visible : 0;
    laid.right = laid.left + visible;
    laid.nRuns = static_cast<std::uint32_t>(_laid.runs.size()) - laid.firstRun;
    _laid.lines.push_back(laid);
}

LaidParagraph LineFiller::fill()
{
    const bool wraps = _hasLimit && _settings.wraps;
    _laid.glyphs.reserve(_pShaped->getGlyphs().size());
    std::size_t first = 0;
    do
    {
        Line line = findLine(first, wraps);
        const std::size_t next = line.last;
        const bool isLastAllowed = _settings.maxLines > 0 && _laid.lines.size() + 1 == _settings.maxLines;
        const bool hasMore = next < _clusters.size() || _settings.goesOnBehind;
        takePieces(line);
        while (wraps && isTooWide(getVisibleWidth()) &&
               std::ranges::find(_pieces, true, &Piece::isOwn) != _pieces.end())
        {
            const std::size_t earlier = findEarlier(line);
            if (earlier == line.first)
                break;
            line = {line.first, earlier, true, false};
            takePieces(line);
        }
        first = line.last;
        if (!_settings.ellipsis.empty() && ((isLastAllowed && hasMore) || (!wraps && isTooWide(getVisibleWidth()))))
        {
            cutLine(line);
            takePieces(line);
        }
        addLine(line, first == _clusters.size());
        if (isLastAllowed)
            break;
        // What ends a line at the paragraph's end begins another one.
        if (first == _clusters.size() && next == first && endsInLineEnd(_pShaped->getText()))
        {
            if (_settings.maxLines == 0 || _laid.lines.size() < _settings.maxLines)
            {
                takePieces({first, first, false, false});
                addLine({first, first, false, false}, true);
            }
            break;
        }
    } while (first < _clusters.size());
    _laid.pShaped = std::move(_pShaped);
    return std::move(_laid);
}

} // namespace gui::draw
