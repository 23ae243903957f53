#include "support/Images.h"
#include "support/OffscreenGL.h"

#include <gui/Texture.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

// Two contexts number their objects alike: a name deleted in the wrong one takes a neighbour's object away.

namespace
{

using gui::gl::CurrentContext;
using gui::gl::OffscreenContext;

struct TestProgram : gui::gl::Program
{
    void onLinked() override {}

    bool linkAll()
    {
        return link("#version 330 core\nvoid main() { gl_Position = vec4(0.0, 0.0, 0.0, 1.0); }",
                    "#version 330 core\nout vec4 color;\nvoid main() { color = vec4(1.0); }");
    }
};

/// One of each class that owns GL objects.
class Owners
{
public:
    Owners()
    {
        const float numbers[] = {0, 0};
        gui::Texture dot = test::image(1, 1, 3);
        EXPECT_TRUE(_buffer.init(0, 1, 1, 1, {gui::gl::DataType::Vec2}, {gui::gl::DataType::Float}, {}));
        _buffer.appendVertices(numbers, 1);
        _buffer.appendIndex(0);
        _buffer.appendInstances(numbers, 1);
        EXPECT_TRUE(_buffer.commit());
        EXPECT_TRUE(_textures.append({&dot}, gui::gl::Texture::Type::Tex2D));
        EXPECT_TRUE(_program.linkAll());
        GLint vertexArray = 0;
        _buffer.activate();
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vertexArray);
        _buffer.deActivate();
        _vertexArray = static_cast<GLuint>(vertexArray);
    }

    std::vector<GLuint> names() const { return {_vertexArray, _textures.getID(0), _program.getID()}; }

private:
    gui::gl::Buffer _buffer;
    gui::gl::Textures _textures;
    TestProgram _program;
    GLuint _vertexArray = 0;
};

/// Which of the names are objects of the current context.
std::string alive(const std::vector<GLuint>& names)
{
    std::string text;
    text += glIsVertexArray(names[0]) ? '1' : '0';
    text += glIsTexture(names[1]) ? '1' : '0';
    text += glIsProgram(names[2]) ? '1' : '0';
    return text;
}

/// The fixture's context is the first one, this the second.
class CurrentContextGLTest : public test::OffscreenGL
{
protected:
    void SetUp() override
    {
        OffscreenGL::SetUp();
        _inFirst = std::make_unique<Owners>();
        const gui::gl::Context settings({}, {}, gui::gl::Context::Profile::Core41);
        _second = std::make_unique<OffscreenContext>(td::Size<int>{32, 32}, settings, true);
        ASSERT_TRUE(_second->isOk());
        watchCurrentContext();
        _inSecond = std::make_unique<Owners>();
        _names = _inFirst->names();
        ASSERT_EQ(_inSecond->names(), _names);
    }

    void TearDown() override
    {
        _second.reset();
        OffscreenGL::TearDown();
    }

    std::unique_ptr<OffscreenContext> _second;
    std::unique_ptr<Owners> _inFirst;
    std::unique_ptr<Owners> _inSecond;
    std::vector<GLuint> _names;
};

TEST_F(CurrentContextGLTest, OwnersDestroyedInTheOtherContextTakeNothingOfIt)
{
    _inFirst.reset();
    EXPECT_EQ(alive(_names), "111");
    context().makeCurrent();
    EXPECT_EQ(alive(_names), "000"); // deleted as soon as their context is back
    _second->makeCurrent();
    EXPECT_EQ(alive(_names), "111");
    _inSecond.reset();
    EXPECT_EQ(alive(_names), "000");
}

TEST_F(CurrentContextGLTest, OwnersMayBeDestroyedWhileNoContextIsCurrent)
{
    const gui::gl::Context settings({}, {}, gui::gl::Context::Profile::Core41);
    std::make_unique<OffscreenContext>(td::Size<int>{1, 1}, settings).reset(); // current when it died
    ASSERT_EQ(CurrentContext::getID(), 0u);
    _inFirst.reset();
    _inSecond.reset();
    context().makeCurrent();
    EXPECT_EQ(alive(_names), "000");
    _second->makeCurrent();
    EXPECT_EQ(alive(_names), "000");
}

TEST_F(CurrentContextGLTest, OwnersThatOutliveTheirContextForgetTheirNames)
{
    destroyContext();
    _second->makeCurrent();
    _inFirst.reset();
    EXPECT_EQ(alive(_names), "111");
    // A new context may get the address of the dead one; its objects get the same numbers again.
    auto owners = std::make_unique<Owners>();
    const gui::gl::Context settings({}, {}, gui::gl::Context::Profile::Core41);
    for (int i = 0; i < 8; ++i)
    {
        OffscreenContext third({8, 8}, settings);
        ASSERT_TRUE(third.isOk());
        const auto inThird = std::make_unique<Owners>();
        EXPECT_EQ(inThird->names(), _names);
        owners = std::make_unique<Owners>(); // the old ones belong to the context before
        EXPECT_EQ(alive(_names), "111");
    }
    EXPECT_EQ(CurrentContext::getID(), 0u);
}

} // namespace
