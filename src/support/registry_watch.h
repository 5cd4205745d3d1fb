#pragma once

#include <windows.h>

#include <string>

namespace beacon {

/// Tells whether a registry key may have changed, so that what was read of it need not be read again. It asks without
/// waiting, and holds one event and two open keys. A key that does not exist is watched for being made.
class RegistryWatch {
public:
    /// The key is relative to the hive, one of the predefined handles, and has no leading "\".
    RegistryWatch(HKEY hive, const wchar_t* key);
    RegistryWatch(const RegistryWatch&) = delete;
    RegistryWatch& operator=(const RegistryWatch&) = delete;
    ~RegistryWatch();

    /// A number that is another one after every change of the key's values, of its being there, or of its sub-keys.
    /// What is read after a call is as fresh as the number; a key that cannot be watched has a new one at every call.
    unsigned Version() noexcept;

private:
    void Arm();
    bool IsNearest(const std::wstring& nearest) const;
    void Close() noexcept;

    const HKEY hive_;
    const std::wstring key_;
    HANDLE event_ = nullptr;
    HKEY keys_[2] = {};
    bool armed_ = false;
    unsigned version_ = 0;
};

}  // namespace beacon
