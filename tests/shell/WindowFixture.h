// A document controller with its windows, and stand-ins for what would ask a user.
#pragma once

#include "Classes/PluginsManager/XPluginsManager.h"
#include "Classes/TabBar/QXTabBar.h"
#include "Classes/TabBar/QXTabBarItem.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "Classes/WindowControllers/StatusLine.h"
#include "Classes/WindowControllers/WindowMenus.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "MoxDocument.h"
#include "Platform/Core/PendingEdits.h"
#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/FilePanels.h"
#include "support/TestSupport.h"
#include "widgetkit/WidgetFixtures.h"

#include <QAction>
#include <QClipboard>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

/// Answers with the buttons that were planned; without a plan, the alert stands.
class FakeAlerts : public Alerts {
  public:
    FakeAlerts() { setShared(this); }
    ~FakeAlerts() override { setShared(nullptr); }

    void ask(QWidget*, const Alert& alert, Answered answered) override {
        messages.append(alert.message);
        reason = alert.reason;
        standing = std::move(answered);
        if (!plan.isEmpty())
            answer(plan.takeFirst());
    }
    void answer(int button) { std::exchange(standing, {})(button); }

    QList<int> plan;
    QStringList messages;
    QString reason; ///< of the last
    Answered standing;
};

class FakePanels : public FilePanels {
  public:
    FakePanels() { setShared(this); }
    ~FakePanels() override { setShared(nullptr); }

    void choose(QWidget*, const FilePanel& panel, Chosen chosen) override {
        ++asked;
        proposedName = panel.proposedName;
        chosen(std::exchange(paths, {}));
    }

    QStringList paths; ///< chosen next
    QString proposedName;
    int asked = 0;
};

/// A settings view with one field, which knows its source to its end.
class FakeSourcePage : public FakePage, public PendingEdits {
  public:
    explicit FakeSourcePage(XPTextEditor& source) : m_source(source), m_field(new QLineEdit(view())) {
        setTitle(source.textData().value_or(QString()));
    }
    ~FakeSourcePage() override {
        EXPECT_FALSE(m_source.pluginName().isEmpty());
        if (toldAtTheEnd != nullptr)
            toldAtTheEnd->setStatus(QStringLiteral("read"));
    }
    void commitPendingEdits() override {
        if (!pending.isEmpty())
            m_source.setTitle(std::exchange(pending, {}));
    }
    QLineEdit& field() { return *m_field; }

    QString pending;
    QPointer<XViewController> toldAtTheEnd; ///< as the end of background work tells others

  private:
    XPTextEditor& m_source;
    QLineEdit* m_field;
};

class WindowFixture : public testing::Test {
  protected:
    WindowFixture() {
        XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
        XPTextEditor::setConfigViewMaker(
            [](XPTextEditor& source) { return std::make_unique<FakeSourcePage>(source); });
    }
    ~WindowFixture() override { XPTextEditor::setConfigViewMaker({}); }

    MoxDocumentWindow& newWindow() { return documents.newDocument(); }
    /// A window with these texts as sources, each added in a turn of its own.
    MoxDocumentWindow& windowWith(const QStringList& texts) {
        MoxDocumentWindow& window = newWindow();
        for (const QString& text : texts)
            add(window, text);
        return window;
    }
    static void add(MoxDocumentWindow& window, const QString& text) {
        window.document().textDropped(text);
        nextTurn(window);
    }
    static void nextTurn(MoxDocumentWindow& window) { window.document().undoManager().closeTurnGroup(); }
    static void trigger(MoxDocumentWindow& window, const char* command) {
        nextTurn(window);
        window.menus().action(command)->trigger();
    }
    /// The texts of the sources; an "!" where a tab shows another one's page.
    static QString tabsOf(const MoxDocumentWindow& window) {
        QStringList texts;
        const auto& tabs = window.dataSourcesTabBar().tabs();
        for (const XDataSource& source : window.document().dataSourcesManager().dataSources()) {
            const QString text = dynamic_cast<XPTextEditor&>(*source).textData().value_or(QString());
            const auto index = static_cast<std::size_t>(texts.size());
            const bool isInStep = index < tabs.size() && tabs[index]->title() == text;
            texts.append(isInStep ? text : QLatin1Char('!') + text);
        }
        const bool hasMore = tabs.size() != static_cast<std::size_t>(texts.size());
        return texts.join(QLatin1Char(' ')) + QLatin1String(hasMore ? " and more" : "");
    }
    FakeSourcePage& pageOf(const MoxDocumentWindow& window, std::size_t index) {
        return dynamic_cast<FakeSourcePage&>(*window.dataSourcesTabBar().tabs()[index]->viewController());
    }
    bool isGone(const QPointer<MoxDocumentWindow>& window) {
        finishDeletions();
        return window.isNull();
    }

    support::ScratchFolder folder;
    FakeAlerts alerts;
    FakePanels panels;
    DocumentController documents;
};
