#pragma once

#include <QList>
#include <QMap>
#include <QStringList>

// What a program's --help tells of one of its commands.
struct CommandHelp {
    QStringList path; // the words that lead to the command; none for the program itself
    QStringList subCommands;
    QMap<QString, QStringList> options; // long names, each with the choices that the help lists for its value
};

// The help of the program and of all its sub-commands. Records a test failure where one cannot be had.
QList<CommandHelp> helpOf(const QString& program);
