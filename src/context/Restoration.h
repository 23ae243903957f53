#pragma once

#include <gui/gl/CurrentContext.h>

#include <map>
#include <utility>
#include <vector>

namespace gui::gl
{

/// Gives names to what is made anew in a context that takes another's place: those that it had, wherever the driver
/// hands them out, so that names that an application remembers go on meaning the same.
class Restoration
{
public:
    Restoration();
    /// Gives back the names that nobody wanted.
    ~Restoration();
    Restoration(const Restoration&) = delete;
    Restoration& operator=(const Restoration&) = delete;

    /// A new name, as glGen* and glCreateProgram give them.  @param old  the one to have again, 0 for any. Outside of a
    /// restoration it is any.  @return 0 when GL has none to give
    static unsigned int makeName(CurrentContext::Kind kind, unsigned int old);
    /// What is called now what was called so in the context that is gone; 0 for what is not there any more. In a
    /// restoration, or of the last one.
    static unsigned int getNew(CurrentContext::Kind kind, unsigned int old);

private:
    using Name = std::pair<CurrentContext::Kind, unsigned int>;

    std::map<Name, unsigned int> _names; // by the old ones
    std::vector<Name> _spares;           // that came on the way to others
    Restoration* _pBefore;
};

} // namespace gui::gl
