#pragma once

#include <gui/gl/gl.h>

#include <span>
#include <string>
#include <vector>

/// A page of cells, drawn into memory and saved as PNG: shapes above, two lines of text below. Shapes are in units of
/// the page's points from the middle of their cell, y upwards.
class Sheet
{
public:
    using Points = std::vector<td::Point<float>>;

    static constexpr float cCellWidth = 190;
    static constexpr float cCellHeight = 190;

    Sheet(int nColumns, int nRows);
    bool isOk() const { return _context.isOk() && _program.isOK(); }

    /// Goes on to the next cell. @param isFailure  in another colour
    void beginCell(const std::string& title, const std::string& result, bool isFailure = false);

    /// Where a shape in this cell lies on the page, in points from its lower left corner.
    Points place(const Points& points) const;

    /// Triangles, the edges between them, and the line that they were made from. All on the page.
    void addTriangles(std::span<const td::Point<float>> vertices, std::span<const unsigned int> indices);
    void addPath(const Points& points, bool isClosed);

    /// Draws what was added. @return false, after a log line, when it can't be saved
    bool save(const char* fileName);

private:
    gui::gl::OffscreenContext _context;
    glm::mat4 _projection;
    gui::gl::Flat2DProgram _program;
    gui::gl::Buffer _buffer{gui::gl::DataType::Vec2};
    gui::gl::Triang2D _triang{64};
    gui::gl::Text _text;
    td::Size<float> _size;
    td::ColorID _color = td::ColorID::DodgerBlue;
    int _nColumns;
    int _nCells = 0;
};
