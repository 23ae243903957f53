// A window of Qt's: a plane to pan and zoom, and a slider for the colour of what is on it.
#include <QApplication>
#include <QSlider>
#include <QVBoxLayout>
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>
#include <gui/qt/ViewWidget.h>
using namespace gui::gl;
class CrownView : public OrthoView
{
    gui::draw::Drawing _drawing;
    gui::draw::Drawing::ID _crown{};
    void onInit() override
    {
        const auto crown = gui::draw::Path::fromSVG("M70 200H330L360 60L260 95L200 40L140 95L40 60Z");
        _crown = _drawing.fill(crown, td::ColorID::Gold);
        setBindings(Bindings::Plain);
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::MidnightBlue);
        _drawing.draw(*this);
    }

public:
    void setHue(int degrees)
    {
        _drawing.setColor(_crown, td::Color::fromHSL(float(degrees), 0.9f, 0.55f));
        reRender();
    }
};
int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    CrownView view;
    QWidget window;
    auto* const pPlane = new gui::qt::ViewWidget([&view] { view.createContext(true); return &view; });
    auto* const pSlider = new QSlider(Qt::Horizontal);
    pSlider->setRange(0, 360);
    QObject::connect(pSlider, &QSlider::valueChanged, [&view](int degrees) { view.setHue(degrees); });
    auto* const pColumn = new QVBoxLayout(&window);
    pColumn->addWidget(pPlane, 1);
    pColumn->addWidget(pSlider);
    window.resize(420, 330);
    window.show();
    return app.exec();
}
