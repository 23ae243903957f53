#include "Solids.h"
#include "SpacePicture.h"

#include <gui/draw/IdPicker.h>
#include <gui/draw/Instances.h>
#include <gui/draw/OrbitCamera.h>

#include <cmath>
#include <vector>

namespace
{

using gui::draw::Eye;
using gui::draw::IdPicker;
using gui::draw::Instances;

class IdPickerTest : public test::SpacePicture
{
protected:
    void SetUp() override
    {
        SpacePicture::SetUp();
        ASSERT_TRUE(_boxes.setMesh(test::makeBox({-4, -4, -4}, {4, 4, 4})));
        for (int i = 0; i < 25; ++i)
            _boxes.add({{-60 + 30 * (i % 5), -60 + 30 * (i / 5), 3 * i}});
    }

    std::optional<IdPicker::Answer> frame(const Eye& eye)
    {
        const auto answer = _picker.update(eye, [this](const Eye& part) { _boxes.drawIds(part, firstID); });
        glFinish();
        return answer;
    }
    /// The answer, in as many frames as it takes.
    std::optional<IdPicker::Answer> ask(const Eye& eye, const td::Point<double>& point)
    {
        _picker.ask(point);
        EXPECT_FALSE(frame(eye)) << "not in the same frame";
        for (int i = 0; i < 20 && _picker.isWaiting(); ++i)
            if (const auto answer = frame(eye))
                return answer;
        return std::nullopt;
    }

    std::uint32_t firstID = 1;
    Instances _boxes;
    IdPicker _picker{3};
};

TEST_F(IdPickerTest, TellsWhatAndWhereInEveryDepth)
{
    // From below one sees what lies behind hidden.
    gui::draw::OrbitCamera camera(gui::draw::OrbitCamera::Up::Z);
    camera.setSize({double(test::cPictureSize), double(test::cPictureSize)});
    camera.fit(_boxes.getBounds());
    for (const Eye::Depth depth : {Eye::Depth::Usual, Eye::Depth::Reversed, Eye::Depth::Sliced})
    {
        const Eye eye = camera.getEye(1, depth);
        int nFar = 0;
        for (std::size_t i = 0; i < 25; ++i)
        {
            // The corner that is nearest to the eye.
            const glm::dvec3 center = _boxes.getPlacement(i).position;
            const glm::dvec3 corner = center + 4.0 * glm::sign(eye.getPosition() - center);
            const glm::dvec3 seen = *eye.project(corner);
            const auto answer = ask(eye, {seen.x, seen.y});
            ASSERT_TRUE(answer);
            EXPECT_EQ(answer->id, i + 1);
            ASSERT_TRUE(answer->place);
            EXPECT_LT(glm::length(*answer->place - center), 8) << i;
            nFar += glm::length(*answer->place - corner) < 3 ? 0 : 1;
        }
        // Of a side that is seen from its edge, the pixel beside the corner may be far behind it.
        EXPECT_LE(nFar, isDriver("llvmpipe") ? 0 : 1);
        const auto none = ask(eye, {1.5, 1.5});
        ASSERT_TRUE(none);
        EXPECT_TRUE(none->id == 0 && !none->place && none->point == td::Point<double>(1.5, 1.5));
    }
    // What is a little beside the pointer is found, what is more is not, nor what is out of the view.
    const Eye above = test::eyeAbove();
    EXPECT_EQ(ask(above, {80 + 6.4, 80.5})->id, 13U);
    EXPECT_EQ(ask(above, {80 + 9.4, 80.5})->id, 0U);
    EXPECT_EQ(ask(above, {-100, 1e9})->id, 0U);
    firstID = 0x8FFFFFF0U; // of four bytes
    EXPECT_EQ(ask(above, {80.5, 80.5})->id, firstID + 12);
    GLint framebuffer = 1;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
    EXPECT_EQ(framebuffer, 0);
}

// The latest question counts; one whose answer is lost is asked again; where fences lack or never come, it comes all
// the same; and nothing waits in vain.
TEST_F(IdPickerTest, NoQuestionIsLost)
{
    const Eye eye = test::eyeAbove();
    _picker.ask({20, 20});
    _picker.ask({80, 80});
    EXPECT_FALSE(frame(eye));
    ASSERT_TRUE(context().replace());
    EXPECT_TRUE(_picker.isWaiting());
    EXPECT_FALSE(frame(eye)) << "it is drawn again";
    const auto answer = frame(eye);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->id, 13U);
    EXPECT_FALSE(_picker.isWaiting() || frame(eye));
    {
        _picker.ask({80, 80});
        EXPECT_FALSE(frame(eye));
        const gui::gl::Context settings(gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::None,
                                        gui::gl::Context::Profile::Core32);
        const gui::gl::OffscreenContext other({test::cPictureSize, test::cPictureSize}, settings);
        EXPECT_FALSE(frame(eye));
        EXPECT_EQ(frame(eye)->id, 13U);
        _picker.ask({80, 80});
        EXPECT_FALSE(frame(eye));
    }
    EXPECT_FALSE(frame(eye)) << "no context";
    context().makeCurrent();
    EXPECT_FALSE(frame(eye));
    EXPECT_EQ(frame(eye)->id, 13U);

    const auto pFence = epoxy_glFenceSync;
    epoxy_glFenceSync = [](GLenum, GLbitfield) -> GLsync { return nullptr; };
    EXPECT_EQ(ask(eye, {80, 80})->id, 13U);
    epoxy_glFenceSync = pFence;
    const auto pWait = epoxy_glClientWaitSync;
    epoxy_glClientWaitSync = [](GLsync, GLbitfield, GLuint64) -> GLenum { return GL_TIMEOUT_EXPIRED; };
    EXPECT_EQ(ask(eye, {80, 80})->id, 13U);
    epoxy_glClientWaitSync = pWait;

    _picker.ask({80, 80});
    _picker.forget();
    EXPECT_FALSE(_picker.isWaiting() || frame(eye));
    _picker.ask({std::nan(""), 3});
    EXPECT_FALSE(_picker.isWaiting());
    _picker.ask({80, 80});
    EXPECT_FALSE(frame(Eye()) || !_picker.isWaiting()) << "until there is an eye";
}

} // namespace
