#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>

#include "engine/control_verbs.h"
#include "engine/encoders.h"
#include "observe/body_text.h"
#include "reference_body_text.h"
#include "support/numbers.h"

namespace {

// A byte below the count of tokens stands for one of them, so that the patterns are found soon.
std::wstring TextOf(const std::uint8_t* data, std::size_t size) {
    static constexpr std::wstring_view kTokens[] = {L"HYPERLINK \"", L"http://", L"HYPER", L"LINK \"", L"tp://",
                                                    L"RE:",          L"--",      L"\\n",   L"\""};
    std::wstring text;
    for (std::size_t i = 0; i < size; ++i)
        if (data[i] < std::size(kTokens))
            text += kTokens[data[i]];
        else
            text += static_cast<wchar_t>(data[i]);
    return text;
}

void Require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLongestForReference = 256;
    if (size > kLongestForReference) return 0;
    const std::wstring text = TextOf(data, size);
    const bool quiet = false;

    Require(beacon::CleanBodyText(text, quiet) == beacon::reference::CleanBodyText(text));
    Require(beacon::RemoveBreakChars(text, quiet) == beacon::reference::RemoveBreakChars(text));
    Require(beacon::StripReplyPrefixes(text) == beacon::reference::StripReplyPrefixes(text));

    beacon::BodySplitter splitter(text);
    for (const std::wstring& expected : beacon::reference::Split(text))
        Require(splitter.Next() == std::wstring_view(expected));
    Require(!splitter.Next());

    Require(beacon::UrlDecode(beacon::UrlEncode(text)) == text);
    Require(beacon::XmlEncode(text).find_first_of(L"<>\"'") == std::wstring::npos);
    beacon::UrlDecode(text);
    beacon::BodySignature(text);
    beacon::PieceEmphasis(text, quiet);
    beacon::MessageVerb(text);
    beacon::GetMajorVersion(text);
    const auto number = beacon::ParseLong(text);
    Require(!number || beacon::ParseLong(beacon::DecimalText(static_cast<std::int32_t>(*number))) == number);
    return 0;
}
