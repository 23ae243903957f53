#include "SweepLine.h"

namespace gui::draw
{

void SweepLine::clear()
{
    _links.assign(1, {});
    _free = cNone;
    _random = 1;
}

SweepLine::Place SweepLine::insertAfter(Place before)
{
    Place place = _free;
    if (place != cNone)
    {
        _free = _links[place].next;
    }
    else
    {
        place = static_cast<Place>(_links.size());
        _links.emplace_back();
    }
    // Marsaglia's xorshift: "Xorshift RNGs", 2003.
    _random ^= _random << 13;
    _random ^= _random >> 17;
    _random ^= _random << 5;

    const Place next = _links[before].next;
    // Of two neighbours the lower one has room between them.
    const bool isRightChild = _links[before].children[1] == cNone;
    const Place parent = isRightChild ? before : next;
    _links[place] = {{cNone, cNone}, parent, before, next, _random};
    _links[parent].children[isRightChild ? 1 : 0] = place;
    _links[before].next = place;
    _links[next].previous = place;
    while (_links[place].parent != cNone && _links[_links[place].parent].priority < _random)
        rotateUp(place);
    return place;
}

void SweepLine::erase(Place place)
{
    for (;;)
    {
        const Place left = _links[place].children[0], right = _links[place].children[1];
        if (left == cNone || right == cNone)
            break;
        rotateUp(_links[left].priority < _links[right].priority ? right : left);
    }
    const Link link = _links[place];
    const Place child = link.children[0] != cNone ? link.children[0] : link.children[1];
    _links[link.parent].children[_links[link.parent].children[1] == place ? 1 : 0] = child;
    if (child != cNone)
        _links[child].parent = link.parent;
    _links[link.previous].next = link.next;
    _links[link.next].previous = link.previous;
    _links[place].next = _free;
    _free = place;
}

void SweepLine::rotateUp(Place place)
{
    const Place parent = _links[place].parent, above = _links[parent].parent;
    const int side = _links[parent].children[1] == place ? 1 : 0;
    const Place inner = _links[place].children[1 - side];
    _links[parent].children[side] = inner;
    if (inner != cNone)
        _links[inner].parent = parent;
    _links[place].children[1 - side] = parent;
    _links[parent].parent = place;
    _links[above].children[_links[above].children[1] == parent ? 1 : 0] = place;
    _links[place].parent = above;
}

} // namespace gui::draw
