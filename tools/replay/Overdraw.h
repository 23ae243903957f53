#pragma once

#include "Picture.h"
#include "Player.h"

namespace replay
{

/// Counts how often each pixel of the screen is drawn, wherever on the way there: in all framebuffers of its size. What
/// the depth test turns away counts only where the shader would discard fragments, or gives them another depth.
class Overdraw : public Player::Watcher
{
public:
    explicit Overdraw(const Player& player);
    ~Overdraw() override;

    std::string changed(GLenum type, const std::string& text) override;
    void onProgram(GLuint program) override;
    void beforeDraw(const Step& step) override;

    /// From black, over blue, green and yellow, to red for eight times and white for sixteen and more.
    Picture picture(double& mean, unsigned int& most) const;

private:
    void makeImages();

    const Player& _player;
    GLuint _counts = 0, _none = 0;
};

} // namespace replay
