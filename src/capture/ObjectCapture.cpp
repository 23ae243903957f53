#include "ObjectCapture.h"

#include "../context/GLNumber.h"
#include "ActiveUniforms.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <vector>

namespace gui::gl
{

namespace
{

GLuint bound(GLenum binding) { return static_cast<GLuint>(glNumber(binding)); }

// Images are read into memory without gaps while this lives.
class TightRows
{
public:
    TightRows()
        : _buffer(bound(GL_PIXEL_PACK_BUFFER_BINDING))
    {
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
        for (std::size_t i = 0; i < cNames.size(); ++i)
        {
            _values[i] = glNumber(cNames[i]);
            glPixelStorei(cNames[i], i == 0 ? 1 : 0);
        }
    }
    TightRows(const TightRows&) = delete;
    TightRows& operator=(const TightRows&) = delete;
    ~TightRows()
    {
        for (std::size_t i = 0; i < cNames.size(); ++i)
            glPixelStorei(cNames[i], _values[i]);
        glBindBuffer(GL_PIXEL_PACK_BUFFER, _buffer);
    }

private:
    static constexpr std::array<GLenum, 6> cNames{GL_PACK_ALIGNMENT,   GL_PACK_ROW_LENGTH,   GL_PACK_SKIP_ROWS,
                                                  GL_PACK_SKIP_PIXELS, GL_PACK_IMAGE_HEIGHT, GL_PACK_SKIP_IMAGES};
    std::array<GLint, cNames.size()> _values{};
    GLuint _buffer;
};

GLint level(GLenum target, GLint i, GLenum name)
{
    GLint value = 0;
    glGetTexLevelParameteriv(target, i, name, &value);
    return value;
}

GLint attachment(GLenum point, GLenum name)
{
    GLint value = 0;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, point, name, &value);
    return value;
}

GLint attribute(GLuint i, GLenum name)
{
    GLint value = 0;
    glGetVertexAttribiv(i, name, &value);
    return value;
}

GLenum bindingOf(GLenum target)
{
    switch (target)
    {
    case GL_TEXTURE_2D:
        return GL_TEXTURE_BINDING_2D;
    case GL_TEXTURE_CUBE_MAP:
        return GL_TEXTURE_BINDING_CUBE_MAP;
    case GL_TEXTURE_2D_MULTISAMPLE:
        return GL_TEXTURE_BINDING_2D_MULTISAMPLE;
    case GL_TEXTURE_BUFFER:
        return GL_TEXTURE_BINDING_BUFFER;
    default:
        return 0;
    }
}

} // namespace

ObjectCapture::ObjectCapture(const ProgramTexts& texts, CallWriter& writer)
    : _texts(texts)
    , _writer(writer)
{
    _writer.call(&glPixelStorei, GL_UNPACK_ALIGNMENT, 1);
}

void ObjectCapture::setMissing(const std::string& what)
{
    if (_missing.empty())
        _missing = what;
}

void ObjectCapture::need(GLCall::Kind kind, unsigned int name, unsigned int target)
{
    using Kind = GLCall::Kind;
    // A texture that is known without a target had none.
    if (name == 0 || !_known.insert({kind, name}).second)
        return;
    switch (kind)
    {
    case Kind::Buffer:
        writeBuffer(name);
        break;
    case Kind::VertexArray:
        writeVertexArray(name);
        break;
    case Kind::Texture:
        writeTexture(name, target);
        break;
    case Kind::Renderbuffer:
        writeRenderbuffer(name);
        break;
    case Kind::Framebuffer:
        writeFramebuffer(name);
        break;
    case Kind::Program:
        writeProgram(name);
        break;
    case Kind::None:
        break;
    }
}

void ObjectCapture::writeBuffer(unsigned int name)
{
    _writer.call(&glGenBuffers, 1, &name);
    const GLuint before = bound(GL_COPY_READ_BUFFER_BINDING);
    glBindBuffer(GL_COPY_READ_BUFFER, name);
    GLint64 size = 0;
    GLint usage = 0;
    glGetBufferParameteri64v(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, &size);
    glGetBufferParameteriv(GL_COPY_READ_BUFFER, GL_BUFFER_USAGE, &usage);
    std::vector<unsigned char> content(static_cast<std::size_t>(size));
    if (size > 0)
        glGetBufferSubData(GL_COPY_READ_BUFFER, 0, static_cast<GLsizeiptr>(size), content.data());
    glBindBuffer(GL_COPY_READ_BUFFER, before);
    _writer.call(&glBindBuffer, GL_COPY_READ_BUFFER, name);
    _writer.call(&glBufferData, GL_COPY_READ_BUFFER, size, content.data(), usage);
}

void ObjectCapture::writeVertexArray(unsigned int name)
{
    const GLuint before = bound(GL_VERTEX_ARRAY_BINDING);
    glBindVertexArray(name);
    const GLuint elements = bound(GL_ELEMENT_ARRAY_BUFFER_BINDING);
    need(GLCall::Kind::Buffer, elements);
    const int n = glNumber(GL_MAX_VERTEX_ATTRIBS);
    for (int i = 0; i < n; ++i)
        need(GLCall::Kind::Buffer, static_cast<GLuint>(attribute(GLuint(i), GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING)));
    _writer.call(&glGenVertexArrays, 1, &name);
    _writer.call(&glBindVertexArray, name);
    _writer.call(&glBindBuffer, GL_ELEMENT_ARRAY_BUFFER, elements);
    for (int i = 0; i < n; ++i)
    {
        const auto index = static_cast<GLuint>(i);
        const GLint buffer = attribute(index, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING);
        const GLint divisor = attribute(index, GL_VERTEX_ATTRIB_ARRAY_DIVISOR);
        if (buffer != 0)
        {
            void* offset = nullptr;
            glGetVertexAttribPointerv(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &offset);
            const GLint size = attribute(index, GL_VERTEX_ATTRIB_ARRAY_SIZE);
            const GLint type = attribute(index, GL_VERTEX_ATTRIB_ARRAY_TYPE);
            const GLint stride = attribute(index, GL_VERTEX_ATTRIB_ARRAY_STRIDE);
            _writer.call(&glBindBuffer, GL_ARRAY_BUFFER, buffer);
            if (attribute(index, GL_VERTEX_ATTRIB_ARRAY_INTEGER) != 0)
                _writer.call(&glVertexAttribIPointer, index, size, type, stride, offset);
            else
                _writer.call(&glVertexAttribPointer, index, size, type,
                             attribute(index, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED), stride, offset);
        }
        if (divisor != 0)
            _writer.call(&glVertexAttribDivisor, index, divisor);
        if (attribute(index, GL_VERTEX_ATTRIB_ARRAY_ENABLED) != 0)
            _writer.call(&glEnableVertexAttribArray, index);
    }
    glBindVertexArray(before);
}

void ObjectCapture::writeTexture(unsigned int name, unsigned int target)
{
    const GLenum binding = bindingOf(target);
    _writer.call(&glGenTextures, 1, &name);
    if (binding == 0)
    {
        setMissing("a texture that is neither 2D nor a cube map");
        return;
    }
    const GLuint before = bound(binding);
    glBindTexture(target, name);
    if (target == GL_TEXTURE_BUFFER)
    {
        const auto buffer = static_cast<GLuint>(level(target, 0, GL_TEXTURE_BUFFER_DATA_STORE_BINDING));
        need(GLCall::Kind::Buffer, buffer);
        _writer.call(&glBindTexture, target, name);
        if (buffer != 0)
            _writer.call(&glTexBuffer, target, level(target, 0, GL_TEXTURE_INTERNAL_FORMAT), buffer);
        glBindTexture(target, before);
        return;
    }
    _writer.call(&glBindTexture, target, name);
    if (target == GL_TEXTURE_2D_MULTISAMPLE)
    {
        _writer.call(&glTexImage2DMultisample, target, level(target, 0, GL_TEXTURE_SAMPLES),
                     level(target, 0, GL_TEXTURE_INTERNAL_FORMAT), level(target, 0, GL_TEXTURE_WIDTH),
                     level(target, 0, GL_TEXTURE_HEIGHT), level(target, 0, GL_TEXTURE_FIXED_SAMPLE_LOCATIONS));
        glBindTexture(target, before);
        return;
    }
    if (target == GL_TEXTURE_CUBE_MAP)
        for (GLenum face = 0; face < 6; ++face)
            writeLevels(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face);
    else
        writeLevels(target);
    for (const GLenum parameter :
         {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER, GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R,
          GL_TEXTURE_BASE_LEVEL, GL_TEXTURE_MAX_LEVEL, GL_TEXTURE_COMPARE_MODE, GL_TEXTURE_COMPARE_FUNC,
          GL_TEXTURE_SWIZZLE_R, GL_TEXTURE_SWIZZLE_G, GL_TEXTURE_SWIZZLE_B, GL_TEXTURE_SWIZZLE_A})
    {
        // Of swizzles contexts below 3.3 may know nothing.
        if (parameter >= GL_TEXTURE_SWIZZLE_R && parameter <= GL_TEXTURE_SWIZZLE_A && epoxy_gl_version() < 33)
            continue;
        GLint value = 0;
        glGetTexParameteriv(target, parameter, &value);
        _writer.call(&glTexParameteri, target, parameter, value);
    }
    for (const GLenum parameter :
         {GL_TEXTURE_LOD_BIAS, GL_TEXTURE_MIN_LOD, GL_TEXTURE_MAX_LOD, GL_TEXTURE_MAX_ANISOTROPY_EXT})
    {
        if (parameter == GL_TEXTURE_MAX_ANISOTROPY_EXT && !epoxy_has_gl_extension("GL_EXT_texture_filter_anisotropic"))
            continue;
        GLfloat value = 0;
        glGetTexParameterfv(target, parameter, &value);
        _writer.call(&glTexParameterf, target, parameter, value);
    }
    glBindTexture(target, before);
}

void ObjectCapture::writeLevels(unsigned int target)
{
    constexpr GLint cMostLevels = 15;
    const TightRows tight;
    for (GLint i = 0; i < cMostLevels; ++i)
    {
        const GLint width = level(target, i, GL_TEXTURE_WIDTH), height = level(target, i, GL_TEXTURE_HEIGHT);
        if (width == 0 || height == 0)
            break;
        const GLint name = level(target, i, GL_TEXTURE_INTERNAL_FORMAT);
        const InternalFormat* const pFormat = InternalFormat::find(name);
        if (pFormat == nullptr)
        {
            setMissing("a texture with an internal format that is not kept");
            return;
        }
        const PixelStore tightStore{.alignment = 1};
        const auto nBytes = bytesOfImage(width, height, pFormat->format, pFormat->type, tightStore);
        if (!nBytes)
            return setMissing("a texture that is too large");
        std::vector<unsigned char> pixels(*nBytes);
        glGetTexImage(target, i, pFormat->format, pFormat->type, pixels.data());
        _writer.call(&glTexImage2D, target, i, name, width, height, 0, pFormat->format, pFormat->type, pixels.data());
    }
}

void ObjectCapture::writeRenderbuffer(unsigned int name)
{
    const GLuint before = bound(GL_RENDERBUFFER_BINDING);
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    const auto number = [](GLenum parameter)
    {
        GLint value = 0;
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, parameter, &value);
        return value;
    };
    _writer.call(&glGenRenderbuffers, 1, &name);
    _writer.call(&glBindRenderbuffer, GL_RENDERBUFFER, name);
    if (number(GL_RENDERBUFFER_WIDTH) > 0)
        _writer.call(&glRenderbufferStorageMultisample, GL_RENDERBUFFER, number(GL_RENDERBUFFER_SAMPLES),
                     number(GL_RENDERBUFFER_INTERNAL_FORMAT), number(GL_RENDERBUFFER_WIDTH),
                     number(GL_RENDERBUFFER_HEIGHT));
    glBindRenderbuffer(GL_RENDERBUFFER, before);
}

void ObjectCapture::writeFramebuffer(unsigned int name)
{
    const GLuint drawBefore = bound(GL_DRAW_FRAMEBUFFER_BINDING), readBefore = bound(GL_READ_FRAMEBUFFER_BINDING);
    glBindFramebuffer(GL_FRAMEBUFFER, name);
    _writer.call(&glGenFramebuffers, 1, &name);
    const bool hasSamples = glNumber(GL_SAMPLES) > 0;
    constexpr GLuint cColors = 8;
    const auto nColors = std::min(static_cast<GLuint>(glNumber(GL_MAX_COLOR_ATTACHMENTS)), cColors);
    for (GLuint i = 0; i < nColors; ++i)
        writeAttachment(GL_COLOR_ATTACHMENT0 + i, hasSamples);
    writeAttachment(GL_DEPTH_ATTACHMENT, hasSamples);
    writeAttachment(GL_STENCIL_ATTACHMENT, hasSamples);
    const auto nDrawn = std::min(static_cast<GLuint>(glNumber(GL_MAX_DRAW_BUFFERS)), cColors);
    std::vector<GLenum> drawn(nDrawn);
    for (GLuint i = 0; i < nDrawn; ++i)
        drawn[i] = bound(GL_DRAW_BUFFER0 + i);
    while (drawn.size() > 1 && drawn.back() == GL_NONE)
        drawn.pop_back();
    _writer.call(&glBindFramebuffer, GL_FRAMEBUFFER, name);
    _writer.call(&glDrawBuffers, drawn.size(), drawn.data());
    _writer.call(&glReadBuffer, glNumber(GL_READ_BUFFER));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, drawBefore);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, readBefore);
}

void ObjectCapture::writeAttachment(unsigned int point, bool hasSamples)
{
    const GLint type = attachment(point, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE);
    if (type != GL_RENDERBUFFER && type != GL_TEXTURE)
        return;
    const auto object = static_cast<GLuint>(attachment(point, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME));
    const auto framebuffer = bound(GL_DRAW_FRAMEBUFFER_BINDING);
    if (type == GL_RENDERBUFFER)
    {
        need(GLCall::Kind::Renderbuffer, object);
        _writer.call(&glBindFramebuffer, GL_FRAMEBUFFER, framebuffer);
        _writer.call(&glFramebufferRenderbuffer, GL_FRAMEBUFFER, point, GL_RENDERBUFFER, object);
        return;
    }
    const auto face = static_cast<GLenum>(attachment(point, GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_CUBE_MAP_FACE));
    const GLenum target = face != 0 ? GL_TEXTURE_CUBE_MAP : hasSamples ? GL_TEXTURE_2D_MULTISAMPLE : GL_TEXTURE_2D;
    need(GLCall::Kind::Texture, object, target);
    _writer.call(&glBindFramebuffer, GL_FRAMEBUFFER, framebuffer);
    _writer.call(&glFramebufferTexture2D, GL_FRAMEBUFFER, point, face != 0 ? face : target, object,
                 attachment(point, GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_LEVEL));
}

void ObjectCapture::writeProgram(unsigned int name)
{
    ByteWriter program;
    if (!_texts.write(name, program))
        return setMissing("a program that was linked before the first context was known");
    _writer.note("guiglProgram", {name}, program.bytes());
    writeUniforms(name);
}

void ObjectCapture::writeUniforms(unsigned int name)
{
    GLint isLinked = GL_FALSE;
    glGetProgramiv(name, GL_LINK_STATUS, &isLinked);
    if (isLinked == GL_FALSE)
        return;
    GLint nBlocks = 0;
    glGetProgramiv(name, GL_ACTIVE_UNIFORM_BLOCKS, &nBlocks);
    if (nBlocks > 0)
        setMissing("a program with uniform blocks");
    _writer.call(&glUseProgram, name);
    constexpr std::array cFloats{&glUniform1fv, &glUniform2fv, &glUniform3fv, &glUniform4fv};
    constexpr std::array cInts{&glUniform1iv, &glUniform2iv, &glUniform3iv, &glUniform4iv};
    constexpr std::array cUnsigned{&glUniform1uiv, &glUniform2uiv, &glUniform3uiv, &glUniform4uiv};
    for (const ActiveUniform& uniform : ActiveUniform::of(name))
    {
        const UniformShape shape = UniformShape::of(uniform.type);
        if (shape.n == 0)
        {
            setMissing("a uniform that is a matrix of unequal sides");
            continue;
        }
        const auto i = static_cast<std::size_t>(shape.n - 1);
        std::array<GLfloat, 16> floats{};
        std::array<GLint, 4> ints{};
        std::array<GLuint, 4> numbers{};
        switch (shape.number)
        {
        case UniformShape::Number::Float:
            glGetUniformfv(name, uniform.location, floats.data());
            if (shape.isMatrix)
                _writer.call(shape.n == 4   ? &glUniformMatrix2fv
                             : shape.n == 9 ? &glUniformMatrix3fv
                                            : &glUniformMatrix4fv,
                             uniform.location, 1, GL_FALSE, floats.data());
            else
                _writer.call(cFloats[i], uniform.location, 1, floats.data());
            break;
        case UniformShape::Number::Int:
            glGetUniformiv(name, uniform.location, ints.data());
            _writer.call(cInts[i], uniform.location, 1, ints.data());
            break;
        case UniformShape::Number::Unsigned:
            glGetUniformuiv(name, uniform.location, numbers.data());
            _writer.call(cUnsigned[i], uniform.location, 1, numbers.data());
            break;
        }
    }
}

} // namespace gui::gl
