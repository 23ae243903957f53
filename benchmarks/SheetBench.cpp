// A drawing of 50,000 shapes as CAD has them, beside painters that draw all of it anew for each frame: Qt's on the
// processor and on GL, cairo, and Anti-Grain Geometry. Times are those of all threads, with Mesa's software driver for
// what goes through GL.

#include "QtArguments.h"

#include <gui/draw/Drawing.h>
#include <gui/gl/Context.h>
#include <gui/gl/OffscreenContext.h>

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#ifdef BENCH_QT
#include <QGuiApplication>
#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLPaintDevice>
#include <QPainter>
#include <QPainterPath>
#endif
#ifdef BENCH_CAIRO
#include <cairo.h>
#endif
#ifdef BENCH_AGG
#include <agg_conv_curve.h>
#include <agg_conv_stroke.h>
#include <agg_conv_transform.h>
#include <agg_path_storage.h>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_scanline.h>
#include <agg_rendering_buffer.h>
#include <agg_scanline_u.h>
#endif

#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <random>
#include <vector>

namespace
{

using Point = td::Point<double>;

constexpr int cShapes = 50000, cWidth = 1200, cHeight = 800;
constexpr double cLineWidth = 1.2; // points, at any zoom
constexpr int cSteps = 40;         // of a zoom, after which it begins anew

/// Half of the shapes are lines of some points, three tenths closed outlines that are filled, the others circles.
struct Shape
{
    enum class Kind
    {
        Line,
        Area,
        Circle
    };
    Kind kind = Kind::Line;
    std::vector<Point> points; // of a circle the middle
    double radius = 0;
    unsigned int rgb = 0;
};

const std::vector<Shape>& sheet()
{
    static const std::vector<Shape> s_sheet = []
    {
        std::mt19937 random(7);
        const auto between = [&random](double low, double high)
        { return std::uniform_real_distribution<>(low, high)(random); };
        constexpr std::array cColors{0x203040U, 0x4080c0U, 0xc06040U, 0x60a060U, 0x808080U};
        std::vector<Shape> shapes(cShapes);
        for (std::size_t i = 0; i < shapes.size(); ++i)
        {
            Shape& shape = shapes[i];
            shape.kind = i % 10 < 5 ? Shape::Kind::Line : i % 10 < 8 ? Shape::Kind::Area : Shape::Kind::Circle;
            shape.rgb = cColors[i % cColors.size()];
            const Point at(between(0, cWidth), between(0, cHeight));
            shape.radius = between(1, 4);
            if (shape.kind == Shape::Kind::Circle)
                shape.points = {at};
            else if (shape.kind == Shape::Kind::Area)
                for (int k = 0; k < 8; ++k)
                {
                    const double angle = k * std::numbers::pi / 4, r = shape.radius * between(.6, 1);
                    shape.points.emplace_back(at.x + r * std::cos(angle), at.y + r * std::sin(angle));
                }
            else
                for (Point p = at; shape.points.size() < 8; p = {p.x + between(-4, 4), p.y + between(-4, 4)})
                    shape.points.push_back(p);
        }
        return shapes;
    }();
    return s_sheet;
}

// About the middle.
double zoomOf(int step) { return 1 + 0.01 * (step % cSteps); }

void makeDrawing(gui::draw::Drawing& drawing)
{
    using namespace gui::draw;
    for (const Shape& shape : sheet())
    {
        const td::Color color = td::Color::fromRGB(shape.rgb);
        const Point& at = shape.points.front();
        if (shape.kind == Shape::Kind::Circle)
            drawing.stroke(Path().addCircle(at, shape.radius), {.width = cLineWidth}, color);
        else if (shape.kind == Shape::Kind::Area)
            drawing.fill(Path().addPolygon(shape.points), color);
        else
            drawing.stroke(Path().addPolyline(shape.points), {.width = cLineWidth}, color);
    }
}

gui::gl::Context settings()
{
    using namespace gui::gl;
    return {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41};
}

void drawFrame(gui::draw::Drawing& drawing, double zoom)
{
    using gui::draw::Affine;
    gui::gl::Context::clear(gui::gl::Context::Clear::Color, "#ffffff");
    drawing.draw(Affine::translation(cWidth / 2., cHeight / 2.) * Affine::scaling(zoom) *
                 Affine::translation(-cWidth / 2., -cHeight / 2.));
    glFinish();
}

void SheetBuilt(benchmark::State& state)
{
    gui::gl::OffscreenContext context({cWidth, cHeight}, settings());
    sheet();
    for (auto _ : state)
    {
        gui::draw::Drawing drawing;
        makeDrawing(drawing);
        drawing.draw(gui::draw::Affine::translation(-1e6, 0)); // uploads, and shows none
        glFinish();
    }
}
BENCHMARK(SheetBuilt)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void SheetAtRest(benchmark::State& state)
{
    gui::gl::OffscreenContext context({cWidth, cHeight}, settings());
    gui::draw::Drawing drawing;
    makeDrawing(drawing);
    drawFrame(drawing, 1);
    for (auto _ : state)
        drawFrame(drawing, 1);
}
BENCHMARK(SheetAtRest)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void SheetZoomed(benchmark::State& state)
{
    gui::gl::OffscreenContext context({cWidth, cHeight}, settings());
    gui::draw::Drawing drawing;
    makeDrawing(drawing);
    drawFrame(drawing, 1);
    int step = 0;
    for (auto _ : state)
        drawFrame(drawing, zoomOf(++step));
}
BENCHMARK(SheetZoomed)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

#ifdef BENCH_QT
struct QtShape
{
    QPainterPath path;
    QPen pen;
    QBrush brush;
};

const std::vector<QtShape>& qtSheet()
{
    static const std::vector<QtShape> s_shapes = []
    {
        std::vector<QtShape> shapes(cShapes);
        for (std::size_t i = 0; i < shapes.size(); ++i)
        {
            const Shape& shape = sheet()[i];
            QPainterPath& path = shapes[i].path;
            const QPointF at(shape.points.front().x, shape.points.front().y);
            if (shape.kind == Shape::Kind::Circle)
                path.addEllipse(at, shape.radius, shape.radius);
            else
            {
                path.moveTo(at);
                for (std::size_t k = 1; k < shape.points.size(); ++k)
                    path.lineTo(shape.points[k].x, shape.points[k].y);
            }
            const auto color = QColor::fromRgb(shape.rgb);
            if (shape.kind == Shape::Kind::Area)
            {
                path.closeSubpath();
                shapes[i].brush = color;
            }
            else
            {
                shapes[i].pen = QPen(color, cLineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
                shapes[i].pen.setCosmetic(true);
            }
        }
        return shapes;
    }();
    return s_shapes;
}

void paintByQt(QPaintDevice& device, double zoom)
{
    QPainter painter(&device);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(0, 0, cWidth, cHeight, Qt::white);
    painter.translate(cWidth / 2., cHeight / 2.);
    painter.scale(zoom, zoom);
    painter.translate(-cWidth / 2., -cHeight / 2.);
    for (const QtShape& shape : qtSheet())
        if (shape.brush.style() != Qt::NoBrush)
            painter.fillPath(shape.path, shape.brush);
        else
            painter.strokePath(shape.path, shape.pen);
}

void SheetByQt(benchmark::State& state)
{
    QImage image(cWidth, cHeight, QImage::Format_ARGB32_Premultiplied);
    paintByQt(image, 1);
    int step = 0;
    for (auto _ : state)
        paintByQt(image, zoomOf(++step));
}
BENCHMARK(SheetByQt)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

// Where Qt has GL, which its platform without a display has not.
void SheetByQtOnGL(benchmark::State& state)
{
    bench::QtArguments arguments;
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
    {
        state.SkipWithError("there is no display");
        return;
    }
    const QGuiApplication application(arguments.count, arguments.values.data());
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    if (!context.create() || !context.makeCurrent(&surface))
    {
        state.SkipWithError("there is no GL");
        return;
    }
    {
        QOpenGLFramebufferObject buffer(cWidth, cHeight, QOpenGLFramebufferObject::CombinedDepthStencil);
        buffer.bind();
        QOpenGLPaintDevice device(cWidth, cHeight);
        paintByQt(device, 1);
        int step = 0;
        for (auto _ : state)
        {
            paintByQt(device, zoomOf(++step));
            glFinish();
        }
    }
    context.doneCurrent();
}
BENCHMARK(SheetByQtOnGL)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
#endif

#ifdef BENCH_CAIRO
void SheetByCairo(benchmark::State& state)
{
    cairo_surface_t* const pSurface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, cWidth, cHeight);
    cairo_t* const pCairo = cairo_create(pSurface);
    std::vector<std::unique_ptr<cairo_path_t, void (*)(cairo_path_t*)>> paths;
    for (const Shape& shape : sheet())
    {
        cairo_new_path(pCairo);
        if (shape.kind == Shape::Kind::Circle)
            cairo_arc(pCairo, shape.points[0].x, shape.points[0].y, shape.radius, 0, 2 * std::numbers::pi);
        else
            for (const Point& p : shape.points)
                cairo_line_to(pCairo, p.x, p.y);
        if (shape.kind != Shape::Kind::Line)
            cairo_close_path(pCairo);
        paths.emplace_back(cairo_copy_path(pCairo), cairo_path_destroy);
    }
    cairo_set_line_width(pCairo, cLineWidth);
    int step = 0;
    for (auto _ : state)
    {
        const double zoom = zoomOf(++step);
        cairo_identity_matrix(pCairo);
        cairo_set_source_rgb(pCairo, 1, 1, 1);
        cairo_paint(pCairo);
        for (std::size_t i = 0; i < paths.size(); ++i)
        {
            const unsigned int rgb = sheet()[i].rgb;
            cairo_new_path(pCairo);
            cairo_translate(pCairo, cWidth / 2., cHeight / 2.);
            cairo_scale(pCairo, zoom, zoom);
            cairo_translate(pCairo, -cWidth / 2., -cHeight / 2.);
            cairo_append_path(pCairo, paths[i].get());
            cairo_identity_matrix(pCairo);
            cairo_set_source_rgb(pCairo, (rgb >> 16) / 255., (rgb >> 8 & 255U) / 255., (rgb & 255U) / 255.);
            sheet()[i].kind == Shape::Kind::Area ? cairo_fill(pCairo) : cairo_stroke(pCairo);
        }
        cairo_surface_flush(pSurface);
    }
    cairo_destroy(pCairo);
    cairo_surface_destroy(pSurface);
}
BENCHMARK(SheetByCairo)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
#endif

#ifdef BENCH_AGG
void SheetByAGG(benchmark::State& state)
{
    std::vector<unsigned char> pixels(std::size_t(4) * cWidth * cHeight);
    agg::rendering_buffer buffer(pixels.data(), cWidth, cHeight, 4 * cWidth);
    using Format = agg::pixfmt_bgra32_pre;
    Format format(buffer);
    agg::renderer_base<Format> base(format);
    agg::renderer_scanline_aa_solid<agg::renderer_base<Format>> renderer(base);
    agg::rasterizer_scanline_aa<> rasterizer;
    agg::scanline_u8 line;
    std::vector<agg::path_storage> paths(cShapes);
    for (std::size_t i = 0; i < paths.size(); ++i)
    {
        const Shape& shape = sheet()[i];
        const Point at = shape.points[0];
        const double r = shape.radius, k = r * 0.5522847498;
        if (shape.kind == Shape::Kind::Circle)
        {
            paths[i].move_to(at.x + r, at.y);
            paths[i].curve4(at.x + r, at.y + k, at.x + k, at.y + r, at.x, at.y + r);
            paths[i].curve4(at.x - k, at.y + r, at.x - r, at.y + k, at.x - r, at.y);
            paths[i].curve4(at.x - r, at.y - k, at.x - k, at.y - r, at.x, at.y - r);
            paths[i].curve4(at.x + k, at.y - r, at.x + r, at.y - k, at.x + r, at.y);
        }
        else
            for (std::size_t p = 0; p < shape.points.size(); ++p)
                p == 0 ? paths[i].move_to(at.x, at.y) : paths[i].line_to(shape.points[p].x, shape.points[p].y);
        if (shape.kind != Shape::Kind::Line)
            paths[i].close_polygon();
    }
    int step = 0;
    for (auto _ : state)
    {
        agg::trans_affine view = agg::trans_affine_translation(-cWidth / 2., -cHeight / 2.);
        view *= agg::trans_affine_scaling(zoomOf(++step));
        view *= agg::trans_affine_translation(cWidth / 2., cHeight / 2.);
        base.clear(agg::rgba8(255, 255, 255));
        for (std::size_t i = 0; i < paths.size(); ++i)
        {
            agg::conv_transform<agg::path_storage> moved(paths[i], view);
            agg::conv_curve<agg::conv_transform<agg::path_storage>> curve(moved);
            rasterizer.reset();
            if (sheet()[i].kind == Shape::Kind::Area)
                rasterizer.add_path(curve);
            else
            {
                agg::conv_stroke stroke(curve);
                stroke.width(cLineWidth);
                rasterizer.add_path(stroke);
            }
            const unsigned int rgb = sheet()[i].rgb;
            renderer.color(agg::rgba8(rgb >> 16, rgb >> 8 & 255U, rgb & 255U));
            agg::render_scanlines(rasterizer, line, renderer);
        }
    }
}
BENCHMARK(SheetByAGG)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
#endif

} // namespace
