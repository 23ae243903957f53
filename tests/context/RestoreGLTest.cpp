#include "support/CapturedLog.h"
#include "support/FontFiles.h"
#include "support/GLTrace.h"
#include "support/Images.h"
#include "support/OffscreenGL.h"

#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <epoxy/gl.h>
#include <glm/ext/matrix_clip_space.hpp>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// What is there again when another context takes the place of one that was lost, and what is not.

namespace
{

using namespace gui::gl;

const Context cContext{DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41};

/// Something that is made once and drawn often.
struct Thing
{
    virtual ~Thing() = default;
    virtual void draw() = 0;
    virtual void decline() {}
};

const float cTriangle[] = {-1, -1, 1, -1, 0, 1};
const float cQuad[] = {-1, -1, 0, 0, 1, -1, 1, 0, 1, 1, 1, 1, -1, 1, 0, 1};
const unsigned int cQuadIndices[] = {0, 1, 2, 0, 2, 3};

struct Shape : Thing
{
    Shape()
    {
        program.link();
        buffer.appendShape(Primitive::Triangles, cTriangle, 3)->setColor(td::ColorID::Gold);
        program.draw(buffer);
    }
    void draw() override { program.draw(buffer); }
    void decline() override { buffer.setKeptForRestore(false); }
    Flat2DProgram program;
    Buffer buffer{DataType::Vec2};
};

/// A program with all kinds of uniforms, set once, and instances.
struct Uniforms : Thing
{
    struct Prog : Program
    {
        void onLinked() override
        {
            shift = getUniformLocation("shift");
            number = getUniformLocation("number");
            activate();
            setUniformValue(static_cast<unsigned int>(number), 7); // a first value, that of the user's comes later
        }
        int shift = -1, number = -1;
    };
    Uniforms()
    {
        prog.link(R"(#version 330 core
layout (location = 0) in vec2 p;
layout (location = 1) in vec2 place;
uniform vec2 shift;
uniform mat4 turn;
void main() { gl_Position = turn * vec4(p * 0.2 + place + shift, 0, 1); })",
                  R"(#version 330 core
uniform int number;
uniform vec4 tint;
uniform mat3 mix3;
out vec4 color;
void main() { color = vec4(mix3 * vec3(float(number) / 10.0, tint.xy), 1); })");
        buffer.init(1, 4, 6, 2, {DataType::Vec2}, {DataType::Vec2}, {});
        const float corners[] = {-1, -1, 1, -1, 1, 1, -1, 1}, places[] = {-0.5F, 0, 0.5F, 0.3F};
        buffer.appendVertices(corners, 4);
        buffer.appendIndices(cQuadIndices, 6);
        buffer.appendInstances(places, 2);
        buffer.commit();
        prog.setBuffer(&buffer);
        prog.activate();
        const auto at = [this](const char* name) { return static_cast<unsigned int>(prog.getUniformLocation(name)); };
        prog.setUniformValue(static_cast<unsigned int>(prog.shift), glm::vec2(0.1F, -0.2F));
        prog.setUniformValue(static_cast<unsigned int>(prog.number), 3);
        prog.setUniformValue(at("turn"), glm::mat4(1));
        prog.setUniformValue(at("tint"), glm::vec4(0.6F, 0.3F, 0, 1));
        prog.setUniformValue(at("mix3"), glm::mat3(1));
        prog.deActivate();
    }
    void draw() override
    {
        prog.activate();
        glDrawElementsInstanced(GL_TRIANGLES, 6, GL_UNSIGNED_INT, nullptr, 2);
        prog.deActivate();
    }
    void decline() override { prog.setKeptForRestore(false); }
    Prog prog;
    Buffer buffer;
};

struct Pictures : Thing
{
    explicit Pictures(const std::function<bool(Textures&)>& fill)
    {
        EXPECT_TRUE(fill(textures));
        program.link();
        program.setTextures(&textures);
        buffer.appendVertices(cQuad, 4);
        buffer.appendIndices(cQuadIndices, 6);
        Command* const pCommand = buffer.createCommand();
        pCommand->createDrawElements(Primitive::Triangles, 0, 6);
        pCommand->setTexture(Textures::Unit::T0, static_cast<unsigned char>(textures.size() - 1));
        program.draw(buffer, glm::mat4(1));
    }
    void draw() override { program.draw(buffer, glm::mat4(1)); }
    void decline() override { textures.setKeptForRestore(false); }
    Texture2DProgram program;
    Textures textures;
    Buffer buffer{DataType::Vec2, DataType::Vec2};
};

struct Sky : Thing
{
    Sky()
    {
        const gui::Texture face = test::image(5, 5, 3);
        EXPECT_TRUE(textures.appendCubeMap({&face, &face, &face, &face, &face, &face}));
        EXPECT_TRUE(sky.init(&projection, textures.getID(0), Textures::Unit::T3));
        sky.setCamera(&camera);
        sky.commit(3);
    }
    void draw() override { sky.render(true); }
    void decline() override { textures.setKeptForRestore(false); }
    glm::mat4 projection = glm::perspective(1.0F, 1.0F, 0.1F, 50.0F);
    Camera camera{{0, 0, 0}, 0.3F, 0.2F};
    Textures textures;
    SkyBox sky;
};

struct Words : Thing
{
    Words()
    {
        test::FontFile file(U"abc");
        const test::ImageFolder folder;
        Font& font = text.init(test::writeFile(folder.path("a.font"), file.bytes()).c_str());
        text.setFrameSize({64, 64});
        font.addString({4, 4}, "abcab", 0, td::ColorID::Cyan, 2);
        text.commit();
    }
    void draw() override { text.render(Text::Ctrl::BlendNoDepthTest); }
    void decline() override { text.getFont(0)->setKeptForRestore(false); }
    Text text;
};

/// A picture that is drawn once.
struct Aside : Thing
{
    explicit Aside(const Framebuffer::Format& format, bool isKept)
    {
        aside.setKeptForRestore(isKept);
        EXPECT_TRUE(aside.create({20, 20}, format));
        program.link();
        buffer.appendVertices(cQuad, 4);
        buffer.appendIndices(cQuadIndices, 6);
        buffer.createCommand()->createDrawElements(Primitive::Triangles, 0, 6);
        Shape shape;
        const Framebuffer::Drawing drawing(aside);
        Context::clear(Context::Clear::Color, td::ColorID::Navy);
        shape.draw();
    }
    void draw() override
    {
        program.activate();
        Textures::bindToSamplerUnit(aside.getTextureID(), Texture::Unit::T0, Texture::Type::Tex2D);
        program.draw(buffer, glm::mat4(1));
    }
    Framebuffer aside;
    Texture2DProgram program;
    Buffer buffer{DataType::Vec2, DataType::Vec2};
};

struct Numbers : Thing
{
    struct Prog : Program
    {
        void onLinked() override {}
    };
    Numbers()
    {
        prog.link(R"(#version 330 core
void main() { gl_Position = vec4(vec2(gl_VertexID & 1, gl_VertexID >> 1) * 2.0 - 1.0, 0, 1); })",
                  R"(#version 330 core
uniform samplerBuffer numbers;
out vec4 color;
void main() { color = texelFetch(numbers, int(gl_FragCoord.x) % 4); })");
        const float values[] = {1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1, 1, 1, 0, 1};
        // Half of them by way of another one.
        BufferTexture other(BufferTexture::Format::Float4);
        EXPECT_TRUE(numbers.resize(4) && other.resize(3));
        numbers.write(2, values + 8, 2);
        other.write(1, values, 2);
        numbers.copyBytes(0, other, 16, 32);
    }
    void draw() override
    {
        prog.activate();
        numbers.bind(Texture::Unit::T0);
        const Quads::Range one{0, 1};
        EXPECT_TRUE(quads.draw(std::span(&one, 1)));
        prog.deActivate();
    }
    void decline() override { numbers.setKeptForRestore(false); }
    Prog prog;
    BufferTexture numbers{BufferTexture::Format::Float4};
    Quads quads;
};

enum class Loss
{
    Replaced, ///< the old context works to the end, as when a host brings another one
    Reset     ///< everything is gone without notice
};

struct Kind
{
    const char* name;
    std::function<std::unique_ptr<Thing>()> make;
    bool survivesReset = true;
    const char* saysWhenDeclined = nullptr; ///< null where there is nothing to decline
};

std::vector<Kind> kinds()
{
    const auto pictures = [](const std::function<bool(Textures&)>& fill)
    { return [fill] { return std::make_unique<Pictures>(fill); }; };
    const auto aside = [](int nSamples, Framebuffer::Color color, bool isKept) {
        return [=]
        { return std::make_unique<Aside>(Framebuffer::Format{.color = color, .samples = nSamples}, isKept); };
    };
    const char* const texture = "Error! Textures: texture 0 went with its context, as it is not kept for restoring";
    return {
        {"shape", [] { return std::make_unique<Shape>(); }, true,
         "Error! Buffer: what was committed went with its context, as it is not kept for restoring"},
        {"uniforms", [] { return std::make_unique<Uniforms>(); }},
        {"odd rows",
         pictures(
             [](Textures& textures)
             {
                 gui::Texture odd = test::image(3, 5, 3);
                 return textures.append({&odd}, Texture::Type::Tex2D);
             }),
         true, texture},
        {"second texture, with alpha", pictures(
                                           [](Textures& textures)
                                           {
                                               gui::Texture first = test::image(2, 2, 3), second = test::image(7, 4, 4);
                                               return textures.append({&first, &second}, Texture::Type::Tex2D);
                                           })},
        {"file that is gone",
         pictures(
             [](Textures& textures)
             {
                 const test::ImageFolder folder;
                 const std::string path = folder.save("a.png", test::image(5, 3, 3));
                 return textures.append({path.c_str()}, Texture::Type::Tex2D);
             }),
         true, texture},
        {"sky", [] { return std::make_unique<Sky>(); }},
        {"words", [] { return std::make_unique<Words>(); }, true,
         "Error! Font: its atlas went with its context, as it is not kept for restoring"},
        {"aside", aside(1, Framebuffer::Color::RGBA8, false), false},
        {"aside of samples", aside(4, Framebuffer::Color::RGBA8, false), false},
        {"aside of one number", aside(1, Framebuffer::Color::R16F, true)},
        {"aside of samples, kept", aside(4, Framebuffer::Color::RGBA16F, true)},
        {"numbers", [] { return std::make_unique<Numbers>(); }},
    };
}

class RestoreGLTest : public testing::Test
{
protected:
    void lose(Loss loss)
    {
        if (loss == Loss::Replaced)
        {
            ASSERT_TRUE(context->replace());
            return;
        }
        const CurrentContext::ID lost = CurrentContext::getID();
        context = std::make_unique<OffscreenContext>(td::Size<int>(64, 64), cContext);
        ASSERT_TRUE(context->isOk());
        CurrentContext::restoreFrom(lost);
    }

    std::vector<td::BYTE> pictureOf(Thing& thing)
    {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glViewport(0, 0, 64, 64);
        Context::clear(Context::Clear::Color, td::ColorID::Black);
        thing.draw();
        gui::Texture picture;
        EXPECT_TRUE(context->readPixels(picture));
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        return {picture.getBytes(), picture.getBytes() + std::size_t(64 * 64 * 3)};
    }

    bool isBlack(const std::vector<td::BYTE>& picture)
    {
        return std::all_of(picture.begin(), picture.end(), [](td::BYTE channel) { return channel == 0; });
    }

    std::unique_ptr<OffscreenContext> context = std::make_unique<OffscreenContext>(td::Size<int>(64, 64), cContext);
};

// Names that the driver had handed out before, in another order, make others of the new context.
TEST_F(RestoreGLTest, EverythingIsThereAgain)
{
    for (const Kind& kind : kinds())
        for (const Loss loss : {Loss::Replaced, Loss::Reset})
        {
            SCOPED_TRACE(kind.name + std::string(loss == Loss::Reset ? ", reset" : ", replaced"));
            GLuint others[3];
            glGenTextures(3, others);
            const std::unique_ptr<Thing> pThing = kind.make();
            const std::vector<td::BYTE> before = pictureOf(*pThing);
            ASSERT_FALSE(isBlack(before));
            for (int i = 0; i < 2; ++i)
            {
                lose(loss);
                EXPECT_TRUE(pictureOf(*pThing) == before || !(kind.survivesReset || loss == Loss::Replaced));
            }
        }
}

TEST_F(RestoreGLTest, WhatIsDeclinedIsSaidOnceAndDrawsNothing)
{
    for (const Kind& kind : kinds())
        for (const Loss loss : {Loss::Replaced, Loss::Reset})
        {
            if (kind.saysWhenDeclined == nullptr)
                continue;
            SCOPED_TRACE(kind.name);
            const std::unique_ptr<Thing> pThing = kind.make();
            const std::vector<td::BYTE> before = pictureOf(*pThing);
            pThing->decline();
            EXPECT_EQ(pictureOf(*pThing), before); // as long as the context is there
            test::CapturedLog log;
            lose(loss);
            EXPECT_TRUE(isBlack(pictureOf(*pThing)));
            EXPECT_TRUE(isBlack(pictureOf(*pThing)));
            EXPECT_EQ(log.take(), std::vector<std::string>{kind.saysWhenDeclined});
        }
}

// A buffer that keeps nothing serves again as soon as it is filled again, its instances too.
TEST_F(RestoreGLTest, WhatIsDeclinedServesAgain)
{
    Uniforms thing;
    const std::vector<td::BYTE> before = pictureOf(thing);
    thing.buffer.setKeptForRestore(false);
    EXPECT_EQ(thing.buffer.getNoOfVertices() + thing.buffer.getNoOfIndices() + thing.buffer.getNoOfInstances(), 0u);
    lose(Loss::Replaced);
    Uniforms other;
    for (Buffer* const pBuffer : {&thing.buffer, &other.buffer})
    {
        const float corners[] = {-1, -1, 1, -1, 1, 1, -1, 1}, places[] = {-0.5F, 0, 0.5F, 0.3F};
        pBuffer->reset();
        pBuffer->appendVertices(corners, 4);
        pBuffer->appendIndices(cQuadIndices, 6);
        pBuffer->appendInstances(places, 2);
        EXPECT_TRUE(pBuffer->commit());
    }
    EXPECT_EQ(pictureOf(thing), before);
    EXPECT_EQ(pictureOf(other), before);
    Shape shape;
    shape.program.setKeptForRestore(false);
    test::CapturedLog log;
    lose(Loss::Replaced);
    EXPECT_TRUE(isBlack(pictureOf(shape)));
    EXPECT_TRUE(isBlack(pictureOf(shape)));
    EXPECT_TRUE(log.said("Error! Program::draw on a program that is not linked"));
    EXPECT_TRUE(shape.program.link());
    EXPECT_FALSE(isBlack(pictureOf(shape)));
}

TEST_F(RestoreGLTest, NoNameOutlivesItsThing)
{
    for (const Kind& kind : kinds())
    {
        SCOPED_TRACE(kind.name);
        const test::GLTrace trace(test::GLTrace::Forward);
        {
            const std::unique_ptr<Thing> pThing = kind.make();
            pictureOf(*pThing);
        }
        EXPECT_TRUE(trace.nothingAlive());
    }
}

// Names that an application has written down go on meaning the same.
TEST_F(RestoreGLTest, NamesAreWhatTheyWere)
{
    glGenTextures(1, std::array<GLuint, 1>().data());
    const Pictures first(
        [](Textures& textures)
        {
            gui::Texture image = test::image(2, 2, 3);
            return textures.append({&image, &image, &image}, Texture::Type::Tex2D);
        });
    auto pSecond = std::make_unique<Sky>();
    Framebuffer aside;
    ASSERT_TRUE(aside.create({4, 4}));
    pSecond.reset();
    const auto names = [&]
    {
        return std::vector<unsigned int>{first.textures.getID(0), first.textures.getID(2), first.program.getID(),
                                         aside.getID(), aside.getTextureID()};
    };
    const std::vector<unsigned int> before = names();
    for (const Loss loss : {Loss::Replaced, Loss::Reset})
    {
        lose(loss);
        EXPECT_EQ(names(), before);
    }
}

// On a GL that knows which names live in which context: nothing is left in the old one, nothing that is not there is
// used or deleted, and what is there in the new one is what was.
TEST(RestoreTest, NothingIsLeftBehind)
{
    test::GLTrace trace(test::GLTrace::Strict);
    char contexts[2] = {};
    trace.makeCurrent(1);
    CurrentContext::set(&contexts[1]);
    {
        Shape shape;
        Pictures pictures(
            [](Textures& textures)
            {
                gui::Texture image = test::image(2, 2, 3);
                return textures.append({&image, &image}, Texture::Type::Tex2D);
            });
        Buffer reset{DataType::Vec2};
        reset.appendVertices(cTriangle, 3);
        reset.commit();
        reset.reset();
        const std::size_t nAlive = trace.nAlive(1);
        for (unsigned int i = 1; i < 60; ++i)
        {
            const CurrentContext::ID lost = CurrentContext::getID();
            CurrentContext::retire();
            EXPECT_EQ(trace.nAlive(i), 0u) << "loss " << i;
            trace.destroy(i);
            trace.makeCurrent(i + 1);
            CurrentContext::set(&contexts[(i + 1) % 2]);
            CurrentContext::restoreFrom(lost);
            shape.draw();
            pictures.draw();
        }
        // The buffer that was reset has no objects any more.
        EXPECT_LT(trace.nAlive(60), nAlive);
    }
    EXPECT_EQ(trace.nAlive(), 0u);
    EXPECT_EQ(trace.takeFindings(), std::vector<std::string>{});
    CurrentContext::died(&contexts[0]);
}

} // namespace
