#include "Site.h"

#include <cmath>
#include <numbers>

namespace gallery
{

using gui::draw::Affine;
using gui::draw::Cap;
using gui::draw::FillRule;
using gui::draw::Join;
using gui::draw::Path;
using gui::draw::Unit;

namespace
{

constexpr double cPi = std::numbers::pi;

// Both drawings count from 1.
constexpr Site::ID cFurnitureBit = Site::ID(1) << 63U;

constexpr td::Color cPaleLine = "#bfe0ff";
constexpr td::Color cWall = "#d9ecff";
constexpr td::Color cLine = "#a9d3f8";
constexpr td::Color cSteel = "#9fc7ec";

// A room's sides, with the corridor behind it, and those of a block.
constexpr double cRoomWidth = 4, cRoomDepth = 5.6, cCorridor = 2.4;
constexpr double cBlockWidth = 150, cBlockHeight = 133, cRoad = 10;

// Where on the desk the movement of a watch lies, in the room.
constexpr Path::Point cRoom{Site::cWidth - cBlockWidth + 6, cRoad + 6};
constexpr Path::Point cMovement{0.72, 1.42};
constexpr Path::Point cScrew{0.011, 0.006}; // in the movement

Path rect(double left, double bottom, double right, double top) { return Path().addRect({left, bottom, right, top}); }

} // namespace

Site::Site()
{
    _shapes.reserve(60'000);
    const Affine survey = Affine::translation(cEast, cNorth);
    _place = survey;
    addLand();
    addRoads();
    for (int row = 0; row < 3; ++row)
    {
        for (int column = 0; column < 3; ++column)
        {
            const Point corner{cRoad + column * (cBlockWidth + cRoad), cRoad + row * (cBlockHeight + cRoad)};
            _place = survey;
            if (row == 1 && column == 1)
                addPark(corner);
            else
                addBlock(corner, (row + column) % 2 != 0);
        }
    }
    // The room with the screw: the first one of the block in the south-east.
    _pDrawing = &_furniture;
    _place = survey * Affine::translation(cRoom.x + cMovement.x, cRoom.y + cMovement.y);
    addMovement();
    _place = Affine::translation(getScrew().x, getScrew().y);
    addScrew();
}

void Site::draw(const Affine& toPoints, double pixelsPerPoint)
{
    _plan.draw(toPoints, pixelsPerPoint);
    if (isFurnished(toPoints))
        _furniture.draw(toPoints, pixelsPerPoint);
}

Site::ID Site::pick(const Affine& toPoints, Point place, double tolerance) const
{
    if (isFurnished(toPoints))
        if (const ID id = _furniture.pick(place, tolerance))
            return id | cFurnitureBit;
    return _plan.pick(place, tolerance);
}

const Site::Shape* Site::find(ID id) const
{
    const auto found = _shapes.find(id);
    return found != _shapes.end() ? &found->second : nullptr;
}

void Site::setColor(ID id, td::Color color)
{
    if ((id & cFurnitureBit) != 0)
        _furniture.setColor(id & ~cFurnitureBit, color);
    else
        _plan.setColor(id, color);
}

Site::Point Site::getScrew()
{
    return {cEast + cRoom.x + cMovement.x + cScrew.x, cNorth + cRoom.y + cMovement.y + cScrew.y};
}

Site::Point Site::getRoom() { return {cEast + cRoom.x + cRoomWidth, cNorth + cRoom.y + cRoomDepth / 2 - 0.3}; }

void Site::keep(ID id, const char* name, td::Color color)
{
    _shapes[_pDrawing == &_furniture ? id | cFurnitureBit : id] = {name, color};
}

void Site::fill(const char* name, Path path, td::Color color)
{
    keep(_pDrawing->fill(path.transform(_place), color, FillRule::EvenOdd), name, color);
}

void Site::stroke(const char* name, Path path, double width, td::Color color, std::vector<double> dashes)
{
    keep(_pDrawing->stroke(path.transform(_place), {.width = width, .join = Join::Round, .dashes = std::move(dashes)},
                           color),
         name, color);
}

double Site::random(double from, double to)
{
    return from + (to - from) * static_cast<double>(_random() - 1) / static_cast<double>(std::minstd_rand::max() - 1);
}

void Site::addLand()
{
    for (int i = -6; i < 40; ++i)
    {
        std::vector<Point> points;
        for (int k = 0; k <= 90; ++k)
        {
            const double x = -60 + 10.0 * k, y = 13.0 * i;
            points.push_back({x, y + 26 * std::sin(x / 90 + y / 160) + 9 * std::sin(x / 31 - y / 70)});
        }
        stroke("contour line", Path().addPolyline(points), i % 5 == 0 ? 1 : 0.5, "#8fc4f544");
    }
}

void Site::addRoads()
{
    const auto line = [](double x0, double y0, double x1, double y1) {
        return Path().moveTo({x0, y0}).lineTo({x1, y1});
    };
    Path roads, centers;
    for (int i = 0; i <= 3; ++i)
    {
        const double x = cRoad / 2 + i * (cBlockWidth + cRoad), y = cRoad / 2 + i * (cBlockHeight + cRoad);
        roads.addPath(line(x, -40, x, cHeight + 49)).addPath(line(-40, y, cWidth + 50, y));
        centers.addPath(line(x, -40, x, cHeight + 49)).addPath(line(-40, y, cWidth + 50, y));
    }
    roads.transform(_place);
    // The wider one leaves an edge on both sides.
    for (const auto& [width, color] : {std::pair(cRoad - 2, "#6fa9dc"), std::pair(cRoad - 2.6, "#12406f")})
        keep(_plan.stroke(roads, {.width = width, .unit = Unit::Model}, color), "road", color);
    stroke("centre line", centers, 0.75, "#e8f3ff88", {6, 5});
}

void Site::addTree(Point place, double radius)
{
    const double phase = random(0, 6);
    Path crown;
    constexpr int cLobes = 9;
    for (int i = 0; i <= cLobes; ++i)
    {
        const double angle = phase + 2 * cPi * i / cLobes, middle = angle - cPi / cLobes;
        const Point p{place.x + radius * std::cos(angle), place.y + radius * std::sin(angle)};
        i == 0
            ? crown.moveTo(p)
            : crown.quadTo({place.x + 1.3 * radius * std::cos(middle), place.y + 1.3 * radius * std::sin(middle)}, p);
    }
    crown.close();
    fill("tree", crown, "#5fd0a833");
    stroke("tree", crown.addCircle(place, 0.2), 0.5, "#7fe0bd99");
}

void Site::addPark(Point corner)
{
    const Point middle{corner.x + cBlockWidth / 2, corner.y + cBlockHeight / 2};
    fill("park", Path().addRoundedRect({corner.x, corner.y, corner.x + cBlockWidth, corner.y + cBlockHeight}, {6, 6}),
         "#3fb58c26");
    Path lake;
    lake.moveTo({middle.x - 40, middle.y})
        .cubicTo({middle.x - 44, middle.y + 34}, {middle.x - 4, middle.y + 14}, {middle.x + 18, middle.y + 26})
        .cubicTo({middle.x + 52, middle.y + 40}, {middle.x + 52, middle.y - 22}, {middle.x + 16, middle.y - 24})
        .cubicTo({middle.x - 10, middle.y - 26}, {middle.x - 36, middle.y - 30}, {middle.x - 40, middle.y})
        .close();
    Path land = Path().addEllipse({middle.x + 14, middle.y + 4}, {9, 6});
    fill("lake", Path(lake).addPath(land), "#4fb4ff66");
    stroke("shore", lake.addPath(land), 1, cPaleLine);
    stroke("path", Path().addEllipse(middle, {62, 50}), 1, "#ffe2a8aa", {3, 2});
    for (int i = 0; i < 700; ++i)
    {
        const Point p{corner.x + random(3, cBlockWidth - 3), corner.y + random(3, cBlockHeight - 3)};
        const double way = std::hypot((p.x - middle.x) / 62, (p.y - middle.y) / 50);
        if (way > 1.08 || (way > 0.82 && way < 0.94))
            addTree(p, random(1.2, 2.8));
    }
}

void Site::addBlock(Point corner, bool isTurned)
{
    const double width = isTurned ? cBlockHeight : cBlockWidth, height = isTurned ? cBlockWidth : cBlockHeight;
    Affine block = _place * Affine::translation(corner.x, corner.y);
    if (isTurned)
        block = block * Affine{0, 1, -1, 0, cBlockWidth, 0};
    _place = block;
    stroke("plot", Path().addRoundedRect({0, 0, width, height}, {5, 5}), 0.75, "#bfe0ff99");
    constexpr int cBuildings = 6;
    constexpr double cDepth = 2 * cRoomDepth + cCorridor;
    const double pitch = (height - 12 - cDepth) / (cBuildings - 1);
    const int nMost = static_cast<int>((width - 12) / cRoomWidth);
    for (int i = 0; i < cBuildings; ++i)
    {
        const double y = 6 + i * pitch;
        const int nRooms = nMost - static_cast<int>(random(0, 9));
        _place = block;
        for (double x = 4; x < width - 4; x += random(4, 7))
            addTree({x, y + (pitch + cDepth) / 2 + random(-1, 1)}, random(1, 1.7));
        for (double x = 6 + nRooms * cRoomWidth + 4; x < width - 3; x += 4)
            addTree({x, y + random(2, 11)}, random(1, 1.9));
        _place = block * Affine::translation(6, y);
        addBuilding(nRooms);
    }
}

void Site::addBuilding(int nRooms)
{
    const Affine building = _place;
    const double length = nRooms * cRoomWidth, depth = 2 * cRoomDepth + cCorridor;
    fill("building", rect(0, 0, length, depth), "#1c5a96");
    fill("corridor", rect(0, cRoomDepth, length, cRoomDepth + cCorridor), "#2b6dab");
    for (int i = 0; i < nRooms; ++i)
    {
        for (const bool isNorth : {false, true})
        {
            _place = building * Affine::translation(i * cRoomWidth, 0);
            if (isNorth)
                _place = _place * Affine{1, 0, 0, -1, 0, depth};
            const double chance = random(0, 1);
            addRoom(i == 0 || chance < 0.72 ? 0 : chance < 0.86 ? 1 : 2);
        }
    }
    _place = building;
    stroke("building", rect(0, 0, length, depth), 1, cPaleLine);
}

void Site::addRoom(int use)
{
    constexpr const char* cFloors[] = {"#2f74b5", "#3a68b8", "#27698f"};
    fill("floor", rect(0.1, 0.2, cRoomWidth - 0.1, cRoomDepth - 0.1), cFloors[use]);
    fill("wall", Path::fromSVG("M2.8 5.6H0V0H4V5.6H3.7V5.5H3.92V.24H.08V5.5H2.8Z"), cWall);
    fill("window", rect(0.8, 0.04, 3.2, 0.2), "#4f9be0");
    _pDrawing = &_furniture;
    stroke("door", Path::fromSVG("M3.7 5.5V4.6A.9 .9 0 0 0 2.8 5.5"), 0.5, cLine);
    stroke("lamp", Path::fromSVG("M1.85 2.8H2.15M2 2.65V2.95").addCircle({2, 2.8}, 0.15), 0.5, "#ffe2a8");
    if (use == 0)
        addOffice();
    else if (use == 1)
        addMeeting();
    else
        addStore();
    _pDrawing = &_plan;
}

void Site::addChair(Point place, double angle)
{
    const Affine before = _place;
    _place = _place * Affine::translation(place.x, place.y) * Affine::rotation(angle);
    fill("chair", Path().addRoundedRect({-0.22, -0.22, 0.22, 0.22}, {0.1, 0.1}), "#5b9cd6");
    stroke("chair", Path().arc({0, 0}, {0.27, 0.27}, -0.9, 1.8), 0.75, cLine);
    _place = before;
}

void Site::addOffice()
{
    for (const double x : {0.2, 2.95})
    {
        fill("desk", rect(x, 0.7, x + 0.85, 2.3), "#4a8fce");
        stroke("desk", rect(x, 0.7, x + 0.85, 2.3), 0.5, cLine);
        const bool isLeft = x < 1;
        const double screen = isLeft ? x + 0.1 : x + 0.69;
        fill("screen", rect(screen, 1.05, screen + 0.06, 1.75), cWall);
        addChair({isLeft ? x + 1.2 : x - 0.35, 1.4}, isLeft ? 0 : cPi);
    }
    fill("shelf", rect(0.12, 3.1, 0.5, 5.1), "#3d82c2");
    stroke("shelf", Path::fromSVG("M.12 3.6H.5M.12 4.1H.5M.12 4.6H.5M.12 3.1H.5V5.1H.12"), 0.5, cLine);
    addTree({3.5, 3.5}, 0.22);
}

void Site::addMeeting()
{
    const Path table = Path().addRoundedRect({1.3, 1.2, 2.7, 4.2}, {0.6, 0.6});
    fill("table", table, "#5f8fd8");
    stroke("table", table, 0.5, cLine);
    for (int i = 0; i < 3; ++i)
    {
        addChair({3.05, 1.8 + 0.9 * i}, 0);
        addChair({0.95, 1.8 + 0.9 * i}, cPi);
    }
}

void Site::addStore()
{
    for (int i = 0; i < 5; ++i)
    {
        const double y = 0.5 + 0.85 * i;
        fill("rack", rect(0.3, y, 2.6, y + 0.45), "#3a86a8");
        stroke("rack", Path().addPath(rect(0.3, y, 2.6, y + 0.45)).moveTo({0.3, y}).lineTo({2.6, y + 0.45}), 0.5,
               cLine);
    }
}

// Three centimetres of a watch: a plate with wheels, drawn in metres.
void Site::addMovement()
{
    const auto wheel = [this](Point middle, double radius, int nTeeth)
    {
        std::vector<Point> points;
        for (int i = 0; i < 4 * nTeeth; ++i)
        {
            const double angle = 2 * cPi * (i + 0.5) / (4 * nTeeth);
            const double r = i % 4 < 2 ? radius : radius * 0.9;
            points.push_back({middle.x + r * std::cos(angle), middle.y + r * std::sin(angle)});
        }
        Path teeth = Path().addPolygon(points).addCircle(middle, radius * 0.72);
        for (int i = 0; i < 5; ++i)
        {
            const Affine turn = Affine::translation(middle.x, middle.y) * Affine::rotation(2 * cPi * i / 5);
            teeth.addPath(rect(0, -0.05 * radius, 0.75 * radius, 0.05 * radius).transform(turn));
        }
        fill("wheel", teeth, "#e9c46a");
        stroke("wheel", teeth, 0.5, "#fff0c9");
        fill("axle", Path().addCircle(middle, radius * 0.12), cWall);
    };
    fill("plate", Path().addCircle({0, 0}, 0.016), "#2a5f96");
    stroke("plate", Path().addCircle({0, 0}, 0.016).addCircle({0, 0}, 0.0152), 0.75, cPaleLine);
    wheel({-0.005, 0.004}, 0.0065, 40);
    wheel({0.0042, -0.0053}, 0.005, 32);
    wheel({-0.0075, -0.0072}, 0.0036, 24);
}

// Of 1 mm, seen from the side, in millimetres around the middle of its thread.
void Site::addScrew()
{
    _place = _place * Affine::scaling(0.001);
    constexpr double cPitch = 0.125, cOuter = 0.5, cInner = 0.41, cBegin = -0.5;
    constexpr int cTurns = 10;
    Path thread = Path().moveTo({cBegin, -cInner}).lineTo({cBegin, cInner});
    for (int i = 0; i < cTurns; ++i)
        thread.lineTo({cBegin + (i + 0.5) * cPitch, cOuter}).lineTo({cBegin + (i + 1) * cPitch, cInner});
    const double end = cBegin + cTurns * cPitch;
    thread.lineTo({end + 0.12, cInner - 0.12}).lineTo({end + 0.12, 0.12 - cInner});
    for (int i = cTurns; i > 0; --i)
        thread.lineTo({cBegin + i * cPitch, -cOuter}).lineTo({cBegin + (i - 0.5) * cPitch, -cInner});
    thread.close();
    fill("thread of an M1 screw", thread, cSteel);
    for (int i = 0; i < cTurns; ++i)
    {
        const double x = cBegin + (i + 0.5) * cPitch;
        stroke("crest", Path().moveTo({x + cPitch / 2, -cOuter}).lineTo({x, cOuter}), 0.75, "#2f5f8f");
        if (i > 0)
            stroke("root", Path().moveTo({x, -cInner}).lineTo({x - cPitch / 2, cInner}), 0.5, "#5f8fbf");
    }
    stroke("thread of an M1 screw", thread, 1.25, "#ffffff");
    const Path head =
        Path::fromSVG("M-.5-.95H-.75A.35 .35 0 0 0-1.1-.6V-.12H-.85V.12H-1.1V.6A.35 .35 0 0 0-.75 .95H-.5Z");
    fill("head of an M1 screw", head, "#b9dbf7");
    stroke("head of an M1 screw", head, 1.25, "#ffffff");
    stroke("axis", Path().moveTo({-1.35, 0}).lineTo({1.15, 0}), 0.75, "#ffb4a2", {10, 3, 2, 3});
    // Its measures.
    const Path arrow = Path::fromSVG("M0 0L-.03 .1H.03Z");
    stroke("extension line", Path::fromSVG("M.2 .55H1.3M.2-.55H1.3M1.2-.5V.5").transform(Affine::scaling(1, 0.909)),
           0.75, "#ffe2a8");
    fill("arrow", Path(arrow).transform({1, 0, 0, -1, 1.2, 0.5}), "#ffe2a8");
    fill("arrow", Path(arrow).transform(Affine::translation(1.2, -0.5)), "#ffe2a8");
}

} // namespace gallery
