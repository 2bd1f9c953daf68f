// A short name shared by reference counting. The characters stand behind a header of a 16-bit count and a
// 32-bit length, end in two zero bytes, and come from stringPool. The strings that share characters serve one
// thread at a time. Nothing throws.

#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

namespace vemrado {

// The faults of shared strings set sharedStringError and call the hook, which takes care of it; the one
// installed sets the error back to none.
enum class SharedStringError { none = 0, noMemory = 1, negativeLength = 2, alreadyReleased = 3 };
extern std::atomic<SharedStringError> sharedStringError;
extern void (*sharedStringErrorHook)(SharedStringError error);

class CSharedString {
  public:
    CSharedString();
    CSharedString(const CSharedString& other);
    CSharedString& operator=(const CSharedString& other);
    ~CSharedString();

    // Takes a copy of the text; null changes nothing. Without memory the string is empty.
    void Assign(const char* text);
    // The same with a length; a negative one is a fault and changes nothing.
    void Assign(const char* text, int32_t length);

    const char* Text() const { return characters != nullptr ? characters : ""; }
    int32_t Length() const;
    std::string_view View() const { return {Text(), static_cast<size_t>(Length())}; }

  private:
    static char* MakeBlock(const char* text, int32_t length);
    char* Share() const;
    void Release();

    char* characters;  // null reads as empty
};

}  // namespace vemrado
