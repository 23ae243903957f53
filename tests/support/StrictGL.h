#pragma once

#include "GLHooks.h"

#include <array>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace test
{

/// A GL of several contexts that draws nothing and lets nothing pass: every name that a call uses has to be alive in the
/// current context, and what a call needs has to be bound. Names are never the same in two contexts, nor handed out
/// twice, so that no mistake goes unseen. Compiles and links whatever it gets; needs neither a driver nor a context.
class StrictGL : public GLListener
{
public:
    using Context = unsigned int; ///< any number; 0 is none
    using Kind = GLTrace::Kind;

    StrictGL() { startListening(); }
    ~StrictGL() override { stopListening(); }

    /// Makes a context current, and makes it if it is not there.
    void makeCurrent(Context context);
    Context current() const { return _current; }

    /// Ends a context. Its names end with it, and are counted no more.
    void destroy(Context context);

    std::vector<std::string> takeFindings();

    /// How many names are alive: of all contexts, of one, of a kind in one.
    std::size_t nAlive() const;
    std::size_t nAlive(Context context) const;
    std::size_t nAlive(Context context, Kind kind) const;

    /// From now on the n-th call that makes names yields 0; 0 for never.
    void refuseNth(unsigned int n) { _refuseIn = n; }

    /// A draw call and the state that it met.
    struct Draw
    {
        bool operator==(const Draw&) const = default;

        unsigned int mode = 0;
        unsigned int first = 0; ///< vertex, or byte of the indices
        unsigned int count = 0;
        unsigned int nInstances = 1;
        bool isIndexed = false;
        unsigned int texture = 0;                     ///< of the active unit, 2D
        float pointSize = 1;                          ///< of points
        int patchVertices = 3;                        ///< of patches
        std::map<int, std::vector<float>> uniforms{}; ///< of the program, vectors and matrices
    };

    std::vector<Draw> takeDraws() { return std::exchange(_draws, {}); }

private:
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
        std::map<unsigned int, std::map<int, std::vector<float>>> uniforms;     // by program
        unsigned int vertexArray = 0;
        unsigned int arrayBuffer = 0;
        unsigned int program = 0;
        unsigned int activeUnit = 0;
        float pointSize = 1;
        int patchVertices = 3;
    };

    bool answer(const GLEntry& entry, GLArguments arguments, long long& result) override;
    void note(const GLEntry& entry, GLArguments arguments, long long result) override;

    void found(const GLEntry& entry, const std::string& what);
    void checkName(const GLEntry& entry, Kind kind, unsigned int name);
    void checkState(const GLEntry& entry, GLArguments arguments);
    void checkDraw(const GLEntry& entry, GLArguments arguments);
    void make(const GLEntry& entry, GLArguments arguments, long long& result);
    void forget(Kind kind, unsigned int name);
    void bind(std::string_view function, GLArguments arguments);
    void answerQuery(std::string_view function, GLArguments arguments, long long& result);
    unsigned int boundTexture(unsigned int target);

    std::map<Context, State> _contexts;
    Context _current = 0;
    State* _pState = nullptr;              // of the current context
    std::map<std::string, int> _locations; // of uniforms
    unsigned int _lastName = 0;
    unsigned int _refuseIn = 0;
    std::vector<std::string> _findings;
    std::vector<Draw> _draws;
};

} // namespace test
