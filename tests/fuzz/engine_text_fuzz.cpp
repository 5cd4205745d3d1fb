// What goes to the engine encoded, and what comes from the controller.
#include "engine/control_verbs.h"
#include "engine/encoders.h"
#include "fuzz.h"

namespace beacon::fuzz {
namespace {

constexpr std::wstring_view kTokens[] = {L"EXIT ", L"<SET_AUTOUPDATE ", L"true", L"BUTTON_CLICK", L"&amp;", L"%25"};

void TryEncoders(const std::wstring& text) {
    const std::wstring encoded = XmlEncode(text);
    std::wstring characterByCharacter;
    for (const wchar_t character : text) characterByCharacter += ExpandEntity(character);
    RequireSame(encoded, characterByCharacter);
    Require(encoded.find_first_of(L"<>\"'") == std::wstring::npos);

    const std::wstring url = UrlEncode(text);
    Require(url.find_first_of(L" \"<>#{}|\\^~[]`;/?:@=&") == std::wstring::npos);
    RequireSame(UrlDecode(url), text);
    Require(UrlDecode(text).size() <= text.size());
}

void TryVerbs(const std::wstring& text) {
    const auto verb = MessageVerb(text);
    if (verb) {
        Require(!verb->empty() && verb->size() + 2 <= text.size() && text[verb->size() + 1] == L' ');
        for (std::size_t i = 0; i < verb->size(); ++i) {
            const wchar_t character = (*verb)[i];
            const wchar_t given = text[i + 1];
            Require(character != L' ' && !(character >= L'a' && character <= L'z'));
            Require(character == given || (given >= L'a' && given <= L'z' && character == given - L'a' + L'A'));
        }
    } else {
        const std::size_t blank = text.find(L' ', 1);
        Require(text.size() < 2 || blank == std::wstring::npos || blank == 1);
    }
    Require(SwitchesAutoUpdateOn(text) || text.find(L"true") == std::wstring::npos);
}

}  // namespace
}  // namespace beacon::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text = beacon::fuzz::TextOf(data, size, beacon::fuzz::kTokens);
    beacon::fuzz::TryEncoders(text);
    beacon::fuzz::TryVerbs(text);
    return 0;
}
