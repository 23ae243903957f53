#pragma once

#include "Fuzz.h"
#include "support/StrictGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <array>
#include <optional>

namespace fuzz
{

/// Contexts, and objects of every kind in them, which do what an input says. Beside them stands what they should hold,
/// and what their commands should draw.
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

    struct PlainCommand
    {
        test::StrictGL::Draw draw;
        gui::gl::Command::Type type{};
        gui::gl::Command::DrawSubType subType{};
        td::Color color{};
        unsigned int unit = 0, index = 0; // of a texture
        const glm::mat4* pMatrix = nullptr;
        bool isEncoded = false;
    };

    struct PlainList
    {
        std::vector<PlainCommand> commands;
        gui::gl::Command* pLast = nullptr; // the last command, as long as it is known to be there
    };

    struct BufferSlot
    {
        std::optional<gui::gl::Buffer> object;
        PlainList list;
        std::size_t nVertexFloats = 0, nInstanceFloats = 0; // of the layout
        std::size_t nFloats = 0, nIndices = 0;              // appended
        std::size_t nIndicesInGL = 0;
        bool isCommitted = false;
        unsigned int context = 0; // of its GL objects, if it has a vertex array
    };

    struct ProgramSlot
    {
        std::optional<ProgramObject> object;
        unsigned int context = 0;
        gui::gl::Textures* pTextures = nullptr;
        std::map<int, std::vector<float>> uniforms;
    };

    struct TextureSlot
    {
        std::optional<gui::gl::Textures> object;
        unsigned int context = 0;
    };

    void doNext(Input& input);
    void changeContext(Input& input);
    void endContext(unsigned int context);
    void makeCurrent(unsigned int context);
    void changeBuffer(Input& input);
    void initBuffer(BufferSlot& slot, Input& input);
    void appendTo(BufferSlot& slot, Input& input);
    void commit(BufferSlot& slot);
    void emptyBuffer(BufferSlot& slot);
    void changeCommand(Input& input);
    void create(PlainCommand& plain, gui::gl::Command& command, Input& input);
    void createMatrix(PlainCommand& plain, gui::gl::Command& command, Input& input);
    void decorate(PlainCommand& plain, gui::gl::Command& command, Input& input);
    void changeProgram(Input& input);
    void changeTextures(Input& input);
    void append(TextureSlot& slot, Input& input);
    void deactivate();
    void draw(Input& input);
    bool canDraw(const PlainList& list, const BufferSlot& buffer, const ProgramSlot& program) const;
    std::vector<test::StrictGL::Draw> expectedDraws(const PlainList& list, ProgramSlot& program, std::size_t first,
                                                    std::size_t count);
    void check();
    void end();

    gui::gl::CommandList& listOf(std::size_t i);
    PlainList& plainListOf(std::size_t i);

    static constexpr unsigned int cContexts = 3;
    static constexpr unsigned int cGone = cContexts + 1; // what had a context that ended

    test::StrictGL _gl;
    Quiet _quiet;
    std::array<char, cContexts + 1> _handles{};
    std::array<bool, cContexts + 1> _isAlive{};
    unsigned int _current = 0;
    std::array<BufferSlot, 3> _buffers;
    std::array<ProgramSlot, 2> _programs;
    std::array<TextureSlot, 2> _textures;
    std::optional<gui::gl::CommandList> _list;
    PlainList _plainList;
    glm::mat4 _matrices[2];
    // The commands' memory of what they sent to the program that is active.
    const ProgramSlot* _pActive = nullptr;
    td::Color _lastColor{};
};

} // namespace fuzz
