#include "host/recording/CkPageErrors.h"

#include <QCoreApplication>

namespace {

using namespace std::chrono_literals;

constexpr auto kBetweenTexts = 500ms;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkPageErrors)
};

} // namespace

QString CkPageErrors::text() const {
    return m_inRow == 1 ? m_last : Texts::tr("%1 (%2 pages in a row)").arg(m_last).arg(m_inRow);
}

QString CkPageErrors::add(const QString& sError, Clock::time_point now) {
    m_last = sError;
    ++m_inRow;
    m_heldBack = m_inRow > 1 && now - m_shown < kBetweenTexts;
    if (m_heldBack) {
        return {};
    }
    m_shown = now;
    return text();
}

QString CkPageErrors::endOfRow() {
    QString rest = m_heldBack ? text() : QString();
    m_heldBack = false;
    m_inRow = 0;
    return rest;
}
