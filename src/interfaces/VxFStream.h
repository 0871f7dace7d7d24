// VxFStream: the input stream VxObject::Read takes. It holds the whole text in memory (from a
// file or a string) and reads whitespace-separated tokens; every read reports failure instead of
// throwing, so a truncated or corrupt file makes Read answer false. It does not write: writing
// goes to a plain std::ostream.
#pragma once

#include <fstream>
#include <sstream>
#include <string>

class VxFStream {
public:
    VxFStream() = default;
    explicit VxFStream(const std::string& text) : m_in(text) {}

    // Loads a whole file; false (and an empty stream) when it cannot be read.
    bool Open(const std::string& path) {
        std::ifstream f(path, std::ios::binary);
        m_in.str(std::string());
        m_in.clear();
        if (!f)
            return false;
        std::ostringstream ss;
        ss << f.rdbuf();
        m_in.str(ss.str());
        return true;
    }
    void SetText(const std::string& text) {
        m_in.str(text);
        m_in.clear();
    }

    bool IsGood() const { return !m_in.fail(); }
    std::istream& Stream() { return m_in; }

    // One value of any type with an operator>>; false on failure, after which the stream stays
    // failed.
    template <class T> bool Get(T& value) {
        m_in >> value;
        return !m_in.fail();
    }
    // Reads one token and compares it; false when it differs or is missing.
    bool Expect(const std::string& token) {
        std::string s;
        m_in >> s;
        if (m_in.fail() || s != token) {
            m_in.setstate(std::ios::failbit);
            return false;
        }
        return true;
    }

private:
    std::istringstream m_in;
};
