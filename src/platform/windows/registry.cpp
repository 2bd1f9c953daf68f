// The registry in the module's own view: no view flag is passed.

#include <windows.h>

#include "platform/native.h"

namespace vemrado::platform {

namespace {

class Key {
  public:
    Key(HKEY root, const char* subkey) {
        if (subkey == nullptr) {
            key = root;
        } else {
            opened = RegOpenKeyExA(root, subkey, 0, KEY_READ, &key) == ERROR_SUCCESS;
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() {
        if (opened) RegCloseKey(key);
    }
    HKEY Handle() const { return key; }

  private:
    HKEY key = nullptr;
    bool opened = false;
};

}  // namespace

bool NativeQueryRegistryValue(RegistryRoot, const char* subkey, const char* name, uint32_t* type, char* data,
                              uint32_t* size) {
    const Key key(HKEY_LOCAL_MACHINE, subkey);
    if (key.Handle() == nullptr) return false;
    DWORD valueType = REG_NONE;
    DWORD valueSize = *size;
    if (RegQueryValueExA(key.Handle(), name, nullptr, &valueType, reinterpret_cast<BYTE*>(data),
                         &valueSize) != ERROR_SUCCESS) {
        return false;
    }
    *type = valueType;
    *size = valueSize;
    return true;
}

}  // namespace vemrado::platform
