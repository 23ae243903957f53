#pragma once

#include "Fuzz.h"
#include "support/GLTrace.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <algorithm>
#include <array>
#include <optional>

namespace fuzz
{

/// Contexts, and objects of every kind in them, which do what an input says. Beside them stands what they should hold.
class GLWorld
{
public:
    GLWorld();

    /// Does one thing after the other until the input ends. Every GL call must be right, and nothing alive at the end.
    void live(Input input);

private:
    struct ProgramObject final : gui::gl::Program
    {
        void onLinked() override;
    };

    /// What is known of a list's commands.
    struct PlainList
    {
        std::size_t n = 0;
        gui::gl::Command* pLast = nullptr; // the last one, as long as it is known to be there
        bool isIndexed = false;            // some of them
        bool isTextured = false;
    };

    struct BufferSlot
    {
        std::optional<gui::gl::Buffer> object;
        PlainList list;
        std::size_t nIndicesInGL = 0;
        bool isCommitted = false;
        unsigned int context = 0; // of its GL objects, if it has a vertex array
    };

    struct ProgramSlot
    {
        std::optional<ProgramObject> object;
        unsigned int context = 0;
        gui::gl::Textures* pTextures = nullptr;
    };

    struct TextureSlot
    {
        std::optional<gui::gl::Textures> object;
        unsigned int context = 0;
    };

    template <typename Act>
    void forEachSlot(const Act& act)
    {
        std::ranges::for_each(_buffers, act);
        std::ranges::for_each(_programs, act);
        std::ranges::for_each(_textures, act);
    }

    void doNext(Input& input);
    void changeContext(Input& input);
    void endContext(unsigned int context);
    void replaceContext(Input& input);
    void makeCurrent(unsigned int context);
    void changeBuffer(Input& input);
    void initBuffer(BufferSlot& slot, Input& input);
    void appendTo(BufferSlot& slot, Input& input);
    void commit(BufferSlot& slot);
    void changeCommand(Input& input);
    void create(gui::gl::Command& command, Input& input);
    static void decorate(gui::gl::Command& command, Input& input);
    void changeProgram(Input& input);
    void changeTextures(Input& input);
    void append(TextureSlot& slot, Input& input);
    void draw(Input& input);
    bool canDraw(const PlainList& list, const BufferSlot& buffer, const ProgramSlot& program) const;
    void check();
    void end();

    gui::gl::CommandList& listOf(std::size_t i);
    PlainList& plainListOf(std::size_t i);

    static constexpr unsigned int cContexts = 3;
    static constexpr unsigned int cGone = cContexts + 1; // what had a context that ended

    test::GLTrace _gl{test::GLTrace::Strict};
    Quiet _quiet;
    std::array<char, cContexts + 1> _handles{};
    std::array<bool, cContexts + 1> _isAlive{};
    unsigned int _current = 0;
    std::array<BufferSlot, 3> _buffers;
    std::array<ProgramSlot, 2> _programs;
    std::array<TextureSlot, 2> _textures;
    std::optional<gui::gl::CommandList> _list;
    PlainList _plainList;
    glm::mat4 _matrix{1};
};

} // namespace fuzz
