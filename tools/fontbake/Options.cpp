#include "Options.h"

#include "Error.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>

namespace fontbake
{

const char* const cHelp = R"(fontbake FONT -o NAME.font --size N [OPTION]...
fontbake FONT -o NAME.face --face [OPTION]...
Makes of a TrueType or OpenType font a font file for gui::gl (pictures of its
characters, and how far each moves the pen), or with --face a face for gui::draw
(their outlines for every size, and all that shaping needs; no FreeType).

  -o, --output FILE   the file to write
      --face          for gui::draw::Typeface::fromFile
      --index N       which font of a collection, from 0 on; for faces only
      --size N        pixels per em, 4 to 500
      --chars RANGES  the characters, e.g. 32-126,160-255,U+400-U+45F
                      (without this, 32-126,160-255)
      --text FILE     the characters that this UTF-8 text uses instead
      --skip-missing  leave out characters that the font lacks; without this they
                      are an error
      --help          this text

For font files alone:
      --spread N      blank pixels around each picture, 1 to 64 (1). One keeps
                      neighbours out of filtered text; more makes room for smaller
                      mipmap levels and for shaders that draw outlines or shadows
      --light-on-dark for light text on dark ground, which would come out thin
      --hinting KIND  light fits heights to whole pixels (the default), none
                      keeps the font's shapes as they are
      --preview FILE  also draw the characters as PNG

A character's picture stands on a whole pixel and moves the pen by whole pixels, so
text at scale 1 is as sharp as the pictures are; sizes for other scales are baked
each on its own. The file's last picture is a box for characters it lacks.
Faces have ASCII and the signs that the library writes besides the characters.
)";

namespace
{

int numberOf(const std::string& option, std::string_view text, int min, int max)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < min || value > max)
        throw Error(option + " wants a number from " + std::to_string(min) + " to " + std::to_string(max) + ", not '" +
                    std::string(text) + "'");
    return value;
}

Hinting hintingOf(std::string_view text)
{
    if (text == "light")
        return Hinting::Light;
    if (text == "none")
        return Hinting::None;
    throw Error("--hinting is light or none, not '" + std::string(text) + "'");
}

/// The arguments, taken one after the other.
class Reader
{
public:
    explicit Reader(std::span<const char* const> arguments)
        : _arguments(arguments)
    {
    }

    bool isAtEnd() const { return _next == _arguments.size(); }

    /// The next argument; what follows the '=' of a long option is its value.
    std::string take()
    {
        std::string argument = _arguments[_next++];
        const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
        _hasValue = equals != std::string::npos;
        if (_hasValue)
        {
            _value = argument.substr(equals + 1);
            argument.resize(equals);
        }
        return argument;
    }

    std::string takeValue(const std::string& option)
    {
        if (!_hasValue && isAtEnd())
            throw Error(option + " wants a value");
        std::string value = _hasValue ? _value : _arguments[_next++];
        _hasValue = false;
        if (value.empty())
            throw Error(option + " wants a value that is not empty");
        return value;
    }

    void refuseValue(const std::string& option) const
    {
        if (_hasValue)
            throw Error(option + " takes no value");
    }

private:
    std::span<const char* const> _arguments;
    std::size_t _next = 0;
    std::string _value;
    bool _hasValue = false;
};

void parse(Reader& reader, const std::string& option, Options& options)
{
    if (option == "--output")
        options.output = reader.takeValue(option);
    else if (option == "--size")
        options.bake.size = numberOf(option, reader.takeValue(option), 4, 500);
    else if (option == "--chars")
        options.chars = reader.takeValue(option);
    else if (option == "--text")
        options.text = reader.takeValue(option);
    else if (option == "--spread")
        options.bake.spread = numberOf(option, reader.takeValue(option), 1, 64);
    else if (option == "--hinting")
        options.hinting = hintingOf(reader.takeValue(option));
    else if (option == "--light-on-dark")
        options.bake.lightOnDark = true;
    else if (option == "--preview")
        options.preview = reader.takeValue(option);
    else if (option == "--face")
        options.face = true;
    else if (option == "--index")
        options.index = static_cast<unsigned int>(numberOf(option, reader.takeValue(option), 0, 65535));
    else if (option == "--skip-missing")
        options.skipMissing = true;
    else if (option == "--help")
        options.help = true;
    else
        throw Error("there is no option " + option);
    reader.refuseValue(option);
}

} // namespace

Options parseOptions(std::span<const char* const> arguments)
{
    Options options;
    std::set<std::string> given;
    for (Reader reader(arguments); !reader.isAtEnd() && !options.help;)
    {
        std::string argument = reader.take();
        if (!argument.starts_with('-'))
        {
            if (!options.font.empty())
                throw Error("one font at a time: '" + options.font + "' or '" + argument + "'");
            options.font = argument;
            continue;
        }
        if (argument == "-o")
            argument = "--output";
        else if (argument == "-h")
            argument = "--help";
        if (!given.insert(argument).second)
            throw Error(argument + " is given twice");
        parse(reader, argument, options);
    }
    if (options.help)
        return options;
    if (options.font.empty())
        throw Error("which font? Name a TrueType or OpenType file");
    if (options.output.empty())
        throw Error("-o is missing: the font file to write");
    for (const char* const other : {"--size", "--spread", "--light-on-dark", "--hinting", "--preview"})
        if (options.face && given.contains(other))
            throw Error(std::string("--face has no ") + other + ": a face is drawn at every size, from outlines");
    if (!options.face && given.contains("--index"))
        throw Error("--index is for --face alone");
    if (!options.face && options.bake.size == 0)
        throw Error("--size is missing: pixels per em; or --face for drawings");
    if (given.contains("--chars") && given.contains("--text"))
        throw Error("--chars and --text exclude each other");
    if (options.preview == options.output)
        throw Error("the font and its preview can't be the same file");
    return options;
}

} // namespace fontbake
