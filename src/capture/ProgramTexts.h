#pragma once

#include "Bytes.h"

#include <gui/gl/CurrentContext.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace gui::gl
{

/// The shaders of the programs that were linked. GL forgets them when they are deleted, and programs delete theirs as
/// soon as they are linked.
class ProgramTexts
{
public:
    /// A program of the current context was linked, and has its shaders still.
    void keep(unsigned int program);

    /// A program of the current context as captured frames have it: shaders, places of attributes, places of uniforms.
    /// @return false, and nothing is written, when it was not seen when it was linked
    bool write(unsigned int program, ByteWriter& writer) const;

private:
    struct Shader
    {
        unsigned int type = 0;
        std::string text;
    };

    std::map<std::pair<CurrentContext::ID, unsigned int>, std::vector<Shader>> _programs;
};

} // namespace gui::gl
