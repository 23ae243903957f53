#pragma once

#include "Bytes.h"
#include "GLCalls.h"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace gui::gl
{

/// A frame in a file: what it was drawn with, and three runs of calls.
///
/// The file: 8 bytes "GUIGLFRM", the version and a zero, of 4 bytes each, and five chunks in this order: "INFO",
/// "CALL" (the calls by name and parameters, whose numbers the others use), "OBJS", "STAT", "FRAM". A chunk: 4 bytes of
/// its name, CRC-32 of its content, the content's size in 8 bytes, the content, zeros up to a multiple of 8. All
/// numbers are little-endian.
class FrameFile
{
public:
    static constexpr std::uint32_t cVersion = 1;

    struct Info
    {
        std::string program;  ///< that drew it
        std::string renderer; ///< of GL
        std::string glVersion;
        std::uint32_t frame = 1; ///< its number, from 1
        std::uint32_t width = 0, height = 0;
        std::uint32_t samples = 1;     ///< of the framebuffer 0
        std::uint32_t framebuffer = 0; ///< that the frame ended in
        std::uint32_t depthBits = 24, stencilBits = 8;
    };

    enum class Part
    {
        Objects, ///< makes what the frame uses, as it was when the frame began
        State,   ///< sets GL's state as it was then
        Frame
    };
    static constexpr std::array cParts{Part::Objects, Part::State, Part::Frame};

    /// Writes a file. @return what is wrong, in words; empty when nothing is
    static std::string write(const std::string& path, const Info& info, const std::array<std::string, 3>& parts);
    static bool write(std::FILE* pFile, const Info& info, const std::array<std::string, 3>& parts);

    /// Takes a file's bytes. All is checked but the calls, which are as they are read. @return what is wrong
    std::string read(std::vector<unsigned char> bytes);
    /// Reads a file. @return what is wrong
    std::string load(const std::string& path);

    const Info& info() const { return _info; }
    std::span<const GLCall* const> calls() const { return _calls; }
    ByteSpan part(Part part) const { return _parts[static_cast<std::size_t>(part)]; }

private:
    std::string readInfo(ByteSpan bytes);
    std::string readCalls(ByteSpan bytes);

    std::vector<unsigned char> _bytes;
    Info _info;
    std::vector<const GLCall*> _calls;
    std::array<ByteSpan, 3> _parts;
};

} // namespace gui::gl
