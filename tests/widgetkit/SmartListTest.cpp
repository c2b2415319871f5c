// The animated list: places, fades, and rows that go while they are looked at.
#include "Classes/CurvesSidebar/CSmartListView.h"
#include "Platform/Widgets/Animation.h"
#include "Platform/Widgets/Appearance.h"
#include "WidgetFixtures.h"
#include "support/TestSupport.h"

#include <QSignalSpy>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

class SmartList : public testing::Test {
  protected:
    SmartList() {
        window.resize(300, 900);
        list.resize(248, 0);
        window.show();
    }
    std::shared_ptr<FakePage> insert(int index, int height) {
        auto page = std::make_shared<FakePage>();
        page->view()->resize(10, height);
        list.insertViewControllerAtIndex(page, index);
        return page;
    }
    /// "y+height" of each row, from the first on.
    QString places() const {
        QString all;
        for (const auto& row : list.viewControllers())
            all += QStringLiteral("%1+%2 ").arg(row->view()->y()).arg(row->view()->height());
        return all.trimmed();
    }

    QWidget window;
    CSmartListView list{&window};
};

TEST_F(SmartList, stacksRowsFromTheTop) {
    insert(0, 165);
    const auto last = insert(1, 27);
    insert(0, 50);
    EXPECT_EQ(places(), QStringLiteral("0+50 50+165 215+27"));
    EXPECT_EQ(list.neededContentFrame(), QRect(0, 0, 248, 242));
    EXPECT_EQ(list.height(), 242);
    EXPECT_EQ(last->view()->width(), 248);

    last->view()->resize(248, 165);
    list.updateLayout();
    EXPECT_EQ(list.height(), 380);
    list.resize(186, list.height());
    EXPECT_EQ(last->view()->width(), 186);
    EXPECT_EQ(list.neededContentFrame().width(), 186);

    insert(99, 10);
    EXPECT_EQ(places(), QStringLiteral("0+50 50+165 215+165 380+10")) << "beyond the end is the end";
}

TEST_F(SmartList, aRemovedRowIsOutAtOnce) {
    const std::weak_ptr<FakePage> first = insert(0, 100);
    insert(1, 30);
    list.removeViewControllerAtIndex(0);
    EXPECT_EQ(places(), QStringLiteral("0+30"));
    EXPECT_FALSE(first.expired()) << "its own button may have asked";
    finishDeletions();
    EXPECT_TRUE(first.expired());
    list.removeViewControllerAtIndex(0);
    EXPECT_EQ(list.neededContentFrame().height(), 0);

    const support::AssertionRecorder recorder;
    list.removeViewControllerAtIndex(0);
    list.removeViewControllerAtIndex(-1);
    EXPECT_EQ(recorder.texts(),
              (std::vector<std::string>{"Wrong index for deleteViewControllerAtIndex : 0",
                                        "deleteViewControllerAtIndex: no view controller for index -1"}));
}

TEST_F(SmartList, rowsMoveFadeInAndFadeOut) {
    const auto first = insert(0, 100);
    const auto second = insert(1, 100);
    Appearance::instance().setAnimations(true);
    QSignalSpy finished(&list, &CSmartListView::layoutFinished);

    const auto inserted = insert(1, 50);
    EXPECT_EQ(Animation::opacity(*inserted->view()), 0);
    EXPECT_EQ(second->view()->y(), 100) << "room is made in time";
    EXPECT_TRUE(support::waitUntil([&] { return Animation::opacity(*inserted->view()) == 1; }));
    EXPECT_EQ(second->view()->y(), 150);
    EXPECT_EQ(finished.count(), 1);

    const QPointer<QWidget> view = first->view();
    list.removeViewControllerAtIndex(0);
    EXPECT_EQ(list.viewControllers().size(), 2U);
    EXPECT_TRUE(view->isVisible());
    // Another change in the middle of the fade, and yet another when it ends.
    list.updateLayout();
    EXPECT_TRUE(support::waitUntil([&] { return view == nullptr && list.height() == 150; }));
    EXPECT_EQ(places(), QStringLiteral("0+50 50+100"));
}

TEST(SmartListLife, aListMayGoInTheMiddleOfAFade) {
    Appearance::instance().setAnimations(true);
    auto list = std::make_unique<CSmartListView>();
    auto page = std::make_shared<FakePage>();
    const std::weak_ptr<FakePage> watched = page;
    list->insertViewControllerAtIndex(std::move(page), 0);
    list->removeViewControllerAtIndex(0);
    list.reset();
    EXPECT_TRUE(watched.expired());
}

} // namespace
