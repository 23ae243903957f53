#include <gui/draw/Model.h>

#include "ModelPainter.h"
#include "PreparedMeshImpl.h"

#include <td/GUIThread.h>
#include <vo/Log.h>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

struct Model::Impl
{
    // @return null when there is no such part, else it, of which something changes now
    ModelPart* change(std::size_t part)
    {
        if (part >= parts.size())
            return nullptr;
        painter.markChanged(true);
        return &parts[part];
    }
    // @return what a part has at first, when there is no such part
    const ModelPart& get(std::size_t part) const
    {
        static const ModelPart s_none;
        return part < parts.size() ? parts[part] : s_none;
    }

    ModelPainter painter;
    ModelLook look;
    std::vector<ModelPart> parts;
    ImageStore images;
};

Model::Model()
    : _pImpl(std::make_unique<Impl>())
{
}

Model::~Model() = default;

bool Model::setMesh(const Mesh& mesh) { return setMesh(PreparedMesh(mesh)); }

bool Model::setMesh(PreparedMesh&& mesh)
{
    TD_ASSERT_GUI_THREAD(false);
    if (const std::string& fault = mesh.getFault(); !fault.empty())
    {
        vo::dbgLog("Error! Model::setMesh: %s!", fault.c_str());
        return false;
    }
    const std::unique_ptr<PreparedMesh::Impl> pTaken = std::move(mesh._pImpl);
    if (!pTaken)
    {
        clear();
        return true;
    }
    _pImpl->painter.setData(std::move(pTaken->data));
    _pImpl->parts = std::move(pTaken->parts);
    _pImpl->images = std::move(pTaken->images);
    return true;
}

void Model::clear()
{
    TD_ASSERT_GUI_THREAD();
    _pImpl->painter.setData({});
    _pImpl->parts.clear();
    _pImpl->images.clear();
}

const Box3& Model::getBounds() const { return _pImpl->painter.getBounds(); }

std::size_t Model::getNumberOfTriangles() const { return _pImpl->painter.getNumberOfTriangles(); }

std::size_t Model::getNumberOfParts() const { return _pImpl->parts.size(); }

void Model::setLight(const Light& light) { _pImpl->look.light = light; }

void Model::setEdges(const Line& line) { _pImpl->look.edges = line; }

void Model::setWireLine(const Line& line) { _pImpl->look.wires = line; }

void Model::setOutline(const Line& line) { _pImpl->look.outline = line; }

void Model::setSection(const Section& section)
{
    _pImpl->look.section = section;
    _pImpl->painter.markChanged(true);
}

void Model::setTolerance(double points) { _pImpl->look.tolerance = points > 0 ? points : 0; }

bool Model::setMaterial(std::size_t part, const Material& material)
{
    TD_ASSERT_GUI_THREAD(false);
    ModelPart* pPart = _pImpl->change(part);
    if (pPart == nullptr)
        return false;
    const std::uint32_t texture = _pImpl->images.take(material.texture);
    _pImpl->images.giveBack(pPart->texture);
    pPart->texture = texture;
    pPart->material = material;
    return true;
}

bool Model::setVisible(std::size_t part, bool isVisible)
{
    TD_ASSERT_GUI_THREAD(false);
    ModelPart* pPart = _pImpl->change(part);
    if (pPart != nullptr)
        pPart->isVisible = isVisible;
    return pPart != nullptr;
}

bool Model::setSelected(std::size_t part, bool isSelected)
{
    TD_ASSERT_GUI_THREAD(false);
    if (part >= _pImpl->parts.size())
        return false;
    _pImpl->parts[part].isSelected = isSelected;
    _pImpl->painter.markChanged(false);
    return true;
}

bool Model::setWires(std::size_t part, Wires wires)
{
    if (part >= _pImpl->parts.size())
        return false;
    _pImpl->parts[part].wires = wires;
    _pImpl->painter.markChanged(false);
    return true;
}

bool Model::setHatch(std::size_t part, const Hatch& hatch)
{
    ModelPart* pPart = _pImpl->change(part);
    if (pPart != nullptr)
        pPart->hatch = hatch;
    return pPart != nullptr;
}

void Model::setWires(Wires wires)
{
    for (ModelPart& part : _pImpl->parts)
        part.wires = wires;
    _pImpl->painter.markChanged(false);
}

void Model::clearSelection()
{
    for (ModelPart& part : _pImpl->parts)
        part.isSelected = false;
    _pImpl->painter.markChanged(false);
}

const Material& Model::getMaterial(std::size_t part) const { return _pImpl->get(part).material; }

bool Model::isVisible(std::size_t part) const { return _pImpl->get(part).isVisible; }

bool Model::isSelected(std::size_t part) const { return _pImpl->get(part).isSelected; }

Model::Wires Model::getWires(std::size_t part) const { return _pImpl->get(part).wires; }

std::uint64_t Model::getTag(std::size_t part) const { return _pImpl->get(part).tag; }

bool Model::draw(const Eye& eye)
{
    return _pImpl->painter.draw(eye, _pImpl->look, _pImpl->parts, _pImpl->images, eye._pLayers.lock());
}

bool Model::drawColor(const Eye& eye, td::Color color)
{
    const glm::vec4 components = glm::vec4(color.red(), color.green(), color.blue(), color.alpha()) / 255.0F;
    return _pImpl->painter.drawFlat(eye, _pImpl->look, _pImpl->parts, {ModelProgram::Plain, components, 0});
}

bool Model::drawIds(const Eye& eye, std::uint32_t first)
{
    return _pImpl->painter.drawFlat(eye, _pImpl->look, _pImpl->parts, {ModelProgram::Ids, {}, first});
}

} // namespace gui::draw
