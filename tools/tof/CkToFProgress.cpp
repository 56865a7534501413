#include "tools/tof/CkToFProgress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace {

constexpr int kBarWidth = 40;

} // namespace

CkToFProgress::CkToFProgress(const QString& sTask) : m_task(sTask), m_terminal(::isatty(STDERR_FILENO) == 1) {
    show(0, 1);
}

CkToFProgress::~CkToFProgress() {
    if (m_shown >= 0) {
        std::fputs("\r\033[K", stderr);
    }
}

void CkToFProgress::show(qint64 iDone, qint64 iTotal) {
    const int percent = iTotal > 0 ? int(std::clamp<qint64>(iDone * 100 / iTotal, 0, 100)) : 0;
    if (!m_terminal || percent == m_shown) {
        return;
    }
    m_shown = percent;
    const int filled = percent * kBarWidth / 100;
    const QString bar = QString(filled, QLatin1Char('#')) + QString(kBarWidth - filled, QLatin1Char('.'));
    std::fputs(qPrintable(QStringLiteral("\r%1 [%2] %3 %").arg(m_task, bar).arg(percent, 3)), stderr);
    std::fflush(stderr);
}
