// Findings as a page of its own for a browser.

#pragma once

#include <string>

#include "map/findings.h"

namespace vemrado::tools {

class FindingPage {
  public:
    // Texts are UTF-8.
    void Add(const std::string& file, const map::Finding& finding, const std::string& message);
    // Throws client::OutputError.
    void Write(const std::string& output) const;

  private:
    std::string rows;
};

}  // namespace vemrado::tools
