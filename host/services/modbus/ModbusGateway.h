#pragma once

#include "ModbusCounts.h"
#include "ModbusReader.h"
#include "commands/Command.h"

#include <functional>
#include <memory>

namespace host {

// Carries out what clients ask: reads at once, writes by commands, whose end is their answer. At most
// mostOpenCommands are open at a time; a write for which there is no room is told that the device is busy.
// Lives on the server's thread; the ends of commands come back to it by `callOnThread`, which any thread may
// call, also once the gateway is gone.
class ModbusGateway {
public:
    using Answered = std::function<void(const ModbusPdu&)>;
    using CallOnThread = std::function<void(std::function<void()>)>;

    // Everything outlives it.
    struct Site {
        const ModbusMap& map;
        const ModbusSettings& settings;
        const ValueStore& values;
        CommandTaker& commands;
    };

    static constexpr std::size_t mostOpenCommands = 1'000;

    ModbusGateway(const Site& servedSite, ModbusCounts& modbusCounts, CallOnThread callOnOwnThread);
    ModbusGateway(const ModbusGateway&) = delete;
    ModbusGateway& operator=(const ModbusGateway&) = delete;

    // `answered` is called once, at once or when the last command has ended.
    void carryOut(unsigned unit, const ModbusPdu& pdu, const Answered& answered);

private:
    // A write whose commands are on their way.
    struct OpenWrite;

    ModbusPdu answerRead(unsigned unit, const ModbusPdu& pdu, const ModbusRead& read);
    void carryOutWrite(unsigned unit, const ModbusPdu& pdu, const ModbusRequest& request,
                       const Answered& answered);
    void submit(const std::shared_ptr<OpenWrite>& write, const Command& command);
    void endCommand(OpenWrite& write, std::optional<ModbusFault> fault);
    void tell(const ModbusPdu& answer, const Answered& answered);

    const Site site;
    ModbusCounts& counts;
    const CallOnThread callOnThread;
    ModbusReader reader;
    std::size_t openCommands = 0;
    // Ends of commands hold it weakly: they may come when the gateway is gone.
    const std::shared_ptr<ModbusGateway*> self;
};

} // namespace host
