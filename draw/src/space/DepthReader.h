#pragma once

#include <gui/gl/ContextResource.h>
#include <gui/gl/Quads.h>

#include <memory>

namespace gui::draw
{

/// Reads the depth buffer of the framebuffer that is bound. OpenGL ES reads none: there it becomes a texture, and the
/// bits of its numbers a picture.
class DepthReader
{
public:
    DepthReader() = default;
    ~DepthReader() { release(); }
    DepthReader(const DepthReader&) = delete;
    DepthReader& operator=(const DepthReader&) = delete;

    /// @param width, height  of what is read from the bottom left corner, which is all that there is
    /// @param pDepths        floats, as glReadPixels has them: an offset where a pixel pack buffer is bound
    /// @return false when GL has no room
    bool read(int width, int height, void* pDepths);

private:
    class BitsProgram;

    bool prepare(int width, int height, unsigned int depthFormat);
    void onContext(gl::ContextResource::Event event);
    void release();

    int _width = 0, _height = 0;
    unsigned int _format = 0;
    unsigned int _depth = 0, _depthBuffer = 0; // a texture, and a framebuffer of it
    unsigned int _bits = 0, _bitsBuffer = 0;
    std::shared_ptr<BitsProgram> _pProgram;
    gl::Quads _quads;
    gl::ContextResource _home{[](void* pThis, gl::ContextResource::Event event)
                              { static_cast<DepthReader*>(pThis)->onContext(event); },
                              this};
};

} // namespace gui::draw
