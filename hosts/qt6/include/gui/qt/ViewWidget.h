#pragma once

#include <gui/gl/Context.h>
#include <td/Export.h>

#include <QOpenGLWidget>

#include <functional>
#include <memory>

namespace gui::gl
{
class View;
}

namespace gui::qt
{

class ViewHost;

/// A view as a widget of Qt's, in a layout, a dock or a tab like any other:
/// @code
/// QApplication app(argc, argv);
/// MapView map; // derives from gui::gl::OrthoView, say
/// gui::qt::ViewWidget widget([&map] { map.createContext(true); return &map; });
/// widget.resize(800, 600);
/// widget.show();
/// return app.exec();
/// @endcode
/// The view's context is the widget's, made when it is first shown; resizing, scales, input, the keyboard, cursors,
/// text and input methods, redraws, animation and reading frames are as in a window of the library's own. asyncCall
/// works, the clipboard is Qt's, and at rest nothing wakes the program. Points are Qt's device-independent pixels.
///
/// Input that the view does not use (keys and the wheel) goes on to the widget's parents. GL work outside of the view's
/// callbacks wants View::makeCurrentContext first: Qt makes contexts of its own current between them.
///
/// A widget keeps its context when it is moved to another window, since the library asks Qt to let all contexts share
/// (Qt::AA_ShareOpenGLContexts, set when it is loaded). Where Qt gives it another one, in a program that takes the
/// attribute back for instance, the view goes on in that: see gui::gl::View. The widget may go before the view, which
/// has no native side then, or after it; in the view's handlers too, but for onDraw.
class GUIGL_API ViewWidget : public QOpenGLWidget
{
public:
    /// Makes a view's context, as a program with a window of its own does: constructs it, or calls its createContext.
    /// It is called once, when the widget is first shown, with its GL context current. @return the view, not owned
    using Maker = std::function<gui::gl::View*()>;

    /// @param view     not owned; its createContext must not have been called, and is called with all kinds of input
    ///                 when the widget is first shown. Until then it must live.
    /// @param context  the widget's format: version, depth and stencil bits, samples. What the system lacks Qt replaces
    ///                 by what is next to it; fewer samples are told ("Warning! ViewWidget asked for 16 samples, got
    ///                 4").
    explicit ViewWidget(gui::gl::View& view, const gui::gl::Context& context = getDefaultContext(),
                        QWidget* pParent = nullptr);
    /// For views that make their context by themselves, or with a function of their own class such as
    /// OrthoView::createContext(bool). @param context  as above; the view's own should not ask for more
    explicit ViewWidget(Maker make, const gui::gl::Context& context = getDefaultContext(), QWidget* pParent = nullptr);
    ~ViewWidget() override;

    /// The view; null before the widget was first shown, and when it has gone.
    gui::gl::View* getView() const;

    /// OpenGL 4.1 core with 24 bits of depth, 8 of stencil and one sample.
    static gui::gl::Context getDefaultContext();

    /// 400 by 300.
    QSize sizeHint() const override;
    /// What an input method asks.
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

protected:
    /// Makes the view.
    void initializeGL() override;
    /// Draws its frame.
    void paintGL() override;
    /// Hands it the input.
    bool event(QEvent* pEvent) override;

private:
    std::unique_ptr<ViewHost> _pHost;
};

} // namespace gui::qt
