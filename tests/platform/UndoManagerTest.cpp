// The undo manager, tried on a small document whose every change registers its inverse.
#include "Platform/Core/UndoManager.h"
#include "support/TestSupport.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

struct Sheet {
    UndoManager undo;
    QString text;

    void set(const QString& newText, const QString& name = QStringLiteral("Set")) {
        undo.registerUndo([this, old = text] { set(old, QStringLiteral("never seen")); });
        undo.setActionName(name);
        text = newText;
    }
    static void endTurn() { QCoreApplication::processEvents(); }
    /// A change in a turn of its own.
    void step(const QString& newText, const QString& name = QStringLiteral("Set")) {
        set(newText, name);
        endTurn();
    }
    /// What a row of a table says: a digit is set as the text, and
    /// . ends the turn        | closes its step early   * is a saving      - clears the history
    /// ( begins a group       ) ends it                 ! cancels it       ? names a change that is none
    /// < undoes               > redoes
    void perform(const char* script) {
        for (const QChar command : QString::fromLatin1(script)) {
            switch (command.toLatin1()) {
            case '.':
                endTurn();
                break;
            case '|':
                undo.closeTurnGroup();
                break;
            case '*':
                undo.setClean();
                break;
            case '-':
                undo.removeAllActions();
                break;
            case '(':
                undo.beginUndoGrouping();
                break;
            case ')':
                undo.endUndoGrouping();
                break;
            case '!':
                undo.cancelUndoGrouping();
                break;
            case '?':
                undo.setActionName(u"Nothing"_qs);
                break;
            case '<':
                undo.undo();
                break;
            case '>':
                undo.redo();
                break;
            default:
                set(command);
            }
        }
    }
};

TEST(UndoManager, undoRedoUndoWalksTheSameStatesAndKeepsTheNames) {
    Sheet sheet;
    sheet.step(u"1"_qs, u"One"_qs);
    sheet.step(u"2"_qs, u"Two"_qs);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(sheet.undo.undoActionName(), u"Two"_qs);
        EXPECT_FALSE(sheet.undo.canRedo());
        sheet.undo.undo();
        EXPECT_EQ(sheet.text, u"1"_qs);
        EXPECT_EQ(sheet.undo.undoActionName(), u"One"_qs);
        EXPECT_EQ(sheet.undo.redoActionName(), u"Two"_qs);
        sheet.undo.undo();
        EXPECT_EQ(sheet.text, QString());
        EXPECT_FALSE(sheet.undo.canUndo());
        sheet.undo.undo(); // nothing left: nothing happens
        sheet.undo.redo();
        sheet.undo.redo();
        EXPECT_EQ(sheet.text, u"2"_qs);
    }
    sheet.undo.undo();
    sheet.step(u"3"_qs); // a new change cuts the redo branch off
    EXPECT_FALSE(sheet.undo.canRedo());
    sheet.undo.undo();
    EXPECT_EQ(sheet.text, u"1"_qs);
}

TEST(UndoManager, whatIsOneStep) {
    struct Row {
        const char* name;
        const char* edit; ///< begins at text "0"
        const char* afterOneUndo;
    };
    for (const Row& row : {Row{"one turn is one step", "12", "0"}, Row{"two turns are two", "1.2.", "1"},
                           Row{"a turn's step closed early", "1|2", "1"},
                           Row{"a group by hand spans turns", "(1.(2.)3.)", "0"},
                           Row{"a group by hand leaves the turn before it out", "1(2)", "1"},
                           Row{"a cancelled group leaves no step", "1.(2.1!", "0"},
                           Row{"a group cancelled within another belongs to it", "(1.(!)", "0"},
                           Row{"a group without changes is none", "1.(?)?.", "0"}}) {
        SCOPED_TRACE(row.name);
        Sheet sheet;
        sheet.perform("0.");
        sheet.perform(row.edit);
        const QString edited = sheet.text;
        sheet.undo.undo();
        EXPECT_EQ(sheet.text, QLatin1String(row.afterOneUndo));
        sheet.undo.redo();
        EXPECT_EQ(sheet.text, edited);
    }
}

TEST(UndoManager, nothingIsUndoneWhileAGroupIsOpenByHandAndAnUnpairedEndIsAProgrammingError) {
    Sheet sheet;
    sheet.step(u"1"_qs);
    sheet.undo.beginUndoGrouping();
    sheet.undo.undo();
    EXPECT_EQ(sheet.text, u"1"_qs);
    EXPECT_FALSE(sheet.undo.canUndo());
    sheet.undo.endUndoGrouping();
    EXPECT_TRUE(sheet.undo.canUndo());
    const support::AssertionRecorder recorder;
    sheet.undo.endUndoGrouping();
    EXPECT_EQ(recorder.texts().size(), 1U);
}

TEST(UndoManager, keepsTheNewestLevels) {
    Sheet sheet;
    sheet.undo.setLevelsOfUndo(2);
    sheet.perform("1.2.3.4.<<<");
    EXPECT_EQ(sheet.text, u"2"_qs);
}

TEST(UndoManager, theCleanMarkIsFoundAgainOrLostForGood) {
    struct Row {
        const char* name;
        const char* edit; ///< begins clean at text "0", two levels at most
        bool clean;
    };
    for (const Row& row :
         {Row{"untouched", "", true}, Row{"changed", "1", false}, Row{"changed and undone", "1<", true},
          Row{"undone beyond", "<", false}, Row{"undone beyond and redone", "<>", true},
          Row{"the branch of the mark was cut off", "<1.", false},
          Row{"the group of the mark was dropped", "1.2.3.<<", false},
          Row{"the groups before the mark were dropped", "1.2.<<", true},
          Row{"history cleared at the mark", "-", true}, Row{"history cleared elsewhere", "1.-", false},
          Row{"saved within a turn, then changed", "1*2", false},
          Row{"saved within a turn, changed, undone", "1*2<", true},
          Row{"saved within a group by hand, changed, undone", "(1.*2.)<", true}}) {
        SCOPED_TRACE(row.name);
        Sheet sheet;
        sheet.undo.setLevelsOfUndo(2);
        sheet.perform("0.*");
        sheet.perform(row.edit);
        EXPECT_EQ(sheet.undo.isClean(), row.clean);
    }
}

TEST(UndoManager, anInverseThatThrewLeavesNoCleanMark) {
    Sheet sheet;
    sheet.perform("0.*");
    sheet.undo.registerUndo([] { throw std::runtime_error("spilled"); });
    EXPECT_THROW(sheet.undo.undo(), std::runtime_error);
    EXPECT_FALSE(sheet.undo.isUndoing());
    EXPECT_FALSE(sheet.undo.isClean());
}

} // namespace
