#pragma once

#include "SheetView.h"

namespace worldmap
{

/// How everything is written on the map. @param halo  the width of a light rim, in points
gui::draw::TextStyle writing(double halo);

/// The names of the countries, the largest first, as far as there is room: in the country that is wide enough for its
/// name, in two lines if need be, or beside an island. All are made once; each move of the map only hides some and
/// shows others, or the same ones elsewhere.
class Names
{
public:
    /// A name on the map, and what it covers of the plane.
    struct Shown
    {
        std::size_t country;
        Rect box;
    };

    /// @param countries  must outlive the names
    explicit Names(const Countries& countries);

    /// Places the names anew if the map has moved since.
    /// @param bottom  how much of the view is kept free of them there, in points
    void layOut(SheetView& map, double bottom);
    void draw(const SheetView& map) { _drawing.draw(map); }

    /// The names that were placed last.
    const std::vector<Shown>& getShown() const { return _shown; }

private:
    /// A name in one line or two.
    struct Text
    {
        gui::draw::Drawing::ID id;
        td::Size<double> size; ///< in points
        std::optional<Point> place{};
        std::optional<Point> next{};
    };

    struct Land
    {
        std::size_t country;
        gui::draw::Path path{}; ///< of all its pieces
        double area = 0;        ///< of the largest one, which the rest is about
        Rect box{};
        Rect room{}; ///< see roomIn
        std::vector<Text> texts{};
    };

    void setProjection(Projection projection);
    static Rect roomIn(const Land& land, const Rect& part);
    bool addInside(const Land& land, Text& text);
    void addBeside(const Land& land, Text& text, SheetView& map);
    bool add(const Land& land, Text& text, const Point& middle);

    const Countries& _countries;
    gui::draw::Drawing _drawing;
    std::vector<Land> _lands;              // the largest first
    std::optional<Projection> _projection; // of the lands
    Rect _visible;
    Rect _free; // of the map, for names
    double _zoom = 1;
    std::vector<Shown> _shown;
};

} // namespace worldmap
