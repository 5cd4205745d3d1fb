#include "text_bodies.h"

#include <utility>

#include "engine/encoders.h"
#include "observe/body_text.h"

namespace beacon::bench {
namespace {

std::wstring Repeat(std::wstring_view unit, std::size_t size) {
    std::wstring text;
    text.reserve(size + unit.size());
    while (text.size() < size) text += unit;
    text.resize(size);
    return text;
}

constexpr wchar_t kLines[] =
    L"the figures for the spring campaign are final now. We can spend up to\r\n"
    L"40,000 on print and about half of it online; Anna's list (\"places\") has\r\n"
    L"all the rest. Could you look through it before the meeting on Thursday?\r\n"
    L"\r\n"
    L"Thanks, and see you then\r\n";

constexpr wchar_t kQuoted[] =
    L"Fine with me; let us use the smaller room then, and start at ten.\r\n\r\n-----Original Message-----\r\n"
    L"From: Anna Weber [mailto:anna.weber@example.com]\r\nSent: Monday, March 3, 2003 10:15 AM\r\n"
    L"To: Paul Meyer\r\nSubject: RE: Budget for the spring campaign\r\n\r\n"
    L"> the figures for the spring campaign are final now. We can spend up to\r\n"
    L"> 40,000 on print and about half of it online; the list has all the rest.\r\n"
    L"> Could you look through it before the meeting on Thursday? I have left\r\n"
    L"> the two offers that came in late with Maria, who will bring copies for\r\n"
    L"> everybody. If the second one does not hold we can still go back to the\r\n"
    L"> printers from last year, at the price that they asked for in November.\r\n"
    L"> As to the places: the large hall is taken on Thursday, so that we will\r\n"
    L"> have to choose between the two rooms upstairs and a day in the week\r\n"
    L"> after; both would do, as far as I can see.\r\n\r\n";

}  // namespace

const BodyKind kBodyKinds[] = {
    {"prose", [](std::size_t size) { return Repeat(kLines, size); }},
    {"quoted reply", [](std::size_t size) { return Repeat(kQuoted, size); }},
    {"dashes", [](std::size_t size) { return Repeat(L"-", size); }},
    {"escapes", [](std::size_t size) { return Repeat(L"\\n", size); }},
    {"fields", [](std::size_t size) { return Repeat(L"x HYPERLINK \"http://a/b\" y ", size); }},
    {"dashes, fields",
     [](std::size_t size) { return Repeat(L"-", size / 2) + Repeat(L"HYPERLINK \"\"", size - size / 2); }},
    {"unclosed field", [](std::size_t size) { return L"-- HYPERLINK \"" + Repeat(L"\\n--", size - 14); }},
    {"nested URLs",
     [](std::size_t size) {
         const std::size_t third = size / 3;
         return Repeat(L"http:/", third) + Repeat(L"/ ", third) + Repeat(L"-http://a ", size - 2 * third);
     }},
    {"vertical tabs", [](std::size_t size) { return Repeat(L"\v", size - 1) + L'\r'; }},
    {"markup", [](std::size_t size) { return Repeat(L"<a b=\"&'\">\r", size); }},
};

std::size_t CleanSplitEncode(const std::wstring& body) {
    const bool quiet = false;
    std::size_t out = 0;
    const std::wstring text = CleanBodyText(body, quiet);
    BodySplitter splitter(text);
    while (const auto raw = splitter.Next()) {
        std::wstring piece = RemoveBreakChars(*raw, quiet);
        if (piece.size() <= 1) continue;
        out += PieceEmphasis(piece, quiet)->size();
        out += XmlEncode(std::move(piece)).size();
    }
    return out;
}

std::size_t ReferencePass(const std::wstring& body) {
    std::wstring copy;
    for (const wchar_t character : body)
        if (character != L'\0') copy += character;
    return copy.size();
}

}  // namespace beacon::bench
