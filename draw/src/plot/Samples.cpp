#include <gui/draw/Samples.h>

#include "SampleBlock.h"

#include <td/Assert.h>

#include <algorithm>
#include <array>
#include <deque>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cNone = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t cAtOnce = 32;        // edges of ranges, whose memory is asked for together
constexpr std::size_t cInCache = 1 << 18;  // numbers that stay there by themselves
constexpr std::size_t cLine = 64;          // bytes of the cache's lines
constexpr std::size_t cFirstCapacity = 64; // numbers that a block of its own has room for at first

} // namespace

/// What both kinds of numbers have to offer.
struct Samples::Column
{
    virtual ~Column() = default;
    virtual void append(std::span<const double> values) = 0;
    virtual void append(std::span<const float> values) = 0;
    virtual void setLimit(std::size_t n) = 0;
    virtual void clear() = 0;
    virtual void read(std::size_t first, std::span<double> values) const = 0;
    virtual void getRanges(std::span<const std::size_t> edges, std::span<Range> ranges) const = 0;
    virtual std::size_t getMemory() const = 0;

    std::size_t first = 0;
    std::size_t size = 0;
    bool isRising = true;
};

template <typename T>
struct Samples::Blocks final : public Column
{
    using Block = SampleBlock<T>;
    using Bounds = SampleBounds<T>;

    Blocks() = default;
    explicit Blocks(std::vector<T> values)
        : base(std::move(values))
    {
        look(base);
    }
    explicit Blocks(std::span<const T> values) { look(values); }
    Blocks(std::size_t n, Function compute)
        : function(std::move(compute))
    {
        std::vector<double> values(Block::cSize);
        std::vector<T> numbers(Block::cSize);
        for (std::size_t at = 0; at < n; at += Block::cSize)
        {
            const std::size_t count = std::min(n - at, Block::cSize);
            function(at, std::span(values).first(count));
            std::copy_n(values.begin(), count, numbers.begin());
            addBlock(numbers.data(), count).data = nullptr;
        }
    }

    /// Numbers that stay where they are.
    void look(std::span<const T> values)
    {
        for (std::size_t at = 0; at < values.size(); at += Block::cSize)
            addBlock(values.data() + at, std::min(values.size() - at, Block::cSize));
    }

    Block& addBlock(const T* values, std::size_t n)
    {
        Block& block = blocks.emplace_back();
        block.data = values;
        check(values, n);
        block.extend(values, n);
        block.shrink();
        size += n;
        return block;
    }

    void check(const T* values, std::size_t n)
    {
        for (std::size_t i = 0; i < n && isRising; ++i)
        {
            isRising = values[i] >= last;
            last = values[i];
        }
    }

    template <typename U>
    void appendAll(std::span<const U> values)
    {
        std::array<T, 256> converted;
        while (!values.empty())
        {
            if (blocks.empty() || blocks.back().size == Block::cSize)
                blocks.emplace_back();
            Block& block = blocks.back();
            own(block);
            const std::size_t n = std::min({values.size(), Block::cSize - block.size, converted.size()});
            for (std::size_t i = 0; i < n; ++i)
                converted[i] = static_cast<T>(values[i]);
            makeRoom(block.own, n);
            block.own.insert(block.own.end(), converted.begin(), converted.begin() + static_cast<std::ptrdiff_t>(n));
            block.data = block.own.data();
            check(converted.data(), n);
            block.extend(converted.data(), n);
            if (block.size == Block::cSize)
                block.shrink();
            block.data = block.own.data();
            size += n;
            values = values.subspan(n);
        }
        dropFirst();
    }

    /// A block that grows has its numbers itself.
    void own(Block& block)
    {
        if (block.size == block.own.size())
            return;
        block.own.resize(block.size);
        if (block.data != nullptr)
            std::copy_n(block.data, block.size, block.own.begin());
        else
            compute(first + (blocks.size() - 1) * Block::cSize, block.own);
        block.data = block.own.data();
    }

    /// Grows by a quarter, where vectors double.
    static void makeRoom(std::vector<T>& numbers, std::size_t n)
    {
        if (numbers.size() + n > numbers.capacity())
            numbers.reserve(std::min(std::max(numbers.size() + numbers.size() / 4 + n, cFirstCapacity), Block::cSize));
    }

    void dropFirst()
    {
        if (limit == 0)
            return;
        while (blocks.size() > 1 && size - first - blocks.front().size >= limit)
        {
            first += blocks.front().size;
            blocks.pop_front();
        }
    }

    void compute(std::size_t from, std::span<T> numbers) const
    {
        std::array<double, 256> values;
        for (std::size_t at = 0; at < numbers.size(); at += values.size())
        {
            const std::size_t n = std::min(numbers.size() - at, values.size());
            function(from + at, std::span(values).first(n));
            std::copy_n(values.begin(), n, numbers.begin() + static_cast<std::ptrdiff_t>(at));
        }
    }

    /// Number i of those that are there.
    T at(std::size_t i) const
    {
        const Block& block = blocks[i / Block::cSize];
        if (block.data != nullptr)
            return block.data[i % Block::cSize];
        T value;
        compute(first + i, std::span(&value, 1));
        return value;
    }

    void append(std::span<const double> values) override { appendAll(values); }
    void append(std::span<const float> values) override { appendAll(values); }

    void setLimit(std::size_t n) override
    {
        limit = n;
        dropFirst();
    }

    void clear() override
    {
        blocks.clear();
        base = {};
        function = nullptr;
        first = size = 0;
        isRising = true;
        last = -std::numeric_limits<T>::infinity();
    }

    void read(std::size_t from, std::span<double> values) const override
    {
        for (std::size_t i = 0; i < values.size();)
        {
            const std::size_t index = from + i;
            if (index < first || index >= size)
            {
                values[i++] = cNone;
                continue;
            }
            const std::size_t place = index - first;
            const Block& block = blocks[place / Block::cSize];
            const std::size_t begin = place % Block::cSize;
            const std::size_t n = std::min(block.size - begin, values.size() - i);
            if (block.data != nullptr)
                std::copy_n(block.data + begin, n, values.begin() + static_cast<std::ptrdiff_t>(i));
            else
                function(index, values.subspan(i, n));
            i += n;
        }
    }

    Bounds boundsOf(std::size_t from, std::size_t end) const
    {
        Bounds bounds;
        while (from < end)
        {
            const Block& block = blocks[from / Block::cSize];
            const std::size_t begin = from % Block::cSize;
            const std::size_t n = std::min(end - from, block.size - begin);
            const std::size_t start = first + from - begin;
            const auto scan = [this, &block, start](std::size_t a, std::size_t b)
            {
                if (block.data != nullptr)
                    return Block::scan(block.data + a, b - a);
                std::array<T, 2 * Block::cFanOut> numbers;
                compute(start + a, std::span(numbers).first(b - a));
                return Block::scan(numbers.data(), b - a);
            };
            block.fold(begin, begin + n, bounds, scan);
            from += n;
        }
        return bounds;
    }

    /// Reads what stands at an edge of a range: most of the time would be spent waiting for it, and reads that need
    /// nothing of each other wait together. Mere prefetches of pages that were not used lately bring nothing.
    void touch(std::size_t index) const
    {
        const std::size_t place = std::clamp(index, first, size) - first;
        if (place / Block::cSize >= blocks.size())
            return;
        const Block& block = blocks[place / Block::cSize];
        std::size_t at = place % Block::cSize;
        if (block.data != nullptr)
            touchGroup(std::span(block.data, block.size), at);
        // All of the levels above these two is in the cache.
        for (std::size_t level = 0; level < 2; ++level)
        {
            at /= Block::cFanOut;
            touchGroup(std::span<const Bounds>(block.levels[level]), at);
        }
    }

    /// Of a group of 16, both sides of an edge matter.
    template <typename Value>
    static void touchGroup(std::span<const Value> values, std::size_t at)
    {
        const std::size_t begin = at / Block::cFanOut * Block::cFanOut;
        const std::size_t end = std::min(begin + Block::cFanOut, values.size());
        if (begin >= end)
            return;
        const auto* const bytes = reinterpret_cast<const volatile char*>(values.data());
        for (std::size_t i = begin * sizeof(Value); i < end * sizeof(Value); i += cLine)
            static_cast<void>(bytes[i]);
        static_cast<void>(bytes[end * sizeof(Value) - 1]);
    }

    void getRanges(std::span<const std::size_t> edges, std::span<Range> ranges) const override
    {
        const bool areFar = edges.back() - edges.front() > cInCache;
        for (std::size_t i = 0; i < ranges.size(); ++i)
        {
            if (areFar && i % cAtOnce == 0)
                for (const std::size_t edge : edges.subspan(i, std::min(cAtOnce + 1, edges.size() - i)))
                    touch(edge);
            const std::size_t from = std::clamp(edges[i], first, size) - first;
            const std::size_t end = std::clamp(edges[i + 1], first + from, size) - first;
            const Bounds bounds = boundsOf(from, end);
            ranges[i] = {static_cast<double>(bounds.low), -static_cast<double>(bounds.minusHigh),
                         from < end ? static_cast<double>(at(from)) : cNone,
                         from < end ? static_cast<double>(at(end - 1)) : cNone};
        }
    }

    std::size_t getMemory() const override
    {
        std::size_t nBytes = sizeof(*this) + base.capacity() * sizeof(T);
        for (const Block& block : blocks)
        {
            nBytes += sizeof(Block) + block.own.capacity() * sizeof(T);
            if (block.data != nullptr && block.own.empty() && base.empty())
                nBytes += block.size * sizeof(T);
            for (const std::vector<Bounds>& level : block.levels)
                nBytes += level.capacity() * sizeof(Bounds);
        }
        return nBytes;
    }

    std::vector<T> base; // what was taken over
    std::deque<Block> blocks;
    Function function;
    std::size_t limit = 0;
    T last = -std::numeric_limits<T>::infinity();
};

Samples::Samples()
    : Samples(std::vector<double>())
{
}

Samples::Samples(std::unique_ptr<Column> pColumn)
    : _pColumn(std::move(pColumn))
{
}

Samples::Samples(std::vector<double> values)
    : _pColumn(std::make_unique<Blocks<double>>(std::move(values)))
{
}

Samples::Samples(std::vector<float> values)
    : _pColumn(std::make_unique<Blocks<float>>(std::move(values)))
{
}

Samples::Samples(std::span<const double> values)
    : _pColumn(std::make_unique<Blocks<double>>(values))
{
}

Samples::Samples(std::span<const float> values)
    : _pColumn(std::make_unique<Blocks<float>>(values))
{
}

Samples::Samples(std::initializer_list<double> values)
    : Samples(std::vector<double>(values))
{
}

Samples Samples::computed(std::size_t n, Function function)
{
    return Samples(std::make_unique<Blocks<double>>(n, std::move(function)));
}

Samples Samples::sumOf(const Samples& a, const Samples& b, double factor)
{
    if (!a._pColumn || !b._pColumn)
        return {};
    // Columns stay where they are when their samples move.
    return computed(std::min(a.size(), b.size()),
                    [pA = a._pColumn.get(), pB = b._pColumn.get(), factor](std::size_t first, std::span<double> values)
                    {
                        pA->read(first, values);
                        std::array<double, 256> others;
                        for (std::size_t at = 0; at < values.size(); at += others.size())
                        {
                            const std::size_t n = std::min(others.size(), values.size() - at);
                            pB->read(first + at, std::span(others).first(n));
                            for (std::size_t i = 0; i < n; ++i)
                                values[at + i] += factor * others[i];
                        }
                    });
}

Samples::~Samples() = default;

Samples::Samples(Samples&& other) noexcept
    : _pColumn(std::exchange(other._pColumn, nullptr))
{
}

Samples& Samples::operator=(Samples&& other) noexcept
{
    if (this != &other)
        _pColumn = std::move(other._pColumn);
    return *this;
}

void Samples::append(double value) { append(std::span<const double>(&value, 1)); }

void Samples::append(std::span<const double> values)
{
    if (!_pColumn)
        *this = Samples();
    _pColumn->append(values);
}

void Samples::append(std::span<const float> values)
{
    if (!_pColumn)
        *this = Samples();
    _pColumn->append(values);
}

void Samples::setLimit(std::size_t n)
{
    if (_pColumn)
        _pColumn->setLimit(n);
}

void Samples::clear()
{
    if (_pColumn)
        _pColumn->clear();
}

std::size_t Samples::size() const { return _pColumn ? _pColumn->size : 0; }

std::size_t Samples::getFirst() const { return _pColumn ? _pColumn->first : 0; }

double Samples::operator[](std::size_t index) const
{
    double value = cNone;
    read(index, std::span(&value, 1));
    return value;
}

void Samples::read(std::size_t first, std::span<double> values) const
{
    if (_pColumn)
        _pColumn->read(first, values);
    else
        std::fill(values.begin(), values.end(), cNone);
}

Samples::Range Samples::getRange(std::size_t first, std::size_t end) const
{
    const std::array<std::size_t, 2> edges{first, end};
    Range range;
    getRanges(edges, std::span(&range, 1));
    return range;
}

void Samples::getRanges(std::span<const std::size_t> edges, std::span<Range> ranges) const
{
    TD_ASSERT(edges.size() == ranges.size() + 1);
    if (_pColumn)
        return _pColumn->getRanges(edges, ranges);
    const double infinity = std::numeric_limits<double>::infinity();
    std::fill(ranges.begin(), ranges.end(), Range{infinity, -infinity, cNone, cNone});
}

bool Samples::isRising() const { return !_pColumn || _pColumn->isRising; }

// Places are often nearly even: a guess by the ends of what is left, then its neighbours, and halves where that fails.
std::size_t Samples::lowerBound(double value, std::size_t from) const
{
    std::size_t low = std::max(from, getFirst()), high = size();
    bool isGuessed = true;
    while (low < high)
    {
        std::size_t middle = low + (high - low) / 2;
        if (isGuessed && high - low > 8)
        {
            const double a = (*this)[low], b = (*this)[high - 1];
            if (a >= value)
                return low;
            if (b < value)
                return high;
            const double share = (value - a) / (b - a) * static_cast<double>(high - 1 - low);
            middle = low + std::min(static_cast<std::size_t>(std::max(0.0, share)), high - 1 - low);
        }
        isGuessed = !isGuessed;
        if ((*this)[middle] < value)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

std::size_t Samples::getMemory() const { return _pColumn ? _pColumn->getMemory() : 0; }

} // namespace gui::draw
