// CIniReader: a line parser for the dialect the colour files use.
//
//   [SECTION]          section header; text after ']' is ignored
//   key = value        split at the first '='; key and value trimmed
//   ; comment          also '#'; a ';' or '#' after white space ends a value
//
// Keys before any header live in the section "". A line that fits none of these is skipped.
// Line ends may be LF, CRLF or a lone CR; a UTF-8 byte order mark at the start is dropped (editors
// on Windows add one, and it would otherwise glue itself to the first section name). Embedded NUL
// bytes are ordinary characters: std::string carries them and nothing here looks for a
// terminator. Later duplicates of a key replace earlier ones; sections with the same name merge.
#include <interfaces/CIniReader.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace {

const std::string kEmpty;
constexpr std::uintmax_t kMaxFileSize = 16u << 20;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\v' || c == '\f';
}

std::string Trim(const std::string& s, std::size_t begin, std::size_t end) {
    while (begin < end && IsBlank(s[begin])) {
        ++begin;
    }
    while (end > begin && IsBlank(s[end - 1])) {
        --end;
    }
    return s.substr(begin, end - begin);
}

std::string Fold(std::string s) {
    for (char& c : s) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return s;
}

// Value text between the '=' and an end-of-line comment; one pair of enclosing double quotes is
// removed so that a value can keep leading or trailing blanks.
std::string ParseValue(const std::string& line, std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
        if ((line[i] == ';' || line[i] == '#') && i > begin && IsBlank(line[i - 1])) {
            end = i;
            break;
        }
    }
    std::string v = Trim(line, begin, end);
    if (v.size() >= 2 && v.front() == '"' && v.back() == '"') {
        v = v.substr(1, v.size() - 2);
    }
    return v;
}

bool ReadFile(const std::string& path, std::string& text) {
    std::error_code ec;
    const std::filesystem::path p(path);
    if (!std::filesystem::is_regular_file(p, ec) || ec) {
        return false;
    }
    const std::uintmax_t size = std::filesystem::file_size(p, ec);
    if (ec || size > kMaxFileSize) {
        return false;
    }
    std::ifstream in(p, std::ios::binary);
    if (!in) {
        return false;
    }
    text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

} // namespace

CIniReader::CIniReader() = default;
CIniReader::~CIniReader() = default;

void CIniReader::Clear() {
    m_sections.clear();
}

bool CIniReader::Load(const std::string& path) {
    Clear();
    std::string text;
    if (!ReadFile(path, text)) {
        std::string native = path;
        for (char& c : native) {
            if (c == '\\') {
                c = '/';
            }
        }
        if (native == path || !ReadFile(native, text)) {
            return false;
        }
    }
    return LoadFromString(text);
}

bool CIniReader::LoadFromString(const std::string& text) {
    Clear();
    std::size_t pos = 0;
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) {
        pos = 3;
    }
    std::string section;
    while (pos < text.size()) {
        std::size_t eol = text.find_first_of("\r\n", pos);
        if (eol == std::string::npos) {
            eol = text.size();
        }
        std::size_t begin = pos;
        std::size_t end = eol;
        pos = eol + 1;
        while (begin < end && IsBlank(text[begin])) {
            ++begin;
        }
        if (begin == end || text[begin] == ';' || text[begin] == '#') {
            continue;
        }
        if (text[begin] == '[') {
            const std::size_t close = text.find(']', begin + 1);
            if (close == std::string::npos || close >= end) {
                continue; // unterminated header: keep filling the current section
            }
            section = Fold(Trim(text, begin + 1, close));
            m_sections[section];
            continue;
        }
        const std::size_t eq = text.find('=', begin);
        if (eq == std::string::npos || eq >= end) {
            continue;
        }
        std::string key = Fold(Trim(text, begin, eq));
        if (key.empty()) {
            continue;
        }
        m_sections[section][key] = ParseValue(text, eq + 1, end);
    }
    return true;
}

const std::string& CIniReader::Get(const std::string& section, const std::string& key) const {
    const auto s = m_sections.find(Fold(section));
    if (s == m_sections.end()) {
        return kEmpty;
    }
    const auto k = s->second.find(Fold(key));
    return k == s->second.end() ? kEmpty : k->second;
}

bool CIniReader::HasKey(const std::string& section, const std::string& key) const {
    const auto s = m_sections.find(Fold(section));
    return s != m_sections.end() && s->second.count(Fold(key)) != 0;
}

bool CIniReader::HasSection(const std::string& section) const {
    return m_sections.count(Fold(section)) != 0;
}
