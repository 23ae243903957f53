#pragma once

/// All of gui::gl.

#include "Buffer.h"
#include "Color.h"
#include "Color2DProgram.h"
#include "Color3DProgram.h"
#include "Command.h"
#include "CommandList.h"
#include "Context.h"
#include "CurrentContext.h"
#include "DataType.h"
#include "Flat2DProgram.h"
#include "GLSL.h"
#include "OffscreenContext.h"
#include "Primitive.h"
#include "Program.h"
#include "Scene.h"
#include "Texture.h"
#include "Texture2DProgram.h"
#include "Textures.h"
#include "View.h"
