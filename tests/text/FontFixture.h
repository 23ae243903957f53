#pragma once

#include "support/FontFiles.h"
#include "support/Images.h"
#include "support/NullGL.h"

#include <gui/gl/Text.h>

#include <epoxy/gl.h>

#include <optional>
#include <string>
#include <vector>

namespace test
{

/// A Text with one font, on a null GL, and a folder for font files.
class FontFixture : public NullGL
{
protected:
    using Font = gui::gl::Font;
    using Format = Font::_format;
    using Text = gui::gl::Text;

    FontFixture()
    {
        renderer.emplace();
        renderer->allocFonts(1);
    }

    void TearDown() override
    {
        if (renderer)
            renderer->release();
        renderer.reset();
        NullGL::TearDown();
    }

    Font& font() { return *renderer->getFont(0); }

    /// @return the path
    std::string write(std::string_view bytes) const { return writeFile(folder.path("a.font"), bytes); }

    /// Reads a file into a font, without GL.
    bool readInto(Font& target, const FontFile& file)
    {
        return target.loadBinaryData(write(file.bytes()).c_str(), image, metricC);
    }

    /// The font's vertices, four floats each. It is empty and open afterwards.
    std::vector<float> takeVertices(Font& target)
    {
        EXPECT_TRUE(target.commit());
        target.reset();
        return trace.lastBuffer<float>(GL_ARRAY_BUFFER);
    }

    ImageFolder folder;
    std::optional<Text> renderer;
    gui::Image::_data image;
    float metricC = 0;
};

} // namespace test
