#include "InspectorPanel.h"

#include <gui/draw/Affine.h>
#include <gui/draw/Path.h>
#include <gui/draw/Stroke.h>
#include <gui/draw/TextStyle.h>
#include <gui/gl/Context.h>
#include <gui/gl/StateGuard.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace gui::draw
{

namespace
{

using gl::Command;
using gl::FrameLedger;

constexpr std::size_t cMostTimes = 240; // frames in the graph
constexpr double cBeat = 1000.0 / 60;   // milliseconds
constexpr auto cBetweenLooks = std::chrono::milliseconds(500);

// In points.
constexpr double cLeft = 12, cTop = 12, cWidth = 372, cHeight = 266, cMargin = 12, cNames = 78, cPitch = 17;
constexpr double cGraphHeight = 64;

constexpr td::Color cGround("#10141ce0"), cFrame("#ffffff30"), cName("#9fb4cc"), cValue("#ffffff"), cHere("#5ab4ff"),
    cInGL("#ffb347"), cWarning("#ff8c7a");

TextStyle textOf(td::Color color, double size = 11.5) { return {.size = size, .paint = color}; }

std::string milliseconds(double time)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f ms", time);
    return time < 0 ? "not measured" : text;
}

std::string commandsOf(const FrameLedger::Frame& frame)
{
    using Type = Command::Type;
    struct Kinds
    {
        const char* name;
        unsigned int count;
    };
    const Kinds kinds[] = {
        {"arrays", frame.getCount(Type::DrawArrays)},
        {"elements", frame.getCount(Type::DrawElements)},
        {"instanced", frame.getCount(Type::DrawArraysInstanced) + frame.getCount(Type::DrawElementsInstanced)},
        {"points", frame.getCount(Type::DrawArrayPoints) + frame.getCount(Type::DrawElementPoints)},
        {"patches", frame.getCount(Type::DrawArrayPatches) + frame.getCount(Type::DrawElementPatches)},
        {"matrices", frame.getCount(Type::MVPSetter)}};
    std::string text;
    for (const Kinds& kind : kinds)
        if (kind.count > 0)
            text += (text.empty() ? "" : ", ") + std::to_string(kind.count) + ' ' + kind.name;
    return text.empty() ? "none" : text;
}

std::string nameOf(const GLMemory::Object& object)
{
    const char* const kind = object.kind == GLMemory::Kind::Buffer
                                 ? "buffer "
                                 : (object.kind == GLMemory::Kind::Texture ? "texture " : "renderbuffer ");
    std::string text = kind + std::to_string(object.name);
    if (object.width > 0)
        text += ", " + std::to_string(object.width) + " x " + std::to_string(object.height);
    return text + ": " + toText(object.nBytes);
}

} // namespace

void InspectorPanel::begin(const Modes& modes)
{
    const FrameLedger::Pause pause;
    _hasNoStencil = modes.isOverdraw && !_overdraw.begin();
    _isWired = modes.isWireframe;
    if (_isWired)
        gl::Context::setPolygonMode(gl::Context::PolygonMode::Line);
}

void InspectorPanel::lookAtMemory()
{
    const Clock::time_point now = Clock::now();
    if (_hasLooked && now - _lookedAt < cBetweenLooks)
        return;
    _hasLooked = true;
    _lookedAt = now;
    _memory = GLMemory::ask(_own);
}

void InspectorPanel::addRow(double& baseline, const char* name, const std::string& value)
{
    _drawing.text({cLeft + cMargin, baseline}, name, textOf(cName));
    _drawing.text({cLeft + cMargin + cNames, baseline}, value, textOf(cValue));
    baseline += cPitch;
}

// Newest at the right; a line where a display of 60 frames a second wants the next one. A few that took much longer
// than the others, the first one as a rule, are cut off.
void InspectorPanel::addGraph(const td::RectNormalized<double>& rect)
{
    std::vector<double> longest;
    for (const Times& times : _times)
        longest.push_back(std::max(times.cpu, times.gpu));
    const auto nearlyAll = longest.begin() + static_cast<std::ptrdiff_t>((longest.size() - 1) * 9 / 10);
    std::ranges::nth_element(longest, nearlyAll);
    const double most = 1.25 * std::max(cBeat, *nearlyAll);
    const double width = (rect.right - rect.left) / cMostTimes;
    const auto y = [&](double time)
    { return rect.bottom - (rect.bottom - rect.top) * std::clamp(time / most, 0.0, 1.0); };
    Path here, inGL;
    double x = rect.right - width * static_cast<double>(_times.size());
    for (const Times& times : _times)
    {
        here.addRect({x, y(times.cpu), x + width, rect.bottom});
        if (times.gpu >= 0)
            inGL.addRect({x, y(times.gpu) - 0.75, x + width, y(times.gpu) + 0.75});
        x += width;
    }
    _drawing.fill(here, cHere);
    _drawing.fill(inGL, cInGL);
    Path beat;
    beat.moveTo({rect.left, y(cBeat)}).lineTo({rect.right, y(cBeat)});
    _drawing.stroke(beat, {.width = 1, .dashes = {3, 3}}, "#ffffff60");
    _drawing.text({rect.left, y(cBeat) - 2}, "16.7 ms", textOf("#ffffff90", 9), {.anchor = Anchor::BottomLeft});
}

void InspectorPanel::addTextures(const std::vector<TextureSheet::Place>& places)
{
    for (const TextureSheet::Place& place : places)
    {
        const td::Point<double> at = place.at;
        Path frame;
        frame.addRect({at.x - 0.5, at.y - 0.5, at.x + place.size.width + 0.5, at.y + place.size.height + 0.5});
        _drawing.stroke(frame, {.width = 1}, "#ffffffa0");
        TextStyle style = textOf(cValue, 9.5);
        style.halo = {2, "#10141c"};
        _drawing.text({at.x, at.y + place.size.height + 12},
                      std::to_string(place.texture.name) + ": " + std::to_string(place.texture.width) + " x " +
                          std::to_string(place.texture.height),
                      style);
    }
}

void InspectorPanel::end(const gl::FrameObserver::Frame& frame, const Modes& modes)
{
    if (std::exchange(_isWired, false))
        gl::Context::setPolygonMode(gl::Context::PolygonMode::Fill);
    const FrameLedger::Pause pause;
    const gl::StateGuard guard;
    glBindFramebuffer(GL_FRAMEBUFFER, frame.framebuffer);
    glViewport(0, 0, frame.size.width, frame.size.height);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_STENCIL_TEST);
    glDisable(GL_CULL_FACE);
    gl::Context::setPolygonMode(gl::Context::PolygonMode::Fill);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);

    const GLMemory::Names before = GLMemory::getNames();
    _overdraw.end();
    show(frame, modes);
    GLMemory::Names own;
    for (const auto& name : GLMemory::getNames())
        if (_own.contains(name) || !before.contains(name))
            own.insert(name);
    _own = std::move(own);
}

void InspectorPanel::show(const gl::FrameObserver::Frame& frame, const Modes& modes)
{
    const FrameLedger::Frame& cost = FrameLedger::getLast();
    _times.push_back({cost.cpuTime, cost.gpuTime});
    while (_times.size() > cMostTimes)
        _times.pop_front();
    lookAtMemory();

    _drawing.clear();
    const td::Size<double> view{frame.size.width / frame.scale, frame.size.height / frame.scale};
    if (modes.hasTextures)
    {
        const std::vector<TextureSheet::Place> places = TextureSheet::arrange(_memory, view);
        _textures.draw(places, view);
        addTextures(places);
    }
    Path ground;
    ground.addRoundedRect({cLeft, cTop, cLeft + cWidth, cTop + cHeight}, {6, 6});
    _drawing.fill(ground, cGround);
    _drawing.stroke(ground, {.width = 1}, cFrame);
    const double right = cLeft + cWidth - cMargin;
    addGraph({cLeft + cMargin, cTop + cMargin, right, cTop + cMargin + cGraphHeight});
    double baseline = cTop + cMargin + cGraphHeight + 20;
    addRow(baseline, "frame",
           std::to_string(cost.number) + (modes.isHeld ? ", held" : "") + "; " + milliseconds(cost.cpuTime) +
               " here, " + milliseconds(cost.gpuTime) + " in GL");
    addRow(baseline, "draws", std::to_string(cost.nDraws) + " of " + std::to_string(cost.nVertices) + " vertices");
    addRow(baseline, "commands", commandsOf(cost));
    addRow(baseline, "state",
           std::to_string(cost.nStatesSent) + " sent, " + std::to_string(cost.nStatesSaved) + " saved");
    addRow(baseline, "uploads", std::to_string(cost.nUploads) + " of " + toText(cost.nBytesUploaded));
    if (GLMemory::isTold())
    {
        addRow(baseline, "memory",
               toText(_memory.getBytes(GLMemory::Kind::Buffer)) + " in " +
                   std::to_string(_memory.getCount(GLMemory::Kind::Buffer)) + " buffers, " +
                   toText(_memory.getBytes(GLMemory::Kind::Texture)) + " in " +
                   std::to_string(_memory.getCount(GLMemory::Kind::Texture)) + " textures");
        for (std::size_t i = 0; i < std::min<std::size_t>(3, _memory.objects.size()); ++i)
            addRow(baseline, i == 0 ? "largest" : "", nameOf(_memory.objects[i]));
    }
    else
        addRow(baseline, "memory", "not told by this driver");
    const char* const keys = _hasNoStencil ? "Overdraw needs a stencil buffer, which this context has not."
                                           : "F6 textures, F7 wires, F8 step, F9 hold, F10 overdraw, F12 hide";
    _drawing.text({cLeft + cMargin, cTop + cHeight - 10}, keys, textOf(_hasNoStencil ? cWarning : cName, 10));
    _drawing.draw(Affine(), frame.scale);
}

} // namespace gui::draw
