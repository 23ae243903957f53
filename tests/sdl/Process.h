#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace test
{

using Arguments = std::vector<std::string>;
using Variables = std::map<std::string, std::string>;

/// A program that runs beside the test and ends with this object, or with the test however it ends.
class Process
{
public:
    /// @param arguments  the program, looked up in PATH, and its arguments
    /// @param variables  of the environment, over the test's own; an empty value takes the variable away
    /// @param output     what becomes its standard output; -1 for the test's own standard error
    explicit Process(const Arguments& arguments, const Variables& variables = {}, int output = -1);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool isRunning();
    /// @return the exit status; -1 when it did not end in time, or not by itself
    int wait(double seconds);

private:
    pid_t _id = -1;
    int _status = -1; // no program's: what never began did not succeed
};

/// Runs a program to its end. @return its exit status as Process::wait answers
int runProgram(const Arguments& arguments, const Variables& variables = {});

/// Runs a program to its end. @return what it wrote to its standard output
std::string outputOf(const Arguments& arguments, int& exitStatus, const Variables& variables = {});

} // namespace test
