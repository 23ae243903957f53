#pragma once

/// All of gui::gl. STEP BY STEP, a program that draws:
///
///  1. `gui::Application app(argc, argv);` first of all in main: it finds the window system.
///  2. Derive from View; from OrthoView for a plane to pan and zoom, from CameraView for space to fly through.
///  3. Give it, as members, a Buffer with its layout and a program: Flat2DProgram, Color2DProgram, or your own Program.
///  4. `view.createContext(...)` makes the GL context and calls onInit; before it, nothing has one.
///  5. In onInit fill the buffer: appendShape, addCube, addSphere, Triang2D for polygons and thick lines.
///  6. In onInit, too, link the program, and load images (Textures) and fonts (Text::init).
///  7. In onDraw clear (Context::clear), then `program.draw(buffer, getProjection())`, then `text.render(...)`.
///  8. `return app.run(view, "Title", {640, 400});` shows the view and serves it until its window closes.
///  9. When something changed, reDraw asks for a frame; startAnimation has one drawn at each beat of the display.
/// 10. Nothing to clean up: members delete their GL objects. What went wrong is a line in the log (vo::setLogSink).
///
/// A Command changes a shape's colour or texture; a CommandList, which a Buffer has, replays them. An OffscreenContext
/// draws pictures without a view. GL calls of your own are welcome wherever a context is current:
/// `#include <epoxy/gl.h>`, and link `guigl::epoxy`, which comes with the library's CMake package. Delete what you make
/// by CurrentContext::deleteName, and call setCurrentProgram(nullptr) after using programs and binding textures of your
/// own.
///
/// What it does not do: it keeps no scene, fills no polygon with holes and smooths edges by samples alone
/// (Context::setSamples), all of which gui::draw::Drawing does for the plane (gui/draw/draw.h, in a library above this
/// one); it lays out text from left to right without kerning, ligatures or letters that join; it has no buttons, menus
/// or layout of widgets; and all of it is for one thread, the GUI thread (td/GUIThread.h), but for classes whose
/// comment says otherwise, and for plain values: each thread may have its own of these.

#include "Buffer.h"
#include "BufferTexture.h"
#include "Camera.h"
#include "CameraView.h"
#include "Color.h"
#include "Color2DProgram.h"
#include "Color3DProgram.h"
#include "Command.h"
#include "CommandList.h"
#include "Context.h"
#include "ContextResource.h"
#include "CubeMap3DProgram.h"
#include "CurrentContext.h"
#include "DataType.h"
#include "Flat2DProgram.h"
#include "Font.h"
#include "FrameLedger.h"
#include "Framebuffer.h"
#include "GLSL.h"
#include "ICameraLimiter.h"
#include "InputTuning.h"
#include "KeyCodes.h"
#include "Lit3DProgram.h"
#include "ObjectGenerator.h"
#include "OffscreenContext.h"
#include "OrthoView.h"
#include "Primitive.h"
#include "Program.h"
#include "Quads.h"
#include "Scene.h"
#include "SimplePolygon.h"
#include "SkyBox.h"
#include "StateGuard.h"
#include "Text.h"
#include "Texture.h"
#include "Texture2DProgram.h"
#include "Texture3DProgram.h"
#include "Textures.h"
#include "Triang2D.h"
#include "View.h"
#include "ViewLayer.h"
