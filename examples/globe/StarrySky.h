#pragma once

#include <gui/gl/SkyBox.h>

#include <glm/mat4x4.hpp>

namespace gui::gl
{
class Camera;
}

namespace globe
{

/// Stars and the Milky Way, painted when the program starts, all around and out of reach.
class StarrySky
{
public:
    /// @param projection, camera  of the frames to come; both must outlive the sky
    /// @return false, after a line in the log, when it can't be drawn
    [[nodiscard]] bool init(const glm::mat4& projection, const gui::gl::Camera& camera);

    /// Fills what is at the far plane. Needs the depth test, after everything that is nearer.
    void draw();

private:
    gui::gl::SkyBox _sky;
};

} // namespace globe
