#pragma once

#include <gui/gl/port/FrameObserver.h>

#include <td/Export.h>

#include <memory>

namespace gui::draw
{

/// Shows over any view what its frames cost: times of the last frames as a graph, draws, state and uploads, the
/// memory of what is in the context; and, by keys, its textures, its triangles as wires, and how often each pixel is
/// drawn.
///
/// In a program of yours it is one line of main, and F12 shows it:
///
///     gui::draw::Inspector inspector;
///
/// In any other, whatever it is linked with, GUIGL_INSPECT=1 in the environment has it shown from the first frame on;
/// in place of the 1, `wires`, `overdraw` and `textures`, with commas between them, begin with these.
///
/// | key | what it does |
/// |---|---|
/// | F12 | shows the panel, or hides it and ends all below |
/// | F10 | how often each pixel is drawn: 1 blue, 2 green, 3 yellow, 4 orange, 5 red, 6 pink, 7 and more white |
/// | F9 | holds animations, or lets them go on |
/// | F8 | draws one frame of an animation that is held |
/// | F7 | triangles as wires |
/// | F6 | the context's textures, pages of glyphs and pictures among them |
///
/// All but F12 are the view's as long as the panel is hidden. Then it costs nothing; while it is shown, frames are
/// counted (gl::FrameLedger), without what the panel itself takes, and pictures that are read or saved have it in them.
/// Views at rest stay so: the panel tells of the last frame.
///
/// How often a pixel is drawn is counted in the stencil buffer, which the view's context must have, and as far as the
/// program leaves it alone; what programs draw into textures is not seen. Memory is told by drivers of OpenGL 4.5 or
/// with ARB_direct_state_access: what buffers, textures and renderbuffers of the context were asked for, not what the
/// driver made of it.
///
/// One looks on at a time: a second one does nothing. It has GL objects in each context whose views it was shown in.
/// GUI thread only.
class GUIGL_API Inspector : public gl::FrameObserver
{
public:
    Inspector();
    ~Inspector() override;

    /// Whether the panel is shown; hidden at first. Views show it with their next frame.
    void setShown(bool isShown);
    bool isShown() const; ///< see setShown
    /// What the keys do, while the panel is shown.
    void setWireframe(bool isOn);
    void setOverdraw(bool isOn);     ///< see setWireframe
    void setTexturesShown(bool are); ///< see setWireframe

    void frameBegins(const Frame& frame) override;
    void frameEnds(const Frame& frame) override;
    bool keyPressed(gl::View& view, const Key& key) override;
    bool isHeld(const gl::View& view) override;

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
