#pragma once

#include "Eye.h"

#include <gui/gl/ContextResource.h>
#include <gui/gl/Quads.h>

#include <td/Export.h>
#include <td/Point.h>

#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace gui::gl
{
class View;
}

namespace gui::draw
{

/// Whether points of a model are behind what the scene has drawn: for names and signs that go where their points go.
/// Labels3 and Dimensions3 take one. An OrbitView has it (OrbitView::depthProbe); in views of other kinds:
///
///     draw::DepthProbe _probe{this};
///
///     void onDraw(const td::RectNormalized<double>&) override
///     {
///         ...
///         _probe.begin(eye);
///         while (const draw::Eye* pEye = frame.next())
///         {
///             _model.draw(*pEye);
///             _probe.ask(*pEye);
///         }
///         ...
///     }
///
/// Each point asks GL, right after the scene, whether any sample of a square of three pixels passes the depth test
/// there (an occlusion query). That is chosen over reading depths back because it goes wherever the scene goes: depth
/// of any format, with any number of samples, usual, reversed or in slices, in framebuffers that nobody can read or
/// copy the depth of. It has been part of every OpenGL that the library runs on. What is nearer to a point than three
/// points of the screen does not hide it, so a point on a surface is not hidden by that surface. What is out of view,
/// or cut away (Eye::getClipping), is not asked for.
///
/// Nothing waits for the GPU while the camera moves: answers are those of the frame before, and come in between frames.
/// Where they are others than before, the view is asked for one more frame; then it is at rest. The first frame, and
/// one after a jump of the camera, does wait, so that a picture of a single frame is right.
///
/// A point without an answer counts as hidden while one is under way, and as seen where nobody asks. Not copyable. GUI
/// thread only; begin, ask and settle need the view's context.
class GUIGL_API DepthProbe
{
public:
    using ID = std::uint64_t; ///< names a point, and is not given twice; 0 is none

    /// @param pView  what to ask for frames; not owned. Without one, answers wait for the frames that there are.
    explicit DepthProbe(const gl::View* pView = nullptr);
    ~DepthProbe();
    DepthProbe(const DepthProbe&) = delete;
    DepthProbe& operator=(const DepthProbe&) = delete;

    /// See the constructor.
    void setView(const gl::View* pView) { _pView = pView; }
    /// Whether every frame waits for its own answers, at the price of some milliseconds: for films. Not at first.
    void setWaiting(bool isWaiting) { _isWaiting = isWaiting; }

    /// Takes a point, in model units. @param tolerance  what is nearer to it than this, in model units, does not hide
    /// it, beside what is within three points of the screen
    ID add(const glm::dvec3& at, double tolerance = 0);
    /// @return false for an id that names nothing, as all below
    bool move(ID id, const glm::dvec3& at);
    /// Whether it is to be asked for; each one is at first. One that is not keeps its answer.
    bool setAsked(ID id, bool isAsked);
    bool remove(ID id); ///< see move

    /// Begins a frame. @param eye  the whole view's, not that of a slice
    void begin(const Eye& eye);
    /// After the scene was drawn, in the framebuffer that has its depth. GL's state is as before.
    /// @param eye  what it was drawn with: begin's, or one of its slices, from the farthest to the nearest. One that
    ///             looks from elsewhere, such as the sun's, is left out
    void ask(const Eye& eye);
    /// Takes the answers that are there. Call it once the scene is drawn, before isHidden; more often does nothing.
    void settle();

    /// Whether something is before a point, as far as is known. False for an id that names nothing.
    bool isHidden(ID id) const;
    /// Another number whenever an answer has changed.
    std::uint64_t getVersion() const { return _version; }
    /// Whether all that was asked is answered.
    bool isSettled() const { return _batches.empty(); }

private:
    class ProbeProgram;

    struct Point
    {
        glm::dvec3 at;
        double tolerance;
        bool isAsked = true;
        bool isAnswered = false;
        bool isHidden = false;
        unsigned int underWay = 0;
        td::Point<double> place; // on the screen, when it was answered
    };

    struct Question
    {
        ID id;
        glm::dvec2 ndc;
        td::Point<double> place;
        double distance;
        double reach; // what is that much nearer does not hide it
    };

    struct Query
    {
        std::uint32_t question;
        unsigned int name;
    };

    /// What one frame has asked.
    struct Batch
    {
        std::vector<Question> questions;
        std::vector<Query> queries;
    };

    bool prepare();
    void draw(std::span<const glm::vec4> squares, std::span<const std::uint32_t> questions);
    void collect(std::size_t nWaits);
    void poll();
    void schedule();
    void forget();
    void onContext(gl::ContextResource::Event event);

    const gl::View* _pView;
    std::unordered_map<ID, Point> _points;
    ID _lastID = 0;
    std::vector<Batch> _batches; // the oldest first
    std::vector<unsigned int> _free;
    std::unique_ptr<ProbeProgram> _pProgram;
    gl::Quads _quads;
    Eye _eye; // that was asked for last
    std::chrono::steady_clock::time_point _asked;
    std::uint64_t _version = 0;
    bool _isOpen = false; // between begin and settle
    bool _isJump = false; // most answers are of no use any more
    bool _isWaiting = false;
    bool _isRefused = false;         // by the driver, which said so
    std::shared_ptr<bool> _pPolling; // what functions that are under way know it is there by
    gl::ContextResource _home{
        [](void* pThis, gl::ContextResource::Event event) { static_cast<DepthProbe*>(pThis)->onContext(event); }, this};
};

} // namespace gui::draw
