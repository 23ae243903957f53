#include <gui/gl/Color.h>

namespace gui::gl
{

void Color::get(td::ColorID id, glm::vec3& color) { get(td::Color(id), color); }

void Color::get(td::ColorID id, glm::vec4& color) { get(td::Color(id), color); }

void Color::get(td::Color from, glm::vec3& color)
{
    color = {from.red() / 255.0f, from.green() / 255.0f, from.blue() / 255.0f};
}

void Color::get(td::Color from, glm::vec4& color)
{
    color = {from.red() / 255.0f, from.green() / 255.0f, from.blue() / 255.0f, from.alpha() / 255.0f};
}

} // namespace gui::gl
