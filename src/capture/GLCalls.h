#pragma once

#include "PixelFormats.h"

#include <td/Types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

// The GL calls of captured frames, one description of each for those who write files and those who read them.

namespace gui::gl
{

/// What a call is given.
struct CallArgument
{
    std::int64_t integer = 0; ///< also an enumeration, a name, a location
    double real = 0;
    const void* pointer = nullptr; ///< to data; or an offset in a buffer
    std::uint64_t nBytes = 0;      ///< of the data
};

using CallArguments = std::span<const CallArgument>;

/// One call that captured frames may have. What isn't described isn't captured, and never done by who reads a file.
struct GLCall
{
    static constexpr std::size_t cMostArguments = 10;

    enum class Role : td::BYTE
    {
        Plain,
        Draw,     ///< changes pixels
        Generate, ///< (count, names)
        Delete,   ///< (count, names)
        Note,     ///< no call of GL's: the file says something
        Heard     ///< captured in another form: in no file
    };

    /// What has names.
    enum class Kind : td::BYTE
    {
        None,
        Buffer,
        VertexArray,
        Texture,
        Renderbuffer,
        Framebuffer,
        Program
    };

    /// Of what an argument points to, how many bytes GL reads. Nothing for arguments that are none.
    using Bytes = std::optional<std::uint64_t> (*)(CallArguments arguments, std::size_t i, const PixelStore& store);

    const char* name;
    /// A letter for each parameter. e: enumeration; m: mode of a draw; c: buffers to clear; i: integer; u: without a
    /// sign; h: number in hexadecimal, masks and bits; b: on or off; f, d: real; z: size; o: offset; l: location of a
    /// uniform; B, A, T, R, F, P: name by kind; n: names, as many as the argument before says; p: data; q: data or
    /// null.
    const char* signature;
    Role role;
    Kind kind; ///< of the names that are generated or deleted
    Bytes bytes;
    int version; ///< of GL that has it, 41 for 4.1; older ones with the extension
    const char* extension;
    const void* slot;               ///< the loader's pointer to it
    void (*invoke)(CallArguments);  ///< null for notes
    void (*install)(const GLCall&); ///< null for notes
    void (*restore)();

    std::size_t nArguments() const;
    static Kind kindOf(char letter);

    static std::span<const GLCall> all();
    /// @return null when there is none of this name
    static const GLCall* find(const char* name);
    static const GLCall& of(const void* slot);
    std::size_t index() const { return static_cast<std::size_t>(this - all().data()); }
};

/// Hears of the calls between install and restore.
class CallListener
{
public:
    virtual ~CallListener() = default;
    virtual void before(const GLCall& call, CallArguments arguments) = 0;
    virtual void after(const GLCall& call, CallArguments arguments) = 0;

    static inline CallListener* s_pCurrent = nullptr;
};

} // namespace gui::gl
