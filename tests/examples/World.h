#pragma once

#include <worldmap/Countries.h>

#include <gtest/gtest.h>

namespace test
{

/// The countries of worldmap, loaded once.
inline const worldmap::Countries& world()
{
    static const worldmap::Countries countries = []
    {
        worldmap::Countries loaded;
        EXPECT_TRUE(loaded.load());
        return loaded;
    }();
    return countries;
}

} // namespace test
