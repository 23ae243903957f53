#pragma once

namespace test
{

/// Covers the picture with one triangle whose pixels a fragment shader colours; without the library under test.
class FullScreen
{
public:
    /// A shader that does not compile fails the test.
    explicit FullScreen(const char* fragmentShader);
    ~FullScreen();
    FullScreen(const FullScreen&) = delete;
    FullScreen& operator=(const FullScreen&) = delete;

    /// @param depth  of all pixels, -1 to 1
    /// @param scale  1 covers the picture; 0.3 puts the corners at (-0.3, -0.3), (0.9, -0.3) and (-0.3, 0.9)
    void draw(float depth = 0, float scale = 1) const;

private:
    unsigned int _program = 0;
    unsigned int _vertexArray = 0;
};

} // namespace test
