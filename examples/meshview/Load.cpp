#include "Load.h"

#include <assimp/GltfMaterial.h>
#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <stdexcept>
#include <utility>

using namespace gui::draw;

namespace
{

td::Color colorOf(const aiColor4D& color, bool isLinear)
{
    const auto byteOf = [isLinear](float value)
    {
        value = std::clamp(value, 0.0F, 1.0F);
        if (isLinear)
            value = value <= 0.0031308F ? 12.92F * value : 1.055F * std::pow(value, 1 / 2.4F) - 0.055F;
        return static_cast<td::BYTE>(std::lround(255 * value));
    };
    return {byteOf(color.r), byteOf(color.g), byteOf(color.b), 255};
}

// From beside the file, or from inside it.
Image pictureOf(const aiScene& scene, const char* name, const std::filesystem::path& folder)
{
    const aiTexture* const pInside = scene.GetEmbeddedTexture(name);
    if (pInside == nullptr)
    {
        std::string path = name;
        std::ranges::replace(path, '\\', '/');
        return Image::fromFile((folder / path).c_str());
    }
    if (pInside->mHeight != 0)
    {
        std::vector<td::Color> pixels;
        pixels.reserve(std::size_t{pInside->mWidth} * pInside->mHeight);
        for (std::size_t i = 0; i < std::size_t{pInside->mWidth} * pInside->mHeight; ++i)
        {
            const aiTexel& texel = pInside->pcData[i];
            pixels.emplace_back(texel.r, texel.g, texel.b, texel.a);
        }
        return Image(static_cast<int>(pInside->mWidth), static_cast<int>(pInside->mHeight), pixels);
    }
    gui::Texture picture;
    if (!picture.loadFromMemory(reinterpret_cast<const td::BYTE*>(pInside->pcData), pInside->mWidth))
        return {};
    return Image(std::move(picture));
}

std::vector<Material> materialsOf(const aiScene& scene, const std::filesystem::path& folder)
{
    std::vector<Material> materials(scene.mNumMaterials);
    for (unsigned int i = 0; i < scene.mNumMaterials; ++i)
    {
        const aiMaterial& from = *scene.mMaterials[i];
        Material& to = materials[i];
        aiColor4D color;
        float exponent = 0;
        aiString picture;
        if (from.Get(AI_MATKEY_BASE_COLOR, color) == aiReturn_SUCCESS)
            to.color = colorOf(color, true);
        else if (from.Get(AI_MATKEY_COLOR_DIFFUSE, color) == aiReturn_SUCCESS)
            to.color = colorOf(color, false);
        // A highlight of the exponent 1000 is about as small as the smallest here.
        if (from.Get(AI_MATKEY_SHININESS, exponent) == aiReturn_SUCCESS && exponent > 1)
            to.shininess = std::min(std::log10(exponent) / 3, 1.0F);
        for (const aiTextureType type : {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE})
            if (!to.texture && from.GetTexture(type, 0, &picture) == aiReturn_SUCCESS)
                to.texture = pictureOf(scene, picture.C_Str(), folder);
    }
    return materials;
}

Mesh meshOf(const aiMesh& from)
{
    Mesh to;
    for (unsigned int i = 0; i < from.mNumVertices; ++i)
    {
        const aiVector3D& p = from.mVertices[i];
        to.positions.emplace_back(p.x, p.y, p.z);
        if (from.HasNormals())
            to.normals.emplace_back(from.mNormals[i].x, from.mNormals[i].y, from.mNormals[i].z);
        if (from.HasTextureCoords(0))
            to.textureCoordinates.emplace_back(from.mTextureCoords[0][i].x, from.mTextureCoords[0][i].y);
    }
    for (unsigned int i = 0; i < from.mNumFaces; ++i)
        to.indices.insert(to.indices.end(), from.mFaces[i].mIndices,
                          from.mFaces[i].mIndices + from.mFaces[i].mNumIndices);
    return to;
}

void add(Loaded& to, const aiScene& scene, const aiNode& node, const aiMatrix4x4& above,
         const std::vector<Material>& materials)
{
    const aiMatrix4x4 m = above * node.mTransformation;
    const glm::dmat4 placement(m.a1, m.b1, m.c1, m.d1, m.a2, m.b2, m.c2, m.d2, m.a3, m.b3, m.c3, m.d3, m.a4, m.b4, m.c4,
                               m.d4);
    for (unsigned int i = 0; i < node.mNumMeshes; ++i)
    {
        const aiMesh& mesh = *scene.mMeshes[node.mMeshes[i]];
        to.mesh.add(meshOf(mesh), mesh.mMaterialIndex < materials.size() ? materials[mesh.mMaterialIndex] : Material(),
                    to.names.size(), placement);
        to.names.emplace_back((mesh.mName.length > 0 ? mesh.mName : node.mName).C_Str());
    }
    for (unsigned int i = 0; i < node.mNumChildren; ++i)
        add(to, scene, *node.mChildren[i], m, materials);
}

} // namespace

std::array<glm::dvec3, 3> Loaded::cornersOf(std::size_t triangle) const
{
    const auto corner = [&](std::size_t i) { return mesh.positions[mesh.indices[3 * triangle + i]]; };
    return {corner(0), corner(1), corner(2)};
}

const std::string& Loaded::nameOf(std::size_t triangle) const
{
    std::size_t part = 0;
    for (; part + 1 < mesh.parts.size() && triangle >= mesh.parts[part].nTriangles; ++part)
        triangle -= mesh.parts[part].nTriangles;
    return names[part];
}

Loaded load(const std::string& file)
{
    Assimp::Importer importer;
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE, aiPrimitiveType_POINT | aiPrimitiveType_LINE);
    const aiScene* const pScene =
        importer.ReadFile(file, aiProcess_Triangulate | aiProcess_SortByPType | aiProcess_FindInvalidData |
                                    aiProcess_ValidateDataStructure | aiProcess_FlipUVs);
    if (pScene == nullptr || pScene->mRootNode == nullptr)
    {
        const std::string why = importer.GetErrorString();
        throw std::runtime_error(file + ": " + (why.empty() ? "nothing in it" : why.substr(0, why.find('\n'))));
    }
    const std::filesystem::path path(file);
    Loaded loaded;
    add(loaded, *pScene, *pScene->mRootNode, {}, materialsOf(*pScene, path.parent_path()));
    const std::string fault = loaded.mesh.findFault();
    if (loaded.mesh.indices.empty() || !fault.empty())
        throw std::runtime_error(file + ": " + (fault.empty() ? "no triangles in it" : fault));
    // In these z points upwards by custom; from other formats that say so the importer turns it.
    std::string ending = path.extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (ending == ".stl" || ending == ".3mf" || ending == ".amf" || ending == ".dxf")
        loaded.up = OrbitCamera::Up::Z;
    return loaded;
}
