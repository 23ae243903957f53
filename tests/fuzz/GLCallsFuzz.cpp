// Any calls in any order on buffers, commands, programs and textures of several contexts.

#include "GLWorld.h"

namespace fuzz::glcalls
{

namespace
{

void run(const std::uint8_t* bytes, std::size_t n)
{
    GLWorld world;
    world.live({bytes, n});
}

const Target cTarget("gl", run);

} // namespace

} // namespace fuzz::glcalls
