#pragma once

#include <string>

#include "check/registry_view.h"
#include "com/server_registration.h"

namespace beacon::check {

/// The result of loading a class as COM does. NotTried: a library of the other bitness, a local server (which is not
/// started), or, for an administrator, a class that is registered for this user only.
enum class ServerState { NotRegistered, FileMissing, NotALibrary, OtherBitness, DoesNotLoad, NotTried, Loads };

/// The COM server behind a ProgID, as programs of one bitness see it.
struct Server {
    int bits = 0;
    ServerState state = ServerState::NotRegistered;
    std::wstring file;            // full path, or the registered text if the file is missing; empty if not registered
    std::wstring version;         // of the file; may be empty
    std::wstring threadingModel;  // may be empty
    bool ofUser = false;          // registered for this user, not for the machine
    std::wstring key;             // full name of the registry key to delete if this is the wrong server
    std::wstring problem;         // continues "The file ..."; empty if there is none
};

/// Looks the server up and loads it if its bitness is this program's, which runs its code. `classId` is the product's
/// own class; another product may have registered its class under the same ProgID.
Server FindServer(const RegistryView& view, const std::wstring& progId, const std::wstring& classId);

using com::BitsOfFile;

/// False for a folder.
bool FileExists(const std::wstring& path);

}  // namespace beacon::check
