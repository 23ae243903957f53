// Unicode's own tests, of Debian's package unicode-data. What the libraries don't pass is listed here, with the reason.

#include "draw/src/type/TextBreaks.h"

#include <gui/draw/TextLayout.h>

#include "support/FontFiles.h"
#include "support/Thorough.h"

#include <gtest/gtest.h>

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <map>
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

TEST(UnicodeTest, BidiCharacters)
{
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
        std::string text;
        std::vector<std::size_t> offsets;
        std::istringstream codes(fields[0]);
        std::vector<char32_t> characters;
        for (std::string code; codes >> code;)
        {
            offsets.push_back(text.size());
            characters.push_back(static_cast<char32_t>(std::stoul(code, nullptr, 16)));
            text += test::encoded(characters.back());
        }
        const TextLayout layout(text, {.face = Typeface::named("DejaVu Sans").withFallbacks({}, false)},
                                {.direction = fields[1] == "0"   ? TextDirection::LeftToRight
                                              : fields[1] == "1" ? TextDirection::RightToLeft
                                                                 : TextDirection::Auto});
        std::vector<std::size_t> found, expected;
        for (const TextLayout::Run& run : layout.getRuns())
            for (const TextLayout::Glyph& glyph : run.glyphs)
                found.push_back(run.text + glyph.offset);
        std::istringstream order(fields[4]);
        for (std::size_t index = 0; order >> index;)
            if (std::ranges::find(found, offsets[index]) != found.end())
                expected.push_back(offsets[index]);
        std::erase_if(found, [&](std::size_t offset) { return std::ranges::find(expected, offset) == expected.end(); });
        found.erase(std::unique(found.begin(), found.end()), found.end());
        ASSERT_EQ(found, expected) << line;
        ASSERT_EQ(layout.getLines()[0].isRightToLeft, fields[2] == "1") << line;
    }
    EXPECT_GT(nCases, 90000U);
}

} // namespace
