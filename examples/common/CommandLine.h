#pragma once

#include <filesystem>
#include <optional>

namespace examples
{

/// What is asked of a program that shows a view, or draws pictures of it.
struct CommandLine
{
    std::filesystem::path folder;  ///< for pictures; empty for a window
    std::optional<int> exitStatus; ///< the program has nothing to do but to end with it
};

/// Reads `--help`, which prints the help, and `--out FOLDER`, after which no display is needed, or touched, even where
/// there is one. What it can't make sense of it says on standard error.
CommandLine readCommandLine(int argc, char** argv, const char* help);

} // namespace examples
