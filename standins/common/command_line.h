#pragma once

#include <cxxopts.hpp>
#include <string>
#include <vector>

namespace beacon::standin {

/// What is wrong with the command line.
struct UsageError {
    std::wstring text;
};

/// The options of a command line, by their long names.
class GivenOptions {
public:
    /// Throws UsageError for an option that is not known, a missing value, or an argument that is no option.
    GivenOptions(cxxopts::Options known, const std::vector<std::wstring>& arguments);

    bool Has(const char* name) const { return given_.count(name) != 0; }

    /// The value of an option of type std::string; empty when it is not given and has no default.
    std::wstring Text(const char* name) const;

    /// The value of a number; it must have been given or have a default.
    template <class Number>
    Number Value(const char* name) const {
        return given_[name].as<Number>();
    }

private:
    cxxopts::ParseResult given_;
};

}  // namespace beacon::standin
