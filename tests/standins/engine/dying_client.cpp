#include "client.h"

// A client as a process of its own: it connects and then ends without a word, as a crash does.
int main() {
    using namespace beacon;
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    const HWND window = CreateWindowW(L"STATIC", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    try {
        tests::Client client(HandleToLong(window));
        client.Connect();
        TerminateProcess(GetCurrentProcess(), 2);
    } catch (const com::Error&) {
    }
    return 1;
}
