#pragma once

#include <map>
#include <string>
#include <vector>

namespace beacon::standin {

/// What is wrong with the command line.
struct UsageError {
    std::wstring text;
};

/// An option that a program knows.
struct KnownOption {
    const char* name;  // the long one, after a short one and a comma if there is one
    const char* help;
    const char* argument = nullptr;  // the value's name in the help; null for a switch, which has no value
    const char* preset = nullptr;    // the value when the option is not given
};

/// A program's options, with its name and purpose for the help.
struct ProgramOptions {
    const char* program;
    const char* purpose;
    std::vector<KnownOption> options;

    /// The text of --help.
    std::wstring Help() const;
};

/// The options of a command line, by their long names.
class GivenOptions {
public:
    /// Throws UsageError for an option that is not known, a missing value, or an argument that is no option.
    GivenOptions(const ProgramOptions& known, const std::vector<std::wstring>& arguments);

    bool Has(const std::string& name) const { return given_.contains(name); }

    /// The value; empty when the option is not given and has no preset.
    std::wstring Text(const std::string& name) const;
    /// The value as a long or a double. Throws UsageError if it is none.
    template <class Number>
    Number Value(const std::string& name) const;

private:
    std::map<std::string, std::wstring> given_;
    std::map<std::string, std::wstring> presets_;
};

}  // namespace beacon::standin
