#include "PictureStage.h"

#include <gui/Texture.h>

#include <utility>

namespace gallery
{

void PictureStage::grab(gui::Texture& image, const std::function<void()>& callback)
{
    _pImage = &image;
    _callback = callback;
}

bool PictureStage::finishFrame()
{
    if (gui::Texture* const pImage = std::exchange(_pImage, nullptr))
    {
        if (!_context.readPixels(*pImage))
            return false;
        pImage->mirrorVertically(); // frames of a view begin with their bottom row
        std::exchange(_callback, {})();
    }
    return std::exchange(_isDrawWanted, false);
}

} // namespace gallery
