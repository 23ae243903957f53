#pragma once

#include "support/OffscreenGL.h"

#include <gui/draw/Eye.h>
#include <gui/gl/FrameLedger.h>

#include <epoxy/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <glm/trigonometric.hpp>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <random>
#include <vector>

namespace test
{

constexpr int cPictureSize = 160;

/// In perspective, from a place to another one, with z upwards.
inline gui::draw::Eye eyeAt(const glm::dvec3& position, const glm::dvec3& target)
{
    const glm::dvec3 back = glm::normalize(position - target);
    const glm::dvec3 right = glm::normalize(glm::cross(glm::dvec3(0, 0, 1), back));
    return {position,
            glm::transpose(glm::dmat3(right, glm::cross(back, right), back)),
            glm::perspective(glm::radians(50.0), 1.0, 0.5, 1000.0),
            {cPictureSize, cPictureSize}};
}

/// From above, without a perspective: x and y are pixels, y upwards, from the middle.
inline gui::draw::Eye eyeAbove()
{
    constexpr double cHalf = cPictureSize / 2.0;
    return {{0, 0, 100}, glm::dmat3(1), glm::ortho(-cHalf, cHalf, -cHalf, cHalf, 1.0, 200.0), {2 * cHalf, 2 * cHalf}};
}

/// Draws what there is in space, and looks at its pixels.
class SpacePicture : public OffscreenGL
{
protected:
    using Picture = std::vector<unsigned char>; // four bytes for each pixel, from the bottom

    SpacePicture()
        : OffscreenGL({cPictureSize, cPictureSize})
    {
    }

    static Picture read()
    {
        Picture picture(std::size_t(4) * cPictureSize * cPictureSize);
        glReadPixels(0, 0, cPictureSize, cPictureSize, GL_RGBA, GL_UNSIGNED_BYTE, picture.data());
        return picture;
    }
    static Picture drawn(const std::function<bool()>& draw)
    {
        clear({0, 0, 0, 255});
        EXPECT_TRUE(draw());
        return read();
    }
    /// The pixel that a place from the middle is in, y upwards.
    static Pixel at(const Picture& picture, int x, int y)
    {
        const unsigned char* p =
            &picture[4 * static_cast<std::size_t>((y + cPictureSize / 2) * cPictureSize + x + cPictureSize / 2)];
        return {p[0], p[1], p[2], p[3]};
    }
    /// How many pixels have a channel that differs by more than so much.
    static int nOther(const Picture& a, const Picture& b, int most = 0)
    {
        int n = 0;
        for (std::size_t i = 0; i < a.size(); i += 4)
            for (std::size_t k = i; k < i + 3; ++k)
                if (std::abs(a[k] - b[k]) > most)
                {
                    ++n;
                    break;
                }
        return n;
    }
    /// The bytes that a draw uploads.
    static std::uint64_t nUploaded(const std::function<void()>& draw)
    {
        using gui::gl::FrameLedger;
        FrameLedger::start();
        FrameLedger::begin();
        draw();
        FrameLedger::end();
        const std::uint64_t n = FrameLedger::getLast().nBytesUploaded;
        FrameLedger::stop();
        return n;
    }

    double uniform(double low, double high) { return std::uniform_real_distribution<>(low, high)(_random); }
    glm::dvec3 somewhere(double size)
    {
        const double x = uniform(-size, size), y = uniform(-size, size);
        return {x, y, uniform(-size, size)};
    }

    std::mt19937 _random{5};
};

} // namespace test
