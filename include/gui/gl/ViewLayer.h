#pragma once

#include <gui/InputDevice.h>
#include <td/Export.h>
#include <td/Types.h>

#include <memory>
#include <string_view>

namespace gui
{
class Key;
struct TextComposition;
} // namespace gui

namespace gui::gl
{

class View;

/// Something over a view, which the view need not know of: it is drawn after the view's onDraw, and gets the view's
/// input before the view's handlers, whatever these override. A text field, a tool, a panel.
///
///     class Cross : public gui::gl::ViewLayer // in a class of yours: Cross _cross{*this};
///     {
///         using ViewLayer::ViewLayer;
///         void onDraw(gui::gl::View& view) override { ... } // lines through _place
///         bool onPointer(Pointer event, const gui::InputDevice& device) override
///         {
///             _place = device.getPlace();
///             return false; // the view gets it as well
///         }
///         td::Point<double> _place;
///     };
///
/// Of several over a view, later ones lie above earlier ones and are asked before them. It gets the kinds of events
/// that the view asked for when its context was made, without keys that an inspector takes. Any handler may end the
/// layer's life, and the view's. Not copyable. GUI thread only.
class GUIGL_API ViewLayer
{
public:
    /// What the pointer did, by the names of the view's handlers.
    enum class Pointer : td::BYTE
    {
        Entered,
        Moved,
        Dragged,
        Exited,
        PrimaryPressed,
        PrimaryDblClick, ///< in the place of the second press
        PrimaryReleased,
        SecondaryPressed,
        SecondaryReleased,
        OtherPressed,
        OtherReleased,
        OtherDragged,
        Scrolled,
        Zoomed
    };

    /// Over this view from now on, which may go before it.
    explicit ViewLayer(View& view);
    virtual ~ViewLayer();
    ViewLayer(const ViewLayer&) = delete;
    ViewLayer& operator=(const ViewLayer&) = delete;

    /// Null when it has gone.
    View* getView() const;

protected:
    friend class ViewLayers;

    /// Draws over a frame that the view has drawn. The view's context is current, and its framebuffer and all of its
    /// viewport are bound, without scissor test, depth test, culling and masks. GL's state is put back behind it, as
    /// gl::StateGuard does that.
    virtual void onDraw(View& view);

    /// These are asked before the view's handlers. @return whether the event is used up: nobody else gets it then.
    /// false, the default, passes it on
    virtual bool onPointer(Pointer event, const InputDevice& device);
    /// Of keys that go down. Those that go up are the view's, which may have seen them go down.
    virtual bool onKeyPressed(const Key& key);
    /// Of what View::startTextInput has asked for, as the next one.
    virtual bool onTextInput(std::string_view text);
    virtual bool onTextComposition(const TextComposition& composition);
    /// The view has lost the keyboard; told also where the view did not ask for it. Before a composition under way is
    /// given up.
    virtual void onFocusOut();

private:
    std::weak_ptr<View*> _view;
};

} // namespace gui::gl
