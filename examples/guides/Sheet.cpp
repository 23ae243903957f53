#include "Sheet.h"

#include <gui/Texture.h>

#include <glm/gtc/matrix_transform.hpp>

using namespace gui::gl;

namespace
{

constexpr int cScale = 2; // pixels per point
constexpr float cGap = 10;

td::Size<int> pixels(int nColumns, int nRows)
{
    return {cScale * static_cast<int>(static_cast<float>(nColumns) * Sheet::cCellWidth + cGap),
            cScale * static_cast<int>(static_cast<float>(nRows) * Sheet::cCellHeight + cGap)};
}

} // namespace

Sheet::Sheet(int nColumns, int nRows)
    : _context(pixels(nColumns, nRows), {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41})
    , _size(static_cast<float>(_context.getSize().width) / cScale,
            static_cast<float>(_context.getSize().height) / cScale)
    , _nColumns(nColumns)
{
    _projection = glm::ortho(0.0F, _size.width, 0.0F, _size.height);
    _program.link();
    _text.init(":caption.font");
    _text.setFrameSize({static_cast<double>(_size.width), static_cast<double>(_size.height)});
}

void Sheet::beginCell(const std::string& title, const std::string& result, bool isFailure)
{
    ++_nCells;
    _color = isFailure ? td::ColorID::Tomato : td::ColorID::DodgerBlue;
    const float halfWidth = (cCellWidth - cGap) / 2;
    const float halfHeight = (cCellHeight - cGap) / 2;
    const Points corners{
        {-halfWidth, -halfHeight}, {halfWidth, -halfHeight}, {halfWidth, halfHeight}, {-halfWidth, halfHeight}};
    _triang.triangulate(&_buffer, place(corners), td::ColorID::Gray15);

    const td::Point<float> middle = place({{0, -halfHeight}})[0];
    Font& font = *_text.getFont(0);
    const Font::_format format{.scale = 0.5F, .colorID = td::ColorID::White, .hAlignment = Font::cCentre};
    font.addString({middle.x, _size.height - middle.y - 38}, td::String(title.c_str()), format);
    Font::_format small = format;
    small.scale = 0.42F;
    small.colorID = isFailure ? td::ColorID::LightSalmon : td::ColorID::LightSkyBlue;
    font.addString({middle.x, _size.height - middle.y - 21}, td::String(result.c_str()), small);
}

Sheet::Points Sheet::place(const Points& points) const
{
    const int column = (_nCells - 1) % _nColumns;
    const int row = (_nCells - 1) / _nColumns;
    const float x = cGap / 2 + (static_cast<float>(column) + 0.5F) * cCellWidth;
    const float y = _size.height - cGap / 2 - (static_cast<float>(row) + 0.5F) * cCellHeight;
    Points placed;
    for (const td::Point<float>& point : points)
        placed.push_back({x + point.x, y + point.y});
    return placed;
}

void Sheet::addTriangles(std::span<const td::Point<float>> vertices, std::span<const unsigned int> indices)
{
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
    {
        const Points triangle{vertices[indices[i]], vertices[indices[i + 1]], vertices[indices[i + 2]]};
        _triang.triangulate(&_buffer, triangle, _color);
    }
    for (std::size_t i = 0; i < indices.size(); ++i)
    {
        const std::size_t next = i % 3 == 2 ? i - 2 : i + 1;
        const Points edge{vertices[indices[i]], vertices[indices[next]]};
        _triang.triangulateLine(&_buffer, edge, 0.5F, false, td::ColorID::MidnightBlue);
    }
}

void Sheet::addPath(const Points& points, bool isClosed)
{
    _triang.triangulateLine(&_buffer, points, 0.8F, isClosed, td::ColorID::White);
    for (const td::Point<float>& point : points)
    {
        Triang2D::Points dot;
        generateSymPolygon({point, 2.6F}, 16, dot);
        _triang.triangulate(&_buffer, dot, td::ColorID::White);
    }
    // The first one, where shapes begin, stands out.
    Triang2D::Points ring;
    generateSymPolygon({points.front(), 4.5F}, 24, ring);
    _triang.triangulateLine(&_buffer, {ring.begin(), ring.end()}, 0.8F, true, td::ColorID::Gold);
}

bool Sheet::save(const char* fileName)
{
    Context::clear(Context::Clear::Color, td::ColorID::Gray6);
    _program.draw(_buffer, _projection);
    _text.render(Text::Ctrl::BlendNoDepthTest);
    gui::Texture picture;
    return _context.readPixels(picture) && picture.saveToFile(fileName);
}
