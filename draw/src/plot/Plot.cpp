#include <gui/draw/Plot.h>

#include "../drawing/PictureSize.h"
#include "PlotImpl.h"
#include "Version.h"

#include <gui/gl/Context.h>
#include <gui/gl/Framebuffer.h>
#include <gui/gl/StateGuard.h>

#include <td/Assert.h>
#include <td/GUIThread.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cLongestSide = 65'536; // no driver has a viewport as large
constexpr double cLargestSize = 1000;   // of a style's sizes

} // namespace

PlotStyle PlotStyle::dark()
{
    PlotStyle style;
    style.background = style.area = {22, 24, 30, 255};
    style.ink = {214, 218, 228, 255};
    style.labels = {158, 164, 178, 255};
    style.grid = {214, 218, 228, 32};
    style.panel = {34, 37, 46, 225};
    style.colors = {"#6ea2ff", "#ff9e57", "#5fd39a", "#ff6f7d", "#bf9bff",
                    "#f2c94c", "#4fd3e6", "#ff8fc4", "#c8a27a", "#a3afbd"};
    return style;
}

Plot::Impl::Impl(std::size_t nRows, std::size_t nColumns)
    : rows(nRows)
    , columns(nColumns)
    , rowShares(nRows, 1)
    , columnShares(nColumns, 1)
{
}

Plot::Plot(std::size_t rows, std::size_t columns)
    : _pImpl(std::make_unique<Impl>(std::max<std::size_t>(rows, 1), std::max<std::size_t>(columns, 1)))
{
    Impl* const pImpl = _pImpl.get();
    for (std::size_t i = 0; i < pImpl->rows * pImpl->columns; ++i)
        pImpl->axes.push_back(std::unique_ptr<Axes>(new Axes([pImpl] { pImpl->changed(); })));
    // Last, since it returns.
    TD_ASSERT(rows > 0 && columns > 0);
}

Plot::~Plot() = default;

Series& Plot::add(Series series) { return axes().add(std::move(series)); }

Axes& Plot::axes(std::size_t row, std::size_t column)
{
    TD_ASSERT(row < _pImpl->rows && column < _pImpl->columns, *_pImpl->axes.front());
    return *_pImpl->axes[row * _pImpl->columns + column];
}

std::size_t Plot::getRows() const { return _pImpl->rows; }
std::size_t Plot::getColumns() const { return _pImpl->columns; }

void Plot::linkX()
{
    for (std::size_t i = _pImpl->columns; i < _pImpl->axes.size(); ++i)
        _pImpl->axes[i]->x().link(_pImpl->axes[i % _pImpl->columns]->x());
    _pImpl->changed();
}

namespace
{

bool arePositive(std::span<const double> shares)
{
    return std::all_of(shares.begin(), shares.end(), [](double share) { return share > 0 && std::isfinite(share); });
}

} // namespace

void Plot::setRowShares(std::span<const double> shares)
{
    TD_ASSERT(shares.size() == _pImpl->rows && arePositive(shares));
    if (std::ranges::equal(shares, _pImpl->rowShares))
        return;
    _pImpl->rowShares.assign(shares.begin(), shares.end());
    _pImpl->ownVersion = nextVersion();
    _pImpl->changed();
}

void Plot::setColumnShares(std::span<const double> shares)
{
    TD_ASSERT(shares.size() == _pImpl->columns && arePositive(shares));
    if (std::ranges::equal(shares, _pImpl->columnShares))
        return;
    _pImpl->columnShares.assign(shares.begin(), shares.end());
    _pImpl->ownVersion = nextVersion();
    _pImpl->changed();
}

void Plot::setStyle(const PlotStyle& style)
{
    TD_ASSERT_GUI_THREAD();
    _pImpl->style = style;
    PlotStyle& own = _pImpl->style;
    const PlotStyle plain;
    for (double PlotStyle::*const pSize :
         {&PlotStyle::labelSize, &PlotStyle::axisTitleSize, &PlotStyle::titleSize, &PlotStyle::lineWidth})
        own.*pSize = std::isfinite(style.*pSize) ? std::clamp(style.*pSize, 0.0, cLargestSize) : plain.*pSize;
    _pImpl->texts.clear();
    _pImpl->overlayTexts.clear();
    _pImpl->ownVersion = nextVersion();
    _pImpl->changed();
}

const PlotStyle& Plot::getStyle() const { return _pImpl->style; }

void Plot::setCrosshair(bool hasCrosshair)
{
    if (std::exchange(_pImpl->hasCrosshair, hasCrosshair) == hasCrosshair)
        return;
    _pImpl->isOverlayChanged = true;
    _pImpl->changed();
}

void Plot::setOnChange(std::function<void()> onChange) { _pImpl->onChange = std::move(onChange); }

bool Plot::isChanged() const { return _pImpl->builtVersion != _pImpl->getVersion() || _pImpl->isOverlayChanged; }

std::size_t Plot::Impl::getVersion() const
{
    std::size_t version = ownVersion;
    for (const std::unique_ptr<Axes>& pAxes : axes)
        version = std::max(version, pAxes->_pImpl->getVersion());
    return version;
}

void Plot::Impl::changed() const
{
    // A copy: it may set another one.
    if (const std::function<void()> tell = isFitting ? nullptr : onChange)
        tell();
}

// All x first, since what is seen of y may go by it.
void Plot::Impl::fit()
{
    isFitting = true;
    for (const unsigned int which : {Axes::Impl::cX, Axes::Impl::cY, Axes::Impl::cRight})
    {
        for (const std::unique_ptr<Axes>& pAxes : axes)
            pAxes->_pImpl->collect(which);
        for (const std::unique_ptr<Axes>& pAxes : axes)
            pAxes->_pImpl->apply(which);
    }
    isFitting = false;
}

void Plot::Impl::build(const td::Size<double>& newSize, double newScale)
{
    if (builtVersion == getVersion() && size == newSize && scale == newScale)
        return;
    size = newSize;
    scale = newScale;
    fit();
    scene.clear();
    const PlotPaper paper{style, scene, texts, geometry, scale};
    const double allRows = std::accumulate(rowShares.begin(), rowShares.end(), 0.0);
    const double allColumns = std::accumulate(columnShares.begin(), columnShares.end(), 0.0);
    double top = 0;
    for (std::size_t row = 0; row < rows; ++row)
    {
        const double bottom = top + rowShares[row] / allRows * size.height;
        double left = 0;
        for (std::size_t column = 0; column < columns; ++column)
        {
            const double right = left + columnShares[column] / allColumns * size.width;
            axesOf(row * columns + column).draw({left, top, right, bottom}, paper);
            left = right;
        }
        top = bottom;
    }
    texts.finish();
    geometry.finish();
    builtVersion = getVersion();
    isOverlayChanged = true;
}

bool Plot::draw(const td::Size<double>& size, double pixelsPerPoint)
{
    TD_ASSERT_GUI_THREAD(false);
    Impl& impl = *_pImpl;
    if (!(size.width > 0 && size.height > 0 && pixelsPerPoint > 0))
        return true;
    if (!(std::max(size.width, size.height) * pixelsPerPoint <= cLongestSide))
    {
        if (!std::exchange(impl.isTooLarge, true))
            vo::dbgLog("Error! Plot::draw: %g x %g points of %g pixels are too many!", size.width, size.height,
                       pixelsPerPoint);
        return false;
    }
    impl.isTooLarge = false;
    const bool isChanged =
        impl.builtVersion != impl.getVersion() || !(impl.size == size) || impl.scale != pixelsPerPoint;
    impl.build(size, pixelsPerPoint);
    const bool isOverlayNew = impl.isOverlayChanged;
    if (isOverlayNew)
        impl.buildOverlay();
    if (gl::CurrentContext::getID() == 0)
        return impl.painter.draw(impl.scene, isChanged);
    const gl::StateGuard guard;
    using gl::Context;
    std::array<int, 4> scissor{}, viewport{};
    glGetIntegerv(GL_SCISSOR_BOX, scissor.data());
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    Context::disable(Context::Flag::DepthTest);
    Context::disable(Context::Flag::CullFace);
    Context::disable(Context::Flag::StencilTest);
    Context::setPolygonMode(Context::PolygonMode::Fill);
    Context::maskColorBuffer(true, true, true, true);
    Context::enable(Context::Flag::ScissorTest);
    Context::setScissor(viewport[0], viewport[1], viewport[2], viewport[3]);
    Context::clear(Context::Clear::Color, impl.style.background);
    bool isDrawn = impl.painter.draw(impl.scene, isChanged);
    Context::disable(Context::Flag::ScissorTest);
    isDrawn = impl.texts.getDrawing().draw(Affine(), pixelsPerPoint) && isDrawn;
    if (!impl.isOverlayEmpty)
    {
        isDrawn = impl.overlayPainter.draw(impl.overlay, isOverlayNew) && isDrawn;
        Context::disable(Context::Flag::ScissorTest);
        isDrawn = impl.overlayTexts.getDrawing().draw(Affine(), pixelsPerPoint) && isDrawn;
    }
    glScissor(scissor[0], scissor[1], scissor[2], scissor[3]);
    return isDrawn;
}

bool Plot::savePicture(const char* path, const td::Size<double>& size, double scale)
{
    TD_ASSERT(path != nullptr, false);
    gl::Framebuffer picture;
    if (!picture.create(toPixels(size, scale)))
        return false;
    const std::optional<Point> pointer = std::exchange(_pImpl->pointer, std::nullopt);
    const Impl::Drag drag = std::exchange(_pImpl->drag, Impl::Drag::None);
    _pImpl->isOverlayChanged = true;
    // What people point at is where the last frame has it.
    std::vector<Axes::Places> places;
    for (const std::unique_ptr<Axes>& pAxes : _pImpl->axes)
        places.push_back(*pAxes->_pImpl);
    bool isDrawn = false;
    {
        const gl::Framebuffer::Drawing drawing(picture);
        isDrawn = drawing && draw(size, scale);
    }
    for (std::size_t i = 0; i < places.size(); ++i)
        static_cast<Axes::Places&>(_pImpl->axesOf(i)) = places[i];
    _pImpl->builtVersion = 0;
    _pImpl->pointer = pointer;
    _pImpl->drag = drag;
    _pImpl->isOverlayChanged = true;
    return isDrawn && picture.savePicture(path);
}

} // namespace gui::draw
