#pragma once

#include "ChangingArray.h"
#include "QueuedEdits.h"

#include <gui/gl/Buffer.h>

#include <cstddef>

namespace gui::gl
{

/// What a buffer has beside its data when these change after the commit.
struct DynamicBuffer
{
    ChangingArray vertices;
    ChangingArray indices;
    ChangingArray instances;
    std::size_t nKept = 0; // vertices of a ring; 0 when it is none
    std::size_t first = 0; // of the floats in memory, as vertices knows them: those before it are gone
    std::size_t room = 0;  // vertices that GL shall have room for, where memory has none for them
    bool isInGLAlone = false;
    bool isSent = false;    // what is in GL alone, but for the queues
    bool isNarrow = true;   // indices of 16 bits in GL
    bool isLaidOut = false; // the vertex array names the buffers as they are

    bool isRing() const { return nKept > 0; }
};

/// Vertices, indices or instances of a buffer.
template <typename T>
struct Buffer::Part
{
    cnt::PushBackVector<T, 0>& data;
    ChangingArray* pArray; // what GL has of it; null when it is closed by the commit
    std::size_t nEach;     // numbers of an element
    std::size_t begin = 0; // the first element's first

    QueuedEdits<T> queued() const { return {pArray->pieces, data, nEach}; }
};

} // namespace gui::gl
