#include "LastWords.h"

#include "runtime/ExitStatus.h"
#include "services/console/Terminal.h"

#include <OutOfMemory.h>
#include <QByteArray>
#include <QString>

#include <cstdio>

namespace host {

namespace {

MADE_FIRST const outofmemory::Watch memoryWatch("sbus-host", static_cast<int>(ExitStatus::Configuration),
                                                terminal::restoreInSignal);

void takeQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
    const QByteArray line = text.toUtf8();
    if (type == QtFatalMsg)
        outofmemory::endProgram(line.constData());
    std::fprintf(stderr, "%s\n", line.constData());
}

} // namespace

void takeQtMessages() {
    qInstallMessageHandler(takeQtMessage);
    // Qt's own event loop fails by a message; that of GLib would stop the program by a signal.
    qputenv("QT_NO_GLIB", "1");
}

} // namespace host
