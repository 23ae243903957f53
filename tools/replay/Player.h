#pragma once

#include "Walk.h"

#include <gui/gl/OffscreenContext.h>

#include <epoxy/gl.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace replay
{

/// Draws a frame, as often as one likes, in a context of its own.
class Player
{
public:
    /// Throws an Error when there is no context, or when the file is one that this OpenGL can't draw.
    explicit Player(const gui::gl::FrameFile& file);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// Who wants to know. The context is current.
    struct Watcher
    {
        virtual ~Watcher() = default;
        /// Changes a shader before it is compiled.
        virtual std::string changed(GLenum, const std::string& text) { return text; }
        virtual void onProgram(GLuint) {}
        virtual void beforeDraw(const Step&) {}
        virtual void afterDraw(const Step&) {}
    };

    /// Draws the frame from its beginning.
    /// @param nDraws  after so many it ends  @return how many there were
    std::size_t play(std::size_t nDraws = SIZE_MAX, Watcher* pWatcher = nullptr);

    /// Where the last draw went; as all names here, that of GL here.
    GLuint drawFramebuffer() const;
    /// Where the frame ends.
    GLuint screen() const;

    td::Size<int> screenSize() const;
    const FrameModel& model() const { return *_pModel; }
    /// What a name of GL's here was called in the program that was captured. 0 for none.
    unsigned int nameBefore(GLCall::Kind kind, GLuint name) const;

private:
    void take(const Step& step);
    void call(const GLCall& call, std::vector<gui::gl::CallArgument> arguments);
    void checkThere(const GLCall& call) const;
    void generate(const GLCall& call, CallArguments arguments);
    void remove(const GLCall& call, CallArguments arguments);
    void makeProgram(unsigned int name, gui::gl::ByteSpan bytes);
    void deleteProgram(unsigned int name);
    void clear();
    GLuint nameNow(GLCall::Kind kind, std::int64_t name) const;
    GLint locationNow(std::int64_t location) const;

    const gui::gl::FrameFile& _file;
    gui::gl::OffscreenContext _context;
    std::unique_ptr<FrameModel> _pModel;
    Watcher* _pWatcher = nullptr;
    std::map<GLCall::Kind, std::map<unsigned int, GLuint>> _names;
    std::map<unsigned int, std::map<std::int64_t, GLint>> _locations; // by program
};

} // namespace replay
