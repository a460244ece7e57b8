#include "ModbusGateway.h"

#include "ModbusOrders.h"

#include <utility>

namespace host {

struct ModbusGateway::OpenWrite {
    ModbusPdu request;
    Answered answered;
    std::size_t left = 0;             // commands that have not ended
    std::optional<ModbusFault> fault; // the first one
};

ModbusGateway::ModbusGateway(const Site& servedSite, ModbusCounts& modbusCounts, CallOnThread callOnOwnThread)
    : site(servedSite), counts(modbusCounts), callOnThread(std::move(callOnOwnThread)),
      reader(site.map, site.settings, site.values), self(std::make_shared<ModbusGateway*>(this)) {}

void ModbusGateway::carryOut(unsigned unit, const ModbusPdu& pdu, const Answered& answered) {
    ++counts.requests;
    const ModbusRequest request = parseModbusRequest(pdu);
    if (const auto* const fault = std::get_if<ModbusFault>(&request))
        tell(faultAnswer(pdu, *fault), answered);
    else if (const auto* const read = std::get_if<ModbusRead>(&request))
        tell(answerRead(unit, pdu, *read), answered);
    else
        carryOutWrite(unit, pdu, request, answered);
}

ModbusPdu ModbusGateway::answerRead(unsigned unit, const ModbusPdu& pdu, const ModbusRead& read) {
    ModbusPdu answer = reader.answer(unit, pdu, read);
    if (answer == faultAnswer(pdu, ModbusFault::TargetSilent))
        ++counts.notGood;
    return answer;
}

void ModbusGateway::carryOutWrite(unsigned unit, const ModbusPdu& pdu, const ModbusRequest& request,
                                  const Answered& answered) {
    if (!site.settings.takesWrites) {
        tell(faultAnswer(pdu, ModbusFault::IllegalFunction), answered);
        return;
    }
    ++counts.writes;
    const auto* const coils = std::get_if<CoilWrite>(&request);
    ModbusOrders orders = coils != nullptr ? ordersOf(site.map, unit, *coils)
                                           : ordersOf(site.map, unit, std::get<RegisterWrite>(request),
                                                      site.settings.wordOrder);
    if (!orders.fault && openCommands + orders.commands.size() > mostOpenCommands)
        orders.fault = ModbusFault::DeviceBusy;
    if (orders.fault) {
        tell(faultAnswer(pdu, *orders.fault), answered);
        return;
    }
    const auto write = std::make_shared<OpenWrite>();
    write->request = pdu;
    write->answered = answered;
    write->left = orders.commands.size();
    openCommands += orders.commands.size();
    for (const Command& command : orders.commands)
        submit(write, command);
}

// What was looked at before leaves one reason for a refusal: too many commands wait for the RTU. Behind it
// nothing more of the write is given in.
void ModbusGateway::submit(const std::shared_ptr<OpenWrite>& write, const Command& command) {
    if (write->fault == ModbusFault::DeviceBusy) {
        endCommand(*write, std::nullopt);
        return;
    }
    const auto done = [write, call = callOnThread,
                       weak = std::weak_ptr<ModbusGateway*>(self)](const CommandEnd& end) {
        call([write, weak, fault = faultOf(end)] {
            if (const auto gateway = weak.lock())
                (*gateway)->endCommand(*write, fault);
        });
    };
    if (!site.commands.submit(command, done).empty())
        endCommand(*write, ModbusFault::DeviceBusy);
}

void ModbusGateway::endCommand(OpenWrite& write, std::optional<ModbusFault> fault) {
    --openCommands;
    if (!write.fault)
        write.fault = fault;
    if (--write.left == 0)
        tell(write.fault ? faultAnswer(write.request, *write.fault) : writeAnswer(write.request),
             write.answered);
}

void ModbusGateway::tell(const ModbusPdu& answer, const Answered& answered) {
    constexpr std::uint8_t exceptionBit = 0x80;
    if ((answer.front() & exceptionBit) != 0)
        ++counts.exceptions;
    answered(answer);
}

} // namespace host
