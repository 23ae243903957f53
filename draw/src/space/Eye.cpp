#include <gui/draw/Eye.h>

#include <gui/gl/Camera.h>
#include <gui/gl/CameraView.h>

#include <glm/geometric.hpp>
#include <glm/mat2x2.hpp>
#include <glm/matrix.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace gui::draw
{

namespace
{

template <class Matrix>
bool hasFiniteNumbers(const Matrix& matrix)
{
    bool isFinite = true;
    for (int column = 0; column < Matrix::length(); ++column)
        for (int row = 0; row < Matrix::col_type::length(); ++row)
            isFinite = isFinite && std::isfinite(matrix[column][row]);
    return isFinite;
}

// The camera's own axes, which are float, made as orthonormal as double allows.
glm::dmat3 rotationOf(const gl::CameraView& view)
{
    const glm::dmat3 rotation(glm::dmat4(view.getCameraMatrix()));
    const glm::dmat3 rows = glm::transpose(rotation);
    const glm::dvec3 back = glm::normalize(rows[2]);
    const glm::dvec3 right = glm::normalize(glm::cross(rows[1], back));
    return glm::transpose(glm::dmat3(right, glm::cross(back, right), back));
}

td::Size<double> sizeOf(const gl::CameraView& view)
{
    td::Size<double> size;
    view.getSize(size);
    return size;
}

// x and y, at a distance d before the eye, of what is seen at a point of the screen: start + d * slope.
struct SightLine
{
    glm::dvec2 start;
    glm::dvec2 slope;
};

SightLine sightOf(const glm::dmat4& p, const glm::dvec2& ndc)
{
    // ndc * w = x and y of clip space, two equations in the eye's x and y.
    const auto row = [&](int i) {
        return glm::dvec4(p[0][i], p[1][i], p[2][i], p[3][i]) - ndc[i] * glm::dvec4(p[0][3], p[1][3], p[2][3], p[3][3]);
    };
    const glm::dvec4 first = row(0), second = row(1);
    const glm::dmat2 inverse = glm::inverse(glm::dmat2(first.x, second.x, first.y, second.y));
    return {inverse * glm::dvec2(-first.w, -second.w), inverse * glm::dvec2(first.z, second.z)};
}

} // namespace

Eye::Eye(const glm::dvec3& position, const glm::dmat3& rotation, const glm::dmat4& projection,
         const td::Size<double>& size, double scale, Depth depth)
    : _position(position)
    , _rotation(rotation)
    , _projection(projection)
    , _size(size)
    , _scale(scale)
    , _depth(depth)
{
    _isValid = std::isfinite(position.x) && std::isfinite(position.y) && std::isfinite(position.z) &&
               hasFiniteNumbers(rotation) && hasFiniteNumbers(projection) && size.width > 0 && size.height > 0 &&
               std::isfinite(size.width) && std::isfinite(size.height) && scale > 0 && std::isfinite(scale);
}

Eye::Eye(const gl::CameraView& view)
    : Eye(view.getCamera() != nullptr ? glm::dvec3(view.getCamera()->getPosition()) : glm::dvec3(0), rotationOf(view),
          glm::dmat4(view.getPerspective()), sizeOf(view), static_cast<double>(view.getPixelHiDPIScale()))
{
}

glm::dvec3 Eye::getRight() const { return {_rotation[0].x, _rotation[1].x, _rotation[2].x}; }

glm::dvec3 Eye::getUp() const { return {_rotation[0].y, _rotation[1].y, _rotation[2].y}; }

glm::dvec3 Eye::getDirection() const { return -glm::dvec3(_rotation[0].z, _rotation[1].z, _rotation[2].z); }

glm::dmat4 Eye::getView() const
{
    glm::dmat4 view(_rotation);
    view[3] = glm::dvec4(_rotation * -_position, 1);
    return view;
}

bool Eye::isOrthographic() const { return _projection[2][3] == 0; }

glm::mat4 Eye::getMatrix(const glm::dvec3& origin) const
{
    glm::dmat4 view(_rotation);
    view[3] = glm::dvec4(toEye(origin), 1);
    return glm::mat4(_projection * view);
}

glm::mat4 Eye::getViewMatrix(const glm::dvec3& origin) const
{
    glm::dmat4 view(_rotation);
    view[3] = glm::dvec4(toEye(origin), 1);
    return glm::mat4(view);
}

Ray Eye::getRay(const td::Point<double>& point) const
{
    const Ray ahead{_position, getDirection()};
    if (!_isValid)
        return ahead;
    const SightLine sight = sightOf(_projection, {2 * point.x / _size.width - 1, 1 - 2 * point.y / _size.height});
    const double nearest = getNearest();
    const glm::dmat3 toModel = glm::transpose(_rotation);
    const Ray ray{_position + toModel * glm::dvec3(sight.start + nearest * sight.slope, -nearest),
                  glm::normalize(toModel * glm::dvec3(sight.slope, -1))};
    const glm::dvec3 sum = ray.origin + ray.direction;
    // Of a point some 10^155 views away the length overflows, and the direction is 0.
    const bool isSome = ray.direction != glm::dvec3(0);
    return isSome && std::isfinite(sum.x) && std::isfinite(sum.y) && std::isfinite(sum.z) ? ray : ahead;
}

std::optional<glm::dvec3> Eye::project(const glm::dvec3& point) const
{
    if (!_isValid)
        return std::nullopt;
    const glm::dvec3 seen = toEye(point);
    const glm::dvec4 clip = _projection * glm::dvec4(seen, 1);
    const glm::dvec3 place((clip.x / clip.w + 1) / 2 * _size.width, (1 - clip.y / clip.w) / 2 * _size.height, -seen.z);
    // Written so that NaN is refused too.
    if (!(clip.w > 0) || !std::isfinite(place.x) || !std::isfinite(place.y) || !std::isfinite(place.z))
        return std::nullopt;
    return place;
}

glm::dvec3 Eye::unproject(const td::Point<double>& point, double distance) const
{
    if (!_isValid)
        return _position;
    const SightLine sight = sightOf(_projection, {2 * point.x / _size.width - 1, 1 - 2 * point.y / _size.height});
    return _position + glm::transpose(_rotation) * glm::dvec3(sight.start + distance * sight.slope, -distance);
}

double Eye::getDistance(const glm::dvec3& point) const { return glm::dot(point - _position, getDirection()); }

double Eye::getDistanceOfDepth(double depth) const
{
    const double ndc = _depth == Depth::Reversed ? depth : 2 * depth - 1;
    // ndc * w = z of clip space, which depend on the eye's z alone.
    return (_projection[3][2] - ndc * _projection[3][3]) / (_projection[2][2] - ndc * _projection[2][3]);
}

double Eye::getNearest() const { return getDistanceOfDepth(_depth == Depth::Reversed ? 1.0 : 0.0); }

double Eye::getFarthest() const
{
    const double distance = getDistanceOfDepth(_depth == Depth::Reversed ? 0.0 : 1.0);
    // A matrix without a far plane divides by 0, or, rounded, by a little on either side.
    return isOrthographic() || distance > getNearest() ? distance : std::numeric_limits<double>::infinity();
}

double Eye::getSizeAt(const glm::dvec3& point) const
{
    const double w = _projection[3][3] - _projection[2][3] * getDistance(point);
    return w > 0 ? 2 * w / (std::abs(_projection[1][1]) * _size.height) : 0;
}

bool Eye::sees(const Box3& box) const
{
    if (!_isValid || !_clipping.isSeen(box))
        return false;
    if (!box.isFinite())
        return true;
    const glm::dvec3 middle = toEye(box.getCenter()), half = box.getSize() * 0.5;
    const auto row = [this](int i)
    { return glm::dvec4(_projection[0][i], _projection[1][i], _projection[2][i], _projection[3][i]); };
    // Each of the six conditions of clip space, as a plane of the eye's: if no corner fulfils one, nothing is seen.
    const auto isBeyond = [&](const glm::dvec4& plane)
    {
        const glm::dvec3 normal(plane);
        const double reach = std::abs(glm::dot(normal, _rotation[0])) * half.x +
                             std::abs(glm::dot(normal, _rotation[1])) * half.y +
                             std::abs(glm::dot(normal, _rotation[2])) * half.z;
        const double distance = glm::dot(normal, middle) + plane.w;
        // What rounding may have taken away is given back.
        const double slack = 1e-12 * (glm::length(normal) * glm::length(middle) + std::abs(plane.w) + reach);
        return distance + reach + slack < 0;
    };
    const glm::dvec4 w = row(3), x = row(0), y = row(1), z = row(2);
    const glm::dvec4 nearest = _depth == Depth::Reversed ? w - z : w + z;
    const glm::dvec4 farthest = _depth == Depth::Reversed ? z : w - z;
    return !isBeyond(w + x) && !isBeyond(w - x) && !isBeyond(w + y) && !isBeyond(w - y) && !isBeyond(nearest) &&
           !isBeyond(farthest);
}

Eye Eye::getPart(const td::RectNormalized<double>& rect) const
{
    const td::Size<double> size(rect.right - rect.left, rect.bottom - rect.top);
    const double sx = _size.width / size.width, sy = _size.height / size.height;
    // Of the rectangle's middle, from -1 to 1 in the view.
    const double x = (rect.left + rect.right) / _size.width - 1, y = 1 - (rect.top + rect.bottom) / _size.height;
    glm::dmat4 toPart(1);
    toPart[0][0] = sx;
    toPart[1][1] = sy;
    toPart[3] = glm::dvec4(-sx * x, -sy * y, 0, 1);
    Eye part(_position, _rotation, toPart * _projection, size, _scale, _depth);
    part._clipping = _clipping;
    part._pLayers = _pLayers;
    return part;
}

Eye Eye::getBetween(double nearest, double farthest) const
{
    glm::dmat4 projection = _projection;
    // At the nearest and the farthest distance z of clip space, a * z of the eye + b, is the ndc below times w.
    const double slope = _projection[2][3], w = _projection[3][3] - slope * nearest;
    double &a = projection[2][2], &b = projection[3][2];
    if (_depth == Depth::Reversed)
    {
        a = w / (farthest - nearest);
        b = w + a * nearest;
    }
    else
    {
        // Both are infinite without an end, and their quotient is 1.
        const double sum = std::isfinite(farthest) ? (farthest + nearest) / (farthest - nearest) : 1;
        a = slope * sum - (std::isfinite(farthest) ? 2 * _projection[3][3] / (farthest - nearest) : 0);
        b = a * nearest - w;
    }
    Eye part(_position, _rotation, projection, _size, _scale, _depth == Depth::Sliced ? Depth::Usual : _depth);
    part._clipping = _clipping;
    part._pLayers = _pLayers;
    return part;
}

gl::DepthBuffer::Function Eye::getNearer() const
{
    return _depth == Depth::Reversed ? gl::DepthBuffer::Function::Greater : gl::DepthBuffer::Function::Less;
}

gl::DepthBuffer::Function Eye::getNearerOrEqual() const
{
    return _depth == Depth::Reversed ? gl::DepthBuffer::Function::GreaterOrEqual
                                     : gl::DepthBuffer::Function::LessOrEqual;
}

} // namespace gui::draw
