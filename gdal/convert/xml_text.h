// XML written from the outside in.

#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vemrado::gdal {

class XmlText {
  public:
    using Attribute = std::pair<const char*, std::string>;

    explicit XmlText(std::string prologue) : text(std::move(prologue)) {}

    // An element that is open for as long as this lives.
    class Element {
      public:
        Element(XmlText& to, const char* elementName, const std::vector<Attribute>& attributes = {})
            : xml(to), name(elementName) {
            xml.Open(name, attributes, ">\n");
        }
        Element(const Element&) = delete;
        Element& operator=(const Element&) = delete;
        ~Element() { xml.text.append("</").append(name).append(">\n"); }

      private:
        XmlText& xml;
        const char* name;
    };

    void Leaf(const char* name, const std::vector<Attribute>& attributes) { Open(name, attributes, "/>\n"); }

    // An element that holds characters.
    void Leaf(const char* name, const std::vector<Attribute>& attributes, const std::string& characters);

    const std::string& Text() const { return text; }

  private:
    void Open(const char* name, const std::vector<Attribute>& attributes, const char* end);

    std::string text;
};

}  // namespace vemrado::gdal
