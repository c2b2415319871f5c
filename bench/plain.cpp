// What a plain program would do, for comparison: map the file, std::from_chars on every field, least and
// greatest per pixel column, the toolkit's painter. One thread; it knows no quotes, names, gaps or progress.
//   bench_plain FILE.csv PICTURE.png [REPEATS]
// With REPEATS it prints what drawing two curves from memory takes, the median in milliseconds.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using Column = std::vector<double>;

std::string_view mapped(const char* path) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0 || status.st_size == 0)
        return {};
    const auto size = static_cast<std::size_t>(status.st_size);
    void* bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0);
    close(file);
    return bytes == MAP_FAILED ? std::string_view() : std::string_view(static_cast<char*>(bytes), size);
}

std::vector<Column> columnsOf(std::string_view text) {
    std::vector<Column> columns;
    const std::size_t rowsToExpect = text.size() / (std::min(text.find('\n'), text.size()) + 1) + 1;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at < end) {
        for (std::size_t column = 0;; ++column) {
            double value = std::numeric_limits<double>::quiet_NaN();
            at = std::from_chars(at, end, value).ptr;
            if (column == columns.size())
                columns.emplace_back().reserve(rowsToExpect);
            columns[column].push_back(value);
            while (at < end && *at != ',' && *at != '\n')
                ++at;
            if (at == end || *at++ == '\n')
                break;
        }
    }
    return columns;
}

struct Range {
    double least = std::numeric_limits<double>::infinity();
    double greatest = -std::numeric_limits<double>::infinity();

    void add(double value) {
        least = std::min(least, value);
        greatest = std::max(greatest, value);
    }
};

Range rangeOf(const Column& column) {
    Range range;
    for (const double value : column)
        range.add(value);
    return range;
}

/// First, least, greatest and last of each pixel column, in that order.
QPolygonF reduced(const Column& xs, const Column& ys, Range x, Range y, QSizeF size) {
    QPolygonF points;
    const double scaleX = size.width() / (x.greatest - x.least);
    const double scaleY = size.height() / (y.greatest - y.least);
    const auto pixelY = [&](double value) { return size.height() - (value - y.least) * scaleY; };
    double column = -1;
    Range here;
    double last = 0;
    const auto flush = [&] {
        if (column < 0)
            return;
        points << QPointF(column, pixelY(here.least)) << QPointF(column, pixelY(here.greatest))
               << QPointF(column, pixelY(last));
    };
    for (std::size_t i = 0; i < xs.size(); ++i) {
        const double pixel = std::floor((xs[i] - x.least) * scaleX);
        if (pixel != column) {
            flush();
            column = pixel;
            here = {};
            points << QPointF(column, pixelY(ys[i]));
        }
        here.add(ys[i]);
        last = ys[i];
    }
    flush();
    return points;
}

QImage picture(const std::vector<Column>& columns) {
    QImage image(920, 550, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const Range x = rangeOf(columns[0]);
    Range y;
    for (std::size_t i = 1; i < 3; ++i) {
        const Range range = rangeOf(columns[i]);
        y.add(range.least);
        y.add(range.greatest);
    }
    for (std::size_t i = 1; i < 3; ++i) {
        painter.setPen(QPen(i == 1 ? Qt::red : Qt::blue, 1));
        painter.drawPolyline(reduced(columns[0], columns[i], x, y, image.size()));
    }
    return image;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc < 3)
        return 2;
    const std::vector<Column> columns = columnsOf(mapped(argv[1]));
    if (columns.size() < 3 || !picture(columns).save(QString::fromLocal8Bit(argv[2])))
        return 1;
    std::vector<double> milliseconds;
    for (int i = argc > 3 ? std::atoi(argv[3]) : 0; i > 0; --i) {
        const auto begin = std::chrono::steady_clock::now();
        picture(columns);
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
        milliseconds.push_back(took.count());
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    if (!milliseconds.empty())
        std::printf("drawing two curves: %.1f ms\n", milliseconds[milliseconds.size() / 2]);
}
