// VxGLCheck: the debug-only GL error check. VX_CHECK_GL() drains glGetError and prints each error
// with file and line to stderr when VX_GL_DEBUG is defined (Debug builds), and compiles to nothing
// otherwise, so release frames never stall on an error query. It never aborts and never throws.
// No GL header is included here: GLenum is an unsigned int, and including gl.h ahead of glew.h
// breaks the files that use GLEW.
#pragma once

// Name of a GL error code ("GL_INVALID_ENUM"), "GL_NO_ERROR" for 0, "unknown GL error" otherwise.
const char* VxGLErrorString(unsigned int error);

// Drains every pending GL error, printing "file:line: GL error NAME" for each; returns how many.
int VxGLCheckErrors(const char* file, int line);

#ifdef VX_GL_DEBUG
#define VX_CHECK_GL() ((void)VxGLCheckErrors(__FILE__, __LINE__))
#else
#define VX_CHECK_GL() ((void)0)
#endif
