#pragma once

namespace beacon {

/// A function of a library in the system's own folder, whatever lies beside the host's program; null where there is
/// none. The library is loaded, and stays.
void* FindSystemFunction(const wchar_t* library, const char* name);

template <class Function>
Function* SystemFunction(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function*>(FindSystemFunction(library, name));
}

}  // namespace beacon
