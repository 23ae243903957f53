#pragma once

namespace gallery
{

/// Listens to what the GL driver says about the current context, which must be a debug context. Faults (errors,
/// undefined behaviour, deprecated calls) are written to the log and counted.
class GLMessages
{
public:
    GLMessages();
    /// Stops listening: the same context must be current.
    ~GLMessages();
    GLMessages(const GLMessages&) = delete;
    GLMessages& operator=(const GLMessages&) = delete;

    /// Whether there was no fault so far, and glGetError has none to tell now.
    bool areFaultless();

private:
    unsigned int _nFaults = 0;
};

} // namespace gallery
