// Shader: one GL program built from a vertex and a fragment source text. A failed compile or link
// prints one record per failing stage to standard output and the object stays usable: its
// program name is kept and later uses go on, so a broken shader shows as a wrong picture, never as
// a crash. Uniforms are looked up by name at every set; the object caches nothing.
#pragma once

#include <glm/glm.hpp>

#include <cstdint>
#include <string>

class Shader {
public:
    // Both arguments are source texts, not table names. Needs a current GL context.
    Shader(std::string vertexSource, std::string fragmentSource);

    void use();
    // Deletes the GL program; the object itself stays valid as memory.
    void deleteProgram();

    // The program must be current: none of these binds it. A name the program does not hold is
    // ignored by GL.
    void setFloat(const std::string& name, float value);
    void setVec3(const std::string& name, const glm::vec3& value);
    void setVec3(const std::string& name, float x, float y, float z);
    void setMat4(const std::string& name, const glm::mat4& value);

    std::uint32_t program = 0;

private:
    // type: "VERTEX", "FRAGMENT" or "PROGRAM".
    static void checkCompileErrors(std::uint32_t object, const std::string& type);
};
