#pragma once

#include <cstddef>

namespace gui::gl
{

class Command;
class CommandList;

struct ListAtWork
{
    const CommandList* pList = nullptr;
    const Command* pFirst = nullptr;
    std::size_t n = 0;
};

/// Hears of commands before they are executed, while a frame is captured.
struct CommandListener
{
    virtual ~CommandListener() = default;
    virtual void onCommand(const Command* pCommand) = 0;

    /// The one who listens; null while nobody does.
    static inline CommandListener* s_pCurrent = nullptr;

    /// The list at work, while somebody listens.
    static inline ListAtWork s_list;
};

} // namespace gui::gl
