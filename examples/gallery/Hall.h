#pragma once

#include <gui/gl/Buffer.h>
#include <gui/gl/Lit3DProgram.h>
#include <gui/gl/SkyBox.h>
#include <gui/gl/Texture3DProgram.h>
#include <gui/gl/Textures.h>
#include <td/ColorID.h>

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <cstddef>

namespace gui::gl
{
class Camera;
}

namespace gallery
{

/// A hall of columns under an evening sky: balls on plinths, a picture at its end, and a polished floor (y = 0) that
/// mirrors them. It belongs to one context, like its programs and buffers.
class Hall
{
public:
    // What one can walk in.
    static constexpr glm::vec3 cLowest{-5.4F, 0.35F, -12.4F};
    static constexpr glm::vec3 cHighest{5.4F, 4.2F, 7};

    /// @param perspective, camera  of the frames to come; both must outlive the hall
    /// @return false, after a line in the log, when it can't be drawn
    [[nodiscard]] bool init(const glm::mat4& perspective, const gui::gl::Camera& camera);

    /// Fills the picture. The depth test is off before and after.
    void draw();

private:
    void addBox(const glm::vec3& middle, const glm::vec3& size, td::ColorID color);
    void addPicture(const glm::vec3& corner, const glm::vec3& right, const glm::vec3& up, const glm::vec2& repeats,
                    char texture);
    void drawSolids(const glm::mat4& world, const glm::mat4& toClip);

    const glm::mat4* _pPerspective = nullptr;
    const gui::gl::Camera* _pCamera = nullptr;
    gui::gl::Lit3DProgram _program;
    gui::gl::Texture3DProgram _pictureProgram;
    gui::gl::SkyBox _sky;
    gui::gl::Buffer _solids{gui::gl::DataType::Vec3, gui::gl::DataType::Vec3};
    gui::gl::Buffer _pictures{gui::gl::DataType::Vec3, gui::gl::DataType::Vec2}; // the floor, then what hangs
    std::size_t _nBoxes = 0;                                                     // commands before those of the balls
    gui::gl::Textures _textures;
};

} // namespace gallery
