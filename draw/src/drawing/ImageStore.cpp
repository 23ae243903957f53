#include "ImageStore.h"

#include <algorithm>

namespace gui::draw
{

std::uint32_t ImageStore::take(const Image& image)
{
    if (!image)
        return 0;
    auto found =
        std::find_if(_entries.begin(), _entries.end(), [&image](const Entry& entry) { return entry.image == image; });
    if (found == _entries.end())
        found = std::find_if(_entries.begin(), _entries.end(), [](const Entry& entry) { return entry.nUses == 0; });
    if (found == _entries.end())
        found = _entries.emplace(_entries.end());
    found->image = image;
    ++found->nUses;
    return static_cast<std::uint32_t>(found - _entries.begin()) + 1;
}

void ImageStore::giveBack(std::uint32_t number)
{
    if (number != 0 && --_entries[number - 1].nUses == 0)
        _entries[number - 1] = {};
}

unsigned int ImageStore::getTexture(std::uint32_t number)
{
    Entry& entry = _entries[number - 1];
    if (!entry.pTextures || entry.contextID != gl::CurrentContext::getID())
    {
        entry.pTextures = std::make_unique<gl::Textures>();
        entry.contextID = gl::CurrentContext::getID();
        entry.pTextures->setKeptForRestore(false); // the image is here
        // It takes images that may change, and changes none.
        if (!entry.pTextures->append({const_cast<gui::Texture*>(entry.image._pTexture.get())},
                                     gl::Texture::Type::Tex2D))
            return 0;
    }
    return entry.pTextures->size() == 0 ? 0 : entry.pTextures->getID(0);
}

} // namespace gui::draw
