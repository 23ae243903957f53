#pragma once

#include <array>

namespace gui::draw
{

/// What is drawn into: a framebuffer or the frame, and where in it.
struct BoundTarget
{
    int framebuffer = 0;
    std::array<int, 4> viewport{};
    int nSamples = 0;
    unsigned int depthFormat = 0; ///< GL's, of which depth is copied to a buffer of the same; 0 for none that is known
    bool hasStencil = false;      ///< with it

    /// What is bound now.
    static BoundTarget get();
    bool isEmpty() const { return viewport[2] <= 0 || viewport[3] <= 0; }
    /// Makes a texture one of its depth's format and the viewport's size, which attaches it to the framebuffer that is
    /// bound, and stays bound itself.
    void attachDepthTexture(unsigned int texture) const;
    /// Copies its depth to a framebuffer of the viewport's size, which is bound for drawing afterwards, as this is for
    /// reading.
    void copyDepth(unsigned int framebuffer) const;
    void bind() const;

    bool operator==(const BoundTarget&) const = default;
};

} // namespace gui::draw
