// Look for: one word, as sharp at 6 pixels as at 400, at every angle and with all that a style has; beside the pictures
// of letters in a font file, which have one size.

#include "Board.h"
#include "Scenes.h"

#include <algorithm>
#include <cstdio>

namespace gallery
{

namespace
{

using gui::draw::Anchor;
using gui::draw::Drawing;
using gui::draw::LinearGradient;
using gui::draw::Path;
using gui::draw::TextStyle;
using gui::draw::Typeface;
using gui::draw::Unit;
using gui::gl::Font;

constexpr const char* cWord = "type";

/// A word of a Board, in the page's units.
TextStyle inUnits(double size, const gui::draw::Paint& paint)
{
    return {.face = Typeface::named("DejaVu Serif"), .size = size, .unit = Unit::Model, .paint = paint};
}

class Type : public Scene
{
public:
    bool init() override
    {
        const LinearGradient sky{{0, 0}, {900, 0}, {{0, "#5ab3f0"}, {0.5, "#b98cf0"}, {1, "#f2b84b"}}};
        _board.drawing.text({34, 292}, cWord, inUnits(400, sky));
        addSizes({24, 404, 240, 172});
        addTurned({280, 404, 192, 172});
        addStyles({488, 404, 232, 172});
        _board.addPanel(cBaked);
        addBaked();
        _baked.init();
        return _board.init();
    }

    void draw(const Frame& frame) override
    {
        _board.draw(frame);
        if (!_baked.begin(frame))
            return;
        const gui::draw::Affine map = Board::toFrame(frame);
        for (std::size_t i = 0; i < std::size(cBakedSizes); ++i)
        {
            const Drawing::Point place = map.map(bakedPlace(i));
            _baked.add({place.x, place.y}, cWord, {i, td::ColorID::White});
        }
        _baked.draw();
    }

private:
    static constexpr int cBakedSizes[] = {12, 16, 24, 32};
    static constexpr Cell cBaked{736, 404, 200, 172};

    void addSizes(const Cell& cell)
    {
        _board.addPanel(cell);
        double y = cell.top + 4;
        for (const double size : {6.0, 8.0, 10.0, 13.0, 18.0, 26.0, 38.0})
        {
            y += std::max(13.0, size * 1.08 + 3);
            char label[16];
            std::snprintf(label, sizeof label, "%g", size);
            _board.addCaption({cell.left + 34, y}, label, Font::cRight);
            _board.drawing.text({cell.left + 48, y}, cWord, inUnits(size, "#ffffff"));
        }
    }

    void addTurned(const Cell& cell)
    {
        _board.addPanel(cell);
        constexpr int n = 15;
        for (int i = 0; i < n; ++i)
        {
            const td::Color color = td::Color::fromHSL(360.0F * static_cast<float>(i) / n, 0.7F, 0.7F);
            _board.drawing.text({cell.left + cell.width / 2.0, cell.top + cell.height / 2.0}, cWord, inUnits(20, color),
                                {.anchor = {-0.75, 0.5}, .angle = 360.0 * i / n});
        }
    }

    void addStyles(const Cell& cell)
    {
        _board.addPanel(cell);
        Drawing& drawing = _board.drawing;
        const double left = cell.left + 22, right = cell.left + 128;
        // Ground of all kinds for the halo.
        for (int i = 0; i < 6; ++i)
            drawing.stroke(
                Path().moveTo({left - 8, cell.top + 15.0 + 6 * i}).lineTo({left + 86, cell.top + 11.0 + 6 * i}),
                {.width = 3}, i % 2 == 0 ? "#ef7d6b" : "#5ab3f0");
        TextStyle halo = inUnits(30, "#10203a");
        halo.halo = {3, "#ffffff"};
        drawing.text({left, cell.top + 40.0}, cWord, halo);
        TextStyle bold = inUnits(30, "#ffffff");
        double y = cell.top + 40;
        for (const double embolden : {0.0, 0.03, 0.07})
        {
            bold.embolden = embolden;
            drawing.text({right, y}, cWord, bold);
            y += 50;
        }
        TextStyle line = inUnits(30, "#98fb98");
        line.isUnderlined = true;
        drawing.text({left, cell.top + 90.0}, cWord, line);
        line = inUnits(30, LinearGradient{{0, 0}, {66, 0}, {{0, "#ffd166"}, {1, "#ef476f"}}});
        line.isStruckThrough = true;
        drawing.text({left, cell.top + 140.0}, cWord, line);
    }

    // Pictures of letters at the left, their outlines at the right.
    void addBaked()
    {
        for (std::size_t i = 0; i < std::size(cBakedSizes); ++i)
        {
            TextStyle style = inUnits(cBakedSizes[i], "#ffffff");
            style.face = Typeface::named("DejaVu Sans");
            const Drawing::Point place = bakedPlace(i);
            _board.drawing.text({place.x + 88, place.y}, cWord, style);
        }
        _board.addCaption({cBaked.left + 18.0, cBaked.top + 22.0}, "Font", Font::cLeft);
        _board.addCaption({cBaked.left + 106.0, cBaked.top + 22.0}, "Drawing", Font::cLeft);
    }

    static Drawing::Point bakedPlace(std::size_t i)
    {
        constexpr double cBaselines[] = {52, 78, 112, 152};
        return {cBaked.left + 14.0, cBaked.top + cBaselines[i]};
    }

    Board _board;
    Lettering _baked{{{"sans", 12}, {"sans", 16}, {"sans", 24}, {"sans", 32}}};
};

} // namespace

std::unique_ptr<Scene> makeType() { return std::make_unique<Type>(); }

} // namespace gallery
