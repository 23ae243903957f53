#include "Drawing.h"
#include "Lettering.h"
#include "Scenes.h"

#include <gui/gl/gl.h>

#include <cstdio>

namespace gallery
{

namespace
{

using gui::gl::Font;
using td::ColorID;

enum BlockFace : std::size_t
{
    SansBlocks,
    MonoBlocks
};

struct Block
{
    const char* name;
    unsigned int first;
    unsigned int nRows; // of 16
    int column;
    ColorID color;
};

constexpr Block cBlocks[] = {
    {"Basic Latin", 0x20, 6, 0, ColorID::Gold},        {"Latin-1 Supplement", 0xA0, 6, 0, ColorID::LightSalmon},
    {"Arrows", 0x2190, 1, 0, ColorID::LightSteelBlue}, {"Latin Extended-A", 0x100, 8, 1, ColorID::PaleGreen},
    {"Greek", 0x380, 5, 1, ColorID::LightSkyBlue},     {"Cyrillic", 0x400, 6, 2, ColorID::Plum},
    {"Vietnamese", 0x1EA0, 6, 2, ColorID::Khaki},      {"Punctuation", 0x2010, 1, 2, ColorID::LightSteelBlue},
};

constexpr unsigned int cPerRow = 16;
constexpr float cLabelWidth = 46;
constexpr float cPadding = 12;

std::string encoded(unsigned int c)
{
    const auto trail = [c](unsigned int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80)
        return {static_cast<char>(c)};
    if (c < 0x800)
        return {static_cast<char>(0xC0 | c >> 6), trail(0)};
    return {static_cast<char>(0xE0 | c >> 12), trail(6), trail(0)};
}

/// A chart of the font's blocks. Code points that it lacks, or that mean nothing, show as its replacement, a box.
class UnicodeScene : public Scene
{
public:
    bool init() override
    {
        _lettering.init();
        return _backdrop.init();
    }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> columns = makeGrid(frame, 3, 1);
        _backdrop.draw(frame, columns);
        if (!_lettering.begin(frame))
            return;
        // Thirteen rows and three headings, each of one and a half rows.
        const float rowHeight = (columns[0].height - 2 * cPadding) / 17.5F;
        float tops[] = {columns[0].top + cPadding, columns[1].top + cPadding, columns[2].top + cPadding};
        for (const Block& block : cBlocks)
        {
            float& top = tops[block.column];
            addBlock(block, columns[static_cast<std::size_t>(block.column)], top, rowHeight);
            top += rowHeight * (1.5F + static_cast<float>(block.nRows));
        }
        _lettering.draw();
    }

private:
    void addBlock(const Block& block, const Cell& column, float top, float rowHeight)
    {
        const float left = column.left + cPadding;
        const float step = (column.width - 2 * cPadding - cLabelWidth) / cPerRow;
        _lettering.add({left, top + rowHeight * 0.75F}, block.name, {SansBlocks, block.color});
        for (unsigned int row = 0; row < block.nRows; ++row)
        {
            const float baseline = top + rowHeight * (static_cast<float>(row) + 2.1F);
            char label[8] = "";
            std::snprintf(label, sizeof label, "%04X", block.first + row * cPerRow);
            _lettering.add({left, baseline}, label, {MonoBlocks, ColorID::SlateGray});
            for (unsigned int i = 0; i < cPerRow; ++i)
            {
                const float middle = left + cLabelWidth + step * (static_cast<float>(i) + 0.5F);
                _lettering.add({middle, baseline}, encoded(block.first + row * cPerRow + i),
                               {SansBlocks, ColorID::Gainsboro, Font::cCentre});
            }
        }
    }

    Backdrop _backdrop;
    Lettering _lettering{{{"sans", 14}, {"mono", 14}}};
};

} // namespace

std::unique_ptr<Scene> makeUnicode() { return std::make_unique<UnicodeScene>(); }

} // namespace gallery
