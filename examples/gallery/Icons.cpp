// Look for: icons that are as sharp at 16 pixels as at 512: straight sides on whole pixels, round ones without steps.

#include "Board.h"
#include "IconShapes.h"
#include "Scenes.h"
#include "Stage.h"

#include <gui/InputDevice.h>

#include <map>

namespace gallery
{

namespace
{

using gui::draw::Affine;
using gui::draw::Path;
using gui::gl::Font;
using ID = gui::draw::Drawing::ID;

/// All icons in three sizes, one in 64 and in 512 points. A click chooses it.
class Icons : public Scene
{
public:
    bool init() override
    {
        constexpr std::size_t cFirst = 10;
        _board.addPanel({24, 24, 544, 552});
        _board.addPanel({584, 24, 352, 552});
        addRows(16, 12, {608, 54}, 26);
        addRows(32, 8, {608, 130}, 39);
        addRows(48, 6, {608, 274}, 51);
        _board.addCaption({608, 46}, "16 points", Font::cLeft);
        _board.addCaption({608, 122}, "32", Font::cLeft);
        _board.addCaption({608, 266}, "48", Font::cLeft);
        _board.addCaption({690, 530}, "64 and, beside these, 512", Font::cLeft);
        show(cFirst);
        return _board.init();
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        _toFrame = Board::toFrame(frame);
        _board.draw(frame);
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        if (event != PointerEvent::Pressed)
            return;
        const auto toPage = _toFrame.inverse();
        const auto found =
            toPage ? _icons.find(_board.drawing.pick(toPage->map(device.getFramePoint()), 2)) : _icons.end();
        if (found == _icons.end())
            return;
        show(found->second);
        _pStage->setNote(icons()[found->second].name);
        _pStage->redraw();
    }

private:
    // An icon's shapes are drawn on 32 by 32 units.
    ID addIcon(std::size_t nth, double size, Path::Point corner)
    {
        gui::draw::Drawing& drawing = _board.drawing;
        const ID group = drawing.beginGroup(Affine::translation(corner.x, corner.y) * Affine::scaling(size / 32));
        for (const IconLayer& layer : icons()[nth].layers)
            if (*layer.path != 0)
                _icons[drawing.fill(Path::fromSVG(layer.path), layer.color)] = nth;
        drawing.endGroup();
        return group;
    }

    void addRows(double size, std::size_t nColumns, Path::Point corner, double pitch)
    {
        for (std::size_t i = 0; i < icons().size(); ++i)
            addIcon(i, size,
                    {corner.x + pitch * static_cast<double>(i % nColumns),
                     corner.y + pitch * static_cast<double>(i / nColumns)});
    }

    void show(std::size_t nth)
    {
        for (const ID group : _shown)
            _board.drawing.remove(group);
        _shown = {addIcon(nth, 512, {40, 44}), addIcon(nth, 64, {608, 494})};
    }

    Stage* _pStage = nullptr;
    Board _board;
    Affine _toFrame;
    std::map<ID, std::size_t> _icons; // whose shape it is
    std::vector<ID> _shown;           // groups of the chosen icon
};

} // namespace

std::unique_ptr<Scene> makeIcons() { return std::make_unique<Icons>(); }

} // namespace gallery
