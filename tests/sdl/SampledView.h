#pragma once

#include <gui/Texture.h>
#include <gui/gl/gl.h>
#include <gui/gl/port/Zav.h>

#include <set>

namespace test
{

/// Shows a triangle under its diagonal, white on black.
class SampledView : public gui::gl::View
{
public:
    explicit SampledView(int nSamples)
    {
        gui::gl::Context context(gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::Bits8,
                                 gui::gl::Context::Profile::Core41);
        context.setSamples(nSamples);
        createContext(context);
    }

    /// How many shades the next frame has: two where the diagonal is not smooth.
    std::size_t countShades()
    {
        std::set<int> shades;
        gui::Texture picture;
        if (zav::drawInto(this, picture))
            for (int i = 0; i < picture.getWidth() * picture.getHeight(); ++i)
                shades.insert(picture.getBytes()[3 * i]);
        return shades.size();
    }

private:
    void onInit() override
    {
        constexpr float cCorners[] = {-1, -1, 1, -1, 1, 1};
        _buffer.appendShape(gui::gl::Primitive::Triangles, cCorners, 3)->setColor("#fff");
        _program.link();
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        gui::gl::Context::clear(gui::gl::Context::Clear::Color, "#000");
        _program.draw(_buffer, glm::mat4(1));
    }

    gui::gl::Flat2DProgram _program;
    gui::gl::Buffer _buffer{gui::gl::DataType::Vec2};
};

} // namespace test
