#pragma once

#include <string>
#include <vector>

namespace beacon::test {

/// Switches logging on, to files of its own, while it lives.
class LogCapture {
public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// The texts of a level's lines so far, without date and time.
    std::vector<std::wstring> Lines(int level = 2) const;
    bool Has(const std::wstring& line, int level = 2) const;
    void Clear();

private:
    std::wstring paths_[2];
};

}  // namespace beacon::test
