#pragma once

#include "CommandList.h"
#include "ContextResource.h"
#include "GLSL.h"
#include "Textures.h"

#include <cnt/SafeFullVector.h>
#include <cnt/StringBuilder.h>
#include <td/Color.h>
#include <td/ColorID.h>
#include <td/Export.h>
#include <td/StringBase.h>
#include <td/Types.h>

#include <glm/ext/vector_float1.hpp>
#include <glm/ext/vector_uint1.hpp>
#include <glm/ext/vector_uint2.hpp>
#include <glm/ext/vector_uint3.hpp>
#include <glm/ext/vector_uint4.hpp>
#include <glm/mat3x3.hpp>
#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace gui::gl
{

class Buffer;
struct UniformValue;

/// A linked GL program: stages compiled from text or resources, uniforms, and the commands recorded into it.
///
/// Derive from it, look up uniform locations in onLinked (the library's own programs, Flat2DProgram and its relatives,
/// show how), then: link, setBuffer and setTextures, record commands; per frame activate, execute, deActivate. An
/// active program is the current one: commands send their colours, textures and matrices to it.
///
/// When the context is lost and another takes its place (see View), the program is linked again from what was given to
/// link, onLinked is called again, and uniforms get the values that the setters of this class gave them. Locations are
/// what they were where the driver is the same one; where it is another, those in this class's members follow, and so
/// do those that onLinked looks up.
///
/// Not copyable; not meant to be deleted through a pointer to this class. Everything but queries needs the view's
/// context current. GUI thread only.
class GUIGL_API Program
{
public:
    Program() = default;
    /// Releases the program and the command list. Needs no context.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Compiles and links. Each stage is GLSL text, or ':' and the name of a text resource.
    /// Calls onLinked on success and onError on failure. A program linked before is not deleted: release it first.
    /// @param geometryResID  null for none. Tessellation stages, in the second form, are used only when both are given
    /// @return false after a failure. The debug log and getLastError say
    ///         "OpenGL <stage> compilation failed! Info='<driver's log>'. FileName=<stage argument less its colon>" or
    ///         "OpenGL Program linking failed! Info='<driver's log>'. Vertex fileName=<…>, fragment fileName=<…>" or
    ///         "OpenGL <stage> cannot be created!". After a compilation the debug log also shows the source lines that
    ///         the driver's log names.
    bool link(const char* vertexResID, const char* fragmentResID, const char* geometryResID = nullptr);
    bool link(const char* vertexResID, const char* fragmentResID, const char* tessCtrlResID, const char* tessEvalResID,
              const char* geometryResID);

    /// True from a successful link to release, and to the end of the context that it was linked in.
    bool isOK() const { return _programID != 0 && _home.isAlive(); }
    /// The GL name; 0 when not linked.
    unsigned int getID() const { return isOK() ? _programID : 0; }

    /// Deletes the GL program; it is the current one no more. Needs no context.
    void release();

    /// false frees what is kept to link again, and keeps nothing from the next link on: when the context is lost, the
    /// program is not linked any more, draw says so, once, and nothing is drawn. true, the default, costs the text of
    /// the stages as it was given to link (a resource its name alone) and some 100 bytes for each uniform that was
    /// looked up.
    void setKeptForRestore(bool isKept);
    bool isKeptForRestore() const { return _isKept; }

    /// All failures of all programs so far, each ending in a line feed.
    static td::String getLastError();

    /// @return the location; -1 when the linked program has no such uniform, or uses it nowhere
    int getUniformLocation(const char* name) const;

    /// Uniforms of the program in use. Locations of -1 are ignored by GL. Unsigned values are sent as int, which is
    /// what samplers, bool and int uniforms take.
    void setUniformValue(unsigned int loc, const glm::mat4& value);
    void setUniformValue(unsigned int loc, const glm::mat3& value);
    void setUniformValue(unsigned int loc, const glm::vec1& value);
    void setUniformValue(unsigned int loc, float value);
    void setUniformValue(unsigned int loc, double value);
    void setUniformValue(unsigned int loc, const glm::vec2& value);
    void setUniformValue(unsigned int loc, const glm::vec3& value);
    void setUniformValue(unsigned int loc, const glm::vec4& value);
    void setUniformValue(unsigned int loc, const glm::uvec1& value);
    void setUniformValue(unsigned int loc, unsigned int value);
    void setUniformValue(unsigned int loc, int value);
    void setUniformValue(unsigned int loc, const glm::uvec2& value);
    void setUniformValue(unsigned int loc, const glm::uvec3& value);
    void setUniformValue(unsigned int loc, const glm::uvec4& value);
    /// As vec3: a td::Color's alpha is left out.
    void setUniformValue(unsigned int loc, td::ColorID color);
    void setUniformValue(unsigned int loc, td::Color color);
    /// As vec4. @param alpha  0 to 255; of a td::Color in the place of its own, which color.alpha() is
    void setUniformValue(unsigned int loc, td::ColorID color, unsigned char alpha);
    void setUniformValue(unsigned int loc, td::Color color, unsigned char alpha);
    /// Binds the texture to the unit and sends the unit's number.
    void setUniformValue(unsigned int loc, Texture::Type type, unsigned int textureID, Textures::Unit unit);

    /// A table of n locations for derived programs, all -1.
    void reserveUniforms(unsigned char n);
    /// True when no entry of that table is negative.
    bool uniformLocationsAreOk() const;

    /// Looks up n matrix uniforms for setUniformValuesForMatrices.
    /// @return false at the first name that is missing: its entry is -1, those before it are good, those behind are -1
    ///         too
    bool getUniformLocationsForMatrices(const char** names, std::size_t n);
    /// Matrix i goes to location i. n must not exceed the number of locations (an assertion).
    void setUniformValuesForMatrices(const glm::mat4** matrices, std::size_t n);
    void setUniformValuesForMatrices(const glm::mat4* matrices, std::size_t n);
    /// @param n  0 means all of them
    void setUniformValuesForMatrices(const cnt::SafeFullVector<glm::mat4, false>& matrices, std::size_t n = 0);

    /// The program's colour and model-view-projection uniforms. A program without them asserts "_color3Location >= 0"
    /// and so on; for a colour, "Error! Program::setColorN on a program that takes ..." is logged before, once per
    /// link. A command's colour or matrix arrives here: one that does not fit leaves shapes black. A colour set by hand
    /// is unknown to the commands, which may leave out one that they sent before: activate the program again in
    /// between.
    void setColor3(const glm::vec3& color);
    void setColor4(const glm::vec4& color);
    void setMVP(const glm::mat4& mvp);

    /// Binds the program's buffer if it has one, makes this the current program and uses it.
    void activate() const;
    /// Unbinds vertex array and program; there is no current program then.
    void deActivate() const;
    /// The same, leaving the vertex array alone. Whichever program it is called on.
    static void useNone();

    /// Neither is owned; null for none. They must live as long as the program uses them.
    void setBuffer(Buffer* pBuffer) { _pBuffer = pBuffer; }
    void setTextures(Textures* pTextures);

    /// The program's own commands (see CommandList).
    void reserveCommands(std::size_t n);
    Command* createCommand();
    bool encode(Command* pCommand);
    bool remove(Command* pCommand);
    /// Executes the program's own commands if it has any, else those of its buffer, which must be set then (an
    /// assertion).
    void execute();
    /// Executes a range of the buffer's commands, whatever the program's own list holds.
    void execute(std::size_t first, std::size_t count);

    /// A frame's work in one call: encodes the buffer's commands and commits it if it is not, makes it the program's,
    /// activates the program and executes. The program stays the active one. A program that is not linked, or a buffer
    /// that cannot be committed, draws nothing, each with one log line that says so.
    void draw(Buffer& buffer);
    /// The same with a model-view-projection matrix.
    void draw(Buffer& buffer, const glm::mat4& mvp);

protected:
    /// Called after a successful link, and when the program was linked again in a context that took the place of a lost
    /// one: look up uniforms here. This version writes a log line that says nobody did.
    virtual void onLinked();
    /// Called after a failed link.
    virtual void onError();

private:
    friend class ProgHelper;
    friend class View;

    /// The arguments of link: vertex, fragment, tessellation control and evaluation, geometry.
    using Sources = std::array<const char*, 5>;

    enum class UniformKind : td::BYTE
    {
        None, // looked up only
        Float,
        Float2,
        Float3,
        Float4,
        Int,
        Int2,
        Int3,
        Int4,
        Mat3,
        Mat4
    };
    struct Uniform
    {
        std::string name; // none for a location that was not looked up here
        int location = -1;
        UniformKind kind = UniformKind::None;
        std::array<std::uint32_t, 16> value{};
    };
    struct Kept
    {
        std::array<std::optional<std::string>, 5> sources;
        std::vector<Uniform> uniforms;
        std::vector<std::pair<int, int>> moved; // locations, of the lost context and of the new one
    };

    bool prepare(Buffer& buffer);
    void sayColorGoesNowhere(int nComponents);
    static unsigned int _link(const char* vertexResID, const char* fragmentResID, const char* tessCtrlResID,
                              const char* tessEvalResID, const char* geometryResID, unsigned int before = 0);
    static unsigned int compile(GLSL::Type type, const char* resID, bool isLast, std::vector<UniformValue>& uniforms);
    static bool isCompilationOK(GLSL::Type type, unsigned int shader, const char* name, const char* source);
    static bool isLinkingOK(unsigned int program, const char* vertexName, const char* fragmentName);
    bool finishLink(unsigned int programID, const Sources& sources);
    void onContext(ContextResource::Event event);
    void linkAgain();
    void findPointSize();
    void moveLocation(int& location) const;
    void sendUniforms() const;
    void remember(unsigned int loc, UniformKind kind, const void* pValue) const;

    static cnt::StringBuilder<td::String, 1024> s_progErrors;

    CommandList _commandList;
    Buffer* _pBuffer = nullptr;
    Textures* _pTextures = nullptr;

protected:
    /// The tables of reserveUniforms and getUniformLocationsForMatrices.
    cnt::SafeFullVector<int, false> _uniformLocations;
    cnt::SafeFullVector<int, false> _matrixLocations;

private:
    unsigned int _programID = 0;

protected:
    /// Locations that a derived class looks up: of the uniforms that setColor3, setColor4 and setMVP send, and with
    /// them commands. -1 for a program that has none.
    int _color3Location = -1;
    int _color4Location = -1;
    int _matrixLocation = -1;

private:
    int _pointSizeLocation = -1; // on OpenGL ES alone
    // Since the last link, once each.
    bool _hasSaidNotLinked = false;
    bool _hasSaidColor = false;

    bool _isKept = true;
    std::unique_ptr<Kept> _pKept; // from link on
    ContextResource _home{
        [](void* pThis, ContextResource::Event event) { static_cast<Program*>(pThis)->onContext(event); }, this};
};

/// Makes a program the one that commands send to, and forgets the colour and texture last sent. Program's operations
/// call it; call it with null after GL code of your own has changed the program in use or its uniforms.
GUIGL_API void setCurrentProgram(Program* pProgram);

} // namespace gui::gl
