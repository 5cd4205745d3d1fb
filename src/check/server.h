#pragma once

#include <string>

#include "check/registry_view.h"

namespace beacon::check {

/// What became of the attempt to load a class as COM does. NotTried: another bitness than this program's, or a process
/// of its own, which is not started.
enum class ServerState { NotRegistered, FileMissing, OtherBitness, DoesNotLoad, NotTried, Loads };

/// The file behind a ProgID, for programs of one bitness.
struct Server {
    int bits = 0;
    ServerState state = ServerState::NotRegistered;
    std::wstring file;            // its whole path or, when it is missing, what is registered; "" when nothing is
    std::wstring version;         // of the file; "" when it has none
    std::wstring threadingModel;  // "" when none is registered
    bool ofUser = false;          // registered for this user, not for the machine
    std::wstring problem;         // goes on from "The file ..."; "" when there is none
};

/// Looks it up as COM does, and loads it, which runs code of that file, if it is of this program's bitness.
Server FindServer(const RegistryView& view, const std::wstring& progId);

/// Of a program or library: 32 or 64; 0 when the file is something else or cannot be read.
int BitsOfFile(const std::wstring& file);

}  // namespace beacon::check
