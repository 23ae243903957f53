#version 330 core
out vec4 color;
void main() { color = vec4(1.0); }
