#include "support/CapturedLog.h"
#include "support/FakeSurface.h"
#include "support/FontFiles.h"
#include "support/Images.h"

#include <gui/Application.h>
#include <gui/Window.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/SkyBox.h>
#include <gui/gl/Text.h>
#include <gui/gl/View.h>

#include <array>
#include <functional>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace
{

using gui::gl::Context;
using gui::gl::CurrentContext;
using gui::gl::GLView;
using test::GLTrace;

/// GL objects of all kinds, buffers, textures and programs; they go with this one.
class Object
{
public:
    // In the context that is current.
    Object(GLTrace& gl, const std::string& font)
        : context(gl.current())
    {
        const std::size_t nBefore = gl.nAlive();
        _text.init({100, 100}, gui::gl::Textures::Unit::T0);
        _text.allocFonts(2);
        for (const td::BYTE i : {td::BYTE(0), td::BYTE(1)})
        {
            EXPECT_NE(_text.loadFont(i, font.c_str()), nullptr);
            _text.getFont(i)->addString({1, 2}, "text", 0, td::ColorID::Red, 1);
        }
        _text.commit();
        EXPECT_TRUE(_sky.init(nullptr, nullptr, 1, [](const glm::vec3& direction) { return direction; }));
        nNames = gl.nAlive() - nBefore;
    }
    // What the fonts' own destructors leave to release.
    ~Object() { _text.release(); }

    void use()
    {
        _text.render(gui::gl::Text::Ctrl::Blend);
        _sky.render(false);
    }

    const GLTrace::Context context;
    std::size_t nNames;

private:
    gui::gl::Text _text;
    gui::gl::SkyBox _sky;
};

/// Views, windows and GL objects, made and ended in any order, on a GL that lets no wrong call pass.
class Destruction : public testing::Test
{
protected:
    static constexpr std::size_t cViews = 3, cObjects = 8;

    /// A view of its own context. It owns some objects, and releases some of the others when its window goes.
    class OwningView : public test::FakeWindow, public gui::gl::View
    {
    public:
        explicit OwningView(Destruction& test)
            : FakeWindow(test.journal)
            , _test(test)
        {
            context = ++test._lastContext;
            const Context settings(gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None,
                                   Context::Profile::Core41);
            EXPECT_NE(GLView::createView(this, nullptr, 0, settings, factory()), nullptr);
        }

    protected:
        void onInit() override
        {
            for (std::size_t n = _test.below(3); n > 0; --n)
                objects.push_back(std::make_unique<Object>(_test.gl, _test._font));
        }
        void onDraw(const td::RectNormalized<double>&) override
        {
            for (const std::unique_ptr<Object>& pObject : objects)
                pObject->use();
        }
        void cleanResources() override
        {
            EXPECT_EQ(_test.gl.current(), context);
            for (std::unique_ptr<Object>& pObject : _test._objects)
                if (pObject != nullptr && pObject->context == context && _test.below(2) == 0)
                    pObject.reset();
            if (_test.below(2) == 0)
                objects.clear();
            // A GL of its own call, in its own context.
            Context::clear(Context::Clear::Color);
        }

    private:
        Destruction& _test;

    public:
        std::vector<std::unique_ptr<Object>> objects;
    };

    Destruction() { log.take(); } // the window system in use

    std::size_t below(std::size_t n) { return _random() % n; }

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
                pObject.reset(); // in its own context, another one or none
            else if (gl.current() != 0)
                pObject = std::make_unique<Object>(gl, _font);
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
            using Objects = std::span<const std::unique_ptr<Object>>;
            std::size_t n = 0;
            for (const Objects objects : {Objects(pView->objects), Objects(_objects)})
                for (const std::unique_ptr<Object>& pObject : objects)
                    n += pObject != nullptr && pObject->context == gl.current() ? pObject->nNames : 0;
            EXPECT_EQ(gl.nAlive(gl.current()), n);
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
    test::Journal journal{gl};
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
        journal.take();
    }
}

} // namespace
