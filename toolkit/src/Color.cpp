#include <gui/Color.h>

namespace gui
{

void Color::getRGBA(td::ColorID id, float& r, float& g, float& b, float& a)
{
    const td::Color color(id);
    r = float(color.red()) / 255.0f;
    g = float(color.green()) / 255.0f;
    b = float(color.blue()) / 255.0f;
    a = float(color.alpha()) / 255.0f;
}

td::Color Color::toTDColor(td::ColorID id) { return td::Color(id); }

} // namespace gui
