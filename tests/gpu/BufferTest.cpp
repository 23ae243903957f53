#include "support/NullGL.h"

#include <gui/gl/Buffer.h>

#include <epoxy/gl.h>

#include <functional>
#include <string>
#include <vector>

namespace
{

using gui::gl::Buffer;
using gui::gl::DataType;
using enum gui::gl::DataType;

const std::vector<float> cNumbers(1024, 1.0f);

class BufferTest : public test::NullGL
{
protected:
    /// One triangle of points with two instances of one float each, and indices.
    static void fillInstanced(Buffer& buffer)
    {
        ASSERT_TRUE(buffer.init(1, 3, 3, 2, {Vec2}, {Float}, {}));
        const unsigned int indices[] = {0, 1, 2};
        buffer.appendVertices(cNumbers.data(), 3);
        buffer.appendIndices(indices, 3);
        buffer.appendInstances(cNumbers.data(), 2);
    }
};

// A shape whose command or whose vertices were missing would draw its neighbour's.
TEST_F(BufferTest, ShapesAreWholeOrNotThere)
{
    Buffer buffer{Vec2, Vec4};
    EXPECT_EQ(buffer.getVertexStride(), 24);
    ASSERT_NE(buffer.appendShape(gui::gl::Primitive::Triangles, cNumbers.data(), 3), nullptr);
    ASSERT_NE(buffer.appendShape(gui::gl::Primitive::LineStrip, cNumbers.data(), 4), nullptr);
    EXPECT_EQ(buffer.appendShape(static_cast<gui::gl::Primitive>(8), cNumbers.data(), 5), nullptr);
    EXPECT_TRUE(asserts.caught("primitive <= Primitive::Patches"));
    EXPECT_TRUE(buffer.getCommandList().encode());
    buffer.getCommandList().execute();
    EXPECT_TRUE(trace.only({"glDrawArrays(4, 0, 3)", "glDrawArrays(3, 3, 4)"}));
    ASSERT_TRUE(buffer.commit());
    EXPECT_EQ(buffer.appendShape(gui::gl::Primitive::Triangles, cNumbers.data(), 3), nullptr);
    EXPECT_TRUE(asserts.caught("false"));
    EXPECT_TRUE(log.said("ERROR! Buffer::append vertices on committed buffer! Call reset first!"));
    EXPECT_EQ(buffer.getNoOfVertices(), 7U);
    EXPECT_EQ(buffer.getCommandList().size(), 2U);
    Buffer noLayout;
    EXPECT_EQ(noLayout.appendShape(gui::gl::Primitive::Triangles, cNumbers.data(), 3), nullptr);
    EXPECT_TRUE(asserts.caught("_vertexRecLenInBytes > 0"));
}

TEST_F(BufferTest, CommitUploadsVerticesIndicesAndInstances)
{
    Buffer buffer;
    ASSERT_TRUE(buffer.init(0, 2, 3, 1, {Vec3, Vec2}, {Vec4, Scalar2, Mat3}, {1, 2, 65535}));
    EXPECT_EQ(buffer.getVertexStride(), 20);
    EXPECT_EQ(buffer.getInstanceStride(), 56);
    const std::vector<float> vertices{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    const std::vector<unsigned int> indices{0, 1, 0x80000000};
    buffer.appendVertices(vertices.data(), 2);
    buffer.appendIndices(indices.data(), 2);
    buffer.appendIndex(indices[2]);
    buffer.appendInstances(cNumbers.data(), 1);
    ASSERT_TRUE(buffer.commit());
    EXPECT_TRUE(trace.inOrder({"glVertexAttribPointer(3, 1, 0x1406, 0, 56, 16)", "glVertexAttribDivisor(3, 2)",
                               "glVertexAttribPointer(4, 9, 0x1406, 1, 56, 20)", "glVertexAttribDivisor(4, 65535)",
                               "glBindBuffer(0x8892, 0)", "glBindVertexArray(0)"}));
    EXPECT_EQ(trace.lastBuffer<unsigned int>(GL_ELEMENT_ARRAY_BUFFER), indices);
    EXPECT_EQ(buffer.getNoOfVertices(), 2u);
    EXPECT_EQ(buffer.getNoOfIndices(), 3u);
    EXPECT_EQ(buffer.getNoOfInstances(), 14u); // floats, not instances

    trace.clear();
    EXPECT_TRUE(buffer.commit());
    EXPECT_TRUE(trace.only({}));
    buffer.activate();
    buffer.deActivate();
    EXPECT_TRUE(trace.only({"glBindVertexArray(1)", "glBindVertexArray(0)"}));
}

TEST_F(BufferTest, RefusedLayoutsLeaveTheOldOne)
{
    Buffer buffer;
    ASSERT_TRUE(buffer.init(0, 4, 0, 4, {Vec3}, {Vec4}, {}));
    buffer.appendVertices(cNumbers.data(), 2);
    buffer.createCommand();
    const std::initializer_list<DataType> full{Mat4, Mat4, Mat4, Mat4, Mat4, Mat4, Mat4, Mat4, Mat4,
                                               Mat4, Mat4, Mat4, Mat4, Mat4, Mat4, Mat3, Vec4, Vec2};
    const std::initializer_list<DataType> tooLong{Mat4, Mat4, Mat4, Mat4, Mat4, Mat4, Mat4, Mat4,
                                                  Mat4, Mat4, Mat4, Mat4, Mat4, Mat4, Mat4, Mat4};
    const std::string noVertex = "Error! Buffer::init with 0 layout vertex positions!";
    const struct
    {
        std::initializer_list<DataType> vertex, instance;
        const char* condition;
        std::vector<std::string> lines;
    } cases[] = {
        {{}, {Vec4}, "false", {noVertex}},
        {{Vec2}, {}, "false", {"Error! Buffer::init instanced buffer with 0 layout instanced positions!"}},
        {tooLong, {Vec4}, "vertexFloatUnits <= 255", {}},
        {{Vec2}, tooLong, "instanceFloatUnits <= 255", {}},
        {{Vec2, DataType(12)}, {Vec4}, "areTypesKnown(layout)", {}},
        {{Vec2}, {DataType(255)}, "areTypesKnown(instanceLayout)", {}},
    };
    for (const auto& c : cases)
    {
        EXPECT_FALSE(buffer.init(9, 9, 9, 9, c.vertex, c.instance, {}));
        EXPECT_EQ(log.take(), c.lines);
        EXPECT_TRUE(asserts.caught(c.condition));
    }
    EXPECT_FALSE(buffer.init(9, 9, 9, {}));
    EXPECT_TRUE(log.said(noVertex));
    EXPECT_TRUE(asserts.caught("false"));
    EXPECT_EQ(buffer.getVertexStride(), 12);
    EXPECT_EQ(buffer.getInstanceStride(), 16);
    EXPECT_EQ(buffer.getNoOfVertices(), 2u);
    EXPECT_EQ(buffer.getCommandList().size(), 1u);

    ASSERT_TRUE(buffer.init(0, 1, 0, full));
    EXPECT_EQ(buffer.getVertexStride(), 1020);

    ASSERT_TRUE(buffer.init(0, 1, 0, 1, {Float, Float}, {Vec4, Vec4}, {7, 8}));
    ASSERT_TRUE(buffer.init(0, 1, 0, 1, {Float, Float}, {Vec4, Vec4}, {7})); // the first ones must not stay
    EXPECT_TRUE(
        log.said("Warning! Buffer::init number of divisors doesn't correspond to number of layout positions and "
                 "will be ignored"));
    buffer.appendVertices(cNumbers.data(), 1);
    buffer.appendInstances(cNumbers.data(), 1);
    gui::gl::CurrentContext::set(nullptr);
    EXPECT_FALSE(buffer.commit());
    EXPECT_TRUE(log.said("Error! Buffer::commit without a current GL context!"));
    EXPECT_TRUE(trace.only({}));
    gui::gl::CurrentContext::set(this);
    ASSERT_TRUE(buffer.commit());
    EXPECT_TRUE(trace.inOrder({"glVertexAttribDivisor(2, 1)", "glVertexAttribDivisor(3, 1)"}));
}

TEST_F(BufferTest, AppendsMustFitTheLayout)
{
    Buffer buffer;
    const td::Point<float> points[] = {{1, 2}, {3, 4}, {5, 6}};
    buffer.appendVertices(cNumbers.data(), 1);
    buffer.appendVertexUnits(cNumbers.data(), 2);
    buffer.appendVertices(points, 1);
    buffer.appendVertex(points[0]);
    EXPECT_TRUE(asserts.caught(std::vector<std::string>(4, "_vertexRecLenInBytes > 0"))); // would divide by 0
    EXPECT_EQ(buffer.getNoOfVertices(), 0u);
    EXPECT_TRUE(asserts.caught("nRecLen > 0"));

    ASSERT_TRUE(buffer.init(0, 1, 0, {Vec3}));
    buffer.appendVertexUnits(cNumbers.data(), 4);
    EXPECT_TRUE(asserts.caught("((nVertexFloats * sizeof(gui::gl::VertexType)) % _vertexRecLenInBytes) == 0"));
    buffer.appendVertex(points[0]);
    EXPECT_TRUE(asserts.caught("((2 * sizeof(gui::gl::VertexType)) % _vertexRecLenInBytes) == 0"));
    buffer.appendInstances(cNumbers.data(), 1);
    EXPECT_TRUE(asserts.caught("_instanceData.capacity() > 0"));
    buffer.appendIndices(nullptr, 0);
    EXPECT_EQ(buffer.getNoOfVertices() + buffer.getNoOfIndices() + buffer.getNoOfInstances(), 0u);
    buffer.appendVertices(points, 3); // 6 floats: two vertices
    EXPECT_EQ(buffer.getNoOfVertices(), 2u);
}

TEST_F(BufferTest, PointsAreReadChangedAndInserted)
{
    Buffer buffer;
    ASSERT_TRUE(buffer.init(0, 1, 0, {Vec2}));
    cnt::PushBackVector<td::Point<float>, 0> points;
    points.push_back({1, 2});
    points.push_back({3, 4});
    buffer.appendVertices(points);
    buffer.insertVertex(0, {-1, -2});
    buffer.insertVertex(3, {5, 6});
    buffer.insertVertex(99, {7, 8}); // past the end it appends
    buffer.updateVertex(1, {10, 20});
    const std::vector<float> expected{-1, -2, 10, 20, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(std::vector<float>(buffer.getVertices().begin(), buffer.getVertices().end()), expected);
    td::Point<float> point;
    buffer.getVertex(4, point);
    EXPECT_EQ(point.x, 7);
    EXPECT_EQ(point.y, 8);
}

TEST_F(BufferTest, CommittedDataIsClosedUntilReset)
{
    Buffer buffer;
    fillInstanced(buffer);
    ASSERT_TRUE(buffer.commit());
    td::Point<float> point(1, 2);
    const cnt::PushBackVector<td::Point<float>, 0> points;
    const cnt::PushBackVector<unsigned int, 0> indices;
    const unsigned int index = 0;
    const std::function<void()> operations[] = {
        [&] { buffer.appendVertices(cNumbers.data(), 1); },
        [&] { buffer.appendVertexUnits(cNumbers.data(), 2); },
        [&] { buffer.appendVertices(&point, 1); },
        [&] { buffer.appendVertices(points); },
        [&] { buffer.appendVertex(point); },
        [&] { buffer.appendInstances(cNumbers.data(), 1); },
        [&] { buffer.appendIndices(&index, 1); },
        [&] { buffer.appendIndices(indices); },
        [&] { buffer.appendIndex(0); },
        [&] { buffer.updateVertex(0, point); },
        [&] { buffer.getVertex(0, point); },
        [&] { buffer.insertVertex(0, point); },
        [&] { EXPECT_TRUE(buffer.isAddOnCommitted()); },
    };
    for (const std::function<void()>& operation : operations)
    {
        point = {1, 2};
        operation();
        EXPECT_TRUE(log.said("ERROR! Buffer::append vertices on committed buffer! Call reset first!"));
        EXPECT_TRUE(asserts.caught("false"));
        EXPECT_EQ(point.x, 1);
    }
    EXPECT_EQ(buffer.getNoOfVertices(), 3u);
    buffer.reset();
    EXPECT_FALSE(buffer.isAddOnCommitted());
    EXPECT_EQ(buffer.getNoOfVertices(), 0u);
    EXPECT_EQ(buffer.getVertices().capacity(), 6u); // storage is kept
    EXPECT_EQ(buffer.getVertexStride(), 8);
}

TEST_F(BufferTest, EachObjectThatGLCannotGiveIsNamedAndNothingLeaks)
{
    const struct
    {
        const char* function;
        unsigned int nth;
        const char* line;
    } cases[] = {{"glGenVertexArrays", 1, "ERROR! Buffer::commit cannot create VAO!"},
                 {"glGenBuffers", 1, "ERROR! Buffer::commit cannot create VBO!"},
                 {"glGenBuffers", 2, "ERROR! Buffer::commit cannot create EBO!"},
                 {"glGenBuffers", 3, "ERROR! Buffer::commit cannot create IBO!"}};
    for (const auto& [function, nth, line] : cases)
    {
        Buffer buffer;
        fillInstanced(buffer);
        trace.failNext(function, nth);
        EXPECT_FALSE(buffer.commit());
        EXPECT_TRUE(log.said(line));
        EXPECT_FALSE(buffer.isAddOnCommitted()); // still open
        trace.clear();
        const bool isTriedAgain = line == cases[0].line;
        EXPECT_TRUE(buffer.commit());
        EXPECT_EQ(buffer.isCommitted(), isTriedAgain) << line;
        EXPECT_EQ(trace.calls().empty(), !isTriedAgain) << line;
    }
}

// A frame that drew the wrong range, or indices of the wrong size.
TEST_F(BufferTest, CommandsDrawWhatThereIsByIndicesOfItsSize)
{
    Buffer closed, changing;
    ASSERT_TRUE(closed.init(1, 3, 3, 2, {Vec2}, {Float, Float}, {3, 2}));
    const unsigned int indices[] = {0, 1, 2, 0xFFFF};
    closed.appendVertices(cNumbers.data(), 3);
    closed.appendIndices(indices, 3);
    closed.appendInstances(cNumbers.data(), 2);
    changing.setDynamic();
    ASSERT_TRUE(changing.init(1, 3, 0, {Vec2}));
    changing.appendVertices(cNumbers.data(), 3);
    for (Buffer* pBuffer : {&closed, &changing})
        ASSERT_TRUE(pBuffer->commit());

    gui::gl::CommandList list;
    list.get()->createDrawAll(gui::gl::Primitive::Triangles, 1);
    list.get()->createDrawElements(gui::gl::Primitive::Lines, 2, 1);
    ASSERT_TRUE(list.encode());
    const auto draw = [&](const Buffer& buffer)
    {
        buffer.activate();
        trace.clear();
        list.execute();
    };
    draw(closed);
    EXPECT_TRUE(trace.only({"glDrawElementsInstanced(4, 2, 0x1405, 4, 4)", "glDrawElements(1, 1, 0x1405, 8)"}));
    draw(changing);
    EXPECT_TRUE(trace.inOrder({"glDrawArrays(4, 1, 2)"}));
    changing.appendIndices(indices, 3);
    draw(changing);
    EXPECT_TRUE(trace.only({"glDrawElements(4, 2, 0x1403, 2)", "glDrawElements(1, 1, 0x1403, 4)"}));
    draw(closed);
    EXPECT_TRUE(trace.inOrder({"glDrawElements(1, 1, 0x1405, 8)"}));

    // Without room for larger indices the old ones stay.
    changing.appendIndices(indices, 4);
    trace.failNext("glGenBuffers");
    draw(changing);
    EXPECT_TRUE(log.said("ERROR! Buffer::commit cannot create EBO!"));
    EXPECT_TRUE(trace.only({"glDrawElements(4, 2, 0x1403, 2)", "glDrawElements(1, 1, 0x1403, 4)"}));
    draw(changing);
    EXPECT_TRUE(trace.only({"glDrawElements(4, 6, 0x1405, 4)", "glDrawElements(1, 1, 0x1405, 8)"}));
    changing.deActivate();
    trace.clear();
    list.execute(0, 1); // of no buffer
    EXPECT_TRUE(trace.only({}));
    gui::gl::Command all;
    all.createDrawAll(gui::gl::Primitive::Triangles);
    EXPECT_TRUE(all.encode() && all.execute()) << "nothing to draw is no failure";
    changing.removeIndices(0, 7);
    draw(changing); // and not by its vertices
    EXPECT_EQ(trace.count("glDrawArrays"), 0U);
}

// What is told too late, or can't be.
TEST_F(BufferTest, BuffersAreDynamicFromTheirFirstDataOnOrNever)
{
    Buffer closed{Vec2};
    closed.appendVertices(cNumbers.data(), 1);
    closed.setDynamic();
    EXPECT_TRUE(asserts.caught("isEmpty()"));
    closed.setRing(0);
    EXPECT_TRUE(asserts.caught("nVertices > 0"));
    EXPECT_FALSE(closed.isDynamic());
    ASSERT_TRUE(closed.commit());
    closed.updateVertices(0, cNumbers.data(), 1);
    closed.removeVertices(0, 1);
    {
        Buffer::Appender appender(closed, 3);
        appender.append(cNumbers.data(), 1);
    }
    EXPECT_EQ(log.take().size(), 3U);
    EXPECT_TRUE(asserts.caught(std::vector<std::string>(3, "false")));
    EXPECT_EQ(closed.getNoOfVertices(), 1U);

    Buffer changing{Vec2};
    changing.setDynamic();
    const float wrong[3] = {};
    Buffer::Appender(changing, 0).append(wrong[0]);
    EXPECT_TRUE(asserts.caught("cFloats == _nFloats || _nFloats == 0"));
}

// Copies of what GL has, calls for each of many little ones, and numbers that are there no more.
TEST_F(BufferTest, WhatIsLeftToGLIsSentAtOnceWhereItIsMuchAndIsNotRead)
{
    Buffer buffer;
    buffer.setKeptForRestore(false);
    buffer.setDynamic();
    ASSERT_TRUE(buffer.init(1, 2000, 0, {Vec2}));
    const std::vector<float> many(2000);
    buffer.appendVertices(cNumbers.data(), 1);
    ASSERT_TRUE(buffer.commit());
    trace.clear();
    buffer.appendVertices(many.data(), 1000);
    EXPECT_EQ(trace.count("glBufferSubData"), 1U);
    buffer.appendVertices(cNumbers.data(), 1);
    buffer.appendVertices(cNumbers.data(), 1);
    EXPECT_EQ(trace.count("glBufferSubData"), 1U);
    ASSERT_TRUE(buffer.commit());
    EXPECT_EQ(trace.count("glBufferSubData"), 2U);
    buffer.appendVertices(many.data(), 1000); // more than there is room for
    EXPECT_EQ(trace.count("glBufferSubData"), 2U);
    EXPECT_EQ(buffer.getNoOfVertices(), 2003U);
    EXPECT_EQ(buffer.getVertices().size(), 0U);
    td::Point<float> point(1, 2);
    buffer.getVertex(0, point);
    EXPECT_EQ(log.take(),
              (std::vector<std::string>{"Error! Buffer::getVertices: the data of this dynamic buffer is in GL alone",
                                        "Error! Buffer::getVertex: the data of this dynamic buffer is in GL alone"}));
    EXPECT_EQ(point.x, 1);
    buffer.updateVertex(2003, point);
    EXPECT_TRUE(asserts.caught("isRange(first, n, count)"));
}

} // namespace
