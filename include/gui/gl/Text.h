#pragma once

#include "Font.h"
#include "Program.h"
#include "Textures.h"

#include <cnt/SafeFullVector.h>
#include <td/Export.h>
#include <td/Size.h>
#include <td/StringBase.h>
#include <td/Types.h>

#include <glm/mat4x4.hpp>

#include <memory>

namespace gui::gl
{

/// Text over a view: a few fonts and the program that draws what they hold, in the frame's own coordinates.
///
/// Once, in the view's onInit: init, allocFonts, loadFont for each of them. Then add strings to the fonts (getFont),
/// and render in every onDraw; setFrameSize when the view's size changes; release in cleanResources. Fonts upload their
/// strings by themselves at the first render after a change. Not copyable. init, loadFont, commit and render need the
/// view's context current. GUI thread only.
class GUIGL_API Text
{
public:
    /// What render does to GL's state: the sum of 1 (depth test off), 2 (face culling off) and 4 (blending on). What
    /// was turned off stays off afterwards; blending is off afterwards.
    /// Glyphs are quads, transparent around the letter, and with the depth test on they write the depth of all of it:
    /// Context::maskDepthBuffer(false) around render keeps them from hiding each other and what is drawn later.
    enum class Ctrl : td::BYTE
    {
        None = 0, ///< everything stays as the application left it; without blending glyphs have black boxes
        NoDepthTest = 1,
        NoCulling = 2,
        NoDepthTestNoCulling = 3,
        Blend = 4,            ///< over and under 3D objects by the strings' depth, where the depth test is on
        BlendNoDepthTest = 5, ///< over everything: the usual choice
        BlendNoCulling = 6,
        BlendNoDepthTestNoCulling = 7
    };

    /// The program of the text: glyphs in a flat colour, all four channels multiplied by the atlas' red one, the
    /// coverage. Attributes: position (0) and atlas coordinates (1), two floats each.
    class GUIGL_API Prog : public Program
    {
    public:
        /// These set uniforms of the program in use.
        void setProjection(const glm::mat4& projection) { setMVP(projection); }
        void setSampler(Textures::Unit unit);
        void setColor(const glm::vec4& color);
        void setZPos(float z);

    protected:
        void onLinked() override;
        void onError() override;

    private:
        friend class Font;

        int _samplerPos = -1;
        int _colorPos = -1;
        int _zPos = -1;
    };

    Text();
    ~Text();
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    /// Links the program, which is not the one in use afterwards (none is). May be called again in another context.
    /// @param frameSize  as for setFrameSize  @param unit  the texture unit that atlases are bound to while rendering
    /// A program that doesn't link is said in the log (see Program::link) and asserts; nothing is rendered then.
    void init(const td::Size<double>& frameSize, Textures::Unit unit);

    /// A text of one font: init with unit T0, allocFonts(1) and loadFont(0, fontName). The frame's size is left to be
    /// set.
    /// @return the font, owned by this object. One that can't be loaded ("Error! Text::init cannot load font: %s"
    ///         follows what Font::load logs) has no glyphs: adding strings adds nothing
    Font& init(const char* fontName);

    /// Says how large the frame is: text coordinates go from (0, 0) at its top left corner to this size at its bottom
    /// right one. A width or height of 0 changes nothing.
    void setFrameSize(const td::Size<double>& size);

    /// Makes n fonts, without glyphs. With the number there is already, the fonts and their strings stay; otherwise
    /// they are destroyed, and with them what they have in GL.
    void allocFonts(unsigned char n);

    /// @param index  below the number of fonts: element access stops the program otherwise, after "Error! Text::getFont
    ///               N of N fonts! Call allocFonts before!"  @return the font, owned by this object
    Font* getFont(unsigned char index);

    /// Font::load of one of the fonts.
    Font* loadFont(unsigned char index, const char* fileName);
    Font* loadFont(unsigned char index, const td::StringBase& fileName);

    /// Uploads the strings of every font, in the order of their indices. Failures are in the log.
    void commit();

    /// Commits and draws every font, in the order of their indices. Afterwards no vertex array and no program is bound.
    /// Needs a successful init (an assertion). A font that was never loaded asserts and is left out, as is one that
    /// can't be committed; "Error! Text::render font %u has no texture!" is logged once until fonts are allocated anew.
    void render(Ctrl ctrl);
    /// The same with the text somewhere else than flat on the frame.
    /// @param projection  from the text's coordinates to clip space. With OrthoView::getProjection text lies in the
    ///                    plane and moves and grows with it; it is upright where the plane's y grows downwards
    void render(Ctrl ctrl, const glm::mat4& projection);

    /// Font::release of every font. The program stays until this object is destroyed. Needs no context.
    void release();

private:
    Prog _program;
    glm::mat4 _projection;
    cnt::SafeFullVector<Font, false> _fonts;
    std::shared_ptr<cnt::SafeFullVector<wchar_t, false>> _utf32; // of all the fonts
    Textures::Unit _unit = Textures::Unit::T0;
    bool _isMissingTextureSaid = false;
};

/// Set GL's state as `ctrl` asks, before and after drawing text. Text::render does both. For values above 7 startCtrl
/// does nothing, and endCtrl turns blending off.
GUIGL_API void startCtrl(Text::Ctrl ctrl);
GUIGL_API void endCtrl(Text::Ctrl ctrl);

} // namespace gui::gl
