// Letters at many sizes and angles, a paragraph in several styles and directions, its selection and caret, labels with
// halos: type.png, or the file that the argument names.
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>

using namespace gui::draw;

namespace
{

void addSizes(Drawing& drawing)
{
    double y = 6;
    for (const double size : {7.0, 9.0, 12.0, 16.0, 22.0, 32.0, 56.0})
        drawing.text({20, y += size * 1.2}, "Hamburgefonstiv", {.size = size, .paint = "#203040"});
}

void addParagraph(Drawing& drawing)
{
    const TextStyle plain{.face = Typeface::named("DejaVu Serif"), .size = 15};
    TextStyle strong = plain;
    strong.face = Typeface::named("DejaVu Serif", {.weight = 700});
    strong.paint = LinearGradient{{0, 0}, {250, 0}, {{0, "#a03018"}, {1, "#2050a0"}}};
    TextStyle marked = plain;
    marked.isUnderlined = true;
    const TextLayout layout(
        {{"A paragraph of ", plain},
         {"several styles", strong},
         {" is wrapped where Unicode says, שלום או مرحبا are read from the other side, and ", plain},
         {"this", marked},
         {" is selected.", plain}},
        {.width = 250, .align = Align::Justify, .lineHeight = 1.4});

    const td::Point<double> corner(360, 20);
    const std::size_t word = layout.getText().find("selected");
    for (const TextLayout::Rect& rect : layout.getSelection({word, word + 8}))
        drawing.fill(
            Path().addRect({corner.x + rect.left, corner.y + rect.top, corner.x + rect.right, corner.y + rect.bottom}),
            "#b8d4f0");
    drawing.text(corner, layout, {.anchor = Anchor::TopLeft});
    const TextLayout::Caret caret = layout.getCaret({word + 8});
    drawing.stroke(Path()
                       .moveTo({corner.x + caret.top.x, corner.y + caret.top.y})
                       .lineTo({corner.x + caret.top.x, corner.y + caret.bottom}),
                   {.width = 1.5}, "#2050a0");
}

void addMap(Drawing& drawing)
{
    drawing.fill(Path::fromSVG("M340 215H630V385H340Z"), "#dcd6b4");
    const Path river = Path::fromSVG("M352 330C430 300 470 372 612 275");
    drawing.stroke(river, {.width = 16, .cap = Cap::Butt}, "#8fb8d8");
    drawing.textOn(river, "Long River", {.size = 13, .paint = "#ffffff", .letterSpacing = 2},
                   {.along = 0.75, .anchor = Anchor::Center});
    const auto addTown = [&drawing](td::Point<double> place, const char* name)
    {
        drawing.fill(Path().addCircle(place, 3.5), "#303030");
        drawing.text(place, name, {.size = 14, .halo = {2, "#dcd6b4"}}, {.anchor = Anchor::Left, .offset = {7, 0}});
    };
    addTown({410, 260}, "Hill Town");
    addTown({530, 240}, "Mill");
    addTown({380, 350}, "Old Bridge");
}

} // namespace

int main(int argc, char** argv)
{
    using namespace gui::gl;
    OffscreenContext context({640, 400},
                             {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    Context::clear(Context::Clear::Color, td::ColorID::White);
    Drawing drawing;
    addSizes(drawing);
    addParagraph(drawing);
    addMap(drawing);
    return drawing.draw(Affine()) && context.savePicture(argc > 1 ? argv[1] : "type.png") ? 0 : 1;
}
