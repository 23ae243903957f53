#pragma once

#include <capture/FrameFile.h>
#include <capture/GLCalls.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace replay
{

using gui::gl::CallArguments;
using gui::gl::GLCall;

/// What GL would have after each call of a frame, as far as it takes to know that a call is safe: what is there, how
/// large it is, and what buffers hold. It needs no GL. Calls that GL itself refuses without harm pass.
class FrameModel
{
public:
    struct Buffer
    {
        std::uint64_t size = 0;
        std::vector<unsigned char> bytes; ///< zeros behind its end
        std::uint64_t version = 0;        ///< another one after each change
    };

    struct Attribute
    {
        std::shared_ptr<Buffer> pBuffer;
        unsigned int buffer = 0;
        bool isEnabled = false;
        unsigned int type = 0;
        std::int64_t n = 0;
        std::uint64_t bytes = 0; ///< of a value
        std::uint64_t stride = 0;
        std::uint64_t offset = 0;
        std::uint64_t divisor = 0;
    };

    struct VertexArray
    {
        static constexpr std::size_t cMostAttributes = 32;
        std::array<Attribute, cMostAttributes> attributes;
        std::shared_ptr<Buffer> pElements;
        unsigned int elements = 0;
    };

    /// Follows a call that is about to be made. Throws an Error when it must not be.
    void follow(const GLCall& call, CallArguments arguments);

    /// What can be seen of the frame so far.
    unsigned int program() const { return _program; }
    unsigned int vertexArray() const { return _vertexArray; }
    unsigned int drawFramebuffer() const { return _drawFramebuffer; }
    const std::map<unsigned int, std::shared_ptr<Buffer>>& buffers() const { return _buffers; }
    const std::map<unsigned int, VertexArray>& vertexArrays() const { return _vertexArrays; }

    /// All that GL may have to keep for a frame.
    static constexpr std::uint64_t cMostBytes = std::uint64_t(2) << 30;

private:
    using Handler = void (FrameModel::*)(CallArguments);
    static Handler handlerOf(const GLCall& call);

    void checkNames(const GLCall& call, CallArguments arguments) const;
    void generate(GLCall::Kind kind, CallArguments arguments);
    void remove(GLCall::Kind kind, CallArguments arguments);
    void removeBuffer(unsigned int name);

    void bindBuffer(CallArguments arguments);
    void bindTexture(CallArguments arguments);
    void bindVertexArray(CallArguments arguments);
    void bindFramebuffer(CallArguments arguments);
    void bindRenderbuffer(CallArguments arguments);
    void activeTexture(CallArguments arguments);
    void useProgram(CallArguments arguments);
    void deleteProgram(CallArguments arguments);
    void makeProgram(CallArguments arguments);
    void enable(CallArguments arguments);
    void disable(CallArguments arguments);
    void restartIndex(CallArguments arguments);
    void bufferData(CallArguments arguments);
    void bufferSubData(CallArguments arguments);
    void copyBuffer(CallArguments arguments);
    void enableAttribute(CallArguments arguments);
    void disableAttribute(CallArguments arguments);
    void attributeDivisor(CallArguments arguments);
    void attributePointer(CallArguments arguments);
    void attributeIPointer(CallArguments arguments);
    void setAttribute(CallArguments arguments, std::int64_t stride, std::int64_t offset);
    void drawBuffers(CallArguments arguments);
    void image(CallArguments arguments);
    void imageWithSamples(CallArguments arguments);
    void mipmap(CallArguments arguments);
    void storage(CallArguments arguments);
    void storageWithSamples(CallArguments arguments);
    void drawArrays(CallArguments arguments);
    void drawArraysInstanced(CallArguments arguments);
    void drawElements(CallArguments arguments);
    void drawElementsBaseVertex(CallArguments arguments);
    void drawElementsInstanced(CallArguments arguments);
    void drawRange(CallArguments arguments);
    void multiDraw(CallArguments arguments);

    struct Range
    {
        std::int64_t min = 0, max = -1; // none
    };

    void checkDraw(Range vertices, std::int64_t nInstances);
    void checkElements(std::int64_t count, std::int64_t type, std::int64_t offset, std::int64_t baseVertex,
                       std::int64_t nInstances);
    Range rangeOf(const Buffer& buffer, std::int64_t type, std::uint64_t offset, std::uint64_t count);
    template <typename T>
    Range rangeOf(const unsigned char* bytes, std::uint64_t count) const;

    std::shared_ptr<Buffer>* boundBuffer(std::int64_t target);
    Attribute& attributeAt(std::int64_t index);
    void keep(unsigned int texture, std::int64_t target, std::int64_t level, std::uint64_t nBytes);
    void keepImage(std::int64_t target, std::int64_t level, std::int64_t internalFormat, std::int64_t width,
                   std::int64_t height, std::int64_t nSamples);
    void keepStorage(std::int64_t nSamples, std::int64_t internalFormat, std::int64_t width, std::int64_t height);
    void count(std::uint64_t before, std::uint64_t now);

    std::set<std::pair<GLCall::Kind, unsigned int>> _names;
    std::map<unsigned int, std::shared_ptr<Buffer>> _buffers;
    std::map<unsigned int, VertexArray> _vertexArrays;
    std::map<std::int64_t, unsigned int> _boundBuffers;                           // by target, but for the elements
    std::map<std::pair<std::int64_t, std::int64_t>, unsigned int> _boundTextures; // by unit and target
    // By texture, image and level; renderbuffers have target 0 and negative levels.
    std::map<std::tuple<unsigned int, std::int64_t, std::int64_t>, std::uint64_t> _images;
    std::map<std::tuple<const Buffer*, std::uint64_t, std::int64_t, std::uint64_t, std::uint64_t>, Range> _ranges;
    std::uint64_t _nBytes = 0;
    std::uint64_t _nChanges = 0;
    unsigned int _program = 0, _vertexArray = 0, _drawFramebuffer = 0, _renderbuffer = 0;
    std::int64_t _unit = 0;
    std::int64_t _restartIndex = 0;
    bool _restarts = false, _restartsFixed = false;
};

} // namespace replay
