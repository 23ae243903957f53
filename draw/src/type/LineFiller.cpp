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

constexpr std::string_view cHyphen = "\u2010", cPlainHyphen = "-";

} // namespace

std::size_t LaidParagraph::getBytes() const
{
    return sizeof *this + lines.capacity() * sizeof(LaidLine) + runs.capacity() * sizeof(LaidRun) +
           glyphs.capacity() * sizeof(TextLayout::Glyph);
}

LineFiller::LineFiller(std::shared_ptr<const ShapedParagraph> pShaped, const LineSettings& settings)
    : _pShaped(std::move(pShaped))
    , _settings(settings)
    , _hasLimit(settings.width > 0 && std::isfinite(settings.width))
    , _limit(_hasLimit ? settings.width * (1 + cSlack) : std::numeric_limits<double>::infinity())
    , _clusters(_pShaped->getClusters())
{
    const std::vector<ShapedRun>& runs = _pShaped->getRuns();
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

std::uint32_t LineFiller::beginOf(std::size_t cluster) const
{
    return cluster < _clusters.size() ? _clusters[cluster].begin
                                      : static_cast<std::uint32_t>(_pShaped->getText().size());
}

const ShapedRun& LineFiller::runOf(std::size_t cluster) const
{
    const std::vector<ShapedRun>& runs = _pShaped->getRuns();
    return *std::prev(std::ranges::upper_bound(runs, cluster, {}, &ShapedRun::firstCluster));
}

std::size_t LineFiller::endOf(const ShapedRun& run) const
{
    return &run == &_pShaped->getRuns().back() ? _clusters.size() : (&run)[1].firstCluster;
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
    return advance * other.scaleIn(style) + style.letterSpacing;
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
    double x = 0, visible = 0, visibleOfCandidate = 0;
    std::size_t candidate = first;
    const double limit = wraps ? _limit : std::numeric_limits<double>::infinity();
    auto next = std::ranges::upper_bound(_breaks, first, {}, &ClusterBreak::cluster);
    for (std::size_t i = first;;)
    {
        const std::size_t end = next != _breaks.end() ? next->cluster : _clusters.size();
        for (; i < end; ++i)
        {
            const Cluster& cluster = _clusters[i];
            const double right = x + widthOf(cluster, x);
            if (right > limit && i > first && (!cluster.hangs || cluster.isTab))
            {
                if (candidate > first)
                    return {first, candidate, true, false, visibleOfCandidate};
                return {first, findOverflow(first, i), true, false};
            }
            x = right;
            visible = cluster.hangs ? visible : x;
        }
        if (next == _breaks.end())
            return {first, _clusters.size(), false, false, visible};
        if (next->isHard)
            return {first, i, false, false, visible};
        const auto hasHyphenTooWide = [&]
        {
            const ShapedRun& run = runOf(i - 1);
            return isTooWide(x + widthOfOther(run, hyphenFor(run)));
        };
        if (!next->isAfterSoftHyphen || !hasHyphenTooWide())
        {
            candidate = i;
            visibleOfCandidate = visible;
        }
        ++next;
    }
}

// The place to break before the one that a line has; the line's beginning when there is none.
std::size_t LineFiller::findEarlier(const Line& line) const
{
    const auto next = std::ranges::lower_bound(_breaks, line.last, {}, &ClusterBreak::cluster);
    if (next != _breaks.begin() && std::prev(next)->cluster > line.first)
        return std::prev(next)->cluster;
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
        room -= widthOfOther(runOf(first), _settings.ellipsis);
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
    const Cluster cluster{advance * own.scaleIn(style) + style.letterSpacing,
                          at,
                          0,
                          static_cast<std::uint32_t>(glyphs.size()),
                          false,
                          false,
                          false,
                          false};
    const auto& clusters = _ownClusters.emplace_back(1, cluster);
    _pieces.push_back({&own, at, at, clusters, glyphs.data(), level, true});
    _isPlain = false;
}

void LineFiller::takePieces(const Line& line)
{
    _pieces.clear();
    _ownClusters.clear();
    _ownGlyphs.clear();
    _ownRuns.clear();
    _isPlain = true;
    for (std::size_t i = line.first; i < line.last;)
    {
        const ShapedRun& run = runOf(i);
        const std::size_t next = std::min(line.last, endOf(run));
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
            _pShaped->addClusters(run, piece.begin, piece.end, glyphs, clusters);
            piece.clusters = clusters;
            piece.pGlyphs = glyphs.data();
            piece.isOwn = true;
        }
        _isPlain = _isPlain && !piece.isOwn && run.kind != Kind::Tab;
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
        const ShapedRun& run =
            _pieces.empty() ? runOf(std::min(line.first, _clusters.size() - 1)) : *_pieces.back().pRun;
        addOther(run, beginOf(line.last), FriBidiLevel(_pShaped->isRightToLeft()), _settings.ellipsis);
    }
}

// Up to the last letter.
double LineFiller::getVisibleWidth(const Line& line) const
{
    if (_isPlain && line.visible)
        return *line.visible;
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

void LineFiller::splitByLevels(const Line& line)
{
    if (!_pShaped->hasLevels())
        return;
    const auto level = FriBidiLevel(_pShaped->isRightToLeft());
    const std::uint32_t from = _pShaped->findSpacesAtEnd(beginOf(line.first), beginOf(line.last));
    for (std::size_t i = _pieces.size(); i-- > 0;)
    {
        Piece& piece = _pieces[i];
        if (piece.begin == piece.end || piece.level == level)
            continue;
        const auto found = std::ranges::lower_bound(piece.clusters, from, {}, &Cluster::begin);
        const auto nBefore = static_cast<std::size_t>(found - piece.clusters.begin());
        if (nBefore == piece.clusters.size())
            break;
        if (nBefore == 0)
        {
            piece.level = level;
            continue;
        }
        Piece behind = piece;
        behind.begin = found->begin;
        behind.clusters = piece.clusters.subspan(nBefore);
        behind.level = level;
        piece.end = found->begin;
        piece.clusters = piece.clusters.first(nBefore);
        _pieces.insert(_pieces.begin() + std::ptrdiff_t(i) + 1, behind);
        break;
    }
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

LaidRun& LineFiller::addRun(const Piece& piece, std::size_t span, std::uint32_t begin, std::uint32_t end, double x)
{
    return _laid.runs.emplace_back(LaidRun{.face = piece.pRun->face,
                                           .size = _pShaped->getStyles()[piece.pRun->style].size,
                                           .span = static_cast<std::uint32_t>(span),
                                           .begin = begin,
                                           .end = end,
                                           .firstGlyph = static_cast<std::uint32_t>(_laid.glyphs.size()),
                                           .nGlyphs = 0,
                                           .left = x,
                                           .right = x,
                                           .isRightToLeft = piece.pRun->isRightToLeft()});
}

// Those of a piece without tabs and wider spaces, from a place on; where they end.
double LineFiller::addGlyphs(const Piece& piece, double x)
{
    const ShapedRun& run = *piece.pRun;
    const double scale = run.scaleIn(_pShaped->getStyles()[run.style]);
    const bool isReversed = run.isRightToLeft();
    const Cluster& left = isReversed ? piece.clusters.back() : piece.clusters.front();
    const Cluster& right = isReversed ? piece.clusters.front() : piece.clusters.back();
    const ShapedGlyph* pGlyph = piece.pGlyphs + left.firstGlyph;
    const std::size_t before = _laid.glyphs.size();
    _laid.glyphs.resize(before + right.firstGlyph + right.nGlyphs - left.firstGlyph);
    TextLayout::Glyph* pLaid = _laid.glyphs.data() + before;
    const auto add = [&](double pen, double advance)
    {
        const ShapedGlyph& glyph = *pGlyph++;
        *pLaid++ = {glyph.glyph, glyph.cluster, float(pen + glyph.xOffset * scale), float(-glyph.yOffset * scale),
                    float(advance)};
    };
    const std::size_t n = piece.clusters.size();
    const Cluster* pCluster = &left;
    for (std::size_t k = 0; k < n; ++k, isReversed ? --pCluster : ++pCluster)
    {
        const double end = x + pCluster->advance;
        for (std::uint32_t i = 1; i < pCluster->nGlyphs; ++i)
        {
            const double advance = pGlyph->advance * scale;
            add(x, advance);
            x += advance;
        }
        if (pCluster->nGlyphs > 0)
            add(x, end - x);
        x = end;
    }
    return x;
}

void LineFiller::addPiece(const Piece& piece, double& x, double extra, std::uint32_t spacesFrom, std::uint32_t spacesTo)
{
    const ShapedRun& run = *piece.pRun;
    const auto& spans = _pShaped->getSpans();
    const std::size_t n = piece.clusters.size();
    std::size_t span = spanAt(piece.begin);
    const bool isOneSpan = spans[span].end >= piece.end;
    if (n > 0 && isOneSpan && !(extra > 0) && run.kind == Kind::Text)
    {
        LaidRun& laid = addRun(piece, span, piece.clusters.front().begin, piece.end, x);
        laid.right = x = addGlyphs(piece, x);
        laid.nGlyphs = static_cast<std::uint32_t>(_laid.glyphs.size()) - laid.firstGlyph;
        return;
    }
    const double scale = run.scaleIn(_pShaped->getStyles()[run.style]);
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
            pLaid = &addRun(piece, span, cluster.begin, end, x);
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
    double visible = getVisibleWidth(line);

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
    if (std::ranges::find(_pieces, Kind::Tab, [](const Piece& piece) { return piece.pRun->kind; }) != _pieces.end())
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
        while (wraps && isTooWide(getVisibleWidth(line)) &&
               std::ranges::find(_pieces, true, &Piece::isOwn) != _pieces.end())
        {
            const std::size_t earlier = findEarlier(line);
            if (earlier == line.first)
                break;
            line = {line.first, earlier, true, false};
            takePieces(line);
        }
        first = line.last;
        if (!_settings.ellipsis.empty() && ((isLastAllowed && hasMore) || (!wraps && isTooWide(getVisibleWidth(line)))))
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
