#pragma once

#include "common/console.h"
#include "outlook/commands/commands.h"

namespace beacon::standin {

/// The console of the stand-in Outlook. An error of the script ends it and quits with exit code 2; an error of standard
/// input is only said. The end of all commands quits.
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

    Session session_;
    bool failed_ = false;
    bool triedToQuit_ = false;
};

}  // namespace beacon::standin
