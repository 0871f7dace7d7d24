// VxGLCheck: GL error names and the drain behind VX_CHECK_GL().
#include <platform/VxGLCheck.h>

#include <GL/gl.h>

#include <cstdio>

const char* VxGLErrorString(unsigned int error) {
    switch (error) {
    case GL_NO_ERROR:
        return "GL_NO_ERROR";
    case GL_INVALID_ENUM:
        return "GL_INVALID_ENUM";
    case GL_INVALID_VALUE:
        return "GL_INVALID_VALUE";
    case GL_INVALID_OPERATION:
        return "GL_INVALID_OPERATION";
    case GL_STACK_OVERFLOW:
        return "GL_STACK_OVERFLOW";
    case GL_STACK_UNDERFLOW:
        return "GL_STACK_UNDERFLOW";
    case GL_OUT_OF_MEMORY:
        return "GL_OUT_OF_MEMORY";
    case 0x0506:
        return "GL_INVALID_FRAMEBUFFER_OPERATION";
    case 0x0507:
        return "GL_CONTEXT_LOST";
    case 0x8031:
        return "GL_TABLE_TOO_LARGE";
    default:
        return "unknown GL error";
    }
}

int VxGLCheckErrors(const char* file, int line) {
    // glGetError keeps returning GL_CONTEXT_LOST on a lost context and some drivers report a
    // flag per error type; a bound keeps a broken context from looping here.
    int count = 0;
    for (int i = 0; i < 32; ++i) {
        const GLenum error = glGetError();
        if (error == GL_NO_ERROR) {
            break;
        }
        ++count;
        std::fprintf(stderr, "%s:%d: GL error %s (0x%04x)\n", file ? file : "?", line,
                     VxGLErrorString(error), error);
    }
    return count;
}
