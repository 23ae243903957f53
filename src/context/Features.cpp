#include "Features.h"

#include <gui/gl/CurrentContext.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <initializer_list>

namespace gui::gl
{

namespace
{

constexpr int cFirstDesktop = 33; // with all of them
constexpr int cES32 = 32;

bool hasOneOf(std::initializer_list<const char*> extensions)
{
    return std::any_of(extensions.begin(), extensions.end(),
                       [](const char* name) { return epoxy_has_gl_extension(name); });
}

Features ask()
{
    Features features{.isES = !epoxy_is_desktop_gl(), .version = epoxy_gl_version()};
    if (!features.isES)
    {
        features.hasTextureBuffers = features.hasClipDistances = true;
        features.hasBaseVertex = features.hasMultiDraw = true;
        features.hasTimeStamps = features.version >= cFirstDesktop;
        return features;
    }
    const bool is32 = features.version >= cES32;
    features.hasTextureBuffers = is32 || hasOneOf({"GL_EXT_texture_buffer", "GL_OES_texture_buffer"});
    features.hasBaseVertex = is32 || hasOneOf({"GL_EXT_draw_elements_base_vertex", "GL_OES_draw_elements_base_vertex"});
    features.hasMultiDraw = hasOneOf({"GL_EXT_draw_elements_base_vertex"}) && hasOneOf({"GL_EXT_multi_draw_arrays"});
    features.hasClipDistances = hasOneOf({"GL_EXT_clip_cull_distance"});
    features.hasTimeStamps = hasOneOf({"GL_EXT_disjoint_timer_query"});
    return features;
}

} // namespace

const Features& Features::get()
{
    static const Features s_desktop{false, cFirstDesktop, true, true, true, true, true};
    static CurrentContext::ID s_asked = 0;
    static Features s_features;
    const CurrentContext::ID id = CurrentContext::getID();
    if (id == 0)
        return s_desktop;
    if (id != s_asked)
        s_features = ask();
    s_asked = id;
    return s_features;
}

} // namespace gui::gl
