// A client of a stand-in engine that runs as a program of its own.
#include <functional>

#include "com/object.h"
#include "tests/fakes/child_process.h"

namespace beacon::test {
namespace {

using com::Object;

constexpr long kHandle = 9;
constexpr long kOther = 10;

/// A client whose sinks are the engine's own ends of another client, so that the engine reports the calls to them.
class EngineClient : public testing::Test {
protected:
    void SetUp() override {
        com::Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
        engine_.Wait("# ready", 20000);
        CLSID id{};
        com::ComPtr<IUnknown> found;
        com::ComPtr<IDispatch> controller;
        com::Check(CLSIDFromProgID(L"BeaconController.Application", &id));
        com::Check(GetActiveObject(id, nullptr, &found));
        com::Check(found.As(&controller));
        controller_ = Object(controller);
        toController_ = ControllerEnd(kHandle);
        toEngine_ = EngineEnd(kHandle);
    }

    void TearDown() override {
        engine_.Write("quit\n");
        EXPECT_EQ(engine_.WaitEnd(), 0u) << "a command or a client had an error";
        controller_ = toController_ = toEngine_ = {};
        CoUninitialize();
    }

    Object ControllerEnd(long handle) const {
        return controller_.CallObject(L"GetMessageInterface", {L"AppToController", handle});
    }

    Object EngineEnd(long handle) const {
        return controller_.CallObject(L"GetEngineInterface", {L"AppToEngine", handle})
            .CallObject(L"GetMessageInterface", {L"AppToEngine", handle});
    }

    static void Put(const Object& end, com::MemberName member, long handle = kHandle) {
        end.Call(member, {L"<hello id=\"9\"/>", static_cast<IDispatch*>(nullptr), handle});
    }

    void Connect() const {
        toController_.Call(L"Connect", {L"ControllerToApp", ControllerEnd(kOther).Get(), kHandle});
        toEngine_.Call(L"Connect", {L"AppToEngine", EngineEnd(kOther).Get(), kHandle});
        Put(toEngine_, L"PutMessage");
    }

    ChildProcess engine_{L"standin_engine.exe", L"--raw"};
    Object controller_;
    Object toController_;
    Object toEngine_;
};

TEST_F(EngineClient, ReceivesCommandsAtItsSinks) {
    Connect();
    const std::pair<const char*, const char*> rows[] = {
        {"control <A b=\"1, #2\">", "control 10 <A b=\"1, #2\">"},
        {"message <C \xC3\xA9>", "message 10 <C \xC3\xA9>"},
        {"engine_control <E f>", "control 10 <E f>"},
        {"engine_message <G h>", "message 10 <G h>"},
        {"second_connect 9", "# connected AppToEngine 10"},
        {"read_id 9", "# sink_id AppToEngine 9 10"},
        {"disconnect engine 9 10", "# disconnected AppToEngine 10"},
        {"clients", "# client 9 controller"},
    };
    for (const auto& [command, heard] : rows) {
        engine_.Write(std::string(command) + "\n");
        EXPECT_TRUE(engine_.Wait(heard)) << command;
    }
}

TEST_F(EngineClient, IsToldOfDeparturesFromTheProtocol) {
    EXPECT_EQ(toEngine_.GetLong(L"id"), 0);
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"9 PutMessage on a dispatcher that is not connected", [&] { Put(toEngine_, L"PutMessage"); }},
        {"9 hello again without exit", [&] { Connect(); }},
        {"9 PutMessage: id 10 is not the handle 9 that the dispatcher was asked for with",
         [&] { Put(toEngine_, L"PutMessage", kOther); }},
        {"9 PutMessage to the controller: messages go to the engine", [&] { Put(toController_, L"PutMessage"); }},
        {"9 PutControl to the engine: controls go to the controller", [&] { Put(toEngine_, L"PutControl"); }},
        {"9 Connect: connection type \"Sideways\" instead of \"AppToEngine\"",
         [&] {
             toEngine_.Call(L"Connect", {L"Sideways", EngineEnd(kOther).Get(), kHandle});
         }},
        {"-1 GetMessageInterface: channel \"Nowhere\" instead of \"AppToController\"",
         [&] {
             controller_.Call(L"GetMessageInterface", {L"Nowhere", -1L});
         }},
    };
    for (const auto& [fault, act] : cases) {
        act();
        EXPECT_TRUE(engine_.Wait(std::string("# fault ") + fault));
    }
    EXPECT_EQ(toEngine_.GetLong(L"id"), kHandle);
}

}  // namespace
}  // namespace beacon::test
