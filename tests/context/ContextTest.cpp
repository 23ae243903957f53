#include "support/NullGL.h"

#include <gui/gl/Color.h>
#include <gui/gl/Context.h>
#include <gui/gl/Textures.h>

#include <functional>
#include <string>
#include <vector>

namespace
{

using gui::gl::Context;
using gui::gl::DepthBuffer;
using gui::gl::StencilBuffer;
using gui::gl::Texture;
using gui::gl::Textures;

using ContextState = test::NullGL;

// A value outside a table must not read past it, and no call may be made of half of it.
TEST_F(ContextState, ValuesOutsideTheTablesAreRefused)
{
    struct Case
    {
        const char* condition;
        std::function<void()> call;
    };
    const auto keep = StencilBuffer::Operation::Keep;
    const auto bad = StencilBuffer::Operation(8);
    const Case cases[] = {
        {"false", [] { Context::clear(Context::Clear(0)); }},
        {"false", [] { Context::clear(Context::Clear(4)); }},
        {"false",
         [] {
             Context::clear({Context::Clear::Color, Context::Clear(255)});
         }},
        {"false", [] { Context::setDepthBufferFunction(DepthBuffer::Function(8)); }},
        {"false", [] { Context::setStencilBufferFunction(StencilBuffer::Function(8), 0, 0); }},
        {"false", [=] { Context::setStencilBufferOperation(bad, keep, keep); }},
        {"false", [=] { Context::setStencilBufferOperation(keep, bad, keep); }},
        {"false", [=] { Context::setStencilBufferOperation(keep, keep, bad); }},
        {"isSampleCount(n)", [] { Context(DepthBuffer::Size::None, {}, {}).setSamples(3); }},
        {"width >= 0 && height >= 0", [] { Context::setScissor(0, 0, 5, -1); }},
        {"static_cast<std::size_t>(flag) < cZavFlags.size()", [] { Context::enable(Context::Flag(6)); }},
        {"false", [] { Context::setPolygonMode(Context::PolygonMode(3)); }},
        {"textureID != 0", [] { Context::bindTextureToCurrentlyActiveTextureUnit(0, Texture::Type::Tex2D); }},
    };
    for (const Case& refused : cases)
    {
        refused.call();
        EXPECT_TRUE(asserts.caught(refused.condition));
    }
    EXPECT_TRUE(trace.only({}));
    EXPECT_EQ(Context(DepthBuffer::Size(255), StencilBuffer::Size(255), {}).getDepthBufferSize(), 0);
}

} // namespace
