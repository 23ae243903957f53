#pragma once

namespace gui::gl
{

// OpenGL has these states, and OpenGL ES has not: there they are kept for each context. Programs have a uniform of the
// size of points, and commands draw triangles as lines or points.

/// Of points where a vertex shader gives no size.
void setPointSize(float size);
float getPointSize();

/// @param mode  GL_FILL, GL_LINE or GL_POINT
void setPolygonMode(unsigned int mode);
unsigned int getPolygonMode();

/// What the current context of OpenGL ES draws triangles as; 0 where they are filled, or GL sees to it.
inline unsigned int s_trianglesAs = 0;

/// Whom setPointSize calls on OpenGL ES; null at first.
inline void (*s_onPointSizeOfES)(float size) = nullptr;

} // namespace gui::gl
