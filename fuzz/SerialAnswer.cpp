#include "AnswerChecks.h"
#include "SerialTelegram.h"

// Answers of a controller on a serial line, in Data Mode and in Break Mode, as long as the driver collects
// them.
namespace {

void checkRead(const QByteArray& answer, sbus::serial::Mode mode, quint32 elements) {
    if (sbus::serial::checkReadAnswer(answer, mode) != sbus::serial::ReadAnswer::Good)
        return;
    require(endsWithItsChecksum(answer), "a good answer ends with its checksum");
    if (mode == sbus::serial::Mode::Data)
        require(answer.at(0) == '\xB5' && answer.at(1) == 1, "a good answer starts as a response");
    checkDecoding(sbus::serial::withoutStart(answer, mode), elements);
}

void checkWrite(const QByteArray& answer, sbus::serial::Mode mode) {
    if (sbus::serial::checkWriteAnswer(answer, mode) != sbus::serial::WriteAnswer::Good)
        return;
    if (mode == sbus::serial::Mode::Break)
        require(answer.at(0) == 6, "a good answer is an acknowledge");
    else
        require(endsWithItsChecksum(answer), "a good answer ends with its checksum");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::uint8_t choices = input.byte();
    const sbus::serial::Mode mode = (choices & 4) != 0 ? sbus::serial::Mode::Break : sbus::serial::Mode::Data;
    const quint32 elements = 1U + input.byte();
    QByteArray answer = takeAnswer(input, (choices & 2) != 0);
    if ((choices & 1) != 0) {
        if (!answer.isEmpty())
            checkRead(answer, mode, elements);
    } else if (answer.size() >= sbus::serial::writeAnswerSize(mode)) {
        checkWrite(answer.left(sbus::serial::writeAnswerSize(mode)), mode);
    }
    return 0;
}
