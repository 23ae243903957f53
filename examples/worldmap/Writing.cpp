#include "Writing.h"

#include <gui/gl/Context.h>

namespace worldmap
{

namespace
{

using examples::Captions;
using gui::gl::Blend;
using gui::gl::Context;

constexpr Captions::BakedFont cFonts[] = {{":worldmap/sans-12.font", 12},
                                          {":worldmap/sans-18.font", 18},
                                          {":worldmap/sans-24.font", 24},
                                          {":worldmap/sans-36.font", 36}};
constexpr float cSize = 12;
constexpr td::Point<float> cRim[] = {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}};

} // namespace

const Captions::Style cRimmed{td::ColorID::DarkSlateGray, td::ColorID::White, cRim};
const Captions::Style cPlain{td::ColorID::DarkSlateGray, td::ColorID::White, {}};

bool initWriting(Captions& captions) { return captions.init(cFonts, cSize); }

void drawWriting(Captions& captions)
{
    // Letters come multiplied by their coverage. Multiplied once more, the rim's edges would be grey.
    Context::setBlendFunction(Blend::Factor::One, Blend::Factor::OneMinusSrcAlpha);
    Context::enable(Context::Flag::Blend);
    captions.draw(gui::gl::Text::Ctrl::NoDepthTest);
    Context::disable(Context::Flag::Blend);
}

} // namespace worldmap
