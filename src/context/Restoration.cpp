#include "Restoration.h"

#include <epoxy/gl.h>

#include <algorithm>

namespace gui::gl
{

namespace
{

Restoration* s_pRestoration = nullptr;

// Of the last one.
std::map<std::pair<CurrentContext::Kind, unsigned int>, unsigned int>& lastNames()
{
    static auto* const pNames = new std::map<std::pair<CurrentContext::Kind, unsigned int>, unsigned int>;
    return *pNames;
}

// So many names more are tried for the old one's sake: drivers count from 1 up.
constexpr unsigned int cMostSpares = 4096;

unsigned int generate(CurrentContext::Kind kind)
{
    GLuint name = 0;
    switch (kind)
    {
    case CurrentContext::Kind::Buffer:
        glGenBuffers(1, &name);
        break;
    case CurrentContext::Kind::Framebuffer:
        glGenFramebuffers(1, &name);
        break;
    case CurrentContext::Kind::Program:
        name = glCreateProgram();
        break;
    case CurrentContext::Kind::Renderbuffer:
        glGenRenderbuffers(1, &name);
        break;
    case CurrentContext::Kind::Texture:
        glGenTextures(1, &name);
        break;
    case CurrentContext::Kind::VertexArray:
        glGenVertexArrays(1, &name);
        break;
    default:
        break; // the library has no others
    }
    return name;
}

} // namespace

Restoration::Restoration()
    : _pBefore(std::exchange(s_pRestoration, this))
{
}

Restoration::~Restoration()
{
    s_pRestoration = _pBefore;
    lastNames() = std::move(_names);
    for (const auto& [kind, name] : _spares)
        CurrentContext::deleteName(CurrentContext::getID(), kind, name);
}

unsigned int Restoration::makeName(CurrentContext::Kind kind, unsigned int old)
{
    if (s_pRestoration == nullptr || old == 0)
        return generate(kind);
    std::vector<Name>& spares = s_pRestoration->_spares;
    unsigned int& name = s_pRestoration->_names[{kind, old}];
    const auto spare = std::find(spares.begin(), spares.end(), Name(kind, old));
    if (spare != spares.end())
    {
        spares.erase(spare);
        return name = old;
    }
    name = generate(kind);
    while (name != 0 && name < old && spares.size() < cMostSpares)
    {
        spares.emplace_back(kind, name);
        name = generate(kind);
    }
    return name;
}

unsigned int Restoration::getNew(CurrentContext::Kind kind, unsigned int old)
{
    const auto& names = s_pRestoration != nullptr ? s_pRestoration->_names : lastNames();
    const auto found = names.find({kind, old});
    return found != names.end() ? found->second : 0;
}

} // namespace gui::gl
