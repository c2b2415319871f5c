// Tab bars as a user works them: selecting, closing, hovering, by mouse and by keyboard.
#include "Classes/HoverButton/XHoverButton.h"
#include "Classes/SmallViews/XMiniProgressIndicator.h"
#include "Classes/TabBar/QXGraphViewTab.h"
#include "Classes/TabBar/QXNewSourceTabBarItem.h"
#include "Classes/TabBar/QXTabBar.h"
#include "Classes/TabBar/QXTabBarDelegate.h"
#include "Platform/Widgets/Appearance.h"
#include "WidgetFixtures.h"
#include "support/TestSupport.h"

#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

namespace {

class TabRecorder : public QXTabBarDelegate {
  public:
    bool tabBarWillCloseTabWithIndex(QXTabBar& bar, int index) override {
        calls += QStringLiteral("will %1 of %2;").arg(index).arg(bar.tabs().size());
        return allows;
    }
    void tabBarDidCloseTabWithIndex(QXTabBar& bar, int index) override {
        calls += QStringLiteral("did %1 of %2;").arg(index).arg(bar.tabs().size());
    }

    bool allows = true;
    QString calls;
};

/// A window with a bar of data sources, a bar with the plot's tab, and the page below them.
class TabBars : public testing::Test {
  protected:
    TabBars() {
        window.resize(920, 400);
        client.setGeometry(0, 29, 920, 371);
        for (QXTabBar* bar : {&sources, &plots}) {
            bar->setClientViewForTabControllers(&client);
            bar->setTabBarsLinkIdentifier(QStringLiteral("group"));
        }
        sources.setGeometry(0, 0, 770, 29);
        plots.setGeometry(770, 0, 150, 29);
        sources.setDelegate(&delegate);
        plots.addTab(new QXGraphViewTab(plotPage));
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    std::shared_ptr<FakePage> addSource(const char* title) {
        auto page = std::make_shared<FakePage>(title);
        sources.addTab(new QXTabBarItem(page));
        return page;
    }
    void addThree() {
        for (const char* title : {"a", "b", "c"})
            pages.push_back(addSource(title));
    }
    QString titles() const {
        QString all;
        for (const QXTabBarItem* tab : sources.tabs())
            all += tab->title();
        return all;
    }

    TabRecorder delegate;
    QWidget window;
    QWidget client{&window};
    QXTabBar sources{&window};
    QXTabBar plots{&window};
    std::shared_ptr<FakePage> plotPage = std::make_shared<FakePage>("Plot area");
    std::vector<std::shared_ptr<FakePage>> pages;
};

TEST_F(TabBars, linkedBarsHaveOneSelectionAndShowOnePage) {
    addThree();
    EXPECT_EQ(sources.selectedIndex(), -1) << "adding does not select";
    plots.selectTabWithIndex(0);
    sources.selectTabWithIndex(1);
    EXPECT_EQ(plots.selectedIndex(), -1);
    EXPECT_FALSE(plotPage->view()->isVisible());
    EXPECT_TRUE(pages[1]->view()->isVisible());
    EXPECT_EQ(pages[1]->becameVisible, 1);
    plots.selectTabWithIndex(0);
    EXPECT_EQ(sources.selectedTab(), nullptr);
    EXPECT_FALSE(sources.tabWithIndex(1)->isSelected());
    EXPECT_FALSE(pages[1]->view()->isVisible());
    client.resize(500, 200);
    EXPECT_EQ(plotPage->view()->geometry(), QRect(0, 0, 500, 200));

    QXTabBar stranger(&window);
    stranger.addTab(new QXTabBarItem);
    stranger.selectTabWithIndex(0);
    EXPECT_EQ(plots.selectedIndex(), 0) << "a bar without the identifier is no member of the group";
}

TEST_F(TabBars, theSelectedTabCoversItsNeighboursAndTheyCoverTheOutside) {
    addThree();
    addSource("d");
    sources.selectTabWithIndex(1);
    QString stacking;
    for (const QObject* child : sources.children()) {
        if (const auto* tab = qobject_cast<const QXTabBarItem*>(child))
            stacking += tab->title();
    }
    EXPECT_EQ(stacking, QStringLiteral("adcb"));
    // A click goes to the tab that is seen: in the selected one's leaning corner that is its neighbour.
    const QRect selected = sources.tabWithIndex(1)->geometry();
    QTest::mouseClick(sources.childAt(selected.left() + 2, 3), Qt::LeftButton);
    EXPECT_EQ(sources.selectedIndex(), 0);
}

struct CloseRow {
    const char* name;
    int closed;
    bool allows;
    const char* calls;
    const char* titles;
    int selected;
};

TEST_F(TabBars, closingAsksFirstAndSelectsANeighbour) {
    const CloseRow rows[] = {
        {"the first", 0, true, "will 0 of 3;did 0 of 2;", "bc", 0},
        {"a middle one", 1, true, "will 1 of 3;did 1 of 2;", "ac", 0},
        {"the last", 2, true, "will 2 of 3;did 2 of 2;", "ab", 1},
        {"refused", 1, false, "will 1 of 3;", "abc", 2},
    };
    for (const CloseRow& row : rows) {
        SCOPED_TRACE(row.name);
        addThree();
        sources.selectTabWithIndex(2);
        delegate.allows = row.allows;
        delegate.calls.clear();
        QXTabBarItem* tab = sources.tabWithIndex(row.closed);
        const std::weak_ptr<FakePage> page = pages[static_cast<std::size_t>(row.closed)];
        pages.clear();
        QTest::mouseClick(tab->closeButton(), Qt::LeftButton);
        EXPECT_EQ(delegate.calls, QLatin1String(row.calls));
        EXPECT_EQ(titles(), QLatin1String(row.titles));
        EXPECT_EQ(sources.selectedIndex(), row.selected);
        EXPECT_FALSE(page.expired()) << "the click that closed may have come from the page";
        finishDeletions();
        EXPECT_EQ(page.expired(), row.allows);
        while (!sources.tabs().empty())
            sources.removeTabAtIndex(0);
    }

    addSource("only");
    delegate.allows = true;
    sources.selectTabWithIndex(0);
    sources.tabWithIndex(0)->onClose();
    EXPECT_EQ(sources.selectedTab(), nullptr);
}

TEST_F(TabBars, wrongUseFailsBeforeAnythingHappens) {
    addThree();
    sources.selectTabWithIndex(2);
    const support::AssertionRecorder recorder;
    QXTabBarDelegate mute;
    sources.setDelegate(&mute);
    sources.tabWithIndex(0)->onClose();
    sources.setDelegate(nullptr);
    sources.tabWithIndex(0)->onClose();
    EXPECT_EQ(sources.tabWithIndex(3), nullptr);
    sources.removeTabAtIndex(-1);
    EXPECT_EQ(sources.insertTabAtIndex(new QXTabBarItem(std::make_shared<FakePage>("d")), 7), 3);
    EXPECT_EQ(titles(), QStringLiteral("abcd"));
    EXPECT_EQ(sources.selectedIndex(), 2);
    EXPECT_EQ(
        recorder.texts(),
        (std::vector<std::string>{
            "QXTabBar delegate doesn't respond to willCloseTabWithIndex - fix it or remove the delegate",
            "QXTabBar:tabWithIndex called with invalid index 3",
            "QXTabBar:tabWithIndex called with invalid index -1",
            "QXTabBar:insertTabAtIndex called with invalid index 7"}));
    EXPECT_EQ(recorder.failures().front().sourcePath, "Classes/TabBar/QXTabBar");
}

TEST_F(TabBars, aTabComesBackAtItsPlaceWithoutDisturbingTheSelection) {
    addThree();
    sources.selectTabWithIndex(1);
    EXPECT_EQ(sources.insertTabAtIndex(new QXTabBarItem(std::make_shared<FakePage>("x")), 1), 1);
    EXPECT_EQ(titles(), QStringLiteral("axbc"));
    EXPECT_EQ(sources.selectedIndex(), 2);
    EXPECT_EQ(pages[1]->becameVisible, 1);
    EXPECT_LT(sources.tabWithIndex(1)->x(), sources.tabWithIndex(2)->x());
}

TEST_F(TabBars, progressShowsWhileItIsUnderWay) {
    const auto page = addSource("a");
    const XMiniProgressIndicator* bar = sources.tabWithIndex(0)->progressIndicator();
    EXPECT_EQ(bar->geometry(), QRect(2, 27, sources.tabWithIndex(0)->width() - 4, 1));
    const std::pair<double, bool> rows[] = {
        {0.5, true}, {1.0, false}, {0.25, true}, {0.0, false}, {NAN, false}};
    double last = 0;
    for (const auto& [progress, shown] : rows) {
        page->setProgress(progress);
        EXPECT_EQ(bar->isVisible(), shown) << progress;
        EXPECT_FLOAT_EQ(bar->percentage(), static_cast<float>(shown ? progress * 100 : last));
        last = shown ? progress * 100 : last;
    }
}

TEST_F(TabBars, theCloseButtonShowsUnderThePointerOnly) {
    addThree();
    sources.addTab(new QXNewSourceTabBarItem);
    QXTabBarItem* tab = sources.tabWithIndex(0);
    EXPECT_EQ(tab->closeButton()->geometry(), QRect(tab->width() - 24, 8, 13, 13));
    EXPECT_EQ(plots.tabWithIndex(0)->closeButton(), nullptr);
    EXPECT_EQ(sources.tabWithIndex(3)->closeButton(), nullptr);
    EXPECT_EQ(sources.tabWithIndex(3)->width(), 75);
    const QPointF centre(QRectF(tab->rect()).center());
    QEnterEvent enter(centre, tab->mapTo(&window, centre), tab->mapToGlobal(centre));
    QCoreApplication::sendEvent(tab, &enter);
    EXPECT_TRUE(tab->closeButton()->isVisible());
    EXPECT_FALSE(sources.tabWithIndex(1)->closeButton()->isVisible());
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(tab, &leave);
    EXPECT_FALSE(tab->closeButton()->isVisible());
}

TEST_F(TabBars, keysAndAssistiveTechnologySelect) {
    addThree();
    sources.setFocus();
    const std::pair<Qt::Key, int> rows[] = {{Qt::Key_Space, 0}, {Qt::Key_Right, 1}, {Qt::Key_End, 2},
                                            {Qt::Key_Right, 2}, {Qt::Key_Left, 1},  {Qt::Key_Home, 0},
                                            {Qt::Key_Left, 0}};
    for (const auto& [key, selected] : rows) {
        QTest::keyClick(&sources, key);
        EXPECT_EQ(sources.selectedIndex(), selected) << key;
    }
    QAccessibleInterface* tab = QAccessible::queryAccessibleInterface(sources.tabWithIndex(2));
    ASSERT_NE(tab, nullptr);
    EXPECT_EQ(tab->role(), QAccessible::PageTab);
    EXPECT_EQ(tab->text(QAccessible::Name), QStringLiteral("c"));
    EXPECT_FALSE(tab->state().selected);
    tab->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(sources.selectedIndex(), 2);
    EXPECT_TRUE(tab->state().selected);
}

TEST_F(TabBars, theSelectedTabRunsIntoItsPageAndTheOthersLieInItsShadow) {
    addThree();
    sources.selectTabWithIndex(1);
    const ThemeColors& colors = currentColors();
    for (const double ratio : {1.0, 1.5, 2.0}) {
        SCOPED_TRACE(ratio);
        const QImage image = drawn(sources, ratio);
        const auto at = [&](double x, double y) {
            return image.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
        };
        const QRect selected = sources.tabWithIndex(1)->geometry();
        const QRect other = sources.tabWithIndex(2)->geometry();
        EXPECT_EQ(at(selected.center().x(), 28.9), colors.window);
        EXPECT_EQ(at(selected.left() + 14, 20), colors.window);
        EXPECT_LT(at(other.right() - 30, 26).lightness(), colors.bezel.lightness() - 20);
        EXPECT_EQ(at(other.right() + 40, 10), colors.bezel);
        EXPECT_LT(at(other.right() + 40, 28.9).lightness(), colors.bezel.lightness() - 20)
            << "the bar's edge";
    }
}

} // namespace
