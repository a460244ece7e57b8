#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <string>

// Debian's mosquitto on a port of its own of the loopback, in a folder of the test's.
class Broker {
public:
    // `moreSettings` are lines of its configuration.
    explicit Broker(const QByteArray& moreSettings = {}, const QByteArray& listenerSettings = {});
    ~Broker();

    // Started, and listening.
    void start();
    void kill();
    // Takes nothing from its connections any more, until it is killed.
    void hang();

    int port() const { return ownPort; }
    std::string url() const { return "mqtt://127.0.0.1:" + std::to_string(ownPort); }
    QString path(const QString& name) const { return folder.filePath(name); }

    static int freePort();

private:
    const QTemporaryDir folder;
    const int ownPort;
    QProcess program;
};

// Debian's mosquitto_sub, which tells "TOPIC PAYLOAD" for each message.
class Subscriber {
public:
    // Subscribed when it returns.
    Subscriber(const Broker& broker, const QStringList& arguments);
    ~Subscriber();

    // All so far.
    QStringList lines();
    // Whether one of them holds the text, at last.
    bool hasHeard(const QString& text);

private:
    QProcess program;
    QStringList heard;
    QByteArray unfinished;
};

// Debian's mosquitto_pub. Whether it went well.
bool publish(const Broker& broker, const QStringList& arguments);
