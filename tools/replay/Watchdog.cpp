#include "Watchdog.h"

#include <csignal>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace replay
{

namespace
{

char s_line[512]; // what a signal may use has to be there before

extern "C" void giveUp(int)
{
    [[maybe_unused]] const auto n = write(STDERR_FILENO, s_line, std::strlen(s_line));
    _exit(1);
}

} // namespace

void watch(const std::string& file, unsigned int seconds)
{
    const std::string line = "guigl-replay: " + file.substr(0, 300) + ": it takes longer than " +
                             std::to_string(seconds) + " s, which --timeout changes\n";
    alarm(0);
    std::strncpy(s_line, line.c_str(), sizeof s_line - 1);
    std::signal(SIGALRM, giveUp);
    alarm(seconds);
}

} // namespace replay
