#include <gui/draw/Inspector.h>

#include "InspectorPanel.h"

#include <gui/Key.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/View.h>

#include <cstdlib>
#include <map>
#include <string_view>
#include <utility>

namespace gui::draw
{

struct Inspector::Impl
{
    InspectorPanel& panel()
    {
        std::erase_if(panels, [](const auto& entry) { return !gl::CurrentContext::isAlive(entry.first); });
        std::unique_ptr<InspectorPanel>& pPanel = panels[gl::CurrentContext::getID()];
        if (pPanel == nullptr)
            pPanel = std::make_unique<InspectorPanel>();
        return *pPanel;
    }

    std::map<gl::CurrentContext::ID, std::unique_ptr<InspectorPanel>> panels;
    InspectorPanel::Modes modes;
    const gl::View* pBegun = nullptr; // the view whose frame is under way
    bool isShown = false;
    bool hasStartedLedger = false;
    bool isStepWanted = false;
};

Inspector::Inspector()
    : _pImpl(std::make_unique<Impl>())
{
    if (get() == nullptr)
        set(this);
}

Inspector::~Inspector()
{
    if (get() == this)
        set(nullptr);
    if (_pImpl->hasStartedLedger)
        gl::FrameLedger::stop();
}

void Inspector::setShown(bool isShown)
{
    if (_pImpl->isShown == isShown || get() != this)
        return;
    _pImpl->isShown = isShown;
    if (isShown && !gl::FrameLedger::isOn())
    {
        gl::FrameLedger::start();
        _pImpl->hasStartedLedger = true;
    }
    else if (!isShown && std::exchange(_pImpl->hasStartedLedger, false))
        gl::FrameLedger::stop();
    if (!isShown)
        _pImpl->modes = {};
}

bool Inspector::isShown() const { return _pImpl->isShown; }

void Inspector::setWireframe(bool isOn) { _pImpl->modes.isWireframe = isOn; }

void Inspector::setOverdraw(bool isOn) { _pImpl->modes.isOverdraw = isOn; }

void Inspector::setTexturesShown(bool are) { _pImpl->modes.hasTextures = are; }

void Inspector::frameBegins(const Frame& frame)
{
    if (!_pImpl->isShown)
        return;
    _pImpl->pBegun = &frame.view;
    _pImpl->panel().begin(_pImpl->modes);
}

void Inspector::frameEnds(const Frame& frame)
{
    _pImpl->isStepWanted = false;
    // It may have been shown, or another view's frame begun, meanwhile.
    if (std::exchange(_pImpl->pBegun, nullptr) == &frame.view)
        _pImpl->panel().end(frame, _pImpl->modes);
}

bool Inspector::keyPressed(gl::View& view, const Key& key)
{
    using Virtual = Key::Virtual;
    InspectorPanel::Modes& modes = _pImpl->modes;
    const Virtual pressed = key.getVirtual();
    if (pressed == Virtual::F12)
        setShown(!_pImpl->isShown);
    else if (!_pImpl->isShown)
        return false;
    else if (pressed == Virtual::F6)
        modes.hasTextures = !modes.hasTextures;
    else if (pressed == Virtual::F7)
        modes.isWireframe = !modes.isWireframe;
    else if (pressed == Virtual::F8)
        _pImpl->isStepWanted = modes.isHeld;
    else if (pressed == Virtual::F9)
        modes.isHeld = !modes.isHeld;
    else if (pressed == Virtual::F10)
        modes.isOverdraw = !modes.isOverdraw;
    else
        return false;
    view.reDraw();
    return true;
}

bool Inspector::isHeld(const gl::View&) { return _pImpl->modes.isHeld && !_pImpl->isStepWanted; }

} // namespace gui::draw

/// For programs that are not linked with this library: see GUIGL_INSPECT.
extern "C" GUIGL_API void guigl_startInspector()
{
    static gui::draw::Inspector s_inspector;
    s_inspector.setShown(true);
    const char* const wanted = std::getenv("GUIGL_INSPECT");
    const std::string_view words = wanted != nullptr ? wanted : "";
    s_inspector.setWireframe(words.find("wires") != words.npos);
    s_inspector.setOverdraw(words.find("overdraw") != words.npos);
    s_inspector.setTexturesShown(words.find("textures") != words.npos);
}
