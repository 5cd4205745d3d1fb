#include "common/command_line.h"

#include <algorithm>

#include "common/journal.h"

namespace beacon::standin {

GivenOptions::GivenOptions(cxxopts::Options known, const std::vector<std::wstring>& arguments) try {
    std::vector<std::string> texts{known.program()};
    for (const std::wstring& argument : arguments) texts.push_back(ToUtf8(argument));
    std::vector<const char*> pointers(texts.size());
    std::ranges::transform(texts, pointers.begin(), &std::string::c_str);
    given_ = known.parse(static_cast<int>(pointers.size()), pointers.data());
    if (!given_.unmatched().empty()) throw UsageError{L"unknown argument " + FromUtf8(given_.unmatched().front())};

} catch (const cxxopts::exceptions::exception& error) {
    throw UsageError{FromUtf8(error.what())};
}

std::wstring GivenOptions::Text(const char* name) const {
    const cxxopts::OptionValue& value = given_[name];
    return value.count() != 0 || value.has_default() ? FromUtf8(value.as<std::string>()) : std::wstring();
}

}  // namespace beacon::standin
