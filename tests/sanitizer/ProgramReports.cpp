#include "ProgramReports.h"

#include <QDir>
#include <QFile>

namespace {

QString& reportFolder() {
    static QString path;
    return path;
}

// The sanitizer of this process has read its options already; those that are started from here read the new
// ones.
void addOption(const char* variable, const QByteArray& option) {
    const QByteArray options = qgetenv(variable);
    qputenv(variable, options.isEmpty() ? option : options + ':' + option);
}

} // namespace

ProgramReports::ProgramReports() {
    reportFolder() = folder.path();
    const QByteArray option = "log_path=" + QFile::encodeName(folder.filePath(QStringLiteral("report")));
    for (const char* const variable : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
        addOption(variable, option);
}

std::string ProgramReports::take() {
    std::string reports;
    QDir reportFiles(reportFolder());
    for (const QString& name : reportFiles.entryList(QDir::Files)) {
        QFile file(reportFiles.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            reports += file.readAll().toStdString();
        file.remove();
    }
    return reports;
}

void ProgramReports::OnTestEnd(const testing::TestInfo& /*test*/) {
    const std::string reports = take();
    if (!reports.empty())
        ADD_FAILURE() << "A program that the test started:\n" << reports;
}
