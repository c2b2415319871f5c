// What a look at a file and at its table tells, which notices follow, and that their remedies help.
#include "EmbeddedPlugins/Common/SourceNotices.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "support/Numbers.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"

#include <QDir>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using namespace std::string_literals;

using support::nan;

TEST(HeadSurvey, tellsEncodingLineEndsSplittersAndNames) {
    struct Row {
        const char* name;
        std::string head;
        bool isWhole;
        TextKind kind;
        bool windows;
        std::optional<int> fitting;
        int namesAt; ///< the delimiter type at which the first line names the columns; 0 none of 1 to 4
    };
    const Row rows[] = {
        {"commas", "a,b\n1,2\n3,4\n", true, TextKind::Utf8, false, 1, 1},
        {"semicolons", "1;2\n2;3\n", true, TextKind::Utf8, false, 2, 0},
        {"decimal commas are no numbers", "1,5;2\n2,5;3\n", true, TextKind::Utf8, false, {}, 0},
        {"tabs before commas", "1\t2,3\t4\n5\t6,7\t8\n", true, TextKind::Utf8, false, 3, 0},
        {"tabs", "t\tx\r\n1\t2\r\n", true, TextKind::Utf8, true, 3, 3},
        {"units are no second number", "12 kg\n13 kg\n", true, TextKind::Utf8, false, {}, 0},
        {"dates are no numbers", "2024-05-01 12:00\n2024-05-02 12:00\n", true, TextKind::Utf8, false, {}, 0},
        {"years among the names", "time,2020\n1,2\n", true, TextKind::Utf8, false, 1, 1},
        {"names over words", "a,b\nx,y\n1,2\n1,2\n1,2\n", true, TextKind::Utf8, false, 1, 0},
        {"quoted names", "\"a,b\",c\n1,2\n", true, TextKind::Utf8, false, 1, 1},
        {"names outside ASCII", "\xC3\xA4,\xC3\xB6\n1,2\n3,4\n", true, TextKind::Utf8, false, 1, 1},
        {"few line feeds alone", "1\r\n2\r\n3\n", true, TextKind::Utf8, false, {}, 0},
        {"a cut line is left out", "1,2\n3", false, TextKind::Utf8, false, 1, 0},
        {"byte-order mark of UTF-16", "\xFF\xFE"s + "1\0"s, true, TextKind::Utf16, false, {}, 0},
        {"UTF-16 without a mark", "1\0,\0002\0\n\0"s, true, TextKind::Utf16, false, {}, 0},
        {"zero bytes", "1,2\n\0\0\0\0\n"s, true, TextKind::ZeroBytes, false, {}, 0},
        {"nothing", "", true, TextKind::Utf8, false, {}, 0},
    };
    for (const Row& row : rows) {
        const HeadSurvey survey = surveyHead(row.head, row.isWhole);
        EXPECT_EQ(survey.kind, row.kind) << row.name;
        EXPECT_EQ(survey.windowsLineEnds, row.windows) << row.name;
        EXPECT_EQ(survey.fittingDelimiter, row.fitting) << row.name;
        for (std::size_t type = 1; type <= 4; ++type)
            EXPECT_EQ(survey.firstLineNames[type], static_cast<int>(type) == row.namesAt)
                << row.name << " at " << type;
    }
}

TEST(TableSurvey, countsWhatIsMissing) {
    struct Row {
        const char* name;
        std::vector<std::vector<double>> columns;
        std::uint64_t emptyRows, unreadable;
        bool alternate;
        std::vector<std::uint64_t> emptyColumns;
    };
    const Row rows[] = {
        {"full", {{1, 2}, {3, 4}}, 0, 0, false, {}},
        {"holes", {{1, nan, 3, 4}, {nan, nan, 3, 4}}, 1, 1, false, {}},
        {"every second row", {{nan, 1, nan, 2}, {nan, 1, nan, nan}}, 2, 1, true, {}},
        {"names before few rows", {{nan, nan, 1, nan, 2, nan}}, 4, 0, true, {}},
        {"two that differ", {{nan, nan, 1, 1, 2, nan}}, 3, 0, false, {}},
        {"an odd count", {{1, nan, 2}}, 1, 0, true, {}},
        {"half of it at the end", {{1, 2, nan, nan}}, 2, 0, false, {}},
        {"a column of nothing", {{1, 2}, {nan, nan}}, 0, 2, false, {1}},
    };
    for (const Row& row : rows) {
        const auto survey = surveyTable(*support::makeTable(row.columns), {});
        ASSERT_TRUE(survey) << row.name;
        EXPECT_EQ(survey->rows, row.columns[0].size()) << row.name;
        EXPECT_EQ(survey->emptyRows, row.emptyRows) << row.name;
        EXPECT_EQ(survey->unreadableCells, row.unreadable) << row.name;
        EXPECT_EQ(survey->alternateRowsEmpty, row.alternate) << row.name;
        EXPECT_EQ(survey->emptyColumns, row.emptyColumns) << row.name;
    }
    EXPECT_EQ(surveyTable(XPTableData(), {})->rows, 0U);

    XPTableData longTable; // of several blocks
    for (std::uint64_t row = 0; row < 100'001; ++row)
        longTable.writeValueAtColRow(row % 2 == 0 ? nan : 1, 0, row);
    EXPECT_EQ(surveyTable(longTable, {})->emptyRows, 50'001U);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(surveyTable(longTable, stop.get_token()));
}

/// Everything that can be noticed at once; a test takes away what comes first.
SourceFacts allWrong() {
    SourceFacts facts;
    facts.path = QDir::homePath() + QStringLiteral("/data/sea.csv");
    facts.readError = QStringLiteral("Permission denied");
    facts.fileExists = false;
    facts.settings.delimiterType = 1;
    facts.columnNames = QStringList{QStringLiteral("date")};
    facts.head.kind = TextKind::ZeroBytes;
    facts.head.windowsLineEnds = true;
    facts.head.fittingDelimiter = 2;
    facts.head.firstLineNames[1] = facts.head.firstLineNames[2] = true;
    facts.table = TableSurvey{4, 1, 4, 0, true, {0}};
    return facts;
}

TEST(SourceNotices, comeInTheirOrder) {
    struct Row {
        NoticeKind kind;
        QString text, action;
        std::function<void(SourceFacts&)> mend;
    };
    const Row rows[] = {
        {NoticeKind::FileGone, QStringLiteral("“sea.csv” is no longer in ~/data. Its settings are kept."),
         QStringLiteral("Locate…"), [](SourceFacts& facts) { facts.fileExists = true; }},
        {NoticeKind::Unreadable, QStringLiteral("“sea.csv” cannot be read: Permission denied."),
         QStringLiteral("Try Again"), [](SourceFacts& facts) { facts.readError.clear(); }},
        {NoticeKind::ChangedOnDisk, QStringLiteral("“sea.csv” changed on the disk."),
         QStringLiteral("Reload"), [](SourceFacts& facts) { facts.changedOnDisk = false; }},
        {NoticeKind::NotUtf8,
         QStringLiteral("“sea.csv” holds zero bytes. Convert it to UTF-8 to read it."),
         {},
         [](SourceFacts& facts) { facts.head.kind = TextKind::Utf8; }},
        {NoticeKind::WindowsLineEnds,
         QStringLiteral("Windows line ends: every second row is empty. Adjusting takes one line in 2."),
         QStringLiteral("Adjust"), [](SourceFacts& facts) { facts.table->alternateRowsEmpty = false; }},
        {NoticeKind::OneColumn, QStringLiteral("Only one column was found, but most lines hold semicolons."),
         QStringLiteral("Split at Semicolon"), [](SourceFacts& facts) { facts.settings.delimiterType = 2; }},
        {NoticeKind::ColumnNames, QStringLiteral("The first line looks like column names."),
         QStringLiteral("Use as Names"),
         [](SourceFacts& facts) { facts.settings.extractColumnNames = true; }},
        {NoticeKind::EmptyColumn,
         QStringLiteral("No numbers in “date”. Times can be built with mktimestamp(…) in an expression."),
         {},
         [](SourceFacts& facts) { facts.table->emptyColumns.clear(); }},
    };
    SourceFacts facts = allWrong();
    facts.changedOnDisk = true;
    for (const Row& row : rows) {
        const QList<SourceNotice> notices = noticesOf(facts);
        ASSERT_FALSE(notices.isEmpty());
        EXPECT_EQ(notices.first(), (SourceNotice{row.kind, row.text, row.action}))
            << notices.first().text.toStdString();
        row.mend(facts);
    }
    EXPECT_TRUE(noticesOf(facts).isEmpty());
}

TEST(SourceNotices, suggestOnlyWhatHelps) {
    const auto kinds = [](const std::function<void(SourceFacts&)>& change) {
        SourceFacts facts = allWrong();
        facts.readError.clear();
        facts.head.kind = TextKind::Utf8;
        facts.table->alternateRowsEmpty = false;
        facts.table->emptyColumns.clear();
        change(facts);
        std::vector<NoticeKind> found;
        for (const SourceNotice& notice : noticesOf(facts))
            found.push_back(notice.kind);
        return found;
    };
    using Kinds = std::vector<NoticeKind>;
    EXPECT_EQ(kinds([](SourceFacts& facts) { facts.settings.delimiterType = 0; }),
              Kinds{NoticeKind::ColumnNames})
        << "numbers anywhere finds what semicolons find";
    EXPECT_EQ(kinds([](SourceFacts& facts) {
                  facts.settings.delimiterType = 0;
                  facts.head.fittingDelimiter.reset();
              }),
              Kinds{})
        << "numbers anywhere has no names without a splitter";
    EXPECT_EQ(kinds([](SourceFacts& facts) { facts.table->columns = 2; }), Kinds{NoticeKind::ColumnNames});
    EXPECT_EQ(kinds([](SourceFacts& facts) {
                  facts.settings.delimiterType = 5;
                  facts.head.fittingDelimiter = 4;
              }),
              Kinds{});
    EXPECT_EQ(kinds([](SourceFacts& facts) { facts.table.reset(); }), Kinds{});
    EXPECT_EQ(kinds([](SourceFacts& facts) {
                  facts.path.clear();
                  facts.readError = QStringLiteral("x");
              }).front(),
              NoticeKind::OneColumn)
        << "no file chosen is no fault";

    SourceFacts facts = allWrong();
    facts.settings.delimiterType = 0;
    EXPECT_EQ(adjusted(NoticeKind::ColumnNames, facts), (SplitSettings{0, 1, 2, true}));
    facts.table->emptyRows = 2;
    facts.settings = {2'000'000'000, 2'000'000'000, 1, true};
    const int most = std::numeric_limits<int>::max();
    EXPECT_EQ(adjusted(NoticeKind::WindowsLineEnds, facts), (SplitSettings{most, most, 1, true}));
}

/// A file with Windows line ends, adjusted, is the same table as its twin with plain ones.
TEST(SourceNotices, adjustingReadsWindowsLineEndsLikePlainOnes) {
    const support::ScratchFolder folder;
    QByteArray text = "a,b\n";
    for (int line = 1; line < 12; ++line)
        text += QByteArray::number(line) + ",5\n";
    const auto dumpOf = [&folder](const QByteArray& bytes, const SplitSettings& settings) {
        XPTextFile source;
        source.setFilename(folder.write(QStringLiteral("lines.csv"), bytes));
        source.setDelimiterType(settings.delimiterType);
        source.setExtractColumnNames(settings.extractColumnNames);
        source.setSkiplines(settings.skiplines);
        source.setEveryNthLine(settings.everyNthLine);
        source.read();
        EXPECT_TRUE(support::waitUntil([&] { return !source.isLoading(); }));
        return source.data()->debugDump();
    };
    for (const bool header : {false, true}) {
        for (const int skip : {0, 1, 3}) {
            for (const int every : {0, 1, 2, 3}) {
                SourceFacts facts;
                facts.settings = {skip, every, 1, header};
                const QByteArray windowsText = QByteArray(text).replace("\n", "\r\n");
                EXPECT_EQ(dumpOf(windowsText, adjusted(NoticeKind::WindowsLineEnds, facts)),
                          dumpOf(text, facts.settings))
                    << header << " " << skip << " " << every;
                if (header)
                    continue;
                // Names taken after that are names alone.
                facts.head = surveyHead(windowsText.toStdString(), true);
                const SplitSettings named = adjusted(NoticeKind::ColumnNames, facts);
                facts.settings = adjusted(NoticeKind::WindowsLineEnds, facts);
                EXPECT_EQ(dumpOf(windowsText, adjusted(NoticeKind::ColumnNames, facts)), dumpOf(text, named))
                    << skip << " " << every;
                // Names taken by hand leave nothing but empty lines, and a way back.
                facts.settings.extractColumnNames = true;
                facts.table = TableSurvey{5, 2, 5, 0, false, {}};
                EXPECT_TRUE(noticesOf(facts).first().text.contains(QStringLiteral("only empty lines")));
                const SplitSettings byHand = adjusted(NoticeKind::WindowsLineEnds, facts);
                EXPECT_NE(dumpOf(windowsText, byHand).find(".000,"), std::string::npos)
                    << skip << " " << every;
            }
        }
    }
}

} // namespace
