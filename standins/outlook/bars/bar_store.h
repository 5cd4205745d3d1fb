#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "outlook/bars/bar_model.h"

namespace beacon::standin {

/// The permanent command bars of both kinds of windows. A new window starts with copies of the bars of its kind; its
/// changes go to the store, but not to other open windows.
///
/// The file is JSON: {"explorer": [bars], "inspector": [bars]}.
class BarStore {
public:
    /// Reads the file if it exists. An unreadable file is reported to `trouble` and never overwritten. `trouble` also
    /// gets the errors of Save. Without a path nothing is saved.
    explicit BarStore(std::wstring path = {}, std::function<void(const std::wstring&)> trouble = {});
    BarStore(const BarStore&) = delete;
    BarStore& operator=(const BarStore&) = delete;
    /// Saves.
    ~BarStore();

    const std::vector<Bar>& Bars(WindowKind kind) const {
        return kind == WindowKind::Explorer ? explorer_ : inspector_;
    }

    /// Stores a copy of a new bar; replaces a bar of the same name.
    void Add(WindowKind kind, const Bar& bar);
    /// Stores the current state of the bar, unless another window has removed it.
    void Update(WindowKind kind, const Bar& bar);
    void Remove(WindowKind kind, const std::wstring& name);

    /// Writes the file if anything has changed.
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
