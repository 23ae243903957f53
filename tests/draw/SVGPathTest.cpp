#include <gui/draw/Path.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>

namespace
{

using gui::draw::Path;
using gui::draw::PathSegment;

// The path in words: M 0 0 L 1 1 A(centre sweep) 2 2 Z.
std::string inWords(const Path& path)
{
    std::string words;
    const auto add = [&words](const char* verb, std::initializer_list<double> numbers)
    {
        words += verb;
        for (const double number : numbers)
        {
            char text[32];
            std::snprintf(text, sizeof text, " %g", std::abs(number) < 1e-12 ? 0.0 : number);
            words += text;
        }
    };
    for (const PathSegment& s : path)
        switch (s.verb)
        {
        case Path::Verb::MoveTo:
            add(words.empty() ? "M" : " M", {s.to.x, s.to.y});
            break;
        case Path::Verb::LineTo:
            add(" L", {s.to.x, s.to.y});
            break;
        case Path::Verb::QuadTo:
            add(" Q", {s.control1.x, s.control1.y, s.to.x, s.to.y});
            break;
        case Path::Verb::CubicTo:
            add(" C", {s.control1.x, s.control1.y, s.control2.x, s.control2.y, s.to.x, s.to.y});
            break;
        case Path::Verb::ArcTo:
            add(" A", {s.arc.center.x, s.arc.center.y, s.arc.sweep, s.to.x, s.to.y});
            break;
        case Path::Verb::Close:
            words += " Z";
            break;
        }
    return words;
}

TEST(SVGPathTest, ReadsTheWholeGrammar)
{
    const struct
    {
        const char* data;
        const char* words;
    } cases[] = {
        {"", ""},
        {" \t\r\n\f", ""},
        {"M1 2", "M 1 2"},
        {"m1 2 3 4", "M 1 2 L 4 6"},
        {"M1 2 3 4,5 6", "M 1 2 L 3 4 L 5 6"},
        {"M0 0M1 1L2 2", "M 1 1 L 2 2"},
        {"M.5.5-3-4e1l+5E-1.5", "M 0.5 0.5 L -3 -40 L -2.5 -39.5"},
        {"M1e-400 0L0 -0", "M 0 0 L 0 0"},
        {"M 1 1 h2 3 v4-1 H0V9", "M 1 1 L 3 1 L 6 1 L 6 5 L 6 4 L 0 4 L 0 9"},
        {"M 1 1 L2 2 Z l1 0 z m 5 5 l 1 1", "M 1 1 L 2 2 Z M 1 1 L 2 1 Z M 6 6 L 7 7"},
        {"M0 0c0 1 1 2 2 2s1 1 2 2S1 2 3 4", "M 0 0 C 0 1 1 2 2 2 C 3 2 3 3 4 4 C 5 5 1 2 3 4"},
        {"M1 1S2 2 3 3", "M 1 1 C 1 1 2 2 3 3"},
        {"M0 0Q1 2 2 0t2 0 2 0T8 0", "M 0 0 Q 1 2 2 0 Q 3 -2 4 0 Q 5 2 6 0 Q 7 -2 8 0"},
        {"M1 1T3 3", "M 1 1 Q 1 1 3 3"},
        {"M0 0Q1 2 2 0S3 1 4 0", "M 0 0 Q 1 2 2 0 C 2 0 3 1 4 0"}, // S reflects no quadratic curve
        {"M0 0C0 2 1 2 2 0T4 0", "M 0 0 C 0 2 1 2 2 0 Q 2 0 4 0"}, // nor T a cubic one
        {"M0 0a1 1 0 0110 10", "M 0 0 A 5 5 3.14159 10 10"},
        {"M0 0a1 1 0 112 0", "M 0 0 A 1 0 3.14159 2 0"},
        {"M0 0A-1-1 0 0,0 1 1 1 1 720.1 0 1 1 1", "M 0 0 A 1 0 -1.5708 1 1"}, // ends where it begins: nothing
        {"M0 0A1 1 0 1 1 1 1", "M 0 0 A 1 0 4.71239 1 1"},
        {"M0 0A1 1 0 0 1 1 1", "M 0 0 A 0 1 1.5708 1 1"},
        {"M0 0A0 1 0 0 1 1 1", "M 0 0 L 1 1"},
        {"M0 0 , 1 1", "M 0 0 L 1 1"},
    };
    for (const auto& c : cases)
    {
        Path path;
        EXPECT_TRUE(path.addSVG(c.data)) << c.data;
        EXPECT_EQ(inWords(path), c.words) << c.data;
    }
}

TEST(SVGPathTest, SaysWhereItStopped)
{
    const struct
    {
        const char* data;
        std::size_t position;
        const char* expected;
        const char* words; // what stands before
    } cases[] = {
        {"L1 1", 0, "M or m", ""},
        {"M", 1, "a number", ""},
        {"M1", 2, "a number", ""},
        {"M 1,,1", 4, "a number", ""},
        {"M1 1x", 4, "a command", "M 1 1"},
        {"M1 1 2", 6, "a number", "M 1 1"},
        {"M1 1,", 5, "a number", "M 1 1"},
        {"M1 1L2 2 3 4.L", 12, "a number", "M 1 1 L 2 2 L 3 4"},
        {"M1.5.5-3-4e1+5E-1l.5,.5", 17, "a number", "M 1.5 0.5 L -3 -40"},
        {"M1 1L+-1 1", 5, "a number", "M 1 1"},
        {"M1 1H2 3V", 9, "a number", "M 1 1 L 2 1 L 3 1"},
        {"M1 1z5", 5, "a command", "M 1 1 Z"},
        {"M0 0C1 1 2 2 3", 14, "a number", "M 0 0"},
        {"M0 0L1 1A1 1 0 2 0 3 3", 15, "0 or 1", "M 0 0 L 1 1"},
        {"M0 0A1 1 0 1", 12, "0 or 1", "M 0 0"},
        {"M1e999 0", 1, "a number of at most 1.8e308", ""},
        {"M1 1L2e", 6, "a number", "M 1 1"},
    };
    for (const auto& c : cases)
    {
        Path path;
        Path::SVGError error;
        EXPECT_FALSE(path.addSVG(c.data, &error)) << c.data;
        EXPECT_EQ(error.position, c.position) << c.data;
        EXPECT_STREQ(error.expected, c.expected) << c.data;
        EXPECT_EQ(inWords(path), c.words) << c.data;
    }
}

// Of the four arcs through two points the flags choose one, with the radii asked for or just large enough ones.
TEST(SVGPathTest, ArcsLieOnTheirEllipse)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> anywhere(-10, 10), radius(0.1, 20), angle(-7, 7);
    for (int i = 0; i < 2000; ++i)
    {
        const Path::Point from(anywhere(random), anywhere(random)), to(anywhere(random), anywhere(random));
        const Path::Point radii(radius(random), radius(random));
        const double rotation = angle(random);
        const bool isLarge = i & 1, isPositive = i & 2;
        Path path;
        path.moveTo(from).arcTo(radii, rotation, isLarge, isPositive, to);
        const PathSegment s = *++path.begin();
        ASSERT_EQ(s.verb, Path::Verb::ArcTo);
        for (const double t : {0.0, 1e-12, 0.3, 1 - 1e-12, 1.0})
        {
            const Path::Point p = s.at(t), end = t < 0.2 ? from : to;
            EXPECT_TRUE(t == 0.3 || std::hypot(p.x - end.x, p.y - end.y) < 1e-6);
            const double x = p.x - s.arc.center.x, y = p.y - s.arc.center.y;
            const double u = (x * std::cos(rotation) + y * std::sin(rotation)) / radii.x;
            const double v = (y * std::cos(rotation) - x * std::sin(rotation)) / radii.y;
            const double reach = std::hypot(u, v); // above 1 where the radii were enlarged: to half an ellipse
            EXPECT_TRUE(std::abs(reach - 1) < 1e-6 ||
                        (reach > 1 && std::abs(std::abs(s.arc.sweep) - 3.14159265) < 1e-6));
        }
        EXPECT_EQ(s.arc.sweep > 0, isPositive);
        EXPECT_TRUE(isLarge ? std::abs(s.arc.sweep) > 3.1415926 : std::abs(s.arc.sweep) < 3.1415927);
    }
}

} // namespace
