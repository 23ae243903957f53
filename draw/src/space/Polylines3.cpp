#include <gui/draw/Polylines3.h>

#include "SpaceBlocks.h"
#include "SpacePainter.h"
#include "TexelStore.h"

#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>

#include <td/GUIThread.h>
#include <vo/Log.h>

#include <glm/geometric.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

namespace gui::draw
{

namespace
{

constexpr std::size_t cMostLinePoints = std::size_t(1) << 28;
constexpr std::size_t cTexelsPerPoint = 2, cTexelsPerLine = 2;
constexpr double cWidestLine = 1000; // in points
// Of a line's flags, as shaders know them.
constexpr std::uint32_t cJoined = 1, cShown = 2, cColored = 4, cButt = 8, cSquare = 16;

// @return the first that has a coordinate that is not finite; their number when none has
std::size_t findBadPlace(std::span<const glm::dvec3> places)
{
    return static_cast<std::size_t>(std::find_if_not(places.begin(), places.end(), isPlace) - places.begin());
}

std::uint32_t floatWordOf(double number) { return std::bit_cast<std::uint32_t>(static_cast<float>(number)); }

} // namespace

struct Polylines3::Impl
{
    struct Line
    {
        std::size_t first;
        std::size_t count;
        Look look;
        std::uint32_t flags;
    };

    void writePoints(const Line& line, std::uint32_t number, std::span<const glm::dvec3> places)
    {
        std::uint32_t* pWords = points.change(cTexelsPerPoint * line.first, cTexelsPerPoint * line.count);
        double arc = 0;
        for (std::size_t i = 0; i < places.size(); ++i, pWords += 8)
        {
            if (i > 0)
                arc += glm::length(places[i] - places[i - 1]);
            writePlace(places[i], origin, pWords, pWords + 4);
            pWords[3] = floatWordOf(arc);
            pWords[7] = number;
        }
        blocks.markChanged(line.first, line.count);
    }

    void writeHead(std::size_t number)
    {
        const Line& line = all[number];
        const std::uint32_t cap = line.look.cap == Cap::Butt ? cButt : line.look.cap == Cap::Square ? cSquare : 0;
        const std::uint32_t words[] = {static_cast<std::uint32_t>(line.first), static_cast<std::uint32_t>(line.count),
                                       wordOf(line.look.color), line.flags | cap};
        std::copy(std::begin(words), std::end(words), lines.change(cTexelsPerLine * number, 1));
    }

    void writeLook(std::size_t number)
    {
        const Look& look = all[number].look;
        const bool isDashed = look.dash > 0 && look.gap > 0 && std::isfinite(look.dash + look.gap);
        const double offset =
            std::isfinite(look.dashOffset) && isDashed ? std::fmod(look.dashOffset, look.dash + look.gap) : 0;
        const std::uint32_t words[] = {floatWordOf(look.width > 0 ? std::min(look.width, cWidestLine) : 0),
                                       floatWordOf(isDashed ? look.dash : 0), floatWordOf(isDashed ? look.gap : 0),
                                       floatWordOf(offset)};
        std::copy(std::begin(words), std::end(words), lines.change(cTexelsPerLine * number + 1, 1));
        isWidestKnown = false;
    }

    double findWidest()
    {
        if (!isWidestKnown)
        {
            widest = 0;
            for (const Line& line : all)
                widest = std::max(widest, line.look.width);
            widest = std::min(widest, cWidestLine);
            isWidestKnown = true;
        }
        return widest;
    }

    // About the segments that begin at some points.
    Box3 boxOf(std::size_t first, std::size_t end) const
    {
        Box3 box;
        for (std::size_t i = first; i < std::min(end + 1, nPoints); ++i)
            box.add(readPlace(points.at(cTexelsPerPoint * i), origin));
        for (std::size_t i = first; i < end; i = behind(i))
            if (const Line& line = lineAt(i); (line.flags & cJoined) != 0 && line.first + line.count <= end)
                box.add(readPlace(points.at(cTexelsPerPoint * line.first), origin));
        return grownByRounding(box, origin);
    }
    const Line& lineAt(std::size_t point) const { return all[points.at(cTexelsPerPoint * point + 1)[3]]; }
    std::size_t behind(std::size_t point) const { return lineAt(point).first + lineAt(point).count; }

    void updateBounds()
    {
        blocks.update([this](std::size_t first, std::size_t end) { return boxOf(first, end); });
    }

    bool draw(const Eye& eye, unsigned int features, td::Color color, std::uint32_t firstId)
    {
        using gl::Context;
        using Pass = SpaceProgram::Pass;
        if (!painter.isThere())
            return false;
        updateBounds();
        SpaceSight sight;
        const double reach = findWidest() / 2 + 1 / eye.getScale();
        if (!sight.look(eye, {}, origin, blocks.getBounds(), 1.5 * reach * eye.getScale(), bias))
            return true;
        SpacePainter::askForShadows(eye, {}, sight);
        if (sight.isOfSun)
            return true; // as wide as it is seen, it would cast another one at each distance
        blocks.findSeen(eye, 1.5 * reach, 0, ranges); // square ends have corners
        if (ranges.empty())
            return true;
        const bool isFlat = features != 0;
        if (!isFlat && colors.getSize() > 0)
            features |= SpaceProgram::Colors;
        if (!points.upload() || !lines.upload() || (colors.getSize() > 0 && !colors.upload()))
            return painter.fail("GL has no room for its points");
        const gl::StateGuard guard;
        sight.beginDrawing();
        SpaceProgram* pProgram = painter.activate(SpaceProgram::Kind::Lines, features, sight);
        if (pProgram == nullptr)
            return false;
        points.bind(SpaceProgram::cThingsUnit);
        lines.bind(SpaceProgram::cLinesUnit);
        if (colors.getSize() > 0)
            colors.bind(SpaceProgram::cColorsUnit);
        if (isFlat)
        {
            pProgram->setFlat(color, firstId);
            pProgram->setPass(Pass::Flat);
            return painter.drawQuads(ranges) && painter.succeed();
        }
        // What is covered whole hides what is behind it, in whatever order it comes; rims are mixed with what is there
        // then, and don't keep each other away. What is drawn later must know of these too.
        SpaceSight::beginBlending();
        pProgram->setPass(Pass::Core);
        if (!painter.drawQuads(ranges))
            return false;
        Context::maskDepthBuffer(false);
        pProgram->setPass(Pass::Rims);
        painter.drawQuads(ranges);
        Context::maskDepthBuffer(true);
        Context::maskColorBuffer(false, false, false, false);
        pProgram->setPass(Pass::Depth);
        painter.drawQuads(ranges);
        return painter.succeed();
    }

    TexelStore points{gl::BufferTexture::Format::UInt4, 4}, lines{gl::BufferTexture::Format::UInt4, 4};
    TexelStore colors{gl::BufferTexture::Format::UInt, 1}; // none as long as all lines have one each
    std::vector<Line> all;
    std::size_t nPoints = 0;
    SpaceBlocks blocks{4096};
    glm::dvec3 origin{0}; // the first point's place
    double bias = 0, widest = 0;
    bool isWidestKnown = true;
    SpacePainter painter{"Polylines3"};
    std::vector<gl::Quads::Range> ranges;
};

Polylines3::Polylines3()
    : _pImpl(std::make_unique<Impl>())
{
}

Polylines3::~Polylines3() = default;

std::optional<std::size_t> Polylines3::add(std::span<const glm::dvec3> points, const Look& look, Ends ends)
{
    TD_ASSERT_GUI_THREAD(std::nullopt);
    Impl& impl = *_pImpl;
    const std::size_t bad = findBadPlace(points);
    if (points.empty())
        vo::dbgLog("Error! Polylines3::add: a line without points!");
    else if (bad < points.size())
        vo::dbgLog("Error! Polylines3::add: point %zu is not finite, or beyond 1e30!", bad);
    else if (points.size() > cMostLinePoints - impl.nPoints)
        vo::dbgLog("Error! Polylines3::add: more than 2^28 points!");
    else
    {
        if (impl.nPoints == 0)
            impl.origin = points.front();
        const std::size_t number = impl.all.size(), first = impl.nPoints;
        impl.all.push_back({first, points.size(), look, cShown | (ends == Ends::Joined ? cJoined : 0U)});
        impl.nPoints += points.size();
        impl.points.resize(cTexelsPerPoint * impl.nPoints);
        impl.lines.resize(cTexelsPerLine * impl.all.size());
        if (impl.colors.getSize() > 0)
            impl.colors.resize(impl.nPoints);
        impl.blocks.resize(impl.nPoints);
        // The block before goes on to what is new.
        if (first > 0)
            impl.blocks.markChanged(first - 1, 1);
        impl.writePoints(impl.all.back(), static_cast<std::uint32_t>(number), points);
        impl.writeHead(number);
        impl.writeLook(number);
        return number;
    }
    return std::nullopt;
}

std::optional<std::size_t> Polylines3::add(std::span<const glm::dvec3> points) { return add(points, {}); }

void Polylines3::clear()
{
    TD_ASSERT_GUI_THREAD();
    Impl& impl = *_pImpl;
    impl.all.clear();
    impl.nPoints = 0;
    for (TexelStore* pStore : {&impl.points, &impl.lines, &impl.colors})
        pStore->resize(0);
    impl.blocks.resize(0);
    impl.isWidestKnown = false;
}

bool Polylines3::setPoints(std::size_t line, std::span<const glm::dvec3> points)
{
    TD_ASSERT_GUI_THREAD(false);
    if (line >= _pImpl->all.size())
        return false;
    const Impl::Line& there = _pImpl->all[line];
    const std::size_t bad = findBadPlace(points);
    if (points.size() != there.count)
        vo::dbgLog("Error! Polylines3::setPoints: %zu points for a line of %zu!", points.size(), there.count);
    else if (bad < points.size())
        vo::dbgLog("Error! Polylines3::setPoints: point %zu is not finite, or beyond 1e30!", bad);
    else
    {
        _pImpl->writePoints(there, static_cast<std::uint32_t>(line), points);
        if (there.first > 0)
            _pImpl->blocks.markChanged(there.first - 1, 1);
        return true;
    }
    return false;
}

bool Polylines3::setColors(std::size_t line, std::span<const td::Color> colors)
{
    TD_ASSERT_GUI_THREAD(false);
    Impl& impl = *_pImpl;
    if (line >= impl.all.size())
        return false;
    Impl::Line& there = impl.all[line];
    if (!colors.empty() && colors.size() != there.count)
    {
        vo::dbgLog("Error! Polylines3::setColors: %zu colours for a line of %zu points!", colors.size(), there.count);
        return false;
    }
    if (!colors.empty())
    {
        if (impl.colors.getSize() == 0)
            impl.colors.resize(impl.nPoints);
        std::uint32_t* pWords = impl.colors.change(there.first, there.count);
        for (const td::Color color : colors)
            *pWords++ = wordOf(color);
    }
    const std::uint32_t flags = colors.empty() ? there.flags & ~cColored : there.flags | cColored;
    if (flags != there.flags)
    {
        there.flags = flags;
        impl.writeHead(line);
    }
    return true;
}

bool Polylines3::setLook(std::size_t line, const Look& look)
{
    TD_ASSERT_GUI_THREAD(false);
    if (line >= _pImpl->all.size())
        return false;
    if (!(_pImpl->all[line].look == look))
    {
        _pImpl->all[line].look = look;
        _pImpl->writeHead(line);
        _pImpl->writeLook(line);
    }
    return true;
}

bool Polylines3::setVisible(std::size_t line, bool isVisible)
{
    TD_ASSERT_GUI_THREAD(false);
    if (line >= _pImpl->all.size())
        return false;
    std::uint32_t& flags = _pImpl->all[line].flags;
    if (((flags & cShown) != 0) != isVisible)
    {
        flags ^= cShown;
        _pImpl->writeHead(line);
    }
    return true;
}

void Polylines3::setBias(double points) { _pImpl->bias = points; }

std::size_t Polylines3::getNumberOfLines() const { return _pImpl->all.size(); }

std::size_t Polylines3::getNumberOfPoints() const { return _pImpl->nPoints; }

const Polylines3::Look& Polylines3::getLook(std::size_t line) const
{
    static const Look s_none;
    return line < _pImpl->all.size() ? _pImpl->all[line].look : s_none;
}

bool Polylines3::isVisible(std::size_t line) const
{
    return line < _pImpl->all.size() && (_pImpl->all[line].flags & cShown) != 0;
}

const Box3& Polylines3::getBounds() const
{
    _pImpl->updateBounds();
    return _pImpl->blocks.getBounds();
}

bool Polylines3::draw(const Eye& eye) { return _pImpl->draw(eye, 0, td::Color(), 0); }

bool Polylines3::drawColor(const Eye& eye, td::Color color) { return _pImpl->draw(eye, SpaceProgram::Plain, color, 0); }

bool Polylines3::drawIds(const Eye& eye, std::uint32_t first)
{
    return _pImpl->draw(eye, SpaceProgram::Ids, td::Color(), first);
}

} // namespace gui::draw
