#include "CommandLine.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace examples
{

CommandLine readCommandLine(int argc, char** argv, const char* help)
{
    constexpr int cExitFailed = 1, cExitUsage = 2;
    const std::string_view option = argc > 1 ? argv[1] : "";
    if (argc <= 1)
        return {};
    if (option == "--help" && argc == 2)
        return {{}, std::fputs(help, stdout) < 0 ? cExitFailed : 0};
    if (option == "--out" && argc == 3 && *argv[2] != '\0')
    {
        setenv("GUIGL_WINDOW_SYSTEM", "offscreen", 1);
        return {argv[2], {}};
    }
    const std::string name = std::filesystem::path(argv[0]).filename().string();
    std::fprintf(stderr, "%s: cannot make sense of: %s (see %s --help)\n", name.c_str(), argv[1], name.c_str());
    return {{}, cExitUsage};
}

} // namespace examples
