#include "extract/text_cut.h"

namespace beacon {

std::wstring_view StripNulls(std::wstring_view text) { return text.substr(0, text.find(L'\0')); }

}  // namespace beacon
