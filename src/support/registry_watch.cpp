#include "support/registry_watch.h"

namespace beacon {
namespace {

/// Whether there is such a key. Null in `opened`, also when it must not be watched.
bool Open(HKEY hive, const std::wstring& key, HKEY& opened) {
    opened = nullptr;
    return RegOpenKeyExW(hive, key.c_str(), 0, KEY_NOTIFY, &opened) != ERROR_FILE_NOT_FOUND;
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
    while (!nearest.empty() && !Open(hive_, nearest, keys_[0])) nearest = ParentOf(nearest);
    Open(hive_, ParentOf(nearest), keys_[1]);
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
        HKEY opened;
        const bool result = Open(hive_, key, opened);
        if (opened != nullptr) RegCloseKey(opened);
        return result;
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
