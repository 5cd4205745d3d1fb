#pragma once

namespace beacon {

/// A function of a library in the system folder, never of one beside the host's program; null if there is none. Loads
/// the library for good.
void* FindSystemFunction(const wchar_t* library, const char* name);

template <class Function>
Function* SystemFunction(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function*>(FindSystemFunction(library, name));
}

}  // namespace beacon
