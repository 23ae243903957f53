// Texts in a face that was baked when the program was built: bakedface.png, or the file that the argument names.
// Neither FreeType nor fontconfig are asked for anything.
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>

using namespace gui::draw;

int main(int argc, char** argv)
{
    using namespace gui::gl;
    OffscreenContext context({480, 300},
                             {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    Context::clear(Context::Clear::Color, td::ColorID::White);
    Drawing drawing;
    const Typeface sans = Typeface::fromFile(":sans.face");
    double y = 6;
    for (const double size : {7.0, 9.0, 12.0, 16.0, 22.0, 32.0})
        drawing.text({20, y += size * 1.5}, "Hamburgefonstiv \u2212 3\u00D7", {.face = sans, .size = size});
    drawing.text({20, y + 60}, "halo", {.face = sans, .size = 40, .embolden = 0.03, .halo = {3, "#80c0ff"}});
    return drawing.draw(Affine()) && context.savePicture(argc > 1 ? argv[1] : "bakedface.png") ? 0 : 1;
}
