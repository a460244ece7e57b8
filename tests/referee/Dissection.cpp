#include "Dissection.h"

#include "Hex.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QXmlStreamReader>

#include <stdexcept>

namespace {

constexpr int patienceMs = 60'000;

// A field as the dissector shows it.
struct Field {
    QString name;
    QString value; // "6"
    QString text;  // "Command: Read register(s) (0x06)"
    QByteArray bytes;
};

struct Packet {
    bool isSBus = false;
    bool isMalformed = false;
    QList<Field> fields;

    const Field* find(const char* name) const {
        for (const Field& field : fields)
            if (field.name == QLatin1String(name))
                return &field;
        return nullptr;
    }
    bool has(const char* name) const { return find(name) != nullptr; }
    QString value(const char* name) const { return has(name) ? find(name)->value : QString(); }
    // "Read register(s) (0x06)"
    QString textBehindColon(const char* name) const {
        return has(name) ? find(name)->text.section(QStringLiteral(": "), 1) : QString();
    }
};

QList<Packet> readPackets(const QByteArray& pdml) {
    QList<Packet> packets;
    QXmlStreamReader xml(pdml);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto attribute = [&xml](const char* name) {
            return xml.attributes().value(QLatin1String(name)).toString();
        };
        const QString name = attribute("name");
        if (xml.name() == QLatin1String("packet"))
            packets.append(Packet());
        else if (name == QLatin1String("sbus"))
            packets.last().isSBus = true;
        else if (name == QLatin1String("_ws.malformed"))
            packets.last().isMalformed = true;
        else if (xml.name() == QLatin1String("field"))
            packets.last().fields.append({name, attribute("show"), attribute("showname"),
                                          QByteArray::fromHex(attribute("value").toLatin1())});
    }
    if (xml.hasError())
        throw std::runtime_error("tshark's output cannot be read: " + xml.errorString().toStdString());
    return packets;
}

QString dataOf(const Packet& packet) {
    QByteArray data;
    for (const Field& field : packet.fields)
        if (field.name == QLatin1String("sbus.data_rtc") || field.name == QLatin1String("sbus.data_iof"))
            data += field.bytes;
    return QString::fromLatin1(toHex(data));
}

QString requestText(const Packet& packet) {
    const QString address = packet.value("sbus.addr_RTC") + packet.value("sbus.addr_IOF");
    const QString command = QStringLiteral("station %1: %2")
                                .arg(packet.value("sbus.destination"), packet.textBehindColon("sbus.cmd"));
    if (address.isEmpty())
        return command;
    const QString head = command + QStringLiteral(", ");
    if (packet.has("sbus.rcount"))
        return head + QStringLiteral("%1 from %2").arg(packet.value("sbus.rcount"), address);
    const char* const count = packet.has("sbus.fio_count") ? "sbus.fio_count" : "sbus.wcount_calc";
    return head + QStringLiteral("%1 from %2: %3").arg(packet.value(count), address, dataOf(packet));
}

QString telegramText(const Packet& packet) {
    switch (packet.value("sbus.att").toInt(nullptr, 0)) {
    case 0:
        return requestText(packet);
    case 1:
        return QStringLiteral("response: ") + dataOf(packet);
    default:
        return QStringLiteral("acknowledge: ") + packet.textBehindColon("sbus.nakcode");
    }
}

bool isToController(const Packet& packet) {
    return packet.value("udp.dstport") == QLatin1String("5050");
}

// Of what UDP carries.
int sizeOf(const Packet& packet) {
    constexpr int udpHeaderSize = 8;
    return packet.value("udp.length").toInt() - udpHeaderSize;
}

QStringList remarksOn(const Packet& packet, int requestFrame) {
    QStringList remarks;
    for (const Field& field : packet.fields)
        if (field.name == QLatin1String("_ws.expert.message"))
            remarks << field.value;
    if (packet.isMalformed)
        remarks << QStringLiteral("malformed");
    if (packet.value("sbus.crc.status") != QLatin1String("1"))
        remarks << QStringLiteral("checksum not correct");
    if (packet.value("sbus.len") != QString::number(sizeOf(packet)))
        remarks << QStringLiteral("length %1").arg(packet.value("sbus.len"));
    const bool isRequest = packet.has("sbus.destination");
    const QString answered = packet.value("sbus.response_to");
    if (!isRequest && answered != QString::number(requestFrame))
        remarks << QStringLiteral("answers datagram %1").arg(answered);
    return remarks;
}

QString describe(const Packet& packet, int requestFrame) {
    if (!packet.isSBus)
        return QStringLiteral("no S-Bus telegram, %1 bytes").arg(sizeOf(packet));
    QString text = packet.value("sbus.seq") + QLatin1Char(' ') + telegramText(packet);
    for (const QString& remark : remarksOn(packet, requestFrame))
        text += QStringLiteral(" [%1]").arg(remark);
    return text;
}

} // namespace

QByteArray runTshark(const QString& captureFile, const QStringList& arguments) {
    const QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
    environment.remove(QStringLiteral("WIRESHARK_CONFIG_DIR"));
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral("tshark"),
                  QStringList{QStringLiteral("-n"), QStringLiteral("-r"), captureFile} + arguments);
    if (!program.waitForStarted(patienceMs))
        throw std::runtime_error("tshark cannot be started; ./dev setup installs it");
    if (!program.waitForFinished(patienceMs) || program.exitCode() != 0)
        throw std::runtime_error("tshark failed: " + program.readAllStandardError().toStdString());
    return program.readAllStandardOutput();
}

QStringList dissectFile(const QString& captureFile) {
    QStringList texts;
    int frame = 0; // tshark counts from 1
    int requestFrame = 0;
    for (const Packet& packet :
         readPackets(runTshark(captureFile, {QStringLiteral("-T"), QStringLiteral("pdml")}))) {
        ++frame;
        if (isToController(packet))
            requestFrame = frame;
        texts << describe(packet, requestFrame);
    }
    return texts;
}

QStringList dissect(const Capture& capture) {
    QTemporaryFile file;
    if (!file.open() || file.write(capture.pcapFile()) < 0 || !file.flush())
        throw std::runtime_error("the capture file cannot be written");
    QStringList texts = dissectFile(file.fileName());
    if (texts.size() != capture.datagrams().size())
        throw std::runtime_error("tshark read " + std::to_string(texts.size()) + " of " +
                                 std::to_string(capture.datagrams().size()) + " datagrams");
    return texts;
}
