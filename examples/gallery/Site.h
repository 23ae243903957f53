#pragma once

#include <gui/draw/Drawing.h>

#include <random>
#include <unordered_map>

namespace gallery
{

/// A surveyed site of nine city blocks and their park, down to a screw of a millimetre on a desk: some 50,000 shapes in
/// metres east and north of the survey's origin, which is ten thousand kilometres away.
class Site
{
public:
    using Path = gui::draw::Path;
    using Point = Path::Point;

    struct Shape
    {
        const char* name;
        td::Color color;
    };

    /// Names a shape; 0 is none.
    using ID = gui::draw::Drawing::ID;

    Site();

    /// Draws it, without furniture where that would be smaller than a few points.
    void draw(const gui::draw::Affine& toPoints, double pixelsPerPoint);

    /// The topmost shape that is drawn by this map, within a tolerance in metres.
    ID pick(const gui::draw::Affine& toPoints, Point place, double tolerance) const;

    /// What a shape is; null for none.
    const Shape* find(ID id) const;
    void setColor(ID id, td::Color color);
    std::size_t getNumberOfShapes() const { return _shapes.size(); }

    static constexpr double cEast = 10'204'310, cNorth = 9'876'540; ///< of the corner in the south-west
    static constexpr double cWidth = 480, cHeight = 430;
    static Point getRoom(); ///< a place in the room where the screw is
    static Point getScrew();

private:
    void fill(const char* name, Path path, td::Color color);
    void stroke(const char* name, Path path, double width, td::Color color, std::vector<double> dashes = {});
    double random(double from, double to);

    void addLand();
    void addRoads();
    void addBlock(Point corner, bool isTurned);
    void addTree(Point place, double radius);
    void addPark(Point corner);
    void addBuilding(int nRooms);
    void addRoom(int use);
    void addOffice();
    void addMeeting();
    void addStore();
    void addChair(Point place, double angle);
    void addMovement();
    void addScrew();

    static bool isFurnished(const gui::draw::Affine& toPoints) { return toPoints.a > 5; }
    void keep(ID id, const char* name, td::Color color);

    gui::draw::Drawing _plan;
    gui::draw::Drawing _furniture;          // over the plan
    gui::draw::Drawing* _pDrawing = &_plan; // what is added to
    gui::draw::Affine _place;               // of what is added
    std::minstd_rand _random{7};
    std::unordered_map<ID, Shape> _shapes; // those of furniture with cFurniture
};

} // namespace gallery
