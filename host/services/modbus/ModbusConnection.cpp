#include "ModbusConnection.h"

#include <asio/buffer.hpp>
#include <asio/write.hpp>

#include <algorithm>
#include <utility>

namespace host {

ModbusConnection::ModbusConnection(asio::ip::tcp::socket clientSocket, Owner& connectionOwner)
    : socket(std::move(clientSocket)), owner(connectionOwner) {
    asio::error_code ignored; // neither option is there for the answers to be right
    socket.set_option(asio::ip::tcp::no_delay(true), ignored);
    // So that a client whose computer was switched off does not stay for ever.
    socket.set_option(asio::socket_base::keep_alive(true), ignored);
}

void ModbusConnection::begin() {
    readMore();
}

void ModbusConnection::end() {
    isEnded = true;
    asio::error_code ignored;
    socket.close(ignored);
}

void ModbusConnection::giveUp(bool forRubbish) {
    if (!isEnded)
        owner.connectionEnded(*this, forRubbish);
}

void ModbusConnection::readMore() {
    std::copy(received.begin() + static_cast<std::ptrdiff_t>(used),
              received.begin() + static_cast<std::ptrdiff_t>(filled), received.begin());
    filled -= used;
    used = 0;
    socket.async_read_some(asio::buffer(received.data() + filled, received.size() - filled),
                           [self = shared_from_this()](const asio::error_code& error, std::size_t count) {
                               if (error) {
                                   self->giveUp(false);
                                   return;
                               }
                               self->lastHeard = Clock::now();
                               self->filled += count;
                               self->handleNext();
                           });
}

void ModbusConnection::handleNext() {
    CutModbusFrame cut = cutModbusFrame(received.data() + used, filled - used);
    switch (cut.state) {
    case CutModbusFrame::State::Incomplete:
        readMore();
        break;
    case CutModbusFrame::State::Rubbish:
        giveUp(true);
        break;
    case CutModbusFrame::State::Whole:
        used += cut.size;
        carryOut(cut.frame);
        break;
    }
}

void ModbusConnection::carryOut(ModbusFrame& request) {
    isBusy = true;
    owner.carryOut(request, [weak = weak_from_this(), transaction = request.transaction,
                             unit = request.unit](const ModbusPdu& pdu) {
        if (const auto self = weak.lock())
            self->send({transaction, unit, pdu});
    });
}

void ModbusConnection::send(const ModbusFrame& answer) {
    if (isEnded)
        return;
    isBusy = false; // from here on it is the client's turn
    lastHeard = Clock::now();
    sent = bytesOf(answer);
    asio::async_write(socket, asio::buffer(sent),
                      [self = shared_from_this()](const asio::error_code& error, std::size_t) {
                          if (error)
                              self->giveUp(false);
                          else
                              self->handleNext();
                      });
}

} // namespace host
