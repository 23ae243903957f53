#pragma once

#include "GLHooks.h"

#include <string>

namespace test
{

/// A driver that refuses: passes every call on but one that a driver may refuse. Objects that it should make are 0, what
/// it should compile or link fails, and what needs memory gives GL_OUT_OF_MEMORY.
class RefusingGL : public GLListener
{
public:
    RefusingGL() { startListening(); }
    ~RefusingGL() override { stopListening(); }

    /// Counts from 1 again, and refuses the n-th call that can be refused; 0 refuses none.
    void refuseNth(unsigned int n);

    unsigned int nRefusable() const { return _n; }

    const std::string& refused() const { return _refused; }

    std::size_t nAlive() const;
    /// Names that are alive went with their context.
    void forgetNames() { alive.clear(); }

    unsigned long nCalls() const { return _nCalls; }

private:
    bool answer(const GLEntry& entry, GLArguments arguments, long long& result) override;
    void note(const GLEntry& entry, GLArguments arguments, long long result) override;
    void refuse(const GLEntry& entry, GLArguments arguments);
    bool answerForRefused(std::string_view function, GLArguments arguments, long long& result);

    unsigned int _refuseAt = 0;
    unsigned int _n = 0;
    unsigned long _nCalls = 0;
    std::string _refused;
    unsigned int _failedName = 0; // of a shader or a program
    bool _isMemoryShort = false;  // and glGetError has not said so yet
};

} // namespace test
