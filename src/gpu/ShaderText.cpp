#include "ShaderText.h"

#include "../context/Features.h"

#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <optional>
#include <utility>

namespace gui::gl
{

namespace
{

// Of what OpenGL's GLSL has by itself, what OpenGL ES 3.1 has by these alone; each where the driver has it. Some are a
// part of OpenGL ES 3.2, and have no name there.
constexpr std::array<const char*, 15> cExtensions{"GL_EXT_texture_buffer",
                                                  "GL_OES_texture_buffer",
                                                  "GL_EXT_geometry_shader",
                                                  "GL_OES_geometry_shader",
                                                  "GL_EXT_tessellation_shader",
                                                  "GL_OES_tessellation_shader",
                                                  "GL_EXT_shader_io_blocks",
                                                  "GL_OES_shader_io_blocks",
                                                  "GL_EXT_gpu_shader5",
                                                  "GL_OES_gpu_shader5",
                                                  "GL_OES_sample_variables",
                                                  "GL_EXT_blend_func_extended",
                                                  "GL_EXT_clip_cull_distance",
                                                  "GL_EXT_shader_implicit_conversions",
                                                  "GL_NV_shader_noperspective_interpolation"};

constexpr std::array<const char*, 20> cPreciseTypes{"float",
                                                    "int",
                                                    "sampler2D",
                                                    "sampler3D",
                                                    "samplerCube",
                                                    "sampler2DArray",
                                                    "sampler2DShadow",
                                                    "samplerCubeShadow",
                                                    "sampler2DArrayShadow",
                                                    "sampler2DMS",
                                                    "isampler2D",
                                                    "isampler3D",
                                                    "isamplerCube",
                                                    "isampler2DArray",
                                                    "isampler2DMS",
                                                    "usampler2D",
                                                    "usampler3D",
                                                    "usamplerCube",
                                                    "usampler2DArray",
                                                    "usampler2DMS"};

bool isWordPart(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

struct Token
{
    std::string_view text;
    std::size_t begin = 0;
    std::size_t end = 0;
    bool isDirective = false; // a whole line that begins with #
};

// Words, numbers, directives, and everything else one character at a time. Comments are left out.
class Scanner
{
public:
    explicit Scanner(std::string_view source)
        : _source(source)
    {
    }

    std::optional<Token> next()
    {
        skipBlanks();
        if (_at >= _source.size())
            return std::nullopt;
        const std::size_t begin = _at;
        const bool isDirective = _source[_at] == '#';
        if (isDirective)
            skipLine();
        else if (isWordPart(_source[_at]) || isNumber())
            skipWord();
        else
            ++_at;
        return Token{_source.substr(begin, _at - begin), begin, _at, isDirective};
    }

private:
    bool isNumber() const
    {
        return _source[_at] == '.' && _at + 1 < _source.size() &&
               std::isdigit(static_cast<unsigned char>(_source[_at + 1])) != 0;
    }

    // A number has a point and an exponent too.
    void skipWord()
    {
        const bool isNumeric = std::isdigit(static_cast<unsigned char>(_source[_at])) != 0 || _source[_at] == '.';
        const auto isSign = [&]
        {
            const char before = _source[_at - 1];
            return (_source[_at] == '-' || _source[_at] == '+') && (before == 'e' || before == 'E');
        };
        const std::size_t begin = _at;
        while (_at < _source.size() &&
               (isWordPart(_source[_at]) || (isNumeric && (_source[_at] == '.' || (_at > begin && isSign())))))
            ++_at;
    }

    // The line goes on after a backslash.
    void skipLine()
    {
        while (_at < _source.size() && (_source[_at] != '\n' || _source[_at - 1] == '\\'))
            ++_at;
    }

    void skipBlanks()
    {
        while (_at < _source.size())
        {
            if (std::isspace(static_cast<unsigned char>(_source[_at])) != 0)
                ++_at;
            else if (_source.substr(_at).starts_with("//"))
                skipLine();
            else if (_source.substr(_at).starts_with("/*"))
                _at = std::min(_source.find("*/", _at + 2), _source.size() - 2) + 2;
            else
                return;
        }
    }

    std::string_view _source;
    std::size_t _at = 0;
};

struct Shape
{
    const char* name;
    std::size_t nColumns;
    std::size_t nRows;
    char kind; // f, i, u or b
};

constexpr std::array<Shape, 25> cShapes{
    {{"float", 1, 1, 'f'},  {"vec2", 1, 2, 'f'},   {"vec3", 1, 3, 'f'},   {"vec4", 1, 4, 'f'},
     {"int", 1, 1, 'i'},    {"ivec2", 1, 2, 'i'},  {"ivec3", 1, 3, 'i'},  {"ivec4", 1, 4, 'i'},
     {"uint", 1, 1, 'u'},   {"uvec2", 1, 2, 'u'},  {"uvec3", 1, 3, 'u'},  {"uvec4", 1, 4, 'u'},
     {"bool", 1, 1, 'b'},   {"bvec2", 1, 2, 'b'},  {"bvec3", 1, 3, 'b'},  {"bvec4", 1, 4, 'b'},
     {"mat2", 2, 2, 'f'},   {"mat3", 3, 3, 'f'},   {"mat4", 4, 4, 'f'},   {"mat2x3", 2, 3, 'f'},
     {"mat2x4", 2, 4, 'f'}, {"mat3x2", 3, 2, 'f'}, {"mat3x4", 3, 4, 'f'}, {"mat4x2", 4, 2, 'f'},
     {"mat4x3", 4, 3, 'f'}}};

const Shape* findShape(std::string_view name)
{
    const auto found = std::find_if(cShapes.begin(), cShapes.end(), [name](const Shape& s) { return s.name == name; });
    return found != cShapes.end() ? &*found : nullptr;
}

// Numbers, and constructors of them within each other.
class ValueReader
{
public:
    explicit ValueReader(const std::vector<Token>& tokens)
        : _tokens(tokens)
    {
    }

    // Nothing where something else stands there.
    std::optional<std::vector<double>> read(std::string_view type)
    {
        const Shape* const pShape = findShape(type);
        const std::optional<std::vector<double>> value = pShape != nullptr ? readValue() : std::nullopt;
        return value && _at == _tokens.size() && value->size() == pShape->nColumns * pShape->nRows ? value
                                                                                                   : std::nullopt;
    }

private:
    bool skip(std::string_view text)
    {
        const bool isThere = _at < _tokens.size() && _tokens[_at].text == text;
        _at += isThere ? 1 : 0;
        return isThere;
    }

    std::optional<std::vector<double>> readValue()
    {
        if (skip("-"))
        {
            auto value = readValue();
            for (std::size_t i = 0; value && i < value->size(); ++i)
                (*value)[i] = -(*value)[i];
            return value;
        }
        if (_at == _tokens.size() || ++_depth > cMostDepth)
            return std::nullopt;
        const std::string_view word = _tokens[_at++].text;
        const Shape* const pShape = findShape(word);
        return pShape != nullptr ? readConstructor(*pShape) : readNumber(word);
    }

    static std::optional<std::vector<double>> readNumber(std::string_view word)
    {
        if (word == "true" || word == "false")
            return std::vector<double>{word == "true" ? 1.0 : 0.0};
        double number = 0;
        const auto [pEnd, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        std::string_view rest = word.substr(static_cast<std::size_t>(pEnd - word.data()));
        if (error != std::errc() || (!rest.empty() && rest != "f" && rest != "F" && rest != "u" && rest != "U"))
            return std::nullopt;
        return std::vector<double>{number};
    }

    std::optional<std::vector<double>> readConstructor(const Shape& shape)
    {
        std::vector<double> components;
        if (!skip("("))
            return std::nullopt;
        do
        {
            const std::optional<std::vector<double>> value = readValue();
            if (!value)
                return std::nullopt;
            components.insert(components.end(), value->begin(), value->end());
        } while (skip(","));
        if (!skip(")"))
            return std::nullopt;
        const std::size_t n = shape.nColumns * shape.nRows;
        // One number is all of them, or those of the diagonal.
        if (components.size() == 1 && n > 1)
        {
            const double one = components.front();
            components.assign(n, shape.nColumns > 1 ? 0 : one);
            for (std::size_t i = 0; i < std::min(shape.nColumns, shape.nRows) && shape.nColumns > 1; ++i)
                components[i * shape.nRows + i] = one;
        }
        return components.size() == n ? std::optional(components) : std::nullopt;
    }

    static constexpr int cMostDepth = 64; // and numbers, together

    const std::vector<Token>& _tokens;
    std::size_t _at = 0;
    int _depth = 0;
};

void blank(std::string& text, std::size_t begin, std::size_t end)
{
    for (std::size_t i = begin; i < end; ++i)
        if (text[i] != '\n' && text[i] != '\r')
            text[i] = ' ';
}

// Takes the values out of what stands between "uniform" and ";".
void takeValues(const std::vector<Token>& statement, std::string& text, std::vector<UniformValue>& uniforms)
{
    constexpr std::array cPrecisions{"highp", "mediump", "lowp"};
    auto it = statement.begin();
    while (it != statement.end() && std::find(cPrecisions.begin(), cPrecisions.end(), it->text) != cPrecisions.end())
        ++it;
    if (it == statement.end())
        return;
    const std::string type(it++->text);
    while (it != statement.end())
    {
        const std::string name(it->text);
        while (it != statement.end() && it->text != "=" && it->text != ",")
            ++it;
        if (it != statement.end() && it->text == "=")
        {
            const std::size_t begin = it->begin;
            std::vector<Token> value;
            int depth = 0;
            for (++it; it != statement.end() && (depth > 0 || it->text != ","); ++it)
            {
                depth += it->text == "(" || it->text == "{" ? 1 : it->text == ")" || it->text == "}" ? -1 : 0;
                value.push_back(*it);
            }
            if (!value.empty())
                blank(text, begin, value.back().end);
            uniforms.push_back({name, type, ValueReader(value).read(type).value_or(std::vector<double>())});
        }
        if (it != statement.end())
            ++it;
    }
}

// The word behind # and the one behind that.
std::pair<std::string_view, std::string_view> wordsOf(std::string_view directive)
{
    Scanner scanner(directive.substr(1));
    const std::optional<Token> first = scanner.next(), second = scanner.next();
    return {first ? first->text : std::string_view(), second ? second->text : std::string_view()};
}

std::string makeHead(const std::vector<std::string>& extensions, bool givesPointSize)
{
    const Features& features = Features::get();
    std::string head = features.version >= 32 ? "#version 320 es\n" : "#version 310 es\n";
    bool hasNoPerspective = false;
    for (const char* const name : cExtensions)
        if (epoxy_has_gl_extension(name))
        {
            head += std::string("#extension ") + name + " : enable\n";
            hasNoPerspective = std::string_view(name) == "GL_NV_shader_noperspective_interpolation";
        }
    for (const std::string& extension : extensions)
        head += extension + '\n';
    if (!hasNoPerspective)
        head += "#define noperspective\n";
    if (givesPointSize)
        head += "#define main guiglMain\n";
    const auto addPrecision = [&head](const char* type) { head += std::string("precision highp ") + type + ";\n"; };
    std::for_each(cPreciseTypes.begin(), cPreciseTypes.end(), addPrecision);
    if (features.hasTextureBuffers)
        for (const char* const type : {"samplerBuffer", "isamplerBuffer", "usamplerBuffer"})
            addPrecision(type);
    return head + "#line 1\n";
}

} // namespace

ShaderText toES(std::string_view source, bool givesPointSize)
{
    ShaderText made{std::string(source), {}};
    std::vector<std::string> extensions;
    std::vector<Token> statement;
    bool isDesktop = false, isUniform = false, hasPointSize = false;
    int depth = 0;
    Scanner scanner(source);
    while (const std::optional<Token> token = scanner.next())
    {
        if (token->isDirective)
        {
            const auto [word, argument] = wordsOf(token->text);
            if (word == "version")
            {
                isDesktop = token->text.find(" es") == std::string_view::npos;
                blank(made.text, token->begin, token->end);
            }
            else if (word == "extension")
            {
                // They stand before everything else in OpenGL ES.
                const bool isRequired = token->text.find("require") != std::string_view::npos;
                if (isRequired || epoxy_has_gl_extension(std::string(argument).c_str()))
                    extensions.emplace_back(token->text);
                blank(made.text, token->begin, token->end);
            }
            continue;
        }
        hasPointSize = hasPointSize || token->text == "gl_PointSize";
        depth += token->text == "{" ? 1 : token->text == "}" ? -1 : 0;
        if (depth == 0 && token->text == "uniform")
            isUniform = true;
        else if (isUniform && depth == 0 && token->text == ";")
        {
            takeValues(statement, made.text, made.uniforms);
            statement.clear();
            isUniform = false;
        }
        else if (isUniform)
            statement.push_back(*token);
    }
    if (!isDesktop)
        return {std::string(source), {}};
    givesPointSize = givesPointSize && !hasPointSize;
    made.text.insert(0, makeHead(extensions, givesPointSize));
    if (givesPointSize)
        made.text += std::string("\n#undef main\nuniform float ") + cPointSizeUniform +
                     ";\nvoid main()\n{\n    gl_PointSize = " + cPointSizeUniform + ";\n    guiglMain();\n}\n";
    return made;
}

void setUniforms(unsigned int program, const std::vector<UniformValue>& uniforms)
{
    for (const UniformValue& uniform : uniforms)
    {
        const int location = glGetUniformLocation(program, uniform.name.c_str());
        if (location < 0)
            continue;
        const Shape* const pShape = findShape(uniform.type);
        if (uniform.components.empty() || pShape == nullptr)
        {
            vo::dbgLog("Warning! Program: OpenGL ES has no first values of uniforms, and that of %s is not understood: "
                       "it is 0",
                       uniform.name.c_str());
            continue;
        }
        std::array<float, 16> floats{};
        std::array<int, 16> ints{};
        std::array<unsigned int, 16> unsignedInts{};
        for (std::size_t i = 0; i < uniform.components.size(); ++i)
        {
            const double number = uniform.components[i];
            floats[i] = static_cast<float>(number);
            const double whole = std::clamp(number, -2147483648.0, 4294967295.0);
            unsignedInts[i] = static_cast<unsigned int>(static_cast<long long>(whole));
            ints[i] = static_cast<int>(unsignedInts[i]);
        }
        using Floats = void (*)(GLuint, GLint, GLsizei, const GLfloat*);
        using Ints = void (*)(GLuint, GLint, GLsizei, const GLint*);
        using UnsignedInts = void (*)(GLuint, GLint, GLsizei, const GLuint*);
        using Matrices = void (*)(GLuint, GLint, GLsizei, GLboolean, const GLfloat*);
        const std::array<Floats, 4> sendFloats{glProgramUniform1fv, glProgramUniform2fv, glProgramUniform3fv,
                                               glProgramUniform4fv};
        const std::array<Ints, 4> sendInts{glProgramUniform1iv, glProgramUniform2iv, glProgramUniform3iv,
                                           glProgramUniform4iv};
        const std::array<UnsignedInts, 4> sendUnsignedInts{glProgramUniform1uiv, glProgramUniform2uiv,
                                                           glProgramUniform3uiv, glProgramUniform4uiv};
        const std::array<std::array<Matrices, 3>, 3> sendMatrices{
            {{glProgramUniformMatrix2fv, glProgramUniformMatrix2x3fv, glProgramUniformMatrix2x4fv},
             {glProgramUniformMatrix3x2fv, glProgramUniformMatrix3fv, glProgramUniformMatrix3x4fv},
             {glProgramUniformMatrix4x2fv, glProgramUniformMatrix4x3fv, glProgramUniformMatrix4fv}}};
        if (pShape->nColumns > 1)
            sendMatrices[pShape->nColumns - 2][pShape->nRows - 2](program, location, 1, GL_FALSE, floats.data());
        else if (pShape->kind == 'f')
            sendFloats[pShape->nRows - 1](program, location, 1, floats.data());
        else if (pShape->kind == 'u')
            sendUnsignedInts[pShape->nRows - 1](program, location, 1, unsignedInts.data());
        else
            sendInts[pShape->nRows - 1](program, location, 1, ints.data());
    }
}

} // namespace gui::gl
