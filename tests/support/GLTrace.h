#pragma once

#include "GLHooks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace test
{

/// Takes the place of GL while it lives, and records the calls as text and in order: "glBindBuffer(0x8892, 1)". One at
/// a time. Forward passes the calls on to the driver and needs a current context. Null is a small GL of its own that
/// draws nothing: it hands out the names 1, 2, 3, ... per kind of object, compiles and links whatever it gets, and
/// answers what it was told to. It needs neither a driver nor a context. Strict is such a GL of several contexts that
/// lets nothing pass: every name that a call uses has to be alive in the current context, and what a call needs has to
/// be bound. There, names are never the same in two contexts or for two kinds, nor handed out twice, and it finds the
/// locations of all uniforms. In the texts, enumerations, bits and names are hexadecimal from 0x100 on, other integers
/// decimal, floats as short as %g makes them; arrays stand in brackets; offsets into a bound buffer are decimal,
/// pointers to data or to a result read "ptr", null pointers 0.
class GLTrace : private GLListener
{
public:
    enum Mode
    {
        Forward,
        Null,
        Strict
    };

    using Kind = GLKind;
    using Context = unsigned int; ///< any number; 0 is none

    explicit GLTrace(Mode mode);
    ~GLTrace() override { stopListening(); }

    /// Whether calls are kept as text from now on; they are at first, but for Strict.
    void record(bool isOn) { _isRecording = isOn; }

    /// The calls since the last clear() or only().
    const std::vector<std::string>& calls() const { return _calls; }
    void clear() { _calls.clear(); }

    /// How many of them are calls of one function: count("glGenBuffers").
    std::size_t count(std::string_view function) const;

    /// Whether exactly these calls were made since the last check; forgets them.
    testing::AssertionResult only(const std::vector<std::string>& expected);

    /// Whether these calls were made in this order, with any others between them; forgets nothing.
    testing::AssertionResult inOrder(const std::vector<std::string>& expected) const;

    /// Makes the n-th next call of a glGen* or glCreate* function yield 0 for its names, without reaching the driver.
    void failNext(std::string_view function, unsigned int nth = 1);

    /// Counts from 1 again, and refuses the n-th call that a driver may refuse; 0 refuses none. Objects that it should
    /// make are 0, what it should compile or link fails, and what needs memory gives GL_OUT_OF_MEMORY.
    void refuseNth(unsigned int n);
    unsigned int nRefusable() const { return _nRefusable; }
    const std::string& refused() const { return _refused; }

    /// The names generated while this trace lived and not deleted since, in ascending order. But with Forward, deleting
    /// anything else but 0 fails the test, or with Strict is a finding.
    std::vector<unsigned int> aliveNames(Kind kind) const;
    testing::AssertionResult nothingAlive() const;

    /// How many names are alive: of all contexts, of one, of a kind in one.
    std::size_t nAlive() const;
    std::size_t nAlive(Context context) const;
    std::size_t nAlive(Context context, Kind kind) const;

    /// Strict only: makes a context current, and makes it if it is not there. In the other modes 1 is current always.
    void makeCurrent(Context context);
    Context current() const { return _current; }
    /// Ends a context. Its names end with it, and are counted no more.
    void destroy(Context context);
    /// Strict only: what was wrong since the last call.
    std::vector<std::string> takeFindings() { return std::exchange(_findings, {}); }

    /// But with Forward, until compileAndLinkAll: a stage that doesn't compile or programs that don't link, and the
    /// info log.
    void failCompilation(unsigned int stage, std::string infoLog) { _badStages[stage] = std::move(infoLog); }
    void failLinking(std::string infoLog) { _badStages[cLinking] = std::move(infoLog); }
    void compileAndLinkAll() { _badStages.clear(); }

    /// Null only: a uniform's location in every program. Names that were not set have the location -1.
    void setUniformLocation(const std::string& name, int location) { _uniformLocations[name] = location; }

    /// Null only: what glGetIntegerv answers; 0 for names that were not set. The limits of texture image units are 16
    /// and 80 at first.
    void setLimit(unsigned int name, int value) { _limits[name] = value; }

    /// Null only: the errors that the next calls of glGetError answer; GL_NO_ERROR after them.
    void setErrors(std::vector<unsigned int> errors) { _errors = std::move(errors); }

    /// What the last glBufferData for a target got, as numbers of one type: lastBuffer<float>(GL_ARRAY_BUFFER).
    template <typename T>
    std::vector<T> lastBuffer(unsigned int target) const
    {
        const std::vector<unsigned char>& bytes = _bufferData.at(target);
        std::vector<T> values(bytes.size() / sizeof(T));
        std::copy(bytes.begin(), bytes.end(), reinterpret_cast<unsigned char*>(values.data()));
        return values;
    }

    /// What the last glTexImage2D got: the bytes that GL reads from the pointer, rows padded to a multiple of 4 bytes,
    /// and none behind the last row. Empty for a null pointer.
    const std::vector<unsigned char>& lastImage() const { return _lastImage; }

private:
    static constexpr unsigned int cLinking = 0;

    struct VertexArray
    {
        unsigned int elementBuffer = 0;
        std::map<unsigned int, unsigned int> attributeBuffers; // by location
        std::set<unsigned int> enabled;
    };
    struct State
    {
        std::map<Kind, std::set<unsigned int>> alive;
        std::set<unsigned int> linked; // programs
        std::map<unsigned int, VertexArray> vertexArrays;
        std::map<std::pair<unsigned int, unsigned int>, unsigned int> textures; // by unit and target
        unsigned int vertexArray = 0;
        unsigned int arrayBuffer = 0;
        unsigned int program = 0;
        unsigned int activeUnit = 0;
    };

    bool answer(const GLEntry& entry, GLArguments arguments, long long& result) override;
    void note(const GLEntry& entry, GLArguments arguments, long long result) override;

    bool isRefused(const GLEntry& entry);
    void refuse(const GLEntry& entry, GLArguments arguments);
    bool answerForRefused(std::string_view function, GLArguments arguments, long long& result);
    long long handOutNames(const GLEntry& entry, GLArguments arguments);
    long long answerNull(std::string_view function, GLArguments arguments);
    void noteNames(const GLEntry& entry, GLArguments arguments, long long result);
    void keepData(std::string_view function, GLArguments arguments);

    void found(const GLEntry& entry, const std::string& what);
    void checkName(const GLEntry& entry, Kind kind, unsigned int name);
    void check(const GLEntry& entry, GLArguments arguments);
    void checkDraw(const GLEntry& entry, GLArguments arguments);
    void forget(Kind kind, unsigned int name);
    void bind(std::string_view function, GLArguments arguments);
    unsigned int boundTexture(unsigned int target);

    const Mode _mode;
    bool _isRecording;
    std::vector<std::string> _calls;
    std::map<Context, State> _contexts;
    Context _current = 1;
    State* _pState = nullptr; // of the current context
    std::map<Kind, unsigned int> _lastNames;
    std::vector<std::string> _findings;

    std::map<std::string, std::vector<unsigned int>, std::less<>> _failures; // how many calls on each function fails
    unsigned int _refuseAt = 0;
    unsigned int _nRefusable = 0;
    std::string _refused;
    std::map<unsigned int, std::string> _badStages;                 // info logs
    std::map<std::pair<Kind, unsigned int>, std::string> _badNames; // of shaders and programs, with their info logs
    std::map<unsigned int, unsigned int> _stages;                   // of each shader
    std::map<std::string, int> _uniformLocations;
    std::map<unsigned int, int> _limits;
    std::vector<unsigned int> _errors;

    std::map<unsigned int, std::vector<unsigned char>> _bufferData;
    std::vector<unsigned char> _lastImage;
};

} // namespace test
