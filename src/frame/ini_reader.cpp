#include "frame/ini_reader.h"

#include <exception>
#include <fstream>
#include <iterator>

namespace tw {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

std::string_view trim(std::string_view s) {
    while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
    while (!s.empty() && isBlank(s.back())) s.remove_suffix(1);
    return s;
}

char lower(char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; }

bool sameName(std::string_view a, std::string_view b) {
    a = trim(a);
    b = trim(b);
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (lower(a[i]) != lower(b[i])) return false;
    return true;
}

std::string_view unquote(std::string_view v) {
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front())
        return v.substr(1, v.size() - 2);
    return v;
}

}  // namespace

std::optional<std::string> findProfileValue(std::string_view text, std::string_view section,
                                            std::string_view key) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());

    bool inSection = false;
    bool sectionSeen = false;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = trim(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty() || line.front() == ';') continue;
        if (line.front() == '[') {
            // Only the first section of the name counts.
            if (inSection) return std::nullopt;
            const std::size_t close = line.find(']');
            inSection = !sectionSeen && sameName(line.substr(1, close == std::string_view::npos ? close : close - 1), section);
            sectionSeen = sectionSeen || inSection;
            continue;
        }
        if (!inSection) continue;
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos || !sameName(line.substr(0, equals), key)) continue;
        return std::string(unquote(trim(line.substr(equals + 1))));
    }
    return std::nullopt;
}

std::int32_t parseProfileInt(std::string_view value, std::int32_t fallback) {
    value = trim(value);
    bool negative = false;
    if (!value.empty() && (value.front() == '+' || value.front() == '-')) {
        negative = value.front() == '-';
        value.remove_prefix(1);
    }
    std::uint32_t magnitude = 0;
    std::size_t digits = 0;
    for (; digits < value.size() && value[digits] >= '0' && value[digits] <= '9'; ++digits)
        magnitude = magnitude * 10 + std::uint32_t(value[digits] - '0');
    if (digits == 0) return fallback;
    return std::int32_t(negative ? 0u - magnitude : magnitude);
}

std::int32_t readProfileInt(const std::string& path, std::string_view section, std::string_view key,
                            std::int32_t fallback) {
    // Runs at load: nothing may escape, whatever `path` names (a folder, an
    // unreadable or enormous file).
    try {
        std::ifstream file(path, std::ios::binary);
        if (!file) return fallback;
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        const auto value = findProfileValue(text, section, key);
        return value ? parseProfileInt(*value, fallback) : fallback;
    } catch (const std::exception&) {
        return fallback;
    }
}

}  // namespace tw
