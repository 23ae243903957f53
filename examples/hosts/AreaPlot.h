#pragma once

#include <gui/draw/Drawing.h>
#include <gui/gl/View.h>
#include <worldmap/Countries.h>

#include <string>
#include <vector>

/// How large the largest countries are, and the one that was chosen.
class AreaPlot : public gui::gl::View
{
public:
    explicit AreaPlot(const worldmap::Countries& countries);

    void show(std::size_t country);

private:
    void onDraw(const td::RectNormalized<double>& rect) override;

    struct Row
    {
        std::string name;
        double area; // million square kilometres
        std::size_t country;
    };
    std::vector<Row> _rows;
    std::size_t _shown = worldmap::Countries::cNone;
    gui::draw::Drawing _drawing;
};
