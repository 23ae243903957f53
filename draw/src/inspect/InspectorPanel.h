#pragma once

#include "GLMemory.h"
#include "Overdraw.h"
#include "TextureSheet.h"

#include <gui/draw/Drawing.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/port/FrameObserver.h>

#include <chrono>
#include <deque>
#include <string>
#include <vector>

namespace gui::draw
{

/// What an Inspector shows of the views of one context.
class InspectorPanel
{
public:
    /// What it shows beside numbers.
    struct Modes
    {
        bool isWireframe = false;
        bool isOverdraw = false;
        bool hasTextures = false;
        bool isHeld = false;
    };

    void begin(const Modes& modes);
    /// Draws the panel, with the numbers of the frame that has just ended.
    void end(const gl::FrameObserver::Frame& frame, const Modes& modes);

private:
    using Clock = std::chrono::steady_clock;

    struct Times
    {
        double cpu, gpu; // milliseconds; below 0 for none
    };

    void lookAtMemory();
    void show(const gl::FrameObserver::Frame& frame, const Modes& modes);
    void addGraph(const td::RectNormalized<double>& rect);
    void addRow(double& baseline, const char* name, const std::string& value);
    void addTextures(const std::vector<TextureSheet::Place>& places);

    Drawing _drawing;
    Overdraw _overdraw;
    TextureSheet _textures;
    std::deque<Times> _times;
    GLMemory _memory;
    GLMemory::Names _own; // what the panel has made
    Clock::time_point _lookedAt;
    bool _hasLooked = false;
    bool _isWired = false;
    bool _hasNoStencil = false;
};

} // namespace gui::draw
