// Writes answers to the page as JSON.

#pragma once

#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>

namespace vemrado::web {

// Appends a text in quotes.
void AppendQuoted(std::string_view utf8, std::string& json);

class Json {
  public:
    Json& Begin(char bracket) {  // { or [
        Separate();
        text += bracket;
        first = true;
        return *this;
    }
    Json& End(char bracket) {
        text += bracket;
        first = false;
        return *this;
    }
    Json& Key(std::string_view name) {
        String(name);
        text += ':';
        first = true;
        return *this;
    }
    Json& String(std::string_view utf8);
    Json& Number(double value) {
        Separate();
        char digits[32];
        std::snprintf(digits, sizeof digits, "%.15g", value);
        text += std::isfinite(value) ? digits : "null";
        return *this;
    }
    Json& Truth(bool value) {
        Separate();
        text += value ? "true" : "false";
        return *this;
    }

    // What is JSON already.
    Json& Literal(std::string_view json) {
        Separate();
        text += json;
        return *this;
    }

    // A member of an object.
    Json& Member(std::string_view name, std::string_view value) { return Key(name).String(value); }
    Json& Member(std::string_view name, const char* value) { return Key(name).String(value); }
    Json& Member(std::string_view name, bool value) { return Key(name).Truth(value); }
    Json& Member(std::string_view name, const std::string& value) { return Key(name).String(value); }
    template <typename Value>
    Json& Member(std::string_view name, Value value) {
        return Key(name).Number(static_cast<double>(value));
    }

    const std::string& Text() const { return text; }

  private:
    void Separate() {
        if (!first) text += ',';
        first = false;
    }

    std::string text;
    bool first = true;
};

}  // namespace vemrado::web
