// What a gesture over a large table costs: a frame, in which the old image is moved and scaled, and the new
// image. Milliseconds of processor time at 1280 x 800 points. bench_panning [rows]
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/PlotView/PainterCanvas.h"
#include "Classes/PlotView/PlotScene.h"
#include "Platform/Core/FreedMemory.h"
#include "Platform/Core/MainThread.h"
#include "support/TableSource.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <vector>

namespace {

constexpr QSizeF bounds(1280, 800);

/// Of the calling thread (CLOCK_THREAD_CPUTIME_ID) or of all (CLOCK_PROCESS_CPUTIME_ID).
double millisecondsOf(clockid_t clock, const std::function<void()>& work) {
    const auto now = [clock] {
        timespec time{};
        clock_gettime(clock, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) * 1e-6;
    };
    const double begin = now();
    work();
    return now() - begin;
}

std::shared_ptr<const XPTableData> ascendingTable(int rows) {
    auto table = std::make_shared<XPTableData>();
    for (int row = 0; row < rows; ++row) {
        table->writeValueAtColRow(1 + row, 0, static_cast<std::uint64_t>(row));
        table->writeValueAtColRow(50 + 40 * std::sin(row * 1e-5) + std::fmod(row * 0.618, 7), 1,
                                  static_cast<std::uint64_t>(row));
    }
    table->summarizeColumns();
    return table;
}

struct Step {
    const char* name;
    std::function<void(XAxis& x, XAxis& y)> change;
};

void drawFrame(PlotScene& scene, QImage& frame) {
    QPainter painter(&frame);
    PainterCanvas canvas(painter, bounds.height());
    scene.draw(canvas, QRectF(QPointF(0, 0), bounds));
}

/// Each step from what the step before left; the frame is drawn before the new image can be there.
void measure(const XTable& table, const char* kind, double devicePixelRatio) {
    const Step steps[] = {
        {"all rows", [](XAxis&, XAxis&) {}},
        {"moved by 15, 4", [](XAxis& x, XAxis& y) { x.moveOnPixels(15), y.moveOnPixels(4); }},
        {"zoomed out, 1.1",
         [](XAxis& x, XAxis& y) {
             x.zoomWithFactorWithPixelsOrigin(1.1, 640);
             y.zoomWithFactorWithPixelsOrigin(1.1, 400);
         }},
        {"zoomed in, 0.5", [](XAxis& x, XAxis&) { x.zoomWithFactorWithPixelsOrigin(0.5, 900); }},
        {"zoomed in, 0.01", [](XAxis& x, XAxis&) { x.zoomWithFactorWithPixelsOrigin(0.01, 900); }},
        {"moved there by 100", [](XAxis& x, XAxis&) { x.moveOnPixels(100); }},
    };
    PlotScene scene;
    scene.setRenderGrace(std::chrono::milliseconds(0));
    const auto& axes = XAxisManager::sharedManager();
    scene.setAxisX(axes.createAxisWithTypeId(QString::fromLatin1(kind)));
    scene.setAxisY(axes.createAxisWithTypeId(QString::fromLatin1(kind)));
    auto& options = scene.options; // the axes follow the data
    options.axisMinX = options.axisMaxX = options.axisMinY = options.axisMaxY = NAN;
    scene.setBounds(bounds);
    scene.setDevicePixelRatio(devicePixelRatio);
    const XCurveHandle curve = XCurve::make();
    curve->setDataSource(std::make_shared<support::TableSource>(table));
    curve->setX_data_index(1);
    curve->setY_data_index(2);
    scene.setCurves({curve});
    scene.fitToData();
    QImage frame((bounds * devicePixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    frame.setDevicePixelRatio(devicePixelRatio);
    for (const Step& step : steps) {
        step.change(*scene.axisX(), *scene.axisY());
        std::vector<double> frames; // what a worker makes meanwhile is not handed over
        for (int i = 0; i < 15; ++i)
            frames.push_back(millisecondsOf(CLOCK_THREAD_CPUTIME_ID, [&] { drawFrame(scene, frame); }));
        std::sort(frames.begin(), frames.end());
        const auto isDrawn = [&] { return scene.requestRenderings() && scene.renderTaskCount() == 0; };
        MainThread::runUntil(isDrawn);
        std::vector<double> images;
        for (int i = 0; i < 5; ++i) {
            scene.discardPrerenderedImages();
            images.push_back(
                millisecondsOf(CLOCK_PROCESS_CPUTIME_ID, [&] { MainThread::runUntil(isDrawn); }));
        }
        std::sort(images.begin(), images.end());
        std::printf("%-12s %5.0f %-20s %9.1f %9.1f %12.1f\n", kind, devicePixelRatio, step.name,
                    frames[frames.size() / 2], frames.back(), images[images.size() / 2]);
        std::fflush(stdout);
    }
}

} // namespace

int main(int argc, char** argv) {
    int rows = 10'000'000;
    if (argc > 1)
        std::from_chars(argv[1], argv[1] + std::strlen(argv[1]), rows);
    FreedMemory::goesBackToTheSystem(); // as the program has it
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const MainThreadLoop mainThreadLoop;
    const XTable table = ascendingTable(rows);
    std::printf("%d rows\n%-12s %5s %-20s %9s %9s %12s\n", rows, "axes", "ratio", "", "frame", "worst",
                "new image");
    for (const char* kind : {"numeric", "log"}) {
        for (const double devicePixelRatio : {1.0, 2.0})
            measure(table, kind, devicePixelRatio);
    }
}
