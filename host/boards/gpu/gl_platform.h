// Where OpenGL's functions come from, and which OpenGL it is: the desktop's, or that of the page's browser
// (backends/web/gl_platform.cpp).
#pragma once

// A function of the current context by its name ("glClear"); null: it has none of that name.
void* FindGlFunction(const char* name);

const char* GlslVersion();  // what stands before each program's text
