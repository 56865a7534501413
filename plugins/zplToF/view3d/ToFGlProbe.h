#pragma once

/// Tests whether the scene can be drawn at all: without a usable OpenGL context Qt 3D draws nothing and
/// reports no error. User-interface thread.
namespace ToFGlProbe {

/// bGeometryShader: requires OpenGL 3.2 core or newer, for the billboard shaders; otherwise OpenGL 3.0 or
/// OpenGL ES 3.0 or newer. A positive answer is cached, a negative one is not.
bool canRender(bool bGeometryShader);

/// Whether the last positive answer was for a software renderer. False before there was one.
bool isSoftware();

} // namespace ToFGlProbe
