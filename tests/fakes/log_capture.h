#pragma once

#include <string>
#include <vector>

namespace beacon::test {

using LogLines = std::vector<std::wstring>;

/// Forgets the log's files and what the add-in reads once per process.
void StartLikeANewProcess();

/// Switches the real log on and redirects it to a temporary folder. The destructor restores both.
class LogCapture {
public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// The lines of this level so far, without date and time.
    LogLines Lines(int level = 2) const;
    bool Has(const std::wstring& line, int level = 2) const;
    void Clear();

    std::wstring PathOf(int level) const;

    /// The temporary value of "AppData".
    const std::wstring& Root() const { return root_; }

private:
    std::wstring root_;
    std::wstring appData_;  // the original value
};

}  // namespace beacon::test
