#pragma once

namespace gui::gl
{

/// What the contexts of OpenGL and of OpenGL ES differ in.
struct Features
{
    bool isES = false;
    int version = 0; ///< ten times the major number, and the minor one
    bool hasTextureBuffers = false;
    bool hasClipDistances = false;
    bool hasBaseVertex = false;
    bool hasMultiDraw = false; ///< with base vertices
    bool hasTimeStamps = false;

    /// Those of the context that is current, asked of the driver once. Without one that CurrentContext knows, those of
    /// OpenGL 3.3.
    static const Features& get();
};

} // namespace gui::gl
