#include "SlowScenes.h"
#include "support/CapturedLog.h"

#include <gallery/PictureStage.h>
#include <gallery/Scenes.h>

#include <gui/Texture.h>
#include <gui/gl/OffscreenContext.h>

#include <memory>
#include <vector>

namespace
{

using gui::gl::OffscreenContext;

std::vector<td::BYTE> drawn(gallery::Scene& scene, OffscreenContext& context)
{
    scene.draw({{480, 320}, 1, 2.5});
    gui::Texture picture;
    EXPECT_TRUE(context.readPixels(picture));
    return {picture.getBytes(), picture.getBytes() + std::size_t(480 * 320 * 3)};
}

// Whatever there is in the library, in use together as people use it. Scenes say nothing about contexts.
TEST(LossTest, EveryScenesPictureIsTheSameInSixtyContexts)
{
    int nLosses = 0;
    for (const gallery::SceneInfo& info : gallery::scenes())
    {
#ifndef NDEBUG
        if (test::isSlow(info))
            continue;
#endif
        SCOPED_TRACE(info.name);
        OffscreenContext context({480, 320}, {gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::Bits8,
                                              gui::gl::Context::Profile::Core41});
        gallery::PictureStage stage(context, 2.5);
        const std::unique_ptr<gallery::Scene> pScene = info.make();
        ASSERT_TRUE(pScene->init());
        pScene->enter(stage);
        gallery::PictureStage::play(*pScene, {480, 320});
        std::vector<td::BYTE> before;
        do
            before = drawn(*pScene, context);
        while (stage.finishFrame() ||
               drawn(*pScene, context) != before); // some go on until they are where they were sent
        const test::CapturedLog log;
        for (int i = 0; i < 3; ++i, ++nLosses)
        {
            ASSERT_TRUE(context.replace());
            EXPECT_TRUE(drawn(*pScene, context) == before);
        }
    }
    EXPECT_GE(nLosses, 60);
}

} // namespace
