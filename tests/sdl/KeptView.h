#pragma once

#include <gui/Texture.h>
#include <gui/gl/gl.h>
#include <gui/gl/port/Zav.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace test
{

/// Makes all that it draws in onInit, and knows nothing of contexts but how many it has had.
class KeptView : public gui::gl::View
{
public:
    void create()
    {
        createContext({gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::Bits8,
                       gui::gl::Context::Profile::Core41});
    }

    /// Of a frame that is drawn now.
    std::vector<td::BYTE> picture()
    {
        gui::Texture image;
        EXPECT_TRUE(zav::drawInto(this, image));
        return {image.getBytes(), image.getBytes() + std::size_t(image.getWidth()) * std::size_t(image.getHeight()) *
                                                         image.getBytesPerPixel()};
    }

    int nContexts = 0;
    int nFrames = 0;

protected:
    void onInit() override
    {
        using namespace gui::gl;
        ++nContexts;
        const float corners[] = {-1, -1, 0.5F, -0.8F, 0, 0.9F};
        _buffer.appendShape(Primitive::Triangles, corners, 3)->setColor(td::ColorID::Gold);
        _program.link();
        const td::BYTE colors[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
        gui::Texture image;
        gui::TextureHelper helper(&image);
        helper.reserve(sizeof(colors));
        helper.updateInfo(2, 2, 3);
        std::copy(std::begin(colors), std::end(colors), image.getBytes());
        _textures.append({&image}, Texture::Type::Tex2D);
        const float quad[] = {0, 0, 0, 0, 1, 0, 1, 0, 0, 1, 0, 1, 1, 1, 1, 1};
        _quad.appendShape(Primitive::TriangleStrip, quad, 4)->setTexture(Texture::Unit::T0, 0);
        _textured.link();
        _textured.setTextures(&_textures);
        glClearColor(0.1F, 0.3F, 0.2F, 1);
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        ++nFrames;
        gui::gl::Context::clear(gui::gl::Context::Clear::Color);
        _program.draw(_buffer);
        _textured.draw(_quad);
    }
    void onContextRestored() override { ++nContexts; }

private:
    gui::gl::Flat2DProgram _program;
    gui::gl::Texture2DProgram _textured;
    gui::gl::Textures _textures;
    gui::gl::Buffer _buffer{gui::gl::DataType::Vec2}, _quad{gui::gl::DataType::Vec2, gui::gl::DataType::Vec2};
};

} // namespace test
