#pragma once

#include "Primitive.h"
#include "Textures.h"

#include <td/Color.h>
#include <td/ColorID.h>
#include <td/Export.h>
#include <td/Types.h>

#include <glm/fwd.hpp>

#include <cstddef>
#include <type_traits>

namespace gui::gl
{

/// One recorded step of drawing: a draw call over a range of the active buffer, with a colour or a texture to set first
/// if need be, or a matrix to send to the current program.
///
/// It is filled by one create operation and the setters, then encoded, which chooses the function that will perform it;
/// executing it then is one call. Values of colour and texture may change after encoding, what kind of thing is sent
/// may not. Commands are obtained from a CommandList, a Buffer or a Program and live there.
///
/// Misuse is a programming error (an assertion naming the condition) and leaves the command as it was: a second create
/// without reset, a colour where a texture was set, an unknown primitive, and what the operations name beside that.
class GUIGL_API Command
{
public:
    /// What a command does when it is executed.
    enum class Type : td::BYTE
    {
        None,
        DrawArrays,
        DrawArrayPoints,
        DrawArrayPatches,
        DrawElementPoints,
        DrawElementPatches,
        DrawElements,
        DrawArraysInstanced,
        DrawElementsInstanced,
        MVPSetter,
        UniformSetter,
        DrawAll
    };

    /// What a draw command sends first: nothing, a colour of 3 or of 4 components, or a texture.
    enum class DrawSubType : td::BYTE
    {
        None = 0,
        DrawWithClr3 = 1,
        DrawWithClr4 = 3,
        DrawWithTexture = 5
    };

    /// One more uniform for a matrix command. What is sent, by type:
    /// 1  an unsigned int from value[0]      2  a texture unit's number from value[0], for a sampler
    /// 3  a td::ColorID in value[0] as vec3  4  red, green, blue in value[0..2] as vec3 (bytes / 255)
    /// 5  red, green, blue, alpha in value[0..3] as vec4 (bytes / 255)
    struct _additinalUniform
    {
        td::BYTE type = 0;
        td::BYTE location = 0;
        td::BYTE value[16] = {};
    };

    Command();

    /// Vertices first to first + count - 1 of the active buffer. Both below 2^31.
    void createDrawArrays(Primitive primitive, std::size_t first, unsigned int count);
    /// The vertices that indices first to first + count - 1 name. first below 2^32, count below 2^31.
    void createDrawElements(Primitive primitive, std::size_t first, unsigned int count);
    void createDrawArraysInstanced(Primitive primitive, std::size_t first, unsigned int count, unsigned int nInstances);
    void createDrawElementsInstanced(Primitive primitive, std::size_t first, unsigned int count,
                                     unsigned int nInstances);
    /// @param pointSize  diameter in device pixels
    void createDrawArrayPoints(std::size_t first, unsigned int count, float pointSize);
    void createDrawElementPoints(std::size_t first, unsigned int count, float pointSize);
    /// All that the buffer that is active when the command is executed has in GL then: its indices, if it has or had
    /// some, else its vertices, and that once for each of its instances, if its layout has them. A buffer that has
    /// grown since the recording is drawn as it is now (see Buffer::setDynamic); an empty one draws nothing.
    /// @param first  how many indices, or vertices, are left out at the beginning. Below 2^31
    void createDrawAll(Primitive primitive, std::size_t first = 0);
    /// For tessellation shaders. @param nVertices  a multiple of verticesPerPatch, which is above 0
    void createDrawArrayPatches(std::size_t first, unsigned int nVertices, int verticesPerPatch);
    void createDrawElementPatches(std::size_t first, unsigned int nIndices, int verticesPerPatch);

    /// Sends a matrix to the current program's model-view-projection uniform, then the further uniforms.
    /// @param pMatrix    not owned, not copied: read at each execution
    /// @param pUniforms  n more uniforms, copied; may be null. See setAdditionalUniforms for how many fit
    void createMVPSetter(const glm::mat4* pMatrix, _additinalUniform* pUniforms = nullptr, unsigned char n = 0);

    /// Records uniforms alone. Such a command can be filled and read, but not encoded: use a matrix command to send
    /// them.
    /// @return as setAdditionalUniforms
    bool createUniformSetter(_additinalUniform* pUniforms, unsigned char n);

    /// Makes a DrawArrays or DrawElements command an instanced one; takes effect with the next encode. On another kind
    /// it writes "Error! Command::setNumberOfIstances can be only called after createDrawElements or createDrawArrays!"
    /// and asserts. A command with an RGBA colour has no room for it (an assertion).
    void setNumberOfInstances(unsigned int n);

    /// The colour to send, red, green and blue, to the program's colour uniform of 3 components. What is no colour of
    /// the table says so in a td::Color ("#204060"), whose alpha is left out here.
    void setColor(td::ColorID id);
    void setColor(td::Color color);
    /// The colour to send, to the program's colour uniform of 4 components. Instanced, point and patch commands have no
    /// room for it (an assertion).  @param alpha  0 to 255; it takes the place of the colour's own, which is sent by
    ///                                             setColor(color, color.alpha())
    void setColor(td::ColorID id, unsigned char alpha);
    void setColor(td::Color color, unsigned char alpha);
    void setColor(td::ColorID id, int alpha);
    void setColor(td::Color color, int alpha);
    /// @param alpha  0 to 1; times 255, truncated, of which the low byte counts; below 0 and NaN give 0
    void setColor(td::ColorID id, float alpha);
    void setColor(td::Color color, float alpha);
    void setColor(td::ColorID id, double alpha);
    void setColor(td::Color color, double alpha);

    /// The texture to bind: a position in the texture set of the program that is current when the command is executed.
    /// @param index  0 to 255; negative values of char stand for 128 to 255
    void setTexture(Textures::Unit unit, char index);

    /// Overwrites what kind of command it is and what it sends; its data stay. For those who fill commands by other
    /// means.
    void setTypeInfo(Type type, DrawSubType subType);

    /// Packs uniforms into a matrix or uniform command. A matrix command takes one of up to 4 value bytes, and after
    /// one of a single byte a second of a single byte; a uniform command has 13 bytes, of which each further uniform
    /// takes two more than its value, and one stays free.
    /// @param pUniforms  n of them, types 1 to 5
    /// @return false when not all fit; those that did stay
    bool setAdditionalUniforms(_additinalUniform* pUniforms, unsigned char n);

    /// Chooses the function that performs this command. An empty command, a uniform command and an unknown primitive
    /// cannot be encoded (an assertion). @return true when done
    bool encode();

    /// Performs the command. Needs the program current (Program::activate) and the buffer active. Colour and texture
    /// are sent only when they differ from the last ones sent since the program was activated; an opaque colour counts
    /// as the same whether it was sent with its alpha or without. A command that is not encoded writes
    /// "Error! Command not encoded!" and asserts; one with a texture asserts when the program has no texture set, after
    /// "Error! Textures used without being set in an active program!".
    bool execute() const;

    /// Back to an empty command.
    void reset();

    bool isEncoded() const { return _fn != nullptr; }
    bool isDraw() const
    {
        return (getType() >= Type::DrawArrays && getType() <= Type::DrawElementsInstanced) ||
               getType() == Type::DrawAll;
    }
    Type getType() const { return static_cast<Type>(_type); }
    DrawSubType getDrawSubType() const { return static_cast<DrawSubType>(_drawSubType); }

private:
    friend class CommandList;

    // How far a function came: behind the last command it executed, and whether that one succeeded.
    struct Progress
    {
        const Command* pNext;
        bool isDone;
    };
    // Executes the command and those right behind it, up to pEnd, that are encoded to the same function.
    using Function = Progress (*)(const Command* p, const Command* pEnd);
    struct Functions;

    struct _draw
    {
        unsigned int _first;
        unsigned int _count;
        td::BYTE _primitive;
        td::BYTE _values[3]; // red, green, blue; or texture unit, texture index
        union
        {
            unsigned int _nInstances;
            float _pointSize;
            int _nPatchVertices;
            unsigned int _rgba;
        };
    };

    // Type byte, location byte, then value bytes; further groups of the three follow up to a type byte of 0.
    static constexpr unsigned int cMVPUniformBytes = 7;
    static constexpr unsigned int cUniformBytes = 15;

    struct _mvp
    {
        const glm::mat4* _pMatrix;
        td::BYTE _uniforms[cMVPUniformBytes];
    };

    void createDraw(Type type, Primitive primitive, std::size_t first, unsigned int count);
    void chooseForSubType();
    Progress executeAlone() const;
    Progress executeCounted() const;
    static void execute(const Command* p, const Command* pEnd);

    Function _fn;
    union
    {
        _draw _drawData;
        _mvp _mvpData;
        td::BYTE _uniformData[cUniformBytes];
    };
    td::BYTE _type : 4;
    td::BYTE _drawSubType : 4;
};

static_assert(sizeof(Command) <= 32);
static_assert(std::is_trivially_copyable_v<Command>);

} // namespace gui::gl
