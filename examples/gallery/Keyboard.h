#pragma once

#include "Sketch.h"

#include <gui/Key.h>

#include <deque>
#include <vector>

namespace gallery
{

/// A keyboard without letters, whose keys light up while they are down; the last ones pressed keep a glow.
class Keyboard
{
public:
    // In keys.
    static constexpr float cWidth = 23;
    static constexpr float cHeight = 6;

    Keyboard();

    void onKey(const gui::Key& key, bool isDown);
    void releaseAll() { _down.clear(); }

    /// @param corner  of the keyboard, its top left one  @param unit  the size of a key
    void draw(Sketch& sketch, const glm::vec2& corner, float unit) const;

private:
    struct Place
    {
        unsigned int code; // a character in lower case
        gui::Key::Virtual virtualKey;
        Cell cell; // in keys
    };

    static bool isSame(const gui::Key& a, const gui::Key& b);
    bool isAt(const Place& place, const gui::Key& key) const;

    std::vector<Place> _places;
    std::vector<gui::Key> _down;
    std::deque<gui::Key> _last;
};

} // namespace gallery
