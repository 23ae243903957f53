#pragma once

#include "Command.h"

#include <cnt/PushBackVector.h>
#include <mem/MemoryManager.h>
#include <td/Export.h>

#include <glm/mat4x4.hpp>

#include <cstddef>

namespace gui::gl
{

/// Commands in the order of their recording, executed all or a range, with a pool of matrices that live as long as they
/// do.
///
/// Command pointers are good until the list next grows: reserve first, or be done with a command before getting the
/// next. Not copyable. GUI thread; execute needs the context current.
class GUIGL_API CommandList
{
public:
    CommandList();
    /// With room for n commands.
    explicit CommandList(std::size_t n);
    ~CommandList();
    CommandList(const CommandList&) = delete;
    CommandList& operator=(const CommandList&) = delete;

    /// Sets the capacity to n commands. It is no growth hint: commands already recorded are dropped.
    void reserve(std::size_t n);
    std::size_t size() const { return _commands.size(); }

    /// Appends an empty command. @return it, owned by the list
    Command* get();

    /// Encodes a command of the list. @return false, with the list's last command removed, when it cannot be encoded
    bool encode(Command* pCommand);
    /// Encodes the commands that are not encoded yet. @return false when some cannot be; they stay, not encoded
    bool encode();

    /// Removes the last command, whichever is passed; an empty list stays empty. @return true
    bool remove(Command* pCommand);

    /// Executes all of them, in their order.
    void execute();
    /// Commands first to first + count - 1, as many of them as there are.
    void execute(std::size_t first, std::size_t count);

    /// A matrix, not initialised, that keeps its address until reset (when its slot is handed out anew) or release.
    glm::mat4* allocMatrix();

    /// Drops commands and matrices and keeps the memory of both.
    void reset();
    /// Drops commands and matrices and frees their memory.
    void release();

private:
    mem::MemoryManager<glm::mat4>* pMatrixAllocator = nullptr;
    cnt::PushBackVector<Command, 0> _commands;
};

} // namespace gui::gl
