// The program's texts in the host's language: one table for help, messages and man page. English stands in
// the code and is the key; what the table does not have stays English.

#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace vemrado::tools {

// The text in the language of GetZrvCountry. The argument lives as long as the program, as literals do.
std::string_view Translated(std::string_view english);

// The translated text with the values in the places marked {}, in order.
std::string Filled(std::string_view english, std::initializer_list<std::string_view> values);

}  // namespace vemrado::tools
