#pragma once

#include "Box3.h"
#include "Mesh.h"

#include <td/Export.h>

#include <cstddef>
#include <memory>
#include <string>

namespace gui::draw
{

/// A mesh made ready to be shown: normals, edges, cells and coarser meshes, which take some 0.4 s for a million
/// triangles. It is made on any thread, so that a window goes on meanwhile:
///
///     void open(std::string file) // of an OrbitView
///     {
///         _loader = std::jthread([this, file]
///         {
///             auto pReady = std::make_shared<PreparedMesh>(readMesh(file));
///             gui::ZavObject::asyncCall(new std::function<void()>([this, pReady]
///             {
///                 _model.setMesh(std::move(*pReady));
///                 fit(_model.getBounds());
///             }), true);
///         });
///     }
///
/// Movable, not copyable; one that was moved on has nothing. It needs no context; one object must not be used from two
/// threads at once.
class GUIGL_API PreparedMesh
{
public:
    /// Reads the mesh during the call only.
    explicit PreparedMesh(const Mesh& mesh);
    ~PreparedMesh();
    PreparedMesh(PreparedMesh&& other) noexcept;            ///< takes what the other one has
    PreparedMesh& operator=(PreparedMesh&& other) noexcept; ///< likewise

    /// What is wrong with the mesh, as Mesh::findFault has it: then there is nothing to show.
    const std::string& getFault() const;
    Box3 getBounds() const;                   ///< as Model::getBounds
    std::size_t getNumberOfTriangles() const; ///< that have an area

private:
    friend class Model;
    struct Impl;
    std::unique_ptr<Impl> _pImpl; // null when it was moved on
};

} // namespace gui::draw
