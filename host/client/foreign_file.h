// Tells map files from all others by their first bytes.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vemrado::client {

// As many bytes of a file's start are looked at.
inline constexpr size_t lookedAtBytes = 65536;

// The UTF-8 byte order mark, which some editors write. The module takes it for a part of the first line.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// What a file looks like that is no map: "gzip", "UTF-16 text", "plain text without a record". Empty for what
// the module can make something of: the start holds a line that opens a record, whatever comes before it (a
// byte order mark, comments, a title), or there is nothing but blanks.
std::string_view ForeignKind(std::string_view start);

// "NAME: not a VKM file (looks like gzip)".
std::string ForeignFileMessage(const std::string& name, std::string_view kind);

// Stricter, for programs that try many formats on a file: its first line that is not empty, but for form
// feeds before it, opens a record, every whole line is text, and a record of header or element has the
// numbers that belong to it. A record of any kind is enough where the file is named *.vkm.
bool IsCertainlyVkm(std::string_view start, bool namedVkm);

}  // namespace vemrado::client
