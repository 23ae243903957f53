#include <gui/gl/Color.h>

#include <gui/Color.h>

namespace gui::gl
{

void Color::get(td::ColorID id, glm::vec3& color)
{
    float alpha = 0;
    gui::Color::getRGBA(id, color.r, color.g, color.b, alpha);
}

void Color::get(td::ColorID id, glm::vec4& color) { gui::Color::getRGBA(id, color.r, color.g, color.b, color.a); }

} // namespace gui::gl
