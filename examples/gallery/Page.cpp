#include "Page.h"

#include <fstream>

namespace gallery
{

namespace
{

constexpr const char* cHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>GuiGL gallery</title>
<style>
:root { color-scheme: light dark; --page: #f4f5f8; --text: #1c2333; --faint: #5b6579; --line: #d8dce6; }
@media (prefers-color-scheme: dark) {
  :root { --page: #090c16; --text: #e8ecf5; --faint: #98a3b8; --line: #232b40; }
}
* { box-sizing: border-box; }
body { margin: 0; background: var(--page); color: var(--text); font: 17px/1.55 system-ui, sans-serif; }
main { max-width: 1008px; margin: 0 auto; padding: 64px 24px 40px; }
h1 { margin: 0; font-size: 38px; line-height: 1.15; letter-spacing: -0.02em; }
h2 { margin: 0 0 4px; font-size: 22px; line-height: 1.3; letter-spacing: -0.01em; }
p { margin: 0; max-width: 44em; color: var(--faint); text-wrap: pretty; }
header { margin-bottom: 56px; }
header p { margin-top: 12px; font-size: 19px; }
section { margin-bottom: 64px; }
img { display: block; width: 100%; height: auto; margin-bottom: 20px; border-radius: 10px;
      box-shadow: 0 1px 2px rgb(0 0 0 / 0.2), 0 12px 32px rgb(0 0 0 / 0.18); }
footer { padding-top: 20px; border-top: 1px solid var(--line); color: var(--faint); font-size: 14px; }
</style>
</head>
<body>
<main>
<header>
<h1>GuiGL gallery</h1>
<p>What the OpenGL layer of the toolkit draws: each picture comes from one short program, rendered without a window at
one and at two device pixels per point.</p>
</header>
)";

constexpr const char* cFoot = R"(<footer>Each scene is one source of that name in examples/gallery.</footer>
</main>
</body>
</html>
)";

} // namespace

std::string pictureName(const SceneInfo& scene, int scale)
{
    const std::string suffix = scale == 1 ? "" : '@' + std::to_string(scale) + 'x';
    return scene.name + suffix + ".png";
}

bool writePage(const std::filesystem::path& file, const td::Size<double>& size)
{
    std::ofstream page(file);
    page << cHead;
    for (const SceneInfo& scene : scenes())
    {
        page << "<section id=\"" << scene.name << "\">\n"
             << "<img src=\"" << pictureName(scene, 1) << "\" srcset=\"" << pictureName(scene, 1) << " 1x, "
             << pictureName(scene, 2) << " 2x\" width=\"" << size.width << "\" height=\"" << size.height << "\" alt=\""
             << scene.title << "\">\n"
             << "<h2>" << scene.title << "</h2>\n<p>" << scene.text << "</p>\n</section>\n";
    }
    page << cFoot;
    page.close();
    return page.good();
}

} // namespace gallery
