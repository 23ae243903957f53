#pragma once

namespace gui
{
class Texture;
}

namespace gui::gl
{

/// Uploads level 0 of the bound texture from an image of 3 (RGB) or 4 (RGBA) bytes per pixel, whose rows are packed.
/// @param target  GL_TEXTURE_2D or a face of a cube map  @param format  GL_RGB or GL_RGBA, as the image has it
void uploadImage(unsigned int target, unsigned int format, const gui::Texture& image);

} // namespace gui::gl
