#pragma once

#include <gui/gl/BufferTexture.h>
#include <gui/gl/CurrentContext.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace gui::draw
{

/// A table that shaders read, kept here for any context: what changed since the last upload goes to GL, and nothing
/// else. Needs no context but for upload and bind.
class TexelStore
{
public:
    /// @param format    of unsigned ints  @param nWords  of 32 bits in a texel: 1 or 4
    TexelStore(gl::BufferTexture::Format format, std::size_t nWords)
        : _nWords(nWords)
        , _texture(format)
    {
        _texture.setKeptForRestore(false);
    }

    std::size_t getSize() const { return _words.size() / _nWords; } ///< in texels
    /// More are 0, and count as changed.
    void resize(std::size_t nTexels);

    /// To read. @param texel  below the size
    const std::uint32_t* at(std::size_t texel) const { return &_words[texel * _nWords]; }
    /// To write; what is from there on changes.
    std::uint32_t* change(std::size_t texel, std::size_t nTexels);

    /// Brings GL's copy in the current context up to date.
    /// @return false when there is no room for it, which the log has said
    bool upload();
    void bind(gl::Texture::Unit unit) const { _texture.bind(unit); }

private:
    using Range = std::pair<std::size_t, std::size_t>; // from the first texel to behind the last

    void mergeChanges();

    std::size_t _nWords;
    std::vector<std::uint32_t> _words;
    std::vector<Range> _changes;
    gl::BufferTexture _texture;
    gl::CurrentContext::ID _contextID = 0;
};

} // namespace gui::draw
