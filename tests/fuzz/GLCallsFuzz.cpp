// Any calls in any order on buffers, commands, programs and textures of several contexts.

#include "GLWorld.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t n)
{
    fuzz::GLWorld world;
    world.live({bytes, n});
    return 0;
}
