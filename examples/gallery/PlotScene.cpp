#include "PlotScene.h"

#include <gui/Key.h>

#include <cmath>
#include <numbers>

namespace gallery
{

void PlotScene::enter(Stage& stage)
{
    _pStage = &stage;
    _plot.setOnChange([&stage] { stage.redraw(); });
}

void PlotScene::onPointer(PointerEvent event, const gui::InputDevice& device)
{
    switch (event)
    {
    case PointerEvent::Pressed:
        _plot.onPressed(device);
        break;
    case PointerEvent::Dragged:
        _plot.onDragged(device);
        break;
    case PointerEvent::Released:
        _plot.onReleased(device);
        break;
    case PointerEvent::DoubleClicked:
        _plot.onDoubleClick(device);
        break;
    case PointerEvent::Moved:
        _plot.onMoved(device);
        break;
    case PointerEvent::Exited:
        _plot.onExited();
        break;
    case PointerEvent::Scrolled:
        _plot.onScroll(device);
        break;
    case PointerEvent::Zoomed:
        _plot.onZoom(device);
        break;
    default:
        break;
    }
}

// The arrows go from scene to scene.
bool PlotScene::onKey(const gui::Key& key, bool isDown) { return isDown && key.isASCII() && _plot.onKey(key); }

std::vector<float> makeWaves(std::size_t n, int nWaves)
{
    std::vector<float> samples(n);
    for (std::size_t i = 0; i < n; ++i)
    {
        double sum = 0.55;
        double height = 0.3;
        double length = 0.43 * static_cast<double>(n);
        for (int wave = 0; wave < nWaves; ++wave)
        {
            const double turns = static_cast<double>(i) / length + wave * wave * std::numbers::phi;
            sum += height * std::sin(2 * std::numbers::pi * turns);
            height *= 0.44;
            length *= 0.483;
        }
        samples[i] = static_cast<float>(sum);
    }
    return samples;
}

} // namespace gallery
