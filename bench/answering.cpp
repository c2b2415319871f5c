// How long the window does not answer: the longest stretches of the main thread while a table of many rows is
// read, evaluated, drawn, panned, read again and closed. bench_answering [rows]
#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "Classes/TabBar/QXTabBar.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "EmbeddedPlugins/SourceViews.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "MoxDocument.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Appearance.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>

namespace {

double processorMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) * 1e-6;
}

/// Beats in the main thread's event loop; what lies between two beats did not answer.
class Heartbeat {
  public:
    Heartbeat() {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { beat(); });
        m_timer.start(1);
        restart();
    }

    /// Runs until `done` and says how it went.
    void phase(const char* name, const std::function<void()>& begin, const std::function<bool()>& done) {
        restart();
        begin();
        MainThread::runUntil([&] { return done(); });
        beat();
        std::printf("%-34s %9.0f ms %10.1f ms %10.1f ms\n", name, double(m_whole.nsecsElapsed()) * 1e-6,
                    m_longest, m_longestOwn);
        std::fflush(stdout);
    }

  private:
    void restart() {
        m_longest = m_longestOwn = 0;
        m_whole.start();
        m_sinceBeat.start();
        m_own = processorMilliseconds();
    }
    void beat() {
        const double own = processorMilliseconds();
        m_longest = std::max(m_longest, double(m_sinceBeat.nsecsElapsed()) * 1e-6);
        m_longestOwn = std::max(m_longestOwn, own - m_own);
        m_own = own;
        m_sinceBeat.start();
    }

    QTimer m_timer;
    QElapsedTimer m_whole;
    QElapsedTimer m_sinceBeat;
    double m_own = 0;
    double m_longest = 0;
    double m_longestOwn = 0;
};

void writeRows(const QString& path, int rows) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    QByteArray block;
    for (int row = 0; row < rows; ++row) {
        char line[80];
        const int length = std::snprintf(line, sizeof line, "%d,%.4f,%.4f\n", row, std::sin(row * 1e-5) * 100,
                                         std::fmod(row * 0.618, 7));
        block.append(line, length);
        if (block.size() > (1 << 20) || row == rows - 1) {
            file.write(block);
            block.clear();
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    int rows = 10'000'000;
    if (argc > 1)
        std::from_chars(argv[1], argv[1] + std::strlen(argv[1]), rows);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Appearance::instance().install(false);
    const MainThreadLoop mainThreadLoop;
    UserDefaults::standard().useMemoryStore();
    XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
    installSourceViews();

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("rows.csv"));
    writeRows(path, rows);
    {
        DocumentController documents;
        MoxDocumentWindow& window = documents.newDocument();
        MoxDocument& document = window.document();
        XGraphViewController& plot = window.graphViewController();
        PlotScene& scene = plot.plotView().scene();
        const auto isRead = [&] { return !document.isReading(); };
        const auto isDrawn = [&] { return scene.requestRenderings() && scene.renderTaskCount() == 0; };

        Heartbeat heartbeat;
        std::printf("%d rows\n%-34s %12s %13s %13s\n", rows, "", "in all", "longest", "its own work");
        XDataSource source;
        heartbeat.phase(
            "read, its page in front",
            [&] {
                source = document.addDatasourceWithSettings(
                    QString::fromLatin1(XPTextFile::identifier),
                    {{QStringLiteral("Filename"), path}, {QStringLiteral("DelimiterType"), 1}});
            },
            isRead);
        XCurveHandle curve;
        heartbeat.phase(
            "add a curve, show the plot",
            [&] {
                window.onAddCurve();
                curve = document.curves().first();
                curve->setX_data_index(1);
                curve->setY_data_index(2);
                window.graphTabBar().selectTabWithIndex(0);
            },
            isDrawn);
        heartbeat.phase(
            "evaluate and draw",
            [&] {
                curve->setY_data_expression(QStringLiteral("sin(c2)+c3*0.5"));
                curve->setY_uses_expression(true);
            },
            [&] { return curve->y_evaluated_data() != nullptr && isDrawn(); });
        int steps = 0;
        QTimer hand;
        QObject::connect(&hand, &QTimer::timeout, [&] {
            plot.plotView().panBy({15, 4});
            if (++steps % 3 == 0)
                plot.plotView().zoomBy(steps % 2 == 0 ? 0.9 : 1.1);
        });
        heartbeat.phase(
            "pan and zoom, 100 steps", [&] { hand.start(16); }, [&] { return steps >= 100; });
        hand.stop();
        heartbeat.phase(
            "draw what stands then", [] {}, isDrawn);
        auto& file = static_cast<XPTextFile&>(*source);
        int changes = 0;
        QTimer changer;
        QObject::connect(&changer, &QTimer::timeout, [&] { file.setSkiplines(++changes); });
        window.dataSourcesTabBar().selectTabWithIndex(0);
        heartbeat.phase(
            "change a setting five times", [&] { changer.start(100); },
            [&] {
                if (changes == 5)
                    changer.stop();
                return changes == 5 && isRead();
            });
        heartbeat.phase(
            "evaluate and draw again", [&] { window.graphTabBar().selectTabWithIndex(0); }, isDrawn);
        bool isGone = false;
        QObject::connect(&window, &QObject::destroyed, [&] { isGone = true; });
        heartbeat.phase(
            "close in the middle of a read",
            [&] {
                window.onReloadData();
                QTimer::singleShot(100, &window, [&] { window.closeNow(); });
            },
            [&] { return isGone; });
    }
    XExpressionEvaluator::shutDown();
    return 0;
}
