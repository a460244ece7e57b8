#pragma once

#include <QString>

#include <vector>

// A page of the documentation. A block of three backticks whose first line says "LANGUAGE FILE" is a file;
// one that says "console" is a transcript, whose commands begin with "$ ".

struct PageBlock {
    QString fileName; // empty for a transcript
    QString text;
};

struct PageCommand {
    QString line;
    QString output;
};

// The files and transcripts of a page, in its order.
std::vector<PageBlock> readPage(const QString& path);
std::vector<PageCommand> commandsOf(const PageBlock& transcript);
