// What a plain program would do, for comparison: map the file, std::from_chars on every field, least and
// greatest per pixel column, the toolkit's painter. One thread; it knows no quotes, names, gaps or progress.
//   bench_plain FILE.csv PICTURE.png [REPEATS]
// With REPEATS it prints what drawing two curves from memory takes, the median in milliseconds.
#include "PlainDrawing.h"

#include <QGuiApplication>

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

QImage picture(const std::vector<Column>& columns) {
    return plain::picture(columns[0], {columns[1], columns[2]});
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
