#pragma once

#include "ContextResource.h"

#include <td/Export.h>

#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace gui::gl
{

/// Draws quads that have no vertex attributes: the vertex shader makes each corner from gl_VertexID, whose quotient by
/// 4 is the quad's number and whose remainder its corner, with what it finds in a BufferTexture or works out.
///
/// Corners 0, 1, 2 and 2, 1, 3 are the two triangles. Ranges of any length take one GL call together, which draws them
/// in their order. In another context than last time they begin anew by themselves. Not copyable. GUI thread only.
class GUIGL_API Quads
{
public:
    /// Some quads in a row.
    struct Range
    {
        std::uint32_t first = 0; ///< number of the first, below 2^29
        std::uint32_t count = 0;
    };

    Quads() = default;
    ~Quads();
    Quads(const Quads&) = delete;
    Quads& operator=(const Quads&) = delete;

    /// Draws with the program in use, and binds its own vertex array for it, which stays bound.
    /// @return false, with a log line, without a current context or names that the driver has to give
    bool draw(std::span<const Range> ranges);

    /// Deletes the GL objects. Needs no context.
    void release();

private:
    bool prepare();
    void drawPieces() const;
    void drawPages(std::span<const Range> ranges);
    unsigned int getPage(std::uint32_t page);
    void onContext(ContextResource::Event event);

    unsigned int _vao = 0;
    unsigned int _ebo = 0;
    std::map<std::uint32_t, unsigned int> _pages; // indices of some quads each, where there are no base vertices
    // What is here for all quads is made when it is needed.
    ContextResource _home{
        [](void* pThis, ContextResource::Event event) { static_cast<Quads*>(pThis)->onContext(event); }, this};
    std::vector<int> _counts, _bases;
    std::vector<const void*> _offsets;
};

} // namespace gui::gl
