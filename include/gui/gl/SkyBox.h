#pragma once

#include "CurrentContext.h"
#include "Program.h"
#include "Textures.h"

#include <td/Export.h>

#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

#include <functional>

namespace gui::gl
{

class Camera;

/// A cube map as the background of a 3D scene: it turns with the camera and never comes nearer.
///
/// init and commit once; render in each frame. The box is drawn at the far plane, so draw it after the scene with the
/// depth function LessOrEqual (Less, GL's own default, hides it), or before the scene without the depth test. Not
/// copyable. init, commit and render need the view's context current. GUI thread only.
class GUIGL_API SkyBox
{
public:
    /// Vertices are positions and directions into the cube map at once. Its shaders are built in.
    class GUIGL_API Prog : public Program
    {
    public:
        /// The unit that the cube map is bound to. Sets a uniform of the program in use.
        void setSampler(Textures::Unit unit);

    protected:
        /// Built-in shaders that lack a uniform, or do not link, are a programming error.
        void onLinked() override;
        void onError() override;

    private:
        int _samplerPos = -1;
    };

    SkyBox() = default;
    /// Releases everything. Needs no context.
    ~SkyBox();
    SkyBox(const SkyBox&) = delete;
    SkyBox& operator=(const SkyBox&) = delete;

    /// @param pProjection  from the eye to clip space, CameraView's _perspective for instance. Not owned, read at each
    ///                     render; null for none: no matrix is sent then
    /// @param cubeMapID    a cube map's GL name, as Textures::getID gives it; not owned
    /// @param unit         the texture unit to bind it to
    /// @return false, after an assertion ("false"), when the built-in shaders do not link
    bool init(const glm::mat4* pProjection, unsigned int cubeMapID, Textures::Unit unit);

    /// A sky that is computed, in one call: its cube map is made, init, setCamera and commit are called. The map lives
    /// in this object until its end or the next call; the texture unit is T0.
    /// @param pProjection, pCamera  as for init and setCamera
    /// @param faceSize, color       as for Textures::appendCubeMap
    /// @return false, after a log line or an assertion, when one of them fails
    bool init(const glm::mat4* pProjection, const Camera* pCamera, int faceSize,
              const std::function<glm::vec3(const glm::vec3& direction)>& color);

    /// Not owned, read at each render; null for none. The sky follows what the camera's const getViewMatrix gives, so
    /// ask for the camera's matrix first (drawing the scene does).
    void setCamera(const Camera* pCamera);

    /// Computes the matrix to send: projection * the camera's view matrix without its translation. Without a camera it
    /// is the projection alone, without a projection the whole view matrix, without both the identity. render calls it.
    void updateTransformation();
    const glm::mat4& getTransformation() const { return _transformation; }

    /// Makes the box. Nothing when it is there already, in a context that lives.
    /// @param size  half of its edge, between the projection's near and far plane as a rule; finite and not 0 (an
    ///              assertion)
    /// "ERROR! SkyBox::commit cannot create VAO!" (or VBO) in the log when GL has no object to give; render draws
    /// nothing then, until release() or a commit that succeeds.
    void commit(float size);

    /// Draws the sky. init and commit first (assertions). No program and no vertex array is in use afterwards.
    /// @param disableDepthTest  true turns the depth test off and leaves it off
    void render(bool disableDepthTest);

    /// Deletes the box, which commit can make again; the program stays. Needs no context.
    void release();

private:
    void upload();
    void deleteNames() const;
    void onContext(ContextResource::Event event);

    Prog _prog;
    glm::mat4 _transformation{0};
    const glm::mat4* _pProjection = nullptr;
    const Camera* _pCamera = nullptr;
    Textures::Unit _unit = Textures::Unit::T0;
    unsigned int _cubeMapID = 0;
    unsigned int _vao = 0;
    unsigned int _vbo = 0;
    float _size = 0; // as it was committed
    bool _committed = false;
    bool _isRefused = false; // commit had no objects from GL
    ContextResource _home{
        [](void* pThis, ContextResource::Event event) { static_cast<SkyBox*>(pThis)->onContext(event); }, this};
    Textures _textures; // a cube map of its own, or none
};

} // namespace gui::gl
