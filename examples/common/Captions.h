#pragma once

#include <gui/gl/Text.h>
#include <td/ColorID.h>
#include <td/Point.h>
#include <td/Size.h>

#include <span>
#include <string>
#include <vector>

namespace examples
{

/// Names over a picture, in one size of one typeface, which do not overlap. Their letters stand on whole pixels and
/// come from a font of the very size that the frame shows, if there is one. Begin, add, and draw as often as nothing
/// changes.
///
/// Places are pixels of the frame, y downwards. init and draw need the context current that init was called in.
class Captions
{
public:
    struct BakedFont
    {
        const char* name; ///< as Font::load takes it
        float size;       ///< pixels per em
    };

    struct Box
    {
        float left, top, right, bottom;

        bool overlaps(const Box& other) const
        {
            return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
        }
    };

    struct Style
    {
        td::ColorID color;
        td::ColorID groundColor;
        std::span<const td::Point<float>> ground; ///< how far copies in that colour lie from the text, in points
    };

    Captions() = default;
    ~Captions();
    Captions(const Captions&) = delete;
    Captions& operator=(const Captions&) = delete;

    /// @param fonts  from the smallest to the largest  @param size  that is shown, in points per em
    /// @return false, after a line in the log, when a font is missing
    [[nodiscard]] bool init(std::span<const BakedFont> fonts, float size);

    /// Drops what was added.
    /// @param size  of the frame, in points  @param scale  device pixels per point
    void begin(const td::Size<double>& size, float scale);

    /// @param text  of one line or more, as for addIfFree
    td::Size<float> measure(const std::string& text) const;

    /// Adds a text, each of its lines centred, unless some of it would be outside of the frame, or too near to what was
    /// reserved.
    /// @return whether it was added; its place is reserved then
    bool addIfFree(const td::Point<float>& middle, const std::string& text, const Style& style);

    /// Adds a text of one line in any case. @param place  its top left corner
    void add(const td::Point<float>& place, const std::string& text, const Style& style);

    void reserve(const Box& box) { _taken.push_back(box); }

    /// What was reserved, in this order.
    const std::vector<Box>& getTaken() const { return _taken; }

    void draw(gui::gl::Text::Ctrl ctrl) { _text.render(ctrl); }

private:
    gui::gl::Font& font() const { return *_text.getFont(_nthFont); }

    mutable gui::gl::Text _text; // measuring asks it for its font
    std::vector<float> _sizes;
    std::vector<Box> _taken;
    float _size = 1;
    float _scale = 1;
    float _fontScale = 1;
    float _width = 0;
    float _height = 0;
    unsigned char _nthFont = 0;
};

} // namespace examples
