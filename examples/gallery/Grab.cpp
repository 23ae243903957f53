// Look for: frames that stand upright in each other down to a dot, each a little later than the one around it.

#include "Figures.h"
#include "Scenes.h"
#include "Stage.h"

#include <gui/Key.h>
#include <gui/Texture.h>
#include <gui/gl/gl.h>
#include <vo/Log.h>

#include <glm/ext/matrix_transform.hpp>
#include <glm/trigonometric.hpp>

#include <cmath>
#include <filesystem>
#include <memory>

namespace gallery
{

namespace
{

using namespace gui::gl;
using td::ColorID;

constexpr int cDepth = 24; // frames within frames after which nothing is left to see
constexpr float cShrink = 0.78F;
constexpr float cRim = 1.02F;
constexpr int cStars = 20;

constexpr ColorID cGold[] = {ColorID::Gold, ColorID::Coral, ColorID::HotPink, ColorID::MediumOrchid};

// The frame that was read last. The view tells when it is there, which may be after the scene has gone.
struct LastFrame
{
    gui::Texture image;
    bool isAwaited = false;
    bool isNew = false;
};

class Grab : public Scene
{
public:
    bool init() override
    {
        _figures.init(cStars + 1, 300, 0, {DataType::Vec2, DataType::Vec4});
        const ColorVertex border[] = {{{-1, -1}, colorOf(ColorID::DodgerBlue)},
                                      {{1, -1}, colorOf(ColorID::Turquoise)},
                                      {{-1, 1}, colorOf(ColorID::MediumOrchid)},
                                      {{1, 1}, colorOf(ColorID::Gold)}};
        record(Primitive::TriangleStrip, border);
        for (int i = 0; i < cStars; ++i)
            record(Primitive::TriangleFan,
                   figures::makeStar(gradient(cGold, std::abs(2 * static_cast<float>(i) / cStars - 1))));
        _figureProgram.setBuffer(&_figures);

        // A frame's first row is its bottom one, which becomes t = 0.
        constexpr float cCorners[] = {-1, -1, 0, 0, 1, -1, 1, 0, -1, 1, 0, 1, 1, 1, 1, 1};
        _picture.init(1, 4, 0, {DataType::Vec2, DataType::Vec2});
        _picture.appendVertices(cCorners, 4);
        Command* pCommand = _picture.createCommand();
        pCommand->createDrawArrays(Primitive::TriangleStrip, 0, 4);
        pCommand->setTexture(Textures::Unit::T0, 0);
        _picture.encode(pCommand);
        _pictureProgram.setBuffer(&_picture);
        _pictureProgram.setTextures(&_textures);
        return _backdrop.init() && _figureProgram.link() && _pictureProgram.link() && _figures.commit() &&
               _picture.commit();
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    bool moves() const override { return true; }

    void draw(const Frame& frame) override
    {
        if (_pLast->isNew)
        {
            _textures.release();
            if (!_textures.append({&_pLast->image}, Texture::Type::Tex2D))
                vo::dbgLog("ERROR! Grab cannot show the last frame");
            _pLast->isNew = _pLast->isAwaited = false;
        }
        _backdrop.draw(frame);
        drawStars(frame);
        drawPicture(frame);

        // While time stands still, frames are read until the innermost one is of this moment too.
        if (frame.seconds != _drawn.seconds || frame.scale != _drawn.scale || !(frame.size == _drawn.size))
            _nToRead = cDepth;
        _drawn = frame;
        if (_nToRead > 0 && !_pLast->isAwaited)
            readFrame();
    }

    bool onKey(const gui::Key& key, bool isDown) override
    {
        if (!isDown || (key.getChar() != 's' && key.getChar() != 'S'))
            return false;
        save();
        return true;
    }

private:
    void record(Primitive primitive, std::span<const ColorVertex> vertices)
    {
        const std::size_t first = append(_figures, vertices);
        Command* pCommand = _figures.createCommand();
        pCommand->createDrawArrays(primitive, first, static_cast<unsigned int>(vertices.size()));
        _figures.encode(pCommand);
    }

    // Along an ellipse through the space that the picture leaves.
    void drawStars(const Frame& frame)
    {
        const auto width = static_cast<float>(frame.size.width), height = static_cast<float>(frame.size.height);
        const auto seconds = static_cast<float>(frame.seconds);
        _figureProgram.activate();
        for (int i = 0; i < cStars; ++i)
        {
            const float turns = static_cast<float>(i) / cStars + seconds / 30;
            const glm::vec2 place = onCircle(turns, 0.5F);
            const float size = 14 + 8 * std::sin(glm::radians(90 * (seconds + static_cast<float>(3 * i))));
            glm::mat4 matrix = glm::translate(pointsToClip(frame),
                                              {width * (0.5F + 0.93F * place.x), height * (0.5F + 0.93F * place.y), 0});
            matrix = glm::rotate(matrix, seconds + static_cast<float>(i), {0, 0, 1});
            _figureProgram.setMVP(glm::scale(matrix, glm::vec3(size)));
            _figureProgram.execute(static_cast<std::size_t>(i) + 1, 1);
        }
    }

    // Turned in points, where a right angle stays one.
    void drawPicture(const Frame& frame)
    {
        const auto width = static_cast<float>(frame.size.width), height = static_cast<float>(frame.size.height);
        const float degrees = 9 * static_cast<float>(std::sin(0.8 * frame.seconds));
        glm::mat4 matrix = glm::translate(pointsToClip(frame), {width / 2, height / 2, 0});
        matrix = glm::rotate(matrix, glm::radians(degrees), {0, 0, 1});
        matrix = glm::scale(matrix, {cShrink * width / 2, -cShrink * height / 2, 1});
        _figureProgram.setMVP(glm::scale(matrix, {cRim, 1 + (cRim - 1) * width / height, 1}));
        _figureProgram.execute(0, 1);
        if (_textures.size() > 0)
        {
            _pictureProgram.activate();
            _pictureProgram.setMVP(matrix);
            _pictureProgram.execute();
        }
        _pictureProgram.deActivate();
    }

    void readFrame()
    {
        --_nToRead;
        _pLast->isAwaited = true;
        _pStage->grab(_pLast->image,
                      [last = std::weak_ptr<LastFrame>(_pLast), pStage = _pStage]
                      {
                          if (const auto pLast = last.lock())
                          {
                              pLast->isNew = true;
                              pStage->redraw();
                          }
                      });
    }

    // As the first of grab-1.png, grab-2.png and so on that is not there yet.
    void save()
    {
        std::string name;
        for (int i = 1; name.empty() || std::filesystem::exists(name); ++i)
            name = "grab-" + std::to_string(i) + ".png";
        gui::Texture& image = _pLast->image;
        image.mirrorVertically(); // files begin with the top row
        const bool isSaved = image.isOk() && image.saveToFile(name.c_str());
        image.mirrorVertically();
        _pStage->setNote((isSaved ? "saved as " : "cannot save ") + name);
    }

    Stage* _pStage = nullptr;
    Backdrop _backdrop;
    Color2DProgram _figureProgram;
    Texture2DProgram _pictureProgram;
    Buffer _figures; // the picture's border, then the stars
    Buffer _picture;
    Textures _textures;
    const std::shared_ptr<LastFrame> _pLast = std::make_shared<LastFrame>();
    Frame _drawn{};
    int _nToRead = 0;
};

} // namespace

std::unique_ptr<Scene> makeGrab() { return std::make_unique<Grab>(); }

} // namespace gallery
