// VxFrameBufferObj: a small off-screen target (one colour and one depth renderbuffer) into which
// the host renders whole frames at a size of its own and reads them back. The library never
// calls it; the aux text object only asks whether rendering is off screen. It does not test the
// framebuffer for completeness, does not manage the viewport, and has no stencil attachment.
#pragma once

#include <cstdint>

class VxFrameBufferObj {
public:
    // Touches no GL.
    VxFrameBufferObj() = default;
    virtual ~VxFrameBufferObj();
    // Copies the GL names as they are: two copies then share the same buffers.
    VxFrameBufferObj(const VxFrameBufferObj&) = default;
    VxFrameBufferObj& operator=(const VxFrameBufferObj&) = default;

    // (Re)makes the buffers; sizes are kept in 16 bits. Always true: completeness is not tested.
    bool Setup(int width, int height);
    // Binds the framebuffer and attaches colour, then depth, again.
    void Begin();
    // Back to the window's framebuffer.
    void End();
    // Deletes the buffers and clears the off-screen flag; the stored size stays.
    void Destory();
    void PushMatrix();
    void PopMatrix();
    // Zero-fills `size` bytes, then reads the image as BGRA, rows bottom-up.
    void ReadImgFromFBO(unsigned char* buffer, int size);

    int GetFrameImgWidth() const { return m_width; }
    int GetFrameImgHeight() const { return m_height; }
    // Bytes of one image: width x height x 4.
    int GetFrameImgSize() const { return m_width * m_height * 4; }
    bool GetIsOffScreenRendering() const { return m_offScreen; }

private:
    std::uint16_t m_width = 0;
    std::uint16_t m_height = 0;
    unsigned int m_framebuffer = 0;
    // First and second of the two renderbuffer names generated together.
    unsigned int m_colorBuffer = 0;
    unsigned int m_depthBuffer = 0;
    bool m_offScreen = false;
};
