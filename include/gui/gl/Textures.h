#pragma once

#include "ContextResource.h"
#include "Texture.h"

#include <cnt/Array.h>
#include <cnt/PushBackVector.h>
#include <td/Export.h>
#include <td/Types.h>

#include <glm/vec3.hpp>

#include <array>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <tuple>
#include <vector>

namespace gui
{
class Texture;
}

namespace gui::gl
{

class KeptImage;
class KeptTexture;

/// A set of GL textures, filled once from images or image files and bound by position while drawing.
///
/// Every append adds at the end; positions never change. The set owns its GL textures: release() and the destructor
/// delete them, in the context that made them. All textures of a set belong to one context; when that dies they are
/// gone, and the next append begins a new set. But when another context takes its place (see View), they are made anew,
/// of what is kept for that, with the same positions, and the same names where the driver lets them be: see
/// setKeptForRestore. What GL calls of your own change in them is not known here. 2D textures repeat in both
/// directions, have mipmaps and linear filters; cube maps clamp to their edges, with linear filters and no mipmaps. Not
/// copyable. Unless said otherwise, operations need the view's context current.
class GUIGL_API Textures
{
public:
    /// A texture unit: unit n is GL_TEXTURE0 + n.
    using Unit = Texture::Unit;

    /// A texture of the set.
    struct TextureInfo
    {
        unsigned int id = 0; ///< GL name; 0 means no texture
        Texture::Type type{};
    };

    Textures();
    ~Textures();
    Textures(const Textures&) = delete;
    Textures& operator=(const Textures&) = delete;

    /// Uploads each image as a 2D texture. Images are not mirrored: the first row becomes t = 0.
    /// @param textures  not owned, read during the call; 3 bytes per pixel become RGB, 4 become RGBA
    /// @param type      recorded with each
    /// @return false when an image was refused; those before it in the list stay in the set. The log says
    ///         "Error! Textures::append empty texture at position: %d" or
    ///         "Error! Textures::append tries to use non RGB texture!", and nothing when GL had no texture name to
    ///         give. An empty list gives true.
    bool append(const std::initializer_list<gui::Texture*>& textures, Texture::Type type);

    /// Loads each file and uploads it as a 2D texture, mirrored, so that the image's bottom row becomes t = 0.
    /// @param fileNames  PNG or JPEG files of 3 bytes per pixel (load a gui::Texture for images with alpha)
    /// @return false when a file was refused; those before it stay. The log says
    ///         "Error! Textures::append empty texture name at pos = %d",
    ///         "Error! Textures::append cannot load texture with name = %s" or
    ///         "Error! Textures::append tries to use non RGB texture! Texture name=%s", and nothing when GL had no
    ///         texture name to give.
    bool append(const std::initializer_list<const char*>& fileNames, Texture::Type type);

    /// Makes one cube map of six image files of equal size and 3 bytes per pixel. They are not mirrored.
    /// @param fileNames  the faces in the order -x, +z, +x, -z, +y, -y, none null (an assertion)
    /// @return false, with nothing added, when a face is refused. Log lines name a face by GL's order (+x, -x, +y, -y,
    ///         +z, -z, from 0): "Error! Textures::appendCubeMap cannot load texture with pos=%zu!",
    ///         "Error! Textures::appendCubeMap tries to use non RGB texture with pos=%zu!",
    ///         "Error! Textures::appendCubeMap ->All faces in cube map must have same size!",
    ///         "Error! Textures::appendCubeMap empty texture at position: %d",
    ///         "Error! Textures::appendCubeMap cannot generate texture!",
    ///         "ERROR! OpenGL error in setupVBO! Error code = %x"
    bool appendCubeMap(const cnt::Array<const char*, 6>& fileNames);
    /// The same with images in memory, not owned, read during the call.
    bool appendCubeMap(const cnt::Array<const gui::Texture*, 6>& textures);
    /// The same with what a function gives for each pixel.
    /// @param size   of each face's edges in pixels, 1 to 16,384 (an assertion)
    /// @param color  what is seen in a direction, a unit vector: red, green and blue from 0 to 1, cut off beyond. Not
    ///               empty (an assertion)
    bool appendCubeMap(int size, const std::function<glm::vec3(const glm::vec3& direction)>& color);

    /// Makes room for n textures. Meant for an empty set: textures that it holds are deleted first.
    void reserve(unsigned short n);

    unsigned short size() const { return static_cast<unsigned short>(_textures.size()); }
    unsigned short capacity() const { return static_cast<unsigned short>(_textures.capacity()); }
    /// The number of textures modulo 256.
    unsigned char getAllocatedUnits() const { return static_cast<unsigned char>(_textures.size()); }
    /// The driver's GL_MAX_TEXTURE_IMAGE_UNITS, as read by the last append of images; 0 before.
    unsigned short getMaximumUnits() const { return _maxUnits; }
    /// The driver's GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, likewise.
    unsigned short getMaximumCombinedUnits() const { return _maxCombinedUnits; }

    /// An index must be below size(): element access stops the program otherwise.
    unsigned int getID(unsigned short index) const;
    Texture::Type getType(unsigned short index) const;
    std::tuple<unsigned int, Texture::Type> getIDAndType(unsigned short index) const;

    /// The unit for the next bind, and a bind to it by position.
    void setActiveUnit(Unit unit);
    void bindToActiveUnit(unsigned short index);
    /// Both of the above.
    void setActive(Unit unit, unsigned short index);
    /// The same, and sets the sampler uniform at this location, of the program in use, to the unit's number.
    void setUniform(int location, Unit unit, unsigned short index);

    /// GL_TEXTURE0 + n for unit n; a value above T31 is a programming error and gives 0.
    static unsigned int getZavPosID(Unit unit);
    /// Makes the unit active and binds the texture there; checks nothing but the unit.
    static void bindToSamplerUnit(unsigned int textureID, Unit unit, Texture::Type type);

    /// false frees what is kept of the textures that there are, and nothing is kept of those that are appended from now
    /// on: when the context is lost they are too. They have the name 0 then, and what is drawn with them is black, as
    /// with any texture that GL does not have; "Error! Textures: texture %zu went with its context, as it is not kept
    /// for restoring" says so, once. true, the default, costs the size of the file for those that were loaded from
    /// files, as it is on the disk, and 3 or 4 bytes per pixel for images, from now on.
    void setKeptForRestore(bool isKept);
    bool isKeptForRestore() const { return _isKept; }

    /// Deletes every texture and empties the set, which can be filled again. Needs no context.
    void release();

private:
    friend class ProgHelper;
    friend class Program;

    void forgetDead();
    bool canAppend(const char* operation, std::size_t n);
    bool uploadFaces(const std::array<const gui::Texture*, 6>& faces);
    void keep(KeptImage image, bool isMirrored);
    void sayLoss(std::size_t index);
    void onContext(ContextResource::Event event);
    void restore(std::size_t index);

    cnt::PushBackVector<TextureInfo, 0> _textures;
    std::vector<std::unique_ptr<KeptTexture>> _kept; // by position; null for what is not kept
    unsigned short _maxUnits = 0;
    unsigned short _maxCombinedUnits = 0;
    bool _isKept = true;
    bool _isLossSaid = false;
    bool _hasLost = false; // some that were not kept
    ContextResource _home{
        [](void* pThis, ContextResource::Event event) { static_cast<Textures*>(pThis)->onContext(event); }, this};
};

} // namespace gui::gl
