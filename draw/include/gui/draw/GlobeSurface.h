#pragma once

#include "Eye.h"
#include "Globe.h"

#include <td/Export.h>

#include <glm/vec3.hpp>

#include <memory>
#include <optional>

namespace gui
{
class Texture;
}

namespace gui::draw
{

/// The ground of a Globe: a picture of it laid around, day and night, and the air above it. Drawn from a view's
/// drawScene:
///
///     gui::draw::GlobeSurface _earth{gui::draw::Globe{6371}};
///
///     void onInit() override { _isOk = _earth.init("earth.png"); }
///     void drawScene(const gui::draw::Eye& eye) override
///     {
///         _earth.draw(eye);
///         _borders.draw(eye);
///         _earth.drawOver(eye);
///     }
///
/// It belongs to the context in which it was initialised; after a loss of that it is there again. GUI thread only.
class GUIGL_API GlobeSurface
{
public:
    /// What there is beside the picture.
    struct Look
    {
        /// Air: the ground is blue towards the rim, and a glow is around it, up to cAirHeight.
        bool hasAir = true;
        /// Water glitters in the sun: wherever the picture is more blue than red.
        bool hasWater = true;
    };

    /// How high the air is, in radii above the ground: within it the glow is not seen, so an eye is to stay above.
    static constexpr double cAirHeight = 0.1;

    explicit GlobeSurface(const Globe& globe = {});     ///< with air and water
    GlobeSurface(const Globe& globe, const Look& look); ///< with what the look says
    ~GlobeSurface();
    GlobeSurface(const GlobeSurface&) = delete;
    GlobeSurface& operator=(const GlobeSurface&) = delete;

    /// Takes the picture, once, with the context current: all of the globe, twice as wide as it is high as a rule,
    /// with longitudes from -180 degrees at the left to 180 at the right and latitudes from 90 in the first row to -90
    /// in the last.
    /// @param file  an image file, or the resource behind a colon, as for gui::Texture::loadFromFile
    /// @return false when there is no such image, when GL does not take it, or has no such shaders, after what the log
    /// says of that; nothing is drawn then
    [[nodiscard]] bool init(const char* file);
    /// The same of a picture in memory, which is copied.
    [[nodiscard]] bool init(gui::Texture& picture);

    /// Where the sun is at the zenith; empty, and at first, it is where the eye is, and all that is seen has day.
    void setSun(const std::optional<Globe::Place>& sun) { _sun = sun; }
    const std::optional<Globe::Place>& getSun() const { return _sun; } ///< as it was set

    /// Draws the ground. Depth is tested and written, as drawScene finds it.
    void draw(const Eye& eye);
    /// After lines and other flat things on the ground, which it takes into the night and, where there is air, into the
    /// haze before the rim; and the glow of the air. It writes no depth.
    void drawOver(const Eye& eye);

private:
    struct Impl;

    glm::vec3 sunFor(const Eye& eye) const;

    Globe _globe;
    Look _look;
    std::optional<Globe::Place> _sun;
    std::unique_ptr<Impl> _pImpl; // null before init
};

} // namespace gui::draw
