#pragma once

#include "../drawing/ImageStore.h"
#include "GlassCanvas.h"
#include "ModelData.h"
#include "ModelPrograms.h"
#include "ModelSection.h"
#include "ModelSight.h"
#include "SpaceLayers.h"

#include <gui/draw/Eye.h>
#include <gui/draw/Light.h>
#include <gui/draw/Material.h>
#include <gui/draw/Model.h>

#include <gui/gl/Buffer.h>
#include <gui/gl/BufferTexture.h>
#include <gui/gl/CommandList.h>
#include <gui/gl/Framebuffer.h>

#include <glm/mat4x4.hpp>
#include <glm/vec4.hpp>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace gui::draw
{

/// How a model looks as a whole.
struct ModelLook
{
    Light light;
    Model::Line edges{.width = 0};
    Model::Line wires{.width = 0.5, .color = td::Color(0, 0, 0, 255)};
    Model::Line outline{.width = 2.5, .color = td::Color(255, 144, 32, 255)};
    Model::Section section;
    double tolerance = 0.5;
};

/// Draws a model's geometry, of which it has what GL needs.
class ModelPainter
{
public:
    ModelPainter() = default;
    ~ModelPainter();
    ModelPainter(const ModelPainter&) = delete;
    ModelPainter& operator=(const ModelPainter&) = delete;

    /// Takes what is drawn from now on. Needs no context.
    void setData(ModelData&& data);
    const Box3& getBounds() const { return _data.bounds; }
    std::size_t getNumberOfTriangles() const { return _data.getNumberOfTriangles(); }

    /// All that a frame shows. @param pLayers  where what is translucent waits; null when it is drawn at once
    bool draw(const Eye& eye, const ModelLook& look, const std::vector<ModelPart>& parts, ImageStore& images,
              const std::shared_ptr<SpaceLayers>& pLayers);
    /// Surfaces without light.
    struct Flat
    {
        unsigned int features = 0; ///< ModelProgram::Plain or Ids
        glm::vec4 color{0};        ///< of all, with Plain
        std::uint32_t firstId = 0; ///< of the first part, with Ids

        void tell(ModelProgram& program) const;
    };
    /// Surfaces alone.
    bool drawFlat(const Eye& eye, const ModelLook& look, const std::vector<ModelPart>& parts, const Flat& flat);
    /// For parts that are drawn in another way from now on.
    /// @param isLook  whether what shaders know of them is another
    void markChanged(bool isLook)
    {
        _areStatesChanged = true;
        _arePartsChanged = _arePartsChanged || isLook;
    }

private:
    /// What there is in one context.
    struct InGL
    {
        gl::CurrentContext::ID contextID = 0;
        std::shared_ptr<ModelPrograms> pPrograms;
        gl::Buffer triangles;
        gl::Buffer corners; ///< of triangles with wires, on OpenGL ES
        gl::BufferTexture parts{gl::BufferTexture::Format::Float4};
        gl::BufferTexture edges{gl::BufferTexture::Format::Float4};
        gl::Framebuffer mask;
        ModelSection::InGL section;
        std::shared_ptr<GlassCanvas> pGlass; // which is kept from frame to frame
    };
    /// What decides how a part's cells are drawn.
    struct State
    {
        std::uint32_t texture;
        Model::Wires wires;
        bool isVisible, isSelected, isGlass;
    };
    /// Whether there are parts of a kind that are visible.
    struct Kinds
    {
        bool areOver = false, areAlone = false, areSelected = false, areTwoSided = false, areGlass = false;
    };
    using Level = ModelGeometry::Level;

    bool fail(const char* reason);
    bool begin(const Eye& eye, const ModelLook& look, const std::vector<ModelPart>& parts, bool& isDone);
    bool prepare(const ModelLook& look, const std::vector<ModelPart>& parts);
    bool uploadParts(const std::vector<ModelPart>& parts, const Model::Hatch& hatch, float scale);
    void initBuffer(gl::Buffer& buffer, std::size_t nVertices, std::size_t nIndices) const;
    bool uploadCorners();
    bool uploadEdges();
    const Level& chooseLevel(const Eye& eye, double tolerance) const;
    ModelProgram* activate(unsigned int features, const ModelLook& look);
    void beginSurfaces(float lineWidth);
    void collectStates(const std::vector<ModelPart>& parts);
    using IsWanted = std::function<bool(const State&)>;
    bool drawCells(const Level& level, ImageStore* pImages, const IsWanted& isWanted, bool isBetween = true);
    void flush(std::uint32_t first, std::uint32_t end);
    bool drawEdges(const Level& level, const ModelLook& look);
    bool drawLines(ModelProgram& program, const gl::BufferTexture& lines, const Model::Line& line);
    bool cutSection();
    float getLineWidth(const Level& level, const ModelLook& look) const;
    bool drawFaces(const Flat& flat, const ModelLook& look, const IsWanted& isWanted);
    void drawGlass(const Eye& eye, const ModelLook& look, const std::vector<ModelPart>& parts, ImageStore& images,
                   const GlassCanvas::Pass& pass, const ShadowMap* pShadowMap);
    bool drawShadows(const Eye& eye, const ModelLook& look);
    float getPixelSizeOn(const SectionPlane& plane) const;
    bool drawSectionLines(const ModelLook& look);
    bool drawWires(Model::Wires wires, const Level& level, const ModelLook& look, ImageStore& images);
    glm::vec4 findSelected(const Level& level) const;
    bool drawOutline(const Level& level, const ModelLook& look);

    ModelData _data; // it stays for other contexts

    ModelSight _sight;
    ModelSection _section;
    std::weak_ptr<SpaceLayers> _pLayers; // where it waits
    bool _hasCorners = false;            // what is drawn now
    float _scale = 0;                    // pixels per point that the parts were uploaded for
    std::unique_ptr<InGL> _pGL;
    gl::CommandList _commands; // those of a frame
    std::vector<gl::Quads::Range> _ranges;
    std::vector<glm::vec4> _partTexels;
    std::vector<State> _states;
    Kinds _kinds;
    bool _areStatesChanged = true, _arePartsChanged = true;
    const char* _lastFailure = nullptr;
};

} // namespace gui::draw
