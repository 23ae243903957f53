// Captured frames: as files, and as calls that a checksum fits; what is accepted reads nothing that isn't there.

#include "Fuzz.h"

#include <replay/Error.h>
#include <replay/Walk.h>

#include <epoxy/gl.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace fuzz::frame
{

namespace
{

using gui::gl::FrameFile;

// A file with these calls in a part of it.
std::vector<unsigned char> fileWith(const std::string& calls, std::size_t part)
{
    char* pBytes = nullptr;
    std::size_t n = 0;
    std::FILE* const pFile = open_memstream(&pBytes, &n);
    FrameFile::Info info;
    info.width = info.height = 16;
    std::array<std::string, 3> parts;
    parts[part] = calls;
    const bool isWritten = FrameFile::write(pFile, info, parts);
    std::fclose(pFile);
    const std::unique_ptr<char, void (*)(void*)> bytes(pBytes, std::free);
    require(isWritten, "a file is written");
    return {pBytes, pBytes + n};
}

// Said once more, by somebody who looks at each vertex.
void checkArrays(const replay::FrameModel& model, std::int64_t first, std::int64_t n)
{
    const replay::FrameModel::VertexArray& vertexArray = model.vertexArrays().at(model.vertexArray());
    for (const replay::FrameModel::Attribute& attribute : vertexArray.attributes)
        for (std::int64_t i = first; attribute.isEnabled && attribute.divisor == 0 && i < first + n && i < 4096; ++i)
            require(i >= 0 && attribute.offset + static_cast<std::uint64_t>(i) * attribute.stride + attribute.bytes <=
                                  attribute.pBuffer->size,
                    "a vertex that is drawn is in its buffer");
}

void walkAll(const FrameFile& file)
{
    replay::FrameModel model;
    try
    {
        replay::walk(file, model,
                     [&model](const replay::Step& step)
                     {
                         require(step.call.role != replay::GLCall::Role::Heard, "no call that files don't have");
                         if (step.call.slot == &glDrawArrays)
                             checkArrays(model, step.arguments[1].integer, step.arguments[2].integer);
                         for (const auto& [name, pBuffer] : model.buffers())
                             require(pBuffer->bytes.size() <= pBuffer->size, "a buffer holds what it has room for");
                         return true;
                     });
    }
    catch (const replay::Error& error)
    {
        require(*error.what() != '\0', "a line says why a file was refused");
    }
}

void run(const std::uint8_t* bytes, std::size_t n)
{
    Input input(bytes, n);
    const unsigned int kind = input.below(4);
    FrameFile file;
    if (kind == 3)
    {
        const std::string text = input.text();
        if (file.read({text.begin(), text.end()}).empty())
            walkAll(file);
        return;
    }
    require(file.read(fileWith(input.text(), kind)).empty(), "what was written is read");
    walkAll(file);
}

const Target cTarget("frame", run);

} // namespace

} // namespace fuzz::frame
