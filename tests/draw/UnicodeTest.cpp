// Unicode's own tests, of Debian's package unicode-data. What the libraries don't pass is listed here, with the reason.

#include "draw/src/type/TextBreaks.h"

#include <gui/draw/TextLayout.h>

#include "support/FontFiles.h"
#include "support/Thorough.h"

#include <gtest/gtest.h>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using namespace gui::draw;

std::ifstream openFile(const std::string& name)
{
    std::ifstream file("/usr/share/unicode/" + name);
    EXPECT_TRUE(file) << "the package unicode-data isn't installed";
    return file;
}

/// Lines such as "÷ 0023 × 0308 ÷": the text, and the offsets of its breaks, the first one left out.
struct BreakCase
{
    std::string line, text;
    std::vector<std::uint32_t> breaks;
};

std::vector<BreakCase> readBreaks(const std::string& name)
{
    std::vector<BreakCase> cases;
    std::ifstream file = openFile(name);
    for (std::string line; std::getline(file, line);)
    {
        BreakCase which{line, {}, {}};
        std::istringstream words(line.substr(0, line.find('#')));
        for (std::string word; words >> word;)
            if (word == "÷")
                which.breaks.push_back(static_cast<std::uint32_t>(which.text.size()));
            else if (word != "×")
                which.text += test::encoded(static_cast<char32_t>(std::stoul(word, nullptr, 16)));
        if (which.text.empty())
            continue;
        if (which.breaks.front() == 0)
            which.breaks.erase(which.breaks.begin());
        cases.push_back(std::move(which));
    }
    return cases;
}

TEST(UnicodeTest, GraphemeBreaks)
{
    const auto cases = readBreaks("auxiliary/GraphemeBreakTest.txt");
    EXPECT_GT(cases.size(), 500U);
    for (const BreakCase& which : cases)
        EXPECT_EQ(findGraphemes(which.text), which.breaks) << which.line;
}

/// Whether all breaks that are missing are behind one of these characters (and marks on it), and none is there that
/// should not be.
bool differsBehind(const BreakCase& which, const std::vector<std::uint32_t>& breaks, std::string_view characters)
{
    if (!std::ranges::includes(which.breaks, breaks))
        return false;
    for (const std::uint32_t expected : which.breaks)
        if (!std::ranges::binary_search(breaks, expected))
        {
            std::string_view before = std::string_view(which.text).substr(0, expected);
            while (before.ends_with("\u0308"))
                before.remove_suffix(2);
            if (before.empty() || characters.find(before.back()) == std::string_view::npos)
                return false;
        }
    return true;
}

// ICU has CLDR's rules: of ASCII's characters the colon does not stand within words but in Swedish and Finnish.
TEST(UnicodeTest, WordBreaks)
{
    for (const BreakCase& which : readBreaks("auxiliary/WordBreakTest.txt"))
        if (which.text.find_first_of(":") == std::string::npos || which.text[0] == '1')
        {
            EXPECT_EQ(findWords(which.text, ""), which.breaks) << which.line;
        }
}

// CLDR's rules again: no break between a hyphen that begins a word and the word, nor between a comma or a full stop and
// a digit, but before a number that begins with a full stop. All came into Unicode's rules later.
TEST(UnicodeTest, LineBreaks)
{
    const auto cases = readBreaks("auxiliary/LineBreakTest.txt");
    EXPECT_GT(cases.size(), 7000U);
    std::string title; // "# LineBreakTest-15.0.0.txt"
    std::ifstream file = openFile("auxiliary/LineBreakTest.txt");
    std::getline(file, title);
    const bool isSameUnicode = title.find(std::string("-") + U_UNICODE_VERSION) != std::string::npos;
    std::size_t nOthers = 0;
    for (const BreakCase& which : cases)
    {
        std::vector<std::uint32_t> breaks;
        for (const LineBreak& found : findLineBreaks(which.text, ""))
            breaks.push_back(found.offset);
        std::erase_if(breaks, [&](std::uint32_t at) { return which.text.compare(at, 3, ".35") == 0; });
        if (differsBehind(which, breaks, "-,."))
            continue;
        // Where ICU knows another Unicode than the cases are of, a few characters have got other properties.
        ++nOthers;
        EXPECT_FALSE(isSameUnicode) << which.line;
    }
    EXPECT_LT(nOthers, 20U);
}

// A word that is taken at once though something in it, or before it, breaks otherwise.
TEST(UnicodeTest, LineBreaksAmongWordsAreIcus)
{
    const std::array<std::string, 24> pieces{
        "a",      "Wort",   "\u0416", "\u05D0", "\u0628\u064B", "e\u0301", " ",  "  ", ",",      ".",
        ":",      "-",      "(",      ")",      "\"",           "1",       "\t", "$",  "\u00AD", "\u200B",
        "\u3001", "\u4E00", "/",      " \u0301"};
    std::mt19937 random(3);
    for (const char* const language : {"", "ja", "fi"})
    {
        UErrorCode error = U_ZERO_ERROR;
        UBreakIterator* const pIterator = ubrk_open(UBRK_LINE, language, nullptr, 0, &error);
        ASSERT_TRUE(U_SUCCESS(error));
        for (int i = 0; i < 5000; ++i)
        {
            std::string text;
            for (std::size_t k = random() % 30; k < 30; ++k)
                text += pieces[random() % (random() % 3 == 0 ? pieces.size() : 9)];
            UText uText = UTEXT_INITIALIZER;
            utext_openUTF8(&uText, text.data(), std::int64_t(text.size()), &error);
            ubrk_setUText(pIterator, &uText, &error);
            std::vector<std::uint32_t> expected, found;
            for (int at = ubrk_next(pIterator); at != UBRK_DONE; at = ubrk_next(pIterator))
                expected.push_back(static_cast<std::uint32_t>(at));
            for (const LineBreak& each : findLineBreaks(text, language))
                found.push_back(each.offset);
            utext_close(&uText);
            ASSERT_EQ(found, expected) << text;
        }
        ubrk_close(pIterator);
    }
}

/// Lays out characters and looks at the order in which those are that have glyphs of their own.
class BidiChecker
{
public:
    /// @param order  of the characters, from left to right, those left out that nothing is said of
    /// @return whether it is so
    bool check(const std::vector<char32_t>& characters, TextDirection direction, const std::vector<std::size_t>& order)
    {
        _text.clear();
        _offsets.clear();
        for (const char32_t character : characters)
        {
            _offsets.push_back(_text.size());
            _text += test::encoded(character);
        }
        const TextLayout layout(_text, {.face = _face}, {.direction = direction});
        _isRightToLeft = layout.getLines()[0].isRightToLeft;
        _found.clear();
        _expected.clear();
        for (const TextLayout::Run& run : layout.getRuns())
            for (const TextLayout::Glyph& glyph : run.glyphs)
                _found.push_back(run.text + glyph.offset);
        for (const std::size_t index : order)
            if (std::ranges::find(_found, _offsets[index]) != _found.end())
                _expected.push_back(_offsets[index]);
        std::erase_if(_found, [this](std::size_t at) { return std::ranges::find(_expected, at) == _expected.end(); });
        _found.erase(std::unique(_found.begin(), _found.end()), _found.end());
        return _found == _expected;
    }

    /// Of the last one.
    bool isRightToLeft() const { return _isRightToLeft; }

private:
    const Typeface _face = Typeface::named("DejaVu Sans").withFallbacks({}, false);
    std::string _text;
    std::vector<std::size_t> _offsets, _found, _expected;
    bool _isRightToLeft = false;
};

std::vector<std::size_t> readNumbers(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::size_t> numbers;
    for (std::size_t number = 0; stream >> number;)
        numbers.push_back(number);
    return numbers;
}

TEST(UnicodeTest, BidiCharacters)
{
    BidiChecker checker;
    std::ifstream file = openFile("BidiCharacterTest.txt");
    std::size_t nCases = 0;
    for (std::string line; std::getline(file, line);)
    {
        if (line.empty() || line[0] == '#' || nCases++ % (test::cIsThorough ? 1 : 10) != 0)
            continue;
        std::array<std::string, 5> fields;
        std::istringstream parts(line);
        for (std::string& field : fields)
            std::getline(parts, field, ';');
        std::istringstream codes(fields[0]);
        std::vector<char32_t> characters;
        for (std::string code; codes >> code;)
            characters.push_back(static_cast<char32_t>(std::stoul(code, nullptr, 16)));
        const TextDirection direction = fields[1] == "0"   ? TextDirection::LeftToRight
                                        : fields[1] == "1" ? TextDirection::RightToLeft
                                                           : TextDirection::Auto;
        ASSERT_TRUE(checker.check(characters, direction, readNumbers(fields[4]))) << line;
        ASSERT_EQ(checker.isRightToLeft(), fields[2] == "1") << line;
    }
    EXPECT_GT(nCases, 90000U);
}

// All sequences of up to four classes of characters, and some longer ones, each class by a character that has a glyph,
// or none where it is a control. All are as Unicode says.
TEST(UnicodeTest, BidiClasses)
{
    const std::map<std::string, char32_t> characterOf{
        {"L", 'a'},      {"R", 0x5d0},    {"AL", 0x62f},   {"EN", '1'},     {"ES", '+'},     {"ET", '$'},
        {"AN", 0x661},   {"CS", ','},     {"NSM", 0x300},  {"BN", 0xad},    {"B", 0x2029},   {"S", '\t'},
        {"WS", ' '},     {"ON", '!'},     {"LRE", 0x202a}, {"RLE", 0x202b}, {"PDF", 0x202c}, {"LRO", 0x202d},
        {"RLO", 0x202e}, {"LRI", 0x2066}, {"RLI", 0x2067}, {"FSI", 0x2068}, {"PDI", 0x2069}};
    BidiChecker checker;
    std::ifstream file = openFile("BidiTest.txt");
    std::vector<std::size_t> order;
    std::vector<char32_t> characters;
    std::size_t nCases = 0;
    for (std::string line; std::getline(file, line);)
    {
        if (line.starts_with("@Reorder:"))
            order = readNumbers(line.substr(9));
        const std::size_t end = line.find(';');
        if (line.empty() || line[0] == '#' || line[0] == '@' || nCases++ % (test::cIsThorough ? 1 : 50) != 0)
            continue;
        characters.clear();
        std::istringstream classes(line.substr(0, end));
        for (std::string name; classes >> name;)
            characters.push_back(characterOf.at(name));
        const unsigned long directions = std::stoul(line.substr(end + 1), nullptr, 16);
        for (const auto& [bit, direction] :
             {std::pair(1U, TextDirection::Auto), {2U, TextDirection::LeftToRight}, {4U, TextDirection::RightToLeft}})
            if ((directions & bit) != 0)
            {
                ASSERT_TRUE(checker.check(characters, direction, order)) << line << " by " << bit;
            }
    }
    EXPECT_GT(nCases, 490000U);
}

} // namespace
