// The small views: hover button, progress line, link, opaque view.
#include "Classes/HoverButton/XHoverButton.h"
#include "Classes/SmallViews/MenuItemIcon.h"
#include "Classes/SmallViews/XHrefButton.h"
#include "Classes/SmallViews/XMiniProgressIndicator.h"
#include "Classes/SmallViews/XOpaqueView.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/Pictures.h"
#include "WidgetFixtures.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QStandardItem>
#include <QTest>

#include <gtest/gtest.h>

#include <thread>

namespace {

TEST(XMiniProgressIndicator, drawsThePartThatIsDone) {
    struct Row {
        float percentage;
        int filled;
    };
    const Row rows[] = {{0, 0}, {0.5F, 1}, {50, 100}, {99.9F, 200}, {100, 0}, {-5, 0}, {250, 0}};
    for (const double ratio : {1.0, 2.0}) {
        XMiniProgressIndicator bar;
        bar.resize(200, 2);
        for (const Row& row : rows) {
            bar.setPercentage(row.percentage);
            const QImage image = drawn(bar, ratio);
            int filled = 0;
            while (filled < image.width() && image.pixelColor(filled, 1) == currentColors().text2)
                ++filled;
            EXPECT_EQ(filled, static_cast<int>(row.filled * ratio)) << row.percentage << " at " << ratio;
            const QColor end = filled < image.width() ? currentColors().window : currentColors().text2;
            EXPECT_EQ(image.pixelColor(image.width() - 1, 0), end) << row.percentage;
        }
    }
}

TEST(XMiniProgressIndicator, takesItsPercentageFromAnyThread) {
    XMiniProgressIndicator bar;
    std::thread worker([&bar] { bar.setPercentage(43); });
    worker.join();
    EXPECT_EQ(bar.accessibleDescription(), QString()) << "a worker touches no widget";
    EXPECT_TRUE(support::waitUntil([&bar] { return bar.accessibleDescription() == QStringLiteral("43 %"); }));
    EXPECT_EQ(bar.percentage(), 43);

    auto gone = std::make_unique<XMiniProgressIndicator>();
    std::thread late([&gone] { gone->setPercentage(50); });
    late.join();
    gone.reset();
    finishDeletions(); // what the worker handed over finds the view gone
    EXPECT_EQ(gone, nullptr);
}

class HoverButton : public testing::Test {
  protected:
    HoverButton() {
        window.resize(100, 100);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    static void send(QWidget& widget, QEvent::Type type) {
        QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
        QEvent other(type);
        QCoreApplication::sendEvent(&widget, type == QEvent::Enter ? static_cast<QEvent*>(&enter) : &other);
    }

    QWidget window;
};

TEST_F(HoverButton, showsThePictureThatFits) {
    XHoverButton button(&window);
    button.setImage(QStringLiteral("tab_close"));
    button.setAlternateImage(QStringLiteral("tab_close_pressed"));
    EXPECT_EQ(button.sizeHint(), QSize(13, 13));
    button.move(50, 50);
    button.show();
    EXPECT_EQ(button.shownImageName(), QStringLiteral("tab_close"));
    send(button, QEvent::Enter);
    EXPECT_EQ(button.shownImageName(), QStringLiteral("tab_close_hover"));
    QTest::mousePress(&button, Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_EQ(button.shownImageName(), QStringLiteral("tab_close_pressed"));
    QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(5, 5));
    // A switch changes its picture under the pointer.
    button.setImage(QStringLiteral("expression_enabled"));
    EXPECT_EQ(button.shownImageName(), QStringLiteral("expression_enabled_hover"));
    send(button, QEvent::Leave);
    EXPECT_EQ(button.shownImageName(), QStringLiteral("expression_enabled"));
}

TEST_F(HoverButton, aMissingHoverPictureIsAnErrorWithAFallback) {
    const support::AssertionRecorder recorder;
    XHoverButton button(&window);
    button.setImage(QStringLiteral("pan"));
    EXPECT_TRUE(recorder.texts().empty()) << "looked for when the button is first shown";
    button.show();
    send(button, QEvent::Enter);
    EXPECT_EQ(button.shownImageName(), QStringLiteral("pan"));
    EXPECT_EQ(recorder.texts(), std::vector<std::string>{"No hover image \"pan_hover\"for XHoverButton"});
    EXPECT_EQ(recorder.failures().front().sourcePath, "Classes/HoverButton/XHoverButton");
}

TEST(XHrefButton, isUnderlinedInTheColourOfLinksAndThickerUnderTheKeyboard) {
    QWidget window;
    XHrefButton button(&window);
    button.setText(QStringLiteral("mm"));
    button.resize(button.sizeHint());
    EXPECT_EQ(button.cursor().shape(), Qt::PointingHandCursor);
    const auto linesAsLongAsTheWords = [&] {
        const QImage image = drawn(button);
        int lines = 0;
        for (int y = 0; y < image.height(); ++y) {
            int run = 0;
            for (int x = 0; x < image.width(); ++x)
                run += image.pixelColor(x, y) == currentColors().accent ? 1 : 0;
            lines += run >= image.width() - 2 ? 1 : 0;
        }
        return lines;
    };
    button.setFocusRing(false);
    EXPECT_EQ(linesAsLongAsTheWords(), 1);
    window.show();
    button.setFocus();
    ASSERT_TRUE(support::waitUntil([&] { return button.hasFocus(); }));
    EXPECT_EQ(linesAsLongAsTheWords(), 2);
    button.setFocusRing(true);
    EXPECT_EQ(linesAsLongAsTheWords(), 1);
    int pressed = 0;
    QObject::connect(&button, &XHrefButton::clicked, [&] { ++pressed; });
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_A})
        QTest::keyClick(&button, key);
    EXPECT_EQ(pressed, 2);
}

TEST(MenuItemIcon, isOurFolderWhereTheDesktopHasNone) {
    const auto firstIcon = [](const auto& give) {
        QStandardItem item;
        give(item);
        return item.icon().pixmap(QSize(16, 16)).toImage();
    };
    const QImage ours = Pictures::icon(QStringLiteral("folder")).pixmap(QSize(16, 16)).toImage();
    QIcon::setThemeSearchPaths({});
    EXPECT_EQ(firstIcon([](QStandardItem& item) { MenuItemIcon::setIconByPath(item, QDir::homePath()); }),
              ours);
    EXPECT_EQ(firstIcon([](QStandardItem& item) {
                  MenuItemIcon::setIconBySearchPathDirectory(item, QStandardPaths::DesktopLocation);
              }),
              ours);
}

TEST(XOpaqueView, coversItsAreaInEitherTheme) {
    XOpaqueView view;
    view.resize(20, 20);
    EXPECT_TRUE(view.testAttribute(Qt::WA_OpaquePaintEvent));
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        Appearance::instance().setTheme(theme);
        const QImage image = drawn(view, 2);
        EXPECT_EQ(image.pixelColor(0, 0), themeColors(theme).window);
        EXPECT_EQ(image.pixelColor(39, 39), themeColors(theme).window);
    }
}

} // namespace
