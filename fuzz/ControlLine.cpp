#include "FuzzInput.h"
#include "services/control/LineCutter.h"
#include "services/control/Request.h"

// What a client may send to the control socket, in pieces of any size. Each line is a request or a bad one; a
// request that is written down again is the same request.
namespace {

void checkLine(const QByteArray& line) {
    const auto parsed = host::parseRequest(line);
    if (const auto* const bad = std::get_if<host::BadRequest>(&parsed)) {
        require(!bad->fault.empty(), "a bad request is told what is wrong with it");
        return;
    }
    const auto& request = std::get<host::Request>(parsed);
    const QByteArray again = host::requestLine(request);
    const auto reparsed = host::parseRequest(again);
    const auto* const same = std::get_if<host::Request>(&reparsed);
    require(same != nullptr && host::requestLine(*same) == again, "a request survives being written down");
}

} // namespace

// Qt 5.15's JSON reader loses the value of a key that comes twice, when it is an array or an object: some
// hundred bytes for each such line. No leak is looked for here, since that one would hide all others.
extern "C" int __lsan_is_turned_off() { // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const int piece = 1 + input.byte();
    const QByteArray bytes(reinterpret_cast<const char*>(input.rest()), static_cast<int>(input.restSize()));
    host::LineCutter cutter(host::longestRequestLine);
    for (int at = 0; at < bytes.size(); at += piece) {
        cutter.append(bytes.mid(at, piece));
        while (const auto line = cutter.next())
            if (!line->isTooLong)
                checkLine(line->text);
    }
    return 0;
}
