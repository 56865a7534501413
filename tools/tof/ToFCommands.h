#pragma once

#include <QStringList>

// The commands. The first argument is the name of the command. The result is the exit code.

int tofInfo(const QStringList& arguments);
int tofRecord(const QStringList& arguments);
int tofProcess(const QStringList& arguments);
int tofCloud(const QStringList& arguments);
int tofImage(const QStringList& arguments);
int tofAccuracy(const QStringList& arguments);
