#include "outlook/observation/counted_reader.h"

#include "com/class_factory.h"
#include "com/server_registration.h"

namespace beacon::standin {
namespace {

int g_alive = 0;

// CoCreateInstance would create this program's own class.
com::ComPtr<IMAPIPropWrapper> CreateFrom(HMODULE library) {
    using Function = HRESULT WINAPI(REFCLSID, REFIID, void**);
    const auto find =
        reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
    if (find == nullptr) com::Check(CO_E_ERRORINDLL);
    com::ComPtr<IClassFactory> factory;
    com::ComPtr<IMAPIPropWrapper> reader;
    com::Check(find(__uuidof(MAPIPropWrapper), IID_PPV_ARGS(&factory)));
    com::Check(factory->CreateInstance(nullptr, IID_PPV_ARGS(&reader)));
    return reader;
}

HMODULE LoadInstalled() {
    const std::wstring file =
        com::MachineText(L"Software\\Classes\\CLSID\\{C3EEC785-E482-475A-BB9A-D368521FD50A}\\InprocServer32");
    if (file.empty()) com::Check(REGDB_E_CLASSNOTREG);
    const HMODULE library = LoadLibraryW(file.c_str());
    if (library == nullptr) com::Check(HRESULT_FROM_WIN32(GetLastError()));
    return library;
}

}  // namespace

CountedReader::CountedReader() : CalledDual(L"PropertyReader") {
    static const HMODULE library = LoadInstalled();  // once: COM does not unload it either
    reader_ = CreateFrom(library);
    ++g_alive;
}

CountedReader::~CountedReader() { --g_alive; }

int CountedReader::Alive() { return g_alive; }

HRESULT CountedReader::Initialize() {
    return CountedMethod(L"Initialize", [&] { com::Check(reader_->Initialize()); });
}

HRESULT CountedReader::Uninitialize() {
    return CountedMethod(L"Uninitialize", [&] { com::Check(reader_->Uninitialize()); });
}

HRESULT CountedReader::GetStringProperty(VARIANT item, long tag, VARIANT* value) {
    if (value != nullptr) VariantInit(value);
    return Counted(L"GetStringProperty", [&] { return reader_->GetStringProperty(item, tag, value); });
}

HRESULT CountedReader::GetStringPropertyLimited(VARIANT item, long tag, long maxChars, BSTR* value) {
    if (value != nullptr) *value = nullptr;
    return Counted(L"GetStringPropertyLimited",
                   [&] { return reader_->GetStringPropertyLimited(item, tag, maxChars, value); });
}

ReaderServer::ReaderServer() {
    const com::ComPtr<IClassFactory> factory = com::MakeClassFactory([] {
        const CallPoint call(CallPoint::OnBehalf{}, [] { return std::wstring(L"create the property reader"); });
        com::Check(call.Result());
        return com::ComPtr<IUnknown>(new CountedReader);
    });
    com::Check(CoRegisterClassObject(__uuidof(MAPIPropWrapper), factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                     &cookie_));
}

ReaderServer::~ReaderServer() { CoRevokeClassObject(cookie_); }

}  // namespace beacon::standin
