#include <gui/draw/Program3.h>

#include <gui/gl/Buffer.h>
#include <gui/gl/Context.h>

namespace gui::draw
{

void Program3::onLinked() { _matrixLocation = getUniformLocation("mvp"); }

void Program3::draw(gl::Buffer& buffer, const Eye& eye, const State& state, const glm::dvec3& origin)
{
    using gl::Blend, gl::Context;
    if (!eye.isValid())
        return;
    Context::maskDepthBuffer(state.isHiding);
    if (!state.isHidden)
        Context::disable(Context::Flag::DepthTest);
    if (state.isOneSided)
        Context::enable(Context::Flag::CullFace);
    if (state.blending != Blending::None)
    {
        const bool isOver = state.blending == Blending::Over;
        Context::enable(Context::Flag::Blend);
        Context::setBlendFunction(isOver ? Blend::Factor::SrcAlpha : Blend::Factor::One,
                                  isOver ? Blend::Factor::OneMinusSrcAlpha : Blend::Factor::One);
    }
    if (isOK())
        set("eye", glm::vec3(eye.getPosition() - origin));
    if (isOK() && _matrixLocation < 0)
        Program::draw(buffer);
    else
        Program::draw(buffer, eye.getMatrix(origin));
    Context::disable(Context::Flag::Blend);
    Context::disable(Context::Flag::CullFace);
    Context::enable(Context::Flag::DepthTest);
    Context::maskDepthBuffer(true);
}

} // namespace gui::draw
