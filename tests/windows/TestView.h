#pragma once

#include <gui/gl/View.h>
#include <td/ColorID.h>

#include <functional>
#include <vector>

namespace test
{

/// A view that fills itself with a colour, and writes down what it was called for.
class TestView : public gui::gl::View
{
public:
    /// @param color  what it is filled with  @param isAnimated  whether its context asks for animation
    explicit TestView(td::ColorID color, bool isAnimated = false);

    int nDraws = 0;
    int nCleanUps = 0;
    int nFramesLeft = 1000000; // of an animation
    std::vector<td::Size<double>> sizes;
    std::function<void()> inDraw;
    std::function<void()> inCleanUp;

protected:
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onResize(const td::Size<double>& size) override { sizes.push_back(size); }
    void cleanResources() override;
    bool prepareNextFrame() override { return --nFramesLeft > 0; }

private:
    td::ColorID _color;
};

} // namespace test
