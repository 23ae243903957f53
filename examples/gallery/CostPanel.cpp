#include "CostPanel.h"

#include "Drawing.h"

#include <gui/gl/Context.h>

#include <cstdio>
#include <string>

namespace gallery
{

namespace
{

using gui::gl::Command;
using gui::gl::FrameLedger;

constexpr Cell cPlace{12, 12, 368, 132};
constexpr float cPanelMargin = 14;
constexpr float cPitch = 22;
constexpr float cFirstBaseline = 26;

std::string commandsOf(const FrameLedger::Frame& cost)
{
    using Type = Command::Type;
    struct Kinds
    {
        const char* name;
        unsigned int count;
    };
    const Kinds kinds[] = {
        {"arrays", cost.getCount(Type::DrawArrays)},
        {"elements", cost.getCount(Type::DrawElements)},
        {"instanced", cost.getCount(Type::DrawArraysInstanced) + cost.getCount(Type::DrawElementsInstanced)},
        {"points", cost.getCount(Type::DrawArrayPoints) + cost.getCount(Type::DrawElementPoints)},
        {"patches", cost.getCount(Type::DrawArrayPatches) + cost.getCount(Type::DrawElementPatches)},
        {"matrices", cost.getCount(Type::MVPSetter)}};
    std::string text;
    for (const Kinds& kind : kinds)
        if (kind.count > 0)
            text += (text.empty() ? "" : ", ") + std::to_string(kind.count) + ' ' + kind.name;
    return text.empty() ? "none" : text;
}

std::string milliseconds(double time)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.2f ms", time);
    return time < 0 ? "not measured" : text;
}

} // namespace

bool CostPanel::init()
{
    const glm::vec4 color = colorOf(td::ColorID::Black, 0.7F);
    const float right = cPlace.left + cPlace.width, bottom = cPlace.top + cPlace.height;
    const ColorVertex corners[] = {{{cPlace.left, cPlace.top}, color},
                                   {{right, cPlace.top}, color},
                                   {{cPlace.left, bottom}, color},
                                   {{right, bottom}, color}};
    _buffer.appendShape(gui::gl::Primitive::TriangleStrip, &corners[0].position.x, std::size(corners));
    _lettering.init();
    return _program.link();
}

void CostPanel::draw(const Frame& frame, const FrameLedger::Frame& cost)
{
    using gui::gl::Context;
    if (!_isInitialised && !(_isInitialised = init()))
        return;
    Context::enable(Context::Flag::Blend);
    Context::setBlendFunction(gui::gl::Blend::Factor::SrcAlpha, gui::gl::Blend::Factor::OneMinusSrcAlpha);
    _program.draw(_buffer, pointsToClip(frame));
    _program.deActivate();
    Context::disable(Context::Flag::Blend);
    if (!_lettering.begin(frame))
        return;
    const std::pair<const char*, std::string> lines[] = {
        {"commands", commandsOf(cost)},
        {"draws", std::to_string(cost.nDraws) + " of " + std::to_string(cost.nVertices) + " vertices"},
        {"state", std::to_string(cost.nStatesSent) + " sent, " + std::to_string(cost.nStatesSaved) + " saved"},
        {"uploads", std::to_string(cost.nUploads) + " of " + std::to_string(cost.nBytesUploaded) + " bytes"},
        {"time", milliseconds(cost.cpuTime) + " here, " + milliseconds(cost.gpuTime) + " in GL"}};
    float baseline = cPlace.top + cFirstBaseline;
    for (const auto& [name, value] : lines)
    {
        _lettering.add({cPlace.left + cPanelMargin, baseline}, name, {0, td::ColorID::LightSteelBlue});
        _lettering.add({cPlace.left + cPanelMargin + 78, baseline}, value, {0, td::ColorID::White});
        baseline += cPitch;
    }
    _lettering.draw();
}

} // namespace gallery
