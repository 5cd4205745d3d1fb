#pragma once

#include <string>
#include <vector>

namespace beacon::tests {

/// What one run of standin_outlook.exe said, and how it ended.
struct Ended {
    unsigned long code = 0;
    std::vector<std::string> lines;  // as they came, in UTF-8, the test add-in's among them
    std::string all;

    bool Has(const std::string& part) const { return all.find(part) != std::string::npos; }

    size_t Count(const std::string& part) const;
    /// The lines that begin with this text, without it.
    std::vector<std::string> After(const std::string& start) const;
};

struct Start {
    std::wstring arguments = {};  // besides the store's
    std::string script = {};      // empty: none is given
    std::string input = {};       // standard input
    std::wstring addin = {};      // what the test add-in does wrong
    bool withAddin = true;
};

/// Runs the program in this folder with a store of two mails and a contact, to its end (20 s at most).
Ended RunOutlook(const Start& start);

}  // namespace beacon::tests
