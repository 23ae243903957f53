#include <gui/gl/Program.h>

#include "../context/Restoration.h"
#include "../context/StateOfES.h"
#include "ActiveBuffer.h"
#include "ProgHelper.h"
#include "ShaderLog.h"
#include "ShaderText.h"

#include <gui/Res.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/Color.h>
#include <gui/gl/Context.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace gui::gl
{

cnt::StringBuilder<td::String, 1024> Program::s_progErrors(true);

namespace
{

constexpr std::array<GLenum, 5> cShaderTypes{GL_VERTEX_SHADER, GL_FRAGMENT_SHADER, GL_TESS_CONTROL_SHADER,
                                             GL_TESS_EVALUATION_SHADER, GL_GEOMETRY_SHADER};
static_assert(cShaderTypes.size() == std::size_t(GLSL::Type::GeometryShader) + 1);

bool isResource(const char* resID) { return resID[0] == ':'; }

// The stage's name in messages.
const char* nameOf(const char* resID) { return isResource(resID) ? resID + 1 : resID; }

// The compiled shaders of one link, deleted with it, whether it succeeded or not.
class Shaders
{
public:
    Shaders() = default;
    ~Shaders();
    Shaders(const Shaders&) = delete;
    Shaders& operator=(const Shaders&) = delete;

    std::vector<UniformValue> uniforms; // that a text gives, on OpenGL ES

    GLuint add(GLSL::Type type, GLuint shader) { return _shaders[static_cast<std::size_t>(type)] = shader; }

private:
    std::array<GLuint, cShaderTypes.size()> _shaders{};
};

Shaders::~Shaders()
{
    constexpr std::array cOrder{GLSL::Type::VertexShader, GLSL::Type::FragmentShader, GLSL::Type::GeometryShader,
                                GLSL::Type::TessellationEvalShader, GLSL::Type::TessellationCtrlShader};
    for (const GLSL::Type type : cOrder)
    {
        const GLuint shader = _shaders[static_cast<std::size_t>(type)];
        if (shader != 0)
            glDeleteShader(shader);
    }
}

bool hasStage(GLSL::Type type)
{
    constexpr int cFirstES = 32;
    if (type <= GLSL::Type::FragmentShader || !Context::isES() || Context::isAtLeast(0, cFirstES))
        return true;
    const std::string name = type == GLSL::Type::GeometryShader ? "geometry_shader" : "tessellation_shader";
    return epoxy_has_gl_extension(("GL_EXT_" + name).c_str()) || epoxy_has_gl_extension(("GL_OES_" + name).c_str());
}

// The length that GL gives counts the terminating zero; a driver may give 0.
std::string shaderInfoLog(GLuint shader)
{
    GLint length = 0;
    glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    if (length <= 0)
        return {};
    std::string infoLog(static_cast<std::size_t>(length), '\0');
    glGetShaderInfoLog(shader, length, nullptr, infoLog.data());
    infoLog.resize(std::strlen(infoLog.c_str()));
    return infoLog;
}

// Nothing where there is no log at all; an empty one is a log too.
std::optional<std::string> programInfoLog(GLuint program)
{
    GLint length = 0;
    glGetProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    if (length <= 0)
        return std::nullopt;
    std::string infoLog(static_cast<std::size_t>(length), '\0');
    glGetProgramInfoLog(program, length, nullptr, infoLog.data());
    infoLog.resize(std::strlen(infoLog.c_str()));
    return infoLog;
}

} // namespace

// Compiles one stage. @return the shader; 0 after a failure, with nothing left behind
// @param isLast  before the fragment shader
unsigned int Program::compile(GLSL::Type type, const char* resID, bool isLast, std::vector<UniformValue>& uniforms)
{
    const GLuint shader = hasStage(type) ? glCreateShader(cShaderTypes[static_cast<std::size_t>(type)]) : 0;
    if (shader == 0)
    {
        s_progErrors << "OpenGL " << GLSL::toString(type) << " cannot be created!\n";
        vo::dbgLog("OpenGL %s cannot be created!", GLSL::toString(type));
        return 0;
    }
    const td::String resource = isResource(resID) ? gui::getResText(nameOf(resID)) : td::String();
    const char* const source = isResource(resID) ? resource.c_str() : resID;
    if (Context::isES())
    {
        const ShaderText made = toES(source, type == GLSL::Type::VertexShader && isLast);
        const char* const text = made.text.c_str();
        glShaderSource(shader, 1, &text, nullptr);
        uniforms.insert(uniforms.end(), made.uniforms.begin(), made.uniforms.end());
    }
    else
        glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return isCompilationOK(type, shader, nameOf(resID), source) ? shader : 0;
}

bool Program::isCompilationOK(GLSL::Type type, unsigned int shader, const char* name, const char* source)
{
    GLint status = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    if (status == GL_TRUE)
        return true;
    const std::string infoLog = shaderInfoLog(shader);
    const char* const stage = GLSL::toString(type);
    s_progErrors << "OpenGL " << stage << " compilation failed! Info='" << infoLog.c_str() << "'. FileName=" << name
                 << "\n";
    vo::dbgLog("OpenGL %s compilation failed! Info='%s'. FileName=%s", stage, infoLog.c_str(), name);
    for (const std::string& line : explainShaderLog(infoLog, source))
        vo::dbgLog("%s", line.c_str());
    glDeleteShader(shader);
    return false;
}

bool Program::isLinkingOK(unsigned int program, const char* vertexName, const char* fragmentName)
{
    GLint status = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &status);
    if (status == GL_TRUE)
        return true;
    const std::optional<std::string> infoLog = programInfoLog(program);
    if (infoLog)
    {
        s_progErrors << "OpenGL Program linking failed! Info='" << infoLog->c_str()
                     << "'. Vertex fileName=" << vertexName << ", fragment fileName=" << fragmentName << "\n";
        vo::dbgLog("OpenGL Program linking failed! Info='%s'. Vertex fileName=%s, fragment fileName=%s",
                   infoLog->c_str(), vertexName, fragmentName);
    }
    glDeleteProgram(program);
    return false;
}

unsigned int Program::_link(const char* vertexResID, const char* fragmentResID, const char* tessCtrlResID,
                            const char* tessEvalResID, const char* geometryResID, unsigned int before)
{
    TD_ASSERT(vertexResID != nullptr, 0);
    TD_ASSERT(fragmentResID != nullptr, 0);
    if (!CurrentContext::isThere("Program::link"))
        return 0;

    Shaders shaders;
    const bool isTessellated = tessCtrlResID != nullptr && tessEvalResID != nullptr;
    const bool isVertexLast = !isTessellated && geometryResID == nullptr;
    const auto add = [&](GLSL::Type type, const char* resID)
    { return shaders.add(type, compile(type, resID, isVertexLast, shaders.uniforms)); };
    const GLuint vertexShader = add(GLSL::Type::VertexShader, vertexResID);
    if (vertexShader == 0)
        return 0;
    const GLuint fragmentShader = add(GLSL::Type::FragmentShader, fragmentResID);
    if (fragmentShader == 0)
        return 0;

    const GLuint program = Restoration::makeName(CurrentContext::Kind::Program, before);
    if (program == 0)
    {
        s_progErrors << "OpenGL Program cannot be created!\n";
        vo::dbgLog("OpenGL Program cannot be created!");
        return 0;
    }
    glAttachShader(program, vertexShader);
    glAttachShader(program, fragmentShader);

    struct Stage
    {
        GLSL::Type type;
        const char* resID;
    };
    const Stage furtherStages[] = {{GLSL::Type::TessellationCtrlShader, isTessellated ? tessCtrlResID : nullptr},
                                   {GLSL::Type::TessellationEvalShader, isTessellated ? tessEvalResID : nullptr},
                                   {GLSL::Type::GeometryShader, geometryResID}};
    for (const Stage& stage : furtherStages)
    {
        if (stage.resID == nullptr)
            continue;
        const GLuint shader = add(stage.type, stage.resID);
        if (shader == 0)
        {
            glDeleteProgram(program);
            return 0;
        }
        glAttachShader(program, shader);
    }

    glLinkProgram(program);
    if (!isLinkingOK(program, nameOf(vertexResID), nameOf(fragmentResID)))
        return 0;
    setUniforms(program, shaders.uniforms);
    return program;
}

Program::~Program() { release(); }

bool Program::link(const char* vertexResID, const char* fragmentResID, const char* geometryResID)
{
    return finishLink(_link(vertexResID, fragmentResID, nullptr, nullptr, geometryResID),
                      {vertexResID, fragmentResID, nullptr, nullptr, geometryResID});
}

bool Program::link(const char* vertexResID, const char* fragmentResID, const char* tessCtrlResID,
                   const char* tessEvalResID, const char* geometryResID)
{
    return finishLink(_link(vertexResID, fragmentResID, tessCtrlResID, tessEvalResID, geometryResID),
                      {vertexResID, fragmentResID, tessCtrlResID, tessEvalResID, geometryResID});
}

bool Program::finishLink(unsigned int programID, const Sources& sources)
{
    _pKept.reset();
    _programID = programID;
    if (_programID == 0)
    {
        onError();
        return false;
    }
    _home.set(CurrentContext::getID());
    findPointSize();
    if (_isKept)
    {
        _pKept = std::make_unique<Kept>();
        for (std::size_t i = 0; i < sources.size(); ++i)
            if (sources[i] != nullptr)
                _pKept->sources[i] = sources[i];
    }
    _hasSaidNotLinked = _hasSaidColor = false;
    onLinked();
    return true;
}

void Program::findPointSize()
{
    _pointSizeLocation = Context::isES() ? glGetUniformLocation(_programID, cPointSizeUniform) : -1;
}

void Program::setKeptForRestore(bool isKept)
{
    _isKept = isKept;
    if (!isKept)
        _pKept.reset();
}

void Program::release()
{
    if (s_pCurrentProgram == this)
        setCurrentProgram(nullptr);
    if (s_pProgramBefore == this)
        s_pProgramBefore = nullptr;
    _home.deleteName(CurrentContext::Kind::Program, _programID);
    _programID = 0;
    _pKept.reset();
}

void Program::onContext(ContextResource::Event event)
{
    if (event == ContextResource::Event::Leaving)
        _home.deleteName(CurrentContext::Kind::Program, _programID);
    else
        linkAgain();
}

void Program::linkAgain()
{
    const unsigned int before = std::exchange(_programID, 0);
    if (before == 0 || _pKept == nullptr)
        return;
    const auto source = [this](std::size_t i) { return _pKept->sources[i] ? _pKept->sources[i]->c_str() : nullptr; };
    _programID = _link(source(0), source(1), source(2), source(3), source(4), before);
    if (_programID == 0)
    {
        onError();
        return;
    }
    findPointSize();
    for (Uniform& uniform : _pKept->uniforms)
    {
        const int location =
            uniform.name.empty() ? uniform.location : glGetUniformLocation(_programID, uniform.name.c_str());
        _pKept->moved.emplace_back(uniform.location, location);
        uniform.location = location;
    }
    for (int* const pLocation : {&_color3Location, &_color4Location, &_matrixLocation})
        moveLocation(*pLocation);
    for (auto* const pTable : {&_uniformLocations, &_matrixLocations})
        for (int& location : *pTable)
            moveLocation(location);
    _pKept->moved.clear();
    // onLinked may give some of them what they have at first.
    const std::vector<Uniform> uniforms = _pKept->uniforms;
    glUseProgram(_programID);
    // They may not be there again yet, when onLinked activates the program.
    Buffer* const pBuffer = std::exchange(_pBuffer, nullptr);
    Textures* const pTextures = std::exchange(_pTextures, nullptr);
    onLinked();
    _pBuffer = _pBuffer != nullptr ? _pBuffer : pBuffer;
    _pTextures = _pTextures != nullptr ? _pTextures : pTextures;
    if (_pKept == nullptr || _programID == 0)
        return;
    _pKept->uniforms = uniforms;
    glUseProgram(_programID);
    sendUniforms();
    glUseProgram(0);
    setCurrentProgram(nullptr);
}

void Program::moveLocation(int& location) const
{
    const auto& moved = _pKept->moved;
    const auto found =
        std::find_if(moved.begin(), moved.end(), [&location](const auto& pair) { return pair.first == location; });
    if (found != moved.end())
        location = found->second;
}

td::String Program::getLastError() { return s_progErrors.toString(); }

void Program::onLinked() { vo::dbgLog("WARNNING! zavGL Program::onLinked not handled at all!"); }

void Program::onError() {}

int Program::getUniformLocation(const char* name) const
{
    TD_ASSERT(isOK(), -1);
    const int location = glGetUniformLocation(_programID, name);
    if (location >= 0 && _pKept != nullptr)
    {
        auto& uniforms = _pKept->uniforms;
        const auto known = std::find_if(uniforms.begin(), uniforms.end(),
                                        [location](const Uniform& uniform) { return uniform.location == location; });
        if (known == uniforms.end())
            uniforms.push_back({.name = name, .location = location});
        else if (known->name.empty())
            known->name = name;
    }
    return location;
}

void Program::reserveUniforms(unsigned char n)
{
    _uniformLocations.reserve(n);
    std::fill(_uniformLocations.begin(), _uniformLocations.end(), -1);
}

bool Program::uniformLocationsAreOk() const
{
    return std::all_of(_uniformLocations.begin(), _uniformLocations.end(), [](int location) { return location >= 0; });
}

bool Program::getUniformLocationsForMatrices(const char** names, std::size_t n)
{
    _matrixLocations.reserve(n);
    std::fill(_matrixLocations.begin(), _matrixLocations.end(), -1);
    for (std::size_t i = 0; i < n; ++i)
    {
        _matrixLocations[i] = getUniformLocation(names[i]);
        if (_matrixLocations[i] < 0)
            return false;
    }
    return true;
}

void Program::setUniformValuesForMatrices(const glm::mat4** matrices, std::size_t n)
{
    TD_ASSERT(n <= _matrixLocations.size());
    for (std::size_t i = 0; i < n; ++i)
        setUniformValue(static_cast<unsigned int>(_matrixLocations[i]), *matrices[i]);
}

void Program::setUniformValuesForMatrices(const glm::mat4* matrices, std::size_t n)
{
    TD_ASSERT(n <= _matrixLocations.size());
    for (std::size_t i = 0; i < n; ++i)
        setUniformValue(static_cast<unsigned int>(_matrixLocations[i]), matrices[i]);
}

void Program::setUniformValuesForMatrices(const cnt::SafeFullVector<glm::mat4, false>& matrices, std::size_t n)
{
    TD_ASSERT(n <= matrices.size());
    setUniformValuesForMatrices(matrices.begin(), n == 0 ? matrices.size() : n);
}

// A colour that goes nowhere leaves shapes black, in builds without assertions without another word.
void Program::sayColorGoesNowhere(int nComponents)
{
    if (_hasSaidColor)
        return;
    _hasSaidColor = true;
    const char* const taken = _color3Location >= 0   ? "a colour of 3 components: setColor(id)"
                              : _color4Location >= 0 ? "a colour of 4 components: setColor(id, alpha)"
                                                     : "no colour";
    vo::dbgLog("Error! Program::setColor%d on a program that takes %s", nComponents, taken);
}

void Program::setColor3(const glm::vec3& color)
{
    if (_color3Location < 0)
        sayColorGoesNowhere(3);
    TD_ASSERT(_color3Location >= 0);
    setUniformValue(static_cast<unsigned int>(_color3Location), color);
}

void Program::setColor4(const glm::vec4& color)
{
    if (_color4Location < 0)
        sayColorGoesNowhere(4);
    TD_ASSERT(_color4Location >= 0);
    setUniformValue(static_cast<unsigned int>(_color4Location), color);
}

void Program::setMVP(const glm::mat4& mvp)
{
    TD_ASSERT(_matrixLocation >= 0);
    setUniformValue(static_cast<unsigned int>(_matrixLocation), mvp);
}

void Program::activate() const
{
    if (_pBuffer != nullptr)
        _pBuffer->activate();
    // What it draws does not change the program; commands only send uniforms through it.
    setCurrentProgram(const_cast<Program*>(this));
    if (_pTextures != nullptr)
        _pTextures->forgetDead();
    glUseProgram(getID());
    if (_pointSizeLocation >= 0)
        glUniform1f(_pointSizeLocation, getPointSize());
}

void Program::deActivate() const
{
    glBindVertexArray(0);
    s_activeBuffer = {};
    useNone();
}

void Program::useNone()
{
    glUseProgram(0);
    setCurrentProgram(nullptr);
}

void Program::setTextures(Textures* pTextures)
{
    _pTextures = pTextures;
    forgetTexture();
}

void Program::reserveCommands(std::size_t n) { _commandList.reserve(n); }

Command* Program::createCommand() { return _commandList.get(); }

bool Program::encode(Command* pCommand) { return _commandList.encode(pCommand); }

bool Program::remove(Command* pCommand) { return _commandList.remove(pCommand); }

void Program::execute()
{
    if (_commandList.size() > 0)
    {
        _commandList.execute();
        return;
    }
    TD_ASSERT(_pBuffer != nullptr);
    _pBuffer->getCommandList().execute();
}

void Program::execute(std::size_t first, std::size_t count)
{
    TD_ASSERT(_pBuffer != nullptr);
    _pBuffer->getCommandList().execute(first, count);
}

bool Program::prepare(Buffer& buffer)
{
    if (!isOK())
    {
        if (!_hasSaidNotLinked)
            vo::dbgLog("Error! Program::draw on a program that is not linked");
        _hasSaidNotLinked = true;
        return false;
    }
    if (!buffer.isCommitted() || buffer.isDynamic())
        buffer.getCommandList().encode(); // one that can't be says so when it is executed
    if (!buffer.commit() || !buffer.isCommitted())
        return false;
    setBuffer(&buffer);
    activate();
    return true;
}

void Program::draw(Buffer& buffer)
{
    if (prepare(buffer))
        execute();
}

void Program::draw(Buffer& buffer, const glm::mat4& mvp)
{
    if (!prepare(buffer))
        return;
    setMVP(mvp);
    execute();
}

} // namespace gui::gl
