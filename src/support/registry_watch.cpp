#include "support/registry_watch.h"

namespace beacon {
namespace {

HKEY Open(HKEY hive, const std::wstring& key) {
    HKEY opened = nullptr;
    return RegOpenKeyExW(hive, key.c_str(), 0, KEY_NOTIFY, &opened) == ERROR_SUCCESS ? opened : nullptr;
}

std::wstring ParentOf(const std::wstring& key) {
    const size_t end = key.rfind(L'\\');
    return end == std::wstring::npos ? std::wstring() : key.substr(0, end);
}

}  // namespace

RegistryWatch::RegistryWatch(HKEY hive, const wchar_t* key) : hive_(hive), key_(key) {}

RegistryWatch::~RegistryWatch() {
    Close();
    if (event_ != nullptr) CloseHandle(event_);
}

unsigned RegistryWatch::Version() noexcept {
    if (armed_ && WaitForSingleObject(event_, 0) == WAIT_TIMEOUT) return version_;
    ++version_;
    try {
        Arm();
    } catch (...) {
        Close();
    }
    return version_;
}

// The key itself is watched for its values or, while it is not there, the nearest one above for new sub-keys. That this
// one goes is told by its parent alone.
void RegistryWatch::Arm() {
    Close();
    if (event_ == nullptr) event_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    if (event_ == nullptr) return;
    std::wstring nearest = key_;
    while (!nearest.empty() && (keys_[0] = Open(hive_, nearest)) == nullptr) nearest = ParentOf(nearest);
    keys_[1] = Open(hive_, ParentOf(nearest));
    ResetEvent(event_);  // closing a key may have raised it
    const auto watch = [this](HKEY key) {
        constexpr DWORD kChanges = REG_NOTIFY_CHANGE_NAME | REG_NOTIFY_CHANGE_LAST_SET;
        return key != nullptr && RegNotifyChangeKeyValue(key, FALSE, kChanges, event_, TRUE) == ERROR_SUCCESS;
    };
    armed_ = watch(keys_[0]) && watch(keys_[1]) && IsNearest(nearest);
}

// Whether nothing was made or removed while the watches were being set.
bool RegistryWatch::IsNearest(const std::wstring& nearest) const {
    const auto exists = [this](const std::wstring& key) {
        const HKEY opened = Open(hive_, key);
        if (opened != nullptr) RegCloseKey(opened);
        return opened != nullptr;
    };
    return exists(nearest) && (nearest == key_ || !exists(key_.substr(0, key_.find(L'\\', nearest.size() + 1))));
}

void RegistryWatch::Close() noexcept {
    armed_ = false;
    for (HKEY& key : keys_) {
        if (key != nullptr) RegCloseKey(key);
        key = nullptr;
    }
}

}  // namespace beacon
