#pragma once

#include "SectionCutter.h"

#include <gui/draw/Clipping.h>

#include <gui/gl/Buffer.h>
#include <gui/gl/BufferTexture.h>
#include <gui/gl/Quads.h>

#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

/// The faces of the cuts that a clipping makes in a model, and the lines about them, made ready for the GPU. It is cut
/// when the clipping or the model has changed.
class ModelSection
{
public:
    /// Triangles of a part: which indices.
    struct Range
    {
        std::uint32_t part, first, count;
    };
    /// What lies in a plane.
    struct Face
    {
        SectionPlane plane;
        std::vector<Range> ranges;
        gl::Quads::Range lines;
    };
    /// What there is in one context.
    struct InGL
    {
        gl::Buffer triangles;
        gl::BufferTexture lines{gl::BufferTexture::Format::Float4};
        unsigned int revision = 0; ///< of what is there

        InGL();
    };

    /// The model is another one.
    void setChanged() { _isCut = false; }
    /// @param origin  the model's  @param slack  by how much behind each plane it is cut, as the model is: what lies in
    /// a plane is cut off  @param hasRests  whether positions have what floats lack of them, as the source's
    void cut(const Clipping& clipping, const SectionCutter::Source& source, const glm::dvec3& origin, double slack,
             bool hasRests);
    /// @return false when GL has no room
    bool upload(InGL& gl) const;

    bool isEmpty() const { return _lines.empty(); }
    /// By number of the plane.
    const std::vector<Face>& getFaces() const { return _faces; }
    /// Where two faces meet.
    const gl::Quads::Range& getCreases() const { return _creases; }

private:
    void addFace(std::size_t number, const std::vector<SectionCutter::Face>& faces, const Clipping& clipping,
                 const glm::dvec3& origin, std::vector<std::array<glm::dvec3, 2>>& creases,
                 std::vector<std::uint32_t>& parts);
    void addLine(const glm::dvec3& from, const glm::dvec3& to, std::uint32_t part);

    std::vector<Face> _faces;
    gl::Quads::Range _creases;
    std::vector<float> _vertices; // place, part, and the rest of the place where there are rests
    std::vector<std::uint32_t> _indices;
    std::vector<glm::vec4> _lines; // as a model's edges
    Clipping _clipping;
    SectionCutter _cutter;
    unsigned int _revision = 0;
    bool _isCut = false, _hasRests = false;
};

} // namespace gui::draw
