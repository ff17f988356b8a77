// A small reader for the configuration file: INI sections of key=value lines,
// read the way the Windows private-profile functions read them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tw {

// The value of `key` in section `[section]` of an INI text, blanks and one
// pair of enclosing quotes removed.  Section and key names compare without
// regard to case and surrounding blanks; the first matching section and the
// first matching key in it win.  Lines starting with ';' are comments; lines
// without '=' are skipped.
std::optional<std::string> findProfileValue(std::string_view text, std::string_view section,
                                            std::string_view key);

// An integer as GetPrivateProfileIntA reads it: leading blanks, an optional
// sign, then decimal digits up to the first other character, accumulated
// modulo 2^32.  A value with no digits there gives `fallback`.
std::int32_t parseProfileInt(std::string_view value, std::int32_t fallback);

// GetPrivateProfileIntA on the file at `path`: a missing or unreadable file,
// section or key gives `fallback`.
std::int32_t readProfileInt(const std::string& path, std::string_view section, std::string_view key,
                            std::int32_t fallback);

}  // namespace tw
