#pragma once

#include <windows.h>

#include <initializer_list>
#include <optional>
#include <string>

#include "com/handle.h"

namespace beacon::com {

/// Registers a server of this project in HKEY_LOCAL_MACHINE, for all users, and removes it again. Keys are relative to
/// that hive unless a parameter names another. A failure raises an error unless the function says otherwise.

/// A class of this binary.
struct RegisteredClass {
    const wchar_t* title;
    const wchar_t* progId;
    const CLSID& id;
    const GUID& library;
};

/// An identifier as the registry has it: "{...}", in upper case.
std::wstring GuidText(REFGUID id);

std::wstring ProgIdKey(const RegisteredClass& served);
std::wstring ClassKey(const RegisteredClass& served);
/// Writes both keys with everything below them, with this binary as the server.
void WriteClass(const RegisteredClass& served);

/// One value; a null name stands for the default value.
void WriteValue(HKEY hive, const std::wstring& key, const wchar_t* name, DWORD type, const void* data, size_t size);
void WriteText(HKEY hive, const std::wstring& key, const wchar_t* name, const std::wstring& text);

/// A key opened for reading in a view of the registry (a flag of RegOpenKeyEx); null if that fails.
UniqueKey OpenForReading(HKEY hive, const std::wstring& key, REGSAM view = 0);
/// A text, with its environment variables expanded; nullopt if there is none or it cannot be read.
std::optional<std::wstring> ReadText(HKEY hive, const std::wstring& key, const wchar_t* name, REGSAM view = 0);
/// The default value of a key of the machine; "" if it is no text.
std::wstring MachineText(const std::wstring& key);

/// The bits of a program's or library's file, 32 or 64, from its header; 0 if it is neither or cannot be read.
int BitsOfFile(const std::wstring& file);

/// The flag that opens the registry's other view where programs of both bitnesses run: KEY_WOW64_32KEY or
/// KEY_WOW64_64KEY; 0 on other systems. Each view has its own classes; their names (ProgIDs) are shared.
REGSAM OtherView();
/// Whether a class ("{...}") is registered for programs of the other bitness, even if its file is missing.
bool ServesOtherBitness(const std::wstring& classId);

/// Deletes each key tree it can. A missing key is not an error. Returns the code of the last failure.
LSTATUS DeleteKeys(std::initializer_list<std::wstring> keys);

/// Registers the first type library in this binary.
void RegisterOwnLibrary();
/// The file that is registered for version 1.0 of a library and programs of this bitness; "" if there is none.
std::wstring LibraryFile(REFGUID library);
/// Removes version 1.0 of the library for this bitness, whichever file is registered. It must be the library in this
/// binary.
void UnregisterOwnLibrary(REFGUID library);

}  // namespace beacon::com
