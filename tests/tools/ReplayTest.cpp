#include "sdl/Process.h"
#include "support/Images.h"

#include <replay/Error.h>
#include <replay/Walk.h>
#include <src/capture/CallStream.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <utility>
#include <vector>

namespace
{

using gui::gl::CallWriter;
using gui::gl::FrameFile;

constexpr GLuint cNames[]{1};
constexpr float cTriangle[]{-1, -1, 3, -1, -1, 3};
constexpr unsigned int cIndices[]{0, 1, 2};

std::vector<unsigned char> contentOf(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A triangle in a vertex array, with indices, and a program.
void writeObjects(CallWriter& writer)
{
    gui::gl::ByteWriter program;
    program.number(std::uint32_t(2));
    program.number(std::uint32_t(GL_VERTEX_SHADER));
    program.text("#version 150\nin vec2 at; void main() { gl_Position = vec4(at, 0, 1); }");
    program.number(std::uint32_t(GL_FRAGMENT_SHADER));
    program.text("#version 150\nout vec4 color; void main() { color = vec4(0, 1, 0, 1); }");
    program.number(std::uint32_t(1));
    program.number(std::int32_t(0));
    program.text("at");
    program.number(std::uint32_t(0));
    writer.note("guiglProgram", {1}, program.bytes());
    writer.call(&glUseProgram, 1);
    writer.call(&glGenVertexArrays, 1, cNames);
    writer.call(&glBindVertexArray, 1);
    constexpr GLuint cBuffers[]{1, 2};
    writer.call(&glGenBuffers, 2, cBuffers);
    writer.call(&glBindBuffer, GL_ARRAY_BUFFER, 1);
    writer.call(&glBufferData, GL_ARRAY_BUFFER, sizeof cTriangle, cTriangle, GL_STATIC_DRAW);
    writer.call(&glBindBuffer, GL_ELEMENT_ARRAY_BUFFER, 2);
    writer.call(&glBufferData, GL_ELEMENT_ARRAY_BUFFER, sizeof cIndices, cIndices, GL_STATIC_DRAW);
    writer.call(&glVertexAttribPointer, 0, 2, GL_FLOAT, GL_FALSE, 0, static_cast<const void*>(nullptr));
    writer.call(&glEnableVertexAttribArray, 0);
}

std::string fileWith(const std::string& path, const std::function<void(CallWriter&)>& frame)
{
    CallWriter objects, calls;
    writeObjects(objects);
    frame(calls);
    FrameFile::Info info;
    info.program = "test";
    info.width = 64;
    info.height = 48;
    EXPECT_EQ(FrameFile::write(path, info, {objects.bytes(), "", calls.bytes()}), "");
    return path;
}

void drawTriangle(CallWriter& writer) { writer.call(&glDrawArrays, GL_TRIANGLES, 0, 3); }

/// What is wrong with a file; empty when nothing is.
std::string errorOf(FrameFile& file)
{
    try
    {
        replay::FrameModel model;
        replay::walk(file, model, [](const replay::Step&) { return true; });
        return {};
    }
    catch (const replay::Error& error)
    {
        return error.what();
    }
}

// Each would have the driver read or keep what isn't there, or do what no program did.
TEST(Replay, HostileCallsAreRefused)
{
    const test::ImageFolder folder;
    const void* const pNowhere = nullptr;
    const auto* const pOffset = reinterpret_cast<const void*>(std::uintptr_t(4));
    const struct
    {
        std::function<void(CallWriter&)> frame;
        const char* message;
    } cases[] = {
        {drawTriangle, ""},
        {[&](CallWriter& w) { w.call(&glDrawElements, GL_TRIANGLES, 3, GL_UNSIGNED_INT, pNowhere); }, ""},
        {[](CallWriter& w) { w.call(&glDrawArrays, GL_TRIANGLES, 1, 3); }, "attribute 0 of vertex array 1 behind"},
        {[](CallWriter& w) { w.call(&glDrawArrays, GL_TRIANGLES, -1, 3); }, "before the first vertex"},
        {[&](CallWriter& w) { w.call(&glDrawElements, GL_TRIANGLES, 3, GL_UNSIGNED_INT, pOffset); },
         "indices behind the end of buffer 2"},
        {[&](CallWriter& w) { w.call(&glDrawElementsBaseVertex, GL_TRIANGLES, 3, GL_UNSIGNED_INT, pNowhere, 1); },
         "attribute 0 of vertex array 1 behind"},
        {[&](CallWriter& w)
         {
             constexpr unsigned int cFar[]{1U << 31};
             w.call(&glBufferSubData, GL_ELEMENT_ARRAY_BUFFER, 4, 4, cFar);
             w.call(&glDrawElements, GL_TRIANGLES, 3, GL_UNSIGNED_INT, pNowhere);
         },
         "attribute 0 of vertex array 1 behind"},
        {[](CallWriter& w)
         {
             w.call(&glBufferData, GL_ARRAY_BUFFER, 4, cTriangle, GL_STATIC_DRAW);
             drawTriangle(w);
         },
         "attribute 0 of vertex array 1 behind"},
        {[](CallWriter& w)
         {
             w.call(&glVertexAttribDivisor, 0, 2);
             w.call(&glDrawArraysInstanced, GL_TRIANGLES, 0, 900, 7);
         },
         "attribute 0 of vertex array 1 behind"},
        {[](CallWriter& w)
         {
             w.call(&glDeleteBuffers, 1, cNames);
             drawTriangle(w);
         },
         "attribute 0 of vertex array 1 behind"},
        {[](CallWriter& w)
         {
             w.call(&glBindVertexArray, 0);
             drawTriangle(w);
         },
         "without a vertex array"},
        {[](CallWriter& w) { w.call(&glBindTexture, GL_TEXTURE_2D, 9); }, "the name 9, which nothing has"},
        {[](CallWriter& w) { w.call(&glGenBuffers, 1, cNames); }, "the name 1 is made twice"},
        {[](CallWriter& w) { w.call(&glDeleteTextures, 1, cNames); }, "the name 1 is deleted"},
        {[](CallWriter& w) { w.call(&glBindBuffer, GL_PIXEL_UNPACK_BUFFER, 1); }, "target that captured frames"},
        {[](CallWriter& w) {
             w.call(&glBufferData, GL_ARRAY_BUFFER, std::int64_t(3) << 30, static_cast<const void*>(nullptr),
                    GL_STATIC_DRAW);
         },
         "2 GiB"},
        {[](CallWriter& w)
         {
             for (int i = 0; i < 3; ++i)
                 w.call(&glTexImage2D, GL_TEXTURE_CUBE_MAP_POSITIVE_X + i, 0, GL_RGBA8, 16384, 16384, 0, GL_RGBA,
                        GL_UNSIGNED_BYTE, static_cast<const void*>(nullptr));
         },
         "2 GiB"},
        {[](CallWriter& w) { w.call(&glRenderbufferStorage, GL_RENDERBUFFER, GL_RGBA8, 1 << 20, 1); }, "renderbuffer"},
        {[](CallWriter& w) { w.call(&glLinkProgram, 1); }, "a call is none of those"},
    };
    for (const auto& [frame, message] : cases)
    {
        SCOPED_TRACE(message);
        FrameFile file;
        ASSERT_EQ(file.load(fileWith(folder.path("a.guiglframe"), frame)), "");
        const std::string error = errorOf(file);
        EXPECT_TRUE(*message == '\0' ? error.empty() : error.find(message) != std::string::npos) << error;
    }
}

// What a disk, a mail or a pull of a plug may leave of a file; a checksum that fits says nothing about sizes.
TEST(Replay, DamagedFilesAreRefused)
{
    const test::ImageFolder folder;
    const std::vector<unsigned char> whole = contentOf(fileWith(folder.path("a.guiglframe"), drawTriangle));
    FrameFile file;
    ASSERT_EQ(file.read(whole), "");
    for (std::size_t n = 0; n < whole.size(); n += n < 200 ? 1 : 37)
        EXPECT_NE(file.read({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n)}), "") << n;
    for (std::size_t i = 0; i < whole.size(); i += i < 100 ? 1 : 53)
    {
        std::vector<unsigned char> bytes = whole;
        bytes[i] ^= 0x10;
        // The zeros between chunks say nothing.
        EXPECT_TRUE(file.read(bytes) != "" || whole[i] == 0) << i;
    }
    std::vector<unsigned char> bytes = whole;
    bytes[8] = 2;
    EXPECT_EQ(file.read(bytes), "of version 2, where this program reads version 1");
    bytes = whole;
    bytes.push_back(0);
    EXPECT_NE(file.read(bytes).find("behind its end"), std::string::npos);
    EXPECT_EQ(file.read({'P', 'N', 'G'}), "no captured frame");
}

class ReplayProgram : public testing::Test
{
protected:
    int run(const std::string& arguments)
    {
        int status = -1;
        const std::string command =
            "cd '" + _folder.path("") + "' && GUIGL_WINDOW_SYSTEM=offscreen " GUIGL_REPLAY " " + arguments + " 2>&1";
        _output = test::outputOf({"sh", "-c", command}, status);
        return status;
    }

    test::ImageFolder _folder;
    std::string _output;
};

TEST_F(ReplayProgram, TellsOfAFrameAndRefusesWhatIsNone)
{
    fileWith(_folder.path("good.guiglframe"), drawTriangle);
    if (run("good.guiglframe --overdraw over.png") != 0 && _output.find("needs OpenGL 4.2") != std::string::npos)
        GTEST_SKIP() << "overdraw needs OpenGL 4.2";
    ASSERT_EQ(run("good.guiglframe --list --changes --buffer 1 --times --overdraw over.png --to 1 --out one.png"), 0)
        << _output;
    for (const char* text : {"glDrawArrays(TRIANGLES, 0, 3) to screen, program 1, vertex array 1", ": 3072 pixels",
                             "     1  3 -1", "ms in all", "Each pixel is drawn 1.00 times"})
        EXPECT_NE(_output.find(text), std::string::npos) << text << "\n" << _output;
    gui::Texture picture;
    ASSERT_TRUE(picture.loadFromFile(_folder.path("one.png").c_str()));
    EXPECT_EQ(picture.getBytes()[1], 255) << "green";

    fileWith(_folder.path("hostile.guiglframe"), [](CallWriter& w) { w.call(&glDrawArrays, GL_TRIANGLES, 0, 30); });
    fileWith(_folder.path("endless.guiglframe"),
             [](CallWriter& w)
             {
                 w.call(&glDisableVertexAttribArray, 0);
                 for (int i = 0; i < 100; ++i)
                     w.call(&glDrawArraysInstanced, GL_TRIANGLES, 0, 1 << 30, 1 << 30);
             });
    std::ofstream(_folder.path("cut.guiglframe")) << "GUIGLFRM\1";
    const std::pair<const char*, const char*> cases[] = {
        {"hostile.guiglframe --out x.png", "hostile.guiglframe: a draw reads attribute 0"},
        {"cut.guiglframe", "cut.guiglframe: it ends too soon"},
        {"absent.guiglframe", "absent.guiglframe: No such file"},
        {"/dev/zero", "no captured frame"},
        {"endless.guiglframe --timeout 1 --out x.png", "longer than 1 s"},
        {"good.guiglframe --to 2 --out x.png", "the frame has 1 draws"},
        {"good.guiglframe --buffer 7", "there is no buffer 7"},
        {"--list", "which frame?"},
        {"good.guiglframe --bold", "no option --bold"},
    };
    for (const auto& [arguments, message] : cases)
    {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(run(arguments), 1);
        EXPECT_TRUE(_output.starts_with("guigl-replay: ")) << _output;
        EXPECT_NE(_output.find(message), std::string::npos) << _output;
        EXPECT_EQ(std::count(_output.begin(), _output.end(), '\n'), 1) << _output;
    }
}

} // namespace
