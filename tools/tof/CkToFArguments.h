#pragma once

#include <QCommandLineParser>
#include <QStringList>

#include <optional>
#include <vector>

/// Options and arguments of one command. Errors in them are printed to standard error.
class CkToFArguments {
public:
    /// sUsage: the line after "Usage: tof "; examples: one command each.
    CkToFArguments(const QString& sUsage, const QString& sDescription, const QStringList& examples);

    void addFlag(const QString& sName, const QString& sDescription);
    void addValue(const QString& sName, const QString& sValue, const QString& sDescription);
    void addArgument(const QString& sName, const QString& sDescription);

    /// The exit code when help was shown or an argument is wrong; nothing when the command may run.
    std::optional<int> parse(const QStringList& arguments);

    bool has(const QString& sName) const { return m_parser.isSet(sName); }
    QString value(const QString& sName) const { return m_parser.value(sName); }
    QStringList values(const QString& sName) const { return m_parser.values(sName); }
    QString argument(int iIndex) const { return m_parser.positionalArguments().value(iIndex); }

    /// The value is unchanged when the option was not given. False, with a message, when it is not a finite
    /// number of at least fMinimum.
    bool readNumber(const QString& sName, double fMinimum, double& fValue) const;
    bool readNumber(const QString& sName, qint64 iMinimum, qint64& iValue) const;
    /// For a value that is used as float: checked after narrowing.
    bool readNumber(const QString& sName, float fMinimum, float& fValue) const;
    /// A comma-separated list of numbers, each from fMinimum to fMaximum.
    bool readNumbers(const QString& sName, double fMinimum, double fMaximum,
                     std::vector<double>& values) const;
    /// Two comma-separated numbers.
    bool readPair(const QString& sName, double& fFirst, double& fSecond) const;
    bool readPair(const QString& sName, float& fFirst, float& fSecond) const; ///< checked after narrowing

private:
    void refuseWide(const QString& sName) const;

    QCommandLineParser m_parser;
    QString m_usage;
    QStringList m_examples;
    int m_arguments = 0;
};
