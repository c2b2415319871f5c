// Any use for as long as wanted: nothing breaks, and once every window is closed nothing has grown.
#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "EmbeddedPlugins/SourceViews.h"
#include "EmbeddedPlugins/TextFile/FileWatcher.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "Platform/Core/FreedMemory.h"
#include "Platform/Core/UserDefaults.h"
#include "soak/RandomUser.h"
#include "support/ProcessCounts.h"
#include "support/Seed.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFile>
#include <QRunnable>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <latch>
#include <malloc.h>
#include <memory>
#include <ranges>
#include <utility>
#include <vector>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
extern "C" std::size_t
__sanitizer_get_current_allocated_bytes(); // NOLINT: the compiler brings no header for it
#endif

using namespace Qt::StringLiterals;

namespace {

int environmentNumber(const char* name, int usual) {
    const int asked = qEnvironmentVariableIntValue(name);
    return asked > 0 ? asked : usual;
}

/// Taken while no window is open.
struct Figures {
    support::ProcessCounts counts;
    std::size_t widgets;
    std::size_t heapBytes;     ///< in use
    std::size_t residentBytes; ///< after what is free was given back
};

std::size_t heapBytesInUse() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 all = mallinfo2();
    return all.uordblks + all.hblkhd;
#endif
}

std::size_t residentBytes() {
    malloc_trim(0);
    QFile status(u"/proc/self/statm"_qs);
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    return status.readAll().split(' ').value(1).toULong() * 4096;
}

Figures figuresNow() {
    return {support::processCounts(), static_cast<std::size_t>(QApplication::allWidgets().size()),
            heapBytesInUse(), residentBytes()};
}

void print(const char* when, const Figures& figures) {
    std::printf("%-10s %3zu threads, %3zu files, %4zu widgets, %8.1f MB in use, %8.1f MB resident\n", when,
                figures.counts.threads, figures.counts.files, figures.widgets,
                static_cast<double>(figures.heapBytes) / 1e6,
                static_cast<double>(figures.residentBytes) / 1e6);
    std::fflush(stdout);
}

/// Where threads wait until all have come that there will ever be.
class Gathering {
  public:
    void come() {
        ++m_count;
        m_end.wait();
    }
    void endWith(std::size_t expected) {
        (void)support::waitUntil([&] { return m_count == expected; });
        m_end.count_down();
    }

  private:
    std::atomic<std::size_t> m_count = 0;
    std::latch m_end{1};
};

/// Fails, having no table, and tells so on its thread.
class GatheredEvaluation : public XExpressionEvaluatorDelegate {
  public:
    explicit GatheredEvaluation(std::shared_ptr<Gathering> gathering) : m_gathering(std::move(gathering)) {}
    void expressionFailed(const QString&, const QString&, quint64) override { m_gathering->come(); }
    void progressChangedPercentage(const QString&, float, quint64) override {}
    void expressionEvaluatedData(const QString&, std::shared_ptr<const XPTableData>, quint64) override {}

  private:
    const std::shared_ptr<Gathering> m_gathering;
};

/// Begun when they are first needed, and never ended: the random user may need the last of them late.
void startThreadsThatStay() {
    XExpressionEvaluator& evaluator = XExpressionEvaluator::sharedInstance();
    const auto evaluating = std::make_shared<Gathering>();
    const auto delegate = std::make_shared<GatheredEvaluation>(evaluating);
    for (std::size_t i = 0; i < XExpressionEvaluator::mostAtOnce; ++i)
        evaluator.startEvaluateExpressionWithDataDelegate(QString::number(i), nullptr, delegate);
    evaluating->endWith(XExpressionEvaluator::mostAtOnce);

    QThreadPool& toolkit = *QThreadPool::globalInstance(); // scales images
    toolkit.setExpiryTimeout(-1);
    const auto scaling = std::make_shared<Gathering>();
    for (int i = 0; i < toolkit.maxThreadCount(); ++i)
        toolkit.start(QRunnable::create([scaling] { scaling->come(); }));
    scaling->endWith(static_cast<std::size_t>(toolkit.maxThreadCount()));
}

TEST(Soak, leavesNothingBehindHoweverLongItGoesOn) {
    constexpr int deedsBetweenFigures = 75;
    constexpr std::size_t mostGrowth =
        8'000'000; // bytes in use: lists of recent things, caches of the toolkit
    constexpr std::size_t mostWidgetsMadeOnce = 40; // of a dialog that a first user opens late
    const qint64 milliseconds = environmentNumber("VELQUIN_SOAK_SECONDS", 30) * qint64{1000};
    FreedMemory::goesBackToTheSystem();       // as the program does
    qputenv("VELQUIN_AUTOSAVE_SECONDS", "1"); // the usual 30 are longer than most windows live here
    XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
    installSourceViews();
    const support::AssertionRecorder assertions;
    const support::ScratchFolder folder;
    UserDefaults::standard().set(u"SnapshotsDirType"_qs, 0);
    UserDefaults::standard().set(u"SnapshotsDir"_qs, folder.path());
    FileWatcher watcher;
    FileWatcher::setShared(&watcher);
    ApplicationDelegate application({.feed = {}, .version = u"1.0"_qs, .downloads = {}});
    application.applicationDidFinishLaunching();
    RandomUser user(application, folder.path(), environmentNumber("VELQUIN_SOAK_ROWS", 360'000),
                    support::seed());
    startThreadsThatStay();

    QElapsedTimer clock;
    clock.start();
    std::vector<Figures> all;
    qint64 nextPrint = 0;
    while (clock.elapsed() < milliseconds || all.size() < 3) {
        user.startOver();
        // Time ends no part of the least that is compared.
        for (int i = 0; i < deedsBetweenFigures && (all.size() < 3 || clock.elapsed() < milliseconds); ++i)
            user.act();
        user.closeEverything();
        user.settle();
        QGuiApplication::clipboard()->clear();
        all.push_back(figuresNow());
        if (clock.elapsed() >= nextPrint) {
            print((QByteArray::number(clock.elapsed() / 1000) + " s").constData(), all.back());
            nextPrint += std::max<qint64>(milliseconds / 6, 1000);
        }
    }
    print("end", all.back());
    for (const auto& [name, count] : user.counts())
        std::printf("%8d %s\n", count, name.c_str());

    // The first part fills what is kept for ever: fonts, icons, windows that are made once. Now and then a
    // thread ends late; what is lost every time lifts the least of the last part, too.
    const std::size_t part = all.size() / 3;
    const auto expectFlat = [&](const char* name, std::size_t tolerance, auto field) {
        const auto first = all | std::views::take(part) | std::views::transform(field);
        const auto last = all | std::views::drop(all.size() - part) | std::views::transform(field);
        EXPECT_LE(std::ranges::min(last), std::ranges::max(first) + tolerance) << name;
    };
    expectFlat("threads", 0, [](const Figures& each) { return each.counts.threads; });
    expectFlat("files", 0, [](const Figures& each) { return each.counts.files; });
    expectFlat("widgets", mostWidgetsMadeOnce, [](const Figures& each) { return each.widgets; });
    expectFlat("bytes in use", mostGrowth, [](const Figures& each) { return each.heapBytes; });
    // A tab whose closing was cancelled outlives its source.
    for (const std::string& text : assertions.texts())
        EXPECT_TRUE(text.starts_with("Datasources/tabs order broken")) << text;
}

} // namespace
