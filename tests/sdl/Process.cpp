#include "Process.h"

#include "Waiting.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace test
{

namespace
{

std::vector<std::string> environmentWith(const Variables& variables)
{
    std::vector<std::string> environment;
    for (char** pEntry = environ; *pEntry != nullptr; ++pEntry)
    {
        const std::string entry(*pEntry);
        if (!variables.contains(entry.substr(0, entry.find('='))))
            environment.push_back(entry);
    }
    for (const auto& [name, value] : variables)
        if (!value.empty())
            environment.push_back(name + "=" + value);
    return environment;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

Process::Process(const Arguments& arguments, const Variables& variables, int output)
{
    // All memory is taken before the fork: the child of a program with threads may not take any.
    std::vector<std::string> texts = arguments;
    std::vector<std::string> environment = environmentWith(variables);
    const std::vector<char*> argumentPointers = pointersTo(texts);
    const std::vector<char*> environmentPointers = pointersTo(environment);
    const pid_t parent = getpid();
    _id = fork();
    if (_id != 0)
        return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent)
        _exit(127);
    dup2(output >= 0 ? output : STDERR_FILENO, STDOUT_FILENO);
    execvpe(argumentPointers[0], argumentPointers.data(), environmentPointers.data());
    _exit(127);
}

Process::~Process()
{
    if (!isRunning())
        return;
    kill(_id, SIGTERM);
    constexpr double cForTheEnd = 10;
    if (!waitFor([this] { return !isRunning(); }, cForTheEnd))
    {
        kill(_id, SIGKILL);
        waitpid(_id, &_status, 0);
    }
}

bool Process::isRunning()
{
    if (_id > 0 && waitpid(_id, &_status, WNOHANG) == _id)
        _id = -1;
    return _id > 0;
}

int Process::wait(double seconds)
{
    return waitFor([this] { return !isRunning(); }, seconds) && WIFEXITED(_status) ? WEXITSTATUS(_status) : -1;
}

int runProgram(const Arguments& arguments, const Variables& variables)
{
    return Process(arguments, variables).wait(cPatience);
}

std::string outputOf(const Arguments& arguments, int& exitStatus, const Variables& variables)
{
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0)
        return {};
    std::string output;
    {
        Process process(arguments, variables, pipe[1]);
        close(pipe[1]);
        std::array<char, 4096> buffer{};
        for (ssize_t n = 0; (n = read(pipe[0], buffer.data(), buffer.size())) > 0;)
            output.append(buffer.data(), static_cast<std::size_t>(n));
        exitStatus = process.wait(cPatience);
    }
    close(pipe[0]);
    return output;
}

} // namespace test
