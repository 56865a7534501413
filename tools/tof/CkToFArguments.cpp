#include "tools/tof/CkToFArguments.h"

#include "tools/tof/ToFConsole.h"

#include <QLocale>

#include <cmath>
#include <limits>

CkToFArguments::CkToFArguments(const QString& sUsage, const QString& sDescription,
                               const QStringList& examples)
    : m_usage(sUsage), m_examples(examples) {
    m_parser.setApplicationDescription(sDescription);
    m_parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this help.")});
}

void CkToFArguments::addFlag(const QString& sName, const QString& sDescription) {
    m_parser.addOption({sName, sDescription});
}

void CkToFArguments::addValue(const QString& sName, const QString& sValue, const QString& sDescription) {
    m_parser.addOption({sName, sDescription, sValue});
}

void CkToFArguments::addArgument(const QString& sName, const QString& sDescription) {
    m_parser.addPositionalArgument(sName, sDescription);
    ++m_arguments;
}

std::optional<int> CkToFArguments::parse(const QStringList& arguments) {
    const QString hint =
        QStringLiteral("See \"tof %1 --help\".").arg(m_usage.section(QLatin1Char(' '), 0, 0));
    if (!m_parser.parse(arguments)) {
        ToFConsole::error(m_parser.errorText() + QLatin1Char(' ') + hint);
        return ToFUsage;
    }
    if (m_parser.isSet(QStringLiteral("help"))) {
        // The first line of the parser names the program with its path and without the command.
        const QString body = m_parser.helpText().section(QLatin1Char('\n'), 1).trimmed();
        ToFConsole::print(QStringLiteral("Usage: tof %1\n%2\n\nExamples:\n  %3")
                              .arg(m_usage, body, m_examples.join(QStringLiteral("\n  "))));
        return ToFSuccess;
    }
    const qsizetype given = m_parser.positionalArguments().size();
    if (given != m_arguments) {
        ToFConsole::error((given < m_arguments ? QStringLiteral("An argument is missing: tof %1. ")
                                               : QStringLiteral("There are too many arguments: tof %1. "))
                              .arg(m_usage) +
                          hint);
        return ToFUsage;
    }
    return std::nullopt;
}

bool CkToFArguments::readNumber(const QString& sName, double fMinimum, double& fValue) const {
    if (!has(sName)) {
        return true;
    }
    bool ok = false;
    const double number = QLocale::c().toDouble(value(sName), &ok);
    if (!ok || !std::isfinite(number) || number < fMinimum) {
        // The smallest float means "above 0"; its digits would not help the user.
        const QString least = !std::isfinite(fMinimum) ? QString()
                              : fMinimum > 0.0 && fMinimum < 1e-30
                                  ? QStringLiteral(" above 0")
                                  : QStringLiteral(" of at least %1").arg(fMinimum);
        ToFConsole::error(
            QStringLiteral("--%1 expects a number%2, not \"%3\".").arg(sName, least, value(sName)));
        return false;
    }
    fValue = number;
    return true;
}

bool CkToFArguments::readNumber(const QString& sName, float fMinimum, float& fValue) const {
    if (!has(sName)) {
        return true;
    }
    double number = 0.0;
    if (!readNumber(sName, double(fMinimum), number)) {
        return false;
    }
    const auto narrow = float(number);
    if (!std::isfinite(narrow) || narrow < fMinimum) {
        refuseWide(sName);
        return false;
    }
    fValue = narrow;
    return true;
}

void CkToFArguments::refuseWide(const QString& sName) const {
    ToFConsole::error(QStringLiteral("--%1 expects numbers of 32-bit floats, up to %2, not \"%3\".")
                          .arg(sName)
                          .arg(double(std::numeric_limits<float>::max()))
                          .arg(value(sName)));
}

bool CkToFArguments::readNumber(const QString& sName, qint64 iMinimum, qint64& iValue) const {
    if (!has(sName)) {
        return true;
    }
    bool ok = false;
    const qint64 number = value(sName).toLongLong(&ok);
    if (!ok || number < iMinimum) {
        ToFConsole::error(QStringLiteral("--%1 expects a whole number of at least %2, not \"%3\".")
                              .arg(sName, QString::number(iMinimum), value(sName)));
        return false;
    }
    iValue = number;
    return true;
}

bool CkToFArguments::readNumbers(const QString& sName, double fMinimum, double fMaximum,
                                 std::vector<double>& values) const {
    if (!has(sName)) {
        return true;
    }
    std::vector<double> numbers;
    for (const QString& part : value(sName).split(QLatin1Char(','))) {
        bool ok = false;
        const double number = QLocale::c().toDouble(part, &ok);
        // Negated, so that NaN is refused.
        if (!ok || !(number >= fMinimum && number <= fMaximum)) {
            ToFConsole::error(
                QStringLiteral("--%1 expects numbers from %2 to %3 separated by commas, not \"%4\".")
                    .arg(sName)
                    .arg(fMinimum)
                    .arg(fMaximum)
                    .arg(value(sName)));
            return false;
        }
        numbers.push_back(number);
    }
    values = numbers;
    return true;
}

bool CkToFArguments::readPair(const QString& sName, double& fFirst, double& fSecond) const {
    if (!has(sName)) {
        return true;
    }
    const QStringList parts = value(sName).split(QLatin1Char(','));
    bool first = false;
    bool second = false;
    const double a = QLocale::c().toDouble(parts.value(0), &first);
    const double b = QLocale::c().toDouble(parts.value(1), &second);
    if (parts.size() != 2 || !first || !second || !std::isfinite(a) || !std::isfinite(b)) {
        ToFConsole::error(QStringLiteral("--%1 expects two numbers separated by a comma, not \"%2\".")
                              .arg(sName, value(sName)));
        return false;
    }
    fFirst = a;
    fSecond = b;
    return true;
}

bool CkToFArguments::readPair(const QString& sName, float& fFirst, float& fSecond) const {
    double first = double(fFirst);
    double second = double(fSecond);
    if (!readPair(sName, first, second)) {
        return false;
    }
    if (!std::isfinite(float(first)) || !std::isfinite(float(second))) {
        refuseWide(sName);
        return false;
    }
    fFirst = float(first);
    fSecond = float(second);
    return true;
}
