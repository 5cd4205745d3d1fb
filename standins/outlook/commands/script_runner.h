#pragma once

#include "common/console.h"
#include "outlook/commands/commands.h"

namespace beacon::standin {

/// The console of the stand-in Outlook. An error in the script ends the program with exit code 2; an error in standard
/// input is only printed. The program quits after the last command.
class ScriptRunner final : public Console {
public:
    explicit ScriptRunner(Outlook& outlook);

    void Step();

    bool HasFailed() const { return failed_; }

private:
    void SayLine(const std::wstring& line) override;
    void Failed(const Failure& failure) override;
    void Starting(const std::wstring& line) override;
    void EndOfCommands();

    Outlook& outlook_;
    bool failed_ = false;
    bool triedToQuit_ = false;
};

}  // namespace beacon::standin
