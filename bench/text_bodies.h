#pragma once

#include <cstddef>
#include <string>

/// Bodies to measure the text rules with: those of usual mails, and those that are crafted to slow the rules down.
namespace beacon::bench {

struct BodyKind {
    const char* name;
    /// Makes a body of this many characters.
    std::wstring (*make)(std::size_t size);
};

extern const BodyKind kBodyKinds[10];

/// What a send does with a body before it calls the engine: clean it, split it, and encode each piece. Returns the
/// number of characters that come out, so that the compiler cannot omit any of it.
std::size_t CleanSplitEncode(const std::wstring& body);

/// The pass that CleanSplitEncode is compared with: one look at each character, which is appended to a copy.
std::size_t ReferencePass(const std::wstring& body);

}  // namespace beacon::bench
