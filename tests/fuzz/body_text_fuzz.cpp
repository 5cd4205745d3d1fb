// Cleaning and splitting of bodies and subjects. Short ones are compared with the literal passes.
#include "fuzz.h"
#include "observe/body_text.h"
#include "observe/item_text.h"
#include "reference_body_text.h"

namespace beacon::fuzz {
namespace {

constexpr std::wstring_view kTokens[] = {L"HYPERLINK \"", L"http://", L"HYPER", L"LINK \"", L"tp://",
                                         L"RE:",          L"--",      L"\\n",   L"\r\n",    L"\v"};
constexpr bool kQuiet = false;
constexpr bool kInterrupted = true;

void CompareWithReference(const std::wstring& text) {
    Require(CleanBodyText(text, kQuiet) == reference::CleanBodyText(text));
    Require(StripReplyPrefixes(text) == reference::StripReplyPrefixes(text));
    Require(RemoveBreakChars(text, kQuiet) == reference::RemoveBreakChars(text));
    BodySplitter splitter(text);
    for (const std::wstring& expected : reference::Split(text)) {
        const auto piece = splitter.Next();
        Require(piece == std::wstring_view(expected));
        Require(RemoveBreakChars(*piece, kQuiet) == reference::RemoveBreakChars(expected));
    }
    Require(!splitter.Next());
}

void Try(const std::wstring& text) {
    constexpr std::size_t kLongestForReference = 80;  // its time is quadratic
    if (text.size() <= kLongestForReference) CompareWithReference(text);

    const std::wstring cleaned = CleanBodyText(text, kQuiet);
    Require(CleanBodyText(cleaned, kQuiet) == cleaned && cleaned.find(L"--") == std::wstring::npos);
    Require(CleanBodyText(text, kInterrupted) == text);
    BodySplitter splitter(text);
    std::size_t whole = 0;
    while (const auto piece = splitter.Next()) {
        whole += piece->size();
        Require(RemoveBreakChars(*piece, kQuiet).size() <= piece->size());
        RemoveBreakChars(*piece, kInterrupted);
        PieceEmphasis(*piece, kQuiet);
    }
    Require(whole == text.size());
    Require(BodySignature(text).size() <= 10);
    Require(!IsWorthSending(text) || !TrimSpaces(text).empty());
    Require(!MailTitle(text).empty());
}

}  // namespace
}  // namespace beacon::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    beacon::fuzz::Try(beacon::fuzz::TextOf(data, size, beacon::fuzz::kTokens));
    return 0;
}
