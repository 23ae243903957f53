#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace gui::gl
{

/// The first value of a uniform, that a shader's text gives it.
struct UniformValue
{
    std::string name;
    std::string type; ///< as GLSL names it
    /// The components, column by column; none where the value was not understood.
    std::vector<double> components;
};

/// A shader's text as OpenGL ES takes it.
struct ShaderText
{
    std::string text;
    /// OpenGL ES has no values in the text: they are set when the program is linked.
    std::vector<UniformValue> uniforms;
};

/// The uniform that stands for the size of points; programs that give gl_PointSize have none.
inline constexpr const char* cPointSizeUniform = "guiglPointSize";

/// Makes text of OpenGL's GLSL one of OpenGL ES: its version, precisions, the extensions that the driver has, the first
/// values of uniforms. Lines and columns stay where they are. Text that begins with a version of OpenGL ES, or with
/// none, stays as it is. Needs the context current.
/// @param givesPointSize  whether a vertex shader that says nothing of gl_PointSize gets a uniform for it
ShaderText toES(std::string_view source, bool givesPointSize);

/// Sets the first values of a linked program's uniforms; of those that were not understood, a log line tells.
void setUniforms(unsigned int program, const std::vector<UniformValue>& uniforms);

} // namespace gui::gl
