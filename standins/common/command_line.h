#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace beacon::standin {

/// What is wrong with the command line.
struct UsageError {
    std::wstring text;
};

/// An option as the help shows it: "--raw" is a switch, "--log FILE" takes a value. Without help it is not shown.
struct Option {
    const wchar_t* usage;
    const wchar_t* help;
    std::function<void(const std::wstring& value)> take;  // may throw UsageError: what follows the option's name
};

/// What options do.
std::function<void(const std::wstring&)> Set(bool& target);
std::function<void(const std::wstring&)> Set(std::wstring& target);
std::function<void(const std::wstring&)> Set(std::optional<long>& target);

/// Throws UsageError.
void ParseArguments(const std::vector<std::wstring>& arguments, const std::vector<Option>& options);

/// A line for each option that has a help.
std::wstring DescribeOptions(const std::vector<Option>& options);

}  // namespace beacon::standin
