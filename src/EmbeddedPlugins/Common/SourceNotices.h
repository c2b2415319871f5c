// Which notice a text file's settings page shows, as a function of what is known.
#pragma once

#include "EmbeddedPlugins/Common/SourceSurvey.h"

#include <QString>
#include <QStringList>

#include <optional>

/// In the order in which they come first.
enum class NoticeKind {
    FileGone,
    Unreadable,
    ChangedOnDisk,
    NotUtf8,
    WindowsLineEnds,
    OneColumn,
    ColumnNames,
    EmptyColumn
};

struct SourceNotice {
    NoticeKind kind;
    QString text;
    QString action; ///< the button's title; empty without a button

    bool isFault() const { return kind == NoticeKind::FileGone || kind == NoticeKind::Unreadable; }
    bool operator==(const SourceNotice&) const = default;
};

/// The settings that notices suggest to change.
struct SplitSettings {
    int skiplines = 0;
    int everyNthLine = 1;
    int delimiterType = 0;
    bool extractColumnNames = false;

    bool operator==(const SplitSettings&) const = default;
};

struct SourceFacts {
    QString path; ///< the file's, with the home folder spelled out; empty without a file
    QString readError;
    bool fileExists = true;
    bool changedOnDisk = false; ///< since it was read
    SplitSettings settings;
    QStringList columnNames; ///< without the row number
    HeadSurvey head;
    std::optional<TableSurvey> table; ///< absent without data
};

/// All that hold, the first one first.
QList<SourceNotice> noticesOf(const SourceFacts& facts);

/// The settings after the notice's button, for those that change settings.
SplitSettings adjusted(NoticeKind kind, const SourceFacts& facts);

/// The titles of the delimiter types, by their number.
QStringList delimiterTitles();
