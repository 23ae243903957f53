// Any operations in any order on a drawing, beside a plain list of what it should hold: the same pixels, the same
// picks. And shapes of any numbers, which must do no harm.

#include "Fuzz.h"

#include <gui/draw/Drawing.h>
#include <gui/gl/OffscreenContext.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <utility>
#include <vector>

namespace fuzz::drawing
{

namespace
{

using gui::draw::Affine;
using gui::draw::Drawing;
using gui::draw::Image;
using gui::draw::Path;
using gui::draw::Stroke;
using Point = Path::Point;
using Rect = Drawing::Rect;

constexpr int cSize = 16;

struct Item
{
    Drawing::ID id = 0;
    bool isAlive = true;
    bool isGroup = false;
    bool isStroke = false;
    bool isImage = false;
    bool isVisible = true;
    bool isInZoom = true;
    bool isPickable = true;
    std::uint64_t tag = 0;
    int group = -1;
    td::Color color{};
    Rect rect{};
    Affine transform{};
};

Rect mapped(const Rect& rect, const Affine& map)
{
    const Point a = map.map({rect.left, rect.top}), b = map.map({rect.right, rect.bottom});
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

/// A drawing of rectangles of whole pixels, as fills and as strokes, and the list of them in their order.
class World
{
public:
    World(Input& input, Drawing& drawing)
        : _input(input)
        , _drawing(drawing)
    {
    }

    void live()
    {
        while (_input.left() > 0 && _items.size() < 60)
        {
            const unsigned int operation = _input.below(20);
            if (operation < 4)
                add(operation == 1, operation == 3);
            else if (operation < 12)
                change(operation);
            else if (operation < 15)
                move(operation);
            else if (operation == 15)
                beginGroup();
            else if (operation == 16 && !_before.empty())
            {
                _drawing.endGroup();
                _open = _before.back();
                _before.pop_back();
            }
            else if (operation == 17)
                regroup(_input.below(8));
            else if (operation > 17)
                checkPicture();
        }
        checkPicture();
    }

private:
    Item* find(int i) { return i < 0 ? nullptr : &_items[std::size_t(i)]; }

    /// Of all that ever were.
    int any() { return _items.empty() ? -1 : static_cast<int>(_input.take<std::uint16_t>() % _items.size()); }

    Rect takeRect()
    {
        const int left = int(_input.below(cSize)) - 2, top = int(_input.below(cSize)) - 2;
        const int width = 2 + 2 * int(_input.below(5)), height = 2 + 2 * int(_input.below(5));
        return {double(left), double(top), double(left + width), double(top + height)};
    }

    Affine takeTransform()
    {
        constexpr std::array<Affine, 5> cMaps{
            {{}, {0, 1, -1, 0, cSize, 0}, {-1, 0, 0, 1, cSize, 0}, {0, 1, 1, 0, 0, 0}, {1, 0, 0, -1, 0, cSize}}};
        const double x = int(_input.below(9)) - 4;
        return Affine::translation(x, int(_input.below(9)) - 4) * cMaps[_input.below(5)];
    }

    td::Color takeColor()
    {
        const auto red = _input.take<td::BYTE>(), green = _input.take<td::BYTE>();
        return {red, green, (red + green * 7U) & 255U, _input.below(3) == 0 ? 128U : 255U};
    }

    static Path pathOf(const Item& item)
    {
        const Rect& r = item.rect;
        return item.isStroke ? Path().moveTo({r.left, (r.top + r.bottom) / 2}).lineTo({r.right, (r.top + r.bottom) / 2})
                             : Path().addRect(r);
    }
    static Stroke strokeOf(const Item& item)
    {
        return {.width = item.rect.bottom - item.rect.top, .unit = gui::draw::Unit::Model};
    }

    static Image imageOf(const Item& item) { return {1, 1, std::span(&item.color, 1)}; }

    void add(bool isStroke, bool isImage)
    {
        Item item{.isStroke = isStroke, .isImage = isImage, .group = _open, .color = takeColor(), .rect = takeRect()};
        item.id = isStroke  ? _drawing.stroke(pathOf(item), strokeOf(item), item.color)
                  : isImage ? _drawing.image(item.rect, imageOf(item))
                            : _drawing.fill(pathOf(item), item.color);
        _order.push_back(static_cast<int>(_items.size()));
        addItem(item);
    }

    void beginGroup()
    {
        Item item{.isGroup = true, .group = _open, .transform = takeTransform()};
        item.id = _drawing.beginGroup(item.transform);
        _before.push_back(std::exchange(_open, static_cast<int>(_items.size())));
        addItem(item);
    }

    void regroup(unsigned int operation)
    {
        if (operation == 0)
            return clear();
        const int i = any(), j = any();
        if (i < 0)
            return;
        Item &item = *find(i), *pGroup = operation == 1 ? nullptr : find(j);
        const bool isGroup = pGroup != nullptr && pGroup->isAlive && pGroup->isGroup;
        if (operation > 5)
        {
            require(_drawing.openGroup(item.id) == (item.isAlive && item.isGroup), "a group is opened");
            if (item.isAlive && item.isGroup)
                _before.push_back(std::exchange(_open, i));
            return;
        }
        const bool isRight = item.isAlive && (pGroup == nullptr || (isGroup && !isWithin(j, i)));
        require(_drawing.setGroup(item.id, pGroup == nullptr ? 0 : pGroup->id) == isRight, "what may move does");
        if (isRight)
            item.group = pGroup == nullptr ? -1 : j;
        const Item* const pAround = item.isAlive ? find(item.group) : nullptr;
        require(_drawing.getGroup(item.id) == (pAround == nullptr ? 0 : pAround->id), "the group around");
    }

    void addItem(const Item& item)
    {
        for (const Item& other : _items)
            require(other.id != item.id, "no id is given twice");
        _items.push_back(item);
        _items.back().tag = _input.below(3);
        require(_drawing.setTag(item.id, _items.back().tag), "what is there has a tag");
    }

    void change(unsigned int operation)
    {
        Item* pItem = find(any());
        const Drawing::ID id = pItem == nullptr ? _input.take<std::uint16_t>() << 4 : pItem->id;
        const bool isThere = pItem != nullptr && pItem->isAlive, isShape = isThere && !pItem->isGroup;
        Item item = pItem == nullptr ? Item() : *pItem;
        bool isDone = false, isRight = isShape;
        if (operation == 4)
        {
            item.color = takeColor();
            const bool isImage = _input.below(2) == 0;
            isDone = isImage ? _drawing.setImage(id, imageOf(item)) : _drawing.setColor(id, item.color);
            isRight = isThere && (item.isImage || !isImage);
            if (isDone && item.isGroup)
                for (std::size_t i = 0; i < _items.size(); ++i)
                    if (isWithin(static_cast<int>(i), static_cast<int>(pItem - _items.data())))
                        _items[i].color = item.color;
        }
        else if (operation == 5 || operation == 6)
        {
            const unsigned int what = _input.below(4);
            const bool isOn = _input.below(2) == 0;
            (what < 2 ? item.isVisible : what == 2 ? item.isInZoom : item.isPickable) = isOn;
            isDone = what < 2    ? _drawing.setVisible(id, isOn)
                     : what == 2 ? _drawing.setZoomRange(id, isOn ? 1 : 0, isOn ? 2 : 1)
                                 : _drawing.setPickable(id, isOn);
            isRight = isThere;
        }
        else if (operation == 7 || operation == 8)
        {
            item.rect = takeRect();
            isDone = _drawing.setPath(id, pathOf(item));
            isRight = isShape;
            if (isShape && item.isStroke)
                require(_drawing.setStroke(id, strokeOf(item)), "a stroke takes a stroke");
            else
                require(!_drawing.setStroke(id, {}), "nothing else takes one");
        }
        else if (operation == 9 || operation == 10)
        {
            isDone = _drawing.setTransform(id, item.transform = takeTransform());
            isRight = isThere;
        }
        else
        {
            isDone = _drawing.remove(id);
            isRight = isThere;
            item.isAlive = false;
        }
        require(isDone == isRight, "a change is done where there is something to change");
        if (isDone)
            *pItem = item;
        // What was in a group that is gone is gone, and what is open may be.
        for (Item& other : _items)
            for (const Item* p = &other; p != nullptr; p = find(p->group))
                other.isAlive = other.isAlive && p->isAlive;
        std::erase_if(_order, [this](int i) { return !_items[std::size_t(i)].isAlive; });
        const auto isGone = [this](int i) { return i >= 0 && !_items[std::size_t(i)].isAlive; };
        std::replace_if(_before.begin(), _before.end(), isGone, -1);
        _open = isGone(_open) ? -1 : _open;
    }

    bool isWithin(int i, int group) const
    {
        while (i >= 0 && i != group)
            i = _items[std::size_t(i)].group;
        return i >= 0;
    }

    void move(unsigned int operation)
    {
        const int i = any(), j = any();
        if (i < 0)
            return;
        const bool isAbove = _input.below(2) == 0, isAlone = operation == 12;
        const Drawing::ID id = find(i)->id, other = find(j)->id;
        const bool isDone = isAlone ? (isAbove ? _drawing.raise(id) : _drawing.lower(id))
                                    : (isAbove ? _drawing.moveAbove(id, other) : _drawing.moveBelow(id, other));
        require(isDone == (find(i)->isAlive && (isAlone || find(j)->isAlive)), "what is there is moved");
        if (!isDone)
            return;
        // To after the last of the others, or before the first, that stand still.
        std::vector<int> moved, result;
        int from = -1, to = -1;
        for (int k = 0; k < static_cast<int>(_order.size()); ++k)
        {
            if (isWithin(_order[std::size_t(k)], i))
                moved.push_back(_order[std::size_t(k)]);
            if (isAlone || isWithin(_order[std::size_t(k)], j))
            {
                from = from < 0 ? k : from;
                to = k;
            }
        }
        if (from < 0)
            return;
        const int place = isAbove ? to + 1 : from;
        for (int k = 0; k <= static_cast<int>(_order.size()); ++k)
        {
            if (k == place)
                result.insert(result.end(), moved.begin(), moved.end());
            if (k < static_cast<int>(_order.size()) && !isWithin(_order[std::size_t(k)], i))
                result.push_back(_order[std::size_t(k)]);
        }
        _order = result;
    }

    void clear()
    {
        _drawing.clear();
        for (Item& item : _items)
            item.isAlive = false;
        _order.clear();
        _open = -1;
        _before.clear();
    }

    void checkPicture()
    {
        require(_drawing.getNumberOfShapes() == _order.size(), "the number of shapes");
        struct Shown
        {
            Rect rect;
            const Item* pItem;
            bool isPickable = true;
        };
        std::vector<Shown> shown;
        for (const int i : _order)
        {
            const Item* pItem = find(i);
            bool isShown = true;
            Shown item{pItem->rect, pItem};
            std::uint64_t tag = 0;
            for (const Item* p = pItem; p != nullptr; p = find(p->group))
            {
                isShown = isShown && p->isVisible && p->isInZoom;
                item.isPickable = item.isPickable && p->isPickable;
                item.rect = mapped(item.rect, p->transform);
                tag = tag != 0 ? tag : p->tag;
            }
            require(_drawing.getTag(pItem->id) == tag, "the tag of a shape, or of a group around it");
            if (isShown)
                shown.push_back(item);
        }
        // Another view in between, which keeps nothing of its own.
        if (_input.below(4) == 0)
            require(_drawing.draw(Affine::rotation(1) * Affine::scaling(1 + _input.below(5))), "another view is drawn");
        glClearColor(1, 1, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        require(_drawing.draw(Affine()), "it is drawn");
        std::array<td::BYTE, std::size_t(4 * cSize * cSize)> pixels{};
        glReadPixels(0, 0, cSize, cSize, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        for (int i = 0; i < cSize * cSize; ++i)
        {
            const double x = i % cSize + 0.5, y = cSize - 0.5 - i / cSize;
            std::array<double, 3> color{255, 255, 255};
            double tolerance = 1;
            Drawing::ID topmost = 0;
            for (const auto& [rect, pItem, isPickable] : shown)
            {
                if (x < rect.left || x > rect.right || y < rect.top || y > rect.bottom)
                    continue;
                topmost = isPickable ? pItem->id : topmost;
                const td::Color c = pItem->color;
                const double alpha = c.alpha() / 255.0;
                const std::array<double, 3> own{double(c.red()), double(c.green()), double(c.blue())};
                for (std::size_t k = 0; k < 3; ++k)
                    color[k] += alpha * (own[k] - color[k]);
                tolerance = alpha < 1 ? tolerance + 1 : 1;
            }
            for (std::size_t k = 0; k < 3; ++k)
                require(std::abs(pixels[std::size_t(4 * i) + k] - color[k]) <= tolerance, "the colour of a pixel");
            if (i % 7 == 0)
                require(_drawing.pick({x, y}) == topmost, "the topmost shape at a pixel");
        }
        // Half a pixel inside of each pixel's sides.
        const Rect rect = takeRect();
        std::vector<Drawing::ID> ids;
        for (const auto& [own, pItem, isPickable] : shown)
            if (isPickable && own.left < rect.right && own.right > rect.left && own.top < rect.bottom &&
                own.bottom > rect.top)
                ids.insert(ids.begin(), pItem->id);
        const Rect within(rect.left + 0.25, rect.top + 0.25, rect.right - 0.25, rect.bottom - 0.25);
        require(_drawing.pickAll(within) == ids, "the shapes in a rectangle");
        require(glGetError() == GL_NO_ERROR, "no GL error");
    }

    Input& _input;
    Drawing& _drawing;
    std::vector<Item> _items;
    std::vector<int> _order;
    int _open = -1;
    std::vector<int> _before;
};

double takeNumber(Input& input)
{
    using Limits = std::numeric_limits<double>;
    constexpr std::array cNumbers{0.0,
                                  1.0,
                                  4.0,
                                  15.5,
                                  -3.0,
                                  1e-300,
                                  -1e300,
                                  1e300,
                                  1e30,
                                  -2e9,
                                  1e7,
                                  1e-7,
                                  Limits::infinity(),
                                  -Limits::infinity(),
                                  Limits::quiet_NaN(),
                                  Limits::denorm_min()};
    const unsigned int i = input.below(2 * cNumbers.size());
    return i < cNumbers.size() ? cNumbers[i] : i % 4 == 0 ? input.take<double>() : input.take<td::BYTE>() / 8.0;
}

Point takePoint(Input& input)
{
    const double x = takeNumber(input);
    return {x, takeNumber(input)};
}

Path takePath(Input& input)
{
    Path path;
    if (input.below(64) == 0)
        path.addPolyline(std::vector<Point>(100'000, takePoint(input)));
    for (unsigned int n = input.below(12); n > 0; --n)
    {
        const unsigned int verb = input.below(6);
        const Point a = takePoint(input), b = verb > 2 ? takePoint(input) : a, c = verb > 3 ? takePoint(input) : b;
        verb == 0   ? path.moveTo(a)
        : verb == 1 ? path.close()
        : verb == 2 ? path.lineTo(a)
        : verb == 3 ? path.quadTo(a, b)
        : verb == 4 ? path.cubicTo(a, b, c)
                    : path.arcTo(a, b.x, b.y > 0, c.x > 0, c);
    }
    return path;
}

constexpr std::array<const char*, 5> cTexts{"", "A", "two words", "two\nlines", "\xff\xd7\xa9"};
constexpr td::Color cGrey(9, 9, 9, 255);

Drawing::ID takeText(Input& input, Drawing& drawing)
{
    gui::draw::TextStyle style{.size = takeNumber(input), .unit = gui::draw::Unit(input.below(2))};
    style.embolden = input.below(3) == 0 ? takeNumber(input) : 0;
    style.halo.width = input.below(3) == 0 ? takeNumber(input) : 0;
    style.isUnderlined = input.below(2) == 0;
    gui::draw::TextStyle other = style;
    other.size = takeNumber(input);
    const Point offset = takePoint(input), anchor = takePoint(input), at = takePoint(input);
    if (input.below(4) == 0)
        return drawing.textOn(takePath(input), cTexts[input.below(cTexts.size())], style,
                              {.along = takeNumber(input),
                               .anchor = {anchor.x, anchor.y},
                               .offset = offset,
                               .isKeptUpright = input.below(2) == 0,
                               .overflow = gui::draw::TextOnPath::Overflow(input.below(2))});
    return drawing.text(at, {{cTexts[input.below(cTexts.size())], style}, {cTexts[input.below(cTexts.size())], other}},
                        {.anchor = {anchor.x, anchor.y}, .offset = offset, .angle = takeNumber(input)});
}

void drawAnything(Input& input, Drawing& drawing)
{
    std::vector<Drawing::ID> ids{1};
    while (input.left() > 0 && ids.size() < 12)
    {
        const auto takeMap = [&input]
        {
            const Point a = takePoint(input), b = takePoint(input), c = takePoint(input);
            return Affine{a.x, a.y, b.x, b.y, c.x, c.y};
        };
        const auto takeStroke = [&input]
        {
            Stroke stroke{.width = takeNumber(input), .unit = gui::draw::Unit(input.below(2))};
            stroke.cap = gui::draw::Cap(input.below(3));
            stroke.join = gui::draw::Join(input.below(3));
            stroke.miterLimit = takeNumber(input);
            for (unsigned int n = input.below(5); n > 0; --n)
                stroke.dashes.push_back(takeNumber(input));
            stroke.dashOffset = takeNumber(input);
            stroke.dashUnit = gui::draw::Unit(input.below(2));
            return stroke;
        };
        const Drawing::ID id = ids[input.below(static_cast<unsigned int>(ids.size()))];
        switch (input.below(11))
        {
        case 0:
            ids.push_back(drawing.fill(takePath(input), td::Color(9, 9, 9, 255), gui::draw::FillRule(input.below(2))));
            break;
        case 1:
        case 2:
            ids.push_back(drawing.stroke(takePath(input), takeStroke(), td::Color(9, 9, 9, 255)));
            break;
        case 3:
            ids.push_back(drawing.beginGroup(takeMap()));
            break;
        case 4:
            drawing.setTransform(id, takeMap());
            break;
        case 5:
            drawing.setStroke(id, takeStroke());
            break;
        case 6:
            drawing.setPath(id, takePath(input));
            break;
        case 7:
            drawing.setTolerance(input.below(8) == 0 ? takeNumber(input) : 0);
            break;
        case 8:
            ids.push_back(takeText(input, drawing));
            break;
        case 9:
            if (!drawing.setText(id, cTexts[input.below(cTexts.size())]))
                ids.push_back(
                    drawing.image({takeNumber(input), takeNumber(input), takeNumber(input), takeNumber(input)},
                                  Image(1, 1, std::span(&cGrey, 1))));
            break;
        default:
            drawing.draw(takeMap(), takeNumber(input));
            drawing.getBounds();
        }
    }
    require(drawing.draw(Affine()), "whatever there is, it is drawn");
    require(glGetError() == GL_NO_ERROR, "no GL error");
}

void run(const std::uint8_t* bytes, std::size_t n)
{
    using namespace gui::gl;
    // It stays, as the driver does.
    static auto* s_pContext = new OffscreenContext(
        {cSize, cSize}, Context(DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41));
    require(s_pContext->isOk(), "there is a context");
    // Its programs take longer to link than an input to draw.
    static auto* s_pDrawing = new Drawing;
    s_pDrawing->clear();
    s_pDrawing->setTolerance(0);
    const Quiet quiet;
    Input input(bytes, n);
    if (input.below(3) == 0)
        drawAnything(input, *s_pDrawing);
    else
        World(input, *s_pDrawing).live();
}

const Target cTarget("drawing", run);

} // namespace

} // namespace fuzz::drawing
