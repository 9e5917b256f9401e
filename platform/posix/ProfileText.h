// ProfileText.h - the text of an ini file: reading and editing, without any file.
// A section is a line "[name]", up to its last bracket; an entry is a line "key=value"; a line that begins with ";" is a
// comment. Blanks around names, keys and values do not count, nor does case in names and keys; the first section and the first
// key of a name win. Edits leave every other character of the text as it was.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/common/Text.h"

namespace morvil {

// Text of an ini file with the encoding that it came in.
struct ProfileText {
    enum class Encoding : std::uint8_t { Latin1, Utf8, Utf16 };
    WString text;
    Encoding encoding = Encoding::Latin1;
};

// A byte-order mark tells UTF-16 (low byte first) and UTF-8; anything else is Latin-1.
ProfileText decodeProfile(std::string_view bytes);
std::string encodeProfile(const ProfileText& profile);

// The value as it stands behind "=", without blanks around it and without one pair of quotes. Nothing when missing.
std::optional<WStringView> findProfileValue(WStringView text, WStringView section, WStringView key);
std::vector<WStringView> profileSections(WStringView text);
std::vector<WStringView> profileKeys(WStringView text, WStringView section);

// Sets the value; a missing section is added at the end of the text, a missing key behind the last entry of its section.
void setProfileValue(WString& text, WStringView section, WStringView key, WStringView value);
// Removing what is missing changes nothing.
void removeProfileKey(WString& text, WStringView section, WStringView key);
void removeProfileSection(WString& text, WStringView section);

}  // namespace morvil
