#include "check/server.h"

#include <windows.h>

#include <objbase.h>
#include <wrl/client.h>

#include <optional>
#include <vector>

#include "com/handle.h"
#include "support/numbers.h"

namespace beacon::check {
namespace {

/// The full path of a file that may be registered by its name only; empty if there is none.
std::wstring FullPath(const std::wstring& file) {
    std::wstring path(32768, L'\0');
    const auto size = static_cast<DWORD>(path.size());
    const DWORD length = SearchPathW(nullptr, file.c_str(), nullptr, size, path.data(), nullptr);
    path.resize(length < size ? length : 0);
    return path;
}

std::wstring VersionOf(const std::wstring& file) {
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), nullptr);
    std::vector<BYTE> block(size);
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    if (size == 0 || !GetFileVersionInfoW(file.c_str(), 0, size, block.data()) ||
        !VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&info), &length) || info == nullptr)
        return {};
    const auto part = [](DWORD number) { return DecimalText(number); };
    return part(HIWORD(info->dwFileVersionMS)) + L"." + part(LOWORD(info->dwFileVersionMS)) + L"." +
           part(HIWORD(info->dwFileVersionLS)) + L"." + part(LOWORD(info->dwFileVersionLS));
}

/// The problem; empty if there is none.
std::wstring TryLoading(const std::wstring& file, REFCLSID id) {
    const UINT mode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);  // no dialogs
    const HMODULE library = LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    const DWORD error = GetLastError();
    SetErrorMode(mode);
    if (library == nullptr) return L"does not load (error " + DecimalText(error) + L")";
    std::wstring problem;
    using Function = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
    const auto getClass =
        reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
    Microsoft::WRL::ComPtr<IClassFactory> factory;
    const HRESULT result = getClass == nullptr ? CO_E_ERRORINDLL : getClass(id, IID_PPV_ARGS(&factory));
    if (FAILED(result))
        problem = L"does not contain the class (error 0x" + HexText(static_cast<std::uint32_t>(result)) + L")";
    factory.Reset();
    FreeLibrary(library);
    return problem;
}

/// COM ignores per-user classes in an elevated process; nor must a user's DLL run with an administrator's rights.
bool IsElevated() {
    HANDLE token = nullptr;
    DWORD elevated = 0;
    DWORD size = sizeof elevated;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
    const com::UniqueHandle owner(token);
    return GetTokenInformation(token, TokenElevation, &elevated, size, &size) && elevated != 0;
}

void CheckFile(Server& server, REFCLSID id) {
    const std::wstring path = FullPath(server.file);
    if (path.empty()) {
        server.state = ServerState::FileMissing;
        server.problem = L"does not exist";
        return;
    }
    server.file = path;
    server.version = VersionOf(path);
    const int bits = BitsOfFile(path);
    if (bits == 0) {
        server.state = ServerState::NotALibrary;
        server.problem = L"is not a library";
    } else if (bits != server.bits) {
        server.state = ServerState::OtherBitness;
        server.problem = L"is a " + DecimalText(bits) + L"-bit library";
    } else if (bits != kOwnBits || (server.ofUser && IsElevated())) {
        server.state = ServerState::NotTried;
    } else {
        server.problem = TryLoading(path, id);
        server.state = server.problem.empty() ? ServerState::Loads : ServerState::DoesNotLoad;
    }
}

}  // namespace

bool FileExists(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

Server FindServer(const RegistryView& view, const std::wstring& progId, const std::wstring& classId) {
    Server server;
    server.bits = view.bits;
    const std::wstring text = view.Text(HKEY_CLASSES_ROOT, progId + L"\\CLSID").value_or(L"");
    CLSID id{};
    if (text.empty() || FAILED(CLSIDFromString(text.c_str(), &id))) return server;
    const std::wstring key = L"CLSID\\" + text;
    const std::wstring inProcess = key + L"\\InprocServer32";
    server.ofUser = view.Exists(HKEY_CURRENT_USER, L"Software\\Classes\\" + key);
    server.key = view.ClassesKeyName(lstrcmpiW(text.c_str(), classId.c_str()) == 0 ? key : progId);
    if (const auto file = view.Text(HKEY_CLASSES_ROOT, inProcess); file && !file->empty()) {
        server.file = *file;
        server.threadingModel = view.Text(HKEY_CLASSES_ROOT, inProcess, L"ThreadingModel").value_or(L"");
        CheckFile(server, id);
    } else if (const auto command = view.Text(HKEY_CLASSES_ROOT, key + L"\\LocalServer32")) {
        server.file = *command;
        server.state = ServerState::NotTried;
    }
    return server;
}

}  // namespace beacon::check
