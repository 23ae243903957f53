// A plane with a crown and its name. Shift and a drag pan it, Ctrl and the wheel zoom it.
#include <gui/Application.h>
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>
using namespace gui::gl;
class CrownView : public OrthoView
{
    gui::draw::Drawing _drawing;
    void onInit() override
    {
        const auto crown = gui::draw::Path::fromSVG("M70 200H330L360 60L260 95L200 40L140 95L40 60Z");
        _drawing.fill(crown, td::ColorID::Gold);
        _drawing.text({200, 145}, "Crown", {.size = 32}, {.anchor = gui::draw::Anchor::Center});
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::MidnightBlue);
        _drawing.draw(*this);
    }
};
int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    CrownView view;
    view.createContext(true);
    return app.run(view, "Crown", {400, 250});
}
