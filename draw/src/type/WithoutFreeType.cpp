// What stands for FreeType and fontconfig in a library that is built without them: there are no fonts of the system,
// and images of glyphs are made of the outlines.

#include "FreeTypeFace.h"
#include "SystemFonts.h"

struct FT_MemoryRec_
{
};

namespace gui::draw
{

FreeTypeFace::FreeTypeFace() = default;

FreeTypeFace::~FreeTypeFace() = default;

bool FreeTypeFace::isThere() { return false; }

std::unique_ptr<FreeTypeFace> FreeTypeFace::open(std::span<const td::BYTE>, unsigned int, std::string& cause)
{
    cause = "no FreeType";
    return nullptr;
}

void FreeTypeFace::setCoordinates(std::span<const float>) {}

std::optional<GlyphPaint> FreeTypeFace::getPaint(std::uint32_t) const { return std::nullopt; }

const char* FreeTypeFace::getImage(std::uint32_t, bool, const GlyphRequest&, GlyphImage&) const
{
    return "no FreeType";
}

SystemFonts& SystemFonts::instance()
{
    static SystemFonts s_instance;
    return s_instance;
}

Typeface SystemFonts::find(const Wish&, std::optional<char32_t>) { return {}; }

} // namespace gui::draw
