#include "UniformPacking.h"

#include <gui/gl/Program.h>

#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <cstddef>
#include <cstring>

namespace gui::gl
{

td::BYTE* packUniform(td::BYTE* dst, const Command::_additinalUniform& uniform)
{
    dst[0] = uniform.type;
    dst[1] = uniform.location;
    std::memcpy(dst + cGroupHead, uniform.value, UniformSize[uniform.type]);
    return dst + cGroupHead + UniformSize[uniform.type];
}

bool sendUniforms(Program& program, const td::BYTE* p, const td::BYTE* pEnd)
{
    while (pEnd - p > static_cast<std::ptrdiff_t>(cGroupHead) && p[0] != 0)
    {
        const unsigned int type = p[0];
        const unsigned int location = p[1];
        const td::BYTE* const v = p + cGroupHead;
        switch (type)
        {
        case 1: // a number
        case 2: // a texture unit
            program.setUniformValue(location, static_cast<unsigned int>(v[0]));
            break;
        case 3:
            program.setUniformValue(location, static_cast<td::ColorID>(v[0]));
            break;
        case 4:
            program.setUniformValue(location, glm::vec3(v[0] / 255.0f, v[1] / 255.0f, v[2] / 255.0f));
            break;
        case 5:
            program.setUniformValue(location, glm::vec4(v[0] / 255.0f, v[1] / 255.0f, v[2] / 255.0f, v[3] / 255.0f));
            break;
        default:
            return false;
        }
        p = v + UniformSize[type];
    }
    return true;
}

} // namespace gui::gl
