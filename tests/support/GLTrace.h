#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace test
{

/// Records the GL calls made while it lives, as text and in order: "glBindBuffer(0x8892, 1)". One trace at a time.
/// Forward passes them on to the driver and needs a current context. Null is a small GL of its own that draws nothing:
/// it hands out the names 1, 2, 3, ... per kind of object, compiles and links whatever it gets, and answers what it was
/// told to. It needs neither a driver nor a context.
/// In the texts, enumerations, bits and names are hexadecimal from 0x100 on, other integers decimal, floats as short as
/// %g makes them; arrays stand in brackets; offsets into a bound buffer are decimal, pointers to data or to a result
/// read "ptr", null pointers 0.
class GLTrace
{
public:
    enum Mode
    {
        Forward,
        Null
    };

    enum class Kind
    {
        Buffer,
        VertexArray,
        Texture,
        Shader,
        Program
    };

    explicit GLTrace(Mode mode);
    ~GLTrace();
    GLTrace(const GLTrace&) = delete;
    GLTrace& operator=(const GLTrace&) = delete;

    /// The calls since the last clear() or only().
    const std::vector<std::string>& calls() const;
    void clear();

    /// How many of them are calls of one function: count("glGenBuffers").
    std::size_t count(std::string_view function) const;

    /// Whether exactly these calls were made since the last check; forgets them.
    testing::AssertionResult only(const std::vector<std::string>& expected);

    /// Whether these calls were made in this order, with any others between them; forgets nothing.
    testing::AssertionResult inOrder(const std::vector<std::string>& expected) const;

    /// Makes the n-th next call of a glGen* or glCreate* function yield 0 for its names, without reaching the driver.
    void failNext(std::string_view function, unsigned int nth = 1);

    /// The names generated while this trace lived and not deleted since, in ascending order. With Null, deleting
    /// anything else but 0 fails the test.
    std::vector<unsigned int> aliveNames(Kind kind) const;

    testing::AssertionResult nothingAlive() const;

    /// Null only, until compileAndLinkAll: a stage that doesn't compile or programs that don't link, and the info log.
    void failCompilation(unsigned int stage, std::string infoLog);
    void failLinking(std::string infoLog);
    void compileAndLinkAll();

    /// Null only: a uniform's location in every program. Names that were not set have the location -1.
    void setUniformLocation(const std::string& name, int location);

    /// Null only: what glGetIntegerv answers; 0 for names that were not set. The limits of texture image units are 16
    /// and 80 at first.
    void setLimit(unsigned int name, int value);

    /// Null only: the errors that the next calls of glGetError answer; GL_NO_ERROR after them.
    void setErrors(std::vector<unsigned int> errors);

    const std::string& shaderSource(unsigned int shader) const;

    const std::vector<unsigned char>& lastBufferData(unsigned int target) const;

    /// The same as numbers of one type: lastBuffer<float>(GL_ARRAY_BUFFER).
    template <typename T>
    std::vector<T> lastBuffer(unsigned int target) const;

    /// What the last glTexImage2D got: the bytes that GL reads from the pointer, rows padded to a multiple of 4 bytes, and
    /// none behind the last row. Empty for a null pointer.
    const std::vector<unsigned char>& lastImage() const;

    struct State;

private:
    std::unique_ptr<State> _state;
};

template <typename T>
std::vector<T> GLTrace::lastBuffer(unsigned int target) const
{
    const std::vector<unsigned char>& bytes = lastBufferData(target);
    std::vector<T> values(bytes.size() / sizeof(T));
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<unsigned char*>(values.data()));
    return values;
}

} // namespace test
