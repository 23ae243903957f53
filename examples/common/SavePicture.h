#pragma once

#include <filesystem>

namespace gui
{
class Application;
}
namespace gui::gl
{
class View;
}

namespace examples
{

/// Waits for the next frame of a view and writes it to a PNG file, in a folder that is made if need be. Says on
/// standard output, or standard error, which file was written, or was not.
/// @return whether it was written
[[nodiscard]] bool savePicture(gui::Application& app, gui::gl::View& view, const std::filesystem::path& file);

} // namespace examples
