#pragma once

#include <QByteArray>
#include <QFile>
#include <QStringList>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// A run of the program and its resource usage.
struct SkMeasuredRun {
    int code = -1; ///< -1: ended by a signal
    qint64 peakMiB = 0;
    QString err;
};

/// Runs the program in a folder; its output goes to a file there. Killed by the system after five minutes of
/// processor time or 4 GB in one file.
inline SkMeasuredRun measuredRun(const QString& folder, const QStringList& arguments) {
    std::vector<QByteArray> words = {QByteArray(TOF_PROGRAM)};
    for (const QString& argument : arguments) {
        words.push_back(argument.toLocal8Bit());
    }
    std::vector<char*> pointers;
    for (QByteArray& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const QByteArray place = folder.toLocal8Bit();
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit seconds = {300, 300};
        const rlimit bytes = {4'000'000'000, 4'000'000'000};
        ::setrlimit(RLIMIT_CPU, &seconds);
        ::setrlimit(RLIMIT_FSIZE, &bytes);
        const bool there = ::chdir(place.constData()) == 0;
        const int out = ::open("out.txt", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        const int err = ::open("err.txt", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (there && ::dup2(out, STDOUT_FILENO) >= 0 && ::dup2(err, STDERR_FILENO) >= 0) {
            ::execv(pointers[0], pointers.data());
        }
        ::_exit(127);
    }
    SkMeasuredRun run;
    int status = 0;
    rusage usage = {};
    if (child > 0 && ::wait4(child, &status, 0, &usage) == child && WIFEXITED(status)) {
        run.code = WEXITSTATUS(status);
    }
    run.peakMiB = usage.ru_maxrss / 1024;
    QFile err(folder + QStringLiteral("/err.txt"));
    if (err.open(QIODevice::ReadOnly)) {
        run.err = QString::fromUtf8(err.read(1 << 20));
    }
    return run;
}
