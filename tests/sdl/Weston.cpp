#include "Weston.h"

#include "Waiting.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

namespace test
{

namespace
{

constexpr char cConfiguration[] = R"([core]
idle-time=0
[shell]
panel-position=none
locking=false
animation=none
close-animation=none
startup-animation=none
focus-animation=none
background-color=0xff303030
[output]
name=screen0
mode=640x480
scale=1
[output]
name=screen1
mode=300x250
scale=2
)";

const char* const cTitles[] = {"Weston Compositor - screen0", "Weston Compositor - screen1"};

} // namespace

Weston::Weston(std::string layouts)
    : _layouts(std::move(layouts))
    , _pServer(std::make_unique<XServer>())
{
    if (!_pServer->isOk())
        return;
    // It takes the layouts over when it starts.
    _pServer->setLayouts(_layouts);
    std::string folder = testing::TempDir() + "guigl-weston-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr)
        return;
    _folder = folder;
    std::ofstream(_folder + "/weston.ini") << cConfiguration;
    setenv("XDG_RUNTIME_DIR", _folder.c_str(), 1);
    _pWeston = std::make_unique<Process>(Arguments{"weston", "--backend=x11-backend.so", "--output-count=2",
                                                   "--config=" + _folder + "/weston.ini", "--socket=wayland-test",
                                                   "--log=" + _folder + "/log"});
    const auto isReady = [this]
    {
        return std::filesystem::exists(_folder + "/wayland-test") && _pServer->findWindow(cTitles[0]) != 0 &&
               _pServer->findWindow(cTitles[1]) != 0;
    };
    if (!waitFor(isReady))
        return;
    constexpr int cLeftOfSecond = 660;
    xdo("windowmove " + std::to_string(_pServer->findWindow(cTitles[1])) + " " + std::to_string(cLeftOfSecond) + " 0");
    setenv("WAYLAND_DISPLAY", "wayland-test", 1);
    // The shell has painted the background when it is ready for windows.
    constexpr std::uint32_t cBackground = 0x303030;
    _isOk = waitFor(
        [&]
        {
            const auto isPainted = [&](int number)
            {
                const XServer::Place place = area(number);
                return place.width > 0 && _pServer->shoot(place).at(place.width - 1, place.height - 1) == cBackground;
            };
            return area(1).x == cLeftOfSecond && isPainted(0) && isPainted(1);
        });
}

Weston::~Weston()
{
    _pWeston.reset();
    std::error_code error;
    if (!_folder.empty())
        std::filesystem::remove_all(_folder, error);
}

XServer::Place Weston::area(int number) const { return _pServer->placeOf(_pServer->findWindow(cTitles[number])); }

void Weston::goTo(int number) const
{
    const XServer::Place place = area(number);
    xdo("windowfocus " + std::to_string(_pServer->findWindow(cTitles[number])) + " mousemove " +
        std::to_string(place.x + place.width - 2) + " " + std::to_string(place.y + place.height - 2));
}

} // namespace test
