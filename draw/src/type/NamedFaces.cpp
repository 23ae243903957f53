#include "NamedFaces.h"

#include "TypefaceImpl.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>
#include <utility>

namespace gui::draw
{

namespace
{

using Look = Typeface::Look;
using Slant = Typeface::Slant;

const FontTag cWeight("wght"), cWidth("wdth"), cItalic("ital"), cSlant("slnt");
constexpr double cObliqueAngle = -14; // as CSS has it; counter-clockwise is above 0

// A face as near to a look as its axes take it, and how near that is.
struct Candidate
{
    Look look;
    std::vector<FontVariation> variations;

    // The order of CSS Fonts 4, 5.2: width before slant before weight, each on its own side first.
    auto distance(const Look& wish) const
    {
        const bool isNarrow = wish.width <= 100;
        const bool isOnOtherSide = isNarrow ? look.width > wish.width : look.width < wish.width;
        return std::tuple(isOnOtherSide, std::abs(look.width - wish.width), slantRank(wish.slant),
                          weightRank(wish.weight), std::abs(look.weight - wish.weight));
    }

private:
    int slantRank(Slant wish) const
    {
        if (look.slant == wish)
            return 0;
        if (wish == Slant::Upright)
            return look.slant == Slant::Oblique ? 1 : 2;
        return look.slant == Slant::Upright ? 2 : 1;
    }

    // From 400 to 500 it is what is up to 500, then what is lighter, then the rest; below that lighter ones go first,
    // above it heavier ones.
    int weightRank(double wish) const
    {
        const double weight = look.weight;
        if (wish >= 400 && wish <= 500)
            return weight >= wish && weight <= 500 ? 0 : weight < wish ? 1 : 2;
        return (wish < 400 ? weight <= wish : weight >= wish) ? 0 : 1;
    }
};

Candidate candidateOf(const Typeface& face, const Look& wish)
{
    Candidate candidate{.look = TypefaceImpl::of(face)->getLook(), .variations = {}};
    Look& look = candidate.look;
    for (const Typeface::Axis& axis : face.getAxes())
    {
        const auto set = [&](double value)
        {
            candidate.variations.push_back({axis.tag, std::clamp(value, axis.minimum, axis.maximum)});
            return candidate.variations.back().value;
        };
        if (axis.tag == cWeight)
            look.weight = set(wish.weight);
        else if (axis.tag == cWidth)
            look.width = set(wish.width);
        else if (axis.tag == cItalic && axis.minimum <= 0 && axis.maximum >= 1)
            look.slant = set(wish.slant == Slant::Italic ? 1 : 0) > 0 ? Slant::Italic : Slant::Upright;
        else if (axis.tag == cSlant && axis.minimum < 0 && look.slant != Slant::Italic)
            look.slant = set(wish.slant == Slant::Upright ? 0 : cObliqueAngle) < 0 ? Slant::Oblique : Slant::Upright;
    }
    return candidate;
}

Typeface nearest(const std::vector<Typeface>& faces, const Look& wish)
{
    const Typeface* pNearest = nullptr;
    Candidate nearest;
    for (const Typeface& face : faces)
        if (Candidate candidate = candidateOf(face, wish);
            pNearest == nullptr || candidate.distance(wish) < nearest.distance(wish))
        {
            pNearest = &face;
            nearest = std::move(candidate);
        }
    return pNearest->withVariations(nearest.variations);
}

} // namespace

NamedFaces& NamedFaces::instance()
{
    // Never destroyed: texts that outlive main() may still ask.
    static NamedFaces* const s_pInstance = new NamedFaces;
    return *s_pInstance;
}

Typeface NamedFaces::find(const std::string& family, const Look& look)
{
    const std::lock_guard lock(_mutex);
    const auto [found, isNew] = _known.try_emplace({.family = family, .look = look});
    if (isNew)
    {
        const auto provided = _provided.find(family);
        found->second =
            provided != _provided.end() ? nearest(provided->second, look) : SystemFonts::instance().find(found->first);
    }
    return found->second;
}

void NamedFaces::provide(const std::string& family, std::vector<Typeface> faces)
{
    std::erase_if(faces, [](const Typeface& face) { return !face; });
    const std::lock_guard lock(_mutex);
    std::erase_if(_known, [&](const auto& each) { return each.first.family == family; });
    if (faces.empty())
        _provided.erase(family);
    else
        _provided[family] = std::move(faces);
}

} // namespace gui::draw
