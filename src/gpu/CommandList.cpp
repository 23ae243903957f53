#include <gui/gl/CommandList.h>

#include "CommandListener.h"

#include <td/Assert.h>

#include <algorithm>

namespace gui::gl
{

CommandList::CommandList() = default;

CommandList::CommandList(std::size_t n) { reserve(n); }

CommandList::~CommandList() { release(); }

void CommandList::reserve(std::size_t n) { _commands.reserve(n); }

Command* CommandList::get()
{
    Command& command = _commands.push_back();
    command.reset();
    return &command;
}

bool CommandList::encode(Command* pCommand)
{
    TD_ASSERT(pCommand != nullptr, false);
    if (pCommand->encode())
        return true;
    _commands.remove_back();
    return false;
}

bool CommandList::encode()
{
    bool isDone = true;
    for (Command& command : _commands)
        isDone &= command.isEncoded() || command.encode();
    return isDone;
}

bool CommandList::remove(Command*)
{
    _commands.remove_back();
    return true;
}

void CommandList::execute() { execute(0, size()); }

void CommandList::execute(std::size_t first, std::size_t count)
{
    const std::size_t begin = std::min(first, size());
    const std::size_t end = begin + std::min(count, size() - begin);
    if (CommandListener::s_pCurrent != nullptr) [[unlikely]]
        CommandListener::s_list = {this, _commands.begin(), size()};
    Command::execute(_commands.begin() + begin, _commands.begin() + end);
}

glm::mat4* CommandList::allocMatrix()
{
    if (pMatrixAllocator == nullptr)
        pMatrixAllocator = new mem::MemoryManager<glm::mat4>;
    TD_ASSERT(pMatrixAllocator, nullptr);
    return pMatrixAllocator->alloc();
}

void CommandList::reset()
{
    _commands.reset();
    if (pMatrixAllocator != nullptr)
        pMatrixAllocator->reset();
}

void CommandList::release()
{
    _commands.release();
    delete pMatrixAllocator;
    pMatrixAllocator = nullptr;
}

} // namespace gui::gl
