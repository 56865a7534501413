#version 150

layout(points) in;
layout(triangle_strip, max_vertices = 4) out;

// Edge of a square at distance 1, and the correction for the shape of the window.
uniform vec2 parPointSize;
uniform vec2 parWindowSize;

in vec3 gs_color[];

out vec3 fs_color;

void corner(vec2 size, vec2 direction)
{
    // Before the perspective divide, so that farther points are drawn smaller.
    gl_Position = gl_in[0].gl_Position;
    gl_Position.xy += direction * size;
    fs_color = gs_color[0];
    EmitVertex();
}

void main()
{
    vec2 size = parPointSize * parWindowSize;
    corner(size, vec2(-0.5, -0.5));
    corner(size, vec2(+0.5, -0.5));
    corner(size, vec2(-0.5, +0.5));
    corner(size, vec2(+0.5, +0.5));
    EndPrimitive();
}
