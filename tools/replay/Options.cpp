#include "Options.h"

#include "Error.h"

#include <charconv>
#include <cstdint>
#include <string_view>

namespace replay
{

const char* const cHelp = R"(guigl-replay FILE.guiglframe [OPTION]...
Draws a frame that a program wrote with GUIGL_CAPTURE=FILE.guiglframe, without the
program. In a window, the Left and Right keys go from draw to draw, Home and End to the
first and the last, Escape ends. Without a display it writes a picture.

      --out FILE.png       write the picture (without a display: FILE.guiglframe.png)
      --to N               the picture after the N-th draw, of whatever it drew into
      --list               print the draws, and from where they were called
      --changes            print what is other at each draw than at the one before, and
                           how many pixels it changed
      --buffer N           print what a buffer holds
      --program N          print a program's shaders
      --times              print how long the GPU took for each draw
      --overdraw FILE.png  write how often each pixel was drawn: blue once, green
                           twice, yellow 4, red 8, white 16 times and more
      --timeout SECONDS    give up after so long (60); 0 never does
      --help               this text
)";

namespace
{

unsigned int numberOf(const std::string& option, std::string_view text)
{
    unsigned int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        throw Error(option + " wants a number, not '" + std::string(text) + "'");
    return value;
}

} // namespace

Options parseOptions(std::span<const char* const> arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string option = arguments[i];
        const auto value = [&arguments, &i, &option]() -> std::string
        {
            if (++i == arguments.size() || *arguments[i] == '\0')
                throw Error(option + " wants a value");
            return arguments[i];
        };
        if (option == "--out")
            options.picture = value();
        else if (option == "--overdraw")
            options.overdraw = value();
        else if (option == "--to")
        {
            options.to = numberOf(option, value());
            if (options.to == 0)
                throw Error("--to counts from 1");
        }
        else if (option == "--buffer")
            options.buffer = numberOf(option, value());
        else if (option == "--program")
            options.program = numberOf(option, value());
        else if (option == "--timeout")
            options.timeout = numberOf(option, value());
        else if (option == "--list")
            options.list = true;
        else if (option == "--changes")
            options.changes = true;
        else if (option == "--times")
            options.times = true;
        else if (option == "--help" || option == "-h")
            options.help = true;
        else if (option.starts_with('-'))
            throw Error("there is no option " + option);
        else if (!options.file.empty())
            throw Error("one file at a time: '" + options.file + "' or '" + option + "'");
        else
            options.file = option;
    }
    if (!options.help && options.file.empty())
        throw Error("which frame? Name a file that GUIGL_CAPTURE wrote");
    return options;
}

} // namespace replay
