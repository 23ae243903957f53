// Texts of any bytes in any font, frame after frame, laid out beside the plain layout.

#include "Fuzz.h"
#include "support/GLTrace.h"
#include "text/PlainLayout.h"

#include <gui/gl/CurrentContext.h>
#include <gui/gl/Text.h>

#include <epoxy/gl.h>

#include <array>
#include <bit>
#include <cmath>

namespace fuzz::text
{

namespace
{

bool isSame(float a, float b)
{
    return std::bit_cast<unsigned int>(a) == std::bit_cast<unsigned int>(b) || (std::isnan(a) && std::isnan(b));
}

bool isSame(const td::Size<float>& a, const td::Size<float>& b)
{
    return isSame(a.width, b.width) && isSame(a.height, b.height);
}

/// A font with what an input writes, and the plain layout.
class Layouts
{
public:
    explicit Layouts(Input& input)
        : _input(input)
        , _anyBits(input.below(4) == 0)
        , _plain{.file = takeFont(), .vertices = {}}
    {
        _text.allocFonts(1);
        load();
    }
    ~Layouts() { _text.release(); }

    /// One thing, and a frame of all strings.
    void goOn(const test::GLTrace& trace)
    {
        change();
        const std::size_t disturbed = _input.below(8);
        for (std::size_t i = 0; i < _strings.size(); ++i)
        {
            if (i == disturbed)
                disturb(_strings[i]);
            add(_strings[i]);
        }
        if (disturbed >= cStrings)
            replaceAndBack(disturbed - cStrings);
        require(font().commit(), "vertices are uploaded");
        const std::vector<float> vertices = trace.lastBuffer<float>(GL_ARRAY_BUFFER);
        require(vertices.size() == _plain.vertices.size(), "six vertices for each glyph");
        for (std::size_t i = 0; i < vertices.size(); ++i)
            require(isSame(vertices[i], _plain.vertices[i]), "the vertices");
        _plain.vertices.clear();
        font().reset();
    }

private:
    static constexpr unsigned int cStrings = 4;

    struct String
    {
        std::string text;
        td::Point<float> pos;
        gui::gl::Font::_format format;
    };

    gui::gl::Font& font() { return *_text.getFont(0); }

    /// Some twelfths, or any number at all.
    float takeNumber() { return _anyBits ? _input.take<float>() : static_cast<float>(_input.take<std::int8_t>()) / 12; }

    /// A font of some characters with metrics of the input; its edges grow, as the layout wants them to.
    test::FontFile takeFont()
    {
        static constexpr std::u32string_view cCharacters = U"zeb\u00E9\u0416a\u2019\u3042\U0001F600.\U0010FFFF\uFFFD";
        test::FontFile file(cCharacters.substr(0, 1 + _input.below(cCharacters.size())));
        for (float* const pMetric : {&file.spaceWidth, &file.glyphPadding, &file.lineHeight})
            *pMetric = takeNumber();
        for (test::FontFile::Glyph& glyph : file.glyphs)
            for (float* const pMetric : {&glyph.bearing, &glyph.width, &glyph.advance})
                *pMetric = takeNumber();
        return file;
    }

    /// Known and unknown code points of every plane, spaces and breaks, and bytes of any kind.
    std::string takeText()
    {
        static constexpr std::u32string_view cSome =
            U"zeba.?\u00E9\u0416\u3042\U0001F600\U0010FFFF \t\n\n\r\u2028\u2029\u00A0\u3000\U00020000";
        std::string text;
        for (unsigned int n = _input.below(32); n > 0; --n)
            text += _input.below(4) == 0 ? std::string(1, _input.take<char>())
                                         : test::encoded(cSome[_input.below(cSome.size())]);
        return text;
    }

    void load()
    {
        const std::string bytes = _plain.file.bytes();
        gui::Image::_data image;
        float metricC = 0;
        require(font().loadBinaryData(fileOf(bytes.data(), bytes.size()), image, metricC), "a font is read");
    }

    void loadAnother()
    {
        _plain.file.glyphs[0].advance = takeNumber();
        load();
    }

    void disturb(const String& string)
    {
        if (_input.below(2) == 0)
            return loadAnother();
        const unsigned char z[] = {'z', ' '};
        require(isSame(font().addGlyphs(string.pos, z, z + 2, 2), _plain.addGlyphs(string.pos, {'z', ' '}, 2)),
                "the size of glyphs");
    }

    void change()
    {
        String& string = _strings[_input.below(cStrings)];
        switch (_input.below(11))
        {
        case 0:
            return loadAnother();
        case 1:
            font().setAdditionalSpaceBetweenGlyphs(_plain.additionalSpace = takeNumber());
            return font().setSpaceBetweenLines(_plain.lineSpacing = takeNumber());
        case 2:
            return font().reserve(_input.below(200));
        case 3:
            return font().release();
        case 4:
            string.text = takeText();
            return;
        case 5:
            string.text += " \tz\n"[_input.below(4)];
            return;
        case 6:
            string.text.resize(string.text.size() * _input.below(8) / 8);
            return;
        case 7:
            string.text.assign(string.text.size(), "za "[_input.below(3)]);
            return;
        case 8:
            string.pos = {takeNumber(), takeNumber()};
            return;
        case 9:
            string.format = {.scale = takeNumber(), .hAlignment = static_cast<td::BYTE>(_input.below(4))};
            return;
        default:
            return measure(string.text, _input.below(32), _input.below(32));
        }
    }

    // In memory of its size, without a zero behind it. An empty text is one up to its zero.
    static std::vector<char> exact(const std::string& text)
    {
        return text.empty() ? std::vector<char>{'\0'} : std::vector<char>(text.begin(), text.end());
    }

    void add(const String& string)
    {
        const auto& [text, pos, format] = string;
        const td::Size<float> size = font().addString(pos, exact(text).data(), text.size(), format);
        require(isSame(size, _plain.addString(pos, text, format)), "the size");
    }

    /// By spaces, whose vertices nobody may see, and by itself again, which has its old room.
    void replaceAndBack(std::size_t index)
    {
        const auto& [text, pos, format] = _strings[index];
        font().replaceString(index, pos, "  ", 2, format);
        const td::Size<float> size = font().replaceString(index, pos, exact(text).data(), text.size(), format);
        const std::size_t n = _plain.vertices.size();
        require(isSame(size, _plain.addString(pos, text, format)), "the size of what is replaced");
        _plain.vertices.resize(n);
    }

    void measure(const std::string& text, unsigned int start, unsigned int count)
    {
        td::Size<float> expected;
        if (start + count <= text.size() && (start == 0 || start < text.size()))
            expected =
                _plain.measure(test::PlainLayout::decoded(text.substr(start, count == 0 ? std::string::npos : count)));
        require(isSame(font().measure(exact(text).data(), text.size(), {start, count}), expected),
                "the size of a piece");
    }

    Input& _input;
    const bool _anyBits;
    test::PlainLayout _plain;
    gui::gl::Text _text;
    std::array<String, cStrings> _strings;
};

void run(const std::uint8_t* bytes, std::size_t n)
{
    static test::GLTrace s_trace(test::GLTrace::Null);
    Quiet quiet;
    gui::gl::CurrentContext::set(&s_trace);
    Input input(bytes, n);
    {
        Layouts layouts(input);
        while (input.left() > 0)
            layouts.goOn(s_trace);
    }
    require(quiet.nAsserts + quiet.nLines == 0, "nothing is said about any text");
    s_trace.clear();
}

const Target cTarget("text", run);

} // namespace

} // namespace fuzz::text
