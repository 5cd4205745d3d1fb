#pragma once

#include <cstddef>
#include <string>

/// Bodies to measure the rules of text with: such as mails hold, and such as are crafted to make the rules slow.
namespace beacon::bench {

struct BodyKind {
    const char* name;
    bool hostile;
    /// A body of exactly so many characters.
    std::wstring (*make)(std::size_t size);
};

extern const BodyKind kBodyKinds[14];

/// What a send does with a body before it calls the engine: clean it, split it, and encode each piece. The count of
/// characters that come out, so that nothing of it can be left out.
std::size_t CleanSplitEncode(const std::wstring& body);

}  // namespace beacon::bench
