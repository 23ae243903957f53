#pragma once

#include "Drawing.h"

#include <td/Export.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string_view>

namespace gui::gl
{
class View;
}

namespace gui::draw
{

/// Fills drawings without stopping the window: shapes are prepared on another thread and handed over in pieces, some
/// milliseconds of them before each frame.
///
///     #include <gui/Application.h>
///     #include <gui/draw/DrawingView.h>
///     #include <gui/draw/Upload.h>
///
///     using namespace gui::draw;
///
///     int main(int argc, char** argv)
///     {
///         gui::Application app(argc, argv);
///         DrawingView view;
///         Upload upload(view);
///         upload.add(view.drawing(),
///                    [](Upload::Shapes& shapes)
///                    {
///                        for (int i = 0; i < 100000 && !shapes.isCancelled(); ++i)
///                            shapes.fill(Path().addCircle({i % 400 * 10.0, i / 400 * 10.0}, 4), "#d04020");
///                    });
///         upload.setOnProgress([&](double) { view.showAll(); });
///         return app.run(view, "Discs", {640, 400});
///     }
///
/// The function reads, parses, builds paths and lays out texts; curves, triangles and dashes are made there too. What
/// it gives is drawn from the next frame on, in the order in which it was given, each shape whole or not at all.
/// Functions run one after the other, in the order of the calls, on a thread of this object's own; two objects have
/// two.
///
/// What they may use: Path, FillTessellator, Stroke, Paint, TextLayout, Typeface and Samples, objects that no other
/// thread uses meanwhile; neither Drawing and Series nor anything that needs a context. What they refer to has to live
/// as long as they run: the destructor and, if it must not begin any more, cancel see to that.
///
/// All else is for the GUI thread, and an application that runs. A context that is lost meanwhile, a view, a drawing or
/// a group that goes, make no difference to it: what has no place any more is dropped. Not copyable.
class GUIGL_API Upload
{
public:
    /// What a function gives its shapes to, on its thread. Operations are as Drawing's. They wait for nothing, and give
    /// false when the upload was cancelled: nothing more is taken then.
    class GUIGL_API Shapes
    {
    public:
        /// @param tag  see Drawing::setTag; 0 for the group's
        bool fill(const Path& path, const Paint& paint, FillRule rule = FillRule::NonZero, std::uint64_t tag = 0);
        bool stroke(const Path& path, const Stroke& stroke, const Paint& paint, std::uint64_t tag = 0);
        bool text(Drawing::Point at, TextLayout layout, const TextPlacement& placement = {}, std::uint64_t tag = 0);
        bool text(Drawing::Point at, std::string_view text, const TextStyle& style = {},
                  const TextPlacement& placement = {}, std::uint64_t tag = 0);

        /// How many shapes there will be, about, for the progress; more may come.
        void expect(std::size_t nShapes);
        /// Whether to return at once.
        bool isCancelled() const;

    private:
        friend class Upload;
        struct Job;
        struct Maker;

        Shapes(const std::shared_ptr<Job>& pJob, Maker& maker)
            : _pJob(pJob)
            , _maker(maker)
        {
        }

        const std::shared_ptr<Job>& _pJob;
        Maker& _maker;
    };

    /// @param view  that shows what is handed over: it gets frames. It may go before this object
    explicit Upload(const gl::View& view);
    /// Cancels, and waits until the function that runs returns.
    ~Upload();
    Upload(const Upload&) = delete;
    Upload& operator=(const Upload&) = delete;

    /// Begins to fill a drawing.
    /// @param prepare  called once, on this object's thread; what it throws goes to the handler of errors, and its
    ///                 shapes up to there stay. Null is an assertion ("prepare != nullptr"), and 0
    /// @return a group in the drawing, within the one that was begun, that all of its shapes go into: to hide, to move,
    ///         to show at some zooms, to remove, at once too. They are over all shapes that are there when they come
    Drawing::ID add(Drawing& drawing, std::function<void(Shapes&)> prepare);

    /// Prepares anything else, such as Samples.
    /// @param prepare  called once, on this object's thread; what it returns, if not empty, is called on the GUI thread
    ///                 in its turn. Null is an assertion ("prepare != nullptr")
    void run(std::function<std::function<void()>()> prepare);

    /// Drops what was not handed over yet and what has not begun. What runs is told (Shapes::isCancelled), and not
    /// waited for; what it gives is dropped. Shapes that were handed over stay: remove the group where they are not
    /// wanted. Other calls may follow.
    void cancel();

    /// Whether there is something to prepare or to hand over.
    bool isBusy() const;
    /// From 0 to 1: of all shapes since nothing was to be done, as far as they are known, those that were handed over.
    double getProgress() const;
    /// Called after each piece, with 1 at the end: show it, or end this object's life. @param handler  empty for none
    void setOnProgress(std::function<void(double progress)> handler);
    /// Called with what a function threw; without a handler the log says "Error! Upload: a function threw: %s".
    void setOnError(std::function<void(std::exception_ptr error)> handler);

    /// How long handing over may take before each frame: 4 milliseconds at first. One shape is the least, of however
    /// many corners. @param milliseconds  below 0, or NaN, as 0: a shape a frame
    void setBudget(double milliseconds);

private:
    struct Impl;
    std::shared_ptr<Impl> _pImpl;
};

} // namespace gui::draw
