// An oscilloscope: shows what follows each rise through a level, so that what repeats stands still.
//     scope                      a signal of its own
//     scope 48000 < numbers.txt  numbers from standard input, so many a second
// Space stops and goes on, [ and ] move the level, the plot itself pans and zooms.
#include <gui/Application.h>
#include <gui/Key.h>
#include <gui/draw/PlotView.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

using namespace gui::draw;

namespace
{

class Scope : public PlotView
{
public:
    Scope(double rate, bool isInput)
        : _rate(rate)
        , _isInput(isInput)
        , _window(static_cast<std::size_t>(0.02 * rate))
    {
        setStyle(PlotStyle::dark());
        axes().x().setTitle("ms after the rise");
        axes().y().setFit(Axis::Fit::Visible);
        _pSignal = &add(Series::line(Samples::ofFloats(), {.label = "Signal", .color = "#6dff9c"}));
        _pSignal->setX(-100 * 0.02, 1000 / rate);
        _pLevel = &add(Series::line({-2, 18}, {0, 0}, {.label = "Level", .color = "#ffb454", .dashes = {6, 4}}));
        if (_isInput)
            ::fcntl(STDIN_FILENO, F_SETFL, ::fcntl(STDIN_FILENO, F_GETFL) | O_NONBLOCK);
        startAnimation();
    }

    bool prepareNextFrame() override
    {
        _isInput ? read() : generate();
        if (_samples.size() > 4 * _window)
            _samples.erase(_samples.begin(), _samples.end() - static_cast<std::ptrdiff_t>(4 * _window));
        if (_isRunning)
            show();
        return true;
    }

    bool onKeyPressed(const gui::Key& key) override
    {
        const char character = key.isASCII() ? key.getChar() : '\0';
        if (character == ' ')
            _isRunning = !_isRunning;
        else if (character == '[' || character == ']')
            _level += character == '[' ? -0.05 : 0.05;
        else
            return PlotView::onKeyPressed(key);
        return true;
    }

    void generate()
    {
        const std::chrono::duration<double> since = std::chrono::steady_clock::now() - _start;
        for (double t; (t = static_cast<double>(_nMade) / _rate) < since.count(); ++_nMade)
            _samples.push_back(std::sin(6.2831853 * 220 * t) + 0.4 * std::sin(6.2831853 * 660 * t + std::sin(t)));
    }

    void read()
    {
        std::array<char, 65536> bytes;
        const ssize_t n = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        _text.append(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(n, 0)));
        std::size_t used = 0;
        // A number is complete when something stands behind it.
        for (std::size_t end; (end = _text.find_first_of(" \t\r\n,", used)) != std::string::npos; used = end + 1)
            if (end > used)
                _samples.push_back(std::atof(_text.c_str() + used));
        _text.erase(0, used);
    }

    // From a tenth of the window before the last rise that has a window behind it.
    void show()
    {
        const std::size_t before = _window / 10;
        std::size_t at = _samples.size() < _window ? 0 : _samples.size() - _window + before;
        while (at > before && !(_samples[at - 1] < _level && _samples[at] >= _level))
            --at;
        const std::size_t first = at > before ? at - before : 0;
        _pSignal->clear();
        _pSignal->append(std::span<const double>(_samples).subspan(first, std::min(_window, _samples.size() - first)));
        _pLevel->clear();
        _pLevel->append(std::array{-2.0, 18.0}, std::array{_level, _level});
    }

    double _rate;
    bool _isInput, _isRunning = true;
    std::size_t _window, _nMade = 0;
    double _level = 0;
    std::vector<double> _samples;
    std::string _text;
    const std::chrono::steady_clock::time_point _start = std::chrono::steady_clock::now();
    Series *_pSignal, *_pLevel;
};

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    const double rate = argc > 1 ? std::atof(argv[1]) : 0;
    Scope scope(rate > 0 ? rate : 48000, rate > 0);
    return app.run(scope, "Scope", {900, 500});
}
