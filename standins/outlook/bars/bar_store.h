#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "outlook/bars/bar_model.h"

namespace beacon::standin {

/// The permanent command bars of both kinds of windows. A new window starts with copies of its kind's bars; what it
/// changes on a bar it shares with the store is the store's from then on. Windows that are open already keep their own.
///
/// The file is JSON: {"explorer": [bars], "inspector": [bars]}.
class BarStore {
public:
    /// Reads the file when there is one. One that cannot be read stays as it is: `trouble` hears why, and the bars last
    /// as long as the store, as they do without a path. `trouble` also hears why a later Save failed.
    explicit BarStore(std::wstring path = {}, std::function<void(const std::wstring&)> trouble = {});
    BarStore(const BarStore&) = delete;
    BarStore& operator=(const BarStore&) = delete;
    /// Saves.
    ~BarStore();

    const std::vector<Bar>& Bars(WindowKind kind) const {
        return kind == WindowKind::Explorer ? explorer_ : inspector_;
    }

    /// Keeps a copy of a new bar, in place of one of the same name.
    void Add(WindowKind kind, const Bar& bar);
    /// Keeps the bar as it is now. Nothing happens when another window has removed it.
    void Update(WindowKind kind, const Bar& bar);
    void Remove(WindowKind kind, const std::wstring& name);

    /// Writes the file when something has changed since it was read or written.
    void Save();

private:
    std::vector<Bar>& Of(WindowKind kind) { return kind == WindowKind::Explorer ? explorer_ : inspector_; }

    void Read();
    void Write() const;

    std::wstring path_;
    const std::function<void(const std::wstring&)> trouble_;
    std::vector<Bar> explorer_;
    std::vector<Bar> inspector_;
    bool changed_ = false;
};

}  // namespace beacon::standin
