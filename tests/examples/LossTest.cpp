#include "SlowScenes.h"
#include "World.h"
#include "support/CapturedLog.h"
#include "support/Thorough.h"

#include <gallery/PictureStage.h>
#include <gallery/Scenes.h>
#include <globe/EarthView.h>
#include <worldmap/MapView.h>

#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/Window.h>
#include <gui/gl/OffscreenContext.h>
#include <gui/gl/port/Zav.h>

#include <cstddef>
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
    // With sanitizers one each, for what is touched that has gone.
    constexpr int cLosses = test::cIsThorough ? 3 : 1;
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
        for (int i = 0; i < cLosses; ++i, ++nLosses)
        {
            ASSERT_TRUE(context.replace());
            EXPECT_TRUE(drawn(*pScene, context) == before);
        }
    }
    EXPECT_GE(nLosses, 20 * cLosses);
}

void looksTheSameAfterLosses(gui::gl::View& view)
{
    constexpr int cLosses = test::cIsThorough ? 30 : 6;
    const auto picture = [&view]
    {
        gui::Texture image;
        EXPECT_TRUE(zav::drawInto(&view, image));
        return std::vector<td::BYTE>(image.getBytes(),
                                     image.getBytes() + std::ptrdiff_t(3) * image.getWidth() * image.getHeight());
    };
    std::vector<td::BYTE> before;
    do // letters get their pictures in the first frames
        before = picture();
    while (picture() != before);
    for (int i = 0; i < cLosses; ++i)
    {
        view.loseContext();
        EXPECT_TRUE(picture() == before) << i;
    }
}

// Views of whole applications, in windows.
TEST(LossTest, AMapAndAGlobeLookTheSameAfterEachLoss)
{
    gui::Application app{0, nullptr};
    gui::Window window("Map", {500, 300});
    worldmap::MapView map(window, test::world());
    ASSERT_TRUE(window.show(map));
    looksTheSameAfterLosses(map);
    gui::Window second("Globe", {400, 300});
    globe::EarthView globe(&second);
    ASSERT_TRUE(globe.isOk() && second.show(globe));
    looksTheSameAfterLosses(globe);
}

} // namespace
