#include <gui/draw/Upload.h>

#include "DrawingImpl.h"

#include <gui/ZavObject.h>
#include <gui/gl/View.h>

#include <td/Assert.h>
#include <vo/Log.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <stop_token>
#include <thread>
#include <utility>
#include <variant>

namespace gui::draw
{

namespace
{

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

// Between two pieces: with the budget it is a frame of sixty a second.
constexpr std::chrono::milliseconds cPause(12);

const char* messageOf(const std::exception_ptr& pError, std::string& text)
{
    try
    {
        std::rethrow_exception(pError);
    }
    catch (const std::exception& error)
    {
        text = error.what();
    }
    catch (...)
    {
        text = "something unknown";
    }
    return text.c_str();
}

} // namespace

/// A call of add or run.
struct Upload::Shapes::Job
{
    // The thread's own, once it runs.
    std::function<void(Shapes&)> prepare;
    std::function<std::function<void()>()> prepareOther;
    Drawing::Impl* pDrawing = nullptr; // as long as there is a life
    std::weak_ptr<const char> life;
    Drawing::ID group = 0;
    double tolerance = 0;
    // Behind the mutex of the queue.
    bool isCancelled = false;
    std::size_t nExpected = 0;
    std::size_t nGiven = 0;
};

/// What the two threads have between them, and the thread's own tools.
struct Upload::Shapes::Maker
{
    struct Shape
    {
        ShapeGeometry geometry;
        std::optional<Stroke> stroke;
        FillRule rule;
        Paint paint;
        std::uint64_t tag;
    };
    struct Text
    {
        Drawing::Point at;
        TextLayout layout;
        TextPlacement placement;
        std::uint64_t tag;
    };
    using Call = std::function<void()>;
    struct End
    {
    };
    struct Piece
    {
        std::shared_ptr<Job> pJob;
        std::variant<Shape, Text, Call, std::exception_ptr, End> content;
    };

    /// @return false when the job was cancelled; the piece is dropped then
    bool give(const std::shared_ptr<Job>& pJob, decltype(Piece::content)&& content);
    void expect(Job& job, std::size_t nShapes);
    bool isCancelled(const Job& job)
    {
        const std::lock_guard lock(mutex);
        return job.isCancelled;
    }

    std::mutex mutex;
    std::condition_variable_any changed;
    std::deque<std::shared_ptr<Job>> jobs; // that have not begun
    std::shared_ptr<Job> pRunning;
    std::deque<Piece> pieces;
    // Handed over, for the worker to free: giving memory back to the system can take longer than a frame.
    std::vector<Piece> spent;
    std::size_t nKnown = 0; // pieces, since there was nothing to do
    bool isAsked = false;   // the GUI thread, to take some
    Clock::time_point next; // not before
    ShapeBuilder builder;   // the worker's
};

/// The GUI thread's side.
struct Upload::Impl : std::enable_shared_from_this<Upload::Impl>
{
    using Job = Shapes::Job;
    using Maker = Shapes::Maker;

    void start();
    void stop();
    void add(const std::shared_ptr<Job>& pJob);
    void work(const std::stop_token& stop);
    void perform(const std::shared_ptr<Job>& pJob);
    void pace(const std::stop_token& stop, const std::weak_ptr<Impl>& self);
    void handOver();
    bool takeOne();
    void put(Maker::Piece& piece);
    void fail(const std::exception_ptr& pError) const;
    double progress();

    Maker maker;
    std::weak_ptr<gl::View*> view;
    std::function<void(double)> onProgress;
    std::function<void(std::exception_ptr)> onError;
    Milliseconds budget{4};
    std::size_t nTaken = 0;
    std::size_t nJobs = 0; // that have not ended
    std::jthread worker;   // runs the functions
    std::jthread pacer;    // asks the GUI thread to take pieces, once it has had time for other things
};

bool Upload::Shapes::Maker::give(const std::shared_ptr<Job>& pJob, decltype(Piece::content)&& content)
{
    const bool isShape = content.index() < 2;
    std::vector<Piece> freed;
    {
        const std::lock_guard lock(mutex);
        freed.swap(spent);
        if (pJob->isCancelled)
            return false;
        pieces.push_back({pJob, std::move(content)});
        // Each job is known to have one piece, its end.
        if (isShape && ++pJob->nGiven > pJob->nExpected)
            ++nKnown;
    }
    changed.notify_all();
    return true;
}

void Upload::Shapes::Maker::expect(Job& job, std::size_t nShapes)
{
    const std::lock_guard lock(mutex);
    if (job.isCancelled)
        return;
    const std::size_t before = std::max(job.nExpected, job.nGiven);
    job.nExpected = nShapes;
    nKnown += std::max(job.nExpected, job.nGiven) - before;
}

bool Upload::Shapes::fill(const Path& path, const Paint& paint, FillRule rule, std::uint64_t tag)
{
    if (isCancelled())
        return false;
    Maker::Shape shape{{}, {}, rule, paint, tag};
    _maker.builder.makeFill(path, rule, _pJob->tolerance, shape.geometry);
    return _maker.give(_pJob, std::move(shape));
}

bool Upload::Shapes::stroke(const Path& path, const Stroke& stroke, const Paint& paint, std::uint64_t tag)
{
    if (isCancelled())
        return false;
    Maker::Shape shape{{}, stroke, FillRule::NonZero, paint, tag};
    _maker.builder.makeStroke(path, stroke, _pJob->tolerance, shape.geometry);
    return _maker.give(_pJob, std::move(shape));
}

bool Upload::Shapes::text(Drawing::Point at, TextLayout layout, const TextPlacement& placement, std::uint64_t tag)
{
    return _maker.give(_pJob, Maker::Text{at, std::move(layout), placement, tag});
}

bool Upload::Shapes::text(Drawing::Point at, std::string_view text, const TextStyle& style,
                          const TextPlacement& placement, std::uint64_t tag)
{
    return !isCancelled() && this->text(at, TextLayout(text, style), placement, tag);
}

void Upload::Shapes::expect(std::size_t nShapes) { _maker.expect(*_pJob, nShapes); }

bool Upload::Shapes::isCancelled() const { return _maker.isCancelled(*_pJob); }

void Upload::Impl::start()
{
    if (worker.joinable())
        return;
    worker = std::jthread([this](const std::stop_token& stop) { work(stop); });
    pacer = std::jthread([this, self = weak_from_this()](const std::stop_token& stop) { pace(stop, self); });
}

void Upload::Impl::stop()
{
    worker = {};
    pacer = {};
}

void Upload::Impl::add(const std::shared_ptr<Job>& pJob)
{
    start();
    {
        const std::lock_guard lock(maker.mutex);
        // A count of its own for what begins when all is done.
        if (std::exchange(nJobs, nJobs + 1) == 0)
            maker.nKnown = nTaken = 0;
        ++maker.nKnown;
        maker.jobs.push_back(pJob);
    }
    maker.changed.notify_all();
}

void Upload::Impl::work(const std::stop_token& stop)
{
    while (true)
    {
        std::shared_ptr<Job> pJob;
        std::vector<Maker::Piece> freed;
        {
            std::unique_lock lock(maker.mutex);
            maker.changed.wait(lock, stop, [this] { return !maker.jobs.empty() || !maker.spent.empty(); });
            if (stop.stop_requested())
                return;
            freed.swap(maker.spent);
            if (maker.jobs.empty())
                continue;
            pJob = std::move(maker.jobs.front());
            maker.jobs.pop_front();
            maker.pRunning = pJob;
        }
        perform(pJob);
        const std::lock_guard lock(maker.mutex);
        maker.pRunning.reset();
    }
}

void Upload::Impl::perform(const std::shared_ptr<Job>& pJob)
{
    try
    {
        Shapes shapes(pJob, maker);
        if (pJob->prepare)
            pJob->prepare(shapes);
        else if (Maker::Call call = pJob->prepareOther())
            maker.give(pJob, std::move(call));
    }
    catch (...)
    {
        maker.give(pJob, std::current_exception());
    }
    // What they hold goes here, and not between two frames.
    pJob->prepare = {};
    pJob->prepareOther = {};
    maker.expect(*pJob, 0); // no more than there were
    maker.give(pJob, Maker::End());
}

void Upload::Impl::pace(const std::stop_token& stop, const std::weak_ptr<Impl>& self)
{
    while (true)
    {
        std::unique_lock lock(maker.mutex);
        maker.changed.wait(lock, stop, [this] { return !maker.pieces.empty() && !maker.isAsked; });
        maker.changed.wait_until(lock, stop, maker.next, [] { return false; });
        if (stop.stop_requested())
            return;
        maker.isAsked = true;
        lock.unlock();
        const auto call = [self]
        {
            if (const std::shared_ptr<Impl> pImpl = self.lock())
                pImpl->handOver();
        };
        gui::ZavObject::asyncCall(new std::function<void()>(call), true);
    }
}

void Upload::Impl::handOver()
{
    struct Turn
    {
        Impl& impl;
        ~Turn() // also when a function of the user's throws
        {
            {
                const std::lock_guard lock(impl.maker.mutex);
                impl.maker.isAsked = false;
                impl.maker.next = Clock::now() + cPause;
            }
            impl.maker.changed.notify_all();
        }
    };
    const Turn turn{*this};
    const Clock::time_point begin = Clock::now();
    while (takeOne() && Clock::now() - begin < budget)
    {
    }
    if (const std::shared_ptr<gl::View*> pView = view.lock())
        (*pView)->reRender();
    // The handler may replace itself.
    if (const std::function<void(double)> handler = onProgress)
        handler(progress());
}

bool Upload::Impl::takeOne()
{
    std::optional<Maker::Piece> piece;
    {
        const std::lock_guard lock(maker.mutex);
        if (maker.pieces.empty())
            return false;
        piece.emplace(std::move(maker.pieces.front()));
        maker.pieces.pop_front();
    }
    put(*piece);
    // What the user's functions hold goes on their thread.
    if (piece->content.index() < 2)
    {
        const std::lock_guard lock(maker.mutex);
        maker.spent.push_back(std::move(*piece));
    }
    return true;
}

void Upload::Impl::put(Maker::Piece& piece)
{
    if (auto* const pCall = std::get_if<Maker::Call>(&piece.content))
        return (*pCall)();
    if (const auto* const pError = std::get_if<std::exception_ptr>(&piece.content))
        return fail(*pError);
    ++nTaken;
    if (std::holds_alternative<Maker::End>(piece.content))
    {
        --nJobs;
        return;
    }
    const Job& job = *piece.pJob;
    const std::shared_ptr<const char> life = job.life.lock();
    if (life == nullptr)
        return;
    Drawing::Impl& drawing = *job.pDrawing;
    const Drawing::Impl::Item* const pGroup = drawing.find(job.group);
    if (pGroup == nullptr)
        return;
    struct InGroup
    {
        Drawing::Impl& in;
        std::uint32_t before;
        ~InGroup() { in.group = before; }
    };
    const InGroup inGroup{drawing, std::exchange(drawing.group, drawing.slotOf(*pGroup))};
    if (auto* const pText = std::get_if<Maker::Text>(&piece.content))
    {
        drawing.find(drawing.addText(pText->at, pText->layout, pText->placement))->tag = pText->tag;
        return;
    }
    auto& shape = std::get<Maker::Shape>(piece.content);
    using Kind = Drawing::Impl::Kind;
    Drawing::Impl::Item& item = drawing.addShape(shape.stroke ? Kind::Stroke : Kind::Fill, shape.paint);
    item.tag = shape.tag;
    item.rule = shape.rule;
    if (shape.stroke)
        item.pStroke = std::make_unique<Stroke>(*shape.stroke);
    std::swap(drawing.geometry, shape.geometry);
    drawing.setGeometry(item);
}

void Upload::Impl::fail(const std::exception_ptr& pError) const
{
    std::string text;
    if (const std::function<void(std::exception_ptr)> handler = onError)
        handler(pError);
    else
        vo::dbgLog("Error! Upload: a function threw: %s", messageOf(pError, text));
}

double Upload::Impl::progress()
{
    if (nJobs == 0)
        return 1;
    const std::lock_guard lock(maker.mutex);
    return std::min(static_cast<double>(nTaken) / static_cast<double>(std::max<std::size_t>(maker.nKnown, 1)), 1.0);
}

Upload::Upload(const gl::View& view)
    : _pImpl(std::make_shared<Impl>())
{
    _pImpl->view = view.getLife();
}

Upload::~Upload()
{
    _pImpl->onProgress = {};
    _pImpl->onError = {};
    cancel();
    _pImpl->stop();
}

Drawing::ID Upload::add(Drawing& drawing, std::function<void(Shapes&)> prepare)
{
    TD_ASSERT(prepare != nullptr, 0);
    const auto pJob = std::make_shared<Shapes::Job>();
    pJob->prepare = std::move(prepare);
    pJob->pDrawing = drawing._pImpl.get();
    pJob->life = drawing._pImpl->pLife;
    pJob->group = drawing.beginGroup();
    drawing.endGroup();
    pJob->tolerance = drawing._pImpl->tolerance;
    _pImpl->add(pJob);
    return pJob->group;
}

void Upload::run(std::function<std::function<void()>()> prepare)
{
    TD_ASSERT(prepare != nullptr);
    const auto pJob = std::make_shared<Shapes::Job>();
    pJob->prepareOther = std::move(prepare);
    _pImpl->add(pJob);
}

void Upload::cancel()
{
    Shapes::Maker& maker = _pImpl->maker;
    // What they hold goes when nobody waits for the mutex.
    std::deque<std::shared_ptr<Shapes::Job>> jobs;
    std::deque<Shapes::Maker::Piece> pieces;
    const std::lock_guard lock(maker.mutex);
    jobs.swap(maker.jobs);
    pieces.swap(maker.pieces);
    if (maker.pRunning)
        maker.pRunning->isCancelled = true;
    _pImpl->nJobs = 0;
}

bool Upload::isBusy() const { return _pImpl->nJobs > 0; }

double Upload::getProgress() const { return _pImpl->progress(); }

void Upload::setOnProgress(std::function<void(double progress)> handler) { _pImpl->onProgress = std::move(handler); }

void Upload::setOnError(std::function<void(std::exception_ptr error)> handler) { _pImpl->onError = std::move(handler); }

void Upload::setBudget(double milliseconds) { _pImpl->budget = Milliseconds(milliseconds > 0 ? milliseconds : 0); }

} // namespace gui::draw
