#pragma once

#include "ContextResource.h"
#include "Texture.h"

#include <td/Export.h>
#include <td/Types.h>

#include <cstddef>
#include <vector>

namespace gui::gl
{

/// Numbers in GL memory that a shader reads by their place, with texelFetch from a samplerBuffer (or isamplerBuffer,
/// usamplerBuffer): tables of any size that change in parts.
///
/// What stands in it is kept here as well, for the case that the context is lost and another takes its place (see
/// View); whoever fills it again by himself declines that by setKeptForRestore. Not copyable. Needs the context current
/// that it was made in, except for the destructor, release and queries. GUI thread only.
class GUIGL_API BufferTexture
{
public:
    /// What one texel is.
    enum class Format : td::BYTE
    {
        Float,  ///< 1 float: samplerBuffer
        Float4, ///< 4 floats: samplerBuffer
        Int2,   ///< 2 ints of 32 bits: isamplerBuffer
        Int4,   ///< 4 ints: isamplerBuffer
        UInt,   ///< 1 unsigned int: usamplerBuffer
        UInt4   ///< 4 unsigned ints: usamplerBuffer
    };

    /// Without room for anything yet.
    explicit BufferTexture(Format format);
    ~BufferTexture();
    BufferTexture(const BufferTexture&) = delete;
    BufferTexture& operator=(const BufferTexture&) = delete;

    /// The bytes of a texel: 4, 8 or 16.
    std::size_t getTexelSize() const;

    /// Makes room, and forgets what was there unless the size in bytes stays the same.
    /// @return false, with what was there kept and a log line, without a current context ("Error!
    ///         BufferTexture::resize without a current GL context!"), when the driver has no room for so many texels
    ///         ("Error! BufferTexture::resize: N texels, the driver has M at most!"), or no names to give ("Error!
    ///         BufferTexture::resize cannot create its buffer and its texture!"), or on an OpenGL ES 3.1 whose driver
    ///         has no texture buffers ("Error! BufferTexture::resize: this OpenGL ES has no texture buffers!")
    bool resize(std::size_t nTexels);
    /// The texels there is room for; 0 after the death of the context.
    std::size_t getSize() const { return _home.isAlive() ? _nTexels : 0; }

    /// false before anything is written: nothing is kept. When the context is lost, there is no room and nothing in it
    /// afterwards: getSize gives 0 and resize begins anew. true, the default, costs the room's bytes once more.
    void setKeptForRestore(bool isKept) { _isKept = isKept; }
    bool isKeptForRestore() const { return _isKept; }

    /// Uploads texels; first + n must not exceed getSize() (an assertion; nothing is uploaded then).
    void write(std::size_t first, const void* data, std::size_t n);
    /// The same in bytes, which need not be whole texels.
    void writeBytes(std::size_t offset, const void* data, std::size_t nBytes);

    /// Copies bytes of another one within GL, without a way through memory. Both must have them ("offset <= size &&
    /// nBytes <= size - offset" and "fromOffset <= fromSize && nBytes <= fromSize - fromOffset"), in the same context
    /// ("_home.getID() == from._home.getID()"); nothing is copied otherwise. What is kept here for restoring is what is
    /// kept there; from one that keeps nothing, 0.
    void copyBytes(std::size_t offset, const BufferTexture& from, std::size_t fromOffset, std::size_t nBytes);

    /// Binds it to a texture unit, where a sampler of that number finds it.
    void bind(Texture::Unit unit) const;

    /// Deletes the GL objects. Needs no context.
    void release();

private:
    bool makeNames();
    void deleteNames() const;
    void makeRoom(std::size_t nTexels, const void* data);
    void onContext(ContextResource::Event event);

    Format _format;
    unsigned int _buffer = 0;
    unsigned int _texture = 0;
    std::size_t _nTexels = 0;
    bool _isAttached = false; // the buffer to the texture
    bool _isKept = true;
    std::vector<td::BYTE> _kept;
    ContextResource _home{
        [](void* pThis, ContextResource::Event event) { static_cast<BufferTexture*>(pThis)->onContext(event); }, this};
};

} // namespace gui::gl
