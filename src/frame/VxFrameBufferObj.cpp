// VxFrameBufferObj: the framebuffer and its two renderbuffers, and the read-back.
#include <frame/VxFrameBufferObj.h>

#include <GL/glew.h>

#include <cstring>

// Nothing is released here: the object lives inside the render state singleton, which dies at
// process exit with whatever context is then current (or none). The host calls Destory.
VxFrameBufferObj::~VxFrameBufferObj() = default;

// A capture:
//   Setup, Begin, a frame (RenderScene and the host's overlays), ReadImgFromFBO, End, Destory.
bool VxFrameBufferObj::Setup(int width, int height) {
    if (m_framebuffer > 0) {
        glDeleteFramebuffers(1, &m_framebuffer);
        glDeleteRenderbuffers(1, &m_colorBuffer);
        glDeleteRenderbuffers(1, &m_depthBuffer);
        m_framebuffer = 0;
    }
    m_width = static_cast<std::uint16_t>(width);
    m_height = static_cast<std::uint16_t>(height);

    glGenFramebuffers(1, &m_framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
    GLuint names[2] = {0, 0};
    glGenRenderbuffers(2, names);
    m_colorBuffer = names[0];
    m_depthBuffer = names[1];

    // The storage takes the sizes as given, not as narrowed.
    glBindRenderbuffer(GL_RENDERBUFFER, m_depthBuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, width, height);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glBindRenderbuffer(GL_RENDERBUFFER, m_colorBuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);

    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, m_depthBuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_colorBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    m_offScreen = true;
    return true;
}

void VxFrameBufferObj::Begin() {
    glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_colorBuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, m_depthBuffer);
}

void VxFrameBufferObj::End() {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

void VxFrameBufferObj::Destory() {
    glDeleteFramebuffers(1, &m_framebuffer);
    glDeleteRenderbuffers(1, &m_colorBuffer);
    glDeleteRenderbuffers(1, &m_depthBuffer);
    m_framebuffer = 0;
    m_offScreen = false;
}

void VxFrameBufferObj::PushMatrix() {
    glPushMatrix();
}

void VxFrameBufferObj::PopMatrix() {
    glPopMatrix();
}

void VxFrameBufferObj::ReadImgFromFBO(unsigned char* buffer, int size) {
    if (buffer == nullptr) {
        return;
    }
    if (size > 0) {
        std::memset(buffer, 0, static_cast<size_t>(size));
    }
    // A buffer too small for the whole image stays zero rather than being overrun.
    if (size < GetFrameImgSize()) {
        return;
    }
    glReadPixels(0, 0, m_width, m_height, GL_BGRA, GL_UNSIGNED_BYTE, buffer);
}
