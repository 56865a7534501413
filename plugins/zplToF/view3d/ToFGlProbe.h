#pragma once

/// Asks whether the scene can be drawn here at all: Qt 3D itself draws nothing and reports nothing when it
/// gets no usable OpenGL context. User-interface thread.
namespace ToFGlProbe {

/// bGeometryShader: OpenGL 3.2 core or newer, for the square points. Otherwise any desktop OpenGL from 3.0 or
/// OpenGL ES from 3.0 on. A positive answer is remembered, a negative one asked again.
bool canRender(bool bGeometryShader);

/// Whether the context of the last positive answer is drawn by the processor. False before there was one.
bool isSoftware();

} // namespace ToFGlProbe
