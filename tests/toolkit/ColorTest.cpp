#include "support/CapturedLog.h"
#include "support/CaughtAsserts.h"

#include <gui/Color.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace
{

TEST(Color, NamesHaveTheValuesPeopleKnow)
{
    using ID = td::ColorID;
    const struct
    {
        ID id;
        int value; // stored in files and records, so it must stay
        td::Color color;
    } cases[] = {
        {ID::AliceBlue, 0, {240, 248, 255, 255}}, {ID::Black, 7, {0, 0, 0, 255}},
        {ID::Grey, 56, {128, 128, 128, 255}},     {ID::Lime, 82, {0, 255, 0, 255}},
        {ID::Red, 120, {255, 0, 0, 255}},         {ID::SteelBlue, 136, {70, 130, 180, 255}},
        {ID::White, 144, {255, 255, 255, 255}},   {ID::YellowGreen, 147, {154, 205, 50, 255}},
        {ID::Gray51, 165, {130, 130, 130, 255}},  {ID::Gray100, 182, {255, 255, 255, 255}},
        {ID::NoColor, 183, {0, 0, 0, 0}},         {ID(255), 255, {0, 0, 0, 0}},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(int(c.id), c.value);
        EXPECT_EQ(gui::Color::toTDColor(c.id), c.color) << c.value;
        float r = -1, g = -1, b = -1, a = -1;
        gui::Color::getRGBA(c.id, r, g, b, a);
        EXPECT_EQ(r, float(c.color.red()) / 255.0f) << c.value;
        EXPECT_EQ(g, float(c.color.green()) / 255.0f) << c.value;
        EXPECT_EQ(b, float(c.color.blue()) / 255.0f) << c.value;
        EXPECT_EQ(a, float(c.color.alpha()) / 255.0f) << c.value;
    }
}

static_assert(td::Color("#204060") == td::Color::fromRGB(0xFF204060));
static_assert(td::Color("#f0C") == td::Color(255, 0, 204, 255));
static_assert(td::Color("#20406080") == td::Color::fromRGB(0x204060, 0x180));
static_assert(td::Color(td::ColorID::SteelBlue) == td::Color("#4682b4"));
static_assert(td::Color::fromHSL(330, 1, 0.5f) == td::Color(255, 0, 128, 255));

// Hues at and beside the corners of their circle, and numbers that are no share.
TEST(Color, HuesAreThoseOfCSS)
{
    const struct
    {
        float hue, saturation, lightness, alpha;
        const char* color;
    } cases[] = {
        {0, 1, 0.5f, 1, "#f00"},          {60, 1, 0.5f, 1, "#ff0"},       {120, 1, 0.25f, 1, "#008000"},
        {240, 1, 0.5f, 1, "#00f"},        {30, 1, 0.5f, 1, "#ff8000"},    {210, 0.5f, 0.25f, 0.5f, "#20406080"},
        {-30, 1, 0.5f, 1, "#ff0080"},     {750, 1, 0.5f, 1, "#ff8000"},   {-1e-9f, 1, 0.5f, 1, "#f00"},
        {77, 0, 0.6f, 1, "#999"},         {77, 1, 0, 0, "#00000000"},     {77, 1, 2, 7, "#fff"},
        {0, NAN, 0.2f, -1, "#33333300"},  {INFINITY, 1, 0.5f, 1, "#f00"}, {1e30f, 1, NAN, 1, "#000"},
        {240, 1, 0.5f, 0.5333f, "#00f8"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(td::Color::fromHSL(c.hue, c.saturation, c.lightness, c.alpha), c.color) << c.hue << ' ' << c.color;
}

TEST(Color, TextsThatAreNoColourAreRefused)
{
    const char* const pNull = nullptr;
    for (const std::string text : {"", "#", "204060", "#20", "#20406", "#2040600", "#20406080f", "#20406g", "#20-060",
                                   "#2040 0", " #204060", "SteelBlue"})
    {
        td::Color color(1, 2, 3, 4);
        EXPECT_FALSE(td::Color::read(text, color)) << text;
        EXPECT_EQ(color, td::Color(1, 2, 3, 4)) << text;
    }
    test::CapturedLog log;
    test::CaughtAsserts asserts;
    EXPECT_EQ(td::Color(std::string("#20406")), td::Color());
    EXPECT_TRUE(log.said("Error! td::Color cannot read a colour in '#20406'"));
    EXPECT_EQ(td::Color(pNull), td::Color());
    EXPECT_TRUE(log.said("Error! td::Color cannot read a colour in ''"));
    EXPECT_TRUE(asserts.caught(std::vector<std::string>{"false", "false"}));
    EXPECT_EQ(td::Color(0), td::Color()); // a word, and no text
}

} // namespace
