#pragma once

#include <QSslConfiguration>
#include <QSslSocket>

#include <gtest/gtest.h>

#include <string>

constexpr int patienceMs = 60'000;

// A client of an HTTP server that sends just the bytes that it is told to.
class RawClient {
public:
    explicit RawClient(std::uint16_t port) {
        socket.connectToHost(QStringLiteral("127.0.0.1"), port);
        EXPECT_TRUE(socket.waitForConnected(patienceMs));
    }
    // With TLS, believing in this certificate alone.
    RawClient(std::uint16_t port, const QSslCertificate& certificate) {
        QSslConfiguration configuration = socket.sslConfiguration();
        configuration.setCaCertificates({certificate});
        socket.setSslConfiguration(configuration);
        socket.connectToHostEncrypted(QStringLiteral("127.0.0.1"), port, QStringLiteral("localhost"));
        EXPECT_TRUE(socket.waitForEncrypted(patienceMs)) << socket.errorString().toStdString();
    }

    void send(const std::string& bytes) {
        socket.write(bytes.data(), static_cast<qint64>(bytes.size()));
        while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(patienceMs)) {
        }
    }

    // The next answer that tells its length: head and body, or the head alone.
    std::string readAnswer(bool hasBody = true) {
        while (text.find("\r\n\r\n") == std::string::npos && readMore()) {
        }
        const std::size_t head = text.find("\r\n\r\n") + 4;
        const std::size_t mark = text.find("Content-Length: ");
        if (mark == std::string::npos || mark > head)
            return {};
        const std::size_t size = head + (hasBody ? std::stoul(text.substr(mark + 16)) : 0);
        while (text.size() < size && readMore()) {
        }
        std::string answer = text.substr(0, size);
        text.erase(0, size);
        return answer;
    }

    // All that comes until the server closes the connection.
    std::string readToEnd() {
        while (readMore()) {
        }
        return text;
    }

    // Whether the server closes it without a word.
    bool isClosedInSilence() { return readToEnd().empty() && isClosed(); }
    bool isClosed() const { return socket.state() == QAbstractSocket::UnconnectedState; }

    // Takes no more than the system does by itself.
    void readSlowly() { socket.setReadBufferSize(1'024); }

private:
    bool readMore() {
        if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(patienceMs))
            return false;
        text += socket.readAll().toStdString();
        return true;
    }

    QSslSocket socket;
    std::string text; // that has come and is not taken yet
};

inline std::string get(const std::string& path, const std::string& more = {}) {
    return "GET " + path + " HTTP/1.1\r\nHost: localhost\r\n" + more + "\r\n";
}

inline std::string bodyOf(const std::string& answer) {
    const std::size_t end = answer.find("\r\n\r\n");
    return end == std::string::npos ? std::string() : answer.substr(end + 4);
}
