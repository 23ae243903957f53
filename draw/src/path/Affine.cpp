#include <gui/draw/Affine.h>

#include <cmath>

namespace gui::draw
{

Affine Affine::rotation(double angle)
{
    const double cosine = std::cos(angle), sine = std::sin(angle);
    return {cosine, sine, -sine, cosine, 0, 0};
}

Affine Affine::operator*(const Affine& first) const
{
    const td::Point<double> x = mapVector({first.a, first.b}), y = mapVector({first.c, first.d});
    const td::Point<double> origin = map({first.e, first.f});
    return {x.x, x.y, y.x, y.y, origin.x, origin.y};
}

std::optional<Affine> Affine::inverse() const
{
    const double determinant = a * d - b * c;
    Affine result{d / determinant, -b / determinant, -c / determinant, a / determinant, 0, 0};
    const td::Point<double> origin = result.mapVector({-e, -f});
    result.e = origin.x;
    result.f = origin.y;
    for (const double number : {result.a, result.b, result.c, result.d, result.e, result.f})
        if (!std::isfinite(number))
            return std::nullopt;
    return result;
}

} // namespace gui::draw
