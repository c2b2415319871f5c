// A running process, told apart from a later one that got its number.
#pragma once

#include <QtGlobal>

struct ProcessIdentity {
    qint64 id = 0;
    quint64 start = 0; ///< clock ticks since the system started; 0 when unknown

    static ProcessIdentity current();
    /// Of the process that has that number now; all zero if none has.
    static ProcessIdentity of(qint64 id);
    bool isRunning() const;

    bool operator==(const ProcessIdentity&) const = default;
};
