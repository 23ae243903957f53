#include <gui/Res.h>

#include <cstring>

namespace
{

// A font file has its size at the start, and the number of glyphs before the first.
bool isThere(const char* name, float size, unsigned short noGlyphs)
{
    std::span<const td::BYTE> file;
    return gui::Res::getCompiled(name, file) && file.size() > 36 && std::memcmp(file.data(), &size, 4) == 0 &&
           std::memcmp(file.data() + 34, &noGlyphs, 2) == 0;
}

bool isFaceThere(const char* name)
{
    std::span<const td::BYTE> file;
    return gui::Res::getCompiled(name, file) && file.size() > 8 && std::memcmp(file.data(), "GuiGLFac", 8) == 0;
}

} // namespace

// Succeeds when both fonts are in the program, with their characters and the box for others, and the face.
int main()
{
    return isThere(":fonts/sans.font", 24, 26 + 1 + 1) && isThere(":note.font", 12, 5 + 1) && isFaceThere(":sans.face")
               ? 0
               : 1;
}
