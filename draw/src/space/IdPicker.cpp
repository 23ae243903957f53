#include <gui/draw/IdPicker.h>

#include "DepthReader.h"

#include "../path/FinitePoint.h"

#include <gui/draw/DepthCanvas.h>
#include <gui/gl/Context.h>
#include <gui/gl/ContextResource.h>
#include <gui/gl/Framebuffer.h>
#include <gui/gl/StateGuard.h>

#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

namespace gui::draw
{

namespace
{

constexpr double cMostReach = 32; // in points
constexpr int cMostReachPixels = 127;
constexpr std::size_t cMostSlices = 8; // of the depth
// Where a fence says nothing for so many frames, reading waits for the GPU.
constexpr int cMostFrames = 16;

bool hasFences()
{
    constexpr int cFirstVersion = 32;
    return gl::Context::isAtLeast(cFirstVersion, 30) || epoxy_has_gl_extension("GL_ARB_sync");
}

} // namespace

struct IdPicker::Impl
{
    /// What was drawn, and is on its way.
    struct Sent
    {
        td::Point<double> point;
        Eye eye;               // that it was asked of
        std::vector<Eye> eyes; // of the pixels, in slices of the depth, from the farthest one
        int nPixels = 0;       // of a side
        int nFrames = 0;       // since
    };

    explicit Impl(double points)
        : reach(points > 0 ? std::min(points, cMostReach) : 0)
    {
    }
    ~Impl() { release(); }

    void ask(const td::Point<double>& point)
    {
        if (isFinitePoint(point))
            asked = point;
    }

    void forget()
    {
        deleteFence();
        sent.reset();
        asked.reset();
    }

    void fail(const char* reason)
    {
        if (lastFailure != reason)
            vo::dbgLog("Error! IdPicker::update: %s!", reason);
        lastFailure = reason;
        forget();
    }

    // A fence of another context goes with that.
    void deleteFence()
    {
        if (fence != nullptr && home.getID() == gl::CurrentContext::getID())
            glDeleteSync(fence);
        fence = nullptr;
    }

    void release()
    {
        deleteFence();
        home.deleteName(gl::CurrentContext::Kind::Buffer, buffer);
        home.set(0);
        buffer = 0;
        nBytes = 0;
        framebuffer.release();
    }

    // What was drawn where its answer is not to be had any more.
    void askAgain()
    {
        if (sent && !asked)
            asked = sent->point;
        sent.reset();
    }

    void onContext(gl::ContextResource::Event event)
    {
        if (event == gl::ContextResource::Event::Restored)
        {
            fence = nullptr; // of the lost context, as the buffer is
            buffer = 0;
        }
        release();
        askAgain();
    }

    static std::size_t nIdBytes(int nPixels) { return std::size_t(4) * static_cast<std::size_t>(nPixels * nPixels); }

    bool prepare(int nPixels, std::size_t nSlices)
    {
        home.set(gl::CurrentContext::getID());
        const td::Size<int> size(nPixels, nPixels);
        if (!(framebuffer.getSize() == size) && !framebuffer.create(size, {.depth = gl::DepthBuffer::Size::Bits32}))
            return false;
        if (buffer == 0)
            glGenBuffers(1, &buffer);
        if (buffer == 0)
            return false;
        const std::size_t nNeeded = nSlices * 2 * nIdBytes(nPixels);
        if (nNeeded > nBytes)
        {
            glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
            glBufferData(GL_PIXEL_PACK_BUFFER, static_cast<GLsizeiptr>(nNeeded), nullptr, GL_STREAM_READ);
            glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
            nBytes = nNeeded;
        }
        return true;
    }

    // Ids, and depths behind them, to where a slice has them in the buffer.
    void copySlice(int nPixels, std::size_t slice)
    {
        const auto at = [](std::size_t offset) { return reinterpret_cast<void*>(offset); };
        const std::size_t n = nIdBytes(nPixels), first = slice * 2 * n;
        glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
        glReadPixels(0, 0, nPixels, nPixels, GL_RGBA, GL_UNSIGNED_BYTE, at(first));
        depths.read(nPixels, nPixels, at(first + n));
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    }

    void send(const Eye& eye, const DrawIds& drawIds)
    {
        using gl::Context;
        const double pixel = 1 / eye.getScale();
        const auto nReach = static_cast<int>(std::min(std::ceil(reach * eye.getScale()), double(cMostReachPixels)));
        Sent made{.point = *asked, .eye = eye, .eyes = {}, .nPixels = 2 * nReach + 1};
        const double half = made.nPixels * pixel / 2;
        const Eye part =
            eye.getPart({made.point.x - half, made.point.y - half, made.point.x + half, made.point.y + half});
        const std::size_t nSlices = eye.getDepth() == Eye::Depth::Sliced ? cMostSlices : 1;
        asked.reset();
        const gl::StateGuard guard;
        if (!prepare(made.nPixels, nSlices))
            return fail("there is no framebuffer or no buffer for it");
        const gl::Framebuffer::Drawing drawing(framebuffer);
        if (!drawing)
            return fail("its framebuffer cannot be drawn into");
        for (const Context::Flag flag : {Context::Flag::CullFace, Context::Flag::StencilTest, Context::Flag::Blend,
                                         Context::Flag::ScissorTest, Context::Flag::PolygonOffset})
            Context::disable(flag);
        Context::maskColorBuffer(true, true, true, true);
        DepthCanvas::Frame frame(canvas, part, true);
        while (const Eye* const pEye = made.eyes.size() < nSlices ? frame.next() : nullptr)
        {
            Context::clear(Context::Clear::Color, td::Color(0, 0, 0, 0));
            drawIds(*pEye);
            copySlice(made.nPixels, made.eyes.size());
            made.eyes.push_back(*pEye);
        }
        fence = hasFences() ? glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0) : nullptr;
        lastFailure = nullptr;
        sent = std::move(made);
    }

    bool isReady()
    {
        ++sent->nFrames;
        if (fence == nullptr || sent->nFrames > cMostFrames)
            return true;
        return glClientWaitSync(fence, GL_SYNC_FLUSH_COMMANDS_BIT, 0) != GL_TIMEOUT_EXPIRED;
    }

    Answer receive()
    {
        const Sent got = std::move(*sent);
        sent.reset();
        deleteFence();
        const auto n = static_cast<std::size_t>(got.nPixels * got.nPixels);
        std::vector<std::uint32_t> words(2 * n * got.eyes.size());
        glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
        const auto size = static_cast<GLsizeiptr>(4 * words.size());
        if (const void* const pBytes = glMapBufferRange(GL_PIXEL_PACK_BUFFER, 0, size, GL_MAP_READ_BIT))
        {
            std::memcpy(words.data(), pBytes, static_cast<std::size_t>(size));
            glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
        }
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
        Answer answer{.point = got.point, .id = 0, .place = std::nullopt};
        const int middle = got.nPixels / 2;
        int nearest = middle * middle + middle + 1; // squares of whole numbers within half a pixel more than the reach
        for (int y = 0; y < got.nPixels; ++y)
            for (int x = 0; x < got.nPixels; ++x)
            {
                const int dx = x - middle, dy = middle - y, square = dx * dx + dy * dy; // rows count from below
                const auto i = static_cast<std::size_t>(y * got.nPixels + x);
                if (square >= nearest)
                    continue;
                // The nearest slice that has something there.
                for (std::size_t slice = got.eyes.size(); slice-- > 0;)
                {
                    const Eye& eye = got.eyes[slice];
                    const auto depth = static_cast<double>(std::bit_cast<float>(words[2 * n * slice + n + i]));
                    if (depth == (eye.getDepth() == Eye::Depth::Reversed ? 0 : 1))
                        continue;
                    const std::array<unsigned char, 4> bytes =
                        std::bit_cast<std::array<unsigned char, 4>>(words[2 * n * slice + i]);
                    const std::uint32_t id = bytes[0] | std::uint32_t(bytes[1]) << 8 | std::uint32_t(bytes[2]) << 16 |
                                             std::uint32_t(bytes[3]) << 24;
                    if (id != 0)
                    {
                        nearest = square;
                        answer.id = id;
                        const double pixel = 1 / got.eye.getScale();
                        answer.place = got.eye.unproject({got.point.x + dx * pixel, got.point.y + dy * pixel},
                                                         eye.getDistanceOfDepth(depth));
                    }
                    break;
                }
            }
        return answer;
    }

    std::optional<Answer> update(const Eye& eye, const DrawIds& drawIds)
    {
        if (gl::CurrentContext::getID() == 0)
            return std::nullopt;
        if (home.getID() != gl::CurrentContext::getID())
        {
            release();
            askAgain();
        }
        std::optional<Answer> answer;
        if (sent && isReady())
            answer = receive();
        if (asked && !sent && eye.isValid())
            send(eye, drawIds);
        return answer;
    }

    double reach; // in points
    std::optional<td::Point<double>> asked;
    std::optional<Sent> sent;
    DepthCanvas canvas; // whose frames draw into what is bound
    gl::Framebuffer framebuffer;
    DepthReader depths;
    unsigned int buffer = 0;
    std::size_t nBytes = 0;
    GLsync fence = nullptr;
    const char* lastFailure = nullptr;
    gl::ContextResource home{
        [](void* pThis, gl::ContextResource::Event event) { static_cast<Impl*>(pThis)->onContext(event); }, this};
};

IdPicker::IdPicker(double reach)
    : _pImpl(std::make_unique<Impl>(reach))
{
}

IdPicker::~IdPicker() = default;

void IdPicker::ask(const td::Point<double>& point) { _pImpl->ask(point); }

void IdPicker::forget() { _pImpl->forget(); }

bool IdPicker::isWaiting() const { return _pImpl->asked || _pImpl->sent; }

std::optional<IdPicker::Answer> IdPicker::update(const Eye& eye, const DrawIds& drawIds)
{
    return _pImpl->update(eye, drawIds);
}

} // namespace gui::draw
