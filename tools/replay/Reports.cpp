#include "Reports.h"

#include "CallText.h"
#include "Error.h"
#include "Names.h"
#include "Picture.h"
#include "StateTexts.h"

#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

namespace replay
{

namespace
{

std::string targetText(const gui::gl::FrameFile::Info& info, unsigned int framebuffer)
{
    return framebuffer == info.framebuffer ? "screen" : "framebuffer " + std::to_string(framebuffer);
}

// In one line, from what the application called to where it began; what the libraries do inside says little.
std::string callersText(const std::string& callers)
{
    constexpr int cMost = 6; // toolkits call deeply
    int n = 0;
    std::string text, called;
    for (std::size_t begin = 0; begin < callers.size() && n < cMost;)
    {
        const std::size_t end = std::min(callers.find('\n', begin), callers.size());
        const std::string line = callers.substr(begin, end - begin);
        begin = end + 1;
        const std::size_t open = line.find('('), plus = line.rfind('+');
        const bool isNamed = open != std::string::npos && plus != std::string::npos && open < plus;
        if (!line.starts_with("libguigl_") && !line.empty())
        {
            text += " < " + line;
            ++n;
        }
        else if (text.empty() && isNamed)
            called = line.substr(open + 1, plus - open - 1);
    }
    return called.empty() && !text.empty() ? text.substr(3) : called + text;
}

class Changes : public Player::Watcher
{
public:
    explicit Changes(const Player& player)
        : _player(player)
    {
    }

    void beforeDraw(const Step&) override
    {
        const GLuint framebuffer = _player.drawFramebuffer();
        if (!_pictures.contains(framebuffer))
            _pictures[framebuffer] = Picture::read(framebuffer, _player.screenSize());
        _now = stateTexts(_player);
    }

    void afterDraw(const Step& step) override
    {
        const GLenum error = glGetError();
        const GLuint framebuffer = _player.drawFramebuffer();
        Picture picture = Picture::read(framebuffer, _player.screenSize());
        const std::size_t n = picture.nDifferent(_pictures[framebuffer]);
        std::printf("%zu  %s: %zu pixels%s\n", step.draw, textOf(step.call, step.arguments).c_str(), n,
                    picture.pixels.empty() ? " (nothing to see in it)" : "");
        if (error != GL_NO_ERROR)
            std::printf("      OpenGL error %x\n", error);
        for (const auto& [what, text] : _now)
            if (const auto it = _before.find(what); it == _before.end())
            {
                if (text != "off")
                    std::printf("      %s: %s\n", what.c_str(), text.c_str());
            }
            else if (it->second != text)
                std::printf("      %s: %s, was %s\n", what.c_str(), text.c_str(), it->second.c_str());
        for (const auto& [what, text] : _before)
            if (!_now.contains(what) && !what.starts_with("uniform "))
                std::printf("      %s: none, was %s\n", what.c_str(), text.c_str());
        _before = std::move(_now);
        _pictures[framebuffer] = std::move(picture);
    }

private:
    const Player& _player;
    std::map<GLuint, Picture> _pictures;
    std::map<std::string, std::string> _before, _now;
};

class Times : public Player::Watcher
{
public:
    Times() { glGenQueries(1, &_query); }
    ~Times() override { glDeleteQueries(1, &_query); }
    Times(const Times&) = delete;
    Times& operator=(const Times&) = delete;

    void beforeDraw(const Step&) override { glBeginQuery(GL_TIME_ELAPSED, _query); }
    void afterDraw(const Step& step) override
    {
        glEndQuery(GL_TIME_ELAPSED);
        GLuint64 nanoseconds = 0;
        glGetQueryObjectui64v(_query, GL_QUERY_RESULT, &nanoseconds);
        const double milliseconds = static_cast<double>(nanoseconds) / 1e6;
        total += milliseconds;
        std::printf("%10.3f ms  %zu  %s\n", milliseconds, step.draw, textOf(step.call, step.arguments).c_str());
    }

    double total = 0;

private:
    GLuint _query = 0;
};

void printVertices(const FrameModel::Buffer& buffer, const FrameModel::VertexArray& vertexArray, unsigned int name)
{
    std::uint64_t n = UINT64_MAX;
    std::vector<std::pair<std::size_t, const FrameModel::Attribute*>> attributes;
    for (std::size_t i = 0; i < vertexArray.attributes.size(); ++i)
    {
        const FrameModel::Attribute& attribute = vertexArray.attributes[i];
        if (attribute.buffer != name || attribute.pBuffer.get() != &buffer || attribute.type != GL_FLOAT)
            continue;
        attributes.emplace_back(i, &attribute);
        const std::uint64_t end = attribute.offset + attribute.bytes;
        n = std::min(n, buffer.size < end ? 0 : (buffer.size - end) / attribute.stride + 1);
    }
    std::printf("vertex");
    for (const auto& [i, pAttribute] : attributes)
        std::printf("  attribute %zu (%d numbers%s)", i, static_cast<int>(pAttribute->n),
                    pAttribute->divisor != 0 ? " for each instance" : "");
    std::printf("\n");
    for (std::uint64_t row = 0; row < n; ++row)
    {
        std::printf("%6" PRIu64, row);
        for (const auto& [i, pAttribute] : attributes)
            for (std::int64_t k = 0; k < pAttribute->n; ++k)
            {
                const std::uint64_t at = pAttribute->offset + row * pAttribute->stride + 4 * std::uint64_t(k);
                float value = 0;
                if (at + sizeof value <= buffer.bytes.size())
                    std::memcpy(&value, &buffer.bytes[at], sizeof value);
                std::printf("%s%g", k == 0 ? "  " : " ", static_cast<double>(value));
            }
        std::printf("\n");
    }
}

void printIndices(const FrameModel::Buffer& buffer, std::size_t width)
{
    constexpr std::size_t cInLine = 12;
    for (std::size_t at = 0, i = 0; at + width <= buffer.size; at += width, ++i)
    {
        std::uint32_t value = 0;
        if (at + width <= buffer.bytes.size())
            std::memcpy(&value, &buffer.bytes[at], width);
        if (i % cInLine == 0)
            std::printf("%s%6zu ", i == 0 ? "" : "\n", i);
        std::printf(" %u", value);
    }
    std::printf("\n");
}

std::size_t widthOfIndices(const Step& step)
{
    for (std::size_t i = 0; i < step.arguments.size(); ++i)
        if (step.call.signature[i] == 'e')
            return step.arguments[i].integer == GL_UNSIGNED_BYTE    ? 1
                   : step.arguments[i].integer == GL_UNSIGNED_SHORT ? 2
                                                                    : 4;
    return 4;
}

} // namespace

void printDraws(const gui::gl::FrameFile& file)
{
    const gui::gl::FrameFile::Info& info = file.info();
    std::printf("Frame %u of %s, %u x %u pixels, %u sample%s, with OpenGL %s (%s)\n", info.frame, info.program.c_str(),
                info.width, info.height, info.samples, info.samples == 1 ? "" : "s", info.glVersion.c_str(),
                info.renderer.c_str());
    FrameModel model;
    std::string callers;
    std::size_t nCalls = 0;
    walk(file, model,
         [&](const Step& step)
         {
             if (step.part == gui::gl::FrameFile::Part::Frame)
                 ++nCalls;
             if (!step.isDraw())
                 return true;
             if (const std::string text = callersText(step.place.callers); text != callers)
                 std::printf("   from %s\n", (callers = text).c_str());
             std::string line = textOf(step.call, step.arguments) + " to " + targetText(info, model.drawFramebuffer());
             if (step.call.signature[0] == 'm')
                 line += ", program " + std::to_string(model.program()) + ", vertex array " +
                         std::to_string(model.vertexArray());
             if (const std::string place = textOf(step.place); !place.empty())
                 line += ", " + place;
             std::printf("%5zu  %s\n", step.draw, line.c_str());
             return true;
         });
    std::printf("%zu calls. Buffers:", nCalls);
    for (const auto& [name, pBuffer] : model.buffers())
        std::printf(" %u (%" PRIu64 " bytes)", name, pBuffer->size);
    std::printf("\n");
}

void printChanges(Player& player)
{
    Changes changes(player);
    player.play(SIZE_MAX, &changes);
}

void printTimes(Player& player)
{
    Times times;
    player.play(SIZE_MAX, &times);
    std::printf("%10.3f ms in all\n", times.total);
}

void printBuffer(const gui::gl::FrameFile& file, unsigned int name)
{
    FrameModel model;
    std::map<unsigned int, std::size_t> widths; // of buffers with indices
    walk(file, model,
         [&](const Step& step)
         {
             if (step.isDraw() && std::string_view(step.call.name).find("Elements") != std::string_view::npos)
                 if (const auto it = model.vertexArrays().find(model.vertexArray()); it != model.vertexArrays().end())
                     widths[it->second.elements] = widthOfIndices(step);
             return true;
         });
    const auto it = model.buffers().find(name);
    if (it == model.buffers().end())
        throw Error("there is no buffer " + std::to_string(name) + "; --list names those that there are");
    const FrameModel::Buffer& buffer = *it->second;
    std::printf("Buffer %u, %" PRIu64 " bytes\n", name, buffer.size);
    if (const auto width = widths.find(name); width != widths.end())
        return printIndices(buffer, width->second);
    for (const auto& [number, vertexArray] : model.vertexArrays())
        for (const FrameModel::Attribute& attribute : vertexArray.attributes)
            if (attribute.buffer == name && attribute.pBuffer == it->second && attribute.type == GL_FLOAT)
                return printVertices(buffer, vertexArray, name);
    printIndices(buffer, 1);
}

void printProgram(const gui::gl::FrameFile& file, unsigned int name)
{
    FrameModel model;
    gui::gl::ByteSpan bytes;
    walk(file, model,
         [&](const Step& step)
         {
             if (std::strcmp(step.call.name, "guiglProgram") == 0 && step.arguments[0].integer == name)
                 bytes = {static_cast<const unsigned char*>(step.arguments[1].pointer), step.arguments[1].nBytes};
             return true;
         });
    if (bytes.empty())
        throw Error("there is no program " + std::to_string(name) + "; --list names those that draw");
    gui::gl::ByteReader reader(bytes);
    for (auto n = reader.number<std::uint32_t>(); n > 0 && reader.isOk(); --n)
    {
        const auto type = reader.number<std::uint32_t>();
        std::string text(reader.text());
        // What a terminal would take for orders.
        for (char& letter : text)
            if (static_cast<unsigned char>(letter) < ' ' && letter != '\n' && letter != '\t')
                letter = '?';
        std::printf("// %s\n%s\n", nameOf(type).c_str(), text.c_str());
    }
}

} // namespace replay
