#pragma once

#include <td/Export.h>
#include <td/Types.h>

namespace gui::gl
{

/// The stages of a shader program, as messages name them.
struct GUIGL_API GLSL
{
    /// A stage, or the whole program.
    enum class Type : td::BYTE
    {
        VertexShader,
        FragmentShader,
        TessellationCtrlShader,
        TessellationEvalShader,
        GeometryShader,
        Program
    };

    /// The enumerator's name. Another value is a programming error and gives an empty text.
    static const char* toString(Type type);
};

} // namespace gui::gl
