#include "tools/tof/CkToFPageErrors.h"

#include "tools/tof/ToFConsole.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr size_t kMaxKinds = 5;

QString withoutPage(QString message) {
    static const QRegularExpression page(QStringLiteral("\", page \\d+: "));
    return message.replace(page, QStringLiteral("\": "));
}

} // namespace

CkToFPageErrors::~CkToFPageErrors() {
    for (const SkKind& kind : m_kinds) {
        if (kind.count > 1) {
            ToFConsole::error(QStringLiteral("%1 (%2 pages in all)").arg(kind.last).arg(kind.count));
        }
    }
    if (m_others > 0) {
        ToFConsole::error(QStringLiteral("Further errors of other kinds: %1").arg(m_others));
    }
}

void CkToFPageErrors::add(const QString& sMessage) {
    const QString key = withoutPage(sMessage);
    const auto found = std::find_if(m_kinds.begin(), m_kinds.end(),
                                    [&key](const SkKind& kind) { return kind.withoutPage == key; });
    if (found != m_kinds.end()) {
        found->last = sMessage;
        ++found->count;
    } else if (m_kinds.size() < kMaxKinds) {
        m_kinds.push_back({key, sMessage, 1});
        ToFConsole::error(sMessage);
    } else {
        ++m_others;
    }
}
