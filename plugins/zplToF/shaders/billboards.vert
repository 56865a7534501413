#version 150

uniform mat4 modelViewProjection;

in vec3 vertexPosition;
in vec3 vertexColor;

out vec3 gs_color;

void main()
{
    gl_Position = modelViewProjection * vec4(vertexPosition, 1);
    gs_color = vertexColor;
}
