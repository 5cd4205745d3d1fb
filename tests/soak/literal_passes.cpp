// literal_passes: reads bodies from standard input, a JSON array of strings, and writes for each the pieces that the
// literal passes make of it, as an array of arrays.
#include <iostream>
#include <nlohmann/json.hpp>

#include "../text/reference_body_text.h"

namespace {

// Only characters of one byte are asked for.
std::wstring Widened(const std::string& text) { return {text.begin(), text.end()}; }

std::string Narrowed(const std::wstring& text) {
    std::string bytes;
    for (const wchar_t character : text) bytes += static_cast<char>(character);
    return bytes;
}

}  // namespace

int main() {
    using namespace beacon;
    nlohmann::json all = nlohmann::json::array();
    for (const std::string body : nlohmann::json::parse(std::cin)) {
        nlohmann::json pieces = nlohmann::json::array();
        for (const std::wstring& piece : reference::Split(reference::CleanBodyText(Widened(body))))
            pieces.push_back(Narrowed(reference::RemoveBreakChars(piece)));
        all.push_back(pieces);
    }
    std::cout << all << '\n';
}
