#pragma once

#include "Scene.h"

#include <memory>
#include <span>

namespace gallery
{

/// A scene of the gallery. The texts are HTML without markup.
struct SceneInfo
{
    const char* name;  ///< in file names and on the command line
    const char* title; ///< of the picture
    const char* text;  ///< what it shows, a sentence or two
    std::unique_ptr<Scene> (*make)();
};

/// All scenes, in the order in which they are shown.
std::span<const SceneInfo> scenes();

// One for each scene's source.
std::unique_ptr<Scene> makeCoastline();
std::unique_ptr<Scene> makePrimitives();
std::unique_ptr<Scene> makeTextures();
std::unique_ptr<Scene> makePolygon();
std::unique_ptr<Scene> makeMeshes();
std::unique_ptr<Scene> makeCamera();
std::unique_ptr<Scene> makeSky();
std::unique_ptr<Scene> makeInstances();
std::unique_ptr<Scene> makeState();
std::unique_ptr<Scene> makeAnimation();
std::unique_ptr<Scene> makePolygons();
std::unique_ptr<Scene> makeLines();
std::unique_ptr<Scene> makeRecycled();
std::unique_ptr<Scene> makePlot();
std::unique_ptr<Scene> makeAxes();
std::unique_ptr<Scene> makeStream();
std::unique_ptr<Scene> makeScatter();
std::unique_ptr<Scene> makeHeatMaps();
std::unique_ptr<Scene> makeInput();
std::unique_ptr<Scene> makeGrab();
std::unique_ptr<Scene> makeWindows();
std::unique_ptr<Scene> makeText();
std::unique_ptr<Scene> makeUnicode();
std::unique_ptr<Scene> makeDepth();
std::unique_ptr<Scene> makeFills();
std::unique_ptr<Scene> makeStrokes();
std::unique_ptr<Scene> makeIcons();
std::unique_ptr<Scene> makeBlueprint();
std::unique_ptr<Scene> makeDimensions();
std::unique_ptr<Scene> makeType();
std::unique_ptr<Scene> makeScripts();
std::unique_ptr<Scene> makeLabels();
std::unique_ptr<Scene> makeEditor();
std::unique_ptr<Scene> makeModel();
std::unique_ptr<Scene> makeSamples();
std::unique_ptr<Scene> makeOpening();
std::unique_ptr<Scene> makeOrbitScene();
std::unique_ptr<Scene> makePick3D();
std::unique_ptr<Scene> makeFlights();
std::unique_ptr<Scene> makeHorizon();
std::unique_ptr<Scene> makeSection();
std::unique_ptr<Scene> makeGlass();
std::unique_ptr<Scene> makeShadow();
std::unique_ptr<Scene> makeSwarm();

} // namespace gallery
