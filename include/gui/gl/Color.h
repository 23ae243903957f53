#pragma once

#include <td/Color.h>
#include <td/ColorID.h>
#include <td/Export.h>

#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

namespace gui::gl
{

/// Colours as glm vectors, channels from 0 to 1: each the colour's byte divided by 255.
class GUIGL_API Color
{
public:
    /// @param color  becomes red, green, blue
    static void get(td::ColorID id, glm::vec3& color);
    /// @param color  red, green, blue and the table's alpha
    static void get(td::ColorID id, glm::vec4& color);
    static void get(td::Color from, glm::vec3& color);
    /// @param color  red, green, blue, alpha
    static void get(td::Color from, glm::vec4& color);
};

} // namespace gui::gl
