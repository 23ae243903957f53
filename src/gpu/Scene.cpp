#include <gui/gl/Scene.h>

namespace gui::gl
{

void Scene::execute() {}

void Scene::reset() {}

void Scene::release() {}

} // namespace gui::gl
