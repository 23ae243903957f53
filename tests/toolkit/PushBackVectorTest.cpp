#include "Failing.h"
#include "Stops.h"

#include <cnt/PushBackVector.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <vector>

namespace
{

using test::Failing;

template <typename T>
std::vector<T> elements(const cnt::PushBackVector<T>& v)
{
    return {v.begin(), v.end()};
}

template <typename T>
void fill(cnt::PushBackVector<T>& v, std::size_t capacity, int n)
{
    v.reserve(capacity);
    for (int i = 0; i < n; ++i)
        v.push_back(T(i));
}

TEST(PushBackVector, CapacityDoublesFromOneOrFromWhatWasReserved)
{
    const struct
    {
        std::size_t reserved;
        std::vector<std::size_t> capacities; // after each push
    } cases[] = {{0, {1, 2, 4, 4, 8, 8, 8, 8, 16}}, {3, {3, 3, 3, 6, 6, 6, 12}}, {1, {1, 2, 4}}};
    for (const auto& c : cases)
    {
        cnt::PushBackVector<int> v;
        v.reserve(c.reserved);
        for (const std::size_t capacity : c.capacities)
        {
            v.push_back() = 7;
            EXPECT_EQ(v.capacity(), capacity);
            EXPECT_EQ(v.getEndPos(), v.begin() + capacity);
        }
        EXPECT_EQ(elements(v), std::vector<int>(c.capacities.size(), 7));
    }
}

// One growth too few or too many in the bulk form, or a wrong start of its copy.
TEST(PushBackVector, ManyAtOnceAreTheSameAsOneByOne)
{
    const std::vector<int> values{10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20};
    for (std::size_t reserved = 0; reserved < 6; ++reserved)
    {
        for (int nBefore = 0; nBefore < 6; ++nBefore)
        {
            for (std::size_t n = 0; n <= values.size(); ++n)
            {
                cnt::PushBackVector<int> one;
                cnt::PushBackVector<int> many;
                cnt::PushBackVector<int> slots;
                fill(one, reserved, nBefore);
                fill(many, reserved, nBefore);
                fill(slots, reserved, nBefore);
                for (std::size_t i = 0; i < n; ++i)
                    one.push_back(values[i]);
                many.push_back(n > 0 ? values.data() : nullptr, n);
                std::copy_n(values.begin(), n, slots.pushSlots(n));
                for (const auto* pVector : {&many, &slots})
                {
                    EXPECT_EQ(elements(*pVector), elements(one)) << reserved << " " << nBefore << " " << n;
                    EXPECT_EQ(pVector->capacity(), one.capacity()) << reserved << " " << nBefore << " " << n;
                }
            }
        }
    }
}

TEST(PushBackVector, ReserveEmptiesAndKeepsTheStorageOnlyForTheSameCapacity)
{
    cnt::PushBackVector<int> v;
    fill(v, 4, 3);
    const int* const pStorage = v.begin();
    v.reserve(4);
    EXPECT_EQ(v.size(), 0u);
    EXPECT_EQ(v.begin(), pStorage);
    EXPECT_EQ(v.push_back2(), 0) << "the slot holds what it held";
    v.reserve(2);
    EXPECT_EQ(v.size(), 0u);
    EXPECT_EQ(v.capacity(), 2u);
    v.reserve(0);
    EXPECT_EQ(v.begin(), nullptr);
}

TEST(PushBackVector, EmptyingAndMovingLeaveAUsableVector)
{
    cnt::PushBackVector<int> v;
    EXPECT_FALSE(v.remove_back());
    fill(v, 0, 3);
    EXPECT_TRUE(v.remove_back());
    EXPECT_EQ(elements(v), (std::vector<int>{0, 1}));
    v.reset();
    EXPECT_FALSE(v.remove_back());
    v.push_back(5);
    cnt::PushBackVector<int> taken(std::move(v));
    EXPECT_EQ(elements(taken), std::vector<int>{5});
    EXPECT_EQ(taken.capacity(), 4u);
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_EQ(v.begin(), nullptr);
        EXPECT_EQ(v.capacity(), 0u);
        v.push_back(6);
        EXPECT_EQ(elements(v), std::vector<int>{6});
        v.release();
        v.release();
    }
}

// Every element of every vector is inserted at every place, with and without growth: a value that is read after it
// moved or after the old storage was freed shows as a wrong element or a sanitizer report.
TEST(PushBackVector, ElementsOfTheVectorItselfCanBePushedAndInserted)
{
    for (const std::size_t reserved : {0u, 3u, 4u, 8u})
    {
        for (std::size_t from = 0; from < 4; ++from)
        {
            for (std::size_t pos = 0; pos <= 5; ++pos)
            {
                cnt::PushBackVector<Failing> v;
                fill(v, reserved, 4);
                std::vector<Failing> expected = elements(v);
                const Failing value = expected[from];
                expected.insert(expected.begin() + std::ptrdiff_t(std::min(pos, expected.size())), value);
                v.insert(pos, v[from]);
                EXPECT_EQ(elements(v), expected) << reserved << " " << from << " " << pos;
                EXPECT_EQ(v.capacity(), reserved == 3 ? 6u : 8u);
            }
            cnt::PushBackVector<Failing> v;
            fill(v, reserved, 4);
            std::vector<Failing> expected = elements(v);
            expected.insert(expected.end(), v.begin() + from, v.end());
            v.push_back(v.begin() + from, 4 - from);
            EXPECT_EQ(elements(v), expected) << reserved << " " << from;
        }
    }
    EXPECT_EQ(Failing::s_nLive, 0);
}

// Runs each operation once for every allocation and copy in it, letting that one throw.
TEST(PushBackVector, AFailedAllocationOrCopyLosesNothing)
{
    using Vector = cnt::PushBackVector<Failing>;
    const std::vector<Failing> more{Failing(7), Failing(8), Failing(9)};
    const std::function<void(Vector&)> operations[] = {
        [&](Vector& v) { v.push_back(more[0]); }, [&](Vector& v) { v.push_back(more.data(), 3); },
        [&](Vector& v) { v.push_back(); },
        [&](Vector& v) { v.insert(1, more[0]); }, // in place it may leave an element doubled, but none lost
    };
    for (std::size_t i = 0; i < std::size(operations); ++i)
    {
        for (const std::size_t reserved : {4u, 8u})
        {
            bool failed = true;
            for (int nSteps = 0; failed; ++nSteps)
            {
                Vector v;
                fill(v, reserved, 4);
                const std::vector<Failing> before = elements(v);
                Failing::s_nStepsLeft = nSteps;
                try
                {
                    operations[i](v);
                    failed = false;
                    Failing::s_nStepsLeft = -1;
                }
                catch (const std::bad_alloc&)
                {
                    EXPECT_EQ(v.capacity(), reserved);
                    const bool inPlace = i == 3 && reserved == 8;
                    EXPECT_TRUE(inPlace || elements(v) == before) << i << " " << nSteps;
                    for (const Failing& element : before)
                        EXPECT_NE(std::find(v.begin(), v.end(), element), v.end()) << i << " " << nSteps;
                }
            }
        }
    }
    Vector v;
    fill(v, 4, 4);
    Failing::s_nStepsLeft = 0;
    EXPECT_THROW(v.reserve(5), std::bad_alloc);
    EXPECT_EQ(v.capacity(), 0u);
    v.push_back(Failing(1));
    v.release();
    EXPECT_EQ(Failing::s_nLive, int(more.size()));
}

TEST(PushBackVector, CountsThatNoMemoryHoldsAreRefused)
{
    cnt::PushBackVector<float> v;
    fill(v, 2, 2);
    const float value = 1.0f;
    constexpr std::size_t cMax = std::numeric_limits<std::size_t>::max();
    for (const std::size_t n : {cMax, cMax - 1, cMax - 2, cMax / 2 + 1, cMax / 4})
        EXPECT_THROW(v.push_back(&value, n), std::bad_alloc) << n;
    EXPECT_EQ(elements(v), (std::vector<float>{0, 1}));
}

struct NeverThrows
{
    char byte;
    static void* operator new[](std::size_t) noexcept { return nullptr; }
    static void operator delete[](void*) {}
};

TEST(PushBackVectorDeathTest, MisuseStopsTheProgram)
{
    cnt::PushBackVector<int> v;
    const cnt::PushBackVector<int>& constant = v;
    EXPECT_STOPS(v[0] = 1, "pos < sz", "operator[]");
    fill(v, 8, 3);
    EXPECT_STOPS(v[3] = 1, "pos < sz", "operator[]");
    EXPECT_STOPS(v[std::size_t(constant[3])] = 1, "pos < sz", "operator[]");
    EXPECT_STOPS(v.at(3) = 1, "pos < size()", "at");
    EXPECT_STOPS(v[std::size_t(constant.at(std::size_t(-1)))] = 1, "pos < size()", "at");
    EXPECT_EQ(v[2] + constant.at(2), 4);
    cnt::PushBackVector<NeverThrows> none;
    EXPECT_STOPS(none.push_back(), "pNewData != nullptr", "push_back");
}

} // namespace
