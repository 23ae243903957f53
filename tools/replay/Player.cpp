#include "Player.h"

#include "Error.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

namespace replay
{

namespace
{

using gui::gl::ByteReader;
using gui::gl::CallArgument;
using gui::gl::FrameFile;

constexpr std::uint32_t cMostTexts = 4096; // of a program

gui::gl::Context settingsOf(const FrameFile::Info& info)
{
    using namespace gui::gl;
    const auto depth = info.depthBits == 0    ? DepthBuffer::Size::None
                       : info.depthBits <= 16 ? DepthBuffer::Size::Bits16
                       : info.depthBits <= 24 ? DepthBuffer::Size::Bits24
                                              : DepthBuffer::Size::Bits32;
    const auto stencil = info.stencilBits == 0 ? StencilBuffer::Size::None : StencilBuffer::Size::Bits8;
    Context context(depth, stencil, Context::Profile::Core41);
    int nSamples = 1;
    while (nSamples * 2 <= static_cast<int>(info.samples) && nSamples < 16)
        nSamples *= 2;
    context.setSamples(nSamples);
    return context;
}

std::string firstLine(const std::string& text)
{
    std::string line = text.substr(0, text.find('\n'));
    for (char& letter : line)
        if (static_cast<unsigned char>(letter) < ' ')
            letter = ' ';
    return line;
}

GLuint compiled(GLenum type, const std::string& text)
{
    const GLuint shader = glCreateShader(type);
    const char* const pText = text.data();
    const auto n = static_cast<GLint>(text.size());
    glShaderSource(shader, 1, &pText, &n);
    glCompileShader(shader);
    return shader;
}

bool isShaderType(std::uint32_t type)
{
    return type == GL_VERTEX_SHADER || type == GL_FRAGMENT_SHADER || type == GL_GEOMETRY_SHADER ||
           type == GL_TESS_CONTROL_SHADER || type == GL_TESS_EVALUATION_SHADER;
}

// Places by text, as programs' notes have them.
std::vector<std::pair<std::int32_t, std::string>> readPlaces(ByteReader& reader)
{
    std::vector<std::pair<std::int32_t, std::string>> places;
    const auto n = reader.number<std::uint32_t>();
    for (std::uint32_t i = 0; i < n && i < cMostTexts && reader.isOk(); ++i)
    {
        const auto place = reader.number<std::int32_t>();
        places.emplace_back(place, reader.text());
    }
    return places;
}

} // namespace

Player::Player(const FrameFile& file)
    : _file(file)
    , _context({static_cast<int>(file.info().width), static_cast<int>(file.info().height)}, settingsOf(file.info()))
{
    if (!_context.isOk())
        throw Error("there is no OpenGL here to draw it with");
}

Player::~Player()
{
    if (_context.makeCurrent())
        clear();
}

td::Size<int> Player::screenSize() const { return _context.getSize(); }

GLuint Player::screen() const { return nameNow(GLCall::Kind::Framebuffer, _file.info().framebuffer); }

GLuint Player::drawFramebuffer() const { return nameNow(GLCall::Kind::Framebuffer, _pModel->drawFramebuffer()); }

unsigned int Player::nameBefore(GLCall::Kind kind, GLuint name) const
{
    const auto it = _names.find(kind);
    if (it != _names.end())
        for (const auto& [before, now] : it->second)
            if (now == name)
                return before;
    return 0;
}

GLuint Player::nameNow(GLCall::Kind kind, std::int64_t name) const
{
    if (name == 0)
        return kind == GLCall::Kind::Framebuffer ? _context.getDefaultFramebuffer() : 0;
    const auto names = _names.find(kind);
    if (names == _names.end())
        return 0;
    const auto it = names->second.find(static_cast<unsigned int>(name));
    return it != names->second.end() ? it->second : 0;
}

GLint Player::locationNow(std::int64_t location) const
{
    const auto program = _locations.find(_pModel->program());
    if (program == _locations.end())
        return -1;
    const auto it = program->second.find(location);
    return it != program->second.end() ? it->second : -1;
}

void Player::clear()
{
    glUseProgram(0);
    glBindVertexArray(0);
    for (const auto& [kind, names] : _names)
        for (const auto& [before, name] : names)
            switch (kind)
            {
            case GLCall::Kind::Buffer:
                glDeleteBuffers(1, &name);
                break;
            case GLCall::Kind::VertexArray:
                glDeleteVertexArrays(1, &name);
                break;
            case GLCall::Kind::Texture:
                glDeleteTextures(1, &name);
                break;
            case GLCall::Kind::Renderbuffer:
                glDeleteRenderbuffers(1, &name);
                break;
            case GLCall::Kind::Framebuffer:
                glDeleteFramebuffers(1, &name);
                break;
            case GLCall::Kind::Program:
                glDeleteProgram(name);
                break;
            case GLCall::Kind::None:
                break;
            }
    _names.clear();
    _locations.clear();
}

std::size_t Player::play(std::size_t nDraws, Watcher* pWatcher)
{
    if (!_context.makeCurrent())
        throw Error("the OpenGL context is lost");
    clear();
    _pModel = std::make_unique<FrameModel>();
    _pWatcher = pWatcher;
    // What the frame does not draw is black.
    glBindFramebuffer(GL_FRAMEBUFFER, _context.getDefaultFramebuffer());
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_RASTERIZER_DISCARD);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_TRUE);
    glClearColor(0, 0, 0, 0);
    glClearDepth(1);
    glClearStencil(0);
    glStencilMask(~0U);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    std::size_t n = 0;
    walk(_file, *_pModel,
         [this, &n, nDraws](const Step& step)
         {
             n = step.draw;
             take(step);
             return step.draw < nDraws;
         });
    glFinish();
    return n;
}

void Player::take(const Step& step)
{
    const GLCall& call = step.call;
    if (std::strcmp(call.name, "guiglProgram") == 0)
        makeProgram(static_cast<unsigned int>(step.arguments[0].integer),
                    {static_cast<const unsigned char*>(step.arguments[1].pointer), step.arguments[1].nBytes});
    else if (std::strcmp(call.name, "guiglDeleteProgram") == 0)
        deleteProgram(static_cast<unsigned int>(step.arguments[0].integer));
    else if (call.role == GLCall::Role::Generate)
        generate(call, step.arguments);
    else if (call.role == GLCall::Role::Delete)
        remove(call, step.arguments);
    else
    {
        if (step.isDraw() && _pWatcher != nullptr)
            _pWatcher->beforeDraw(step);
        this->call(call, {step.arguments.begin(), step.arguments.end()});
        if (step.isDraw() && _pWatcher != nullptr)
            _pWatcher->afterDraw(step);
    }
}

void Player::checkThere(const GLCall& call) const
{
    const int version = epoxy_gl_version();
    if (version < call.version && (call.extension == nullptr || !epoxy_has_gl_extension(call.extension)))
        throw Error(std::string("it calls ") + call.name + ", which needs OpenGL " + std::to_string(call.version / 10) +
                    "." + std::to_string(call.version % 10) + "; here is " + std::to_string(version / 10) + "." +
                    std::to_string(version % 10));
}

void Player::call(const GLCall& call, std::vector<CallArgument> arguments)
{
    checkThere(call);
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const GLCall::Kind kind = GLCall::kindOf(call.signature[i]);
        if (kind != GLCall::Kind::None)
            arguments[i].integer = nameNow(kind, arguments[i].integer);
        else if (call.signature[i] == 'l')
            arguments[i].integer = locationNow(arguments[i].integer);
    }
    std::vector<GLenum> buffers;
    if (_context.getDefaultFramebuffer() != 0 && _pModel->drawFramebuffer() == 0)
    {
        // There is no back behind a framebuffer that stands for the screen.
        const auto adapted = [](GLenum buffer)
        {
            const bool isScreen = buffer == GL_BACK || buffer == GL_FRONT || buffer == GL_BACK_LEFT ||
                                  buffer == GL_FRONT_LEFT || buffer == GL_FRONT_AND_BACK;
            return isScreen ? GLenum(GL_COLOR_ATTACHMENT0) : buffer;
        };
        if (call.slot == &glDrawBuffer || call.slot == &glReadBuffer)
            arguments[0].integer = adapted(static_cast<GLenum>(arguments[0].integer));
        else if (call.slot == &glDrawBuffers)
        {
            buffers.resize(static_cast<std::size_t>(arguments[0].integer) + 1);
            std::memcpy(buffers.data(), arguments[1].pointer, arguments[1].nBytes);
            for (GLenum& buffer : buffers)
                buffer = adapted(buffer);
            arguments[1].pointer = buffers.data();
        }
    }
    call.invoke(arguments);
}

void Player::generate(const GLCall& call, CallArguments arguments)
{
    const auto n = static_cast<std::size_t>(arguments[0].integer);
    std::vector<GLuint> names(n), before(n);
    std::array<CallArgument, 2> now;
    now[0] = arguments[0];
    now[1].pointer = names.data();
    call.invoke(now);
    if (n > 0)
        std::memcpy(before.data(), arguments[1].pointer, n * sizeof(GLuint));
    for (std::size_t i = 0; i < n; ++i)
        _names[call.kind][before[i]] = names[i];
}

void Player::remove(const GLCall& call, CallArguments arguments)
{
    const auto n = static_cast<std::size_t>(arguments[0].integer);
    std::vector<GLuint> names(n);
    if (n > 0)
        std::memcpy(names.data(), arguments[1].pointer, n * sizeof(GLuint));
    for (GLuint& name : names)
    {
        const GLuint before = name;
        name = nameNow(call.kind, before);
        _names[call.kind].erase(before);
    }
    std::array<CallArgument, 2> now;
    now[0] = arguments[0];
    now[1].pointer = names.data();
    call.invoke(now);
}

void Player::deleteProgram(unsigned int name)
{
    auto& programs = _names[GLCall::Kind::Program];
    if (const auto it = programs.find(name); it != programs.end())
    {
        glDeleteProgram(it->second);
        programs.erase(it);
    }
    _locations.erase(name);
}

void Player::makeProgram(unsigned int name, gui::gl::ByteSpan bytes)
{
    ByteReader reader(bytes);
    deleteProgram(name);
    const GLuint program = glCreateProgram();
    _names[GLCall::Kind::Program][name] = program;
    const auto n = reader.number<std::uint32_t>();
    std::string error;
    for (std::uint32_t i = 0; i < n && i < cMostTexts && reader.isOk(); ++i)
    {
        const auto type = reader.number<std::uint32_t>();
        std::string text(reader.text());
        if (!isShaderType(type))
            throw Error("damaged: program " + std::to_string(name) + " has a shader of a kind that there isn't");
        if (_pWatcher != nullptr)
            text = _pWatcher->changed(type, text);
        const GLuint shader = compiled(type, text);
        glAttachShader(program, shader);
        std::array<char, 512> log{};
        GLint isOk = GL_FALSE;
        glGetShaderiv(shader, GL_COMPILE_STATUS, &isOk);
        if (isOk == GL_FALSE && error.empty())
        {
            glGetShaderInfoLog(shader, static_cast<GLsizei>(log.size()), nullptr, log.data());
            error = firstLine(log.data());
        }
        glDeleteShader(shader);
    }
    for (const auto& [location, text] : readPlaces(reader))
        if (location >= 0 && !text.starts_with("gl_"))
            glBindAttribLocation(program, static_cast<GLuint>(location), text.c_str());
    glLinkProgram(program);
    const auto uniforms = readPlaces(reader);
    if (!reader.isOk() || !reader.isAtEnd())
        throw Error("damaged: program " + std::to_string(name) + " has another size than it says");
    GLint isLinked = GL_FALSE, nBlocks = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &isLinked);
    glGetProgramiv(program, GL_ACTIVE_UNIFORM_BLOCKS, &nBlocks);
    if (nBlocks > 0)
        throw Error("program " + std::to_string(name) + " has uniform blocks, which captured frames don't have");
    if (isLinked == GL_FALSE)
    {
        std::fprintf(stderr, "guigl-replay: program %u does not compile here: %s\n", name, error.c_str());
        return;
    }
    for (const auto& [location, text] : uniforms)
        _locations[name][location] = glGetUniformLocation(program, text.c_str());
    if (_pWatcher != nullptr)
        _pWatcher->onProgram(program);
}

} // namespace replay
