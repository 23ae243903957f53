// Edits of a dynamic buffer or a ring in any order, beside plain vectors: what GL has, how much of it a frame draws,
// and how many bytes were sent for it. Some are left to GL alone, from the beginning or later.

#include "Fuzz.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/OffscreenContext.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace fuzz::buffer
{

namespace
{

using namespace gui::gl;

struct PlainProgram final : Program
{
    void onLinked() override {}
};

/// Records of floats, or indices, each with whether GL lacks it.
template <typename T>
class Model
{
public:
    explicit Model(std::size_t nEach)
        : _nEach(nEach)
    {
    }

    std::size_t size() const { return _values.size() / _nEach; }
    std::size_t nFresh() const { return static_cast<std::size_t>(std::ranges::count(_isFresh, char(true))); }
    const std::vector<T>& values() const { return _values; }
    bool isFresh(std::size_t i) const { return _isFresh[i] != 0; }

    void insert(std::size_t at, const std::vector<T>& values)
    {
        _values.insert(_values.begin() + place(at * _nEach), values.begin(), values.end());
        _isFresh.insert(_isFresh.begin() + place(at), values.size() / _nEach, true);
    }
    void update(std::size_t at, const std::vector<T>& values)
    {
        std::ranges::copy(values, _values.begin() + place(at * _nEach));
        std::fill_n(_isFresh.begin() + place(at), values.size() / _nEach, true);
    }
    void remove(std::size_t at, std::size_t n)
    {
        _values.erase(_values.begin() + place(at * _nEach), _values.begin() + place((at + n) * _nEach));
        _isFresh.erase(_isFresh.begin() + place(at), _isFresh.begin() + place(at + n));
    }
    // In another context, which gets the others.
    void dropSent()
    {
        for (std::size_t i = size(); i-- > 0;)
            if (!isFresh(i))
                remove(i, 1);
        setAllFresh(false);
    }
    void setAllFresh(bool isFresh) { std::ranges::fill(_isFresh, char(isFresh)); }

private:
    static std::ptrdiff_t place(std::size_t i) { return static_cast<std::ptrdiff_t>(i); }

    std::size_t _nEach;
    std::vector<T> _values;
    std::vector<char> _isFresh;
};

class BufferWorld
{
public:
    BufferWorld(Input& input, OffscreenContext& context, Program& program)
        : _input(input)
        , _context(context)
        , _program(program)
        , _nFloats(1 + input.below(3))
        , _nRing(input.below(2) * (1 + input.below(60)))
        , _vertices(_nFloats)
    {
        _isInstanced = input.below(2) != 0;
        _nRing == 0 ? _buffer.setDynamic() : _buffer.setRing(_nRing);
        if (input.below(3) == 0)
            leaveToGL();
        const std::size_t room = input.below(80);
        initialize(1, room, input.below(2));
        _buffer.createCommand()->createDrawAll(Primitive::Points);
        FrameLedger::begin();
    }
    ~BufferWorld() { FrameLedger::end(); }

    void live()
    {
        while (_input.left() > 0)
            doNext();
        check();
    }

private:
    void initialize(std::size_t nCommands, std::size_t nVertices, std::size_t nIndices)
    {
        constexpr std::array cTypes{DataType::Float, DataType::Vec2, DataType::Vec3};
        const DataType type = cTypes[_nFloats - 1];
        if (_isInstanced)
            _buffer.init(nCommands, nVertices, nIndices, 1, {type}, {DataType::NormShort4}, {2});
        else
            _buffer.init(nCommands, nVertices, nIndices, {type});
    }

    std::vector<float> takeFloats(std::size_t n)
    {
        std::vector<float> values(n);
        std::ranges::generate(values, [this] { return ++_number; });
        return values;
    }
    std::vector<unsigned int> takeIndices(std::size_t n)
    {
        std::vector<unsigned int> indices(n);
        const unsigned int step = _input.below(50) == 0 ? 0x10000 : 1;
        std::ranges::generate(indices, [this, step] { return step * _input.below(100); });
        return indices;
    }

    void leaveToGL()
    {
        _buffer.setKeptForRestore(false);
        _isKept = false;
        _isWide = true;
        if (!_wasWide)
            _indices.setAllFresh(true);
    }

    // Takes a range of count elements.
    template <typename Act>
    void onRange(std::size_t count, const Act& act)
    {
        const std::size_t first = _input.below(255) % (count + 1);
        const std::size_t n = _input.below(40) % (count - first + 1);
        act(first, n);
    }

    template <typename T>
    void update(Model<T>& model, void (Buffer::*act)(std::size_t, const T*, std::size_t), const auto& take)
    {
        onRange(model.size(),
                [&](std::size_t first, std::size_t n)
                {
                    const std::vector<T> values = take(n);
                    (_buffer.*act)(first, values.data(), n);
                    model.update(first, values);
                });
    }

    void append()
    {
        const std::size_t n = _input.below(_vertices.size() < 300 ? 40 : 1);
        const std::vector<float> values = takeFloats(n * _nFloats);
        if (_input.below(2) == 0)
            _buffer.appendVertices(values.data(), n);
        else
        {
            Buffer::Appender appender(_buffer, _input.below(20));
            for (std::size_t i = 0; i < n; ++i)
                appender.append(values.data() + i * _nFloats, 1);
        }
        _vertices.insert(_vertices.size(), values);
        leaveRing();
    }

    void leaveRing()
    {
        if (_nRing != 0 && _vertices.size() > _nRing)
            _vertices.remove(0, _vertices.size() - _nRing);
    }

    void insertPoint()
    {
        if (_nFloats != 2)
            return;
        const std::size_t at = _input.below(255) % (_vertices.size() + 1);
        const std::vector<float> values = takeFloats(2);
        const td::Point<float> point(values[0], values[1]);
        if (_input.below(2) == 0 || at == _vertices.size())
        {
            _buffer.insertVertex(at, point);
            _vertices.insert(at, values);
            leaveRing();
            return;
        }
        _buffer.updateVertex(at, point);
        _vertices.update(at, values);
        if (!_isKept)
            return;
        td::Point<float> read;
        _buffer.getVertex(at, read);
        require(read.x == point.x && read.y == point.y, "a point is what it was set to");
    }

    void refuse()
    {
        const Quiet quiet;
        const float value[3] = {};
        const unsigned int index = 0;
        _buffer.updateVertices(_vertices.size(), value, 1);
        _buffer.removeVertices(_input.below(40), SIZE_MAX);
        _buffer.updateIndices(_indices.size() + 1, &index, 0);
        _buffer.removeIndices(0, _indices.size() + 1);
        _buffer.updateInstances(_instances.size(), value, 1);
        _buffer.removeInstances(_instances.size(), 1);
        if (_vertices.size() > 0)
            _buffer.setRing(3);
#ifndef NDEBUG
        require(quiet.nAsserts == 6 + (_vertices.size() > 0 ? 1 : 0), "what is not there is refused");
#endif
        require(_isKept || _buffer.getVertices().size() == 0, "there is nothing to read");
    }

    // More pieces than there are calls for.
    void changeMany()
    {
        if (_nRing != 0 || _vertices.size() > 300)
            return;
        const std::vector<float> values = takeFloats(1300 * _nFloats);
        _buffer.appendVertices(values.data(), 1300);
        _vertices.insert(_vertices.size(), values);
        check();
        for (std::size_t i = 0; i < _vertices.size(); i += 2)
        {
            const std::vector<float> other = takeFloats(_nFloats);
            _buffer.updateVertices(i, other.data(), 1);
            _vertices.update(i, other);
        }
        _isExact = false;
        check();
        _buffer.removeVertices(200, _vertices.size() - 200);
        _vertices.remove(200, _vertices.size() - 200);
    }

    void beginAnew()
    {
        _input.below(2) == 0 ? _buffer.reset() : _buffer.release();
        // Its room is what tells that there are instances, and is gone.
        if (_isInstanced)
            initialize(0, 1, 0);
        _vertices = Model<float>(_nFloats);
        _indices = Model<unsigned int>(1);
        _instances = Model<float>(2);
        _isWide = _wasWide = !_isKept;
        _buffer.createCommand()->createDrawAll(Primitive::Points);
    }

    void doNext()
    {
        switch (_input.below(16))
        {
        case 0:
        case 1:
        case 2:
            append();
            break;
        case 3:
            update(_vertices, &Buffer::updateVertices, [this](std::size_t n) { return takeFloats(n * _nFloats); });
            break;
        case 4:
            onRange(_vertices.size(),
                    [this](std::size_t first, std::size_t n)
                    {
                        first = _input.below(2) * first;
                        _buffer.removeVertices(first, n);
                        _vertices.remove(first, n);
                    });
            break;
        case 5:
            insertPoint();
            break;
        case 6:
        {
            const std::vector<unsigned int> indices = takeIndices(_input.below(_indices.size() < 300 ? 30 : 1));
            _buffer.appendIndices(indices.data(), indices.size());
            _indices.insert(_indices.size(), indices);
            break;
        }
        case 7:
            update(_indices, &Buffer::updateIndices, [this](std::size_t n) { return takeIndices(n); });
            break;
        case 8:
            onRange(_indices.size(),
                    [this](std::size_t first, std::size_t n)
                    {
                        _buffer.removeIndices(first, n);
                        _indices.remove(first, n);
                    });
            break;
        case 9:
            if (_isInstanced)
            {
                const std::vector<float> values = takeFloats(2 * std::size_t(_input.below(9)));
                _buffer.appendInstances(values.data(), values.size() / 2);
                _instances.insert(_instances.size(), values);
            }
            break;
        case 10:
            if (_isInstanced)
                onRange(_instances.size(),
                        [this](std::size_t first, std::size_t n)
                        {
                            const std::vector<float> values = takeFloats(2 * n);
                            _buffer.updateInstances(first, values.data(), n);
                            _instances.update(first, values);
                            _buffer.removeInstances(0, first);
                            _instances.remove(0, first);
                        });
            break;
        case 11:
            require(!_isKept || std::ranges::equal(_buffer.getVertices(), _vertices.values()),
                    "memory has what it should");
            require(_buffer.getNoOfVertices() == _vertices.size() && _buffer.getNoOfIndices() == _indices.size() &&
                        _buffer.getNoOfInstances() == _instances.values().size(),
                    "all are counted");
            break;
        case 12:
            if (_isInstanced)
                refuse();
            if (_input.below(16) == 0)
                leaveToGL();
            break;
        case 13:
            if (_input.below(8) == 0)
                changeMany();
            else if (_input.below(8) == 0)
                beginAnew();
            break;
        case 14:
            if (_input.below(8) == 0)
            {
                // Which sends what is committed.
                if (_buffer.isCommitted())
                    noteWideIndices();
                const bool isLost = _buffer.isCommitted() && !_isKept;
                require(_context.replace(), "there is another context");
                _isExact = false;
                if (isLost)
                {
                    _vertices.dropSent();
                    _indices.dropSent();
                    _instances.dropSent();
                }
            }
            break;
        default:
            check();
        }
    }

    // What the vertex array names, from where it names it on.
    template <typename T>
    static std::vector<T> readBack(unsigned int name, std::size_t offset, std::size_t n)
    {
        std::vector<T> values(n);
        glBindBuffer(GL_COPY_READ_BUFFER, name);
        if (n > 0)
            glGetBufferSubData(GL_COPY_READ_BUFFER, static_cast<GLintptr>(offset),
                               static_cast<GLsizeiptr>(n * sizeof(T)), values.data());
        return values;
    }
    static std::vector<float> readAttribute(unsigned int location, std::size_t n)
    {
        GLint name = 0;
        void* pOffset = nullptr;
        glGetVertexAttribiv(location, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING, &name);
        glGetVertexAttribPointerv(location, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pOffset);
        return readBack<float>(static_cast<unsigned int>(name), reinterpret_cast<std::size_t>(pOffset), n);
    }

    void checkIndices()
    {
        GLint name = 0;
        glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &name);
        if (_isWide)
            require(readBack<unsigned int>(static_cast<unsigned int>(name), 0, _indices.size()) == _indices.values(),
                    "GL has the indices");
        else
            require(std::ranges::equal(readBack<unsigned short>(static_cast<unsigned int>(name), 0, _indices.size()),
                                       _indices.values()),
                    "GL has the indices in 16 bits");
    }

    // Vertices that a draw of everything names.
    std::size_t nDrawn() const
    {
        const std::size_t nEach = !_isInstanced ? 1 : 2 * _instances.size();
        return nEach * (_isIndexed ? _indices.size() : _vertices.size());
    }

    void noteWideIndices()
    {
        for (std::size_t i = 0; i < _indices.size(); ++i)
            _isWide |= _indices.isFresh(i) && _indices.values()[i] >= 0xFFFF;
    }

    void check()
    {
        noteWideIndices();
        const bool isWidened = _isWide && !_wasWide;
        _program.draw(_buffer);
        FrameLedger::end(); // begun at the last check: what is left to GL may be sent at once
        const FrameLedger::Frame frame = FrameLedger::getLast();
        const std::size_t nSent = _vertices.nFresh() * _nFloats * 4 + _instances.nFresh() * 8 +
                                  (isWidened ? _indices.size() : _indices.nFresh()) * (_isWide ? 4 : 2);
        require(!_isExact || frame.nBytesUploaded == nSent, "what changed is sent, and nothing else");
        require(frame.nBytesUploaded >= nSent, "what changed is sent");
        GLint nIndexBuffer = 0;
        glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &nIndexBuffer);
        _isIndexed = nIndexBuffer != 0;
        require(_isIndexed || _indices.size() == 0, "indices are in GL");
        require(frame.nVertices == nDrawn(), "all there is is drawn");
        require(readAttribute(0, _vertices.values().size()) == _vertices.values(), "GL has the vertices");
        if (_instances.size() > 0)
            require(readAttribute(1, _instances.values().size()) == _instances.values(), "GL has the instances");
        if (_isIndexed)
            checkIndices();
        _vertices.setAllFresh(false);
        _indices.setAllFresh(false);
        _instances.setAllFresh(false);
        _wasWide = _isWide;
        _isExact = true;
        FrameLedger::begin();
    }

    Input& _input;
    OffscreenContext& _context;
    Program& _program;
    std::size_t _nFloats;
    std::size_t _nRing;
    Model<float> _vertices;
    Model<unsigned int> _indices{1};
    Model<float> _instances{2};
    Buffer _buffer;
    float _number = 0;
    bool _isKept = true;
    bool _isInstanced = false;
    bool _isIndexed = false;
    bool _isWide = false, _wasWide = false;
    bool _isExact = true;
};

void run(const std::uint8_t* bytes, std::size_t n)
{
    // They stay, as the driver does.
    static auto* s_pContext = new OffscreenContext(
        {8, 8}, Context(DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41));
    static auto* s_pProgram = new PlainProgram;
    if (!s_pProgram->isOK())
    {
        const char* const vertex = "#version 330 core\nlayout(location = 0) in vec4 p; layout(location = 1) in vec4 q;"
                                   "void main() { gl_Position = p + q; }";
        const char* const fragment = "#version 330 core\nout vec4 c; void main() { c = vec4(1); }";
        require(s_pProgram->link(vertex, fragment), "the program links");
        FrameLedger::start(FrameLedger::Times::CPU);
    }
    Input input(bytes, n);
    {
        BufferWorld world(input, *s_pContext, *s_pProgram);
        world.live();
    }
    s_pProgram->setBuffer(nullptr);
    require(glGetError() == GL_NO_ERROR, "no GL error");
}

const Target cTarget("buffer", run);

} // namespace

} // namespace fuzz::buffer
