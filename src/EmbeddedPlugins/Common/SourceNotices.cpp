// The conditions, texts and remedies of the notices.
#include "EmbeddedPlugins/Common/SourceNotices.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("SourceNotices", text);
}

QString quoted(const QString& name) {
    return QStringLiteral("“%1”").arg(name);
}

int clamped(std::int64_t value) {
    return static_cast<int>(std::min<std::int64_t>(value, std::numeric_limits<int>::max()));
}

/// The splitter that would find columns where there is only one.
std::optional<int> betterDelimiter(const SourceFacts& facts) {
    const std::optional<int> fitting = facts.head.fittingDelimiter;
    const int current = facts.settings.delimiterType;
    // Numbers anywhere finds what the others find, and spaces are part of "space or tab".
    const bool covered = current == 0 || (current == 5 && fitting.value_or(0) >= 3);
    return fitting && *fitting != current && !covered ? fitting : std::nullopt;
}

/// With Windows line ends an even number of lines leads from one row to the next, or from one of the empty
/// lines that follow them to the next.
bool takesEmptyLines(const SourceFacts& facts) {
    const int every = facts.settings.everyNthLine;
    return facts.head.windowsLineEnds && every > 1 && every % 2 == 0 && facts.table &&
           facts.table->emptyRows > 0 && facts.table->emptyRows == facts.table->rows;
}

/// At which splitter the first line names the columns; numbers anywhere have no names by themselves.
std::optional<int> delimiterOfNames(const SourceFacts& facts) {
    const int current = facts.settings.delimiterType;
    const int type = current == 0 ? facts.head.fittingDelimiter.value_or(0) : current;
    const bool known = type > 0 && static_cast<std::size_t>(type) < facts.head.firstLineNames.size();
    return known && facts.head.firstLineNames[static_cast<std::size_t>(type)] ? std::optional(type)
                                                                              : std::nullopt;
}

QString pluralOfDelimiter(int type) {
    switch (type) {
    case 1:
        return tr("commas");
    case 2:
        return tr("semicolons");
    case 3:
        return tr("tabs");
    default:
        return tr("spaces");
    }
}

void addFault(QList<SourceNotice>& notices, const SourceFacts& facts) {
    if (facts.path.isEmpty() || facts.readError.isEmpty())
        return;
    const QFileInfo file(facts.path);
    QString folder = file.path();
    if (folder == QDir::homePath() || folder.startsWith(QDir::homePath() + QLatin1Char('/')))
        folder.replace(0, QDir::homePath().size(), QStringLiteral("~"));
    if (!facts.fileExists)
        notices.append(
            {NoticeKind::FileGone,
             tr("%1 is no longer in %2. Its settings are kept.").arg(quoted(file.fileName()), folder),
             tr("Locate…")});
    else
        notices.append({NoticeKind::Unreadable,
                        tr("%1 cannot be read: %2.").arg(quoted(file.fileName()), facts.readError),
                        tr("Try Again")});
}

void addAboutLines(QList<SourceNotice>& notices, const SourceFacts& facts) {
    const bool emptyOnes = takesEmptyLines(facts);
    if (emptyOnes || (facts.head.windowsLineEnds && facts.table->alternateRowsEmpty)) {
        const SplitSettings after = adjusted(NoticeKind::WindowsLineEnds, facts);
        const QString lines = after.skiplines == 1 ? tr("1 line") : tr("%1 lines").arg(after.skiplines);
        const QString every = QString::number(after.everyNthLine);
        const QString what = emptyOnes ? tr("Windows line ends: only empty lines are taken. ")
                                       : tr("Windows line ends: every second row is empty. ");
        const QString change = after.skiplines == 0
                                   ? tr("Adjusting takes one line in %1.").arg(every)
                                   : tr("Adjusting skips %1 and takes one line in %2.").arg(lines, every);
        notices.append({NoticeKind::WindowsLineEnds, what + change, tr("Adjust")});
    }
    const std::optional<int> better = betterDelimiter(facts);
    if (facts.table->columns <= 1 && better)
        notices.append(
            {NoticeKind::OneColumn,
             tr("Only one column was found, but most lines hold %1.").arg(pluralOfDelimiter(*better)),
             tr("Split at %1").arg(delimiterTitles().at(*better))});
}

void addAboutColumns(QList<SourceNotice>& notices, const SourceFacts& facts) {
    if (!facts.settings.extractColumnNames && delimiterOfNames(facts))
        notices.append(
            {NoticeKind::ColumnNames, tr("The first line looks like column names."), tr("Use as Names")});
    const auto& empty = facts.table->emptyColumns;
    if (!empty.empty() && facts.table->rows > 0) {
        const QString name = quoted(facts.columnNames.value(static_cast<qsizetype>(empty.front())));
        const std::size_t others = empty.size() - 1;
        const QString all = others == 0   ? name
                            : others == 1 ? tr("%1 and one more column").arg(name)
                                          : tr("%1 and %2 more columns").arg(name, QString::number(others));
        notices.append(
            {NoticeKind::EmptyColumn,
             tr("No numbers in %1. Times can be built with mktimestamp(…) in an expression.").arg(all),
             QString()});
    }
}

} // namespace

QStringList delimiterTitles() {
    return {tr("Numbers anywhere"), tr("Comma"), tr("Semicolon"), tr("Tab"), tr("Space"), tr("Space or tab")};
}

QList<SourceNotice> noticesOf(const SourceFacts& facts) {
    QList<SourceNotice> notices;
    addFault(notices, facts);
    if (facts.changedOnDisk)
        notices.append({NoticeKind::ChangedOnDisk,
                        tr("%1 changed on the disk.").arg(quoted(QFileInfo(facts.path).fileName())),
                        tr("Reload")});
    if (facts.head.kind != TextKind::Utf8) {
        const QString what =
            facts.head.kind == TextKind::Utf16 ? tr("is UTF-16 text") : tr("holds zero bytes");
        notices.append(
            {NoticeKind::NotUtf8,
             tr("%1 %2. Convert it to UTF-8 to read it.").arg(quoted(QFileInfo(facts.path).fileName()), what),
             QString()});
    }
    if (facts.table) {
        addAboutLines(notices, facts);
        addAboutColumns(notices, facts);
    }
    return notices;
}

SplitSettings adjusted(NoticeKind kind, const SourceFacts& facts) {
    SplitSettings after = facts.settings;
    switch (kind) {
    case NoticeKind::WindowsLineEnds:
        // The line feed after each carriage return is a line of its own, the one after the header too.
        if (takesEmptyLines(facts)) {
            after.skiplines = clamped(std::int64_t{1} + after.skiplines);
            break;
        }
        after.skiplines =
            clamped(std::int64_t{2} * std::max(after.skiplines, 0) + (after.extractColumnNames ? 1 : 0));
        after.everyNthLine = clamped(std::int64_t{2} * std::max(after.everyNthLine, 1));
        break;
    case NoticeKind::OneColumn:
        after.delimiterType = betterDelimiter(facts).value_or(after.delimiterType);
        break;
    case NoticeKind::ColumnNames:
        if (const std::optional<int> type = delimiterOfNames(facts)) {
            after.delimiterType = *type;
            after.extractColumnNames = true;
            // Lines to skip are counted after the names; the rows stay the same, but for the one of the
            // names.
            after.skiplines = after.skiplines > 0 ? after.skiplines - 1 : std::max(after.everyNthLine, 1) - 1;
        }
        break;
    default:
        break;
    }
    return after;
}
