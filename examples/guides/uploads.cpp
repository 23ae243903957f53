// A map that is opened while a hand goes round: shapes are prepared on another thread.

#include <gui/Application.h>
#include <gui/draw/DrawingView.h>
#include <gui/draw/Upload.h>

#include <cmath>
#include <cstdio>
#include <numbers>

using namespace gui::draw;

namespace
{

// A field of so many corners, as if it were read from a file.
Path readField(int column, int row)
{
    Path field;
    for (int i = 0; i < 500; ++i)
    {
        const double angle = i * std::numbers::pi / 250, radius = 4 + std::cos(angle * 7 + column) * std::sin(row);
        field.lineTo({column * 10 + radius * std::cos(angle), row * 10 + radius * std::sin(angle)});
    }
    return field.close();
}

class MapView : public DrawingView
{
public:
    MapView()
    {
        setBackground("#f4efe4");
        drawing().fill(Path().addRect({-10, -50, 400, 250}), "#fffdf6");
        _bar = drawing().fill(Path(), "#3a6ea5");
        _hand = drawing().fill(Path::fromSVG("M-1 0L0 -12L1 0Z"), "#c0392b");
        startAnimation();
    }

    void open()
    {
        _upload.setOnProgress([this](double progress) { show(progress); });
        _fields = _upload.add(drawing(),
                              [](Upload::Shapes& shapes)
                              {
                                  shapes.expect(1000);
                                  for (int row = 0; row < 25; ++row)
                                      for (int column = 0; column < 40 && !shapes.isCancelled(); ++column)
                                          shapes.fill(readField(column, row), "#8fae6b");
                              });
    }
    void close()
    {
        _upload.cancel();
        drawing().remove(_fields);
    }
    bool isOpen() const { return !_upload.isBusy(); }

private:
    void show(double progress)
    {
        drawing().setPath(_bar, Path().addRect({0, -12, 390 * progress, -9}));
        drawing().setVisible(_bar, progress < 1);
    }
    bool prepareNextFrame() override
    {
        drawing().setTransform(_hand, Affine::translation(195, -30) * Affine::rotation(_angle += 0.05));
        return true;
    }

    Drawing::ID _bar = 0, _hand = 0, _fields = 0;
    double _angle = 0;
    Upload _upload{*this};
};

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    MapView view;
    view.open();
    if (argc < 2)
        return app.run(view, "Fields", {800, 560});
    while (!view.isOpen() && app.step(0.1))
    {
    }
    return view.isOpen() && view.saveAll(argv[1], 600, 20, 1) ? 0 : 1;
}
