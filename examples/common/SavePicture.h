#pragma once

#include <filesystem>

namespace gui::gl
{
class View;
}

namespace examples
{

/// Draws a frame of a view and writes it to a PNG file, in a folder that is made if need be. Says on standard
/// output, or standard error, which file was written, or was not.
/// @return whether it was written
[[nodiscard]] bool savePicture(gui::gl::View& view, const std::filesystem::path& file);

} // namespace examples
