#include "common/command_line.h"

#include <algorithm>
#include <charconv>

#include "common/journal.h"

// Its regular expressions take as long to compile as the rest of it.
#define CXXOPTS_NO_REGEX
#include <cxxopts.hpp>

namespace beacon::standin {
namespace {

cxxopts::Options ForParser(const ProgramOptions& known) {
    cxxopts::Options options(known.program, known.purpose);
    for (const KnownOption& one : known.options) {
        auto value = one.argument == nullptr ? cxxopts::value<bool>() : cxxopts::value<std::string>();
        if (one.preset != nullptr) value->default_value(one.preset);
        options.add_options()(one.name, one.help, value, one.argument == nullptr ? "" : one.argument);
    }
    return options;
}

std::wstring At(const std::map<std::string, std::wstring>& values, const std::string& name) {
    const auto found = values.find(name);
    return found == values.end() ? std::wstring() : found->second;
}

}  // namespace

std::wstring ProgramOptions::Help() const { return FromUtf8(ForParser(*this).help()); }

GivenOptions::GivenOptions(const ProgramOptions& known, const std::vector<std::wstring>& arguments) try {
    std::vector<std::string> texts{known.program};
    for (const std::wstring& argument : arguments) texts.push_back(ToUtf8(argument));
    std::vector<const char*> pointers(texts.size());
    std::ranges::transform(texts, pointers.begin(), &std::string::c_str);
    const auto parsed = ForParser(known).parse(static_cast<int>(pointers.size()), pointers.data());
    if (!parsed.unmatched().empty()) throw UsageError{L"unknown argument " + FromUtf8(parsed.unmatched().front())};
    for (const cxxopts::KeyValue& one : parsed.arguments()) given_[one.key()] = FromUtf8(one.value());
    for (const cxxopts::KeyValue& one : parsed.defaults()) presets_[one.key()] = FromUtf8(one.value());

} catch (const cxxopts::exceptions::exception& error) {
    throw UsageError{FromUtf8(error.what())};
}

std::wstring GivenOptions::Text(const std::string& name) const { return At(Has(name) ? given_ : presets_, name); }

template <class Number>
Number GivenOptions::Value(const std::string& name) const {
    const std::string text = ToUtf8(Text(name));
    const char* const end = text.data() + text.size();
    Number value{};
    const auto parsed = std::from_chars(text.data(), end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end)
        throw UsageError{FromUtf8("--" + name + " cannot be \"" + text + "\"")};
    return value;
}

template long GivenOptions::Value<long>(const std::string& name) const;
template double GivenOptions::Value<double>(const std::string& name) const;

}  // namespace beacon::standin
