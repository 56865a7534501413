#pragma once

#include <QLocale>

/// Changes the default locale until it goes out of scope.
class LocaleScope {
public:
    explicit LocaleScope(const QLocale& locale) { QLocale::setDefault(locale); }
    ~LocaleScope() { QLocale::setDefault(m_before); }
    LocaleScope(const LocaleScope&) = delete;
    LocaleScope& operator=(const LocaleScope&) = delete;

private:
    const QLocale m_before;
};
