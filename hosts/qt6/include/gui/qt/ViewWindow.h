#pragma once

#include <gui/gl/Context.h>
#include <td/Export.h>

#include <QOpenGLWindow>

#include <functional>
#include <memory>

namespace gui::gl
{
class View;
}

namespace gui::qt
{

class ViewHost;

/// A view as a window of Qt's, without widgets: for full screens, and programs with nothing but the view. It draws
/// right into the window, which saves the copy that a widget costs; in a QWidget::createWindowContainer it is slow to
/// resize on Wayland, so in layouts take a ViewWidget. All that is said there holds here.
class GUIGL_API ViewWindow : public QOpenGLWindow
{
public:
    /// See ViewWidget::Maker.
    using Maker = std::function<gui::gl::View*()>;

    /// As ViewWidget's. Without a context it is ViewWidget::getDefaultContext.
    explicit ViewWindow(gui::gl::View& view);
    ViewWindow(gui::gl::View& view, const gui::gl::Context& context);
    explicit ViewWindow(Maker make);
    ViewWindow(Maker make, const gui::gl::Context& context);
    ~ViewWindow() override;

    /// The view; null before the window was first shown, and when it has gone.
    gui::gl::View* getView() const;

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
