#include "Board.h"

#include <algorithm>

namespace gallery
{

using gui::draw::Affine;
using gui::draw::Path;

Affine Board::toFrame(const Frame& frame)
{
    const double scale = std::min(frame.size.width / cSize.width, frame.size.height / cSize.height);
    return Affine::translation((frame.size.width - cSize.width * scale) / 2,
                               (frame.size.height - cSize.height * scale) / 2) *
           Affine::scaling(scale);
}

bool Board::init()
{
    _lettering.init();
    return _backdrop.init();
}

std::vector<Cell> Board::makeCells(int nColumns, int nRows) { return makeGrid({cSize, 1, 0}, nColumns, nRows); }

void Board::addPanel(const Cell& cell)
{
    Path panel;
    panel.addRoundedRect({cell.left, cell.top, cell.left + cell.width, cell.top + cell.height}, {10, 10});
    drawing.fill(panel, "#161e33");
    drawing.stroke(panel, {.width = 1}, "#ffffff12");
}

void Board::addCaption(gui::draw::Drawing::Point place, const std::string& text, td::BYTE alignment)
{
    _captions.push_back({place, text, alignment});
}

void Board::draw(const Frame& frame)
{
    _backdrop.draw(frame);
    const Affine map = toFrame(frame);
    drawing.draw(map, frame.scale);
    if (!_lettering.begin(frame))
        return;
    for (const Caption& caption : _captions)
    {
        const gui::draw::Drawing::Point place = map.map(caption.place);
        _lettering.add({place.x, place.y}, caption.text, {0, td::ColorID::LightSteelBlue, caption.alignment});
    }
    _lettering.draw();
}

} // namespace gallery
