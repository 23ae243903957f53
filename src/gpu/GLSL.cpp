#include <gui/gl/GLSL.h>

#include <td/Assert.h>

#include <array>
#include <cstddef>

namespace gui::gl
{

const char* GLSL::toString(Type type)
{
    static constexpr std::array<const char*, 6> cNames{"VertexShader",           "FragmentShader",
                                                       "TessellationCtrlShader", "TessellationEvalShader",
                                                       "GeometryShader",         "Program"};
    static_assert(cNames.size() == std::size_t(Type::Program) + 1);
    const auto index = static_cast<std::size_t>(type);
    if (index >= cNames.size())
        TD_ASSERT(false, "");
    return cNames[index];
}

} // namespace gui::gl
