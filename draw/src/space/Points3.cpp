#include <gui/draw/Points3.h>

#include "SpaceBlocks.h"
#include "SpacePainter.h"
#include "TexelStore.h"

#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>

#include <td/GUIThread.h>
#include <vo/Log.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

namespace gui::draw
{

namespace
{

constexpr std::size_t cMostPoints = std::size_t(1) << 28;
constexpr std::size_t cTexels = 2; // of a point
constexpr td::Color cDarkGrey{28, 32, 40, 255};

float timesOf(double size) { return size > 0 && std::isfinite(size) ? static_cast<float>(std::min(size, 1e30)) : 0; }

} // namespace

struct Points3::Impl
{
    template <typename Place>
    bool set(std::span<const Place> places, std::span<const td::Color> colors, std::span<const float> sizes,
             const glm::dvec3& from)
    {
        TD_ASSERT_GUI_THREAD(false);
        const std::size_t n = places.size();
        std::size_t bad = 0;
        while (bad < n && isPlace(from + glm::dvec3(places[bad])))
            ++bad;
        if (bad < n)
            vo::dbgLog("Error! Points3::set: point %zu is not finite, or beyond 1e30!", bad);
        else if ((colors.size() > 1 && colors.size() != n) || (!sizes.empty() && sizes.size() != n))
            vo::dbgLog("Error! Points3::set: %zu colours and %zu sizes for %zu points!", colors.size(), sizes.size(),
                       n);
        else if (n > cMostPoints)
            vo::dbgLog("Error! Points3::set: more than 2^28 points!");
        else
        {
            if (n > 0)
                origin = from + glm::dvec3(places[n / 2]);
            points.resize(0);
            points.resize(cTexels * n);
            std::uint32_t* pWords = n > 0 ? points.change(0, cTexels * n) : nullptr;
            largest = 0;
            for (std::size_t i = 0; i < n; ++i, pWords += 8)
            {
                writePlace(from + glm::dvec3(places[i]), origin, pWords, pWords + 4);
                pWords[3] = wordOf(colors.empty() ? cDarkGrey : colors[colors.size() == 1 ? 0 : i]);
                const float times = sizes.empty() ? 1 : timesOf(static_cast<double>(sizes[i]));
                largest = std::max(largest, times);
                pWords[7] = std::bit_cast<std::uint32_t>(times);
            }
            blocks.resize(n);
            blocks.markChanged(0, n);
            return true;
        }
        return false;
    }

    std::size_t size() const { return points.getSize() / cTexels; }

    void updateBounds()
    {
        blocks.update(
            [this](std::size_t first, std::size_t end)
            {
                Box3 box;
                for (std::size_t i = first; i < end; ++i)
                    box.add(readPlace(points.at(cTexels * i), origin));
                return grownByRounding(box, origin);
            });
    }

    bool draw(const Eye& eye, unsigned int features, td::Color color, std::uint32_t firstId)
    {
        using U = SpaceProgram;
        if (!painter.isThere())
            return false;
        updateBounds();
        const double radius = look.size > 0 ? 0.5 * look.size * static_cast<double>(largest) : 0;
        const bool isOfScreen = look.unit == Unit::Points;
        const double reach = (isOfScreen ? radius : 0) + 1 / eye.getScale(), grown = isOfScreen ? 0 : radius;
        const Box3& places = blocks.getBounds();
        SpaceSight sight;
        if (radius == 0 ||
            !sight.look(eye, light, origin, {places.min - grown, places.max + grown}, reach * eye.getScale(), bias))
            return true;
        SpacePainter::askForShadows(eye, light, sight);
        if (sight.isOfSun && look.shape == Shape::Disc)
            return true; // which is turned to the viewer
        if (sight.isOfSun)
            features = SpaceProgram::Plain;
        blocks.findSeen(eye, reach, grown, ranges);
        if (ranges.empty())
            return true;
        if (!points.upload())
            return painter.fail("GL has no room for its points");
        const gl::StateGuard guard;
        sight.beginDrawing();
        const bool isFlat = features != 0, areSpheres = look.shape == Shape::Sphere;
        if (areSpheres)
            features |= U::Spheres;
        U* pProgram = painter.activate(U::Kind::Points, features, sight);
        if (pProgram == nullptr)
            return false;
        points.bind(U::cThingsUnit);
        const auto size = static_cast<float>(std::min(look.size, 1e30));
        pProgram->setUniformValue(pProgram->at(U::Size), isOfScreen ? glm::vec2(size, 0) : glm::vec2(0, size));
        if (isFlat)
        {
            pProgram->setFlat(color, firstId);
            pProgram->setPass(U::Pass::Flat);
            return painter.drawQuads(ranges) && painter.succeed();
        }
        if (areSpheres)
        {
            const double polish = ModelSight::getShare(look.shininess);
            sight.tellLight(*pProgram, light, true);
            // Blinn's exponent from 4 to 2048; below a quarter the reflection itself goes.
            pProgram->setUniformValue(pProgram->at(U::Polish),
                                      glm::vec2(std::exp2(2 + 9 * polish), std::min(4 * polish, 1.0)));
        }
        SpaceSight::beginBlending();
        pProgram->setPass(U::Pass::Core);
        if (!painter.drawQuads(ranges))
            return false;
        gl::Context::maskDepthBuffer(false);
        pProgram->setPass(U::Pass::Rims);
        painter.drawQuads(ranges);
        return painter.succeed();
    }

    TexelStore points{gl::BufferTexture::Format::UInt4, 4};
    SpaceBlocks blocks{4096};
    glm::dvec3 origin{0}; // one of the places
    Look look;
    Light light;
    double bias = 0;
    float largest = 0; // of the sizes that were set
    SpacePainter painter{"Points3"};
    std::vector<gl::Quads::Range> ranges;
};

Points3::Points3()
    : _pImpl(std::make_unique<Impl>())
{
}

Points3::~Points3() = default;

bool Points3::set(std::span<const glm::dvec3> places, std::span<const td::Color> colors, std::span<const float> sizes)
{
    return _pImpl->set(places, colors, sizes, glm::dvec3(0));
}

bool Points3::set(std::span<const glm::vec3> places, std::span<const td::Color> colors, std::span<const float> sizes,
                  const glm::dvec3& origin)
{
    return _pImpl->set(places, colors, sizes, origin);
}

void Points3::clear() { _pImpl->set(std::span<const glm::dvec3>(), {}, {}, glm::dvec3(0)); }

bool Points3::setPlace(std::size_t point, const glm::dvec3& place)
{
    TD_ASSERT_GUI_THREAD(false);
    if (point >= size())
        return false;
    if (!isPlace(place))
    {
        vo::dbgLog("Error! Points3::setPlace: point %zu is not finite, or beyond 1e30!", point);
        return false;
    }
    std::uint32_t* pWords = _pImpl->points.change(cTexels * point, cTexels);
    writePlace(place, _pImpl->origin, pWords, pWords + 4);
    _pImpl->blocks.markChanged(point, 1);
    return true;
}

bool Points3::setColor(std::size_t point, td::Color color)
{
    TD_ASSERT_GUI_THREAD(false);
    if (point >= size())
        return false;
    _pImpl->points.change(cTexels * point, 1)[3] = wordOf(color);
    return true;
}

bool Points3::setSize(std::size_t point, double size)
{
    TD_ASSERT_GUI_THREAD(false);
    if (point >= this->size())
        return false;
    const float times = timesOf(size);
    _pImpl->points.change(cTexels * point + 1, 1)[3] = std::bit_cast<std::uint32_t>(times);
    _pImpl->largest = std::max(_pImpl->largest, times);
    return true;
}

void Points3::setLook(const Look& look) { _pImpl->look = look; }

void Points3::setLight(const Light& light) { _pImpl->light = light; }

void Points3::setBias(double points) { _pImpl->bias = points; }

std::size_t Points3::size() const { return _pImpl->size(); }

const Points3::Look& Points3::getLook() const { return _pImpl->look; }

const Box3& Points3::getBounds() const
{
    _pImpl->updateBounds();
    return _pImpl->blocks.getBounds();
}

bool Points3::draw(const Eye& eye) { return _pImpl->draw(eye, 0, td::Color(), 0); }

bool Points3::drawColor(const Eye& eye, td::Color color) { return _pImpl->draw(eye, SpaceProgram::Plain, color, 0); }

bool Points3::drawIds(const Eye& eye, std::uint32_t first)
{
    return _pImpl->draw(eye, SpaceProgram::Ids, td::Color(), first);
}

} // namespace gui::draw
