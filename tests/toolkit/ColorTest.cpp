#include <gui/Color.h>

#include <gtest/gtest.h>

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
        {ID::AliceBlue, 0, {240, 248, 255, 255}},
        {ID::Black, 7, {0, 0, 0, 255}},
        {ID::Grey, 56, {128, 128, 128, 255}},
        {ID::Lime, 82, {0, 255, 0, 255}},
        {ID::Red, 120, {255, 0, 0, 255}},
        {ID::SteelBlue, 136, {70, 130, 180, 255}},
        {ID::White, 144, {255, 255, 255, 255}},
        {ID::YellowGreen, 147, {154, 205, 50, 255}},
        {ID::Gray51, 165, {130, 130, 130, 255}},
        {ID::Gray100, 182, {255, 255, 255, 255}},
        {ID::NoColor, 183, {0, 0, 0, 0}},
        {ID(255), 255, {0, 0, 0, 0}},
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

} // namespace
