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
        std::function<void(Sheet&)> edit;
        QString afterOneUndo;
    };
    const std::vector<Row> rows{
        {"one turn is one step",
         [](Sheet& s) {
             s.set(u"a"_qs);
             s.set(u"b"_qs);
         },
         u"0"_qs},
        {"two turns are two",
         [](Sheet& s) {
             s.step(u"a"_qs);
             s.step(u"b"_qs);
         },
         u"a"_qs},
        {"a turn's step closed early",
         [](Sheet& s) {
             s.set(u"a"_qs);
             s.undo.closeTurnGroup();
             s.set(u"b"_qs);
         },
         u"a"_qs},
        {"a group by hand spans turns",
         [](Sheet& s) {
             s.undo.beginUndoGrouping();
             s.step(u"a"_qs);
             s.undo.beginUndoGrouping();
             s.step(u"b"_qs);
             s.undo.endUndoGrouping();
             s.step(u"c"_qs);
             s.undo.endUndoGrouping();
         },
         u"0"_qs},
        {"a group by hand leaves the turn before it out",
         [](Sheet& s) {
             s.set(u"a"_qs);
             s.undo.beginUndoGrouping();
             s.set(u"b"_qs);
             s.undo.endUndoGrouping();
         },
         u"a"_qs},
        {"a cancelled group leaves no step",
         [](Sheet& s) {
             s.step(u"a"_qs);
             s.undo.beginUndoGrouping();
             s.step(u"b"_qs);
             s.set(u"a"_qs);
             s.undo.cancelUndoGrouping();
         },
         u"0"_qs},
        {"a group cancelled within another belongs to it",
         [](Sheet& s) {
             s.undo.beginUndoGrouping();
             s.step(u"a"_qs);
             s.undo.beginUndoGrouping();
             s.undo.cancelUndoGrouping();
             s.undo.endUndoGrouping();
         },
         u"0"_qs},
        {"a group without changes is none",
         [](Sheet& s) {
             s.step(u"a"_qs);
             s.undo.beginUndoGrouping();
             s.undo.setActionName(u"Nothing"_qs);
             s.undo.endUndoGrouping();
             s.undo.setActionName(u"Nothing"_qs);
             Sheet::endTurn();
         },
         u"0"_qs},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Sheet sheet;
        sheet.step(u"0"_qs);
        row.edit(sheet);
        const QString edited = sheet.text;
        sheet.undo.undo();
        EXPECT_EQ(sheet.text, row.afterOneUndo);
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
    sheet.undo.setLevelsOfUndo(10);
    for (int i = 1; i <= 12; ++i)
        sheet.step(QString::number(i));
    int undone = 0;
    for (; sheet.undo.canUndo(); ++undone)
        sheet.undo.undo();
    EXPECT_EQ(undone, 10);
    EXPECT_EQ(sheet.text, u"2"_qs);
}

TEST(UndoManager, theCleanMarkIsFoundAgainOrLostForGood) {
    struct Row {
        const char* name;
        std::function<void(Sheet&)> edit; ///< begins clean at text "0", two levels at most
        bool clean;
    };
    const auto undo = [](Sheet& s) { s.undo.undo(); };
    const std::vector<Row> rows{
        {"untouched", [](Sheet&) {}, true},
        {"changed", [](Sheet& s) { s.set(u"1"_qs); }, false},
        {"changed and undone",
         [&](Sheet& s) {
             s.set(u"1"_qs);
             undo(s);
         },
         true},
        {"undone beyond", undo, false},
        {"undone beyond and redone",
         [&](Sheet& s) {
             undo(s);
             s.undo.redo();
         },
         true},
        {"the branch of the mark was cut off",
         [&](Sheet& s) {
             undo(s);
             s.step(u"1"_qs);
         },
         false},
        {"the group of the mark was dropped",
         [&](Sheet& s) {
             s.step(u"1"_qs);
             s.step(u"2"_qs);
             s.step(u"3"_qs);
             undo(s);
             undo(s);
         },
         false},
        {"the groups before the mark were dropped",
         [&](Sheet& s) {
             s.step(u"1"_qs);
             s.step(u"2"_qs);
             undo(s);
             undo(s);
         },
         true},
        {"history cleared at the mark", [](Sheet& s) { s.undo.removeAllActions(); }, true},
        {"history cleared elsewhere",
         [](Sheet& s) {
             s.step(u"1"_qs);
             s.undo.removeAllActions();
         },
         false},
        {"saved within a turn, then changed",
         [](Sheet& s) {
             s.set(u"1"_qs);
             s.undo.setClean();
             s.set(u"2"_qs);
         },
         false},
        {"saved within a turn, changed, undone",
         [&](Sheet& s) {
             s.set(u"1"_qs);
             s.undo.setClean();
             s.set(u"2"_qs);
             undo(s);
         },
         true},
        {"saved within a group by hand, changed, undone",
         [&](Sheet& s) {
             s.undo.beginUndoGrouping();
             s.step(u"1"_qs);
             s.undo.setClean();
             s.step(u"2"_qs);
             s.undo.endUndoGrouping();
             undo(s);
         },
         true},
        {"an inverse threw",
         [](Sheet& s) {
             s.undo.registerUndo([] { throw std::runtime_error("spilled"); });
             EXPECT_THROW(s.undo.undo(), std::runtime_error);
             EXPECT_FALSE(s.undo.isUndoing());
         },
         false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Sheet sheet;
        sheet.undo.setLevelsOfUndo(2);
        sheet.step(u"0"_qs);
        sheet.undo.setClean();
        row.edit(sheet);
        EXPECT_EQ(sheet.undo.isClean(), row.clean);
    }
}

} // namespace
