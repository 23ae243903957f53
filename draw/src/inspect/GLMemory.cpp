#include "GLMemory.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace gui::draw
{

namespace
{

using Object = GLMemory::Object;

constexpr GLuint cLongestGap = 300; // between two names in use

// Bits of a texel, or the bytes of a level that is compressed.
std::uint64_t bytesOfLevel(GLuint texture, GLint level)
{
    const auto get = [&](GLenum what)
    {
        GLint value = 0;
        glGetTextureLevelParameteriv(texture, level, what, &value);
        return static_cast<std::uint64_t>(std::max(value, 0));
    };
    if (get(GL_TEXTURE_COMPRESSED) != 0)
        return get(GL_TEXTURE_COMPRESSED_IMAGE_SIZE);
    std::uint64_t nBits = 0;
    for (const GLenum channel : {GL_TEXTURE_RED_SIZE, GL_TEXTURE_GREEN_SIZE, GL_TEXTURE_BLUE_SIZE,
                                 GL_TEXTURE_ALPHA_SIZE, GL_TEXTURE_DEPTH_SIZE, GL_TEXTURE_STENCIL_SIZE})
        nBits += get(channel);
    const std::uint64_t nTexels = get(GL_TEXTURE_WIDTH) * get(GL_TEXTURE_HEIGHT) * get(GL_TEXTURE_DEPTH);
    return nTexels * std::max<std::uint64_t>(get(GL_TEXTURE_SAMPLES), 1) * nBits / 8;
}

Object askTexture(GLuint name)
{
    Object object{.kind = GLMemory::Kind::Texture, .name = name};
    GLint target = 0;
    glGetTextureParameteriv(name, GL_TEXTURE_TARGET, &target);
    object.target = static_cast<GLenum>(target);
    if (object.target == GL_TEXTURE_BUFFER || object.target == 0)
        return object; // a buffer's memory
    glGetTextureLevelParameteriv(name, 0, GL_TEXTURE_WIDTH, &object.width);
    glGetTextureLevelParameteriv(name, 0, GL_TEXTURE_HEIGHT, &object.height);
    const bool isOfOneLevel = object.target == GL_TEXTURE_2D_MULTISAMPLE || object.target == GL_TEXTURE_RECTANGLE ||
                              object.target == GL_TEXTURE_2D_MULTISAMPLE_ARRAY;
    const int size = std::max(object.width, object.height);
    for (GLint level = 0; level == 0 || (!isOfOneLevel && size >> level > 0); ++level)
        object.nBytes += bytesOfLevel(name, level);
    if (object.target == GL_TEXTURE_CUBE_MAP)
        object.nBytes *= 6;
    return object;
}

Object askBuffer(GLuint name)
{
    GLint64 size = 0;
    glGetNamedBufferParameteri64v(name, GL_BUFFER_SIZE, &size);
    return {.kind = GLMemory::Kind::Buffer, .name = name, .nBytes = static_cast<std::uint64_t>(size)};
}

Object askRenderbuffer(GLuint name)
{
    const auto get = [name](GLenum what)
    {
        GLint value = 0;
        glGetNamedRenderbufferParameteriv(name, what, &value);
        return value;
    };
    GLint nBits = 0;
    for (const GLenum channel : {GL_RENDERBUFFER_RED_SIZE, GL_RENDERBUFFER_GREEN_SIZE, GL_RENDERBUFFER_BLUE_SIZE,
                                 GL_RENDERBUFFER_ALPHA_SIZE, GL_RENDERBUFFER_DEPTH_SIZE, GL_RENDERBUFFER_STENCIL_SIZE})
        nBits += get(channel);
    Object object{.kind = GLMemory::Kind::Renderbuffer, .name = name};
    object.width = get(GL_RENDERBUFFER_WIDTH);
    object.height = get(GL_RENDERBUFFER_HEIGHT);
    object.nBytes = static_cast<std::uint64_t>(object.width) * static_cast<std::uint64_t>(object.height) *
                    static_cast<std::uint64_t>(std::max(get(GL_RENDERBUFFER_SAMPLES), 1) * nBits) / 8;
    return object;
}

void collect(GLMemory::Names& names, GLMemory::Kind kind, GLboolean (*is)(GLuint))
{
    for (GLuint name = 1, last = 0; name - last <= cLongestGap; ++name)
        if (is(name) != GL_FALSE)
        {
            last = name;
            names.emplace(kind, name);
        }
}

} // namespace

std::uint64_t GLMemory::getBytes(Kind kind) const
{
    std::uint64_t sum = 0;
    for (const Object& object : objects)
        sum += object.kind == kind ? object.nBytes : 0;
    return sum;
}

std::size_t GLMemory::getCount(Kind kind) const
{
    return static_cast<std::size_t>(std::ranges::count(objects, kind, &Object::kind));
}

bool GLMemory::isTold()
{
    return epoxy_is_desktop_gl() && (epoxy_gl_version() >= 45 || epoxy_has_gl_extension("GL_ARB_direct_state_access"));
}

GLMemory::Names GLMemory::getNames()
{
    Names names;
    if (!isTold())
        return names;
    collect(names, Kind::Buffer, [](GLuint name) { return glIsBuffer(name); });
    collect(names, Kind::Texture, [](GLuint name) { return glIsTexture(name); });
    collect(names, Kind::Renderbuffer, [](GLuint name) { return glIsRenderbuffer(name); });
    return names;
}

GLMemory GLMemory::ask(const Names& without)
{
    GLMemory memory;
    for (const auto& name : getNames())
    {
        if (without.contains(name))
            continue;
        const auto [kind, number] = name;
        memory.objects.push_back(kind == Kind::Buffer    ? askBuffer(number)
                                 : kind == Kind::Texture ? askTexture(number)
                                                         : askRenderbuffer(number));
        memory.nBytes += memory.objects.back().nBytes;
    }
    std::ranges::stable_sort(memory.objects, std::greater<>(), &Object::nBytes);
    return memory;
}

std::string toText(std::uint64_t nBytes)
{
    char text[32];
    const auto n = static_cast<double>(nBytes);
    if (nBytes < 1000)
        std::snprintf(text, sizeof text, "%d bytes", static_cast<int>(nBytes));
    else if (nBytes < 1000000)
        std::snprintf(text, sizeof text, "%.1f kB", n / 1e3);
    else
        std::snprintf(text, sizeof text, "%.1f MB", n / 1e6);
    return text;
}

} // namespace gui::draw
