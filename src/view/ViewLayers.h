#pragma once

#include <gui/gl/ViewLayer.h>

#include <functional>
#include <string_view>

namespace gui::gl
{

/// The layers of all views, for those who bring views their input and frames.
class ViewLayers
{
public:
    /// Whether there is one over this view.
    static bool areOver(const View& view);

    static void draw(View& view);
    /// @return whether one of them used it up, or the view's life has ended meanwhile
    static bool onPointer(View& view, ViewLayer::Pointer event, const InputDevice& device);
    static bool onKeyPressed(View& view, const Key& key);
    static bool onTextInput(View& view, std::string_view text);
    static bool onTextComposition(View& view, const TextComposition& composition);
    static void onFocusOut(View& view);

private:
    static bool offer(View& view, const std::function<bool(ViewLayer&)>& use);
};

} // namespace gui::gl
