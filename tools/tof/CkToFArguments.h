#pragma once

#include <QCommandLineParser>
#include <QStringList>

#include <optional>
#include <vector>

/// Options and arguments of one command. What is wrong with them goes to the standard error.
class CkToFArguments {
public:
    /// sUsage: the line behind "Usage: tof "; sExamples: one command a line.
    CkToFArguments(const QString& sUsage, const QString& sDescription, const QStringList& examples);

    void addFlag(const QString& sName, const QString& sDescription);
    void addValue(const QString& sName, const QString& sValue, const QString& sDescription);
    void addArgument(const QString& sName, const QString& sDescription);

    /// What to exit with at once (help was shown or something is wrong), or nothing when the command may run.
    std::optional<int> parse(const QStringList& arguments);

    bool has(const QString& sName) const { return m_parser.isSet(sName); }
    QString value(const QString& sName) const { return m_parser.value(sName); }
    QStringList values(const QString& sName) const { return m_parser.values(sName); }
    QString argument(int iIndex) const { return m_parser.positionalArguments().value(iIndex); }

    /// Leaves value alone when the option was not given. False, with a message, when it is no finite number
    /// of at least fMinimum, or a list of another length.
    bool readNumber(const QString& sName, double fMinimum, double& fValue) const;
    bool readNumber(const QString& sName, qint64 iMinimum, qint64& iValue) const;
    /// The same for a value that is used as float: it is checked after it was narrowed.
    bool readNumber(const QString& sName, float fMinimum, float& fValue) const;
    /// A list of numbers with commas between, each from fMinimum to fMaximum.
    bool readNumbers(const QString& sName, double fMinimum, double fMaximum,
                     std::vector<double>& values) const;
    bool readPair(const QString& sName, double& fFirst, double& fSecond) const;
    bool readPair(const QString& sName, float& fFirst, float& fSecond) const; ///< Checked after narrowing.

private:
    void refuseWide(const QString& sName) const;

    QCommandLineParser m_parser;
    QString m_sUsage;
    QStringList m_examples;
    int m_iArguments = 0;
};
