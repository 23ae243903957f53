#pragma once

#include "ViewWorld.h"

#include <gui/TextComposition.h>

#include <glm/vec3.hpp>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace fuzz::views
{

using Point = td::Point<double>;

// Each takes an input for a view of its kind.
void playWithPlane(Input& input);
void playWithDrawing(Input& input);
void playWithModel(Input& input);
void playWithGlobe(Input& input);

inline bool isFinite(const td::Point<double>& point) { return std::isfinite(point.x) && std::isfinite(point.y); }
inline bool isFinite(const glm::dvec3& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

template <typename Matrix>
bool isFiniteMatrix(const Matrix& matrix)
{
    const auto* const pFirst = &matrix[0][0];
    return std::all_of(pFirst, pFirst + 16, [](auto value) { return std::isfinite(value); });
}

/// A view whose handlers do something, too.
template <typename Base>
class Heard : public Base
{
public:
    template <typename... Arguments>
    explicit Heard(ViewWorld& world, const Arguments&... arguments)
        : Base(arguments...)
        , _world(world)
    {
    }

protected:
    void hear() { _world.hear(); }
    bool decide() { return _world.decide(); }

    void onDraw(const td::RectNormalized<double>& rect) override
    {
        Base::onDraw(rect);
        hear();
    }
    void onFocusIn() override { hear(); }
    void onFocusOut() override { hear(); }
    bool onKeyPressed(const gui::Key& key) override
    {
        hear();
        return Base::onKeyPressed(key);
    }
    bool onKeyReleased(const gui::Key& key) override
    {
        _world.noteRelease();
        hear();
        return Base::onKeyReleased(key);
    }
    void onTextInput(std::string_view) override { hear(); }
    void onTextComposition(const gui::TextComposition& composition) override
    {
        _world.noteComposition(!composition.text.empty());
        hear();
    }
    void onPrimaryButtonPressed(const gui::InputDevice& device) override
    {
        Base::onPrimaryButtonPressed(device);
        hear();
    }
    void onPrimaryButtonReleased(const gui::InputDevice& device) override
    {
        hear();
        Base::onPrimaryButtonReleased(device);
    }
    void onOriginChanged() override { hear(); }
    void onZoomChanged() override { hear(); }

private:
    ViewWorld& _world;
};

} // namespace fuzz::views
