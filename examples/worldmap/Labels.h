#pragma once

#include "Outlook.h"
#include "Rooms.h"
#include "Writing.h"

#include <span>
#include <string>
#include <vector>

namespace worldmap
{

/// The names of the countries, the largest first, as far as there is room: in the country that is wide enough for its
/// name, in two lines if need be, or beside an island. Laid out anew only when the map moved.
class Labels
{
public:
    using Box = examples::Captions::Box;

    /// A name on the map, and its place in pixels of the frame, y downwards.
    struct Shown
    {
        std::size_t country;
        Box box;
    };

    /// @param countries  must outlive the labels
    explicit Labels(const Countries& countries);

    /// @return false, after a line in the log, when a font is missing
    [[nodiscard]] bool init() { return initWriting(_captions); }

    /// @param reserved  what is to be kept free of names at the bottom, in pixels; it depends on the outlook alone
    void draw(const Outlook& outlook, std::span<const Box> reserved);

    /// The names that were drawn last.
    const std::vector<Shown>& getShown() const { return _shown; }

private:
    void layOut(std::span<const Box> reserved);
    bool addInside(const Land& land);
    bool addInside(const Land& land, const std::string& text);
    bool addBeside(const Land& land);
    bool isOnlySeaAt(const td::Point<double>& middle, const td::Size<double>& size, std::size_t country) const;
    bool add(const td::Point<double>& middle, std::size_t country, const std::string& text);
    td::Size<double> measure(const std::string& text) const;
    worldmap::Box seenDegrees() const;

    const Countries& _countries;
    std::vector<Land> _lands;
    examples::Captions _captions;
    Outlook _outlook;
    worldmap::Box _free; // of the view, in points from its top left corner: the map above what is reserved
    std::vector<Shown> _shown;
};

} // namespace worldmap
