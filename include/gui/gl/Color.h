#pragma once

#include <td/ColorID.h>
#include <td/Export.h>

#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

namespace gui::gl
{

/// Colours of the toolkit's table as glm vectors, channels from 0 to 1.
class GUIGL_API Color
{
public:
    /// @param color  becomes red, green, blue
    static void get(td::ColorID id, glm::vec3& color);
    /// @param color  red, green, blue and the table's alpha
    static void get(td::ColorID id, glm::vec4& color);
};

} // namespace gui::gl
