#pragma once

#include "Eye.h"

#include <td/Export.h>
#include <td/Point.h>

#include <glm/vec3.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace gui::draw
{

/// Tells which thing is under the pointer, of anything that draws itself in the colour that its number is: models,
/// lines, points, instances, and what else goes into a depth buffer. It never waits for the GPU: the answer comes with
/// one of the next frames.
///
///     void onPointed(const std::optional<draw::Ray>&) override
///     {
///         if (getPointer())
///             _picker.ask(*getPointer());
///         reDraw();
///     }
///     void drawOver(const draw::Eye& eye) override
///     {
///         if (const auto answer = _picker.update(eye, [this](const draw::Eye& part) { _rocks.drawIds(part); }))
///             highlight(answer->id); // 0 for none
///         if (_picker.isWaiting())
///             reDraw();
///     }
///
/// A question draws a few pixels about the pointer into a framebuffer of its own, and has them copied to where they are
/// read when the GPU is done. One that is asked before the one before was drawn takes its place; ask with another
/// picker what both have to know. A question whose answer is lost with its context is drawn again in the next one.
///
/// Not copyable. GUI thread only. ask, forget and isWaiting need no context.
class GUIGL_API IdPicker
{
public:
    /// What was under a point when it was drawn.
    struct Answer
    {
        td::Point<double> point; ///< as it was asked for
        std::uint32_t id = 0;    ///< 0 when nothing was there
        /// Where on it, in the model, to what the depth buffer tells apart; empty when nothing was there.
        std::optional<glm::dvec3> place;
    };

    /// Draws ids of what there is, for an eye that sees a few pixels: with the framebuffer cleared to 0, the depth test
    /// on, and other flags of Context off. What is drawn in the colour 0 hides what is behind it.
    using DrawIds = std::function<void(const Eye&)>;

    /// @param reach  in points, 0 to 32: what is so far beside the pointer is found where nothing is under it
    explicit IdPicker(double reach = 3);
    ~IdPicker();
    IdPicker(const IdPicker&) = delete;
    IdPicker& operator=(const IdPicker&) = delete;

    /// @param point  of the view, in points from its top left corner. One that is not finite is no question
    void ask(const td::Point<double>& point);
    /// The question, asked or drawn, gets no answer.
    void forget();
    /// Whether there is a question without an answer: another frame is needed.
    bool isWaiting() const;

    /// Once a frame, with the view's context current, where drawing goes by the screen: after the scene, not within it
    /// (with Depth::Reversed, see DepthCanvas). Draws what was asked, and has a look whether what was drawn before is
    /// there. GL's state is afterwards what it was, but for the values of what is bound to a pixel pack buffer: none.
    /// @param eye  as the scene is drawn with
    /// @return the answer, once; empty while there is none. It is given up, with the question, after a log line when
    ///         there is no framebuffer or no buffer to be had: "Error! IdPicker::update: %s!"
    std::optional<Answer> update(const Eye& eye, const DrawIds& drawIds);

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
