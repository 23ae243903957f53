#include <gui/draw/Instances.h>

#include "ModelGeometry.h"
#include "SpaceBlocks.h"
#include "SpacePainter.h"
#include "TexelStore.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/CommandList.h>
#include <gui/gl/StateGuard.h>

#include <td/GUIThread.h>
#include <vo/Log.h>

#include <glm/common.hpp>
#include <glm/geometric.hpp>
#include <glm/gtc/quaternion.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace gui::draw
{

namespace
{

constexpr std::size_t cMostInstances = std::size_t(1) << 26;
constexpr std::size_t cTexelsPerInstance = 4;

bool isPlacement(const Instances::Placement& placement)
{
    const glm::dquat& q = placement.rotation;
    const double largest = std::max({std::abs(q.x), std::abs(q.y), std::abs(q.z), std::abs(q.w)});
    return isPlace(placement.position) && isPlace(placement.scale) && isPlace({q.x, q.y, q.z}) && largest > 0 &&
           std::isfinite(q.w);
}

// @return the first that is none; their number when all are
std::size_t findBadPlacement(std::span<const Instances::Placement> placements)
{
    return static_cast<std::size_t>(std::find_if_not(placements.begin(), placements.end(), isPlacement) -
                                    placements.begin());
}

void sayBad(const char* operation, std::size_t placement)
{
    vo::dbgLog("Error! Instances::%s: placement %zu has no turn, or a number that is not finite or beyond 1e30!",
               operation, placement);
}

glm::dquat turnOf(const Instances::Placement& placement)
{
    const glm::dquat& q = placement.rotation;
    const double square = q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w;
    if (square > 1e-200 && square < 1e200)
        return q * (1 / std::sqrt(square));
    const double largest = std::max({std::abs(q.x), std::abs(q.y), std::abs(q.z), std::abs(q.w)});
    return glm::normalize(q / largest);
}

// Bits of a number from 0 to 1023, with room for two more after each.
std::uint32_t withRoom(std::uint32_t x)
{
    x = (x | x << 16) & 0x30000ffU;
    x = (x | x << 8) & 0x300f00fU;
    x = (x | x << 4) & 0x30c30c3U;
    return (x | x << 2) & 0x9249249U;
}

// Those that lie near each other come near each other (Morton's order). @return which comes at each place
std::vector<std::uint32_t> orderBySpace(std::span<const Instances::Placement> placements)
{
    Box3 bounds;
    for (const Instances::Placement& placement : placements)
        bounds.add(placement.position);
    const glm::dvec3 size = bounds.getSize();
    const double largest = std::max({size.x, size.y, size.z}), scale = largest > 0 ? 1023 / largest : 0;
    std::vector<std::uint64_t> keys(placements.size());
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        const glm::dvec3 cube = (placements[i].position - bounds.min) * scale;
        std::uint64_t key = 0;
        for (int k = 0; k < 3; ++k)
            key |= std::uint64_t(withRoom(static_cast<std::uint32_t>(cube[k]))) << k;
        keys[i] = key << 32 | i;
    }
    std::sort(keys.begin(), keys.end());
    std::vector<std::uint32_t> order(keys.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<std::uint32_t>(keys[i]);
    return order;
}

} // namespace

struct Instances::Impl
{
    /// What GL has of a vertex.
    struct Vertex
    {
        glm::vec3 position;                 // from the mesh's origin
        std::array<std::int16_t, 4> normal; // and how polished it is
        std::uint32_t color;                // and, as alpha, whether both sides are seen
    };
    struct Instance
    {
        Placement placement;
        td::Color color = td::ColorID::White;
        bool isVisible = true;
        std::uint32_t slot = 0; // where it is in GL
    };
    /// The mesh, or a coarser one.
    struct Level
    {
        double step = 0;
        std::uint32_t first = 0, count = 0; // indices
    };
    /// What there is in one context.
    struct InGL
    {
        gl::CurrentContext::ID contextID = 0;
        gl::Buffer mesh;
    };

    std::uint32_t* change(const Instance& instance, std::size_t texel, std::size_t n)
    {
        return things.change(cTexelsPerInstance * instance.slot + texel, n);
    }
    void writeColor(std::size_t i) { change(all[i], 0, 1)[3] = wordOf(all[i].color); }
    void writeVisible(std::size_t i)
    {
        change(all[i], 1, 1)[3] = static_cast<std::uint32_t>(i) << 1 | (all[i].isVisible ? 1U : 0U);
    }
    void writePosition(const Instance& instance, const glm::dquat& turn)
    {
        std::uint32_t* pWords = change(instance, 0, 2);
        // The mesh's vertices are distances from its origin.
        writePlace(instance.placement.position + turn * (instance.placement.scale * meshOrigin), origin, pWords,
                   pWords + 4);
        blocks.markChanged(instance.slot, 1);
    }
    void write(std::size_t i, bool isAll)
    {
        const Instance& instance = all[i];
        const glm::dquat turn = turnOf(instance.placement);
        writePosition(instance, turn);
        std::uint32_t* pWords = change(instance, 2, 2);
        const double numbers[] = {turn.x,
                                  turn.y,
                                  turn.z,
                                  turn.w,
                                  instance.placement.scale.x,
                                  instance.placement.scale.y,
                                  instance.placement.scale.z};
        for (const double number : numbers)
            *pWords++ = std::bit_cast<std::uint32_t>(static_cast<float>(number));
        if (isAll)
        {
            writeColor(i);
            writeVisible(i);
        }
    }

    // About those of some slots.
    Box3 boxOf(std::size_t first, std::size_t end) const
    {
        Box3 box;
        for (std::size_t slot = first; slot < end; ++slot)
        {
            const Placement& placement = all[owners[slot]].placement;
            const glm::dvec3 size = glm::abs(placement.scale);
            const std::uint32_t* q = things.at(cTexelsPerInstance * slot + 2);
            const auto number = [q](std::size_t i) { return static_cast<double>(std::bit_cast<float>(q[i])); };
            const glm::dvec3 middle = placement.position + glm::dquat(number(3), number(0), number(1), number(2)) *
                                                               (placement.scale * meshMiddle);
            // A little more, for floats.
            const double radius = meshReach * std::max({size.x, size.y, size.z});
            box.min = glm::min(box.min, middle - radius);
            box.max = glm::max(box.max, middle + radius);
        }
        return box;
    }
    void updateBounds()
    {
        blocks.update([this](std::size_t first, std::size_t end) { return boxOf(first, end); });
    }

    bool prepareMesh()
    {
        if (pGL && pGL->contextID == gl::CurrentContext::getID() && pGL->mesh.isCommitted())
            return true;
        pGL = std::make_unique<InGL>();
        pGL->contextID = gl::CurrentContext::getID();
        gl::Buffer& buffer = pGL->mesh;
        buffer.setKeptForRestore(false);
        using gl::DataType;
        buffer.init(0, vertices.size(), indices.size(), {DataType::Vec3, DataType::NormShort4, DataType::NormUByte4});
        buffer.appendRecords(vertices.data(), vertices.size());
        buffer.appendIndices(indices.data(), indices.size());
        if (buffer.commit() && buffer.isCommitted())
            return true;
        pGL.reset();
        return painter.fail("GL has no room for its mesh");
    }

    // The coarsest whose steps are small enough in a box.
    std::size_t levelFor(const Eye& eye, const Box3& box) const
    {
        if (levels.size() < 2)
            return 0;
        double nearest = std::numeric_limits<double>::infinity();
        for (unsigned int i = 0; i < 8; ++i)
            nearest = std::min(nearest, eye.getDistance(box.getCorner(i)));
        if (!eye.isOrthographic() && !(nearest > eye.getNearest()))
            return 0;
        const double most = eye.getSizeAt(eye.getPosition() + nearest * eye.getDirection()) * tolerance;
        std::size_t level = 0;
        while (level + 1 < levels.size() && levels[level + 1].step * largestScale <= most)
            ++level;
        return level;
    }

    // Those that may be seen, in a row as far as they are drawn alike.
    void drawSeen(const Eye& eye, SpaceProgram& program)
    {
        for (const gl::Quads::Range& range : ranges)
        {
            const std::size_t last = blocks.getBlockOf(range.first + range.count - 1);
            for (std::size_t block = blocks.getBlockOf(range.first); block <= last;)
            {
                const std::size_t level = levelFor(eye, blocks.getBox(block));
                gl::Quads::Range alike = blocks.getRange(block++);
                while (block <= last && levelFor(eye, blocks.getBox(block)) == level)
                    alike.count += blocks.getRange(block++).count;
                commands.reset();
                gl::Command* pCommand = commands.get();
                pCommand->createDrawElementsInstanced(gl::Primitive::Triangles, levels[level].first,
                                                      levels[level].count, alike.count);
                commands.encode(pCommand);
                program.setUniformValue(program.at(SpaceProgram::First), static_cast<int>(alike.first));
                commands.execute();
            }
        }
    }

    bool draw(const Eye& eye, unsigned int features, td::Color color, std::uint32_t firstId)
    {
        if (!painter.isThere())
            return false;
        updateBounds();
        SpaceSight sight;
        if (levels.empty() || !sight.look(eye, light, origin, blocks.getBounds(), 0, 0))
            return true;
        SpacePainter::askForShadows(eye, light, sight);
        if (sight.isOfSun)
            features = SpaceProgram::Plain;
        blocks.findSeen(eye, 0, 0, ranges);
        if (ranges.empty())
            return true;
        const gl::StateGuard guard;
        const ClipState clip(sight.clipping);
        if (!prepareMesh())
            return false;
        if (!things.upload())
            return painter.fail("GL has no room for its instances");
        sight.beginDrawing();
        if (sight.isOfSun)
        {
            // Surfaces do not shade themselves: they lie a little deeper than they are.
            gl::Context::setPolygonOffset(1.5F, 2);
            gl::Context::enable(gl::Context::Flag::PolygonOffset);
        }
        // What is not drawn anyway need not be found out for each of its pixels.
        if (!isTwoSided && !isMirrored)
            gl::Context::enable(gl::Context::Flag::CullFace);
        SpaceProgram* pProgram = painter.activate(SpaceProgram::Kind::Instances, features, sight, &pGL->mesh);
        if (pProgram == nullptr)
            return false;
        things.bind(SpaceProgram::cThingsUnit);
        if (features != 0)
            pProgram->setFlat(color, firstId);
        else
            sight.tellLight(*pProgram, light, false);
        drawSeen(eye, *pProgram);
        return painter.succeed();
    }

    // What depends on all of them.
    void note(const Placement& placement)
    {
        const glm::dvec3& s = placement.scale;
        largestScale = std::max({largestScale, std::abs(s.x), std::abs(s.y), std::abs(s.z)});
        isMirrored = isMirrored || s.x < 0 || s.y < 0 || s.z < 0;
    }

    // The mesh.
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;
    std::vector<Level> levels;
    glm::dvec3 meshOrigin{0}, meshMiddle{0};
    double meshReach = 0; // from the middle
    bool isTwoSided = false;

    std::vector<Instance> all;
    std::vector<std::uint32_t> owners; // of slots
    glm::dvec3 origin{0};              // of their places: one of these
    double largestScale = 0;
    bool isMirrored = false;
    TexelStore things{gl::BufferTexture::Format::UInt4, 4};
    SpaceBlocks blocks{512}; // of slots
    Light light;
    double tolerance = 0.5;
    std::unique_ptr<InGL> pGL;
    gl::CommandList commands;
    SpacePainter painter{"Instances"};
    std::vector<gl::Quads::Range> ranges;
};

Instances::Instances()
    : _pImpl(std::make_unique<Impl>())
{
}

Instances::~Instances() = default;

bool Instances::setMesh(const Mesh& mesh)
{
    TD_ASSERT_GUI_THREAD(false);
    if (const std::string fault = mesh.findFault(); !fault.empty())
    {
        vo::dbgLog("Error! Instances::setMesh: %s!", fault.c_str());
        return false;
    }
    Impl& impl = *_pImpl;
    std::vector<Material> materials{mesh.material};
    if (!mesh.parts.empty())
        materials.clear();
    for (const Mesh::Part& part : mesh.parts)
        materials.push_back(part.material);
    const ModelGeometry geometry = ModelGeometry::make(mesh, std::vector<std::uint32_t>(materials.size()));
    impl.vertices.clear();
    impl.meshReach = 0;
    const glm::dvec3 middle = geometry.bounds.getCenter();
    for (const MeshSurface::Vertex& vertex : geometry.vertices)
    {
        const Material& material = materials[vertex.part];
        Impl::Vertex& made = impl.vertices.emplace_back();
        made.position = vertex.position;
        for (std::size_t k = 0; k < 3; ++k)
            made.normal[k] = static_cast<std::int16_t>(std::lround(vertex.normal[static_cast<int>(k)] * 32767.0F));
        made.normal[3] = static_cast<std::int16_t>(std::lround(ModelSight::getShare(material.shininess) * 32767));
        td::Color color = material.color;
        color.setAlpha(material.isTwoSided ? 255 : 0);
        made.color = wordOf(color);
        impl.meshReach = std::max(impl.meshReach, glm::length(geometry.origin + glm::dvec3(vertex.position) - middle));
    }
    impl.indices = geometry.indices;
    impl.levels.clear();
    for (const ModelGeometry::Level& level : geometry.levels)
        if (level.nTriangles > 0)
            impl.levels.push_back({level.step, level.cells.front().first, 3 * level.nTriangles});
    impl.meshReach += 1e-6 * (impl.meshReach + glm::length(middle));
    impl.meshOrigin = geometry.origin;
    impl.meshMiddle = middle;
    impl.isTwoSided = std::any_of(materials.begin(), materials.end(), [](const Material& m) { return m.isTwoSided; });
    impl.pGL.reset();
    for (const Impl::Instance& instance : impl.all)
        impl.writePosition(instance, turnOf(instance.placement));
    return true;
}

bool Instances::set(std::span<const Placement> placements, std::span<const td::Color> colors)
{
    TD_ASSERT_GUI_THREAD(false);
    Impl& impl = *_pImpl;
    const std::size_t n = placements.size(), bad = findBadPlacement(placements);
    if (bad < n)
        sayBad("set", bad);
    else if (!colors.empty() && colors.size() != n)
        vo::dbgLog("Error! Instances::set: %zu colours for %zu placements!", colors.size(), n);
    else if (n > cMostInstances)
        vo::dbgLog("Error! Instances::set: more than 2^26 instances!");
    else
    {
        // One of those that there are may be among what is given.
        std::vector<std::uint32_t> owners = orderBySpace(placements);
        std::vector<Impl::Instance> all(n);
        for (std::uint32_t slot = 0; slot < n; ++slot)
        {
            const std::size_t i = owners[slot];
            all[i] = {placements[i], colors.empty() ? td::Color(td::ColorID::White) : colors[i], true, slot};
        }
        clear();
        impl.owners = std::move(owners);
        impl.all = std::move(all);
        impl.things.resize(cTexelsPerInstance * n);
        impl.blocks.resize(n);
        if (n > 0)
            impl.origin = impl.all[impl.owners[n / 2]].placement.position;
        for (const std::uint32_t i : impl.owners)
        {
            impl.note(impl.all[i].placement);
            impl.write(i, true);
        }
        return true;
    }
    return false;
}

std::optional<std::size_t> Instances::add(const Placement& placement, td::Color color)
{
    TD_ASSERT_GUI_THREAD(std::nullopt);
    Impl& impl = *_pImpl;
    const std::size_t i = impl.all.size();
    if (!isPlacement(placement))
        sayBad("add", i);
    else if (i >= cMostInstances)
        vo::dbgLog("Error! Instances::add: more than 2^26 instances!");
    else
    {
        if (i == 0)
            impl.origin = placement.position;
        impl.all.push_back({placement, color, true, static_cast<std::uint32_t>(i)});
        impl.owners.push_back(static_cast<std::uint32_t>(i));
        impl.things.resize(cTexelsPerInstance * (i + 1));
        impl.blocks.resize(i + 1);
        impl.note(impl.all.back().placement); // that which was given may have been in what has grown
        impl.write(i, true);
        return i;
    }
    return std::nullopt;
}

void Instances::clear()
{
    TD_ASSERT_GUI_THREAD();
    _pImpl->all.clear();
    _pImpl->owners.clear();
    _pImpl->things.resize(0);
    _pImpl->blocks.resize(0);
    _pImpl->largestScale = 0;
    _pImpl->isMirrored = false;
}

bool Instances::setPlacement(std::size_t instance, const Placement& placement)
{
    TD_ASSERT_GUI_THREAD(false);
    if (instance >= size())
        return false;
    if (!isPlacement(placement))
    {
        sayBad("setPlacement", instance);
        return false;
    }
    _pImpl->all[instance].placement = placement;
    _pImpl->note(placement);
    _pImpl->write(instance, false);
    return true;
}

bool Instances::setPlacements(std::size_t first, std::span<const Placement> placements)
{
    TD_ASSERT_GUI_THREAD(false);
    Impl& impl = *_pImpl;
    const std::size_t n = placements.size();
    if (first > size() || n > size() - first)
        return false;
    if (const std::size_t bad = findBadPlacement(placements); bad < n)
    {
        sayBad("setPlacements", first + bad);
        return false;
    }
    for (std::size_t i = 0; i < n; ++i)
    {
        impl.all[first + i].placement = placements[i];
        impl.note(placements[i]);
    }
    // Many are sent in one piece, with those between them, in the order of their slots.
    const bool areMany = n > 1000 && n > size() / 2;
    if (areMany)
        impl.things.change(0, impl.things.getSize());
    for (std::size_t k = 0; k < (areMany ? size() : n); ++k)
    {
        const std::size_t i = areMany ? impl.owners[k] : first + k;
        if (i >= first && i - first < n)
            impl.write(i, false);
    }
    return true;
}

bool Instances::setPosition(std::size_t instance, const glm::dvec3& position)
{
    TD_ASSERT_GUI_THREAD(false);
    if (instance >= size())
        return false;
    if (!isPlace(position))
    {
        sayBad("setPosition", instance);
        return false;
    }
    Impl::Instance& one = _pImpl->all[instance];
    one.placement.position = position;
    _pImpl->writePosition(one, turnOf(one.placement));
    return true;
}

bool Instances::setRotation(std::size_t instance, const glm::dquat& rotation)
{
    Placement placement = getPlacement(instance);
    placement.rotation = rotation;
    return setPlacement(instance, placement);
}

bool Instances::setScale(std::size_t instance, const glm::dvec3& scale)
{
    Placement placement = getPlacement(instance);
    placement.scale = scale;
    return setPlacement(instance, placement);
}

bool Instances::setColor(std::size_t instance, td::Color color)
{
    TD_ASSERT_GUI_THREAD(false);
    if (instance >= size())
        return false;
    _pImpl->all[instance].color = color;
    _pImpl->writeColor(instance);
    return true;
}

bool Instances::setVisible(std::size_t instance, bool isVisible)
{
    TD_ASSERT_GUI_THREAD(false);
    if (instance >= size())
        return false;
    _pImpl->all[instance].isVisible = isVisible;
    _pImpl->writeVisible(instance);
    return true;
}

void Instances::setLight(const Light& light) { _pImpl->light = light; }

void Instances::setTolerance(double points) { _pImpl->tolerance = points > 0 ? points : 0; }

std::size_t Instances::size() const { return _pImpl->all.size(); }

const Instances::Placement& Instances::getPlacement(std::size_t instance) const
{
    static const Placement s_none;
    return instance < size() ? _pImpl->all[instance].placement : s_none;
}

td::Color Instances::getColor(std::size_t instance) const
{
    return instance < size() ? _pImpl->all[instance].color : td::Color(td::ColorID::White);
}

bool Instances::isVisible(std::size_t instance) const { return instance < size() && _pImpl->all[instance].isVisible; }

const Box3& Instances::getBounds() const
{
    static const Box3 s_none;
    if (_pImpl->levels.empty())
        return s_none;
    _pImpl->updateBounds();
    return _pImpl->blocks.getBounds();
}

bool Instances::draw(const Eye& eye) { return _pImpl->draw(eye, 0, td::Color(), 0); }

bool Instances::drawColor(const Eye& eye, td::Color color) { return _pImpl->draw(eye, SpaceProgram::Plain, color, 0); }

bool Instances::drawIds(const Eye& eye, std::uint32_t first)
{
    return _pImpl->draw(eye, SpaceProgram::Ids, td::Color(), first);
}

} // namespace gui::draw
