// The half of TextLayout that is for editing: carets, hits and selections.

#include <gui/draw/TextLayout.h>

#include "LaidParagraph.h"
#include "ShapedParagraph.h"

#include <algorithm>
#include <iterator>

namespace gui::draw
{

// A letter as readers see it, in a line.
struct TextLayout::Box
{
    std::size_t begin, end; // of the text
    double left, right;
    bool isRightToLeft;

    double leading() const { return isRightToLeft ? right : left; }
    double trailing() const { return isRightToLeft ? left : right; }
    // The places that stand at its sides.
    Position atLeft() const { return isRightToLeft ? behind() : before(); }
    Position atRight() const { return isRightToLeft ? before() : behind(); }
    Position before() const { return {begin, Affinity::Downstream}; }
    Position behind() const { return {end, Affinity::Upstream}; }
};

namespace
{

std::span<const LaidRun> runsOf(const LaidParagraph& paragraph, const LaidLine& line)
{
    return std::span(paragraph.runs).subspan(line.firstRun, line.nRuns);
}

// Where a run's clusters begin and how wide they are, in the text's order.
struct LaidCluster
{
    std::uint32_t begin;
    double width;
};

void findClusters(const LaidParagraph& paragraph, const LaidRun& run, std::vector<LaidCluster>& clusters)
{
    clusters.clear();
    const auto glyphs = std::span(paragraph.glyphs).subspan(run.firstGlyph, run.nGlyphs);
    double sum = 0;
    for (std::size_t i = 0; i < glyphs.size(); ++i)
    {
        const TextLayout::Glyph& glyph = glyphs[run.isRightToLeft ? glyphs.size() - 1 - i : i];
        if (clusters.empty() || clusters.back().begin != glyph.offset)
            clusters.push_back({glyph.offset, 0});
        clusters.back().width += double(glyph.advance);
        sum += double(glyph.advance);
    }
    if (clusters.empty())
        clusters.push_back({run.begin, run.right - run.left});
    else
        // What the glyphs' smaller numbers have lost.
        clusters.back().width += run.right - run.left - sum;
}

} // namespace

const TextLayout::Paragraph& TextLayout::paragraphAt(std::size_t offset) const
{
    const auto found = std::ranges::upper_bound(_paragraphs, offset, {}, &Paragraph::begin);
    return found == _paragraphs.begin() ? _paragraphs.front() : *std::prev(found);
}

// The beginning of the letter that an offset is in.
std::size_t TextLayout::toLetter(std::size_t offset) const
{
    const Paragraph& paragraph = paragraphAt(offset);
    if (offset >= paragraph.end)
        return paragraph.end;
    const auto& letters = paragraph.pLaid->pShaped->getGraphemes();
    return paragraph.begin +
           *std::prev(std::ranges::upper_bound(letters, static_cast<std::uint32_t>(offset - paragraph.begin)));
}

std::size_t TextLayout::getLineAt(Position position) const
{
    if (_lines.empty())
        return 0;
    const std::size_t offset = toLetter(std::min(position.offset, _text.size()));
    const Paragraph& paragraph = paragraphAt(offset);
    const auto& lines = paragraph.pLaid->lines;
    const auto at = static_cast<std::uint32_t>(offset - paragraph.begin);
    auto found = std::prev(std::ranges::upper_bound(lines, at, {}, &LaidLine::begin));
    if (position.affinity == Affinity::Upstream && found->begin == at && found != lines.begin() &&
        std::prev(found)->isSoft)
        --found;
    return paragraph.firstLine + static_cast<std::size_t>(found - lines.begin());
}

// The line's letters from left to right. Of a ligature each letter has the same part, whatever its picture looks like.
std::vector<TextLayout::Box> TextLayout::boxesOf(std::size_t line) const
{
    const Paragraph& paragraph = paragraphAt(_lines[line].begin);
    const LaidParagraph& laid = *paragraph.pLaid;
    const LaidLine& laidLine = laid.lines[line - paragraph.firstLine];
    const auto& letters = laid.pShaped->getGraphemes();
    const double origin = _lines[line].left - laidLine.left;
    const bool isLast = line - paragraph.firstLine + 1 == laid.lines.size();
    std::vector<Box> boxes, ofRun;
    std::vector<LaidCluster> clusters;
    for (const LaidRun& run : runsOf(laid, laidLine))
    {
        // A hyphen or an ellipsis; or what ends the line, behind which is the next one.
        if (run.begin == run.end ||
            (!isLast && !laidLine.isSoft && run.nGlyphs == 0 && run.end == laidLine.end && run.left == run.right))
            continue;
        ofRun.clear();
        findClusters(laid, run, clusters);
        double x = origin + (run.isRightToLeft ? run.right : run.left);
        for (std::size_t i = 0; i < clusters.size(); ++i)
        {
            const std::uint32_t begin = clusters[i].begin;
            const std::uint32_t end = i + 1 < clusters.size() ? clusters[i + 1].begin : run.end;
            auto next = std::ranges::lower_bound(letters, begin);
            const auto last = std::ranges::lower_bound(letters, end);
            const bool goesOn = next == last || *next > begin;
            const auto nParts = static_cast<double>((last - next) + (goesOn ? 1 : 0));
            const double part = (run.isRightToLeft ? -1 : 1) * clusters[i].width / nParts;
            // More of the letter before, which is in another run where a line's end parts them.
            if (goesOn)
            {
                x += part;
                if (!ofRun.empty())
                    (run.isRightToLeft ? ofRun.back().left : ofRun.back().right) = x;
            }
            for (; next != last; ++next)
            {
                ofRun.push_back({paragraph.begin + *next, paragraph.begin + *std::next(next), std::min(x, x + part),
                                 std::max(x, x + part), run.isRightToLeft});
                x += part;
            }
        }
        if (run.isRightToLeft)
            std::ranges::reverse(ofRun);
        boxes.insert(boxes.end(), ofRun.begin(), ofRun.end());
    }
    return boxes;
}

// The letter that a place stands at, and on which side in the text; null in an empty line.
const TextLayout::Box* TextLayout::boxOf(const std::vector<Box>& boxes, Position position, bool& isBehind) const
{
    const auto before = std::ranges::find(boxes, position.offset, &Box::end);
    const auto after = std::ranges::find(boxes, position.offset, &Box::begin);
    isBehind = before != boxes.end() && (position.affinity == Affinity::Upstream || after == boxes.end());
    if (isBehind)
        return &*before;
    if (after != boxes.end())
        return &*after;
    // In what was cut, behind the last letter that is there.
    isBehind = true;
    const auto last = std::ranges::max_element(boxes, {}, &Box::end);
    return last != boxes.end() ? &*last : nullptr;
}

TextLayout::Caret TextLayout::getCaret(Position position) const
{
    if (_lines.empty())
        return {{0, 0}, 0, false};
    position.offset = toLetter(std::min(position.offset, _text.size()));
    const std::size_t index = getLineAt(position);
    const Line& line = _lines[index];
    bool isBehind = false;
    const std::vector<Box> boxes = boxesOf(index);
    if (const Box* const pBox = boxOf(boxes, position, isBehind))
        return {{isBehind ? pBox->trailing() : pBox->leading(), line.top}, line.bottom, pBox->isRightToLeft};
    return {{line.left, line.top}, line.bottom, line.isRightToLeft};
}

TextLayout::Position TextLayout::hitTest(Point point) const
{
    if (_lines.empty())
        return {};
    const auto found = std::ranges::upper_bound(_lines, point.y, {}, &Line::bottom);
    const auto index = std::min(static_cast<std::size_t>(found - _lines.begin()), _lines.size() - 1);
    const std::vector<Box> boxes = boxesOf(index);
    if (boxes.empty())
        return {_lines[index].begin, Affinity::Downstream};
    const Box* pNearest = &boxes.front();
    for (const Box& box : boxes)
        if (point.x >= box.left)
            pNearest = &box;
    return point.x < (pNearest->left + pNearest->right) / 2 ? pNearest->atLeft() : pNearest->atRight();
}

std::vector<TextLayout::Rect> TextLayout::getSelection(Range range) const
{
    std::vector<Rect> rects;
    if (_lines.empty() || range.begin >= range.end)
        return rects;
    const std::size_t last = getLineAt({range.end, Affinity::Upstream});
    for (std::size_t i = getLineAt({range.begin, Affinity::Downstream}); i <= last; ++i)
    {
        const std::size_t first = rects.size();
        for (const Box& box : boxesOf(i))
        {
            if (box.begin >= range.end || box.end <= range.begin)
                continue;
            if (rects.size() > first && rects.back().right == box.left)
                rects.back().right = box.right;
            else
                rects.emplace_back(box.left, _lines[i].top, box.right, _lines[i].bottom);
        }
    }
    return rects;
}

std::size_t TextLayout::getNext(std::size_t offset) const
{
    if (_paragraphs.empty())
        return 0;
    offset = std::min(offset, _text.size());
    const Paragraph& paragraph = paragraphAt(offset);
    if (offset >= paragraph.end)
        return &paragraph == &_paragraphs.back() ? offset : (&paragraph + 1)->begin;
    const auto& letters = paragraph.pLaid->pShaped->getGraphemes();
    return paragraph.begin + *std::ranges::upper_bound(letters, static_cast<std::uint32_t>(offset - paragraph.begin));
}

std::size_t TextLayout::getPrevious(std::size_t offset) const
{
    if (_paragraphs.empty())
        return 0;
    offset = std::min(offset, _text.size());
    const Paragraph& paragraph = paragraphAt(offset);
    if (offset > paragraph.end)
        return paragraph.end;
    if (offset == paragraph.begin)
        return &paragraph == &_paragraphs.front() ? offset : (&paragraph - 1)->end;
    const auto& letters = paragraph.pLaid->pShaped->getGraphemes();
    return paragraph.begin +
           *std::prev(std::ranges::lower_bound(letters, static_cast<std::uint32_t>(offset - paragraph.begin)));
}

// What is beside a line's end is in the line that is read next, or before.
TextLayout::Position TextLayout::step(Position position, bool isToRight) const
{
    if (_lines.empty())
        return {};
    position.offset = toLetter(std::min(position.offset, _text.size()));
    std::size_t index = getLineAt(position);
    const std::vector<Box> boxes = boxesOf(index);
    bool isBehind = false;
    const Box* pBox = boxOf(boxes, position, isBehind);
    // The letter to pass over.
    if (pBox != nullptr && (isBehind != pBox->isRightToLeft) == isToRight)
        pBox = pBox == (isToRight ? &boxes.back() : &boxes.front()) ? nullptr : pBox + (isToRight ? 1 : -1);
    if (pBox != nullptr)
    {
        const Position result = isToRight ? pBox->atRight() : pBox->atLeft();
        // At the end of a wrapped line the caret is where one goes on to read.
        const bool isAtWrap = pBox == (isToRight ? &boxes.back() : &boxes.front()) &&
                              isToRight != _lines[index].isRightToLeft && result.affinity == Affinity::Upstream &&
                              index + 1 < _lines.size() && result.offset == _lines[index + 1].begin;
        return isAtWrap ? Position{result.offset, Affinity::Downstream} : result;
    }
    const bool goesOn = isToRight != _lines[index].isRightToLeft;
    if (goesOn ? index + 1 == _lines.size() : index == 0)
        return position;
    index = goesOn ? index + 1 : index - 1;
    const std::vector<Box> others = boxesOf(index);
    if (others.empty())
        return {_lines[index].begin, Affinity::Downstream};
    // Where that line is read first, or last.
    return goesOn != _lines[index].isRightToLeft ? others.front().atLeft() : others.back().atRight();
}

TextLayout::Position TextLayout::getRight(Position position) const { return step(position, true); }

TextLayout::Position TextLayout::getLeft(Position position) const { return step(position, false); }

TextLayout::Range TextLayout::getWord(std::size_t offset) const
{
    if (_paragraphs.empty())
        return {};
    const Paragraph& paragraph = paragraphAt(std::min(offset, _text.size()));
    const auto& words = paragraph.pLaid->pShaped->getWords();
    if (words.size() < 2)
        return {paragraph.begin, paragraph.end};
    const std::size_t last = paragraph.end - 1 - paragraph.begin;
    const std::size_t at = std::min(std::min(offset, _text.size()) - paragraph.begin, last);
    const auto end = std::ranges::upper_bound(words, static_cast<std::uint32_t>(at));
    return {paragraph.begin + *std::prev(end), paragraph.begin + *end};
}

} // namespace gui::draw
