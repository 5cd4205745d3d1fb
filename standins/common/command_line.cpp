#include "common/command_line.h"

#include <algorithm>

#include "common/words.h"

namespace beacon::standin {
namespace {

constexpr size_t kOptionColumn = 24;

bool IsNamed(const Option& option, const std::wstring& name) {
    const std::wstring usage = option.usage;
    return usage.substr(0, usage.find(L' ')) == name;
}

bool TakesValue(const Option& option) { return std::wstring(option.usage).find(L' ') != std::wstring::npos; }

}  // namespace

std::function<void(const std::wstring&)> Set(bool& target) {
    return [&target](const std::wstring&) { target = true; };
}

std::function<void(const std::wstring&)> Set(std::wstring& target) {
    return [&target](const std::wstring& value) { target = value; };
}

std::function<void(const std::wstring&)> Set(std::optional<long>& target) {
    return [&target](const std::wstring& value) {
        target = ParseNumber(value);
        if (!target) throw UsageError{L"needs a number, not \"" + value + L"\""};
    };
}

void ParseArguments(const std::vector<std::wstring>& arguments, const std::vector<Option>& options) {
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const std::wstring& name = *argument;
        const auto option = std::ranges::find_if(options, [&](const Option& known) { return IsNamed(known, name); });
        if (option == options.end()) throw UsageError{L"unknown argument \"" + name + L"\""};
        try {
            if (TakesValue(*option) && ++argument == arguments.end()) throw UsageError{L"needs a value"};
            option->take(TakesValue(*option) ? *argument : L"");
        } catch (const UsageError& error) {
            throw UsageError{std::wstring(option->usage, name.size()) + L" " + error.text};
        }
    }
}

std::wstring DescribeOptions(const std::vector<Option>& options) {
    std::wstring text;
    for (const Option& option : options) {
        if (option.help == nullptr) continue;
        std::wstring line = std::wstring(L"  ") + option.usage;
        line.resize(std::max(line.size() + 1, kOptionColumn), L' ');
        text += line + option.help + L"\n";
    }
    return text;
}

}  // namespace beacon::standin
