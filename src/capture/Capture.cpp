#include "Capture.h"

#include "../context/GLNumber.h"
#include "../context/Samples.h"
#include "FrameRecording.h"

#include <gui/gl/Context.h>
#include <gui/gl/CurrentContext.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include <unistd.h>

namespace gui::gl
{

namespace
{

std::string programName()
{
    char path[1024];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path);
    if (n <= 0)
        return "a program";
    const std::string_view text(path, static_cast<std::size_t>(n));
    return std::string(text.substr(text.rfind('/') + 1));
}

std::string glText(GLenum name)
{
    const auto* const text = reinterpret_cast<const char*>(glGetString(name));
    return text != nullptr ? text : "";
}

// Of the framebuffer 0, which is bound.
std::uint32_t bitsOf(GLenum attachment, GLenum parameter)
{
    GLint type = GL_NONE, bits = 0;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, attachment, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE,
                                          &type);
    if (type != GL_NONE)
        glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, attachment, parameter, &bits);
    return static_cast<std::uint32_t>(bits);
}

// Hears of all calls, from the first context on, and leaves each to the recording of the context that is current.
class Listener : public CallListener, public CommandListener
{
public:
    Listener(std::string path, int frame)
        : _path(std::move(path))
        , _frame(frame)
    {
        CallListener::s_pCurrent = this;
        link().install(link());
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() override
    {
        stopRecordings();
        link().restore();
        CallListener::s_pCurrent = nullptr;
    }

    void before(const GLCall& call, CallArguments arguments) override
    {
        if (const Quiet quiet; FrameRecording* const pRecording = current())
            pRecording->before(call, arguments);
    }
    void after(const GLCall& call, CallArguments arguments) override
    {
        const Quiet quiet;
        if (&call == &link())
            _texts.keep(static_cast<unsigned int>(arguments[0].integer));
        if (FrameRecording* const pRecording = current())
            pRecording->after(call, arguments);
    }
    void onCommand(const Command* pCommand) override
    {
        if (FrameRecording* const pRecording = current())
            pRecording->onCommand(pCommand);
    }

    void begin()
    {
        const CurrentContext::ID id = CurrentContext::getID();
        if (id == 0 || _nFrames[id] + 1 != _frame)
            return;
        for (const GLCall& call : GLCall::all())
            if (call.install != nullptr)
                call.install(call);
        CommandListener::s_pCurrent = this;
        const Quiet quiet;
        _recordings[id] = std::make_unique<FrameRecording>(_texts);
    }

    // @return whether that was the frame
    bool end(unsigned int framebuffer, const td::Size<int>& size)
    {
        const CurrentContext::ID id = CurrentContext::getID();
        ++_nFrames[id];
        FrameRecording* const pRecording = current();
        if (pRecording == nullptr)
            return false;
        const Quiet quiet;
        save(*pRecording, framebuffer, size);
        return true;
    }

private:
    // Calls of one's own while this lives.
    struct Quiet
    {
        Quiet() = default;
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;
        ~Quiet() { CallListener::s_pCurrent = pBefore; }
        CallListener* pBefore = std::exchange(CallListener::s_pCurrent, nullptr);
    };

    static const GLCall& link()
    {
        static const GLCall& call = GLCall::of(&glLinkProgram);
        return call;
    }

    FrameRecording* current()
    {
        const auto it = _recordings.find(CurrentContext::getID());
        return it != _recordings.end() ? it->second.get() : nullptr;
    }

    void stopRecordings()
    {
        CommandListener::s_pCurrent = nullptr;
        CommandListener::s_list = {};
        for (const GLCall& call : GLCall::all())
            if (call.restore != nullptr && &call != &link())
                call.restore();
        _recordings.clear();
    }

    void save(FrameRecording& recording, unsigned int framebuffer, const td::Size<int>& size)
    {
        FrameFile::Info info;
        info.program = programName();
        info.renderer = glText(GL_RENDERER);
        info.glVersion = glText(GL_VERSION);
        info.frame = static_cast<std::uint32_t>(_frame);
        info.width = static_cast<std::uint32_t>(size.width);
        info.height = static_cast<std::uint32_t>(size.height);
        info.samples = static_cast<std::uint32_t>(std::max(1, samplesOf(0)));
        info.framebuffer = framebuffer;
        const auto bound = static_cast<GLuint>(glNumber(GL_DRAW_FRAMEBUFFER_BINDING));
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
        info.depthBits = bitsOf(GL_DEPTH, GL_FRAMEBUFFER_ATTACHMENT_DEPTH_SIZE);
        info.stencilBits = bitsOf(GL_STENCIL, GL_FRAMEBUFFER_ATTACHMENT_STENCIL_SIZE);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, bound);
        const std::string error = recording.save(_path, info);
        if (!error.empty())
            vo::dbgLog("ERROR! GUIGL_CAPTURE cannot write %s: %s", _path.c_str(), error.c_str());
        else
            vo::dbgLog("Frame %d is captured in %s (%zu kB)", _frame, _path.c_str(), recording.nBytes() / 1024);
        if (!recording.missing().empty())
            vo::dbgLog("Warning! GUIGL_CAPTURE leaves out what captured frames don't have: %s",
                       recording.missing().c_str());
    }

    std::string _path;
    int _frame;
    ProgramTexts _texts;
    std::map<CurrentContext::ID, int> _nFrames;
    std::map<CurrentContext::ID, std::unique_ptr<FrameRecording>> _recordings;
};

// Never destroyed but by want: contexts end after static objects do.
Listener* s_pListener = nullptr;

// What the environment says, when the library is loaded: programs are linked in the first context already.
const bool s_isAsked = []
{
    const char* const path = std::getenv("GUIGL_CAPTURE");
    if (path == nullptr || *path == '\0')
        return false;
    int frame = 1;
    if (const char* const text = std::getenv("GUIGL_CAPTURE_FRAME"))
    {
        const char* const pEnd = text + std::strlen(text);
        const auto result = std::from_chars(text, pEnd, frame);
        if (result.ec != std::errc() || result.ptr != pEnd || frame < 1)
        {
            vo::dbgLog("Warning! GUIGL_CAPTURE_FRAME=%s is no number above 0 and will be ignored", text);
            frame = 1;
        }
    }
    Capture::want(path, frame);
    return true;
}();

} // namespace

constinit bool Capture::s_isWanted = false;

void Capture::want(const std::string& path, int frame)
{
    delete std::exchange(s_pListener, nullptr);
    s_isWanted = !path.empty();
    if (s_isWanted)
        s_pListener = new Listener(path, frame);
}

void Capture::begin()
{
    if (!Context::isES())
    {
        s_pListener->begin();
        return;
    }
    vo::dbgLog("Warning! GUIGL_CAPTURE captures no frames of OpenGL ES");
    want({});
}

void Capture::end(unsigned int framebuffer, const td::Size<int>& size)
{
    if (s_pListener->end(framebuffer, size))
        want({});
}

} // namespace gui::gl
