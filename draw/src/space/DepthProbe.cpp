#include <gui/draw/DepthProbe.h>

#include <gui/gl/Context.h>
#include <gui/gl/Program.h>
#include <gui/gl/StateGuard.h>
#include <gui/gl/View.h>

#include <epoxy/gl.h>

#include <glm/geometric.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <thread>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cSkin = 3;                         // in points: of what is before a point and does not hide it
constexpr double cHalfSquare = 1.5;                 // in pixels
constexpr double cJumpCosine = 0.985;               // of ten degrees that the eye turns from one frame to the next
constexpr double cFarOff = 100;                     // in points: an answer from there is worth nothing here
constexpr std::size_t cMostBatches = 3;             // frames that the GPU may be behind
constexpr std::size_t cSquaresAtOnce = 64;          // as in the shader
constexpr std::chrono::milliseconds cPause(1);      // between two looks
constexpr std::chrono::milliseconds cPatience(100); // until a look waits

GLenum queryTarget()
{
    constexpr int cFirstVersion = 33, cFirstES = 30;
    return gl::Context::isAtLeast(cFirstVersion, cFirstES) || epoxy_has_gl_extension("GL_ARB_occlusion_query2")
               ? GL_ANY_SAMPLES_PASSED
               : GL_SAMPLES_PASSED;
}

// Of the depth buffer, what a distance is; beyond its ends as at the ends.
float depthAt(const Eye& eye, double distance)
{
    const glm::dmat4& p = eye.getProjection();
    const double z = p[3][2] - p[2][2] * distance, w = p[3][3] - p[2][3] * distance;
    const bool isReversed = eye.getDepth() == Eye::Depth::Reversed;
    const double lowest = isReversed ? 0 : -1, nearest = isReversed ? 1 : -1;
    return static_cast<float>(w > 0 ? std::clamp(z / w, lowest, 1.0) : nearest);
}

} // namespace

class DepthProbe::ProbeProgram final : public gl::Program
{
public:
    bool link() { return Program::link(":draw/probe.vert", ":draw/probe.frag"); }

    int squares = -1;
    int halfSize = -1;

protected:
    void onLinked() override
    {
        squares = getUniformLocation("squares");
        halfSize = getUniformLocation("halfSize");
    }
};

DepthProbe::DepthProbe(const gl::View* pView)
    : _pView(pView)
    , _pPolling(std::make_shared<bool>(false))
{
}

DepthProbe::~DepthProbe() { forget(); }

DepthProbe::ID DepthProbe::add(const glm::dvec3& at, double tolerance)
{
    _points.emplace(++_lastID, Point{.at = at, .tolerance = tolerance > 0 ? tolerance : 0, .place = {}});
    return _lastID;
}

bool DepthProbe::move(ID id, const glm::dvec3& at)
{
    const auto found = _points.find(id);
    if (found == _points.end())
        return false;
    found->second.at = at;
    return true;
}

bool DepthProbe::setAsked(ID id, bool isAsked)
{
    const auto found = _points.find(id);
    if (found == _points.end())
        return false;
    found->second.isAsked = isAsked;
    return true;
}

bool DepthProbe::remove(ID id) { return _points.erase(id) != 0; }

bool DepthProbe::isHidden(ID id) const
{
    const auto found = _points.find(id);
    return found != _points.end() && (found->second.isAnswered ? found->second.isHidden : found->second.underWay != 0);
}

void DepthProbe::onContext(gl::ContextResource::Event event)
{
    if (event == gl::ContextResource::Event::Restored)
    {
        // The names are gone with their context.
        _free.clear();
        for (Batch& batch : _batches)
            batch.queries.clear();
    }
    forget();
}

// What is in GL. Answers stay.
void DepthProbe::forget()
{
    for (const Batch& batch : _batches)
    {
        for (const Query& query : batch.queries)
            _home.deleteName(gl::CurrentContext::Kind::Query, query.name);
        for (const Question& question : batch.questions)
            if (const auto found = _points.find(question.id); found != _points.end())
                --found->second.underWay;
    }
    for (const unsigned int name : _free)
        _home.deleteName(gl::CurrentContext::Kind::Query, name);
    _batches.clear();
    _free.clear();
}

bool DepthProbe::prepare()
{
    if (!gl::CurrentContext::isThere("DepthProbe::begin"))
        return false;
    if (_home.getID() != gl::CurrentContext::getID())
    {
        forget();
        _pProgram.reset();
        _isRefused = false;
        _home.set(gl::CurrentContext::getID());
    }
    if (!_pProgram && !_isRefused)
    {
        _pProgram = std::make_unique<ProbeProgram>();
        _isRefused = !_pProgram->link();
    }
    return !_isRefused && _pProgram->isOK();
}

void DepthProbe::begin(const Eye& eye)
{
    _isOpen = _isJump = false;
    if (_points.empty() || !eye.isValid() || !prepare())
        return;
    // A GPU that is that far behind is waited for.
    collect(_batches.size() < cMostBatches ? 0 : _batches.size() + 1 - cMostBatches);
    Batch batch;
    std::size_t nUseless = 0;
    const td::Size<double>& size = eye.getSize();
    for (auto& [id, point] : _points)
    {
        const auto seen = point.isAsked ? eye.project(point.at) : std::nullopt;
        if (!seen || seen->x < 0 || seen->y < 0 || seen->x > size.width || seen->y > size.height ||
            !eye.getClipping().isSeen(point.at))
            continue;
        const td::Point<double> place(seen->x, seen->y);
        nUseless += point.isAnswered && std::abs(place.x - point.place.x) < cFarOff &&
                            std::abs(place.y - point.place.y) < cFarOff
                        ? 0
                        : 1;
        ++point.underWay;
        batch.questions.push_back({id,
                                   {2 * place.x / size.width - 1, 1 - 2 * place.y / size.height},
                                   place,
                                   seen->z,
                                   cSkin * eye.getSizeAt(point.at) + point.tolerance});
    }
    if (batch.questions.empty())
        return;
    const glm::dvec3 turned(glm::dot(eye.getRight(), _eye.getRight()), glm::dot(eye.getUp(), _eye.getUp()),
                            glm::dot(eye.getDirection(), _eye.getDirection()));
    _isJump = 2 * nUseless > batch.questions.size() || std::min({turned.x, turned.y, turned.z}) < cJumpCosine;
    _eye = eye;
    _isOpen = true;
    _batches.push_back(std::move(batch));
}

void DepthProbe::ask(const Eye& eye)
{
    // The sun's eye, which shadows are drawn with, looks from elsewhere.
    if (!_isOpen || _home.getID() != gl::CurrentContext::getID() || eye.getPosition() != _eye.getPosition() ||
        eye.getRotation() != _eye.getRotation())
        return;
    using Flag = gl::Context::Flag;
    const gl::StateGuard guard;
    for (const Flag flag : {Flag::CullFace, Flag::StencilTest, Flag::Blend, Flag::ScissorTest, Flag::PolygonOffset})
        gl::Context::disable(flag);
    gl::Context::enable(Flag::DepthTest);
    gl::Context::setDepthBufferFunction(eye.getNearerOrEqual());
    gl::Context::maskDepthBuffer(false);
    gl::Context::maskColorBuffer(false, false, false, false);
    gl::Context::setPolygonMode(gl::Context::PolygonMode::Fill);
    _pProgram->activate();
    _pProgram->setUniformValue(static_cast<unsigned int>(_pProgram->halfSize),
                               glm::vec2(2 * cHalfSquare / (eye.getSize().width * eye.getScale()),
                                         2 * cHalfSquare / (eye.getSize().height * eye.getScale())));
    std::array<glm::vec4, cSquaresAtOnce> squares{};
    std::array<std::uint32_t, cSquaresAtOnce> numbers{};
    std::size_t n = 0;
    const std::vector<Question>& questions = _batches.back().questions;
    const double nearest = eye.getNearest();
    for (std::uint32_t i = 0; i < questions.size(); ++i)
    {
        const Question& question = questions[i];
        // What a farther slice has cannot be before it; of a nearer one everything is.
        if (question.distance < nearest)
            continue;
        numbers[n] = i;
        squares[n++] = {question.ndc, depthAt(eye, question.distance - question.reach), 1};
        if (n == cSquaresAtOnce)
            draw(squares, numbers);
        n %= cSquaresAtOnce;
    }
    draw(std::span(squares).first(n), std::span(numbers).first(n));
}

void DepthProbe::draw(std::span<const glm::vec4> squares, std::span<const std::uint32_t> questions)
{
    if (squares.empty())
        return;
    if (_free.size() < squares.size())
    {
        const std::size_t nBefore = _free.size();
        _free.resize(nBefore + cSquaresAtOnce);
        glGenQueries(static_cast<GLsizei>(cSquaresAtOnce), &_free[nBefore]);
    }
    glUniform4fv(_pProgram->squares, static_cast<GLsizei>(squares.size()), glm::value_ptr(squares.front()));
    const GLenum target = queryTarget();
    for (std::uint32_t i = 0; i < squares.size(); ++i)
    {
        const unsigned int name = _free.back();
        _free.pop_back();
        const gl::Quads::Range square{i, 1};
        glBeginQuery(target, name);
        _quads.draw(std::span(&square, 1));
        glEndQuery(target);
        _batches.back().queries.push_back({questions[i], name});
    }
}

void DepthProbe::settle()
{
    if (!std::exchange(_isOpen, false))
        return;
    collect(_isJump || _isWaiting ? _batches.size() : 0);
    _asked = std::chrono::steady_clock::now();
    if (!_batches.empty())
        schedule();
}

// Takes answers, those of the oldest frame first. @param nWaits  frames to wait for
void DepthProbe::collect(std::size_t nWaits)
{
    const auto isThere = [](const Query& query)
    {
        GLuint isAvailable = 0;
        glGetQueryObjectuiv(query.name, GL_QUERY_RESULT_AVAILABLE, &isAvailable);
        return isAvailable != 0;
    };
    std::size_t nDone = 0;
    for (Batch& batch : _batches)
    {
        // Whoever asks for the last one hardly waits for those before.
        if (nDone >= nWaits && !batch.queries.empty() && !isThere(batch.queries.back()))
            break;
        std::vector<bool> isBehind(batch.questions.size(), false);
        for (const Query& query : batch.queries)
        {
            GLuint passed = 0;
            glGetQueryObjectuiv(query.name, GL_QUERY_RESULT, &passed);
            isBehind[query.question] = isBehind[query.question] || passed == 0;
            _free.push_back(query.name);
        }
        for (std::size_t i = 0; i < batch.questions.size(); ++i)
        {
            const auto found = _points.find(batch.questions[i].id);
            if (found == _points.end())
                continue;
            Point& point = found->second;
            _version += !point.isAnswered || point.isHidden != isBehind[i] ? 1 : 0;
            point.isAnswered = true;
            point.isHidden = isBehind[i];
            point.place = batch.questions[i].place;
            --point.underWay;
        }
        ++nDone;
    }
    _batches.erase(_batches.begin(), _batches.begin() + static_cast<std::ptrdiff_t>(nDone));
}

// Looks once more when the loop has its next turn: no frame is drawn for that.
void DepthProbe::schedule()
{
    if (_pView == nullptr || std::exchange(*_pPolling, true))
        return;
    const std::weak_ptr<bool> pThere = _pPolling;
    ZavObject::asyncCall(new std::function<void()>(
                             [this, pThere]
                             {
                                 if (const auto pPolling = pThere.lock())
                                 {
                                     *pPolling = false;
                                     poll();
                                 }
                             }),
                         true);
}

void DepthProbe::poll()
{
    if (_pView == nullptr || _batches.empty())
        return;
    _pView->makeCurrentContext();
    if (_home.getID() != gl::CurrentContext::getID())
        return;
    const std::uint64_t version = _version;
    collect(std::chrono::steady_clock::now() - _asked > cPatience ? _batches.size() : 0);
    if (_version != version)
        _pView->reRender();
    if (_batches.empty())
        return;
    std::this_thread::sleep_for(cPause);
    schedule();
}

} // namespace gui::draw
