#pragma once

#include <QString>

#include <vector>

/// Errors about parts of a file. Each kind is said when it comes first and, once all is done, with the number
/// of pages that it was met on: a file may have millions of them.
class CkToFComplaints {
public:
    CkToFComplaints() = default;
    /// Says the numbers.
    ~CkToFComplaints();
    CkToFComplaints(const CkToFComplaints&) = delete;
    CkToFComplaints& operator=(const CkToFComplaints&) = delete;

    /// A message as the reader words it; those that differ in the page only are of one kind.
    void add(const QString& sMessage);
    bool isEmpty() const { return m_kinds.empty(); }

private:
    struct SkKind {
        QString withoutPage;
        QString last;
        qint64 count;
    };
    std::vector<SkKind> m_kinds;
    qint64 m_iOthers = 0;
};
