#pragma once

#include <windows.h>

#include <initializer_list>
#include <string>

namespace beacon::com {

/// How a server of this project writes itself into HKEY_LOCAL_MACHINE, for all users, and takes itself out again. All
/// keys are below that hive where none is named. Whatever fails raises an error, unless it says otherwise.

/// A class of this binary; the identifiers of class and library as texts, in their braces.
struct RegisteredClass {
    const wchar_t* title;
    const wchar_t* progId;
    const wchar_t* id;
    const wchar_t* library;
};

std::wstring ProgIdKey(const RegisteredClass& served);
std::wstring ClassKey(const RegisteredClass& served);
/// Both keys with all that is below them, this binary as the server.
void WriteClass(const RegisteredClass& served);

/// One value; a null name stands for the default value.
void WriteValue(HKEY hive, const std::wstring& key, const wchar_t* name, DWORD type, const void* data, size_t size);
void WriteText(HKEY hive, const std::wstring& key, const wchar_t* name, const std::wstring& text);

/// A text, with the variables in it expanded; "" when there is none.
std::wstring ReadText(const std::wstring& key, const wchar_t* name);

/// How the registry's other view is opened on a system that runs programs of both bitnesses, KEY_WOW64_32KEY or
/// KEY_WOW64_64KEY; 0 on others. Classes are in one view, their names in both.
REGSAM OtherView();
/// Whether programs of the other bitness are served by a class ("{...}"), whether or not its file is there.
bool ServesOtherBitness(const std::wstring& classId);

/// Deletes keys with everything below them, each that can be; one that is not there is none that failed. Gives the code
/// of the last failure.
LSTATUS DeleteKeys(std::initializer_list<std::wstring> keys);

/// The type library that is the first in this binary.
void RegisterOwnLibrary();
/// The file that serves version 1.0 of a library to programs of this bitness; "" when none does.
std::wstring LibraryFile(REFGUID library);
/// Removes version 1.0 of the library, of this bitness, whichever file serves it; it must be the one in this binary.
void UnregisterOwnLibrary(REFGUID library);

}  // namespace beacon::com
