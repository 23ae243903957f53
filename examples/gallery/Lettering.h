#pragma once

#include "Scene.h"

#include <gui/gl/Text.h>

#include <glm/vec2.hpp>

#include <string>
#include <vector>

namespace gallery
{

/// A font of the gallery: ":gallery/FAMILY-SIZE.font" in sizes of device pixels.
struct Typeface
{
    const char* family;
    int size; ///< points per em
};

/// Text that is new in every frame: begin, add, draw. Points of the frame, y downwards. Pictures of letters are taken
/// in the size that the frame shows, and stand on whole device pixels.
class Lettering
{
public:
    struct Style
    {
        std::size_t face; ///< which of the typefaces
        td::ColorID color;
        td::BYTE alignment = gui::gl::Font::cLeft;
        float pitch = 0; ///< from line to line, in points; 0 for what the font's designer wants
        float z = 0;     ///< depth, -1 (far) to 1 (near)
    };

    explicit Lettering(std::vector<Typeface> faces);
    ~Lettering();
    Lettering(const Lettering&) = delete;
    Lettering& operator=(const Lettering&) = delete;

    void init();

    /// Drops what was added, and takes other fonts when the scale has changed.
    /// @return false, after a line in the log, when a font is missing
    bool begin(const Frame& frame);

    /// @param place  where the first line's baseline begins, has its middle or ends, by the alignment
    void add(const glm::vec2& place, const std::string& text, const Style& style);

    float widthOf(const std::string& text, std::size_t face);

    /// The text with its spaces turned into line feeds where a line would be wider than this.
    std::string wrapped(const std::string& text, float width, std::size_t face);

    void draw(gui::gl::Text::Ctrl ctrl = gui::gl::Text::Ctrl::BlendNoDepthTest);

private:
    struct Metrics
    {
        float scale; // of the font, to the size that is shown
        float baseline;
        float linePitch;
        float lineHeight;
    };

    bool load(std::size_t face);

    gui::gl::Text _text;
    std::vector<Typeface> _faces;
    std::vector<Metrics> _metrics;
    float _scale = 0; // device pixels per point
};

} // namespace gallery
