#pragma once

#include "Box3.h"
#include "Eye.h"
#include "Light.h"
#include "Material.h"
#include "Mesh.h"
#include "PreparedMesh.h"

#include <td/Color.h>
#include <td/Export.h>
#include <td/Types.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace gui::draw
{

/// A Mesh that is seen: lit surfaces, edges, wires, an outline about what is selected.
///
///     #include <gui/draw/Model.h>
///     #include <gui/draw/OrbitCamera.h>
///     #include <gui/gl/OffscreenContext.h>
///
///     int main()
///     {
///         using gui::gl::DepthBuffer;
///         gui::gl::Context settings(DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::None,
///                                   gui::gl::Context::Profile::Core41);
///         gui::gl::OffscreenContext context({200, 200}, settings);
///         gui::draw::Mesh pyramid;
///         pyramid.positions = {{-1, 0, 1}, {1, 0, 1}, {1, 0, -1}, {-1, 0, -1}, {0, 1.5, 0}};
///         pyramid.indices = {0, 1, 4, 1, 2, 4, 2, 3, 4, 3, 0, 4, 0, 2, 1, 0, 3, 2};
///         gui::draw::Model model;
///         model.setMesh(pyramid);
///         model.setEdges({.width = 1.5});
///         gui::draw::OrbitCamera camera;
///         camera.setSize({200, 200});
///         camera.fit(model.getBounds());
///         gui::gl::Context::clear({gui::gl::Context::Clear::Color, gui::gl::Context::Clear::Depth});
///         model.draw(camera.getEye());
///         return context.savePicture("pyramid.png") ? 0 : 1;
///     }
///
/// In an OrbitView, `model.draw(eye)` in drawScene is all that turning and zooming take: nothing is uploaded for them.
/// What changes is uploaded with the next draw, and nothing else. Parts of the mesh that the eye does not see are not
/// drawn. Where triangles are much smaller than pixels, coarser ones stand for them, which are made when the mesh is
/// set: see setTolerance.
///
/// Parts whose material has an alpha below 255 are translucent: each surface hides that much of what is behind it, and
/// all are put over each other in the order in which they are seen, sample by sample, sixteen of them; those behind are
/// blended in any order. They are drawn after everything else, of all models of a frame together, when the scene of an
/// OrbitView or a DepthCanvas::Frame has been drawn, and at once without. The depth buffer does not have them
/// afterwards; OrbitView::pick meets them as if they were solid. With several samples it needs OpenGL 4.0 or
/// ARB_sample_shading; without, they are blended in any order, which the log says once: "Warning! Model::draw: no
/// layers here, translucent surfaces are blended as they are drawn".
///
/// Parts have numbers, in the order that they have in the mesh; a mesh without parts has one, number 0. Operations on a
/// part that there is not do nothing and return false.
///
/// It has GL objects of its own, which are made anew when the context is lost, and from the mesh in another context.
/// Not copyable. Only what draws needs a context; everything else is for any time. GUI thread only.
class GUIGL_API Model
{
public:
    /// Whether the sides of triangles are seen.
    enum class Wires : td::BYTE
    {
        None,
        Over, ///< on the surface
        Alone ///< and one looks through the triangles
    };

    /// A line's look.
    struct Line
    {
        double width = 1; ///< in points; 0 for no line
        td::Color color{28, 32, 40, 255};

        bool operator==(const Line&) const = default;
    };

    /// Lines across the face of a cut.
    struct Hatch
    {
        double spacing = 8; ///< from one to the next, in points, or 0.7 to 1.4 of that; 0 for none
        double angle = 45;  ///< in degrees, in the plane of the cut
        double width = 0.8; ///< in points
        td::Color color{28, 32, 40, 160};

        bool operator==(const Hatch&) const = default;
    };
    /// What cuts look like that an eye's Clipping makes.
    struct Section
    {
        bool isClosed = true; ///< whether they have faces: else one looks into what is hollow
        /// Of all faces; with an alpha of 0 each has that of its part's material, lighter. No light falls on them.
        td::Color color{0, 0, 0, 0};
        Line outline{.width = 1.5}; ///< about faces, and where they meet
        Hatch hatch{};              ///< of parts with even numbers; those of odd ones slope to the other side

        bool operator==(const Section&) const = default;
    };

    Model();
    ~Model();
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    /// Shows another mesh, all of whose parts are visible and none selected. It takes some 0.5 microseconds per
    /// triangle.
    /// @param mesh  read during the call only
    /// @return false, with what was shown as it was, when the mesh has a fault: the log has "Error! Model::setMesh: "
    ///         and Mesh::findFault
    bool setMesh(const Mesh& mesh);
    /// The same with one that is ready, maybe on another thread; nothing is left in it.
    /// @return as above, with the mesh as it was when it has a fault
    bool setMesh(PreparedMesh&& mesh);
    /// Shows nothing.
    void clear();

    /// Around all triangles, of parts that are not visible too; empty when there are none.
    const Box3& getBounds() const;
    std::size_t getNumberOfTriangles() const; ///< that have an area
    std::size_t getNumberOfParts() const;

    /// The camera's own at first.
    void setLight(const Light& light);

    /// Lines where faces meet more sharply than Mesh::edgeAngle, at borders, and where a material ended when the mesh
    /// was set. They are smooth in contexts with and without samples, have their width at every distance, and what is
    /// before them hides them. None at first (a width of 0).
    void setEdges(const Line& line);
    /// What wires look like that setWires shows: half a point of black at first.
    void setWireLine(const Line& line);
    /// A line about each part that is selected, or several that touch on the screen, whatever is before them: 2.5
    /// points of orange at first.
    void setOutline(const Line& line);

    /// The look of cuts, for eyes with a Clipping (see OrbitView::setClipping). What a cut goes through is taken for
    /// solid, each part for itself, as its surface says: shells within each other are hollow, those that overlap are
    /// one. A surface with a border there, such as a sheet, has a line and no face; gaps of up to a hundredth of the
    /// way around are closed. Faces are made when the clipping or the mesh changes: in some 1.3 ms for a plane through
    /// a million triangles. Where parts overlap, either one's face is seen. Faces belong to their part: they have its
    /// id, and are hidden with it.
    void setSection(const Section& section);

    /// How large, in points, triangles of a coarser mesh may be that stand for smaller ones. 0.5 at first; 0 draws the
    /// mesh itself always. What is not a number of at least 0 counts as 0. Edges,
    /// wires and ids are those of what is drawn.
    void setTolerance(double points);

    /// Of one part. A material's texture needs a mesh with texture coordinates.
    bool setMaterial(std::size_t part, const Material& material);
    bool setVisible(std::size_t part, bool isVisible);
    bool setSelected(std::size_t part, bool isSelected);
    bool setWires(std::size_t part, Wires wires);
    /// Of all parts.
    void setWires(Wires wires);
    /// A part's own lines across faces, in place of those of setSection.
    bool setHatch(std::size_t part, const Hatch& hatch);
    void clearSelection();

    /// A part's; of none that there is: what a part has at first.
    const Material& getMaterial(std::size_t part) const;
    bool isVisible(std::size_t part) const;
    bool isSelected(std::size_t part) const;
    Wires getWires(std::size_t part) const;
    std::uint64_t getTag(std::size_t part) const; ///< as the mesh has it

    /// Draws into the framebuffer and viewport that are bound, which need a depth buffer of the eye's kind. GL's state
    /// is afterwards what it was, but for the values of polygon offset and texture units 0 to 3.
    /// @return false, with a log line for each kind of reason once, when it could not: no context, a program that does
    ///         not link, no memory. An eye that sees nothing is none
    bool draw(const Eye& eye);
    /// All surfaces in one colour, with its alpha, and nothing else: for masks, and what is to be found by its colour.
    bool drawColor(const Eye& eye, td::Color color);
    /// The surfaces of each part in the colour that its number is: part 0 in first, red being the lowest byte. For
    /// finding parts by the pixels of a Framebuffer: one without samples, cleared to 0.
    bool drawIds(const Eye& eye, std::uint32_t first = 1);

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
