#include "BakedFont.h"
#include "Error.h"
#include "FaceBaker.h"
#include "Options.h"
#include "OutputFile.h"
#include "Preview.h"

#include <cstdio>
#include <exception>
#include <optional>

namespace
{

using namespace fontbake;

/// Takes out what the font lacks, or refuses.
template <typename Font>
void reduceToFont(CharacterSet& characters, const Font& font, const Options& options)
{
    CharacterSet missing;
    for (const char32_t codePoint : characters)
        if (!font.has(codePoint))
            missing.push_back(codePoint);
    if (missing.empty())
        return;
    if (!options.skipMissing)
    {
        const std::size_t nOthers = missing.size() - 1;
        throw Error(options.font + " lacks " + nameOf(missing.front()) +
                    (nOthers == 0 ? "" : " and " + std::to_string(nOthers) + " other characters") +
                    "; --skip-missing does without");
    }
    std::erase_if(characters, [&font](char32_t codePoint) { return !font.has(codePoint); });
}

void run(const Options& options)
{
    CharacterSet characters = options.text.empty() ? charactersOfRanges(options.chars)
                                                   : charactersOfText(contentOf(options.text), options.text);
    if (options.face)
    {
        const FaceBaker baker(options.font, options.index);
        reduceToFont(characters, baker, options);
        OutputFile(options.output, baker.bake(characters)).keep();
        return;
    }
    const Rasterizer rasterizer(options.font, options.bake.size, options.hinting);
    reduceToFont(characters, rasterizer, options);
    const BakedFont font = bake(rasterizer, characters, options.bake);

    OutputFile fontFile(options.output, fileOf(font));
    std::optional<OutputFile> preview;
    if (!options.preview.empty())
        preview.emplace(options.preview, previewOf(font));
    fontFile.keep();
    if (preview)
        preview->keep();
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        const Options options = parseOptions({argv + 1, argv + argc});
        if (options.help)
            std::fputs(cHelp, stdout);
        else
            run(options);
        return 0;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "fontbake: %s\n", error.what());
        return 1;
    }
}
