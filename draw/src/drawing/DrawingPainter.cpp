#include "DrawingPainter.h"

#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/Textures.h>

#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace gui::draw
{

namespace
{

constexpr std::size_t cManyPrograms = 6;

/// Where glyphs and other shapes alternate more often than this, one program draws both: it takes longer for each
/// pixel, and there the edges of a text's glyphs that overlap may lack a little.
constexpr std::size_t cManyPasses = 8;

/// Of so many quads of a drawing on fills and strokes have a program each, but for a kind that has few.
constexpr std::size_t cManyQuads = 10000, cFewQuads = 1000;

/// From so many pixels on a shape may have lines that floats are too coarse for.
constexpr double cFar = 30000;

/// How far from whole pixels a move may be that is taken as one, in pixels.
constexpr double cWhole = 1.0 / 1024;

/// What comes into sight is drawn by itself up to this part of all.
constexpr double cMostNew = 0.6;

// Of the views that are kept: how many, and, as long as they are more than one, how many pixels they have together, or
// as many as the largest one twice. (One has 8 bytes.)
constexpr std::size_t cMostViews = 8;
constexpr double cMostPixels = 1 << 22;
/// After so many draws those go that were not missed meanwhile.
constexpr unsigned int cDrawsUnused = 64;
/// What was drawn last and is kept no more.
constexpr std::size_t cMostGivenUp = 16;

// The most that a length grows.
double stretchOf(const Affine& m)
{
    const double sum = m.a * m.a + m.b * m.b + m.c * m.c + m.d * m.d, det = m.a * m.d - m.b * m.c;
    return std::sqrt((sum + std::sqrt(std::max(sum * sum - 4 * det * det, 0.0))) / 2);
}

} // namespace

DrawingPainter::DrawingPainter() = default;
DrawingPainter::~DrawingPainter() = default;

bool DrawingPainter::fail(const char* reason)
{
    if (_lastFailure != reason)
        vo::dbgLog("Error! Drawing::draw: %s!", reason);
    _lastFailure = reason;
    return false;
}

bool DrawingPainter::prepare()
{
    if (_home.getID() != gl::CurrentContext::getID())
    {
        _programs.clear();
        _pShared.reset();
        _views.clear();
        _givenUp.clear();
        _pSpare->release();
        _home.set(gl::CurrentContext::getID());
    }
    if (!_pShared)
        _pShared = DrawingPrograms::get();
    return _pShared->getLayer().isOK();
}

// Programs and framebuffers come back by themselves. What a layer shows is drawn again, so that nobody need read it.
void DrawingPainter::onContext(gl::ContextResource::Event event)
{
    const bool isLeaving = event == gl::ContextResource::Event::Leaving;
    for (View& view : _views)
    {
        if (isLeaving)
            view.pLayer->release();
        view.isLost = view.isLost || view.isValid;
        view.isValid = false;
    }
    if (isLeaving)
        _pSpare->release();
}

bool DrawingPainter::hasPicture(const Sight& sight) const
{
    return _home.getID() == gl::CurrentContext::getID() &&
           std::any_of(_views.begin(), _views.end(),
                       [&](const View& view) { return view.isValid && !view.isWaiting && view.isOf(sight, _version); });
}

// In frames that ask for the same sights in the same order, what was not asked for the longest is what was here in the
// frame before.
DrawingPainter::View& DrawingPainter::findView(const Sight& sight)
{
    const auto isIt = [&](const Shown& shown) { return shown.isOf(sight, _version); };
    auto found = std::find_if(_views.begin(), _views.end(), isIt);
    bool isMissed = found != _views.end();
    if (!isMissed)
    {
        const auto missed = std::find_if(_givenUp.begin(), _givenUp.end(), isIt);
        isMissed = missed != _givenUp.end();
        if (isMissed)
            _givenUp.erase(missed);
        if (isMissed || _views.empty())
            _views.emplace_back();
        else
            giveUp(_views.back());
        found = _views.end() - 1;
    }
    if (isMissed)
        _deepest = std::max(_deepest, static_cast<std::size_t>(found - _views.begin()));
    std::rotate(_views.begin(), found, found + 1);
    dropViews(sight.size);
    return _views.front();
}

void DrawingPainter::giveUp(const Shown& shown)
{
    if (_givenUp.size() == cMostGivenUp)
        _givenUp.erase(_givenUp.begin());
    _givenUp.push_back(shown);
}

void DrawingPainter::dropViews(td::Size<int> first)
{
    std::size_t most = cMostViews;
    if (++_nDraws == cDrawsUnused)
    {
        most = std::min(most, _deepest + 1);
        _nDraws = 0;
        _deepest = 0;
    }
    double sum = 0, largest = 0;
    std::size_t n = 0;
    for (const View& view : _views)
    {
        const td::Size<int> size = n == 0 ? first : view.pLayer->getSize();
        const double nPixels = double(size.width) * size.height;
        largest = std::max(largest, nPixels);
        sum += nPixels;
        if (n == most || (n > 0 && sum > std::max(cMostPixels, 2 * largest)))
            break;
        ++n;
    }
    for (; _views.size() > n; _views.pop_back())
        giveUp(_views.back());
}

// One that did not link stays, so that it is not tried in every frame. Where there are many already, one that can do
// more will do: linking takes as long as some frames.
ShapeProgram* DrawingPainter::programFor(unsigned int features)
{
    auto found = _programs.find(features);
    if (found == _programs.end() && _programs.size() >= cManyPrograms)
        found = std::find_if(_programs.begin(), _programs.end(),
                             [features](const auto& program)
                             {
                                 return ((program.first ^ features) &
                                         (DrawingPrograms::cCore | DrawingPrograms::cPicturesAlone)) == 0 &&
                                        (program.first & features) == features && program.second->isOK();
                             });
    if (found == _programs.end())
        found = _programs.emplace(features, &_pShared->find(features)).first;
    return found->second->isOK() ? found->second : nullptr;
}

bool DrawingPainter::drawRanges(const ShapeTables& tables, const Sight& sight, unsigned int features,
                                std::span<const gl::Quads::Range> ranges)
{
    ShapeProgram* pProgram = programFor(features);
    if (pProgram == nullptr)
        return fail("its program does not link");
    pProgram->activateFor(tables, sight);
    return _pShared->getQuads().draw(ranges) || fail("there is no vertex array");
}

namespace
{

bool isImage(const DrawList::Pass& pass) { return pass.ink >= DrawList::cImages; }

/// How passes are drawn together: the fewer programs, the more each of them does for every pixel.
enum class Merging
{
    None,   ///< each by its own program
    Shapes, ///< fills and strokes in a row by one
    Texts,  ///< those of glyphs in a row as well
    All     ///< all but images
};

// The same for what one program draws.
std::uint32_t inkOf(const DrawList::Pass& pass, Merging merging)
{
    if (isImage(pass) || merging == Merging::None)
        return pass.ink;
    if (merging == Merging::All || DrawList::areShapes(pass.ink))
        return DrawList::cShapes;
    return merging == Merging::Texts ? DrawList::cBoth : pass.ink;
}

// Those in a row that one program draws: up to which pass.
auto findEnd(std::span<const DrawList::Pass>::iterator pass, std::span<const DrawList::Pass> passes, Merging merging)
{
    return std::find_if(pass + 1, passes.end(),
                        [ink = inkOf(*pass, merging), merging](const DrawList::Pass& other)
                        { return inkOf(other, merging) != ink; });
}

// In so many steps.
std::size_t countSteps(std::span<const DrawList::Pass> passes, Merging merging)
{
    std::size_t n = 0;
    for (auto pass = passes.begin(); pass != passes.end(); pass = findEnd(pass, passes, merging))
        n += isImage(*pass) ? 0 : 1;
    return n;
}

// @param areMany  quads: linking one program for fills and one for strokes takes as long as it saves for some thousand
Merging mergingFor(std::span<const DrawList::Pass> passes, bool areMany)
{
    for (const Merging merging : {areMany ? Merging::None : Merging::Shapes, Merging::Shapes, Merging::Texts})
        if (countSteps(passes, merging) <= cManyPasses)
            return merging;
    return Merging::All;
}

// These are drawn by a program that others are likely to need anyway.
bool areFew(std::span<const gl::Quads::Range> ranges)
{
    std::size_t nQuads = 0;
    for (const gl::Quads::Range& range : ranges)
        nQuads += range.count;
    return nQuads < cFewQuads;
}

} // namespace

bool DrawingPainter::drawShapes(const ShapeTables& tables, const DrawList& list, ImageStore& images, const Sight& sight,
                                double stretch)
{
    const unsigned int features = tables.getFeatures(), glyphFeatures = tables.getGlyphFeatures();
    if ((features & HasFills) != 0 && !list.getTriangles().empty() &&
        !drawRanges(tables, sight, DrawingPrograms::cCore | (features & HasGradients), list.getTriangles()))
        return false;
    const unsigned int far = list.getLargest() * stretch > cFar ? HasFar : 0U;
    const std::span<const DrawList::Pass> passes = list.getPasses();
    const Merging merging = mergingFor(passes, tables.getNumberOfElements() >= cManyQuads);
    // Texts alone are behind nothing, nor are shapes that have a box each.
    if (std::all_of(passes.begin(), passes.end(),
                    [](const DrawList::Pass& pass) { return DrawList::areGlyphs(pass.ink); }) ||
        std::all_of(list.getRanges().begin(), list.getRanges().end(),
                    [](const gl::Quads::Range& range) { return range.first >= DrawList::cBoxes; }))
        gl::Context::disable(gl::Context::Flag::DepthTest);
    for (auto pass = passes.begin(); pass != passes.end();)
    {
        const std::size_t first = pass->first;
        const std::uint32_t ink = inkOf(*pass, merging);
        const auto last = findEnd(pass, passes, merging);
        const auto ranges =
            list.getRanges().subspan(first, (last == passes.end() ? list.getRanges().size() : last->first) - first);
        unsigned int needed = features | far;
        if (isImage(*pass))
        {
            const unsigned int texture = images.getTexture(ink - DrawList::cImages + 1);
            if (texture == 0)
                return fail("GL has no room for an image");
            gl::Textures::bindToSamplerUnit(texture, DrawingPrograms::cImageUnit, gl::Texture::Type::Tex2D);
            needed = HasFills | HasImages | far;
        }
        else if (merging == Merging::All)
            needed |= glyphFeatures;
        else if (ink == DrawList::cFills)
            needed = (needed & ~(HasStrokes | HasRound | HasCaps | HasDashes)) | (areFew(ranges) ? HasLinks : 0U);
        else if (ink == DrawList::cStrokes)
            needed = (needed & ~(HasFills | HasLinks)) | (areFew(ranges) ? HasRound : 0U);
        else if (pass->ink == DrawList::cPictures && last - pass == 1)
            needed =
                DrawingPrograms::cPicturesAlone | HasPictures | (glyphFeatures & (HasHalos | HasColors | HasPlaced));
        else if (DrawList::areGlyphs(ink))
            needed =
                glyphFeatures & ~(pass->ink == DrawList::cGlyphs && last - pass == 1 ? HasPictures | HasColors : 0U);
        // A text's glyphs overlap each other's boxes.
        const bool hasDepth = merging == Merging::All || !DrawList::areGlyphs(ink);
        pass = last;
        gl::Context::maskDepthBuffer(hasDepth);
        if (!drawRanges(tables, sight, needed, ranges))
            return false;
    }
    return true;
}

bool DrawingPainter::makeLayer(gl::Framebuffer& layer, td::Size<int> size)
{
    // The unit of the layer's texture loses what is bound to it.
    gl::Context::setActiveTextureUnit(DrawingPrograms::cLayerUnit);
    return layer.create(size, {.depth = gl::DepthBuffer::Size::Bits24}) ||
           fail("there is no framebuffer of the viewport's size");
}

// @return whether the layer is now what it was, moved by whole pixels, but for the regions, which are to be drawn
bool DrawingPainter::moveLayer(View& view, const Sight& sight, std::vector<Region>& regions)
{
    td::Point<double>& center = view.sight.center;
    if (!(sight.toPixels == view.sight.toPixels) || sight.pixelsPerPoint != view.sight.pixelsPerPoint)
        return false;
    const td::Size<int> size = view.pLayer->getSize();
    const td::Point<double> move = sight.toPixels.map({sight.center.x - center.x, sight.center.y - center.y});
    const td::Point<double> whole(std::round(move.x), std::round(move.y));
    if (!(std::abs(move.x - whole.x) <= cWhole && std::abs(move.y - whole.y) <= cWhole))
        return false;
    const double kept = (size.width - std::abs(whole.x)) * (size.height - std::abs(whole.y));
    if (std::abs(whole.x) >= size.width || std::abs(whole.y) >= size.height ||
        kept < (1 - cMostNew) * size.width * size.height)
        return false;
    const int x = static_cast<int>(whole.x), y = static_cast<int>(whole.y);
    if (x == 0 && y == 0)
        return true;
    if (!(_pSpare->getSize() == size) && !makeLayer(*_pSpare, size))
        return false;
    const gl::Framebuffer::Drawing drawing(*_pSpare);
    if (!drawing)
        return false;
    gl::Context::disable(gl::Context::Flag::ScissorTest);
    const Region from{std::max(x, 0), std::max(y, 0), size.width - std::abs(x), size.height - std::abs(y)};
    const Region to{std::max(-x, 0), std::max(-y, 0), from.width, from.height};
    glBindFramebuffer(GL_READ_FRAMEBUFFER, view.pLayer->getID());
    glBlitFramebuffer(from.x, from.y, from.x + from.width, from.y + from.height, to.x, to.y, to.x + to.width,
                      to.y + to.height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    std::swap(view.pLayer, _pSpare);
    // Exactly where the pixels are now: what is left of the move is not lost.
    const td::Point<double> moved = sight.toPixels.inverse().value_or(Affine()).map(whole);
    center = {center.x + moved.x, center.y + moved.y};
    if (x != 0)
        regions.push_back({x > 0 ? to.width : 0, to.y, std::abs(x), to.height});
    if (y != 0)
        regions.push_back({0, y > 0 ? to.height : 0, size.width, std::abs(y)});
    return true;
}

bool DrawingPainter::drawRegion(const ShapeTables& tables, DrawList& list, ImageStore& images, const Sight& sight,
                                const Region& region)
{
    using Flag = gl::Context::Flag;
    glScissor(region.x, region.y, region.width, region.height);
    gl::Context::enable(Flag::ScissorTest);
    gl::Context::maskDepthBuffer(true);
    glClearColor(0, 0, 0, 0);
    gl::Context::setClearDepth(1);
    gl::Context::clear({gl::Context::Clear::Color, gl::Context::Clear::Depth});
    // Each shape is nearer than those before, and so passes over them, but not over itself.
    gl::Context::enable(Flag::DepthTest);
    gl::Context::setDepthBufferFunction(gl::DepthBuffer::Function::Less);
    Sight part = sight;
    const td::Point<double> middle = sight.toPixels.inverse().value_or(Affine()).map(
        {region.x + (region.width - sight.size.width) / 2.0, region.y + (region.height - sight.size.height) / 2.0});
    part.center = {sight.center.x + middle.x, sight.center.y + middle.y};
    part.size = {region.width, region.height};
    const double stretch = stretchOf(sight.toPixels);
    list.select(part.getVisible(), stretch, sight.pixelsPerPoint, sight.getZoom());
    return drawShapes(tables, list, images, sight, stretch);
}

bool DrawingPainter::drawLayer(View& view, ShapeTables& tables, DrawList& list, GlyphStore& glyphs, ImageStore& images,
                               const std::vector<Region>& regions)
{
    if (!tables.upload() || !glyphs.getPictures().upload() || !glyphs.getColoredPictures().upload())
        return fail("GL has no room for its shapes");
    const gl::Framebuffer::Drawing drawing(*view.pLayer);
    if (!drawing)
        return fail("its layer cannot be drawn into");
    tables.bind();
    glyphs.getPictures().bind(DrawingPrograms::cPictureUnit);
    glyphs.getColoredPictures().bind(DrawingPrograms::cColoredUnit);
    std::array<GLint, 4> scissor{};
    glGetIntegerv(GL_SCISSOR_BOX, scissor.data());
    const bool isDrawn =
        std::all_of(regions.begin(), regions.end(),
                    [&](const Region& region) { return drawRegion(tables, list, images, view.sight, region); });
    glScissor(scissor[0], scissor[1], scissor[2], scissor[3]);
    return isDrawn;
}

bool DrawingPainter::draw(ShapeTables& tables, DrawList& list, GlyphStore& glyphs, ImageStore& images,
                          const Sight& sight, bool isChanged, bool isWaiting)
{
    _version += isChanged ? 1 : 0;
    if (!gl::CurrentContext::isThere("Drawing::draw"))
        return false;
    const gl::StateGuard guard;
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    if (viewport[2] <= 0 || viewport[3] <= 0)
        return true;
    const bool isScissored = glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE;
    const td::Size<int> size = sight.size;
    if (!prepare())
        return fail("its program does not link");
    View& view = findView(sight);
    if (!(view.pLayer->getSize() == size))
    {
        view.isValid = false;
        if (!makeLayer(*view.pLayer, size))
            return false;
    }
    using Flag = gl::Context::Flag;
    for (const Flag flag : {Flag::CullFace, Flag::StencilTest, Flag::PolygonOffset})
        gl::Context::disable(flag);
    gl::Context::maskColorBuffer(true, true, true, true);
    gl::Context::setPolygonMode(gl::Context::PolygonMode::Fill);
    glBlendEquation(GL_FUNC_ADD);
    gl::Context::enable(Flag::Blend);
    gl::Context::setBlendFunction(gl::Blend::Factor::One, gl::Blend::Factor::OneMinusSrcAlpha);
    if (!view.isValid || !view.isOf(sight, _version))
    {
        std::vector<Region> regions;
        if (!view.isValid || view.version != _version || !moveLayer(view, sight, regions))
        {
            regions = {{0, 0, size.width, size.height}};
            // A layer that had moved is where it was, to a fraction of a pixel.
            if (!view.isLost || !view.isOf(sight, _version))
                view.sight = sight;
        }
        view.isValid = false;
        if (!drawLayer(view, tables, list, glyphs, images, regions))
            return false;
        view.asked = sight;
        view.version = _version;
        view.isValid = true;
        view.isLost = false;
    }
    view.isWaiting = isWaiting;
    isScissored ? gl::Context::enable(Flag::ScissorTest) : gl::Context::disable(Flag::ScissorTest);
    gl::Context::disable(Flag::DepthTest);
    gl::Textures::bindToSamplerUnit(view.pLayer->getTextureID(), DrawingPrograms::cLayerUnit, gl::Texture::Type::Tex2D);
    LayerProgram& composite = _pShared->getLayer();
    composite.activate();
    composite.setUniformValue(static_cast<unsigned int>(composite.corner), glm::vec2(viewport[0], viewport[1]));
    composite.setUniformValue(static_cast<unsigned int>(composite.opacity), _opacity);
    const gl::Quads::Range one{0, 1};
    if (!_pShared->getQuads().draw(std::span(&one, 1)))
        return fail("there is no vertex array");
    _lastFailure = nullptr;
    return true;
}

} // namespace gui::draw
