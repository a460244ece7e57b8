#pragma once

#include "services/capture/CaptureOptions.h"
#include "services/capture/Pcap.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// A directory in which "line.pcap" is captured. A record is told by the number that its payload begins with.
class CaptureDirectory : public testing::Test {
protected:
    static constexpr std::size_t recordSize = 100;
    static constexpr std::size_t headerSize = 24;
    static constexpr int broken = -1;

    static host::TelegramBytes record(int number) {
        host::Datagram datagram;
        datagram.payload.assign(recordSize - 16 - 28, 0xEE);
        datagram.payload[0] = static_cast<std::uint8_t>(number);
        return pcapRecord(datagram);
    }

    // From first to last.
    static std::vector<host::TelegramBytes> records(int first, int last) {
        std::vector<host::TelegramBytes> all;
        for (int number = first; number <= last; ++number)
            all.push_back(record(number));
        return all;
    }

    QString pathOf(const char* name) const { return directory.filePath(QString::fromUtf8(name)); }

    host::CaptureOptions options(std::size_t recordsInAFile = 1'000, unsigned files = 5) const {
        return {pathOf("line.pcap").toStdString(), headerSize + recordsInAFile * recordSize, files};
    }

    QByteArray contentOf(const char* name) const {
        QFile file(pathOf(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    }

    void put(const char* name, const QByteArray& content) const {
        QFile file(pathOf(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    QStringList fileNames() const { return QDir(directory.path()).entryList(QDir::Files, QDir::Name); }

    // The numbers of the records in a capture. `broken` stands for a header or a record that is not whole.
    std::vector<int> recordsIn(const char* name) const {
        const QByteArray content = contentOf(name);
        const host::TelegramBytes header = host::pcapHeader();
        const QByteArray wanted(reinterpret_cast<const char*>(header.data()), headerSize);
        if (!content.startsWith(wanted))
            return {broken};
        std::vector<int> numbers;
        for (auto at = static_cast<int>(headerSize); at < content.size(); at += recordSize) {
            const int number = static_cast<std::uint8_t>(content.mid(at + 16 + 28, 1)[0]);
            const host::TelegramBytes whole = record(number);
            const bool isWhole = content.mid(at, recordSize) ==
                                 QByteArray(reinterpret_cast<const char*>(whole.data()), recordSize);
            numbers.push_back(isWhole ? number : broken);
        }
        return numbers;
    }

private:
    const QTemporaryDir directory;
};
