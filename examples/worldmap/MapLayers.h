#pragma once

#include "Countries.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Flat2DProgram.h>
#include <gui/gl/Triang2D.h>

#include <glm/mat4x4.hpp>

#include <cstddef>
#include <vector>

namespace worldmap
{

/// The map as OpenGL draws it: a layer is a buffer with the commands that draw it, recorded once. A frame draws the
/// layers one over the other. Everything but the constructor needs the context current that init was called in.
class MapLayers
{
public:
    /// @param countries  must outlive the layers
    explicit MapLayers(const Countries& countries);

    void init(Projection projection);
    /// Fills all layers anew.
    void setProjection(Projection projection);

    /// Draws a country in another colour from now on. @param country  cNone for none of them
    void highlight(std::size_t country);

    /// @param mvp    from the map's plane to clip space
    /// @param zoom   points per degree. Borders are as wide at every zoom: they alone are filled anew when it changed
    void draw(const glm::mat4& mvp, double zoom);

private:
    using Points = std::vector<td::Point<float>>;

    Points toPlane(const std::vector<td::Point<double>>& degrees) const;
    void fillSea();
    void fillLands();
    void fillBorders(double zoom);
    void fillFrame();
    void setLandColor(std::size_t country, bool isHighlighted);

    const Countries& _countries;
    Projection _projection = Projection::Equirectangular;
    gui::gl::Flat2DProgram _program;
    gui::gl::Triang2D _triang;
    gui::gl::Buffer _sea;                  // with the net of meridians and parallels
    gui::gl::Buffer _lands;                // filled rings, then the lines around them over the same vertices
    gui::gl::Buffer _borders;              // bands of triangles
    gui::gl::Buffer _frame;                // what lies around the map
    std::vector<gui::gl::Command*> _fills; // of each ring; null where there is none
    std::vector<Points> _borderLines;
    double _borderZoom = 0;
    std::size_t _highlighted = Countries::cNone;
};

} // namespace worldmap
