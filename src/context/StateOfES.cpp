#include "StateOfES.h"

#include "Features.h"
#include "GLNumber.h"

#include <gui/gl/CurrentContext.h>

#include <epoxy/gl.h>

#include <map>

namespace gui::gl
{

namespace
{

struct StateOfES
{
    float pointSize = 1;
    unsigned int trianglesAs = 0;
};

std::map<CurrentContext::ID, StateOfES>& states()
{
    static std::map<CurrentContext::ID, StateOfES> s_states;
    return s_states;
}

StateOfES readState()
{
    const auto found = states().find(CurrentContext::getID());
    return found != states().end() ? found->second : StateOfES();
}

StateOfES& writeState()
{
    static const bool s_isListening = (CurrentContext::onChange([] { s_trianglesAs = readState().trianglesAs; }), true);
    static_cast<void>(s_isListening);
    std::erase_if(states(), [](const auto& entry) { return !CurrentContext::isAlive(entry.first); });
    return states()[CurrentContext::getID()];
}

} // namespace

void setPointSize(float size)
{
    if (!Features::get().isES)
    {
        glPointSize(size);
        return;
    }
    writeState().pointSize = size;
    if (s_onPointSizeOfES != nullptr)
        s_onPointSizeOfES(size);
}

float getPointSize()
{
    if (Features::get().isES)
        return readState().pointSize;
    float size = 1;
    glGetFloatv(GL_POINT_SIZE, &size);
    return size;
}

void setPolygonMode(unsigned int mode)
{
    if (!Features::get().isES)
        glPolygonMode(GL_FRONT_AND_BACK, mode);
    else if (const unsigned int as = mode == GL_FILL ? 0 : mode; as != s_trianglesAs)
        s_trianglesAs = writeState().trianglesAs = as;
}

unsigned int getPolygonMode()
{
    if (!Features::get().isES)
        return static_cast<unsigned int>(glNumber(GL_POLYGON_MODE));
    return s_trianglesAs == 0 ? GL_FILL : s_trianglesAs;
}

} // namespace gui::gl
