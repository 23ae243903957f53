#include "Failing.h"
#include "Stops.h"
#include "support/CaughtAsserts.h"

#include <cnt/Array.h>
#include <cnt/Dictionary.h>
#include <cnt/List.h>
#include <cnt/SafeFullVector.h>
#include <mem/MemoryManager.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace
{

using test::Failing;

TEST(SafeFullVector, KeepsItsElementsOnlyForTheSameSize)
{
    cnt::SafeFullVector<int> v;
    v.zeros();
    v.reserve(3);
    std::iota(v.begin(), v.end(), 1);
    const int* const pStorage = v.begin();
    v.reserve(3);
    EXPECT_EQ(v.begin(), pStorage);
    EXPECT_EQ(v[2], 3);
    v.reserve(5);
    v.zeros();
    EXPECT_EQ(std::count(v.begin(), v.end(), 0), 5);
    cnt::SafeFullVector<int> taken(std::move(v));
    EXPECT_EQ(taken.size(), 5u);
    EXPECT_EQ(v.size(), 0u);
    EXPECT_EQ(v.begin(), nullptr);
    taken.reserve(0);
    EXPECT_EQ(taken.begin(), nullptr);
}

TEST(SafeFullVector, AFailedAllocationLeavesItEmpty)
{
    cnt::SafeFullVector<Failing> v;
    v.reserve(2);
    Failing::s_nStepsLeft = 0;
    EXPECT_THROW(v.reserve(3), std::bad_alloc);
    EXPECT_EQ(v.size(), 0u);
    EXPECT_EQ(Failing::s_nLive, 0);
    v.reserve(3);
    EXPECT_EQ(Failing::s_nLive, 3);
}

TEST(ContainersDeathTest, AccessOutsideStopsTheProgram)
{
    const char* const condition = "pos >= 0 && pos < _size && _data";
    cnt::SafeFullVector<int> v;
    const cnt::SafeFullVector<int>& constant = v;
    EXPECT_STOPS(v[0] = 1, condition, "operator[]");
    v.reserve(2);
    EXPECT_STOPS(v[2] = 1, condition, "operator[]");
    EXPECT_STOPS(v[std::size_t(constant[std::size_t(-1)])] = 1, condition, "operator[]");

    cnt::Array<int, 6> array{1, 2, 3};
    const cnt::Array<int, 6>& constantArray = array;
    EXPECT_EQ(std::accumulate(constantArray.begin(), constantArray.end(), array[5]), 6);
    EXPECT_STOPS(array[6] = 1, "(pos >=0) && (pos < SIZE)", "operator[]");
    EXPECT_STOPS(array[std::size_t(constantArray[std::size_t(-1)])] = 1, "(pos >=0) && (pos < SIZE)", "operator[]");

    cnt::List<int> list;
    EXPECT_STOPS(*list.begin() = 1, "pIt", "operator*");
}

TEST(List, KeepsOrderAndItsLastEntryThroughCleaning)
{
    cnt::List<int> list;
    EXPECT_TRUE(list.isEmpty());
    EXPECT_TRUE(list.getLast().isEnd());
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_EQ(*list.push_back(1), 1);
        *list.push() = 2;
        *list.push_back() = 3;
        EXPECT_EQ(*list.getLast(), 3);
        std::vector<int> seen;
        for (const int value : std::as_const(list))
            seen.push_back(value);
        EXPECT_EQ(seen, (std::vector<int>{1, 2, 3}));
        list.clean();
        EXPECT_TRUE(list.isEmpty());
        auto it = list.getLast();
        test::CaughtAsserts asserts;
        ++it; // stays there
        EXPECT_TRUE(asserts.caught("pIt"));
        EXPECT_TRUE(it.isEnd());
        EXPECT_FALSE(list.begin() != list.end());
    }
}

// Every size up to a few dozen: a search that is off by one at an end or between keys misses or invents an entry.
TEST(Dictionary, FindsEveryKeyAndNoOther)
{
    std::mt19937 random(1);
    for (int n = 0; n < 40; ++n)
    {
        std::vector<wchar_t> keys;
        for (int i = 0; i < n; ++i)
            keys.push_back(wchar_t(i * 2 - 10));
        std::shuffle(keys.begin(), keys.end(), random);
        cnt::Dictionary<wchar_t, unsigned short> filled;
        filled.reserve(keys.size() / 2);
        filled.beginUpdate();
        for (std::size_t i = 0; i < keys.size(); ++i)
            filled.append(keys[i], (unsigned short) (i));
        filled.endUpdate();
        const cnt::Dictionary<wchar_t, unsigned short> dictionary(std::move(filled));
        ASSERT_EQ(dictionary.size(), keys.size());
        for (std::size_t i = 0; i < keys.size(); ++i)
        {
            const unsigned short* const pValue = dictionary.find(keys[i]);
            ASSERT_NE(pValue, nullptr) << n << " " << long(keys[i]);
            EXPECT_EQ(*pValue, i);
            EXPECT_EQ(dictionary.find(wchar_t(keys[i] + 1)), nullptr);
            EXPECT_EQ(dictionary.find(wchar_t(keys[i] - 1)), nullptr);
        }
        EXPECT_EQ(dictionary.find(0x10FFFF), nullptr);
    }
}

TEST(Dictionary, AnUpdateHidesItsEntriesUntilItEnds)
{
    cnt::Dictionary<int, int> dictionary;
    test::CaughtAsserts asserts;
    dictionary.append(1, 1);
    EXPECT_TRUE(asserts.caught("_updating"));
    EXPECT_TRUE(dictionary.isEmpty());
    dictionary.beginUpdate();
    dictionary.append(5, 50);
    dictionary.append(5, 51);
    EXPECT_EQ(dictionary.find(5), nullptr);
    dictionary.endUpdate();
    ASSERT_NE(dictionary.find(5), nullptr);
    EXPECT_EQ(*dictionary.find(5) / 10, 5);
    dictionary.beginUpdate();
    dictionary.append(4, 40);
    dictionary.endUpdate();
    EXPECT_EQ(dictionary.begin()->key, 4);
    dictionary.beginUpdate();
    dictionary.reserve(1);
    EXPECT_EQ(dictionary.size(), 0u);
    dictionary.append(1, 1);
    EXPECT_TRUE(asserts.caught("_updating"));
}

struct Matrix
{
    float values[16];
};

TEST(MemoryManager, SlotsLieSideBySideAndComeAgainAfterReset)
{
    mem::MemoryManager<Matrix> pool;
    pool.reset();
    std::vector<Matrix*> slots;
    for (int i = 0; i < 3000; ++i)
        slots.push_back(pool.alloc());
    for (std::size_t i = 1; i < slots.size(); ++i)
    {
        if (i % 1023 != 0)
        {
            ASSERT_EQ(slots[i], slots[i - 1] + 1) << i;
        }
        *slots[i] = {};
    }
    std::vector<Matrix*> sorted = slots;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(std::unique(sorted.begin(), sorted.end()), sorted.end());
    EXPECT_NE(slots[1023], slots[1022] + 1);
    pool.reset();
    for (Matrix* const pSlot : slots)
        ASSERT_EQ(pool.alloc(), pSlot);
}

TEST(MemoryManager, AFailedBlockLeavesThePoolAsItWas)
{
    mem::MemoryManager<Failing, 2> pool;
    for (int round = 0; round < 2; ++round)
    {
        Failing::s_nStepsLeft = 0;
        EXPECT_THROW(pool.alloc(), std::bad_alloc);
        Failing* const pFirst = pool.alloc();
        EXPECT_EQ(pool.alloc(), pFirst + 1);
    }
    EXPECT_EQ(Failing::s_nLive, 4);
}

} // namespace
