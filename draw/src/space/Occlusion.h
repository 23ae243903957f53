#pragma once

#include "BoundTarget.h"

#include <gui/draw/Eye.h>
#include <gui/draw/Shadows.h>

#include <gui/gl/ContextResource.h>
#include <gui/gl/Quads.h>

#include <memory>

namespace gui::draw
{

/// Darkens what is drawn where little light gets in from anywhere, by what the depth buffer has (McGuire, Mara and
/// Luebke, Scalable Ambient Obscurance, 2012).
class Occlusion
{
public:
    Occlusion() = default;
    ~Occlusion() { release(); }
    Occlusion(const Occlusion&) = delete;
    Occlusion& operator=(const Occlusion&) = delete;

    /// Darkens what is bound. @param reach  in model units, above 0
    void draw(const Eye& eye, const Shadows& shadows, double reach);

private:
    class Program;

    bool prepare(const BoundTarget& target);
    bool makeDepth(const BoundTarget& wanted);
    bool makeLight(const BoundTarget& wanted);
    void release();

    BoundTarget _made; // what it is for; of a place only the size counts
    bool _isRefused = false;
    unsigned int _depth = 0, _light = 0;             // textures
    unsigned int _depthBuffer = 0, _lightBuffer = 0; // and their framebuffers
    std::shared_ptr<Program> _pLook, _pBlur;
    gl::Quads _quads;
    gl::ContextResource _home{
        [](void* pThis, gl::ContextResource::Event) { static_cast<Occlusion*>(pThis)->release(); }, this};
};

} // namespace gui::draw
