// OpenGLVersion: the process-wide record of the GL context found and of the render path in
// force. SetOpenGLInfomation applies the two-character version test that may force the
// fixed-function path; nothing here ever switches the shader path on by itself.
// It does not hold the gap editor's private lists; they come with the editor.
#pragma once

#include <interfaces/VxPoint.h>

class OpenGLVersion {
public:
    static OpenGLVersion* GetInstance();

    // Reads vendor, renderer, version and GLU version from the current context and applies the
    // version test. Needs a current context.
    void SetOpenGLInfomation();
    // The version test on its own: true when a GL_VERSION string lets the shader path stand.
    // Only the first and third characters are compared, with "4" and "3"; two-digit majors are
    // not provided for, so "10.0" fails. A null or short string fails.
    static bool VersionPassesTest(const char* version);

    bool Get_btestversion() const { return m_bTestVersion; }
    void Set_btestversion(bool value) { m_bTestVersion = value; }
    // Toggle. Switching the shader path on clears the shader renderer's buffer map so vertex data
    // is sent again; switching it off leaves the map.
    void Set_btestversion();
    void Set_VBOClear();

    int Get_my_opengl_version() const { return m_myOpenGLVersion; }
    int JudgeOpenGLVersionSelected() const { return m_myOpenGLVersion; }
    void Set_my_opengl_version(int version) { m_myOpenGLVersion = version; }

    bool Get_textured() const { return m_textured; }
    void Set_textured(bool textured) { m_textured = textured; }
    int Getmy_exe_type() const { return m_exeType; }
    void Setmy_exe_type(int type) { m_exeType = type; }

    int Getmy_GlazePos_state() const { return m_glazePosState; }
    // 1 becomes 2; any other state becomes 1.
    void SetGlazePos();
    void SetGlazePosStep0(const VxPoint& p) { m_glazePos = p; }
    const VxPoint& GetGlazePosStep0() const { return m_glazePos; }

    // The strings of the last SetOpenGLInfomation; held, not owned (GL owns them). Null before.
    const char* GetVendor() const { return m_vendor; }
    const char* GetRenderer() const { return m_renderer; }
    const char* GetVersion() const { return m_version; }
    const char* GetGluVersion() const { return m_gluVersion; }

private:
    OpenGLVersion() = default;
    OpenGLVersion(const OpenGLVersion&) = delete;
    OpenGLVersion& operator=(const OpenGLVersion&) = delete;

    int m_myOpenGLVersion = 30;
    bool m_bTestVersion = true;
    const char* m_vendor = nullptr;
    const char* m_renderer = nullptr;
    const char* m_version = nullptr;
    const char* m_gluVersion = nullptr;
    VxPoint m_glazePos;
    int m_glazePosState = 1;
    int m_exeType = 0;
    bool m_textured = true;
};
