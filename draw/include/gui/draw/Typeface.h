#pragma once

#include "FontTag.h"
#include "GlyphImage.h"
#include "Path.h"

#include <td/Export.h>
#include <td/RectNormalized.h>
#include <td/Types.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gui::draw
{

class TypefaceImpl;

/// A face of letters: a TrueType or OpenType font, fixed or variable, or a baked face, with the faces that stand in for
/// characters that it lacks.
///
///     #include <gui/draw/Typeface.h>
///     #include <cstdio>
///
///     int main()
///     {
///         using gui::draw::Typeface;
///         const Typeface face = Typeface::named("DejaVu Serif", {.weight = 700});
///         if (!face)
///             return 1;
///         const gui::draw::Path letter = face.getOutline(face.getGlyph(U'g'));
///         std::printf("%s: %g units of %g long\n", face.getFamily().c_str(), letter.getLength(),
///                     face.getMetrics().unitsPerEm);
///         return 0;
///     }
///
/// It is a handle: copies share the font, which never changes and is closed with the last of them. The default is no
/// face, and is asked for nothing else: of it all numbers are 0 and all pictures empty. Lengths are in the font's own
/// units (getMetrics says how many make an em), unhinted, so that a text is as wide at one size as at any other.
///
/// Fonts are hostile input. A font that is broken in parts shows nothing there, and takes no more memory than 300 MiB
/// beside its file. The file is mapped into memory: it has to stay as it is while the face lives.
///
/// Colours come from pictures (CBDT, sbix), layers (COLR, version 0) and paints (COLR, version 1: gradients,
/// transforms and composites, of a variable font too). Layers are as sharp as letters. A Drawing shows a paint in
/// just the size that is seen, up to 240 pixels in width and height, in texts in points, and with 128 pixels per em
/// in those in model units; beyond that it is enlarged. Between a gradient's stops the four components are mixed as
/// they are. Glyphs in SVG are drawn as their outline, and so are those whose paint is broken, has no bounds or no
/// end, or more than 16384 parts, 64 within each other, or 256 over each other.
///
/// A baked face is made ahead by `fontbake FONT --face -o NAME.face`, or in a build by guigl_bake_face of the CMake
/// package, and opened as font files are. It is a part of the font: a set of characters, all that shapes, measures and
/// outlines them, a variable font's axes, layers in colour. So drawings show it as they show the font itself, pixel for
/// pixel, at every size, with halos, heavier letters and features, and ask neither FreeType nor the system's fonts for
/// anything. What differs:
///
/// - What it lacks no other face shows, unless withFallbacks says so: a text shows the sign for a missing glyph.
/// - Pictures in colour (CBDT, sbix) are left out.
/// - getImage, which drawings have no use for then, neither hints nor makes images of layers.
///
/// Its file is "GuiGLFac", the format's version (now 1), how many bytes follow the header, and their checksum: 8, 4, 4
/// and 8 bytes, little-endian; then an OpenType font. Each of these is checked, and the font is read as any other is.
///
/// Where the library is built with GUIGL_FREETYPE=OFF, only what is provided has a name, and what getImage makes of a
/// baked face it makes of all.
///
/// All of it can be used on several threads at once, but for making faces of resources and setLogSink, which belong to
/// the GUI thread. getImage waits for others that make images of the same font.
class GUIGL_API Typeface
{
public:
    using Rect = td::RectNormalized<double>; ///< in font units, y downwards

    /// Whether letters lean.
    enum class Slant : td::BYTE
    {
        Upright,
        Italic, ///< with letters of its own
        Oblique ///< the upright ones, leaning
    };

    /// Which of a family's faces.
    struct Look
    {
        double weight = 400; ///< 1 to 1000: 100 thin, 400 regular, 700 bold, 900 black
        Slant slant = Slant::Upright;
        double width = 100; ///< in percent of the normal one, 50 to 200
    };

    /// An axis of a variable font.
    struct Axis
    {
        FontTag tag;
        std::string name; ///< for people, in English
        double minimum = 0;
        double standard = 0; ///< where the axis is when nothing is said
        double maximum = 0;
        bool isHidden = false; ///< whether the font's maker would not show it to users
    };

    /// Lengths in font units. What a font does not tell is taken from its letters, or is a usual part of the em.
    struct Metrics
    {
        double unitsPerEm = 0;
        double ascent = 0;             ///< from the base line up to the line's top
        double descent = 0;            ///< from the base line down to the line's bottom, above 0
        double lineGap = 0;            ///< between a line's bottom and the next one's top
        double underlinePosition = 0;  ///< from the base line down to the middle of the line under the text
        double underlineThickness = 0; ///< of that line
        double strikeoutPosition = 0;  ///< from the base line up to the middle of the line through the text
        double xHeight = 0;            ///< of small letters without ascenders
        double capHeight = 0;          ///< of capital letters
    };

    Typeface() = default; ///< none

    /// A font of a file.
    /// @param fileName  a path, or a resource's name after a colon (":name", see gui::Res); one that is compiled in is
    ///                  used where it lies
    /// @param index     which font of a collection
    /// @return no face, after one of the lines
    ///         "ERROR! Typeface::fromFile cannot open font file: %s" (no resource, no regular file, no right to read)
    ///         "ERROR! Typeface::fromFile cannot use font file: %s (%s)" (what is wrong: "not a TrueType or OpenType
    ///         font", "no face of index 3", "baked face is cut off", "baked face is damaged",
    ///         "baked face of version 2, not 1", or FreeType's words)
    static Typeface fromFile(const char* fileName, unsigned int index = 0);

    /// A font in memory, which is copied.
    /// @return no face, after the line "ERROR! Typeface::fromMemory cannot use font of %zu bytes (%s)"
    static Typeface fromMemory(std::span<const td::BYTE> bytes, unsigned int index = 0);

    /// The face that the program provides under this name, or else the one that the system has, or the nearest that
    /// fontconfig knows where it has none such: getFamily tells which one came. A variable font is set to the look.
    /// Each face is opened once and stays open, so asking again is quick.
    /// @param family  "DejaVu Sans", or "sans-serif", "serif", "monospace", "emoji" for what the user has chosen
    /// @return no face where there is no font at all: "ERROR! Typeface::named finds no font for: %s"
    static Typeface named(const std::string& family, const Look& look);
    static Typeface named(const std::string& family) { return named(family, Look()); }

    /// Brings the program's own faces under a name: named gives these from then on, and for "sans-serif" every style
    /// has them that names no face.
    ///
    ///     Typeface::provide("sans-serif", {Typeface::fromFile(":text.face"), Typeface::fromFile(":text-bold.face")});
    ///
    /// Of several that one comes which is nearest to the look: by width, then slant, then weight, as in CSS Fonts 4; a
    /// variable one is set to the look as far as its axes go. Texts that are laid out already keep their faces.
    /// @param family  as it is asked for, capitals and small letters told apart
    /// @param faces   instead of those of an earlier call; no face among them is passed over, and without any the name
    ///                is the system's again
    static void provide(const std::string& family, std::vector<Typeface> faces);

    /// The same face elsewhere on its axes. Axes that it lacks are passed over, those that aren't named stay as they
    /// are; a font that isn't variable comes back as it is.
    Typeface withVariations(std::span<const FontVariation> variations) const;
    Typeface withVariations(std::initializer_list<FontVariation> variations) const
    {
        return withVariations(std::span(variations.begin(), variations.size()));
    }

    /// The same face with others for characters that it lacks, in the order in which they are asked. They replace those
    /// of an earlier call; their own are not asked.
    /// @param asksSystem  whether the system's fonts are looked through when none of these has a character, as they are
    ///                    for a face that nothing was said of, unless it is baked
    Typeface withFallbacks(std::vector<Typeface> faces, bool asksSystem = true) const;

    /// Whether there is a face.
    explicit operator bool() const { return _pImpl != nullptr; }

    /// A number for what glyphs look like: the same for copies and for the same font with other faces to fall back on,
    /// another one for each font that is opened and each place on its axes. Never given twice; 0 for no face.
    std::uint64_t getID() const;

    /// As the font has it, in English: "DejaVu Sans".
    std::string getFamily() const;
    /// The name within the family: "Bold Oblique".
    std::string getStyleName() const;
    const Metrics& getMetrics() const;
    std::uint32_t getNumberOfGlyphs() const;

    /// All axes of a variable font, none of another one; and where it is on each.
    std::vector<Axis> getAxes() const;
    std::vector<FontVariation> getVariations() const;
    /// The features that the font has for any script, each once, by tag.
    std::vector<FontTag> getFeatures() const;

    /// The glyph that stands for a character; 0, which is the picture of a missing one, where there is none.
    std::uint32_t getGlyph(char32_t character) const;

    /// The face that shows a character: this one where it has it, else the first of its fall-back faces, else the one
    /// that the system prefers with this face's family, weight and slant. It remembers what the system said.
    /// @param language  as BCP 47 has it ("ja", "zh-TW"): it decides among faces for Chinese, Japanese and Korean
    /// @return no face where nobody has the character
    Typeface forCharacter(char32_t character, std::string_view language = {}) const;

    /// How far the pen goes on, in font units.
    double getAdvance(std::uint32_t glyph) const;
    /// Around what is to be seen of a glyph, y downwards from the base line; empty for a space and for a glyph that
    /// there isn't.
    std::optional<Rect> getBounds(std::uint32_t glyph) const;

    /// The outline: closed subpaths of lines and curves as the font has them, to be filled by FillRule::NonZero. In
    /// font units, from the pen, y growing downwards: letters stand above the base line, at y < 0. Empty for a space, a
    /// picture, and a glyph that there isn't or that is broken.
    Path getOutline(std::uint32_t glyph) const;

    /// Whether a glyph is a picture, layers or a paint in colour; its outline may be empty or poorer then.
    bool isColorGlyph(std::uint32_t glyph) const;

    /// A glyph as pixels, by FreeType but for paints: in colour where isColorGlyph says so, unhinted if it is painted,
    /// else how far each pixel is covered. Of a baked face never hinted, and none in colour.
    /// @return empty, with a log line, when it can't be drawn:
    ///         "ERROR! Typeface::getImage cannot draw glyph %u of %s at %g pixels (%s)": what FreeType finds wrong with
    ///         it, "larger than 4096 pixels", "too many layers" of a large picture, "no such size" for one that isn't
    ///         above 0 and at most 4096, or, of a baked face, "in colour, which needs FreeType".
    ///         For no face it is empty without a line
    std::optional<GlyphImage> getImage(std::uint32_t glyph, const GlyphRequest& request) const;

    /// Whether both are copies of one handle. Two from the same file aren't, unless both are from named.
    bool operator==(const Typeface&) const = default;

private:
    friend class TypefaceImpl;

    explicit Typeface(std::shared_ptr<const TypefaceImpl> pImpl);

    std::shared_ptr<const TypefaceImpl> _pImpl;
};

} // namespace gui::draw
