#pragma once

#include "Scene.h"
#include "Stage.h"

#include <gui/draw/Plot.h>

#include <vector>

namespace gallery
{

/// A scene that is a plot, which gets all input.
class PlotScene : public Scene
{
public:
    explicit PlotScene(std::size_t rows = 1, std::size_t columns = 1)
        : _plot(rows, columns)
    {
    }

    bool init() override { return true; }
    void enter(Stage& stage) override;
    void draw(const Frame& frame) override { _plot.draw(frame.size, frame.scale); }
    void onPointer(PointerEvent event, const gui::InputDevice& device) override;
    bool onKey(const gui::Key& key, bool isDown) override;

protected:
    gui::draw::Plot _plot;
    Stage* _pStage = nullptr;
};

/// Waves of many lengths, each half as long as the one before and a little less than half as high, above 0.
std::vector<float> makeWaves(std::size_t n, int nWaves = 16);

} // namespace gallery
