// The warnings collected during a load of the symbology. Each set of tables has its own, so that loads side
// by side show each its own problems.

#pragma once

#include "support/containers.h"
#include "support/table_text.h"

namespace vemrado {

class CollectedMessages final : public TableProblems {
  public:
    void ClearMessages();
    // A warning that finds no memory is dropped.
    void AddMessage(const char* text) override;
    // Adds path + ": " + text.
    void AddFileMessage(const char* path, const char* text) override;
    // Shows all warnings in one box with an exclamation mark and an OK button, if there are any. Keeps them.
    void ShowMessages() const;

  private:
    void Append(const char* path, const char* text);

    String messages;
    int haveMessages = 0;
};

}  // namespace vemrado
