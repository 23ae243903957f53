#pragma once

#include "../drawing/ImageStore.h"
#include "ModelData.h"

#include <gui/draw/PreparedMesh.h>

#include <string>
#include <vector>

namespace gui::draw
{

struct PreparedMesh::Impl
{
    std::string fault;
    ModelData data;
    std::vector<ModelPart> parts;
    ImageStore images;
};

} // namespace gui::draw
