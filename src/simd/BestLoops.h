#pragma once

namespace gui::gl
{

/// Of the same loops compiled for any machine and for AVX2, those that are best for this machine. Without GUIGL_AVX2
/// there are none for AVX2.
template <typename Loops, const Loops& any, const Loops& forAVX2>
const Loops& bestLoops()
{
#ifdef GUIGL_AVX2
    static const Loops& s_best = __builtin_cpu_supports("avx2") ? forAVX2 : any;
    return s_best;
#else
    return any;
#endif
}

} // namespace gui::gl
