#pragma once

#include <QString>

#include <vector>

/// Errors of single pages of a file, which may have millions. The first error of each kind is printed at
/// once, the number of pages it affects at the end.
class CkToFPageErrors {
public:
    CkToFPageErrors() = default;
    /// Prints the numbers of pages.
    ~CkToFPageErrors();
    CkToFPageErrors(const CkToFPageErrors&) = delete;
    CkToFPageErrors& operator=(const CkToFPageErrors&) = delete;

    /// A message of the reader; messages that differ only in the page are of one kind.
    void add(const QString& sMessage);
    bool isEmpty() const { return m_kinds.empty(); }

private:
    struct SkKind {
        QString withoutPage;
        QString last;
        qint64 count;
    };
    std::vector<SkKind> m_kinds;
    qint64 m_others = 0;
};
