#include "SlowScenes.h"
#include "support/CapturedLog.h"
#include "support/Images.h"
#include "support/Thorough.h"

#include <gallery/PictureStage.h>
#include <gallery/Scenes.h>
#include <replay/Picture.h>
#include <replay/Player.h>
#include <src/capture/Capture.h>

#include <gui/gl/OffscreenContext.h>

#include <cstring>
#include <memory>
#include <vector>

namespace
{

using gui::gl::Capture;

// Whatever there is in the libraries, and what scenes call of GL themselves. Half of the scenes are captured in their
// first frame, which makes all that it draws with, half in their second, which finds it there.
TEST(CaptureTest, EveryScenesFrameIsReplayedPixelForPixel)
{
    const test::ImageFolder folder;
    const std::string path = folder.path("scene.guiglframe");
    constexpr std::size_t cStep = test::cIsThorough ? 1 : 4;
    int nReplayed = 0;
    for (std::size_t i = 0; i < gallery::scenes().size(); i += cStep)
    {
        const gallery::SceneInfo& info = gallery::scenes()[i];
        // One reads its own picture while it draws, which ends a frame.
        if ((!test::cIsThorough && test::isSlow(info)) || std::strcmp(info.name, "grab") == 0)
            continue;
        SCOPED_TRACE(info.name);
        test::CapturedLog log;
        const int frame = 1 + static_cast<int>(i / cStep % 2);
        Capture::want(path, frame);
        gui::Texture picture;
        {
            gui::gl::OffscreenContext context({480, 320},
                                              {gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::Bits8,
                                               gui::gl::Context::Profile::Core41});
            gallery::PictureStage stage(context, 2.5);
            const std::unique_ptr<gallery::Scene> pScene = info.make();
            ASSERT_TRUE(pScene->init());
            pScene->enter(stage);
            gallery::PictureStage::play(*pScene, {480, 320});
            for (int n = 0; n < frame; ++n)
            {
                do
                    pScene->draw({{480, 320}, 1, 2.5});
                while (stage.finishFrame());
                ASSERT_TRUE(context.readPixels(picture));
            }
        }
        const std::vector<std::string> lines = log.take();
        ASSERT_EQ(lines.size(), 1U) << lines.back(); // nothing is left out
        ASSERT_TRUE(lines.back().find("is captured in") != std::string::npos) << lines.back();

        gui::gl::FrameFile file;
        ASSERT_EQ(file.load(path), "");
        replay::Player player(file);
        player.play();
        const gui::Texture replayed = replay::Picture::read(player.screen(), player.screenSize()).toTexture();
        EXPECT_EQ(std::memcmp(replayed.getBytes(), picture.getBytes(), std::size_t(480 * 320 * 3)), 0);
        ++nReplayed;
    }
    EXPECT_GT(nReplayed, 40 / static_cast<int>(cStep) / 2);
}

} // namespace
