#include <gui/draw/Scale.h>

#include <cmath>

namespace gui::draw
{

double Scale::toPlace(double value) const { return kind == Kind::Logarithmic ? std::log10(value) : value; }

double Scale::toValue(double place) const { return kind == Kind::Logarithmic ? std::pow(10, place) : place; }

} // namespace gui::draw
