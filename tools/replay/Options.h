#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace replay
{

extern const char* const cHelp;

struct Options
{
    std::string file;
    std::string picture;  ///< to write; empty for none
    std::string overdraw; ///< to write; empty for none
    std::size_t to = SIZE_MAX;
    std::optional<unsigned int> buffer;
    std::optional<unsigned int> program;
    unsigned int timeout = 60; ///< seconds; 0 for none
    bool list = false;
    bool changes = false;
    bool times = false;
    bool help = false;

    bool isAnythingAsked() const
    {
        return !picture.empty() || !overdraw.empty() || buffer || program || list || changes || times;
    }
};

/// Throws an Error that says what is wrong with the command line.
Options parseOptions(std::span<const char* const> arguments);

} // namespace replay
