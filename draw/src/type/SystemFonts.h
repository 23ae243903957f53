#pragma once

#include <gui/draw/Typeface.h>

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>

struct _FcFontSet;
struct _FcPattern;

namespace gui::draw
{

/// The fonts that the system has, by fontconfig. Each is opened once and stays open. For any thread.
class SystemFonts
{
public:
    /// What one wants of a face.
    struct Wish
    {
        std::string family{};
        Typeface::Look look{};
        std::string language{}; ///< empty for the user's
        bool isColored = false;

        auto key() const { return std::tie(family, look.weight, look.slant, look.width, language, isColored); }
        bool operator<(const Wish& other) const { return key() < other.key(); }
    };

    static SystemFonts& instance();

    /// The nearest face, or the nearest one that has the character; no face when there is none. With isColored a face
    /// without colours is not taken.
    Typeface find(const Wish& wish, std::optional<char32_t> character = {});

private:
    Typeface open(_FcPattern* pPattern);
    static bool isUsable(_FcPattern* pPattern, const Wish& wish);

    std::mutex _mutex;
    std::map<Wish, _FcFontSet*> _sorted;     // the whole system's fonts by how near they are
    std::map<std::string, Typeface> _opened; // none where it can't be
};

} // namespace gui::draw
