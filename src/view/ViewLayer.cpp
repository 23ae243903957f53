#include <gui/gl/ViewLayer.h>

#include "ViewLayers.h"

#include <gui/gl/View.h>
#include <td/GUIThread.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace gui::gl
{

namespace
{

std::vector<ViewLayer*> s_layers; // over any view, in the order in which they came

bool isThere(const ViewLayer* pLayer) { return std::ranges::find(s_layers, pLayer) != s_layers.end(); }

std::vector<ViewLayer*> layersOver(const View& view)
{
    std::vector<ViewLayer*> layers;
    std::ranges::copy_if(s_layers, std::back_inserter(layers),
                         [&view](const ViewLayer* pLayer) { return pLayer->getView() == &view; });
    return layers;
}

} // namespace

ViewLayer::ViewLayer(View& view)
    : _view(view.getLife())
{
    TD_ASSERT_GUI_THREAD();
    s_layers.push_back(this);
}

ViewLayer::~ViewLayer() { std::erase(s_layers, this); }

View* ViewLayer::getView() const
{
    const std::shared_ptr<View*> pView = _view.lock();
    return pView ? *pView : nullptr;
}

void ViewLayer::onDraw(View&) {}

bool ViewLayer::onPointer(Pointer, const InputDevice&) { return false; }

bool ViewLayer::onKeyPressed(const Key&) { return false; }

bool ViewLayer::onTextInput(std::string_view) { return false; }

bool ViewLayer::onTextComposition(const TextComposition&) { return false; }

void ViewLayer::onFocusOut() {}

bool ViewLayers::areOver(const View& view)
{
    return std::ranges::any_of(s_layers, [&view](const ViewLayer* pLayer) { return pLayer->getView() == &view; });
}

void ViewLayers::draw(View& view)
{
    const std::weak_ptr<View*> life = view.getLife();
    for (ViewLayer* pLayer : layersOver(view))
        if (!life.expired() && isThere(pLayer))
            pLayer->onDraw(view);
}

bool ViewLayers::offer(View& view, const std::function<bool(ViewLayer&)>& use)
{
    const std::weak_ptr<View*> life = view.getLife();
    std::vector<ViewLayer*> layers = layersOver(view);
    std::ranges::reverse(layers);
    return std::ranges::any_of(layers,
                               [&](ViewLayer* pLayer) { return isThere(pLayer) && (use(*pLayer) || life.expired()); });
}

bool ViewLayers::onPointer(View& view, ViewLayer::Pointer event, const InputDevice& device)
{
    return offer(view, [&](ViewLayer& layer) { return layer.onPointer(event, device); });
}

bool ViewLayers::onKeyPressed(View& view, const Key& key)
{
    return offer(view, [&](ViewLayer& layer) { return layer.onKeyPressed(key); });
}

bool ViewLayers::onTextInput(View& view, std::string_view text)
{
    return offer(view, [&](ViewLayer& layer) { return layer.onTextInput(text); });
}

bool ViewLayers::onTextComposition(View& view, const TextComposition& composition)
{
    return offer(view, [&](ViewLayer& layer) { return layer.onTextComposition(composition); });
}

void ViewLayers::onFocusOut(View& view)
{
    const auto tell = [](ViewLayer& layer)
    {
        layer.onFocusOut();
        return false;
    };
    offer(view, tell);
}

} // namespace gui::gl
