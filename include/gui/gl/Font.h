#pragma once

#include "ContextResource.h"

#include <cnt/Dictionary.h>
#include <cnt/PushBackVector.h>
#include <cnt/SafeFullVector.h>
#include <gui/Image.h>
#include <td/Color.h>
#include <td/ColorID.h>
#include <td/Export.h>
#include <td/Point.h>
#include <td/Range.h>
#include <td/Size.h>
#include <td/StringBase.h>
#include <td/Types.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

namespace arch
{
class ArchiveIn;
class FileSerializerIn;
} // namespace arch

namespace gui
{
class Texture;
}

namespace gui::gl
{

class GlyphTable;
class LayoutMemo;
struct FontEdits;
class Program;
struct FontMetrics;

/// A bitmap font together with the text laid out in it.
///
/// load a font file, add strings, and they are drawn: each glyph is a textured quad, each string one draw call in a
/// colour and at a depth of its own. Fonts are members of a Text, which draws them (Text::getFont, Text::loadFont); a
/// font of its own, outside of any Text, loads but refuses to lay out. To replace all text: reset, then add strings
/// again; to replace some, replaceString and setColor.
///
/// Text is UTF-8; malformed bytes count as U+FFFD (see vo::UTFConverter). Coordinates are the pixels of the frame, y
/// growing downwards, and a string's position is the top left corner of its first line (or the top right one or the
/// middle of its top, by its alignment). Metrics are in font units; a string's scale multiplies them all. U+0020 and
/// U+0009 move the pen by the font's space, U+000A and U+2028 break the line, and a code point that the font lacks
/// shows its last glyph.
///
/// Moves, but can't be copied; no assignment. load, setTexture, commit and draw need the view's context current. The
/// destructor deletes the atlas texture, the vertex array and its buffer, and needs no context. When the context dies
/// they are gone: the strings are uploaded anew by the next commit, the atlas by the next load. But when another
/// context takes its place (see View), both are made anew, from the strings and from what setKeptForRestore keeps. GUI
/// thread only.
class GUIGL_API Font
{
public:
    /// Metrics of a glyph, in font units.
    struct _glyph
    {
        float bearing; ///< from the pen to the quad
        float advance; ///< of the pen
        float width;   ///< of the picture; the quad is wider by the padding
        float tx; ///< left edge of the picture in the atlas, 0 to 1; the right edge is the next glyph's, 1 the last's
    };

    /// A vertex: its place in the frame and in the atlas.
    struct _vd
    {
        float x;
        float y;
        float u;
        float v;
    };

    /// A string: its vertices, its depth and its colour.
    struct _cmd
    {
        unsigned int firstVertex;
        unsigned int vertexCount;
        float z;
        td::ColorID colorID;
        bool hasColor; ///< whether color counts, else colorID
        td::Color color;
    };

    /// Values of _format::hAlignment; those above 2 centre too.
    static constexpr td::BYTE cLeft = 0;
    static constexpr td::BYTE cCentre = 1;
    static constexpr td::BYTE cRight = 2;

    /// How a string looks.
    struct _format
    {
        float scale = 1.0f;                       ///< multiplies all metrics
        float z = 0.0f;                           ///< depth, -1 (far) to 1 (near)
        td::ColorID colorID = td::ColorID::Black; ///< NoColor leaves the colour of the string before
        td::BYTE hAlignment = cLeft;              ///< which end of each line the position is
        std::optional<td::Color> color = {};      ///< one that is not in the table, in the place of colorID
    };

    Font();
    /// The other one has no glyphs, no strings and no GL objects afterwards.
    Font(Font&& other) noexcept;
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font();

    /// Loads a font file and makes the atlas texture. A second load replaces glyphs and texture; strings added before
    /// keep their places in the old atlas, so reset() first.
    /// @param fileName  a path, or a resource's name after a colon (":name", see gui::Res). One that is compiled in is
    ///                  read where it lies, and stands in the log by its name
    /// @return this font; null when
    ///         - the name is null or names no resource: nothing is logged, and the font is as it was
    ///         - the file can't be opened or isn't a regular one: "ERROR! Font::load cannot load file: %s" (the path),
    ///           and the font is as it was
    ///         - the file is refused: a line with the cause comes before that one (see loadBinaryData)
    ///         - there is no context ("Error! Font::load without a current GL context!"), GL has no texture name to
    ///           give (not logged), or the atlas exceeds GL's largest texture ("ERROR! Font::load atlas of %u x %u
    ///           pixels exceeds GL's limit of %d in file: %s"). Glyphs and metrics are the new ones
    ///         A font that is not as it was has no texture: it isn't drawn until a load succeeds.
    /// @throws std::ios_base::failure when the file is shorter than its content says
    Font* load(const char* fileName);
    Font* load(const td::StringBase& fileName);

    /// The reading half of load, without GL: metrics, glyphs and the pixels of the atlas.
    ///
    /// A font file is a sequence of little-endian values without gaps: the floats metric A, metric B, space width,
    /// glyph padding, metric C, line height; the 32-bit atlas width and height in pixels; the 16-bit bits per pixel (8
    /// coverage, 16 grey and alpha, 24 RGB, 32 RGBA) and number of glyphs (at least 1); for each glyph its 32-bit code
    /// point and the floats bearing, width, advance, tx; then the pixels, row by row from the top. The glyphs stand
    /// side by side in the atlas in the file's order, so tx grows from glyph to glyph. Every glyph is as high as the
    /// atlas, which is the line.
    /// @param fileName  a path, not null
    /// @param imgData   gets the atlas  @param metricC  gets metric C
    /// @return true when all was read. false when the file can't be opened (nothing is logged or changed), and, with
    ///         the metrics as read and no glyphs, after one of the lines
    ///         "ERROR! Font::load detected zero glyphs in file: %s"
    ///         "ERROR! Font::load texture coordinate of glyph %u is not from 0 to 1 in file: %s"
    ///         "ERROR! Font::load cannot use %u bits per pixel in file: %s"
    /// @throws std::ios_base::failure when the file is shorter than its content says, which is found before memory is
    ///         taken on its word. Metrics are as read then; glyphs are there if the file has all of them, else none
    bool loadBinaryData(const char* fileName, gui::Image::_data& imgData, float& metricC);

    /// Makes the atlas texture of an image, for a font that was read by loadBinaryData. The image's first row becomes
    /// the top; the red channel is the coverage.
    /// @return false when the image is none, has neither 3 nor 4 bytes per pixel or exceeds GL's largest texture
    ///         ("Error! Font::setTexture using invalid texture"), when the font has a texture (an assertion), when GL
    ///         has no texture name to give, or without a context
    bool setTexture(const gui::Texture& image);

    /// false frees what is kept of the atlas, and keeps none of the next: when the context is lost, it is too, and the
    /// font draws nothing until the next load ("Error! Font: its atlas went with its context, as it is not kept for
    /// restoring", once). true, the default, costs the atlas' pixels as they are in the font's file, 1 byte each as a
    /// rule, from the next load or setTexture on.
    void setKeptForRestore(bool isKept);
    bool isKeptForRestore() const { return _isKept; }

    /// Adds a string: lays it out and records its draw. On committed content it writes "ERROR! Font::addString called
    /// on committed font content! Call reset before addString!" and asserts; a font without glyphs adds nothing; a font
    /// of no Text, or one whose atlas coordinates do not grow at a glyph of the string, asserts. All these return (0,
    /// 0).
    ///
    /// The pen starts at the position. The first glyph of a line is pulled left by its bearing, those behind it are
    /// pushed right by theirs; half of the padding stands out on each side. In aligned text (centre, right) each line
    /// that ends in U+000A is placed on its own by its measure, and empty lines take no room.
    /// @param len  in bytes; nothing at or behind it is read. 0 means up to the terminating zero
    /// @return width and height of the text in the frame's pixels, as far as the pen went: to right of the last
    ///         advance, and down to the next line's top
    td::Size<float> addString(const td::Point<float>& pos, const char* str, unsigned long len, const _format& format);
    td::Size<float> addString(const td::Point<float>& pos, const td::StringBase& str, const _format& format);
    /// Left-aligned, at depth 0.
    td::Size<float> addString(const td::Point<float>& pos, const char* str, unsigned long len, td::ColorID colorID,
                              float scale);
    td::Size<float> addString(const td::Point<float>& pos, const td::StringBase& str, td::ColorID colorID, float scale);
    td::Size<float> addString(const td::Point<float>& pos, const char* str, unsigned long len, td::Color color,
                              float scale);
    td::Size<float> addString(const td::Point<float>& pos, const td::StringBase& str, td::Color color, float scale);

    /// How many strings there are. They are numbered from 0 in the order in which they were added, until reset:
    /// @code
    /// const std::size_t clock = font.getNoOfStrings();
    /// font.addString({10, 10}, "00:00", 0, td::ColorID::Black, 1);
    /// // and later, before any frame
    /// font.replaceString(clock, {10, 10}, now, {.scale = 1});
    /// font.setColor(clock, td::ColorID::Red);
    /// @endcode
    std::size_t getNoOfStrings() const { return _commands.size(); }

    /// Puts another text, or the same elsewhere or in other looks, in the place of a string: drawn when that one was,
    /// laid out as by addString. It may be called on committed content too, of which the next commit uploads the
    /// string's own vertices and nothing else. A string that has grown gets new room, half as much again as it takes,
    /// and its old one is free only after reset: keep strings that grow without end in a font of their own.
    /// @param index  below getNoOfStrings() ("index < _commands.size()")
    /// @return as addString. What that refuses leaves the string as it was
    td::Size<float> replaceString(std::size_t index, const td::Point<float>& pos, const char* str, unsigned long len,
                                  const _format& format);
    td::Size<float> replaceString(std::size_t index, const td::Point<float>& pos, const td::StringBase& str,
                                  const _format& format);

    /// Another colour for a string, on committed content too. Nothing is uploaded.
    /// @param index  below getNoOfStrings() ("index < _commands.size()")
    void setColor(std::size_t index, td::ColorID colorID);
    void setColor(std::size_t index, td::Color color);

    /// The size of a piece of a string in font units: multiply by the scale. It differs from what addString returns
    /// where lines break (each adds the additional space to the height) and where a line or the piece begins with a
    /// space or a break (only the piece's very first code point is pulled left).
    /// @param len    in bytes, 0 up to the terminating zero
    /// @param range  the piece: where it starts and how many bytes it has, 0 for all that follow
    /// @return (0, 0) for a piece that is empty or goes beyond len, and for a font without glyphs; asserts as addString
    td::Size<float> measure(const char* str, unsigned long len, const td::Range<unsigned int>& range) const;
    td::Size<float> measure(const td::StringBase& str, const td::Range<unsigned int>& range) const;

    /// Lays out bytes without recording a draw: what addString does for each of its lines. Asserts as addString does.
    td::Size<float> addGlyphs(const td::Point<float>& pos, const unsigned char* begin, const unsigned char* end,
                              float scale);

    /// Additional advance after every glyph and space, in font units; 0 at first.
    void setAdditionalSpaceBetweenGlyphs(float space);
    /// From the bottom of a line to the top of the next, in font units; 1 at first.
    void setSpaceBetweenLines(float space);
    /// Two levels that are kept for the application; nothing reads them.
    void setZLevel(float first, float second);

    /// Makes room for this many glyphs, and for 128 strings. Drops the strings added so far.
    void reserve(unsigned long nGlyphs);

    /// Uploads the strings; does nothing when they are. Text::render calls it.
    /// @return false after "ERROR! Font::commit cannot create VAO!" (or VBO), or without a context
    bool commit();

    /// Draws the strings; the vertex array stays bound. Text::render calls it, with the atlas' unit active.
    /// @param prog  the Text's own program, active (an assertion). Fonts must be loaded and committed (assertions)
    void draw(Program* prog);

    /// Drops the strings, keeps the memory. GL objects live on until the next commit.
    void reset();

    /// Frees the strings' memory and deletes vertex array and buffer; glyphs and texture stay. Needs no context. A font
    /// that was committed still counts as such: reset() before strings are added again.
    void release();

private:
    friend class Text;

    using Scratch = cnt::SafeFullVector<wchar_t, false>;

    bool read(arch::FileSerializerIn& file, const char* fileName, gui::Image::_data& imgData, float& metricC);
    bool readGlyphs(arch::ArchiveIn& archive, unsigned short noGlyphs, const char* fileName);
    void dropGlyphs();
    bool makeTexture(unsigned int width, unsigned int height, const td::BYTE* pPixels, unsigned int bytesPP,
                     bool isMipmapped, unsigned int before = 0);
    bool upload();
    void onTextureContext(ContextResource::Event event);
    void onBufferContext(ContextResource::Event event);
    void deleteTexture();
    void deleteBuffers();
    void deleteBufferNames() const;
    void forgetDead();

    bool isEmpty() const { return _pTable == nullptr; }
    FontMetrics metrics() const;
    bool canLayOut(const char* begin, const char* end) const;
    bool canLayOut(const char* str, std::size_t len, const _format& format) const;
    bool isLaidOut(const char* begin, const char* end) const;
    void measurePiece(const char* begin, const char* end, td::Size<float>& size) const;
    template <bool tellsSpacesApart>
    td::Size<float> addRun(const td::Point<float>& pos, const char* begin, const char* end, float scale);
    td::Size<float> addGrowing(const td::Point<float>& pos, const char* begin, const char* end, float scale);
    td::Size<float> addPrecisely(const td::Point<float>& pos, const char* begin, const char* end, float scale);
    td::Size<float> addPiece(const td::Point<float>& pos, const char* begin, const char* end, float scale);
    static void setLooks(_cmd& cmd, const _format& format);
    bool uploadEdits();
    void describeVertices() const;
    void recordString(std::size_t firstVertex, std::size_t nVertices, const _format& format);
    td::Size<float> addAlignedText(const td::Point<float>& pos, const char* str, std::size_t len,
                                   const _format& format);
    td::Size<float> addAligned(const td::Point<float>& pos, const char* begin, const char* end, float measuredWidth,
                               const _format& format);
    td::Size<float> addLines(const td::Point<float>& pos, const char* str, std::size_t len, const _format& format);

    std::shared_ptr<Scratch> _pUTF32; // of the Text that made it; a font that has none lays nothing out
    cnt::SafeFullVector<_glyph, false> _glyphs;
    cnt::Dictionary<wchar_t, unsigned short> _glyphMap;
    cnt::PushBackVector<_vd, 0> _vertices;
    cnt::PushBackVector<_cmd, 0> _commands;
    unsigned int _textureID = 0;
    float _lineHeight = 0;
    float _glyphPadding = 2.0f;
    float _metricA = 1.0f;
    float _additionalSpace = 0;
    float _metricB = 0;
    float _spaceWidth = 0;
    float _lineSpacing = 1.0f;
    float _zLevel[2] = {0, 0};
    unsigned int _vao = 0;
    unsigned int _vbo = 0;
    bool _committed = false;
    std::unique_ptr<GlyphTable> _pTable; // glyphs and their map once more, for layout; null as long as there are none
    std::unique_ptr<LayoutMemo> _pMemo;  // null as long as the table is
    std::unique_ptr<FontEdits> _pEdits;  // null as long as no string was replaced
    bool _isKept = true;
    bool _isTextureLost = false; // with its context, and not kept
    bool _isMipmapped = false;
    std::unique_ptr<gui::Texture> _pImage; // of 1 to 4 bytes per pixel, for another context
    ContextResource _textureHome{
        [](void* pThis, ContextResource::Event event) { static_cast<Font*>(pThis)->onTextureContext(event); }, this};
    ContextResource _bufferHome{
        [](void* pThis, ContextResource::Event event) { static_cast<Font*>(pThis)->onBufferContext(event); }, this};
};

} // namespace gui::gl
