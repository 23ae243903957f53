#include "Drawing.h"
#include "Lettering.h"
#include "Scenes.h"

#include <gui/gl/gl.h>

#include <glm/ext/matrix_transform.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace gallery
{

namespace
{

using namespace gui::gl;
using td::ColorID;

enum DepthFace : std::size_t
{
    Word,
    Caption
};

constexpr ColorID cBallColors[] = {ColorID::Tomato, ColorID::Gold, ColorID::PaleGreen, ColorID::DeepSkyBlue,
                                   ColorID::Orchid};
// The balls wind around the words like a thread around a screw. Lengths in units of the cell, depth as text has it.
constexpr int cNoOfBalls = 48;
constexpr float cTurns = 3;
constexpr float cScrewWidth = 0.80F;
constexpr float cScrewHeight = 0.95F;
constexpr float cBallRadius = 0.085F;
constexpr float cScrewDepth = 0.8F; // of the nearest and the farthest ball
constexpr float cScrewSpeed = 0.03F;

/// Words before, between and behind balls, as far as the depth test is on.
class DepthScene : public Scene
{
public:
    bool init() override
    {
        _lettering.init();
        _ball.init(std::size(cBallColors), 2000, 10000, {DataType::Vec3, DataType::Vec3});
        for (const ColorID color : cBallColors)
        {
            Command* pCommand = _ball.addSphere(1, 40, 20, Texture::Type::CubeMap, true, 1);
            pCommand->setColor(color);
            _ball.encode(pCommand);
        }
        _program.setBuffer(&_ball);
        return _backdrop.init() && _program.link() && _ball.commit();
    }

    bool moves() const override { return true; }

    void draw(const Frame& frame) override
    {
        const std::vector<Cell> cells = makeGrid(frame, 2, 1);
        _backdrop.draw(frame, cells);
        for (const Cell& cell : cells)
            drawBalls(frame, cell);
        if (!_lettering.begin(frame))
            return;
        // The balls have left their depth there; quads are transparent around their letter, so they leave none.
        Context::enable(Context::Flag::DepthTest);
        Context::maskDepthBuffer(false);
        addWords(cells[0]);
        _lettering.draw(Text::Ctrl::Blend);
        Context::maskDepthBuffer(true);
        if (!_lettering.begin(frame))
            return;
        addWords(cells[1]);
        addCaption(cells[0], "Text::Ctrl::Blend\nin its depth among the balls");
        addCaption(cells[1], "Text::Ctrl::BlendNoDepthTest\nover everything");
        _lettering.draw(Text::Ctrl::BlendNoDepthTest);
    }

private:
    void addWords(const Cell& cell)
    {
        const float x = cell.left + cell.width / 2;
        const float y = cell.top + cell.height / 2;
        _lettering.add({x, y - 172}, "before", {Word, ColorID::Khaki, Font::cCentre, 0, 0.95F});
        _lettering.add({x, y - 26}, "between", {Word, ColorID::White, Font::cCentre, 0, 0});
        _lettering.add({x, y + 94}, "behind", {Word, ColorID::LightSkyBlue, Font::cCentre, 0, -0.95F});
    }

    void addCaption(const Cell& cell, const char* text)
    {
        _lettering.add({cell.left + 20, cell.top + cell.height - 44}, text,
                       {Caption, ColorID::LightSteelBlue, Font::cLeft, 20});
    }

    void drawBalls(const Frame& frame, const Cell& cell)
    {
        const glm::mat4 toClip = glm::scale(unitsToClip(frame, cell), {1, 1, -1}); // near is up, as for text
        Context::enable(Context::Flag::DepthTest);
        Context::setDepthBufferFunction(DepthBuffer::Function::LessOrEqual);
        _program.activate();
        _program.setSun({-0.4F, 0.7F, 0.8F});
        for (int i = 0; i < cNoOfBalls; ++i)
        {
            const float way = static_cast<float>(i) / (cNoOfBalls - 1);
            const float turned = cScrewSpeed * static_cast<float>(frame.seconds);
            const glm::vec2 place = onCircle(cTurns * way + turned, 1);
            glm::mat4 model = glm::translate(
                glm::mat4(1), {cScrewWidth * place.x, cScrewHeight * (1.1F - 2 * way), cScrewDepth * place.y});
            model = glm::scale(model, glm::vec3(cBallRadius * (1 + 0.25F * place.y)));
            _program.setMatrices(model, toClip);
            _program.execute(static_cast<std::size_t>(i) / 2 % std::size(cBallColors), 1);
        }
        _program.deActivate();
        Context::disable(Context::Flag::DepthTest);
    }

    Backdrop _backdrop;
    Lit3DProgram _program;
    Buffer _ball;
    Lettering _lettering{{{"serif", 64}, {"sans", 14}}};
};

} // namespace

std::unique_ptr<Scene> makeDepth() { return std::make_unique<DepthScene>(); }

} // namespace gallery
