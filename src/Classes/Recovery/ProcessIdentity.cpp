// Reads a process' start from /proc.
#include "Classes/Recovery/ProcessIdentity.h"

#include <QByteArray>
#include <QFile>
#include <QList>

#include <unistd.h>

ProcessIdentity ProcessIdentity::current() {
    return of(::getpid());
}

ProcessIdentity ProcessIdentity::of(qint64 id) {
    constexpr qsizetype startField = 19; // of those after the name: 22 in all, counted from 1
    QFile file(QStringLiteral("/proc/%1/stat").arg(id));
    if (id <= 0 || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray line = file.readAll();
    // The name may hold spaces and brackets; the last bracket ends it.
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    return {id, fields.value(startField).toULongLong()};
}

bool ProcessIdentity::isRunning() const {
    return id > 0 && of(id) == *this;
}
