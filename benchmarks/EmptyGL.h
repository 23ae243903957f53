#pragma once

namespace bench
{

/// Puts functions that do nothing in the place of the GL entry points that drawing uses while it lives, so that what is
/// measured is the code that calls them. Its vertex array, buffer, program and textures are all number 1.
class EmptyGL
{
public:
    EmptyGL();
    ~EmptyGL();
    EmptyGL(const EmptyGL&) = delete;
    EmptyGL& operator=(const EmptyGL&) = delete;
};

} // namespace bench
