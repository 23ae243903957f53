#pragma once

#include <cnt/SafeFullVector.h>

namespace gui
{

/// Raw images, as files with pixels of their own bring them.
class Image
{
public:
    /// The pixels of one image, row after row without padding.
    struct _data
    {
        cnt::SafeFullVector<unsigned char> data; ///< width * height * bitsPerPixel / 8 bytes
        unsigned int width = 0;                  ///< pixels
        unsigned int height = 0;                 ///< pixels
        unsigned int bitsPerPixel = 0;
    };
};

} // namespace gui
