#pragma once

#include "Lettering.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Color2DProgram.h>
#include <gui/gl/FrameLedger.h>

namespace gallery
{

/// What a frame costs, in the corner of the picture. Belongs to the context in which it is drawn first.
class CostPanel
{
public:
    void draw(const Frame& frame, const gui::gl::FrameLedger::Frame& cost);

private:
    bool init();

    bool _isInitialised = false;
    gui::gl::Color2DProgram _program;
    gui::gl::Buffer _buffer{gui::gl::DataType::Vec2, gui::gl::DataType::Vec4};
    Lettering _lettering{{{"mono", 14}}};
};

} // namespace gallery
