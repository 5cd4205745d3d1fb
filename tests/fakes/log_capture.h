#pragma once

#include <string>
#include <vector>

namespace beacon::test {

using LogLines = std::vector<std::wstring>;

/// Forgets the log's files and what the add-in reads once per process.
void StartLikeANewProcess();

/// The real log, switched on by the registry and written into a folder of its own, while this lives.
class LogCapture {
public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// The texts of a level's lines so far, without date and time.
    LogLines Lines(int level = 2) const;
    bool Has(const std::wstring& line, int level = 2) const;
    void Clear();

    std::wstring PathOf(int level) const;

    /// What "AppData" is meanwhile.
    const std::wstring& Root() const { return root_; }

private:
    std::wstring root_;
    std::wstring appData_;  // of the process, as it was before
};

}  // namespace beacon::test
