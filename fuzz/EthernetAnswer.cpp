#include "AnswerChecks.h"
#include "EthernetTelegram.h"

// Answers of a controller on Ethernet. Whatever comes: nothing but a telegram with the right checksum,
// attribute and sequence number is good, and what is good decodes to its bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int sequenceAt = 6;
    constexpr int attributeAt = 8;
    FuzzInput input(data, size);
    const std::uint8_t choices = input.byte();
    const bool isRead = (choices & 1) != 0;
    const std::uint16_t sequence = input.word();
    const quint32 elements = 1U + input.byte();
    const QByteArray telegram = takeAnswer(input, (choices & 2) != 0);

    const auto check = isRead ? sbus::ethernet::checkReadAnswer(telegram, sequence)
                              : sbus::ethernet::checkWriteAnswer(telegram, sequence);
    if (telegram.size() >= sbus::ethernet::lengthSize)
        sbus::ethernet::announcedLength(telegram.constData());
    if (check.result != sbus::ethernet::AnswerCheck::Result::Good)
        return 0;
    require(endsWithItsChecksum(telegram), "a good answer ends with its checksum");
    QByteArray header = telegram.left(sbus::ethernet::headerSize);
    header.append(QByteArray(sbus::ethernet::headerSize - header.size(), '\0'));
    require(header.at(sequenceAt) == static_cast<char>(sequence >> 8) &&
                header.at(sequenceAt + 1) == static_cast<char>(sequence & 0xFF),
            "a good answer repeats the sequence number");
    require(header.at(attributeAt) == (isRead ? 1 : 2),
            "a good answer has the attribute that was waited for");
    if (isRead)
        checkDecoding(sbus::ethernet::withoutHeader(telegram), elements);
    return 0;
}
