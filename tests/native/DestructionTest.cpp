#include "src/native/GLView.h"
#include "support/CapturedLog.h"
#include "support/FontFiles.h"
#include "support/Images.h"
#include "support/GLTrace.h"

#include <gui/Application.h>
#include <gui/Window.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/SkyBox.h>
#include <gui/gl/Text.h>
#include <gui/gl/View.h>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace
{

using gui::gl::Context;
using gui::gl::CurrentContext;
using gui::gl::GLView;
using test::GLTrace;

/// A surface whose context is one of a strict GL.
class Surface : public gui::gl::NativeSurface
{
public:
    Surface(GLTrace& gl, GLTrace::Context context)
        : _gl(gl)
        , _context(context)
    {
    }

    ~Surface() override
    {
        CurrentContext::died(this);
        _gl.destroy(_context);
    }

    bool makeCurrent() override
    {
        _gl.makeCurrent(_context);
        CurrentContext::set(this);
        return true;
    }
    void flush() override {}
    td::Size<double> getSize() const override { return {100, 100}; }
    float getBackingScale() const override { return 1; }
    td::Size<int> getDrawableSize() const override { return {100, 100}; }
    unsigned int getDefaultFramebuffer() const override { return 0; }
    void setNeedsDisplay() override {}

private:
    GLTrace& _gl;
    GLTrace::Context _context;
};

/// GL objects of all kinds, buffers, textures and programs; they go with this one.
class Object
{
public:
    virtual ~Object() = default;

    /// Makes its GL objects, in the context that is current.
    virtual void make() = 0;
    /// Uses them there.
    virtual void use() = 0;
    virtual void release() = 0;

    GLTrace::Context context = 0;
    std::size_t nNames = 0;
};

class TextObject : public Object
{
public:
    explicit TextObject(const std::string& font)
        : _font(font)
    {
    }
    // What the fonts' own destructors leave to release.
    ~TextObject() override { _text.release(); }

    void make() override
    {
        _text.init({100, 100}, gui::gl::Textures::Unit::T0);
        _text.allocFonts(2);
        for (const td::BYTE i : {td::BYTE(0), td::BYTE(1)})
        {
            ASSERT_NE(_text.loadFont(i, _font.c_str()), nullptr);
            _text.getFont(i)->addString({1, 2}, "text", 0, td::ColorID::Red, 1);
        }
        _text.commit();
    }
    void use() override { _text.render(gui::gl::Text::Ctrl::Blend); }
    void release() override
    {
        _text.release();
        // The texture goes with the font, the program with the text.
        std::destroy_at(&_text);
        std::construct_at(&_text);
    }

private:
    const std::string& _font;
    gui::gl::Text _text;
};

class SkyObject : public Object
{
public:
    void make() override
    {
        ASSERT_TRUE(_sky.init(nullptr, nullptr, 1, [](const glm::vec3& direction) { return direction; }));
    }
    void use() override { _sky.render(false); }
    // The box alone: what else there is goes with the object.
    void release() override
    {
        std::destroy_at(&_sky);
        std::construct_at(&_sky);
    }

private:
    gui::gl::SkyBox _sky;
};

/// Views, windows and GL objects, made and ended in any order, on a GL that lets no wrong call pass.
class Destruction : public testing::Test
{
protected:
    static constexpr std::size_t cViews = 3, cObjects = 8;

    /// A view of its own context. It owns some objects, and releases some of the others when its window goes.
    class OwningView : public gui::gl::View
    {
    public:
        explicit OwningView(Destruction& test)
            : _test(test)
            , context(++test._lastContext)
        {
            const gui::gl::SurfaceFactory factory =
                [this](gui::gl::NativeSurfaceClient&, const gui::gl::PixelFormat&, const td::Size<double>&)
            { return std::make_unique<Surface>(_test.gl, context); };
            const Context settings(gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None,
                                   Context::Profile::Core41);
            EXPECT_NE(GLView::createView(this, nullptr, 0, settings, factory), nullptr);
        }

    protected:
        void onInit() override
        {
            for (std::size_t n = _test.below(3); n > 0; --n)
                _objects.push_back(_test.makeObject());
        }
        void onDraw(const td::RectNormalized<double>&) override
        {
            for (const std::unique_ptr<Object>& pObject : _objects)
                pObject->use();
        }
        void cleanResources() override
        {
            EXPECT_EQ(_test.gl.current(), context);
            for (std::unique_ptr<Object>& pObject : _test._objects)
                if (pObject != nullptr && pObject->context == context && _test.below(2) == 0)
                    _test.end(pObject);
            if (_test.below(2) == 0)
                _objects.clear();
            // A GL of its own call, in its own context.
            Context::clear(Context::Clear::Color);
        }

    private:
        Destruction& _test;
        std::vector<std::unique_ptr<Object>> _objects;

    public:
        const GLTrace::Context context;

        std::size_t nNames() const
        {
            std::size_t n = 0;
            for (const std::unique_ptr<Object>& pObject : _objects)
                n += pObject->nNames;
            return n;
        }
    };

    Destruction() { log.take(); } // the window system in use

    std::size_t below(std::size_t n) { return _random() % n; }

    std::unique_ptr<Object> makeObject()
    {
        std::unique_ptr<Object> pObject;
        if (below(2) == 0)
            pObject = std::make_unique<TextObject>(_font);
        else
            pObject = std::make_unique<SkyObject>();
        make(*pObject);
        return pObject;
    }

    void make(Object& object)
    {
        object.context = gl.current();
        const std::size_t nBefore = gl.nAlive();
        object.make();
        object.nNames = gl.nAlive() - nBefore;
    }

    /// Ends an object, in its own context, another one or none.
    void end(std::unique_ptr<Object>& pObject)
    {
        if (below(3) == 0)
            pObject->release();
        pObject.reset();
    }

    void makeNoneCurrent()
    {
        gl.makeCurrent(0);
        CurrentContext::set(nullptr);
    }

    /// One thing that an application may do.
    void doSomething()
    {
        std::unique_ptr<OwningView>& pView = _views[below(cViews)];
        std::unique_ptr<gui::Window>& pWindow = _windows[below(cViews)];
        std::unique_ptr<Object>& pObject = _objects[below(cObjects)];
        switch (below(10))
        {
        case 0:
            return makeNoneCurrent();
        case 1:
            pView == nullptr ? void(pView = std::make_unique<OwningView>(*this)) : pView.reset();
            return;
        case 2:
            pWindow == nullptr ? void(pWindow = std::make_unique<gui::Window>("", td::Size<double>{9, 9}))
                               : pWindow.reset();
            return;
        case 3:
            if (pView != nullptr && pView->getHandle() != nullptr && pWindow != nullptr && pWindow->show(*pView))
                return;
            log.take(); // of a window that is closed
            return;
        case 4:
            if (pView != nullptr)
                pView->makeCurrentContext();
            return;
        case 5:
            if (auto* const pNative = pView != nullptr ? dynamic_cast<GLView*>(pView->getHandle()) : nullptr)
                pNative->drawNow();
            return;
        case 6:
            if (pObject != nullptr && pObject->context == gl.current())
                pObject->use();
            return;
        default:
            if (pObject != nullptr)
                end(pObject);
            else if (gl.current() != 0)
                pObject = makeObject();
            return;
        }
    }

    /// What is alive in a context that is current, and so has nothing left to delete.
    void checkNames()
    {
        for (const std::unique_ptr<OwningView>& pView : _views)
        {
            if (pView == nullptr || pView->context != gl.current())
                continue;
            std::size_t n = pView->nNames();
            for (const std::unique_ptr<Object>& pObject : _objects)
                n += pObject != nullptr && pObject->context == pView->context ? pObject->nNames : 0;
            EXPECT_EQ(gl.nAlive(pView->context), n);
        }
    }

    void endAll()
    {
        std::vector<std::function<void()>> ends;
        for (std::unique_ptr<OwningView>& pView : _views)
            ends.push_back([&pView] { pView.reset(); });
        for (std::unique_ptr<gui::Window>& pWindow : _windows)
            ends.push_back([&pWindow] { pWindow.reset(); });
        for (std::unique_ptr<Object>& pObject : _objects)
            ends.push_back([&pObject] { pObject.reset(); });
        std::shuffle(ends.begin(), ends.end(), _random);
        for (const std::function<void()>& end : ends)
            end();
    }

    GLTrace gl{GLTrace::Strict};
    test::CapturedLog log;
    gui::Application app{0, nullptr};

    std::mt19937 _random;
    GLTrace::Context _lastContext = 0;
    test::ImageFolder _folder;
    const std::string _font = test::writeFile(_folder.path("a.font"), test::FontFile(U"text").bytes());
    std::array<std::unique_ptr<OwningView>, cViews> _views;
    std::array<std::unique_ptr<gui::Window>, cViews> _windows;
    std::array<std::unique_ptr<Object>, cObjects> _objects;
};

TEST_F(Destruction, AnyOrderLeavesNothingAndTouchesNoOther)
{
    for (unsigned int seed = 0; seed < 1000; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        _random.seed(seed);
        for (std::size_t n = 20 + below(60); n > 0; --n)
        {
            doSomething();
            checkNames();
        }
        endAll();
        for (const std::string& finding : gl.takeFindings())
            ADD_FAILURE() << finding;
        ASSERT_EQ(gl.nAlive(), 0U) << "contexts that are left";
        ASSERT_FALSE(HasFailure());
        makeNoneCurrent();
    }
}

} // namespace
