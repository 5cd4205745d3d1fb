#pragma once

#include <windows.h>

#include <oleauto.h>

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace beacon::com {

/// A run-time error as the log lines show it: a number, a source and a description. A failed call of a COM object has
/// its HRESULT as the number (a signed value), unless the object reported a small number through the control facility
/// (0x800Annnn), which is then the number. Making and copying one never fails, out of memory included.
class Error : public std::exception {
public:
    /// Copies the texts. If there is no memory for a text of more than 63 characters, only these are kept.
    Error(long number, std::wstring_view description, std::wstring_view source = L"BeaconOLKAdapter") noexcept
        : number(number), description_(description), source_(source) {}

    const char* what() const noexcept override { return "beacon::com::Error"; }

    /// Views of this object's texts, each followed by a NUL.
    std::wstring_view Description() const noexcept { return description_.View(); }

    std::wstring_view Source() const noexcept { return source_.View(); }

    long number;

private:
    class Text {
    public:
        explicit Text(std::wstring_view text) noexcept;

        std::wstring_view View() const noexcept { return whole_ ? *whole_ : std::wstring_view(start_, length_); }

    private:
        wchar_t start_[64] = {};
        size_t length_;
        std::shared_ptr<const std::wstring> whole_;  // of a longer text
    };

    Text description_;
    Text source_;
};

/// Numbers of errors that the add-in raises or maps to.
inline constexpr long kInvalidCall = 5;
inline constexpr long kOverflow = 6;
inline constexpr long kSubscriptOutOfRange = 9;
inline constexpr long kTypeMismatch = 13;
inline constexpr long kNoObject = 91;
inline constexpr long kObjectRequired = 424;
inline constexpr long kCannotCreateObject = 429;
inline constexpr long kNoSuchMember = 438;
inline constexpr long kWrongArgumentCount = 450;
inline constexpr long kInvalidPicture = 481;

/// Throws an error with the usual description of its number.
[[noreturn]] void Raise(long number);

/// Throws the error that a failed HRESULT stands for. Returns a successful one.
HRESULT Check(HRESULT result);

/// The same for a call of an object's interface `id`. Takes source and description from the thread's error information
/// if the object says that it sets it (ISupportErrorInfo); else they may be those of an earlier failure.
HRESULT Check(HRESULT result, IUnknown* object, REFIID id);

template <class Interface>
HRESULT Check(HRESULT result, Interface* object) {
    return Check(result, object, __uuidof(Interface));
}

/// Whether a call failed because the object or its process is gone, so that no later call can succeed.
bool ServerHasDied(HRESULT result) noexcept;

/// Throws the error of a failed IDispatch::Invoke and frees the strings of `info`.
[[noreturn]] void RaiseException(HRESULT result, EXCEPINFO& info);

/// The exception that is being handled. Only for use inside a catch block.
Error CurrentError() noexcept;

/// The HRESULT for the exception that is being handled; sets the thread's error information.
HRESULT CurrentResult() noexcept;

/// Runs the body of a COM method and converts exceptions to an HRESULT. A body returns an HRESULT or nothing (S_OK).
template <class Body>
HRESULT Method(Body&& body) noexcept {
    try {
        if constexpr (std::is_void_v<decltype(body())>) {
            body();
            return S_OK;
        } else {
            static_assert(std::is_same_v<decltype(body()), HRESULT>);
            return body();
        }
    } catch (...) {
        return CurrentResult();
    }
}

}  // namespace beacon::com
