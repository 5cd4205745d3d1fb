#include "support/string_values.h"

namespace beacon {

std::string SeveralStrings(std::string_view bytes) {
    std::string result;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        result += bytes[i];
        if (bytes[i] == '\0' && i + 1 < bytes.size() && bytes[i + 1] == '\0') ++i;
    }
    return result;
}

}  // namespace beacon
