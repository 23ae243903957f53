#include "ChangingArray.h"

#include "../context/Restoration.h"

#include <epoxy/gl.h>

#include <algorithm>

namespace gui::gl
{

namespace
{

// Neither of these targets is part of a vertex array's state.
constexpr GLenum cTarget = GL_COPY_WRITE_BUFFER;

void makeStorage(std::size_t nBytes)
{
    glBufferData(cTarget, static_cast<GLsizeiptr>(nBytes), nullptr, GL_DYNAMIC_DRAW);
}

} // namespace

bool ChangingArray::update(unsigned int& name, unsigned int before, const Source& source, const ContextResource& home)
{
    const std::optional<std::size_t> shift = pieces.getShift();
    const bool isInPlace =
        name != 0 && shift.has_value() && (source.canSlide || *shift == 0) && *shift + pieces.size() <= _capacity;
    if (isInPlace)
        _base = *shift;
    if (isInPlace && pieces.isSettled())
        return true;
    if (!isInPlace)
    {
        if (!moveToNew(name, before, source, home))
            return false;
    }
    else
    {
        glBindBuffer(cTarget, name);
        if (!pieces.isAnyThere())
            makeStorage(_capacity * source.elementBytes);
    }
    sendNew(source);
    pieces.settle(_base);
    return true;
}

void ChangingArray::adopt(std::size_t n)
{
    *this = {};
    _capacity = n;
    pieces.extendTo(n);
    pieces.settle(0);
}

bool ChangingArray::append(unsigned int name, const void* data, std::size_t n, std::size_t elementBytes)
{
    if (name == 0 || pieces.size() == 0 || !pieces.isSettled())
        return false;
    const Pieces::Piece& piece = pieces.all().front();
    const std::size_t end = piece.at + piece.n;
    if (end + n > _capacity)
        return false;
    glBindBuffer(cTarget, name);
    glBufferSubData(cTarget, static_cast<GLintptr>(end * elementBytes), static_cast<GLsizeiptr>(n * elementBytes),
                    data);
    pieces.extendThere(n);
    return true;
}

bool ChangingArray::moveToNew(unsigned int& name, unsigned int before, const Source& source,
                              const ContextResource& home)
{
    const GLuint newName = Restoration::makeName(CurrentContext::Kind::Buffer, before);
    if (newName == 0)
        return false;
    const std::size_t n = pieces.size();
    if (name == 0)
        _capacity = std::max({n, source.room, std::size_t(1)});
    else if (n > _capacity || pieces.getShift().value_or(0) > 0)
        // What grows, or slides to the end, will do so again.
        _capacity = std::max(_capacity, n + n / 2);
    _base = 0;
    glBindBuffer(cTarget, newName);
    makeStorage(_capacity * source.elementBytes);
    if (name != 0)
    {
        const auto bytes = [&source](std::size_t i) { return static_cast<GLintptr>(i * source.elementBytes); };
        glBindBuffer(GL_COPY_READ_BUFFER, name);
        std::size_t place = 0;
        for (const Pieces::Piece& piece : pieces.all())
        {
            if (piece.isThere())
                glCopyBufferSubData(GL_COPY_READ_BUFFER, cTarget, bytes(piece.at), bytes(place), bytes(piece.n));
            place += piece.n;
        }
        home.deleteName(CurrentContext::Kind::Buffer, name);
    }
    name = newName;
    return true;
}

// Into the bound buffer.
void ChangingArray::sendNew(const Source& source)
{
    std::size_t place = 0, queued = 0;
    for (const Pieces::Piece& piece : pieces.all())
    {
        if (!piece.isThere())
        {
            const std::size_t from = source.isQueue ? queued : place;
            queued += piece.n;
            const void* data = static_cast<const char*>(source.data) + from * source.elementBytes;
            if (source.isNarrowed)
            {
                const auto* const wide = static_cast<const std::uint32_t*>(source.data) + from;
                _narrowed.resize(piece.n);
                std::transform(wide, wide + piece.n, _narrowed.begin(),
                               [](std::uint32_t i) { return static_cast<std::uint16_t>(i); });
                data = _narrowed.data();
            }
            glBufferSubData(cTarget, static_cast<GLintptr>((_base + place) * source.elementBytes),
                            static_cast<GLsizeiptr>(piece.n * source.elementBytes), data);
        }
        place += piece.n;
    }
}

} // namespace gui::gl
