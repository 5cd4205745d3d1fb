#include "outlook/bars/bar_lines.h"

#include <cwchar>
#include <utility>

namespace beacon::standin {
namespace {

template <class Record, class Value>
struct Field {
    const wchar_t* name;
    Value Record::*value;
};

constexpr Field<Bar, std::wstring> kBarTexts[] = {{L"name", &Bar::name}};
constexpr Field<Bar, long> kBarNumbers[] = {
    {L"position", &Bar::position}, {L"protection", &Bar::protection},
    {L"rowIndex", &Bar::rowIndex}, {L"left", &Bar::left},
    {L"top", &Bar::top},           {L"width", &Bar::width},
    {L"height", &Bar::height},
};
constexpr Field<Bar, bool> kBarFlags[] = {
    {L"visible", &Bar::visible}, {L"enabled", &Bar::enabled}, {L"builtIn", &Bar::builtIn}};

constexpr Field<BarControl, std::wstring> kControlTexts[] = {
    {L"caption", &BarControl::caption},   {L"tag", &BarControl::tag},
    {L"tooltip", &BarControl::tooltip},   {L"description", &BarControl::description},
    {L"shortcut", &BarControl::shortcut}, {L"text", &BarControl::text},
};
constexpr Field<BarControl, long> kControlNumbers[] = {
    {L"type", &BarControl::type},   {L"id", &BarControl::id},         {L"style", &BarControl::style},
    {L"state", &BarControl::state}, {L"faceId", &BarControl::faceId}, {L"width", &BarControl::width},
};
constexpr Field<BarControl, bool> kControlFlags[] = {
    {L"enabled", &BarControl::enabled},
    {L"visible", &BarControl::visible},
    {L"beginGroup", &BarControl::beginGroup},
    {L"builtIn", &BarControl::builtIn},
};

std::wstring Escaped(const std::wstring& text) {
    std::wstring escaped;
    for (const wchar_t c : text) {
        switch (c) {
            case L'\\': escaped += L"\\\\"; break;
            case L'\t': escaped += L"\\t"; break;
            case L'\n': escaped += L"\\n"; break;
            case L'\r': escaped += L"\\r"; break;
            default: escaped += c;
        }
    }
    return escaped;
}

std::wstring Unescaped(std::wstring_view text) {
    std::wstring plain;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != L'\\') {
            plain += text[i];
            continue;
        }
        if (++i == text.size()) throw BadLine{L"a text ends in \"\\\""};
        switch (text[i]) {
            case L'\\': plain += L'\\'; break;
            case L't': plain += L'\t'; break;
            case L'n': plain += L'\n'; break;
            case L'r': plain += L'\r'; break;
            default: throw BadLine{L"an unknown escape in a text"};
        }
    }
    return plain;
}

long Number(std::wstring_view text) {
    const std::wstring digits(text);
    wchar_t* end = nullptr;
    const long value = std::wcstol(digits.c_str(), &end, 10);
    if (digits.empty() || *end != L'\0') throw BadLine{L"\"" + digits + L"\" is no number"};
    return value;
}

void AddField(std::wstring& line, const wchar_t* name, const std::wstring& value) {
    line += L'\t';
    line += name;
    line += L'=';
    line += value;
}

std::wstring FaceText(const ButtonFace& face) {
    std::wstring text = std::to_wstring(face.width) + L"x" + std::to_wstring(face.height) + L":";
    wchar_t digits[9];
    for (const std::uint32_t pixel : face.pixels) {
        std::swprintf(digits, std::size(digits), L"%08x", static_cast<unsigned>(pixel));
        text += digits;
    }
    return text;
}

ButtonFace FaceFromText(std::wstring_view text) {
    const size_t cross = text.find(L'x');
    const size_t colon = text.find(L':');
    if (cross == std::wstring::npos || colon == std::wstring::npos || cross > colon)
        throw BadLine{L"a face without its size"};
    ButtonFace face;
    face.width = Number(text.substr(0, cross));
    face.height = Number(text.substr(cross + 1, colon - cross - 1));
    const std::wstring_view digits = text.substr(colon + 1);
    if (face.width < 1 || face.height < 1 || face.width > kLargestFace || face.height > kLargestFace ||
        digits.size() != 8 * static_cast<size_t>(face.width) * static_cast<size_t>(face.height))
        throw BadLine{L"a face of another size than it says"};
    for (size_t i = 0; i < digits.size(); i += 8) {
        const std::wstring pixel(digits.substr(i, 8));
        wchar_t* end = nullptr;
        face.pixels.push_back(static_cast<std::uint32_t>(std::wcstoul(pixel.c_str(), &end, 16)));
        if (*end != L'\0') throw BadLine{L"a face with a digit that is none"};
    }
    return face;
}

template <class Record, size_t Texts, size_t Numbers, size_t Flags>
void WriteFields(std::wstring& line, const Record& record, const Field<Record, std::wstring> (&texts)[Texts],
                 const Field<Record, long> (&numbers)[Numbers], const Field<Record, bool> (&flags)[Flags]) {
    for (const auto& field : texts)
        if (!(record.*field.value).empty()) AddField(line, field.name, Escaped(record.*field.value));
    for (const auto& field : numbers) AddField(line, field.name, std::to_wstring(record.*field.value));
    for (const auto& field : flags) AddField(line, field.name, record.*field.value ? L"1" : L"0");
}

template <class Record, size_t Texts, size_t Numbers, size_t Flags>
void ReadField(Record& record, std::wstring_view name, std::wstring_view value,
               const Field<Record, std::wstring> (&texts)[Texts], const Field<Record, long> (&numbers)[Numbers],
               const Field<Record, bool> (&flags)[Flags]) {
    for (const auto& field : texts)
        if (name == field.name) record.*field.value = Unescaped(value);
    for (const auto& field : numbers)
        if (name == field.name) record.*field.value = Number(value);
    for (const auto& field : flags)
        if (name == field.name) record.*field.value = Number(value) != 0;
}

template <class Reader>
void EachField(std::wstring_view line, Reader&& reader) {
    for (size_t tab = line.find(L'\t'); tab != std::wstring::npos;) {
        const size_t next = line.find(L'\t', tab + 1);
        const std::wstring_view field = line.substr(tab + 1, next == std::wstring::npos ? next : next - tab - 1);
        const size_t equals = field.find(L'=');
        if (equals == std::wstring::npos) throw BadLine{L"a field without \"=\""};
        reader(field.substr(0, equals), field.substr(equals + 1));
        tab = next;
    }
}

}  // namespace

std::wstring_view WordOf(std::wstring_view line) { return line.substr(0, line.find(L'\t')); }

std::wstring LineOf(WindowKind kind, const Bar& bar) {
    std::wstring line = L"bar";
    AddField(line, L"kind", kind == WindowKind::Explorer ? L"explorer" : L"inspector");
    WriteFields(line, bar, kBarTexts, kBarNumbers, kBarFlags);
    return line;
}

std::wstring LineOf(const BarControl& control) {
    std::wstring line = L"control";
    WriteFields(line, control, kControlTexts, kControlNumbers, kControlFlags);
    for (const std::wstring& item : control.items) AddField(line, L"item", Escaped(item));
    if (!control.face.Empty()) AddField(line, L"face", FaceText(control.face));
    return line;
}

Bar BarFromLine(std::wstring_view line, WindowKind& kind) {
    Bar bar;
    bool known = false;
    EachField(line, [&](std::wstring_view name, std::wstring_view value) {
        if (name == L"kind") {
            known = value == L"explorer" || value == L"inspector";
            kind = value == L"explorer" ? WindowKind::Explorer : WindowKind::Inspector;
        }
        ReadField(bar, name, value, kBarTexts, kBarNumbers, kBarFlags);
    });
    if (!known) throw BadLine{L"a bar of no known kind of window"};
    if (bar.name.empty()) throw BadLine{L"a bar without a name"};
    return bar;
}

BarControl ControlFromLine(std::wstring_view line) {
    BarControl control;
    EachField(line, [&](std::wstring_view name, std::wstring_view value) {
        if (name == L"item") control.items.push_back(Unescaped(value));
        if (name == L"face") control.face = FaceFromText(value);
        ReadField(control, name, value, kControlTexts, kControlNumbers, kControlFlags);
    });
    if (control.type != kButtonControl && control.type != kComboBoxControl && control.type != kPopupControl)
        throw BadLine{L"a control of an unknown type"};
    return control;
}

}  // namespace beacon::standin
