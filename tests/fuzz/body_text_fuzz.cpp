// Cleaning and splitting of bodies and subjects, beside the same rules pass by pass.
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

void Try(const std::wstring& text) {
    Require(CleanBodyText(text, kQuiet) == reference::CleanBodyText(text));
    Require(CleanBodyText(text, kInterrupted) == text);
    Require(StripReplyPrefixes(text) == reference::StripReplyPrefixes(text));

    BodySplitter splitter(text);
    std::wstring whole;
    for (const std::wstring& expected : reference::Split(text)) {
        const auto piece = splitter.Next();
        Require(piece == std::wstring_view(expected));
        whole += *piece;
        Require(RemoveBreakChars(*piece, kQuiet) == reference::RemoveBreakChars(expected));
        RemoveBreakChars(*piece, kInterrupted);
        PieceEmphasis(*piece, kQuiet);
    }
    Require(!splitter.Next() && whole == text);

    Require(RemoveBreakChars(text, kQuiet) == reference::RemoveBreakChars(text));
    Require(BodySignature(text).size() <= 10);
    Require(!IsWorthSending(text) || !TrimSpaces(text).empty());
    Require(!MailTitle(text).empty());
}

}  // namespace
}  // namespace beacon::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLongestForReference = 512;
    if (size <= kLongestForReference) beacon::fuzz::Try(beacon::fuzz::TextOf(data, size, beacon::fuzz::kTokens));
    return 0;
}
