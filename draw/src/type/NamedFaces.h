#pragma once

#include "SystemFonts.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace gui::draw
{

/// Faces by name: those that the program brings, else the system's. Each is made once and stays. For any thread.
class NamedFaces
{
public:
    static NamedFaces& instance();

    /// No face when there is none.
    Typeface find(const std::string& family, const Typeface::Look& look);
    /// Instead of what the name stood for; none gives it back to the system.
    void provide(const std::string& family, std::vector<Typeface> faces);

private:
    std::mutex _mutex;
    std::map<std::string, std::vector<Typeface>> _provided;
    std::map<SystemFonts::Wish, Typeface> _known;
};

} // namespace gui::draw
