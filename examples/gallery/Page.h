#pragma once

#include "Scenes.h"

#include <td/Size.h>

#include <filesystem>

namespace gallery
{

/// The name of a scene's picture: "NAME.png", "NAME@2x.png" at 2 device pixels per point.
std::string pictureName(const SceneInfo& scene, int scale);

/// Writes a web page that shows the pictures of all scenes, which lie beside it.
/// @param size  of the pictures, in points
/// @return false when the file can't be written
[[nodiscard]] bool writePage(const std::filesystem::path& file, const td::Size<double>& size);

} // namespace gallery
