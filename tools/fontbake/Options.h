#pragma once

#include "BakedFont.h"

#include <span>
#include <string>

namespace fontbake
{

/// What the command line asks for.
struct Options
{
    std::string font;    ///< TrueType or OpenType file
    std::string output;  ///< font file to write
    std::string preview; ///< PNG to write; empty for none
    std::string chars = "32-126,160-255";
    std::string text; ///< file whose characters are wanted instead; empty for none
    BakeSettings bake;
    Hinting hinting = Hinting::Light;
    bool skipMissing = false;
    bool face = false; ///< a face for drawings is wanted, of which the next is
    unsigned int index = 0;
    bool help = false; ///< the rest means nothing then
};

/// Reads the arguments that follow the program's name. Throws Error for what it can't make sense of.
Options parseOptions(std::span<const char* const> arguments);

/// What --help prints.
extern const char* const cHelp;

} // namespace fontbake
