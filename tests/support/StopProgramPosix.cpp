#include "StopProgram.h"

#include <QProcess>

#include <csignal>

void stopProgram(const QProcess& program, StopBy way) {
    const int signal = way == StopBy::Key ? SIGINT : way == StopBy::System ? SIGTERM : SIGHUP;
    kill(static_cast<pid_t>(program.processId()), signal);
}
