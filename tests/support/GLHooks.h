#pragma once

#include <concepts>
#include <span>
#include <string>

// How the tests take the place of GL: entry points that are replaced, and who hears of their calls.

namespace test
{

struct GLArgument
{
    template <std::integral T>
    explicit GLArgument(T value)
        : integer(static_cast<long long>(value))
    {
    }
    explicit GLArgument(float value)
        : real(value)
    {
    }
    explicit GLArgument(const void* value)
        : pointer(value)
    {
    }

    unsigned int name() const { return static_cast<unsigned int>(integer); }
    template <typename T>
    const T* data() const
    {
        return static_cast<const T*>(pointer);
    }
    template <typename T>
    T* result() const
    {
        return static_cast<T*>(const_cast<void*>(pointer));
    }

    long long integer = 0;
    double real = 0;
    const void* pointer = nullptr;
};

using GLArguments = std::span<const GLArgument>;

/// What GL gives names to.
enum class GLKind
{
    Buffer,
    VertexArray,
    Texture,
    Shader,
    Program
};

/// One GL entry point that is replaced.
struct GLEntry
{
    enum class Role
    {
        Plain,
        Generate, ///< (count, names)
        Create,   ///< returns the name
        Delete    ///< (count, names) or (name)
    };

    const char* function;
    /// One letter for each parameter. e: enumeration or bits; B, A, T, S, P: name of a buffer, vertex array, texture,
    /// shader or program; i: integer; f: float; p: data, result or offset; s: text; n: names, as many as the parameter
    /// before says; otherwise vectors or matrices, as many as the second parameter says, of 1, 2, 3, 4, 9 or (m) 16
    /// numbers, floats for a function that ends in "fv".
    const char* parameters;
    GLEntry::Role role;
    GLKind kind; ///< of what is made or deleted
    void (*install)(const GLEntry&);
    void (*restore)();

    bool makesNames() const { return role == Role::Generate || role == Role::Create; }
};

/// The call as a line: "glBindBuffer(0x8892, 1)".
std::string textOf(const GLEntry& entry, GLArguments arguments);

/// Hears of every GL call between start and stop. One at a time.
class GLListener
{
public:
    GLListener() = default;
    virtual ~GLListener() = default;
    GLListener(const GLListener&) = delete;
    GLListener& operator=(const GLListener&) = delete;

    /// True when the call is answered here, false when the driver has to answer it.
    virtual bool answer(const GLEntry& entry, GLArguments arguments, long long& result) = 0;

    virtual void note(const GLEntry& entry, GLArguments arguments, long long result) = 0;

protected:
    void startListening();
    static void stopListening();
};

} // namespace test
