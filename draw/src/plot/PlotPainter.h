#pragma once

#include "PlotScene.h"

#include <gui/gl/BufferTexture.h>
#include <gui/gl/Program.h>
#include <gui/gl/Quads.h>

#include <td/Size.h>

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>

namespace gui::draw
{

/// Draws scenes: one table for each, uploaded when it has changed, and a call for each pass.
class PlotPainter
{
public:
    PlotPainter();
    ~PlotPainter();

    /// Draws into the viewport, over what is there. State is left as a StateGuard of the caller's puts it back.
    /// @param isChanged  whether the scene is another one than at the last call
    /// @return false, with a log line for each kind of reason once
    bool draw(const PlotScene& scene, bool isChanged);

private:
    class PassProgram;

    PassProgram* programFor(std::size_t number);
    bool fail(const char* reason);

    /// What the GPU has of a cloud, or of a grid.
    struct Kept
    {
        explicit Kept(gl::BufferTexture::Format format)
            : table(format)
        {
            table.setKeptForRestore(false);
        }

        gl::BufferTexture table;
        std::size_t version = 0;
        bool isUsed = true;
    };
    using AllKept = std::unordered_map<std::uint64_t, std::unique_ptr<Kept>>;

    static Kept& keep(std::uint64_t id, AllKept& all, gl::BufferTexture::Format format);
    bool bindCloud(const PlotScene::Cloud& cloud);
    bool bindGrid(const PlotScene::GridLook& grid);

    std::array<std::unique_ptr<PassProgram>, 6> _programs;
    AllKept _clouds, _grids; // by numbers of series and maps
    gl::BufferTexture _table{gl::BufferTexture::Format::UInt4};
    gl::Quads _quads;
    gl::CurrentContext::ID _contextID = 0;
    const char* _lastFailure = nullptr;
};

} // namespace gui::draw
