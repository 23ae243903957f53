#pragma once

#include <epoxy/gl.h>

#include <array>

namespace gui::gl
{

/// What glEnable and glDisable turn on and off.
struct StateFlag
{
    GLenum name;
    const char* text;
};

inline constexpr std::array cStateFlagNames{StateFlag{GL_BLEND, "GL_BLEND"},
                                            StateFlag{GL_CLIP_DISTANCE0, "GL_CLIP_DISTANCE0"},
                                            StateFlag{GL_CLIP_DISTANCE1, "GL_CLIP_DISTANCE1"},
                                            StateFlag{GL_CLIP_DISTANCE2, "GL_CLIP_DISTANCE2"},
                                            StateFlag{GL_CLIP_DISTANCE3, "GL_CLIP_DISTANCE3"},
                                            StateFlag{GL_CLIP_DISTANCE4, "GL_CLIP_DISTANCE4"},
                                            StateFlag{GL_CLIP_DISTANCE5, "GL_CLIP_DISTANCE5"},
                                            StateFlag{GL_COLOR_LOGIC_OP, "GL_COLOR_LOGIC_OP"},
                                            StateFlag{GL_CULL_FACE, "GL_CULL_FACE"},
                                            StateFlag{GL_DEPTH_CLAMP, "GL_DEPTH_CLAMP"},
                                            StateFlag{GL_DEPTH_TEST, "GL_DEPTH_TEST"},
                                            StateFlag{GL_DITHER, "GL_DITHER"},
                                            StateFlag{GL_FRAMEBUFFER_SRGB, "GL_FRAMEBUFFER_SRGB"},
                                            StateFlag{GL_LINE_SMOOTH, "GL_LINE_SMOOTH"},
                                            StateFlag{GL_MULTISAMPLE, "GL_MULTISAMPLE"},
                                            StateFlag{GL_POLYGON_OFFSET_FILL, "GL_POLYGON_OFFSET_FILL"},
                                            StateFlag{GL_POLYGON_OFFSET_LINE, "GL_POLYGON_OFFSET_LINE"},
                                            StateFlag{GL_POLYGON_OFFSET_POINT, "GL_POLYGON_OFFSET_POINT"},
                                            StateFlag{GL_POLYGON_SMOOTH, "GL_POLYGON_SMOOTH"},
                                            StateFlag{GL_PRIMITIVE_RESTART, "GL_PRIMITIVE_RESTART"},
                                            StateFlag{GL_PROGRAM_POINT_SIZE, "GL_PROGRAM_POINT_SIZE"},
                                            StateFlag{GL_RASTERIZER_DISCARD, "GL_RASTERIZER_DISCARD"},
                                            StateFlag{GL_SAMPLE_ALPHA_TO_COVERAGE, "GL_SAMPLE_ALPHA_TO_COVERAGE"},
                                            StateFlag{GL_SAMPLE_ALPHA_TO_ONE, "GL_SAMPLE_ALPHA_TO_ONE"},
                                            StateFlag{GL_SAMPLE_COVERAGE, "GL_SAMPLE_COVERAGE"},
                                            StateFlag{GL_SCISSOR_TEST, "GL_SCISSOR_TEST"},
                                            StateFlag{GL_STENCIL_TEST, "GL_STENCIL_TEST"},
                                            StateFlag{GL_TEXTURE_CUBE_MAP_SEAMLESS, "GL_TEXTURE_CUBE_MAP_SEAMLESS"}};

} // namespace gui::gl
